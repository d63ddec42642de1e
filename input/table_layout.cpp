#include "input/table_layout.h"

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

}  // namespace ovik
