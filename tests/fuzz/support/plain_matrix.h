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

}  // namespace ovik::test
