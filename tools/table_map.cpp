#include "tools/table_map.h"

#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "results/result_rows.h"

namespace ovik::tool {

namespace {

/// How many dimensions the map of a table has: its first pairs are those of the first dimension
/// with each of the others.
std::size_t dims_of(const std::vector<ResultRow>& table, std::size_t rows) {
    constexpr std::string_view kOfFirst = "Group:1:";
    std::size_t dims = 2;
    while ((dims - 1) * rows < table.size() &&
           table[(dims - 1) * rows].group.starts_with(kOfFirst)) {
        ++dims;
    }
    return dims;
}

}  // namespace

RunMap read_table_map(const std::string& path, std::size_t rows) {
    std::optional<std::vector<ResultRow>> table = read_result_rows(path);
    if (!table || rows == 0 || table->size() < rows || table->size() % rows != 0) {
        return {};
    }
    RunMap map;
    map.dims = dims_of(*table, rows);
    map.places.resize(rows * map.dims);
    ComparedGenes genes;
    for (std::size_t row = 0; row < rows; ++row) {
        map.places[row * map.dims] = (*table)[row].x;
        for (std::size_t d = 1; d < map.dims; ++d) {
            map.places[row * map.dims + d] = (*table)[(d - 1) * rows + row].y;
        }
        genes.names.push_back(std::move((*table)[row].name));
        genes.functions.push_back(std::move((*table)[row].function));
    }
    map.rows = std::make_shared<const ComparedGenes>(std::move(genes));
    return map;
}

}  // namespace ovik::tool
