#include <cstdio>
#include <exception>
#include <ovik/stats/tsne.h>
#include <ovik/util/input_error.h>

/// Embeds a matrix; usage: whole_run MATRIX DIRECTORY/
int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: whole_run MATRIX DIRECTORY/\n");
        return 2;
    }
    ovik::TSNE<float> tsne(argv[2], "map", "", "My measurements");
    try {
        tsne.init(argv[1], 500, '\t');
        tsne.draw_plots = false;
        bool finite = true;
        tsne.on_iteration = [&finite](const ovik::IterationReport& report) {
            finite = report.finite;
            return finite;  // false ends the run here
        };
        tsne.actuate(2, 20.0, {}, 250, 250);
        if (!finite) {
            std::fprintf(stderr, "The embedding has come to nothing\n");
            return 1;
        }
    } catch (const ovik::InputError& error) {
        std::fprintf(stderr, "%s\n", error.what());  // names the file, the row and the cure
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    if (!tsne.tableWritten()) {
        std::fprintf(stderr, "%s\n", tsne.tableFailure().message().c_str());
        return 1;
    }
    std::printf("%d rows, cost %.2f\n", tsne.N, tsne.finalCost());
    tsne.finish();
}
