#include <cstdio>
#include <exception>
#include <ovik/input/load.h>
#include <ovik/stats/engine.h>
#include <string>
#include <vector>

/// Reads a matrix file of any format as the command does, and embeds it; usage: load MATRIX
int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: load MATRIX\n");
        return 2;
    }
    ovik::LoadOptions how;  // with the defaults of the command
    how.missing = ovik::MissingPolicy::RowMean;
    std::vector<ovik::Remark> remarks;
    try {
        const ovik::InspectedMatrix matrix = ovik::load(argv[1], how, remarks).matrix;
        for (const ovik::Remark& remark : remarks) {
            std::printf("%s\n", remark.text.c_str());
        }
        ovik::Engine engine;
        engine.options.max_iter = 100;
        engine.setInput({matrix.values.get(), matrix.report.rows, matrix.report.columns},
                        matrix.row_names);
        std::printf("%zu rows, cost %.3f\n", matrix.report.rows, engine.run().report().final_cost);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());  // with line, row and cure
        return 1;
    }
}
