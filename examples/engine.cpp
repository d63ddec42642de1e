#include <array>
#include <cmath>
#include <cstdio>
#include <exception>
#include <ovik/stats/engine.h>
#include <ovik/util/matrix_view.h>
#include <string>
#include <vector>

/// Embeds an array, and prints where its first row lies; usage: engine DIRECTORY/
int main(int argc, char** argv) {
    constexpr std::size_t kRows = 90;
    constexpr std::size_t kColumns = 3;
    std::array<double, kRows * kColumns> measurements{};
    std::vector<std::string> names;
    for (std::size_t row = 0; row < kRows; ++row) {
        names.push_back("sample " + std::to_string(row));
        for (std::size_t column = 0; column < kColumns; ++column) {
            const std::size_t place = row * kColumns + column;
            measurements[place] = 10.0 * static_cast<double>(row % 3) + std::sin(place);
        }
    }
    try {
        ovik::Engine engine;  // with the options of the command
        engine.options.perplexity = 10.0;
        engine.setInput({measurements.data(), kRows, kColumns}, names);  // not copied
        const ovik::Embedding map = engine.run();
        const ovik::MatrixView<const double> points = map.points();
        std::printf("%s at %g, %g\n", map.names()[0].c_str(), points.row(0)[0], points.row(0)[1]);
        std::printf("%zu rows, cost %.3f\n", points.rows, map.report().final_cost);
        if (argc == 2) {
            const ovik::WrittenResults written =
                map.write({.out_dir = argv[1], .out_name = "samples", .data_title = "Samples"});
            return written.areWhole() ? 0 : 1;
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());  // with row, column and cure
        return 1;
    }
}
