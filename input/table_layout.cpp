#include "input/table_layout.h"

#include <algorithm>

#include "input/field_kind.h"

namespace ovik {

std::size_t TableLayout::valuesAmong(std::size_t fields) const {
    if (isOrdinary()) {
        return fields == 0 ? 0 : fields - 1;
    }
    std::size_t values = 0;
    for (std::size_t field = 0; field < fields; ++field) {
        values += isValue(field) ? 1 : 0;
    }
    return values;
}

std::vector<std::size_t> TableLayout::valueFields(std::size_t values) const {
    std::vector<std::size_t> fields;
    for (std::size_t field = 0; fields.size() < values; ++field) {
        if (isValue(field)) {
            fields.push_back(field);
        }
    }
    return fields;
}

void TableLayout::leaveOut(std::size_t field) {
    if (left_out.size() <= field) {
        left_out.resize(field + 1, false);
    }
    left_out[field] = true;
}

std::string TableLayout::fieldText(std::size_t field) const {
    const std::string number = "field " + std::to_string(field + 1);
    return field < header.size() && !header[field].empty()
               ? "column \"" + header[field] + "\" (" + number + ")"
               : number;
}

std::string column_handle(const std::vector<std::string>& header, std::size_t field) {
    const std::string_view name =
        field < header.size() ? without_blanks(header[field]) : std::string_view();
    const bool is_number = name.find_first_not_of("0123456789") == std::string_view::npos;
    const bool is_plain = !is_number && !name.starts_with('#') &&
                          name.find(',') == std::string_view::npos &&
                          std::count_if(header.begin(), header.end(), [name](const auto& other) {
                              return without_blanks(other) == name;
                          }) == 1;
    return is_plain ? std::string(name) : field_handle(field);
}

std::string field_handle(std::size_t field) {
    return "#" + std::to_string(field + 1);
}

}  // namespace ovik
