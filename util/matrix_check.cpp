#include "util/matrix_check.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <unordered_set>
#include <utility>

#include "util/input_error.h"
#include "util/input_file.h"
#include "util/matrix_line.h"
#include "util/number_field.h"

namespace ovik {

namespace {

constexpr std::size_t kListed = 3;
constexpr std::size_t kRowsToGuessFrom = 20;

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw InputError(path + ": " + reason);
}

/// The compressed and the wide-character formats that users take for text.
void check_first_bytes(const std::string& path, std::string_view bytes) {
    if (bytes.starts_with("\x1f\x8b")) {
        refuse(path, "this is a gzip archive: unpack it first (gunzip)");
    }
    if (bytes.starts_with("PK\x03\x04")) {
        refuse(path,
               "this is a zip archive or a spreadsheet: save the sheet as tab-separated text");
    }
    if (bytes.starts_with("\xff\xfe") || bytes.starts_with("\xfe\xff")) {
        refuse(path, "this is UTF-16 text: save it as UTF-8 or plain ASCII");
    }
}

/// Opens the file after the checks that its opening does not make.
std::ifstream open_matrix(const std::string& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) {
        refuse(path, "there is no such file");
    }
    if (std::filesystem::is_directory(status)) {
        refuse(path, "this is a directory: name the matrix file in it");
    }
    if (!std::filesystem::is_regular_file(status)) {
        refuse(path,
               "this is no regular file, and the matrix is read twice: save it to a file first");
    }
    std::ifstream file = open_input_file(path);
    if (!file.is_open()) {
        refuse(path, "cannot be read (" + std::generic_category().message(errno) + ")");
    }
    char bytes[4] = {};
    file.read(bytes, sizeof bytes);
    check_first_bytes(path, {bytes, static_cast<std::size_t>(file.gcount())});
    file.clear();
    file.seekg(0);
    return file;
}

enum class FieldKind { Number, Empty, NotNumber, TextBehind, NotFinite };

FieldKind classify(const char* field, const char* end, double& value) {
    constexpr const char* kBlanks = " \t\v\f\r";
    static const NumberReader kNumbers;
    const char* rest = nullptr;
    value = kNumbers.read(field, end, rest);
    if (rest == field) {
        return field[std::strspn(field, kBlanks)] == '\0' ? FieldKind::Empty : FieldKind::NotNumber;
    }
    if (!std::isfinite(value)) {
        return FieldKind::NotFinite;
    }
    return rest[std::strspn(rest, kBlanks)] == '\0' ? FieldKind::Number : FieldKind::TextBehind;
}

/// Whether a discarded first line is more likely a row: all its values are numbers, and they are
/// not what measurements are headed with, which is whole or rising numbers (time points, doses).
bool looks_like_data(std::string line, char delimiter) {
    trim_matrix_line(line);
    if (!is_matrix_row(line)) {
        return false;
    }
    std::vector<double> values;
    bool all_numbers = true;
    bool at_name = true;
    for_each_matrix_field(line, delimiter, [&](const char* field, const char* end) {
        double value = 0.0;
        all_numbers = all_numbers && (at_name || classify(field, end, value) == FieldKind::Number);
        if (!at_name) {
            values.push_back(value);
        }
        at_name = false;
    });
    const bool all_whole =
        std::all_of(values.begin(), values.end(), [](double v) { return v == std::floor(v); });
    return all_numbers && !all_whole && !std::is_sorted(values.begin(), values.end());
}

/// Goes through the rows of a file and notes what a reader of numbers would not say.
class Inspection {
  public:
    Inspection(std::string path, char delimiter) : path_(std::move(path)), delimiter_(delimiter) {}

    void addLine(std::string& line) {
        ++line_number_;
        if (line.find('\0') != std::string::npos) {
            refuse(path_ + ":" + std::to_string(line_number_),
                   "the line holds a NUL byte, so this is no text file");
        }
        if (line_number_ == 1) {
            report_.header_looks_like_data = looks_like_data(line, delimiter_);
            return;
        }
        opens_with_delimiter_ = line.starts_with(delimiter_);
        trim_matrix_line(line);
        opens_with_delimiter_ = opens_with_delimiter_ && !line.starts_with(delimiter_);
        if (is_matrix_row(line)) {
            addRow(line);
        }
    }

    [[nodiscard]] MatrixReport report() { return std::move(report_); }

  private:
    void addRow(std::string& line) {
        values_.clear();
        field_ = 0;
        for_each_matrix_field(line, delimiter_, [&](const char* field, const char* end) {
            ++field_;
            if (field_ == 1) {
                name_.assign(field, end);
            } else {
                addValue(field, end);
            }
        });
        if (report_.rows == 0) {
            first_row_ = values_;
            report_.columns = values_.size();
        }
        ++report_.rows;
        report_.rows_all_equal = report_.rows_all_equal && values_ == first_row_;
        noteName();
        noteLength();
        noteScale();
    }

