#include "input/market_entries.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string>
#include <utility>
#include <vector>

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
    MarketReader(std::string name, MarketSink& sink) : name_(std::move(name)), sink_(sink) {}

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

    void finish() const {
        if (!has_size_) {
            refuse("the line with the size of the matrix is missing");
        }
        if (entries_ < head_.entries) {
            refuse("the file holds " + std::to_string(entries_) +
                   " entries, and its size line says " + std::to_string(head_.entries) +
                   ": it was cut off");
        }
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
        head_.is_sparse = word(2) == "coordinate";
        head_.is_pattern = word(3) == "pattern";
        if (word(3) != "real" && word(3) != "integer" && word(3) != "double" &&
            !(head_.is_pattern && head_.is_sparse)) {
            refuse("the entries are \"" + word(3) + "\", and real or integer ones are needed");
        }
        head_.is_symmetric = word(4) == "symmetric" || word(4) == "skew-symmetric";
        head_.mirror_sign = word(4) == "skew-symmetric" ? -1.0 : 1.0;
        if (!head_.is_symmetric && word(4) != "general") {
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
        if (words.size() != (head_.is_sparse ? 3 : 2)) {
            refuse(head_.is_sparse ? "the size should be rows, columns and entries"
                                   : "the size should be rows and columns");
        }
        const std::size_t rows = readCount(words[0]);
        const std::size_t columns = readCount(words[1]);
        const std::size_t most = std::numeric_limits<std::ptrdiff_t>::max() / 8;
        if (columns != 0 && rows > most / columns) {
            refuse("the matrix is larger than any memory");
        }
        if (head_.is_symmetric && rows != columns) {
            refuse("a symmetric matrix has as many rows as columns");
        }
        // The file of a symmetric matrix gives its lower triangle; that of a skew-symmetric one
        // leaves the diagonal out.
        const std::size_t triangle = head_.mirror_sign < 0.0
                                         ? rows * (std::max<std::size_t>(rows, 1) - 1) / 2
                                         : rows * (rows + 1) / 2;
        head_.entries = head_.is_sparse      ? readCount(words[2])
                        : head_.is_symmetric ? triangle
                                             : rows * columns;
        head_.rows = rows;
        head_.columns = columns;
        sink_.begin(head_);
        row_ = head_.mirror_sign < 0.0 ? 1 : 0;
        has_size_ = true;
    }

    void readEntry(const std::vector<std::string>& words) {
        if (entries_++ == head_.entries) {
            refuse("there are more entries than the size line says");
        }
        if (words.size() != (head_.is_sparse ? 2U : 0U) + (head_.is_pattern ? 0U : 1U)) {
            refuse(head_.is_sparse ? "an entry should be its row, its column and its value"
                                   : "a line should hold one value");
        }
        if (head_.is_sparse) {
            row_ = readIndex(words[0], head_.rows, "row");
            column_ = readIndex(words[1], head_.columns, "column");
        }
        const std::string& text = words.back();
        sink_.add({row_, column_, head_.is_pattern ? 1.0 : readValue(text), line_, text});
        if (!head_.is_sparse) {
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
        return value;
    }

    /// To the next entry of a dense matrix, which goes down its columns.
    void stepDown() {
        if (++row_ == head_.rows) {
            ++column_;
            row_ = !head_.is_symmetric ? 0 : head_.mirror_sign < 0.0 ? column_ + 1 : column_;
        }
    }

    std::string name_;
    NumberReader numbers_;
    MarketSink& sink_;
    MarketHead head_;
    std::size_t line_ = 0;
    bool has_size_ = false;
    std::size_t entries_ = 0;
    /// The place of the entry that comes next, or came last.
    std::size_t row_ = 0;
    std::size_t column_ = 0;
};

}  // namespace

bool opens_sparse_market(std::string_view head) {
    const std::vector<std::string> words =
        words_of(lower_case(std::string(head.substr(0, head.find('\n')))));
    return words.size() > 2 && words[0] == "%%matrixmarket" && words[2] == "coordinate";
}

void read_market_entries(MatrixSource& source, MarketSink& sink) {
    constexpr std::size_t kBlockBytes = std::size_t{1} << 20U;
    MarketReader reader(source.name(), sink);
    with_read_failures_named(source.name(), [&] {
        LineBlocks blocks(source.rest(), kBlockBytes, source.takeHead());
        std::string block;
        while (blocks.next(block)) {
            for_each_line(block, [&](std::string_view line) { reader.addLine(line); });
        }
        reader.finish();
    });
}

}  // namespace ovik
