#include "input/matrix_market.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

#include "util/input_error.h"
#include "util/input_file.h"
#include "util/line_blocks.h"
#include "util/number_field.h"

namespace ovik {

namespace {

/// The words of a line.
std::vector<std::string> words_of(std::string_view line) {
    constexpr std::string_view kBlanks = " \t\r\v\f";
    std::vector<std::string> words;
    while (true) {
        const std::size_t begin = line.find_first_not_of(kBlanks);
        if (begin == std::string_view::npos) {
            return words;
        }
        const std::size_t end = std::min(line.find_first_of(kBlanks, begin), line.size());
        words.emplace_back(line.substr(begin, end - begin));
        line.remove_prefix(end);
    }
}

std::string lower_case(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return text;
}

/// Takes the lines of a file, one after the other.
class MarketReader {
  public:
    explicit MarketReader(std::string name) : name_(std::move(name)) {}

    void addLine(std::string_view line) {
        ++line_;
        if (line_ == 1) {
            readBanner(line);
            return;
        }
        if (line.starts_with('%')) {
            return;
        }
        const std::vector<std::string> words = words_of(line);
        if (words.empty()) {
            return;
        }
        if (!has_size_) {
            readSize(words);
        } else {
            readEntry(words);
        }
    }

    InspectedMatrix take() {
        if (!has_size_) {
            refuse("the line with the size of the matrix is missing");
        }
        if (entries_ < expected_) {
            refuse("the file holds " + std::to_string(entries_) +
                   " entries, and its size line says " + std::to_string(expected_) +
                   ": it was cut off");
        }
        return std::move(matrix_);
    }

  private:
    [[noreturn]] void refuse(const std::string& reason) const {
        throw InputError(name_ + ":" + std::to_string(line_) + ": " + reason);
    }

    void readBanner(std::string_view line) {
        const std::vector<std::string> words = words_of(lower_case(std::string(line)));
        const auto word = [&](std::size_t i) { return i < words.size() ? words[i] : ""; };
        if (word(1) != "matrix" || (word(2) != "array" && word(2) != "coordinate")) {
            refuse(
                "a file of this format opens with \"%%MatrixMarket matrix array\" or \"... "
                "coordinate\"");
        }
        is_sparse_ = word(2) == "coordinate";
        is_pattern_ = word(3) == "pattern";
        if (word(3) != "real" && word(3) != "integer" && word(3) != "double" &&
            !(is_pattern_ && is_sparse_)) {
            refuse("the entries are \"" + word(3) + "\", and real or integer ones are needed");
        }
        is_symmetric_ = word(4) == "symmetric" || word(4) == "skew-symmetric";
        mirror_sign_ = word(4) == "skew-symmetric" ? -1.0 : 1.0;
        if (!is_symmetric_ && word(4) != "general") {
            refuse("the matrix is \"" + word(4) + "\", and general or symmetric ones are needed");
        }
    }

    [[nodiscard]] std::size_t readCount(const std::string& word) const {
        std::size_t count = 0;
        const auto [rest, error] = std::from_chars(word.data(), word.data() + word.size(), count);
        if (error != std::errc() || rest != word.data() + word.size()) {
            refuse("\"" + word + "\" should be a whole number");
        }
        return count;
    }

    void readSize(const std::vector<std::string>& words) {
        if (words.size() != (is_sparse_ ? 3 : 2)) {
            refuse(is_sparse_ ? "the size should be rows, columns and entries"
                              : "the size should be rows and columns");
        }
        const std::size_t rows = readCount(words[0]);
        const std::size_t columns = readCount(words[1]);
        const std::size_t most = std::numeric_limits<std::ptrdiff_t>::max() / 8;
        if (columns != 0 && rows > most / columns) {
            refuse("the matrix is larger than any memory");
        }
        if (is_symmetric_ && rows != columns) {
            refuse("a symmetric matrix has as many rows as columns");
        }
        // The file of a symmetric matrix gives its lower triangle; that of a skew-symmetric one
        // leaves the diagonal out.
        const std::size_t triangle = mirror_sign_ < 0.0
                                         ? rows * (std::max<std::size_t>(rows, 1) - 1) / 2
                                         : rows * (rows + 1) / 2;
        expected_ = is_sparse_ ? readCount(words[2]) : is_symmetric_ ? triangle : rows * columns;
        matrix_.report.rows = rows;
        matrix_.report.columns = columns;
        matrix_.values = std::make_unique<double[]>(rows * columns);
        row_ = mirror_sign_ < 0.0 ? 1 : 0;
        has_size_ = true;
    }