    void addValue(const char* field, const char* end) {
        double value = 0.0;
        const FieldKind kind = classify(field, end, value);
        values_.push_back(value);
        report_.numbers += kind != FieldKind::Empty && kind != FieldKind::NotNumber ? 1 : 0;
        if (kind == FieldKind::Empty) {
            note(report_.empty, field);
        } else if (kind == FieldKind::NotNumber) {
            note(report_.not_numbers, field);
        } else if (kind == FieldKind::TextBehind) {
            note(report_.with_text_behind, field);
        } else if (kind == FieldKind::NotFinite) {
            note(report_.not_finite, field);
        }
    }

    void note(FieldFindings& findings, const char* field) const {
        if (findings.count == 0) {
            findings.first = {line_number_, name_, field_, field};
        }
        ++findings.count;
    }

    void noteName() {
        double value = 0.0;
        field_ = 1;
        if (opens_with_delimiter_ &&
            classify(name_.c_str(), name_.c_str() + name_.size(), value) == FieldKind::Number) {
            note(report_.lost_names, "");
        }
        if (name_.empty()) {
            note(report_.unnamed, "");
        } else if (!names_.insert(name_).second) {
            ++report_.duplicate_names;
            if (report_.first_duplicate_names.size() < kListed) {
                report_.first_duplicate_names.push_back(name_);
            }
        }
    }

    void noteLength() {
        if (values_.size() != report_.columns) {
            ++report_.ragged_rows;
            if (report_.first_ragged_rows.size() < kListed) {
                report_.first_ragged_rows.push_back({line_number_, name_, values_.size()});
            }
        }
    }

    void noteScale() {
        const std::size_t columns = std::min(values_.size(), first_row_.size());
        if (report_.rows == 1) {
            lowest_ = values_;
            highest_ = values_;
        }
        for (std::size_t d = 0; d < columns; ++d) {
            lowest_[d] = std::min(lowest_[d], values_[d]);
            highest_[d] = std::max(highest_[d], values_[d]);
            report_.largest_magnitude = std::max(report_.largest_magnitude, std::fabs(values_[d]));
            report_.widest_range = std::max(report_.widest_range, highest_[d] - lowest_[d]);
        }
    }

    std::string path_;
    char delimiter_;
    MatrixReport report_;
    std::size_t line_number_ = 0;
    bool opens_with_delimiter_ = false;
    std::string name_;
    std::size_t field_ = 0;
    std::vector<double> values_;
    std::vector<double> first_row_;
    /// Of each column.
    std::vector<double> lowest_;
    std::vector<double> highest_;
    std::unordered_set<std::string> names_;
};

std::size_t count_numbers(std::string line, char delimiter) {
    std::size_t numbers = 0;
    bool at_name = true;
    for_each_matrix_field(line, delimiter, [&](const char* field, const char* end) {
        double value = 0.0;
        const FieldKind kind = classify(field, end, value);
        // Decimal commas leave text behind every number; they are more likely than values that
        // are parted by them.
        const bool counts = kind == FieldKind::Number || kind == FieldKind::TextBehind;
        numbers += !at_name && counts ? 1 : 0;
        at_name = false;
    });
    return numbers;
}

/// The first rows of a file, trimmed, to guess the delimiter from.
std::vector<std::string> first_rows(const std::string& path) {
    std::ifstream file = open_matrix(path);
    std::vector<std::string> rows;
    std::string line;
    std::getline(file, line);
    while (rows.size() < kRowsToGuessFrom && std::getline(file, line)) {
        trim_matrix_line(line);
        if (is_matrix_row(line)) {
            rows.push_back(line);
        }
    }
    return rows;
}

}  // namespace

MatrixReport inspect_matrix(const std::string& path, char delimiter) {
    return with_read_failures_named(path, [&] {
        std::ifstream file = open_matrix(path);
        Inspection inspection(path, delimiter);
        std::string line;
        while (std::getline(file, line)) {
            inspection.addLine(line);
        }
        return inspection.report();
    });
}

char guess_delimiter(const std::string& path) {
    constexpr char kCandidates[] = {'\t', ';', ',', ' '};
    std::size_t numbers[std::size(kCandidates)] = {};
    const auto rows = with_read_failures_named(path, [&] { return first_rows(path); });
    for (const std::string& line : rows) {
        for (std::size_t i = 0; i < std::size(kCandidates); ++i) {
            numbers[i] += count_numbers(line, kCandidates[i]);
        }
    }
    const auto* const most = std::max_element(std::begin(numbers), std::end(numbers));
    if (*most == 0) {
        refuse(
            path,
            "found no numbers behind the first line, with tab, comma, semicolon or blank between "
            "the fields: every line should be a name and its values (another delimiter can be "
            "given with --delimiter)");
    }
    return kCandidates[most - std::begin(numbers)];
}

}  // namespace ovik
