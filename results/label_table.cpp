#include "results/label_table.h"

#include <cstddef>
#include <cstdio>

#include "results/table_field.h"
#include "util/whole_file.h"

namespace ovik {

std::error_code write_label_table(const std::string& path,
                                  std::span<const std::string> names,
                                  const LabelColumn& column) {
    return write_whole_file(path, [&](std::FILE* stream) {
        const auto write_line = [stream](const std::string& name, const std::string& label) {
            const std::string line = table_field(name) + "\t" + table_field(label) + "\n";
            std::fwrite(line.data(), 1, line.size(), stream);
        };
        write_line("name", column.title);
        for (std::size_t row = 0; row < names.size(); ++row) {
            write_line(names[row], column.texts[row]);
        }
    });
}

}  // namespace ovik
