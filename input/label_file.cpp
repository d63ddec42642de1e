#include "input/label_file.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

#include "input/row_texts.h"
#include "util/counted.h"
#include "util/input_error.h"

namespace ovik {

namespace {

struct Record {
    /// The line on which it begins.
    std::size_t line = 0;
    std::vector<std::string> fields;
};

/// What separates the fields of a table; nothing if the text is none.
std::optional<char> separator_of(const std::string& text) {
    std::vector<std::string> lines = lines_of(text);
    std::erase(lines, "");
    if (lines.size() < 2) {
        return std::nullopt;
    }
    const auto has = [](char c) {
        return [c](const std::string& line) { return line.find(c) != std::string::npos; };
    };
    if (std::any_of(lines.begin(), lines.begin() + 2, has('\t'))) {
        return '\t';
    }
    const bool is_comma = std::all_of(lines.begin() + 1, lines.end(), has(','));
    // Where semicolons separate, commas may be decimal ones; a header has none of those.
    const bool is_semicolon =
        std::all_of(lines.begin(), lines.end(), has(';')) && !(is_comma && has(',')(lines.front()));
    return is_semicolon ? std::optional(';') : is_comma ? std::optional(',') : std::nullopt;
}

/// Takes a text apart, record by record.
class RecordReader {
  public:
    RecordReader(const std::string& text, char separator, const std::string& path)
        : text_(text),
          separator_(separator),
          path_(path) {}

    [[nodiscard]] bool hasMore() const { return at_ < text_.size(); }

    Record next() {
        Record record{line_, {}};
        bool is_last = false;
        while (!is_last) {
            record.fields.push_back(isAt('"') ? quotedField() : plainField());
            is_last = !isAt(separator_);
            at_ += hasMore() ? 1 : 0;
        }
        ++line_;
        return record;
    }

  private:
    [[nodiscard]] bool isAt(char c) const { return hasMore() && text_[at_] == c; }

    /// Reads up to the separator or the end of the line.
    std::string plainField() {
        const std::size_t begin = at_;
        while (hasMore() && text_[at_] != separator_ && text_[at_] != '\n') {
            ++at_;
        }
        const bool has_return = !isAt(separator_) && at_ > begin && text_[at_ - 1] == '\r';
        return text_.substr(begin, at_ - begin - (has_return ? 1 : 0));
    }

    /// @throws InputError if nothing closes the quotes, or something stands behind them
    std::string quotedField() {
        const std::size_t first_line = line_;
        std::string field;
        for (++at_; !isAt('"') || isQuoteTwice(); ++at_) {
            if (!hasMore()) {
                refuse(first_line, "nothing closes the double quote that opens a field");
            }
            at_ += text_[at_] == '"' ? 1 : 0;
            line_ += text_[at_] == '\n' ? 1 : 0;
            field += text_[at_];
        }
        ++at_;
        if (!plainField().empty()) {
            refuse(first_line, "text stands behind the double quote that closes a field");
        }
        return field;
    }

    [[nodiscard]] bool isQuoteTwice() const {
        return at_ + 1 < text_.size() && text_[at_ + 1] == '"';
    }

    [[noreturn]] void refuse(std::size_t line, const std::string& reason) const {
        throw InputError(path_ + ", line " + std::to_string(line) + ": " + reason +
                         "\nQuote whole fields, and write quotes within them twice.");
    }

    const std::string& text_;
    char separator_;
    const std::string& path_;
    std::size_t at_ = 0;
    std::size_t line_ = 1;
};

std::vector<Record> read_records(const std::string& text, char separator, const std::string& path) {
    std::vector<Record> records;
    RecordReader reader(text, separator, path);
    while (reader.hasMore()) {
        Record record = reader.next();
        if (record.fields != std::vector<std::string>{""}) {
            records.push_back(std::move(record));
        }
    }
    return records;
}

/// Where texts stand in a file, for messages.
struct Places {
    /// What they are numbers of, such as "lines".
    const char* what;
    std::vector<std::size_t> numbers;
};

[[noreturn]] void refuse_twice(const std::string& path,
                               const std::string& text,
                               const std::string& places) {
    throw InputError(path + ": \"" + text + "\" stands in " + places +
                     "\nGive each name one line, and each column of labels a title of its own.");
}

/// @throws InputError if a text stands there twice
void check_once(const std::vector<std::string>& texts,
                const Places& places,
                const std::string& path) {
    std::map<std::string_view, std::size_t> first;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const auto [entry, is_new] = first.emplace(texts[i], places.numbers[i]);
        if (!is_new) {
            refuse_twice(path,
                         texts[i],
                         places.what + std::string(" ") + std::to_string(entry->second) + " and " +
                             std::to_string(places.numbers[i]));
        }
    }
}

void check_field_count(const Record& record,
                       std::size_t count,
                       char separator,
                       const std::string& path) {
    if (record.fields.size() != count) {
        throw InputError(path + ", line " + std::to_string(record.line) + ": has " +
                         counted(record.fields.size(), "field", "fields") +
                         ", the header stands for " + std::to_string(count) +
                         "\nGive each line a name and a label per column" +
                         (separator == '\t' ? ", separated by tabs."
                                            : std::string(", and put names that hold a ") +
                                                  (separator == ',' ? "comma" : "semicolon") +
                                                  " in double quotes."));
    }
}

LabelTable table_of(std::vector<Record> records, char separator, const std::string& path) {
    Record& header = records.front();
    // R writes no title above the names of rows.
    const bool is_untitled =
        std::all_of(records.begin() + 1, records.end(), [&header](const Record& record) {
            return record.fields.size() == header.fields.size() + 1;
        });
    const std::size_t field_count = header.fields.size() + (is_untitled ? 1 : 0);
    if (records.size() < 2 || field_count < 2) {
        throw InputError(path + ": holds no line of a name and its labels under a header of both");
    }
    LabelTable table;
    if (!is_untitled) {
        table.names_title = header.fields.front();
        header.fields.erase(header.fields.begin());
    }
    table.titles = std::move(header.fields);
    table.columns.resize(table.titles.size());
    for (std::size_t r = 1; r < records.size(); ++r) {
        check_field_count(records[r], field_count, separator, path);
        table.names.push_back(std::move(records[r].fields[0]));
        table.lines.push_back(records[r].line);
        for (std::size_t column = 0; column < table.columns.size(); ++column) {
            table.columns[column].push_back(std::move(records[r].fields[column + 1]));
        }
    }
    Places columns{"columns", {}};
    for (std::size_t column = 0; column < table.titles.size(); ++column) {
        columns.numbers.push_back(column + 2);
    }
    check_once(table.titles, columns, path);
    check_once(table.names, {"lines", table.lines}, path);
    return table;
}

}  // namespace

LabelFile read_label_file(const std::string& path, std::size_t row_count) {
    const std::string text = read_row_file(path, "label");
    LabelFile file;
    if (const std::optional<char> separator = separator_of(text)) {
        file.table = table_of(read_records(text, *separator, path), *separator, path);
    } else {
        file.labels = row_texts_of(text, path, row_count, "label");
    }
    return file;
}

}  // namespace ovik
