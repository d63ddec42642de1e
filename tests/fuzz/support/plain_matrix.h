#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// The rules of matrix files once more, as plainly as they can be written.

namespace ovik::test {

struct PlainField {
    std::string text;
    double value = 0.0;
    /// What stands behind the number; the whole text if it opens with none.
    std::string rest;

    explicit PlainField(const std::string& text) : text(text) {
        char* behind = nullptr;
        value = std::strtod(this->text.c_str(), &behind);
        rest = behind;
    }

    [[nodiscard]] bool isNumber() const { return rest.size() < text.size(); }

    [[nodiscard]] bool hasBlankRest() const {
        return rest.find_first_not_of(" \t\v\f\r") == std::string::npos;
    }

    /// Whether it is blank or a sign of a missing value.
    [[nodiscard]] bool isMissing() const {
        static const std::set<std::string> kSigns = {
            "", "na", "n/a", "#n/a", "nan", "null", "none", "-", "--", ".", "?"};
        std::string sign;
        for (const char c : text) {
            sign += c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        }
        sign.erase(0, sign.find_first_not_of(" \t\v\f\r"));
        while (!sign.empty() && std::string_view(" \t\v\f\r").find(sign.back()) < 5) {
            sign.pop_back();
        }
        return kSigns.contains(sign);
    }
};

struct PlainRow {
    /// From 1.
    std::size_t line = 0;
    /// Whether a delimiter at the start of the line was trimmed away.
    bool lost_its_name = false;
    std::string name;
    std::vector<PlainField> fields;
    /// Fields that there would be if trimming had left the end of the line.
    std::size_t untrimmed_fields = 0;

