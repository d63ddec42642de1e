#include "input/date_names.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace ovik {

namespace {

constexpr std::size_t kListed = 3;

/// As they stand in names of genes.
constexpr std::array<std::string_view, 12> kMonths = {
    "JAN", "FEB", "MAR", "APR", "MAY", "JUN", "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

/// Reads digits off the front of a text.
///
/// @return the number of one that has `least` to `most` digits and no more
std::optional<int> take_number(std::string_view& text, std::size_t least, std::size_t most) {
    std::size_t digits = 0;
    int number = 0;
    while (digits < text.size() && digits <= most && is_digit(text[digits])) {
        number = 10 * number + (text[digits] - '0');
        ++digits;
    }
    if (digits < least || digits > most) {
        return std::nullopt;
    }
    text.remove_prefix(digits);
    return number;
}

/// Reads the first three letters of a month off the front of a text; none of them is a digit.
std::optional<std::string_view> take_month(std::string_view& text) {
    for (const std::string_view month : kMonths) {
        const auto is_letter = [](char letter, char c) { return c == letter || c == letter + 32; };
        if (text.size() >= month.size() &&
            std::equal(month.begin(), month.end(), text.begin(), is_letter)) {
            text.remove_prefix(month.size());
            return month;
        }
    }
    return std::nullopt;
}

bool take_dash(std::string_view& text) {
    const bool is_there = text.starts_with('-');
    text.remove_prefix(is_there ? 1 : 0);
    return is_there;
}

/// Whether nothing is left but the year that may follow a date: "-24", "-2024".
bool is_end_or_year(std::string_view text) {
    return text.empty() || (take_dash(text) && take_number(text, 2, 4) && text.empty());
}

std::optional<std::string> gene_of(std::string_view month, int day) {
    constexpr int kLongest = 31;
    return day >= 1 && day <= kLongest ? std::optional(std::string(month) + std::to_string(day))
                                       : std::nullopt;
}

/// "1-Oct", "1-Oct-24"
std::optional<std::string> of_day_and_month(std::string_view text) {
    const std::optional<int> day = take_number(text, 1, 2);
    if (!day || !take_dash(text)) {
        return std::nullopt;
    }
    const std::optional<std::string_view> month = take_month(text);
    return month && is_end_or_year(text) ? gene_of(*month, *day) : std::nullopt;
}

/// "Oct-01", "Oct-1"
std::optional<std::string> of_month_and_day(std::string_view text) {
    const std::optional<std::string_view> month = take_month(text);
    if (!month || !take_dash(text)) {
        return std::nullopt;
    }
    const std::optional<int> day = take_number(text, 1, 2);
    return day && is_end_or_year(text) ? gene_of(*month, *day) : std::nullopt;
}

/// "2024-10-01", also with a time behind it
std::optional<std::string> of_year_month_and_day(std::string_view text) {
    if (!take_number(text, 4, 4) || !take_dash(text)) {
        return std::nullopt;
    }
    const std::optional<int> month = take_number(text, 2, 2);
    if (!month || *month < 1 || *month > static_cast<int>(kMonths.size()) || !take_dash(text)) {
        return std::nullopt;
    }
    const std::optional<int> day = take_number(text, 2, 2);
    const bool ends = text.empty() || text.front() == ' ' || text.front() == 'T';
    return day && ends ? gene_of(kMonths[static_cast<std::size_t>(*month - 1)], *day)
                       : std::nullopt;
}

}  // namespace

std::optional<std::string> name_behind_date(std::string_view name) {
    for (const auto read : {of_day_and_month, of_month_and_day, of_year_month_and_day}) {
        if (std::optional<std::string> gene = read(name)) {
            return gene;
        }
    }
    return std::nullopt;
}

std::string date_names_warning(const std::string& path,
                               const std::vector<std::string>& names,
                               const std::vector<std::size_t>& lines) {
    std::string places;
    std::size_t dates = 0;
    for (std::size_t n = 0; n < names.size(); ++n) {
        const std::optional<std::string> gene = name_behind_date(names[n]);
        if (gene && ++dates <= kListed) {
            places += "  " +
                      (lines[n] == 0 ? "row " + std::to_string(n + 1)
                                     : "line " + std::to_string(lines[n])) +
                      ": \"" + names[n] + "\", which may have been " + *gene + "\n";
        }
    }
    if (dates == 0 || 2 * dates >= names.size()) {
        return "";
    }
    return path + ": " +
           (dates == 1 ? "a name is a date" : std::to_string(dates) + " names are dates") +
           ", as spreadsheets make of the names of genes\n" + places +
           (dates > kListed ? "  ...\n" : "") +
           "Set the names right in the file; in a spreadsheet, import their column as text.";
}

}  // namespace ovik
