#include <algorithm>
#include <chrono>
#include <cstdio>
#include <spawn.h>
#include <sys/wait.h>
#include <vector>

extern char** environ;

/// Measures how long programs take from their start to their end: medians of alternating runs.

namespace {

constexpr int kRuns = 301;

double milliseconds_of_run(char* program) {
    char* const arguments[] = {program, nullptr};
    const auto start = std::chrono::steady_clock::now();
    pid_t pid = 0;
    if (posix_spawn(&pid, program, nullptr, nullptr, arguments, environ) != 0) {
        return -1.0;
    }
    int status = 0;
    waitpid(pid, &status, 0);
    const std::chrono::duration<double, std::milli> elapsed =
        std::chrono::steady_clock::now() - start;
    return status == 0 ? elapsed.count() : -1.0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: startup_time PROGRAM...\n");
        return 2;
    }
    const std::vector<char*> programs(argv + 1, argv + argc);
    std::vector<std::vector<double>> times(programs.size());
    for (int run = 0; run < kRuns; ++run) {
        for (std::size_t i = 0; i < programs.size(); ++i) {
            times[i].push_back(milliseconds_of_run(programs[i]));
        }
    }
    for (std::size_t i = 0; i < programs.size(); ++i) {
        std::sort(times[i].begin(), times[i].end());
        if (times[i].front() < 0.0) {
            std::fprintf(stderr, "startup_time: %s failed\n", programs[i]);
            return 1;
        }
        std::printf("%s: %.2f ms\n", programs[i], times[i][kRuns / 2]);
    }
}
