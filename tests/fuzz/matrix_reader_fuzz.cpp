#include "util/matrix_reader.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <omp.h>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "input/delimited_text.h"
#include "input/field_kind.h"
#include "input/foreign_formats.h"
#include "input/inspected_matrix.h"
#include "input/matrix_formats.h"
#include "input/matrix_guess.h"
#include "util/input_error.h"
#include "util/line_blocks.h"

#include "tests/fuzz/support/plain_matrix.h"
#include "tests/fuzz/support/require.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/threads.h"

/// The reader of matrix files and the inspection of a matrix against a plain reader. The first byte
/// of an input is the delimiter. The second is the number of header lines (modulo 4), as a digit if
/// the reader is tried as a whole. The file follows.

namespace ovik {
namespace {

using test::PlainField;
using test::PlainRow;

bool same_bits(const std::vector<double>& a, const std::vector<double>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](double x, double y) {
        return std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(y);
    });
}

void require_rows(const std::vector<PlainRow>& expected,
                  const std::vector<std::vector<double>>& values,
                  const std::vector<std::string>& names) {
    OVIK_REQUIRE(values.size() == expected.size());
    OVIK_REQUIRE(names.size() == expected.size());
    for (std::size_t n = 0; n < expected.size(); ++n) {
        OVIK_REQUIRE(names[n] == expected[n].name);
        OVIK_REQUIRE(same_bits(values[n], expected[n].values()));
    }
}

void check_reader(const std::string& path,
                  int header,
                  char delimiter,
                  const std::vector<PlainRow>& expected) {
    // Most inputs take one thread, since it takes time to start others.
    const int threads = expected.size() % 16 == 3 ? 3 : 1;
    const test::ThreadCount scope(threads);
    std::vector<std::vector<double>> values;
    std::vector<std::string> names;
    read_matrix_w_index(values, names, path, header, delimiter);
    require_rows(expected, values, names);
}

/// @param header  is discarded first
void check_blocks(const std::string& content,
                  std::size_t header,
                  std::size_t block_size,
                  char delimiter,
                  const std::vector<PlainRow>& expected) {
    std::istringstream file(content);
    std::string line;
    for (std::size_t i = 0; i < header; ++i) {
        std::getline(file, line);
    }
    const NumberReader numbers;
    LineBlocks blocks(file, block_size);
    MatrixRows<double> rows;
    std::string block;
    std::string last;
    while (blocks.next(block)) {
        OVIK_REQUIRE(!block.empty() && (last.empty() || last.back() == '\n'));
        for_each_line(block, [&](std::string_view text) { rows.add(text, delimiter, numbers); });
        last = block;
    }
    require_rows(expected, rows.values, rows.names);
}

/// Whether a file is empty, or no text of a matrix by its bytes alone. What opens like a known
/// format of others is taken from the product's own list: its tests tell what has to be on it.
bool is_refused(const std::string& content) {
    const bool has_old_line_ends =
        content.find('\n') == std::string::npos &&
        content.substr(0, content.size() - 1).find('\r') != std::string::npos;
    const bool is_blank = content.find_first_not_of(" \t\v\f\r\n") == std::string::npos;
    return is_blank || content.starts_with("\x1f\x8b") || !foreign_format(content).empty() ||
           has_old_line_ends || content.find('\0') != std::string::npos;
}

/// Fields of one kind.
class Tally {
  public:
    void add(const PlainRow& row, std::size_t field, const std::string& text) {
        if (count_++ == 0) {
            first_ = {row.line, row.name, field, text};
        }
    }

    void requireIn(const FieldFindings& findings) const {
        OVIK_REQUIRE(findings.count == count_);
        OVIK_REQUIRE(findings.places.size() == std::min(count_, FieldFindings::kListed));
        if (count_ > 0) {
            const FieldPlace& found = findings.places.front();
            OVIK_REQUIRE(found.line == first_.line && found.row == first_.row);
            OVIK_REQUIRE(found.field == first_.field && found.text == first_.text);
        }
    }

  private:
    std::size_t count_ = 0;
    FieldPlace first_;
};

void check_fields(const MatrixReport& report, const std::vector<PlainRow>& rows) {
    Tally not_numbers;
    Tally not_finite;
    Tally with_text_behind;
    std::size_t numbers = 0;
    for (const PlainRow& row : rows) {
        for (std::size_t i = 0; i < row.fields.size(); ++i) {
            const PlainField& field = row.fields[i];
            if (field.isMissing()) {
                continue;
            }
            const bool is_number =
                field.isNumber() && (std::isfinite(field.value) || field.hasBlankRest());
            numbers += is_number ? 1 : 0;
            if (!is_number) {
                not_numbers.add(row, i + 2, field.text);
            } else if (!std::isfinite(field.value)) {
                not_finite.add(row, i + 2, field.text);
            } else if (!field.hasBlankRest()) {
                with_text_behind.add(row, i + 2, field.text);
            }
        }
    }
    OVIK_REQUIRE(report.numbers == numbers);
    not_numbers.requireIn(report.not_numbers);
    not_finite.requireIn(report.not_finite);
    with_text_behind.requireIn(report.with_text_behind);
}

void check_names(const MatrixReport& report, const std::vector<PlainRow>& rows) {
    Tally unnamed;
    Tally lost;
    std::size_t duplicates = 0;
    std::set<std::string> names;
    for (const PlainRow& row : rows) {
        const PlainField name(row.name);
        if (row.lost_its_name && name.isNumber() && name.hasBlankRest() &&
            std::isfinite(name.value)) {
            lost.add(row, 1, "");
        }
        if (row.name.empty()) {
            unnamed.add(row, 1, "");
        } else {
            duplicates += names.insert(row.name).second ? 0 : 1;
        }
    }
    unnamed.requireIn(report.unnamed);
    lost.requireIn(report.lost_names);
    OVIK_REQUIRE(report.duplicate_names == duplicates);
}

