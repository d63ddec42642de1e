#include "results/annotated_table.h"

#include <cmath>
#include <cstddef>
#include <cstdio>
#include <set>

#include "results/table_field.h"
#include "util/format.h"
#include "util/plain_text.h"
#include "util/whole_file.h"

namespace ovik {

namespace {

std::string coordinate_title(std::size_t dimension) {
    constexpr char kLetters[] = {'x', 'y', 'z'};
    return dimension < sizeof kLetters ? std::string(1, kLetters[dimension])
                                       : "component_" + std::to_string(dimension + 1);
}

std::string header_line(std::size_t dims, std::span<const LabelColumn> labels) {
    std::string line = "name\tsystematic";
    std::set<std::string> taken{"name", "systematic", "function"};
    for (std::size_t d = 0; d < dims; ++d) {
        const std::string title = coordinate_title(d);
        line += "\t" + title;
        taken.insert(title);
    }
    for (const LabelColumn& column : labels) {
        std::string title = one_line_utf8(column.title);
        while (!taken.insert(title).second) {
            title.insert(0, "label_");
        }
        line += "\t" + table_field(title);
    }
    return line + "\tfunction\n";
}

std::string label_field(const LabelColumn& column, std::size_t row) {
    if (!column.isNumeric()) {
        return table_field(column.texts[row]);
    }
    const double number = column.numbers[row];
    return std::isnan(number) ? "" : shortest_text(number);
}

}  // namespace

template <typename T>
std::error_code write_annotated_table(const std::string& path,
                                      MatrixView<const double> Y,
                                      const AnnotatedRows& rows) {
    return write_whole_file(path, [&](std::FILE* stream) {
        std::fputs(header_line(Y.columns, rows.labels).c_str(), stream);
        for (std::size_t n = 0; n < Y.rows; ++n) {
            std::string line = table_field(rows.names[n]) + "\t" + table_field(rows.systematic[n]);
            for (std::size_t d = 0; d < Y.columns; ++d) {
                line += "\t" + shortest_text(static_cast<T>(Y.values[n * Y.columns + d]));
            }
            for (const LabelColumn& column : rows.labels) {
                line += "\t" + label_field(column, n);
            }
            const std::string& function = rows.functions[n];
            line += "\t" + (function == "NULL" ? "" : table_field(function)) + "\n";
            std::fwrite(line.data(), 1, line.size(), stream);
        }
    });
}

template std::error_code write_annotated_table<double>(const std::string&,
                                                       MatrixView<const double>,
                                                       const AnnotatedRows&);
template std::error_code write_annotated_table<float>(const std::string&,
                                                      MatrixView<const double>,
                                                      const AnnotatedRows&);

}  // namespace ovik
