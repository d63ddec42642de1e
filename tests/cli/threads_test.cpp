#include <algorithm>
#include <filesystem>
#include <omp.h>
#include <string>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/command_test.h"

/// Requests for threads that cannot be met: the run goes on with fewer.

namespace ovik {
namespace {

using test::CommandOutcome;
using test::kBadInput;
using test::kSuccess;

class Threads : public test::CommandTest {
  protected:
    /// A run on some hundred rows.
    std::vector<std::string> arguments(const std::vector<std::string>& options = {}) {
        std::string content = "g\ta\tb\n";
        for (int n = 0; n < 300; ++n) {
            content += "G" + std::to_string(n) + "\t" + std::to_string(n % 17) + "\t" +
                       std::to_string(n * n % 101) + "\n";
        }
        std::filesystem::remove_all(results_);
        std::vector<std::string> all = arguments_for(content, {"--no-plots"});
        all.insert(all.end(), options.begin(), options.end());
        return all;
    }

    std::string one_thread_table() {
        EXPECT_EQ(run(arguments({"-j", "1"})).exit_status, kSuccess);
        return table();
    }
};

TEST_F(Threads, AreCappedAndTheUserTold) {
    const std::string expected = one_thread_table();
    for (const char* count : {"1", "2", "5000", "10000", "1000000"}) {
        const CommandOutcome outcome = run(arguments({"--threads", count}));
        EXPECT_EQ(outcome.exit_status, kSuccess);
        EXPECT_EQ(table(), expected) << count;
        const bool is_capped = std::string(count).size() > 1;
        EXPECT_EQ(outcome.err.find("ovik-tsne: note: " + std::string(count) +
                                   " threads are more than are of use here: ") == 0U,
                  is_capped)
            << outcome.err;
    }
    EXPECT_EQ(run(arguments({"--threads", "1000001"})).exit_status, kBadInput);
}

/// Clang's OpenMP runtime ends the process at the most absurd values, which GCC's takes.
#ifdef __clang__
constexpr bool kRuntimeTakesAnything = false;
#else
constexpr bool kRuntimeTakesAnything = true;
#endif

TEST_F(Threads, MayBeAskedForInTheEnvironment) {
    const std::string expected = one_thread_table();
    std::vector<const char*> counts = {"0", "abc", "-3", "1", "3", "100000"};
    if (kRuntimeTakesAnything) {
        counts.push_back("99999999999999999999");
    }
    for (const char* count : counts) {
        for (const char* theta : {"0", "0.5"}) {
            const CommandOutcome outcome =
                run_in_shell(std::string("OMP_NUM_THREADS=") + count + " exec \"$0\" \"$@\"",
                             arguments({"--theta", theta}));
            EXPECT_EQ(outcome.exit_status, kSuccess) << count << outcome.err;
            if (theta != std::string("0")) {
                EXPECT_EQ(table(), expected) << count;
            }
        }
    }
}

TEST_F(Threads, AreFewerWhereTheSystemDeniesThem) {
    const std::string expected = one_thread_table();
    std::filesystem::remove_all(directory_.file("made"));
    const std::vector<std::string> all = arguments({"--threads", "4"});
    // Whoever runs the command has to reach it, the matrix and the results. The limit does not hold
    // for root. The leak detector needs a process of its own.
    std::filesystem::permissions(directory_.prefix(), std::filesystem::perms(0777));
    const std::string command = directory_.file("ovik-tsne");
    std::filesystem::copy_file(OVIK_TSNE_COMMAND, command);
    const std::string as_nobody =
        geteuid() == 0 ? "setpriv --reuid 65534 --regid 65534 --clear-groups " : "";
    std::vector<std::string> line = {
        "/bin/sh",
        "-c",
        "cd / && ASAN_OPTIONS=detect_leaks=0 exec " + as_nobody + "prlimit --nproc=1 \"$0\" \"$@\"",
        command};
    line.insert(line.end(), all.begin(), all.end());
    const CommandOutcome outcome = test::run_command(line);
    EXPECT_EQ(outcome.exit_status, kSuccess) << outcome.err;
    // More than there are processors are not wanted.
    const int wanted = std::min(4, omp_get_num_procs());
    EXPECT_EQ(outcome.err,
              wanted == 1
                  ? ""
                  : "ovik-tsne: note: the system granted this process 1 thread instead of " +
                        std::to_string(wanted) + ": the run took longer\n");
    EXPECT_EQ(table(), expected);
}

}  // namespace
}  // namespace ovik
