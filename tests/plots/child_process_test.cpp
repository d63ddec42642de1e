#include "plots/child_process.h"

#include <chrono>
#include <csignal>
#include <system_error>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

/// Far more than any of the programs takes that end by themselves.
constexpr std::chrono::milliseconds kPlenty{600000};

class Child : public testing::Test {
  protected:
    /// Runs a shell script to its end.
    std::optional<int> run(const std::string& script,
                           std::chrono::milliseconds limit = kPlenty) const {
        ChildProcess child({"sh", "-c", script}, directory_.prefix(), messages());
        return child.wait(limit);
    }

    [[nodiscard]] std::string messages() const { return directory_.file("messages"); }

    test::TemporaryDirectory directory_;
};

TEST_F(Child, EndsWithItsStatus) {
    EXPECT_EQ(run("exit 0"), 0);
    EXPECT_EQ(run("exit 3"), 3);
    EXPECT_EQ(run("kill -9 $$"), 128 + SIGKILL);
}

TEST_F(Child, RunsInItsDirectoryAndSaysItsMessagesToTheFile) {
    EXPECT_EQ(run("cat; echo out; echo err >&2; touch here"), 0);
    EXPECT_EQ(test::read_file(messages()), "out\nerr\n");
    EXPECT_EQ(directory_.entryCount(), 2U);
    EXPECT_EQ(run("true"), 0);
    EXPECT_EQ(test::read_file(messages()), "");
}

TEST_F(Child, TakesArgumentsAsTheyAre) {
    ChildProcess child(
        {"sh", "-c", "printf '%s|' \"$@\"", "sh", "a b", "$(x)", ""}, "/", messages());
    EXPECT_EQ(child.wait(kPlenty), 0);
    EXPECT_EQ(test::read_file(messages()), "a b|$(x)||");
}

TEST_F(Child, IsKilledBeyondItsLimit) {
    EXPECT_EQ(run("exec sleep 600", std::chrono::milliseconds(20)), std::nullopt);
}

TEST_F(Child, IsReapedOnce) {
    ChildProcess child({"true"}, "/", messages());
    EXPECT_EQ(child.wait(kPlenty), 0);
    EXPECT_EQ(child.wait(kPlenty), std::nullopt);
}

TEST_F(Child, ThatIsNotThereIsReported) {
    try {
        const ChildProcess child({"no-such-program"}, "/", messages());
        FAIL() << "started";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
        EXPECT_NE(std::string(error.what()).find("no-such-program"), std::string::npos);
    }
}

TEST_F(Child, StartedLastCanBeKilled) {
    ChildProcess child({"sleep", "600"}, "/", messages());
    ChildProcess::killLast();
    EXPECT_EQ(child.wait(kPlenty), 128 + SIGKILL);
    ChildProcess::killLast();
}

}  // namespace
}  // namespace ovik
