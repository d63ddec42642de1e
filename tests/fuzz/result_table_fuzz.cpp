#include "results/result_table.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "results/result_rows.h"

#include "tests/fuzz/support/input_lines.h"
#include "tests/fuzz/support/plain_matrix.h"
#include "tests/fuzz/support/require.h"
#include "tests/support/temporary_directory.h"

/// The result table against a writer that knows nothing of `printf`, and back through its reader.

namespace ovik {
namespace {

/// What a run has before its table.
struct RunResult {
    std::size_t dims;
    std::vector<double> Y;
    std::vector<std::string> names;
    std::map<std::string, std::string> functions;
};

RunResult result_from(test::InputLines& input) {
    RunResult result;
    result.dims = input.count(4);
    const std::size_t count = input.count(5);
    for (std::size_t n = 0; n < count; ++n) {
        result.names.push_back(input.text());
        if (input.flag()) {
            result.functions[result.names.back()] = input.text();
        }
        for (std::size_t d = 0; d < result.dims; ++d) {
            result.Y.push_back(input.number());
        }
    }
    return result;
}

std::string plain_coordinate(double value) {
    char text[400];
    const int digits = value == 0.0 ? 0 : 3;
    const auto written =
        std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, digits);
    OVIK_REQUIRE(written.ec == std::errc());
    return {text, written.ptr};
}

/// Texts end at their first NUL.
std::string plain_row(const std::string& name,
                      double x,
                      double y,
                      const std::string& group,
                      const std::string& function) {
    return std::string(name.c_str()) + "," + plain_coordinate(x) + "," + plain_coordinate(y) +
           ",1," + group + ",\"" + function.c_str() + "\"\n";
}

/// Texts that the table can give back: nothing in them ends a line, nor opens a function.
bool is_simple(const std::string& text) {
    return text.find('\n') == std::string::npos && text.find('\0') == std::string::npos &&
           text.find(",\"") == std::string::npos;
}

template <typename T>
void check_table(const RunResult& result, const std::string& path) {
    const std::size_t N = result.names.size();
    std::map<std::string, std::string> functions = result.functions;
    const ResultTable<T> table =
        make_result_table<T>(result.Y.data(), N, result.dims, result.names.data(), functions);
    OVIK_REQUIRE(!write_result_table(path, table));

    std::string expected = "name,data in xaxis,data in yaxis,psize,group,function\n";
    std::vector<ResultRow> rows;
    bool all_simple = true;
    for (std::size_t i = 0; i < result.dims; ++i) {
        for (std::size_t j = i + 1; j < result.dims; ++j) {
            const std::string group =
                "Group:" + std::to_string(i + 1) + ":" + std::to_string(j + 1);
            for (std::size_t n = 0; n < N; ++n) {
                const std::string& name = result.names[n];
                const auto known = result.functions.find(name);
                const std::string function = known == result.functions.end() ? "" : known->second;
                const auto x = static_cast<T>(result.Y[n * result.dims + i]);
                const auto y = static_cast<T>(result.Y[n * result.dims + j]);
                expected += plain_row(name, x, y, group, function);
                rows.push_back({name, x, y, group, function});
                all_simple = all_simple && is_simple(name) && is_simple(function);
            }
        }
    }
    OVIK_REQUIRE(test::read_file(path) == expected);
    if (!all_simple) {
        return;
    }
    OVIK_REQUIRE(test::plain_lines(expected).size() == rows.size() + 1);
    const auto read = read_result_rows(path);
    OVIK_REQUIRE(read && read->size() == rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        OVIK_REQUIRE((*read)[row].name == rows[row].name);
        OVIK_REQUIRE((*read)[row].group == rows[row].group);
        OVIK_REQUIRE((*read)[row].function == rows[row].function);
        OVIK_REQUIRE(is_in_table_as(rows[row].x, (*read)[row].x));
        OVIK_REQUIRE(is_in_table_as(rows[row].y, (*read)[row].y));
    }
}

/// The table of a caller who has neither names nor groups nor functions.
void check_bare_table(const RunResult& result, const std::string& path) {
    ResultTable<double> table;
    std::string expected = "name,data in xaxis,data in yaxis,psize,group,function\n";
    for (std::size_t i = 0; i + 1 < result.Y.size(); ++i) {
        const double x = result.Y[i];
        const double y = result.Y[i + 1];
        table.coordinates.push_back({x, y});
        expected += plain_coordinate(x) + "," + plain_coordinate(y) + ",1,Data,\"NULL\"\n";
    }
    OVIK_REQUIRE(!write_result_table(path, table));
    OVIK_REQUIRE(test::read_file(path) == expected);
    const auto read = read_result_rows(path);
    OVIK_REQUIRE(read && read->size() == table.coordinates.size());
}

void check_stem(double perplexity, const std::string& suffix) {
    char text[400];
    const auto written =
        std::to_chars(text, text + sizeof text, perplexity, std::chars_format::fixed, 6);
    const std::string_view number(text, static_cast<std::size_t>(written.ptr - text));
    const std::size_t point = number.find('.');
    // A text without a point is followed by its own start.
    const std::string expected =
        point == std::string_view::npos
            ? "tsne_" + std::string(number) + "_t"
            : "tsne_" + std::string(number.substr(0, point)) + "_" + number[point + 1];
    OVIK_REQUIRE(result_table_stem(perplexity, suffix) == expected + suffix);
}

/// Any line is either no row, or one whose writing gives what was read.
void check_line(const std::string& line) {
    const std::optional<ResultRow> row = parse_result_row(line);
    if (!row) {
        return;
    }
    OVIK_REQUIRE(line.starts_with(row->name));
    OVIK_REQUIRE(line.ends_with("," + row->group + ",\"" + row->function + "\""));
}

}  // namespace
}  // namespace ovik

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ovik;
    static const test::TemporaryDirectory kDirectory;
    const std::string path = kDirectory.file("table.csv");
    test::InputLines input(data, size);
    const double perplexity = input.number();
    check_stem(perplexity, input.text());
    const RunResult result = result_from(input);
    check_table<double>(result, path);
    check_table<float>(result, path);
    check_bare_table(result, path);
    check_line(input.rest());
    return 0;
}
