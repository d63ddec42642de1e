#include "results/row_fields.h"

#include <cmath>

#include "util/format.h"

namespace ovik {

std::string number_field(double value) {
    return "\t" + (std::isnan(value) ? std::string() : shortest_text(value));
}

std::string header_fields(std::span<const RowNumbers> columns) {
    std::string fields;
    for (const RowNumbers& column : columns) {
        fields += "\t" + column.name;
    }
    return fields;
}

std::string row_fields(std::span<const RowNumbers> columns, std::size_t row) {
    std::string fields;
    for (const RowNumbers& column : columns) {
        fields += number_field(column.values[row]);
    }
    return fields;
}

}  // namespace ovik
