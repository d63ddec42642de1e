#include "results/reliability_table.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "results/row_fields.h"
#include "results/table_field.h"
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

}  // namespace

std::error_code write_reliability_table(const std::string& path,
                                        std::span<const std::string> names,
                                        const RowReliability& reliability) {
    return write_whole_file(path, [&](std::FILE* stream) {
        const std::string header =
            "name" + header_fields(reliability.columns) + "\tfalse_neighbours\ttorn_neighbours\n";
        std::fputs(header.c_str(), stream);
        for (std::size_t n = 0; n < names.size(); ++n) {
            const std::string line = table_field(names[n]) + row_fields(reliability.columns, n) +
                                     "\t" + names_field(reliability.falsely_near[n], names) + "\t" +
                                     names_field(reliability.torn[n], names) + "\n";
            std::fwrite(line.data(), 1, line.size(), stream);
        }
    });
}

}  // namespace ovik