    [[nodiscard]] std::vector<double> values() const {
        std::vector<double> result;
        for (const PlainField& field : fields) {
            result.push_back(field.value);
        }
        return result;
    }
};

/// The lines of a text, without their line feeds.
inline std::vector<std::string> plain_lines(std::string_view text) {
    std::vector<std::string> lines;
    bool is_open = false;
    for (const char c : text) {
        if (!is_open) {
            lines.emplace_back();
        }
        is_open = c != '\n';
        if (is_open) {
            lines.back() += c;
        }
    }
    return lines;
}

inline std::string plain_trimmed_front(std::string line) {
    for (const char kind : {'\t', '\v', '\f', ' '}) {
        while (!line.empty() && line.front() == kind) {
            line.erase(line.begin());
        }
    }
    return line;
}

inline std::string plain_trimmed(const std::string& whole_line) {
    std::string line = plain_trimmed_front(whole_line);
    for (const char kind : {'\t', '\n', '\v', '\f', '\r', ' '}) {
        while (!line.empty() && line.back() == kind) {
            line.pop_back();
        }
    }
    return line.c_str();  // up to the first NUL
}

inline std::vector<std::string> plain_split(std::string_view line, char delimiter) {
    std::vector<std::string> fields;
    bool is_open = false;
    for (const char c : line) {
        if (!is_open) {
            fields.emplace_back();
        }
        is_open = c != delimiter;
        if (is_open) {
            fields.back() += c;
        }
    }
    return fields;
}

/// The rows behind the first `header` lines.
inline std::vector<PlainRow> plain_rows(std::string_view text, std::size_t header, char delimiter) {
    std::vector<PlainRow> rows;
    const std::vector<std::string> lines = plain_lines(text);
    for (std::size_t i = header; i < lines.size(); ++i) {
        const std::string line = plain_trimmed(lines[i]);
        if (line.empty() || line[0] == '#') {
            continue;
        }
        const std::vector<std::string> fields = plain_split(line, delimiter);
        PlainRow row;
        row.line = i + 1;
        row.lost_its_name = lines[i][0] == delimiter && line[0] != delimiter;
        row.name = fields[0];
        const std::string from_name = plain_trimmed_front(lines[i]);
        row.untrimmed_fields =
            static_cast<std::size_t>(std::count(from_name.begin(), from_name.end(), delimiter));
        for (std::size_t f = 1; f < fields.size(); ++f) {
            row.fields.emplace_back(fields[f]);
        }
        rows.push_back(row);
    }
    return rows;
}

/// The field that opens with a quote at a place of a text: where the quote is closed, and whether
/// nothing but blanks stands between that and the end of the field.
struct PlainQuote {
    bool is_closed = false;
    std::size_t close = 0;
    bool ends_field = false;
};

inline PlainQuote plain_quote(const std::string& text, std::size_t open, char delimiter) {
    PlainQuote quote;
    for (std::size_t i = open + 1; i < text.size() && !quote.is_closed; ++i) {
        if (text[i] == '"' && i + 1 < text.size() && text[i + 1] == '"') {
            ++i;
        } else if (text[i] == '"') {
            quote.is_closed = true;
            quote.close = i;
        }
    }
    std::size_t behind = quote.close + 1;
    while (behind < text.size() && text[behind] != delimiter &&
           std::string_view(" \t\v\f\r").find(text[behind]) != std::string_view::npos) {
        ++behind;
    }
    quote.ends_field = quote.is_closed &&
                       (behind >= text.size() || text[behind] == delimiter || text[behind] == '\n');
    return quote;
}

enum class PlainRecordState { Whole, Open, Bad };

/// Whether some lines are a record: not if a quote is open at their end, nor if one is closed amid
/// a field that would end or begin another line without it.
inline PlainRecordState plain_record_state(const std::string& lines, char delimiter) {
    const std::string text = plain_trimmed_front(lines);
    std::size_t at = 0;
    while (at < text.size()) {
        if (text[at] == '"') {
            const PlainQuote quote = plain_quote(text, at, delimiter);
            if (!quote.is_closed) {
                return PlainRecordState::Open;
            }
            const std::string within = text.substr(at, quote.close - at);
            if (!quote.ends_field && (within.find(delimiter) != std::string::npos ||
                                      within.find('\n') != std::string::npos)) {
                return PlainRecordState::Bad;
            }
            at = quote.close + 1;
        }
        at = std::min(text.find(delimiter, at), text.size() - 1) + 1;
    }
    return PlainRecordState::Whole;
}

/// The fields of a record without their quotes.
inline std::vector<std::string> plain_split_record(const std::string& text, char delimiter) {
    std::vector<std::string> fields;
    std::size_t at = 0;
    while (at < text.size()) {
        const PlainQuote quote = text[at] == '"' ? plain_quote(text, at, delimiter) : PlainQuote();
        std::string field;
        std::size_t end = 0;
        if (quote.ends_field) {
            for (std::size_t i = at + 1; i < quote.close; ++i) {
                const bool is_first_of_two = (text[i] == '"' && text[i + 1] == '"') ||
                                             (text[i] == '\r' && text[i + 1] == '\n');
                i += is_first_of_two ? 1 : 0;
                field += text[i] == '\n' ? ' ' : text[i];
            }
            end = std::min(text.find(delimiter, quote.close), text.size());
        } else {
            end = std::min(text.find(delimiter, at), text.size());
            field = text.substr(at, end - at);
        }
        fields.push_back(field);
        at = end + 1;
    }
    return fields;
}

/// Rows of a text whose fields may stand in quotes.
struct PlainRecords {
    std::vector<PlainRow> rows;
    bool has_bad_quote = false;
};

inline PlainRecords plain_records(std::string_view text, std::size_t header, char delimiter) {
    PlainRecords records;
    const std::vector<std::string> lines = plain_lines(text);
    for (std::size_t i = header; i < lines.size(); ++i) {
        const std::string first = plain_trimmed(lines[i]);
        if (first.find_first_not_of(delimiter) == std::string::npos || first[0] == '#') {
            continue;
        }
        const std::size_t line = i;
        std::string record = lines[i];
        while (plain_record_state(record, delimiter) == PlainRecordState::Open &&
               i + 1 < lines.size()) {
            record += "\n" + lines[++i];
        }
        if (plain_record_state(record, delimiter) != PlainRecordState::Whole) {
            records.has_bad_quote = true;
            i = line;
            record = lines[i];
        }
        const std::string trimmed = plain_trimmed(record);
        const std::vector<std::string> fields = plain_split_record(trimmed, delimiter);
        PlainRow row;
        row.line = line + 1;
        row.lost_its_name = record[0] == delimiter && trimmed[0] != delimiter;
        row.name = fields[0];
        const std::string tail = record.substr(record.find(trimmed) + trimmed.size());
        row.untrimmed_fields =
            fields.size() - (trimmed.back() == delimiter ? 0 : 1) +
            static_cast<std::size_t>(std::count(tail.begin(), tail.end(), delimiter));
        for (std::size_t f = 1; f < fields.size(); ++f) {
            row.fields.emplace_back(fields[f]);
        }
        records.rows.push_back(row);
    }
    return records;
}

}  // namespace ovik::test
