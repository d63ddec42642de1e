#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/command.h"
#include "tests/support/temporary_directory.h"

namespace ovik::test {

constexpr int kSuccess = 0;
constexpr int kFailedRun = 1;
constexpr int kBadInput = 2;

/// Runs the real program on real files.
class CommandTest : public testing::Test {
  protected:
    static CommandOutcome run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), OVIK_TSNE_COMMAND);
        return run_command(arguments);
    }

    /// Runs the program under the care of a shell, as `$0` with its arguments as `$@`: "ulimit -f
    /// 8; exec \"$0\" \"$@\"".
    static CommandOutcome run_in_shell(const std::string& script,
                                       std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"/bin/sh", "-c", script, OVIK_TSNE_COMMAND});
        return run_command(arguments);
    }

    /// The arguments for a short run on a matrix given as text, results in a directory that the
    /// command is to make. Unless the options say what its names are, they are those of no genes.
    std::vector<std::string> arguments_for(const std::string& content,
                                           std::vector<std::string> options = {}) {
        if (std::find(options.begin(), options.end(), "--names") == options.end()) {
            options.insert(options.begin(), {"--names", "other"});
        }
        options.insert(options.begin(),
                       {directory_.write("m.txt", content), "--out-dir", results_, "-i", "5"});
        return options;
    }

    CommandOutcome run_on(const std::string& content, std::vector<std::string> options = {}) {
        return run(arguments_for(content, std::move(options)));
    }

    /// What the command says about a matrix that it refuses; nothing may have been written.
    std::string refusal(const std::string& content, const std::vector<std::string>& options = {}) {
        const CommandOutcome outcome = run_on(content, options);
        EXPECT_EQ(outcome.exit_status, kBadInput);
        EXPECT_EQ(outcome.out, "");
        EXPECT_FALSE(std::filesystem::exists(results_));
        return outcome.err;
    }

    [[nodiscard]] std::string result(const std::string& name) const {
        return read_file(results_ + "/" + name);
    }

    /// The one result table that there is.
    [[nodiscard]] std::string table() const {
        for (const auto& entry : std::filesystem::directory_iterator(results_)) {
            if (entry.path().extension() == ".csv") {
                return read_file(entry.path().string());
            }
        }
        return "";
    }

    [[nodiscard]] std::string matrix_path() const { return directory_.file("m.txt"); }

    TemporaryDirectory directory_;
    std::string results_ = directory_.file("made/results");
};

}  // namespace ovik::test
