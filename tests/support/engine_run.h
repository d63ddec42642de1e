#pragma once

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "stats/tsne.h"

#include "tests/support/temporary_directory.h"

namespace ovik::test {

struct RunSettings {
    int no_dims = 2;
    double perplexity = 20.0;
    double theta = 0.5;
    int max_iter = 1000;
    int stop_lying_iter = 250;
    int mom_switch_iter = 250;
    FitOptions options = {};
    std::function<bool(const IterationReport&)> on_iteration = {};
    std::string checkpoint_path = {};
    int checkpoint_every = 50;
    std::string resume_path = {};
};

/// What a run of the engine leaves behind.
struct RunOutcome {
    std::vector<double> Y;
    std::string out;
    std::string err;
    std::string table;
    std::string log;
    std::string checkpoint_failure;
};

/// Runs the engine on a tab-separated matrix file, results in a directory of their own.
template <typename T = double>
RunOutcome run_engine(const std::string& path, const RunSettings& settings) {
    const TemporaryDirectory directory;
    RunOutcome outcome;
    TSNE<T> tsne(directory.prefix(), "run", "_x", "Title");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    tsne.init(path, settings.max_iter, '\t');
    tsne.theta = settings.theta;
    tsne.options = settings.options;
    tsne.draw_plots = false;
    tsne.on_iteration = settings.on_iteration;
    tsne.checkpoint_path = settings.checkpoint_path;
    tsne.checkpoint_every = settings.checkpoint_every;
    tsne.resume_path = settings.resume_path;
    tsne.actuate(settings.no_dims,
                 settings.perplexity,
                 {},
                 settings.stop_lying_iter,
                 settings.mom_switch_iter);
    outcome.out = testing::internal::GetCapturedStdout();
    outcome.err = testing::internal::GetCapturedStderr();
    outcome.checkpoint_failure = tsne.checkpointFailure();
    outcome.Y.assign(tsne.Y, tsne.Y + tsne.N * settings.no_dims);
    for (const auto& entry : std::filesystem::directory_iterator(directory.prefix())) {
        (entry.path().extension() == ".csv" ? outcome.table : outcome.log) =
            read_file(entry.path().string());
    }
    tsne.finish();
    return outcome;
}

/// Writes the first `rows` rows of a file of the data directory, header included.
inline std::string first_rows(const TemporaryDirectory& directory,
                              const std::string& data_file,
                              int rows) {
    std::ifstream source(std::string(OVIK_DATA_DIR "/") + data_file);
    std::string content;
    std::string line;
    for (int n = 0; n <= rows && std::getline(source, line); ++n) {
        content += line + "\n";
    }
    return directory.write("first_rows.tsv", content);
}

}  // namespace ovik::test