    void readEntry(const std::vector<std::string>& words) {
        if (entries_++ == expected_) {
            refuse("there are more entries than the size line says");
        }
        if (words.size() != (is_sparse_ ? 2U : 0U) + (is_pattern_ ? 0U : 1U)) {
            refuse(is_sparse_ ? "an entry should be its row, its column and its value"
                              : "a line should hold one value");
        }
        if (is_sparse_) {
            row_ = readIndex(words[0], matrix_.report.rows, "row");
            column_ = readIndex(words[1], matrix_.report.columns, "column");
        }
        add(is_pattern_ ? 1.0 : readValue(words.back()));
        if (!is_sparse_) {
            stepDown();
        }
    }

    /// @return the index, counted from 0
    [[nodiscard]] std::size_t readIndex(const std::string& word,
                                        std::size_t extent,
                                        const std::string& what) const {
        const std::size_t index = readCount(word);
        if (index < 1 || index > extent) {
            refuse(what + " " + word + " is not one of 1 to " + std::to_string(extent));
        }
        return index - 1;
    }

    double readValue(const std::string& word) {
        const char* rest = nullptr;
        const double value = numbers_.read(word.c_str(), word.c_str() + word.size(), rest);
        if (*rest != '\0' || rest == word.c_str()) {
            refuse("\"" + word + "\" should be a number");
        }
        if (std::isinf(value) && matrix_.report.not_finite.count++ < FieldFindings::kListed) {
            matrix_.report.not_finite.places.push_back(
                {line_, std::to_string(row_ + 1), column_ + 1, word});
        }
        return value;
    }

    // NOLINTNEXTLINE(readability-make-member-function-const): it changes the matrix
    void add(double value) {
        const std::size_t columns = matrix_.report.columns;
        matrix_.values[row_ * columns + column_] += value;
        if (is_symmetric_ && row_ != column_) {
            matrix_.values[column_ * columns + row_] += mirror_sign_ * value;
        }
    }

    /// To the next entry of a dense matrix, which goes down its columns.
    void stepDown() {
        if (++row_ == matrix_.report.rows) {
            ++column_;
            row_ = !is_symmetric_ ? 0 : mirror_sign_ < 0.0 ? column_ + 1 : column_;
        }
    }

    std::string name_;
    NumberReader numbers_;
    InspectedMatrix matrix_;
    std::size_t line_ = 0;
    bool is_sparse_ = false;
    bool is_pattern_ = false;
    bool is_symmetric_ = false;
    double mirror_sign_ = 1.0;
    bool has_size_ = false;
    std::size_t expected_ = 0;
    std::size_t entries_ = 0;
    /// The place of the entry that comes next, or came last.
    std::size_t row_ = 0;
    std::size_t column_ = 0;
};

}  // namespace

InspectedMatrix read_matrix_market(MatrixSource& source) {
    constexpr std::size_t kBlockBytes = std::size_t{1} << 20U;
    MarketReader reader(source.name());
    return with_read_failures_named(source.name(), [&] {
        LineBlocks blocks(source.rest(), kBlockBytes, source.takeHead());
        std::string block;
        while (blocks.next(block)) {
            for_each_line(block, [&](std::string_view line) { reader.addLine(line); });
        }
        return reader.take();
    });
}

}  // namespace ovik
