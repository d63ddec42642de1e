#include "input/number_format.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>

namespace ovik {

namespace {

/// The letters of a code that are no literal text, in small letters, of its first section.
std::string pattern_letters(std::string_view code) {
    std::string letters;
    for (std::size_t i = 0; i < code.size() && code[i] != ';'; ++i) {
        const char c = code[i];
        if (c == '\\' || c == '_' || c == '*') {
            ++i;
        } else if (c == '"' || c == '[') {
            const std::size_t end = code.find(c == '"' ? '"' : ']', i + 1);
            i = end == std::string_view::npos ? code.size() : end;
        } else if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')) {
            letters += static_cast<char>(c >= 'a' ? c : c - 'A' + 'a');
        }
    }
    return letters;
}

constexpr std::array<const char*, 12> kMonths = {
    "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

}  // namespace

DateFormat date_format_of(std::string_view code) {
    const std::string letters = pattern_letters(code);
    if (letters == "general" || letters.find_first_of("dmyhs") == std::string::npos) {
        return DateFormat::None;
    }
    const auto has = [&letters](char c) { return letters.find(c) != std::string::npos; };
    if (has('h') || has('s') || !has('m')) {
        return DateFormat::Other;
    }
    if (has('d') != has('y')) {
        return has('d') ? DateFormat::DayAndMonth : DateFormat::MonthAndYear;
    }
    return DateFormat::Other;
}

DateFormat date_format_of(int builtin) {
    constexpr int kDayAndMonth = 16;
    constexpr int kMonthAndYear = 17;
    if (builtin == kDayAndMonth) {
        return DateFormat::DayAndMonth;
    }
    if (builtin == kMonthAndYear) {
        return DateFormat::MonthAndYear;
    }
    // ECMA-376 part 1, 18.8.30; those from 27 on depend on the language, and are all dates.
    const auto is_within = [builtin](int first, int last) {
        return builtin >= first && builtin <= last;
    };
    return is_within(14, 22) || is_within(27, 36) || is_within(45, 47) || is_within(50, 58)
               ? DateFormat::Other
               : DateFormat::None;
}

std::string date_text(double serial, bool since_1904, DateFormat format) {
    using std::chrono::days;
    using std::chrono::sys_days;
    using std::chrono::year;
    constexpr double kLast = 2958465.0;
    if (!(serial >= 0.0 && serial <= kLast)) {
        return "";
    }
    const auto whole = static_cast<int>(std::floor(serial));
    constexpr int kFalseLeapDay = 60;
    const sys_days start = since_1904              ? sys_days(year(1904) / 1 / 1)
                           : whole < kFalseLeapDay ? sys_days(year(1899) / 12 / 31)
                                                   : sys_days(year(1899) / 12 / 30);
    const std::chrono::year_month_day date(start + days(whole));
    const auto day = static_cast<unsigned>(date.day());
    const auto month = static_cast<unsigned>(date.month());
    const auto year_number = static_cast<int>(date.year());
    char text[40];
    if (format == DateFormat::DayAndMonth) {
        std::snprintf(text, sizeof text, "%u-%s", day, kMonths[month - 1]);
    } else if (format == DateFormat::MonthAndYear) {
        std::snprintf(text, sizeof text, "%s-%02d", kMonths[month - 1], year_number % 100);
    } else {
        std::snprintf(text, sizeof text, "%04d-%02u-%02u", year_number, month, day);
    }
    return text;
}

}  // namespace ovik
