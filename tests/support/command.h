#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <vector>

#include "tests/support/temporary_directory.h"

extern char** environ;

namespace ovik::test {

struct CommandOutcome {
    int exit_status = -1;
    std::string out;
    std::string err;
    /// Largest resident memory, in bytes.
    double peak_memory = 0.0;
};

/// Runs a program to its end, its output kept.
///
/// @param command  program and arguments; an argument needs no quotes
inline CommandOutcome run_command(const std::vector<std::string>& command) {
    const TemporaryDirectory directory;
    const std::string out = directory.file("out");
    const std::string err = directory.file("err");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY | O_CREAT, 0600);
    std::vector<std::string> texts = command;
    std::vector<char*> arguments;
    for (std::string& text : texts) {
        arguments.push_back(text.data());
    }
    arguments.push_back(nullptr);
    pid_t pid = 0;
    const int failure =
        posix_spawn(&pid, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) {
        throw std::runtime_error("cannot run " + command[0]);
    }
    int status = 0;
    rusage usage{};
    wait4(pid, &status, 0, &usage);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
            read_file(out),
            read_file(err),
            1024.0 * static_cast<double>(usage.ru_maxrss)};
}

}  // namespace ovik::test
