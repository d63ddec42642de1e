#include "results/stability_table.h"

#include <cstddef>
#include <cstdio>

#include "results/row_fields.h"
#include "results/table_field.h"
#include "util/whole_file.h"

namespace ovik {

std::error_code write_stability_table(const std::string& path,
                                      std::span<const std::string> names,
                                      const RecordedStability& stability) {
    return write_whole_file(path, [&](std::FILE* stream) {
        std::fputs(("name" + header_fields(stability.columns) + "\n").c_str(), stream);
        for (std::size_t n = 0; n < names.size(); ++n) {
            const std::string line =
                table_field(names[n]) + row_fields(stability.columns, n) + "\n";
            std::fwrite(line.data(), 1, line.size(), stream);
        }
    });
}

std::error_code write_cluster_pairs(const std::string& path, const RecordedStability& stability) {
    return write_whole_file(path, [&](std::FILE* stream) {
        std::fputs("cluster\tother\tseparation\tapart_seeds\tapart_columns\tstay_apart\n", stream);
        for (const RecordedClusterPair& pair : stability.pairs) {
            const std::string line =
                std::to_string(pair.first + 1) + "\t" + std::to_string(pair.second + 1) +
                number_field(pair.separation) + number_field(pair.apart_seeds) +
                number_field(pair.apart_columns) + (pair.stay_apart ? "\tyes\n" : "\tno\n");
            std::fputs(line.c_str(), stream);
        }
    });
}

}  // namespace ovik
