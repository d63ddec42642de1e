#include "input/layout_of.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "input/field_kind.h"
#include "input/header_line.h"
#include "input/known_layouts.h"
#include "input/table_head.h"
#include "util/counted.h"
#include "util/input_error.h"

namespace ovik {

namespace {

/// The columns that there are, for a message: the first few.
std::string columns_text(const TableHead& head) {
    constexpr std::size_t kListed = 8;
    if (head.header.empty()) {
        return "There is no header, and the fields have numbers from " + field_handle(0) + ".";
    }
    std::string text = "The columns are ";
    for (std::size_t field = 0; field < std::min(kListed, head.header.size()); ++field) {
        text += (field == 0 ? "" : ", ") + (head.header[field].empty()
                                                ? "field " + std::to_string(field + 1)
                                                : "\"" + head.header[field] + "\"");
    }
    return text + (head.header.size() > kListed ? ", ...; " : "; ") + "\"" + field_handle(0) +
           "\" is always the first.";
}

/// The number of a field by its text, from 0; none if it is none.
std::optional<std::size_t> field_by_number(std::string_view text, std::size_t fields) {
    std::size_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end && number >= 1 && number <= fields
               ? std::optional(number - 1)
               : std::nullopt;
}

/// The field of a column that the user names by "#" and its number, by its header, or else by its
/// number alone.
///
/// @param option  that names it
/// @throws InputError if there is none, or more than one
std::size_t field_of(const std::string& path,
                     const std::string& column,
                     const std::string& option,
                     const TableHead& head) {
    const std::size_t fields = std::max(head.row_fields, head.header.size());
    if (column.starts_with('#')) {
        if (const auto field = field_by_number(std::string_view(column).substr(1), fields)) {
            return *field;
        }
    }
    const auto is_it = [&column](const std::string& header) {
        return without_blanks(header) == without_blanks(column);
    };
    const auto found = std::find_if(head.header.begin(), head.header.end(), is_it);
    if (found == head.header.end()) {
        if (const std::optional<std::size_t> field = field_by_number(column, fields)) {
            return *field;
        }
        throw InputError(path + ": there is no column \"" + column + "\" (" + option + ")\n" +
                         columns_text(head));
    }
    const auto field = static_cast<std::size_t>(found - head.header.begin());
    const auto again = std::find_if(found + 1, head.header.end(), is_it);
    if (again != head.header.end()) {
        throw InputError(path + ": more than one column is called \"" + column + "\" (" + option +
                         ")\nSay which by its number: " + field_handle(field) + ", " +
                         field_handle(static_cast<std::size_t>(again - head.header.begin())) + ".");
    }
    return field;
}

/// Takes another column for the names. What stands in front of it is no value, unless it is the
/// last one.
void take_names_from(std::size_t field, const TableHead& head, TableLayout& layout) {
    const std::size_t before = layout.names_field.value_or(0);
    layout.names_field = field;
    if (field < layout.left_out.size()) {
        layout.left_out[field] = false;
    }
    if (field == before) {
        return;
    }
    if (!layout.name.empty()) {
        layout.leaveOut(before);
        return;
    }
    if (field + 1 >= head.row_fields) {
        return;
    }
    std::string fields;
    for (std::size_t left_out = 0; left_out < field; ++left_out) {
        layout.leaveOut(left_out);
        fields += (left_out == 0 ? "" : ", ") + layout.fieldText(left_out);
    }
    layout.notes.push_back("in front of the names, and so no values: " + fields);
}

[[noreturn]] void refuse_to_skip_names(const std::string& path,
                                       const TableLayout& layout,
                                       const LoadOptions& options) {
    throw InputError(path + ": " + layout.fieldText(*layout.names_field) +
                     " holds the names of the rows, and cannot be left out (" +
                     options.spell("skip-columns", "") + ")\nSay which column has the names: " +
                     options.spell("names-column", "NAME") + ".");
}

/// Changes a layout as the options say.
void apply(const LoadOptions& options,
           const std::string& path,
           const TableHead& head,
           TableLayout& layout) {
    if (!options.names_column.empty()) {
        take_names_from(
            field_of(path, options.names_column, options.spell("names-column", ""), head),
            head,
            layout);
    } else if (!options.has_names) {
        layout.names_field.reset();
    }
    for (const std::string& column : options.skip_columns) {
        const std::size_t field = field_of(path, column, options.spell("skip-columns", ""), head);
        if (field == layout.names_field) {
            refuse_to_skip_names(path, layout, options);
        }
        layout.leaveOut(field);
    }
}

/// "a, b and c"
std::string listed(const std::vector<std::string>& texts) {
    std::string list;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        list += i == 0 ? "" : i + 1 == texts.size() ? " and " : ", ";
        list += texts[i];
    }
    return list;
}

/// What a file of a known layout is called, where its names are, and what is no value.
std::string fields_note(const TableLayout& layout) {
    const auto name_of = [&layout](std::size_t field) {
        return field < layout.header.size() && !layout.header[field].empty()
                   ? layout.header[field]
                   : "field " + std::to_string(field + 1);
    };
    std::vector<std::string> no_values;
    for (std::size_t field = 0; field < layout.left_out.size(); ++field) {
        if (layout.left_out[field]) {
            no_values.push_back(name_of(field));
        }
    }
    return layout.name +
           (layout.names_field ? ": names from " + name_of(*layout.names_field) : "") +
           (no_values.empty() ? "" : "; no values: " + listed(no_values));
}

/// Warns of a row that may stand in the place of the header.
///
/// @throws InputError if a row stands there
void check_header(const std::string& path,
                  const TableHead& head,
                  const LoadOptions& options,
                  TableLayout& layout) {
    std::string name;
    std::vector<std::string> values;
    for (std::size_t field = 0; field < head.header.size(); ++field) {
        if (field == layout.names_field) {
            name = head.header[field];
        } else if (layout.isValue(field)) {
            values.push_back(head.header[field]);
        }
    }
    std::vector<std::string> names;
    for (const std::vector<std::string>& row : head.rows) {
        if (layout.names_field && *layout.names_field < row.size()) {
            names.push_back(row[*layout.names_field]);
        }
    }
    const bool is_summary =
        std::find(layout.no_rows.begin(), layout.no_rows.end(), name) != layout.no_rows.end();
    if (is_summary || looks_like_row(name, values, names, options)) {
        throw InputError(path + ":" + std::to_string(head.opening.size() + 1) +
                         ": the line in the place of the header looks like a row (\"" + name +
                         "\" and numbers), and as a header it would be left out\nIf there is "
                         "no header, say " +
                         options.spell("no-header", "") + "; else give the columns names.");
    }
    if (may_be_row(layout.names_field.has_value(), name, values, options)) {
        layout.warnings.push_back(
            ":" + std::to_string(head.opening.size() + 1) +
            ": the line in the place of the header may be a row (" +
            (name.empty() ? "" : "\"" + name + "\" and ") +
            "numbers), and is no row of the map\nIf there is no header, say " +
            options.spell("no-header", "") +
            (name.empty() ? "." : "; if it is the header, call its first field \"gene\"."));
    }
}

/// @throws InputError if delimiters seem to stand within the fields, as decimal commas or by twos
void check_delimiter(const std::string& path, const TableHead& head, const LoadOptions& options) {
    const bool has_two_fields_each =
        head.header.size() > 2 && head.row_fields == 2 * head.header.size() - 1;
    if (head.delimiter == ',' && has_two_fields_each) {
        throw InputError(
            path + ": the header has " + counted(head.header.size(), "field", "fields") +
            " and the rows have " + std::to_string(head.row_fields) +
            ", as if decimal commas stood between delimiters that are commas, too\nSave the file "
            "with another delimiter (tab or semicolon), or with a decimal point.");
    }
    const auto is_longest = [&head](const std::vector<std::string>& row) {
        return row.size() == head.row_fields;
    };
    if (head.lacks_names_header && head.header.size() > 2 && options.has_names &&
        heads_names(head.header[1])) {
        if (!std::all_of(head.rows.begin(), head.rows.end(), is_longest)) {
            throw InputError(path + ":" + std::to_string(head.longest_row_line) +
                             ": the line has " + std::to_string(head.row_fields) +
                             " fields and the header " + std::to_string(head.header.size() - 1) +
                             "\nEvery row needs a name and as many values as the header has "
                             "columns: mend the line, or check the delimiter.");
        }
        throw InputError(path + ": the header has " +
                         counted(head.header.size() - 1, "field", "fields") +
                         " and the rows have " + std::to_string(head.row_fields) + ", though \"" +
                         head.header[1] + "\" heads the names\nCheck the delimiter (" +
                         options.spell("delimiter", "") +
                         "), and whether decimal commas stand between delimiters that are commas.");
    }
    const auto has_empty = [](const std::vector<std::string>& row) {
        return std::find(row.begin(), row.end(), "") != row.end();
    };
    if (head.delimiter == ' ' && !options.delimiter &&
        std::any_of(head.rows.begin(), head.rows.end(), has_empty)) {
        throw InputError(path +
                         ": several blanks stand between fields, and it cannot be told where a "
                         "value is missing\nPut one delimiter between fields (tr -s ' ' '\\t'), or "
                         "say that each blank is one: " +
                         options.spell("delimiter", "space") + ".");
    }
}

}  // namespace

TableLayout layout_of(MatrixSource& source, const LoadOptions& options) {
    const TableHead head = read_table_head(source, options);
    TableLayout layout;
    layout.delimiter = head.delimiter;
    layout.guessed_delimiter = head.guessed_delimiter;
    layout.decimal = options.decimal;
    layout.lines_above = head.lines_above;
    layout.empty_front = head.empty_front;
    layout.header = head.header;
    const auto known = std::find_if(
        known_layouts().begin(), known_layouts().end(), [&head](const KnownLayout& each) {
            return each.recognises(head);
        });
    layout.name = known->name;
    known->describe(head, layout);
    check_delimiter(source.name(), head, options);
    apply(options, source.name(), head, layout);
    if (!layout.name.empty()) {
        layout.notes.insert(layout.notes.begin(), fields_note(layout));
    } else if (options.has_header) {
        check_header(source.name(), head, options, layout);
    }
    return layout;
}

}  // namespace ovik
