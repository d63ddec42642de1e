#pragma once

#include <string>
#include <string_view>

/// How a spreadsheet shows a number as a date.

namespace ovik {

/// What of a date a number format shows.
enum class DateFormat {
    /// The number is no date.
    None,
    /// "1-Oct"
    DayAndMonth,
    /// "Oct-24"
    MonthAndYear,
    /// Any other form of date or time of day.
    Other,
};

/// What a format code such as "d\-mmm" or "0.00" shows.
DateFormat date_format_of(std::string_view code);

/// The same of a format that workbooks call by its number alone.
DateFormat date_format_of(int builtin);

/// A date as the sheet shows it, or as "2024-10-01" for other forms. English, whatever the locale.
///
/// @param serial      days since the start of the workbook's calendar
/// @param since_1904  whether that is 1904-01-01, else it is 1899-12-31 with a 29th of February
/// 1900
/// @return empty for what is beyond the years 1900 to 9999
std::string date_text(double serial, bool since_1904, DateFormat format);

}  // namespace ovik
