#include "results/result_table.h"

#include <cstdio>

#include "util/format.h"
#include "util/n_choose_k.h"
#include "util/parallel.h"
#include "util/whole_file.h"

namespace ovik {

namespace {

constexpr int kCoordinateDigits = 3;

std::string group_label(std::size_t first_component, std::size_t second_component) {
    return "Group:" + std::to_string(first_component + 1) + ":" +
           std::to_string(second_component + 1);
}

void write_coordinate(std::FILE* file, double coordinate) {
    if (coordinate == 0.0) {
        std::fprintf(file, "%1.f", coordinate);
    } else {
        std::fprintf(file, "%.*f", kCoordinateDigits, coordinate);
    }
}

template <typename T>
void write_row(std::FILE* file, const ResultTable<T>& table, std::size_t row) {
    if (!table.names.empty()) {
        std::fprintf(file, "%s,", table.names[row].c_str());
    }
    write_coordinate(file, static_cast<double>(table.coordinates[row][0]));
    std::fputc(',', file);
    write_coordinate(file, static_cast<double>(table.coordinates[row][1]));
    std::fprintf(file, ",%i,", 1);
    if (table.groups.empty()) {
        std::fputs("Data,", file);
    } else {
        std::fprintf(file, "%s,", table.groups[row].c_str());
    }
    if (table.functions.empty()) {
        std::fputs("\"NULL\"\n", file);
    } else {
        std::fprintf(file, "\"%s\"\n", table.functions[row].c_str());
    }
}

}  // namespace

namespace {

/// @param function_of  called with the number of a point
template <typename T, typename FunctionOf>
ResultTable<T> lay_out(const double* Y,
                       std::size_t N,
                       std::size_t no_dims,
                       const std::string* names,
                       const FunctionOf& function_of) {
    const std::size_t row_count = n_choose_k(static_cast<unsigned int>(no_dims), 2) * N;
    ResultTable<T> table;
    table.coordinates.resize(row_count);
    table.names.reserve(row_count);
    table.groups.reserve(row_count);
    table.functions.reserve(row_count);
    for (std::size_t i = 0; i + 1 < no_dims; ++i) {
        for (std::size_t j = i + 1; j < no_dims; ++j) {
            for (std::size_t k = 0; k < N; ++k) {
                table.coordinates[table.names.size()] = {static_cast<T>(Y[k * no_dims + i]),
                                                         static_cast<T>(Y[k * no_dims + j])};
                table.names.push_back(names[k]);
                table.groups.push_back(group_label(i, j));
                table.functions.push_back(function_of(k));
            }
        }
    }
    return table;
}

}  // namespace

template <typename T>
ResultTable<T> make_result_table(const double* Y,
                                 std::size_t N,
                                 std::size_t no_dims,
                                 const std::string* names,
                                 std::map<std::string, std::string>& functions) {
    return lay_out<T>(Y, N, no_dims, names, [&](std::size_t k) -> const std::string& {
        return functions[names[k]];
    });
}

template <typename T>
ResultTable<T> make_result_table(MatrixView<const double> Y,
                                 std::span<const std::string> names,
                                 std::span<const std::string> functions) {
    return lay_out<T>(
        Y.values, Y.rows, Y.columns, names.data(), [&](std::size_t k) -> const std::string& {
            return functions[k];
        });
}

std::string result_table_stem(double perplexity, const std::string& suffix) {
    return to_str("tsne_" + std::to_string(perplexity), 1, "_") + suffix;
}

template <typename T>
std::error_code write_result_table(const std::string& path, const ResultTable<T>& table) {
    return write_whole_file(path, [&table](std::FILE* file) {
        std::fputs("name,data in xaxis,data in yaxis,psize,group,function\n", file);
        for (std::size_t row = 0; row < table.coordinates.size(); ++row) {
            write_row(file, table, row);
        }
    });
}

#define OVIK_INSTANTIATE_RESULT_TABLE(T)                                                       \
    template struct ResultTable<T>;                                                            \
    template ResultTable<T> make_result_table(const double*,                                   \
                                              std::size_t,                                     \
                                              std::size_t,                                     \
                                              const std::string*,                              \
                                              std::map<std::string, std::string>&);            \
    template ResultTable<T> make_result_table(                                                 \
        MatrixView<const double>, std::span<const std::string>, std::span<const std::string>); \
    template std::error_code write_result_table(const std::string&, const ResultTable<T>&);

OVIK_INSTANTIATE_RESULT_TABLE(float)
OVIK_INSTANTIATE_RESULT_TABLE(double)

}  // namespace ovik
