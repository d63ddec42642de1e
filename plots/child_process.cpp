#include "plots/child_process.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <new>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace ovik {

namespace {

/// What becomes of the files of a child before it runs.
class FileActions {
  public:
    FileActions() { check(posix_spawn_file_actions_init(&actions_)); }

    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }

    void open(int descriptor, const char* path, int flags) {
        check(posix_spawn_file_actions_addopen(&actions_, descriptor, path, flags, 0600));
    }

    void duplicate(int from, int to) {
        check(posix_spawn_file_actions_adddup2(&actions_, from, to));
    }

    void changeDirectory(const char* path) {
        check(posix_spawn_file_actions_addchdir_np(&actions_, path));
    }

    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

  private:
    /// Memory is all that these calls can lack.
    static void check(int failure) {
        if (failure != 0) {
            throw std::bad_alloc();
        }
    }

    posix_spawn_file_actions_t actions_{};
};

/// How a child takes signals: as this process does, but for SIGINT, which a terminal sends to both.
class SpawnAttributes {
  public:
    SpawnAttributes() {
        sigset_t blocked;
        pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
        sigaddset(&blocked, SIGINT);
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setsigmask(&attributes_, &blocked);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK);
    }

    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }

    [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

  private:
    posix_spawnattr_t attributes_{};
};

/// The child that was started last, until it is reaped; 0 for none.
std::atomic<pid_t> last_child = 0;
static_assert(std::atomic<pid_t>::is_always_lock_free);

int exit_status(int wait_status) {
    constexpr int kSignalBase = 128;
    return WIFEXITED(wait_status) ? WEXITSTATUS(wait_status) : kSignalBase + WTERMSIG(wait_status);
}

}  // namespace

ChildProcess::ChildProcess(std::vector<std::string> command,
                           const std::string& working_directory,
                           const std::string& messages) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& word : command) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    FileActions actions;
    actions.open(STDIN_FILENO, "/dev/null", O_RDONLY);
    actions.open(STDOUT_FILENO, messages.c_str(), O_WRONLY | O_CREAT | O_TRUNC);
    actions.duplicate(STDOUT_FILENO, STDERR_FILENO);
    actions.changeDirectory(working_directory.c_str());
    const SpawnAttributes attributes;
    const int failure = posix_spawnp(
        &pid_, arguments[0], actions.get(), attributes.get(), arguments.data(), environ);
    if (failure != 0) {
        pid_ = 0;
        throw std::system_error(failure, std::generic_category(), command[0]);
    }
    last_child = pid_;
}

ChildProcess::~ChildProcess() {
    wait(std::chrono::milliseconds(0));
}

std::optional<int> ChildProcess::wait(std::chrono::milliseconds limit) {
    constexpr std::chrono::milliseconds kPause(5);
    if (pid_ == 0) {
        return std::nullopt;
    }
    const auto deadline = std::chrono::steady_clock::now() + limit;
    // Stays so if the system does not keep the status, since SIGCHLD is ignored.
    int status = 0;
    pid_t ended = waitpid(pid_, &status, WNOHANG);
    while (ended == 0 && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(kPause);
        ended = waitpid(pid_, &status, WNOHANG);
    }
    if (ended == 0) {
        kill(pid_, SIGKILL);
        TEMP_FAILURE_RETRY(waitpid(pid_, &status, 0));
    }
    pid_t reaped = std::exchange(pid_, 0);
    last_child.compare_exchange_strong(reaped, 0);
    return ended != 0 ? std::optional<int>(exit_status(status)) : std::nullopt;
}

void ChildProcess::killLast() noexcept {
    const pid_t child = last_child;
    if (child != 0) {
        kill(child, SIGKILL);
    }
}

}  // namespace ovik
