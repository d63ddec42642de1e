#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ovik {

/// What the first lines of a delimited text say about its form: where its rows begin, which field
/// of a row is its name and which are no values. Fields count from 0.
///
/// A layout as it is made here is that of ordinary text: one header line, then a name and its
/// values per line.
struct TableLayout {
    /// What such files are called, such as "GCT file"; empty for ordinary text.
    std::string name;
    char delimiter = '\t';
    /// The delimiter that is guessed if none is given; none if there is nothing to guess.
    std::optional<char> guessed_delimiter;
    /// The decimal sign if the user gives one, else that of the thread's locale.
    std::optional<char> decimal;
    /// Lines of the file in front of the first that may be a row.
    std::size_t lines_above = 1;
    /// Empty fields with which every row opens and which are no columns: fields are counted behind
    /// them.
    std::size_t empty_front = 0;
    /// What the header calls each field of a row; empty if the file has no header.
    std::vector<std::string> header;
    /// The field of the names; none if rows have no names.
    std::optional<std::size_t> names_field = 0;
    /// Whether a field is neither name nor value. Fields behind the last one here are values.
    std::vector<bool> left_out;
    /// First fields of lines that are no rows, such as weights of the columns.
    std::vector<std::string> no_rows;
    /// The line that ends the table; empty: the file ends it.
    std::string end_mark;
    /// How many rows the file says it has.
    std::optional<std::size_t> promised_rows;
    /// What there is to tell the user of how the file is taken, a sentence each.
    std::vector<std::string> notes;
    /// What of it may not be as the user means it; opens with ":" and the line, or with ": ".
    std::vector<std::string> warnings;

    /// Whether a field is a value.
    [[nodiscard]] bool isValue(std::size_t field) const {
        return field != names_field && (field >= left_out.size() || !left_out[field]);
    }

    /// How many of the first fields of a row are values.
    [[nodiscard]] std::size_t valuesAmong(std::size_t fields) const;

    /// The field of each value of a row.
    [[nodiscard]] std::vector<std::size_t> valueFields(std::size_t values) const;

    /// Whether each row is a name and then its values, so that lines may be trimmed on the left.
    [[nodiscard]] bool isOrdinary() const { return names_field == 0 && left_out.empty(); }

    /// Marks a field as neither name nor value.
    void leaveOut(std::size_t field);

    /// What messages call a field: its header and its number, counted from 1.
    [[nodiscard]] std::string fieldText(std::size_t field) const;
};

/// What options call a column so that it cannot be another one: its header, or "#3" for field 3 if
/// the header is empty, a number, of several columns or not to be told apart in a list.
///
/// @param header  of all fields; may be shorter
/// @param field   from 0
std::string column_handle(const std::vector<std::string>& header, std::size_t field);

/// The same for a field that has no header: "#3" for field 3.
std::string field_handle(std::size_t field);

}  // namespace ovik
