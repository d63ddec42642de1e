#include "util/team.h"

#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <set>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovik {
namespace {

using testing::Each;
using testing::SizeIs;

/// Of the teams here, whatever the machine has.
constexpr std::size_t kProcessors = 8;

/// Lets a team do `body(piece)` for every piece.
template <typename Body>
void run(Team& team, std::size_t count, std::size_t threads, const Body& body) {
    team.run(
        count,
        threads,
        [](const void* loop, std::size_t piece) { (*static_cast<const Body*>(loop))(piece); },
        &body);
}

/// How often each piece of a loop is done.
std::vector<int> visits(Team& team, std::size_t count, std::size_t threads) {
    std::vector<int> visits(count, 0);
    run(team, count, threads, [&](std::size_t piece) { ++visits[piece]; });
    return visits;
}

/// The threads that take part in a loop of as many pieces, each of which waits for the others.
std::set<std::thread::id> participants(Team& team, std::size_t count) {
    std::set<std::thread::id> threads;
    std::mutex mutex;
    std::atomic<std::size_t> arrived = 0;
    run(team, count, count, [&](std::size_t /*piece*/) {
        {
            const std::lock_guard lock(mutex);
            threads.insert(std::this_thread::get_id());
        }
        ++arrived;
        while (arrived < count) {
            std::this_thread::yield();
        }
    });
    return threads;
}

/// The threads of this process.
std::size_t thread_count() {
    const std::filesystem::directory_iterator threads("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(threads), end(threads)));
}

/// Ends when the helpers of its teams have. One that begins or ends may hold a lock of the
/// memory's, which nobody would open in a process that is forked at that moment.
class Teams : public testing::Test {
  protected:
    ~Teams() override {
        while (thread_count() > threads_) {
            std::this_thread::yield();
        }
    }

  private:
    std::size_t threads_ = thread_count();
};

/// The state of a thread of this process, as the system gives it: S for one that sleeps.
char state_of(const std::string& thread) {
    std::ifstream file("/proc/self/task/" + thread + "/stat");
    std::string stat;
    std::getline(file, stat);
    return stat.at(stat.rfind(')') + 2);
}

TEST_F(Teams, DoesEachPieceOnce) {
    Team team(kProcessors);
    for (int round = 0; round < 200; ++round) {
        for (const std::size_t threads : {1U, 2U, 3U, 8U}) {
            for (const std::size_t count : {1U, 2U, 7U, 100U}) {
                ASSERT_THAT(visits(team, count, threads), Each(1)) << threads << " " << count;
            }
        }
    }
    EXPECT_EQ(team.helpers(), 7U);
    EXPECT_EQ(team.denied(), 0U);
}

TEST_F(Teams, HasNoMoreHelpersThanItsLoopsHaveWorkFor) {
    Team team(kProcessors);
    EXPECT_EQ(team.helpers(), 0U);
    visits(team, 1, 8);
    EXPECT_EQ(team.helpers(), 0U);
    visits(team, 100, 1);
    EXPECT_EQ(team.helpers(), 0U);
    visits(team, 3, 8);
    EXPECT_EQ(team.helpers(), 2U);
}

TEST_F(Teams, HasNoMoreThreadsThanProcessors) {
    Team team(3);
    EXPECT_THAT(visits(team, 100, 8), Each(1));
    EXPECT_EQ(team.helpers(), 2U);
    EXPECT_EQ(team.denied(), 0U);
    Team alone(1);
    EXPECT_THAT(visits(alone, 100, 8), Each(1));
    EXPECT_EQ(alone.helpers(), 0U);
}

TEST_F(Teams, WorksSideBySide) {
    Team team(kProcessors);
    const std::set<std::thread::id> four = participants(team, 4);
    EXPECT_THAT(four, SizeIs(4));
    EXPECT_EQ(four.count(std::this_thread::get_id()), 1U);
    EXPECT_EQ(participants(team, 4), four);
    EXPECT_THAT(participants(team, 2), SizeIs(2));
}

TEST_F(Teams, TellsWhoIsAtWork) {
    Team team(kProcessors);
    EXPECT_FALSE(Team::isAtWork());
    std::vector<char> at_work(50, 0);
    run(team, at_work.size(), 3, [&](std::size_t piece) {
        at_work[piece] = Team::isAtWork() ? 1 : 0;
    });
    EXPECT_THAT(at_work, Each(1));
    EXPECT_FALSE(Team::isAtWork());
}

TEST_F(Teams, LetsHelpersSleep) {
    Team team(kProcessors);
    std::string helper;
    std::atomic<int> arrived = 0;
    const pid_t own = gettid();
    run(team, 2, 2, [&](std::size_t /*piece*/) {
        if (gettid() != own) {
            helper = std::to_string(gettid());
        }
        ++arrived;
        while (arrived < 2) {
            std::this_thread::yield();
        }
    });
    // Ends when it does.
    while (state_of(helper) != 'S') {
        std::this_thread::yield();
    }
    EXPECT_THAT(visits(team, 100, 2), Each(1));
}

TEST_F(Teams, HasHelpersOfItsOwnInAForkedProcess) {
    Team team(kProcessors);
    participants(team, 3);
    const pid_t child = fork();
    if (child == 0) {
        alarm(600);  // ends a child that hangs
        std::set<std::thread::id> threads;
        {
            threads = participants(team, 3);
            Team another(kProcessors);
            visits(another, 10, 3);
        }
        _exit(threads.size() == 3 ? 0 : 1);
    }
    int status = 1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_THAT(visits(team, 10, 3), Each(1));
}

TEST_F(Teams, EndsInAForkedProcessWithoutHelpers) {
    const pid_t child = fork();
    if (child == 0) {
        alarm(600);
        pid_t grandchild = 0;
        {
            Team team(kProcessors);
            participants(team, 3);
            grandchild = fork();
        }
        int status = 0;
        if (grandchild != 0) {
            waitpid(grandchild, &status, 0);
        }
        _exit(status == 0 ? 0 : 1);
    }
    int status = 1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST_F(Teams, IsThereForEachThread) {
    Team* const own = &Team::ofThisThread();
    EXPECT_EQ(own, &Team::ofThisThread());
    Team* other = nullptr;
    std::vector<int> visited;
    std::thread([&] {
        other = &Team::ofThisThread();
        visited = visits(*other, 100, 3);
    }).join();
    EXPECT_NE(own, other);
    EXPECT_THAT(visited, Each(1));
}

}  // namespace
}  // namespace ovik
