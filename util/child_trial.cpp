#include "util/child_trial.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ovik {

namespace {

/// Work that fails in words does so once more where somebody hears it.
[[noreturn]] void run_and_exit(const std::function<void()>& work, unsigned int seconds) {
    for (const int signal : {SIGINT, SIGTERM, SIGSEGV, SIGBUS, SIGABRT}) {
        std::signal(signal, SIG_DFL);
    }
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere >= 0) {
        dup2(nowhere, STDERR_FILENO);
    }
    const rlimit no_core{0, 0};
    setrlimit(RLIMIT_CORE, &no_core);
    const rlimit time{seconds, seconds};
    setrlimit(RLIMIT_CPU, &time);
    try {
        work();
    } catch (...) {
        _exit(0);
    }
    _exit(0);
}

}  // namespace

bool survives(const std::function<void()>& work, unsigned int seconds) {
    const pid_t child = fork();
    if (child == 0) {
        run_and_exit(work, seconds);
    }
    if (child < 0) {
        return true;
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            return true;
        }
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace ovik
