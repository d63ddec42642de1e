#include "results/reliability_table.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "results/table_field.h"
#include "util/format.h"
#include "util/whole_file.h"

namespace ovik {

namespace {

std::string names_field(const std::vector<std::uint32_t>& rows,
                        std::span<const std::string> names) {
    std::string list;
    for (const std::uint32_t row : rows) {
        list += (list.empty() ? "" : "; ") + names[row];
    }
    return table_field(list);
}

std::string header_line(const RowReliability& reliability) {
    std::string line = "name";
    for (const RowNumbers& column : reliability.columns) {
        line += "\t" + column.name;
    }
    return line + "\tfalse_neighbours\ttorn_neighbours\n";
}

}  // namespace

std::error_code write_reliability_table(const std::string& path,
                                        std::span<const std::string> names,
                                        const RowReliability& reliability) {
    return write_whole_file(path, [&](std::FILE* stream) {
        std::fputs(header_line(reliability).c_str(), stream);
        for (std::size_t n = 0; n < names.size(); ++n) {
            std::string line = table_field(names[n]);
            for (const RowNumbers& column : reliability.columns) {
                const double value = column.values[n];
                line += "\t" + (std::isnan(value) ? std::string() : shortest_text(value));
            }
            line += "\t" + names_field(reliability.falsely_near[n], names) + "\t" +
                    names_field(reliability.torn[n], names) + "\n";
            std::fwrite(line.data(), 1, line.size(), stream);
        }
    });
}

}  // namespace ovik