/// Columns of a matrix: values of the first row, or of the longest if the first had as many fields
/// before it was trimmed.
std::size_t column_count(const std::vector<PlainRow>& rows) {
    std::size_t longest = 0;
    for (const PlainRow& row : rows) {
        longest = std::max(longest, row.fields.size());
    }
    return rows.empty() ? 0 : rows[0].untrimmed_fields >= longest ? longest : rows[0].fields.size();
}

bool fits(const PlainRow& row, std::size_t columns) {
    return row.fields.size() == columns ||
           (row.fields.size() < columns && row.untrimmed_fields >= columns);
}

/// What is missing is NaN; all else is what is read.
void check_values(const InspectedMatrix& matrix, const std::vector<PlainRow>& rows) {
    const double* value = matrix.values.get();
    for (const PlainRow& row : rows) {
        for (std::size_t d = 0; d < matrix.report.columns; ++d, ++value) {
            if (d >= row.fields.size() || row.fields[d].isMissing()) {
                OVIK_REQUIRE(std::isnan(*value));
            } else {
                OVIK_REQUIRE(same_bits({*value}, {row.fields[d].value}));
            }
        }
    }
}

void check_matrix(const InspectedMatrix& matrix, const std::vector<PlainRow>& rows) {
    const MatrixReport& report = matrix.report;
    OVIK_REQUIRE(report.rows == rows.size());
    OVIK_REQUIRE(report.columns == column_count(rows));
    const auto ragged = std::count_if(
        rows.begin(), rows.end(), [&](const PlainRow& row) { return !fits(row, report.columns); });
    OVIK_REQUIRE(report.ragged_rows == static_cast<std::size_t>(ragged));
    OVIK_REQUIRE(matrix.row_names.size() == rows.size() && matrix.row_lines.size() == rows.size());
    for (std::size_t n = 0; n < rows.size(); ++n) {
        OVIK_REQUIRE(matrix.row_names[n] == rows[n].name && matrix.row_lines[n] == rows[n].line);
    }
    check_fields(report, rows);
    check_names(report, rows);
    OVIK_REQUIRE((matrix.values == nullptr) == (ragged != 0));
    if (ragged == 0) {
        check_values(matrix, rows);
    }
}

void check_inspection(const std::string& path, char delimiter, const std::string& content) {
    const test::PlainRecords records = test::plain_records(content, 1, delimiter);
    TableLayout layout;
    layout.delimiter = delimiter;
    bool was_refused = false;
    try {
        MatrixSource source(path);
        format_of(source, matrix_formats());
        InspectedMatrix matrix = inspect_matrix(source, layout);
        note_duplicate_names(matrix);
        check_matrix(matrix, records.rows);
    } catch (const InputError& error) {
        was_refused = true;
        OVIK_REQUIRE(std::string_view(error.what()).starts_with(path + ":"));
    }
    OVIK_REQUIRE(was_refused == (is_refused(content) || records.has_bad_quote));
}

/// How many numbers the rows that are looked at hold under a delimiter.
std::size_t count_numbers(const std::string& content, char delimiter) {
    constexpr std::size_t kLookedAt = 20;
    std::vector<PlainRow> rows = test::plain_records(content, 1, delimiter).rows;
    rows.resize(std::min(rows.size(), kLookedAt));
    std::size_t count = 0;
    for (const PlainRow& row : rows) {
        count += static_cast<std::size_t>(
            std::count_if(row.fields.begin(), row.fields.end(), [](const PlainField& field) {
                return (field.isNumber() && std::isfinite(field.value) && field.hasBlankRest()) ||
                       has_decimal_comma(field.text) || has_point_groups(field.text);
            }));
    }
    return count;
}

void check_guess(const std::string& path, const std::string& content) {
    constexpr std::string_view kDelimiters = "\t;, ";
    std::size_t most = 0;
    char expected = 0;
    for (const char delimiter : kDelimiters) {
        const std::size_t count = count_numbers(content, delimiter);
        if (count > most) {
            most = count;
            expected = delimiter;
        }
    }
    try {
        const MatrixSource source(path);
        format_of(source, matrix_formats());
        const std::optional<char> guess = guess_delimiter(whole_lines(source, 1));
        OVIK_REQUIRE(guess.value_or(0) == expected);
    } catch (const InputError&) {
        OVIK_REQUIRE(is_refused(content));
    }
}

}  // namespace
}  // namespace ovik

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ovik;
    static const test::TemporaryDirectory kDirectory;
    if (size < 2) {
        return 0;
    }
    const auto delimiter = static_cast<char>(data[0]);
    const std::size_t header = data[1] % 4;
    const std::string content(data + 2, data + size);
    const std::string path = kDirectory.write("matrix", content);
    const std::vector<PlainRow> rows = test::plain_rows(content, header, delimiter);
    // The reader's block of a megabyte takes longer to come by than all the rest.
    const bool is_digit = data[1] >= '0' && data[1] <= '9';
    if (is_digit) {
        check_reader(path, static_cast<int>(header), delimiter, rows);
    }
    for (const std::size_t block_size : {1U, 2U, 3U, 7U, 64U, 1U + data[1] / 4U}) {
        check_blocks(content, header, block_size, delimiter, rows);
    }
    if (delimiter != '"') {
        check_inspection(path, delimiter, content);
    }
    check_guess(path, content);
    return 0;
}
