#include "util/whole_file.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// An unprivileged user, whom permissions bind.
constexpr uid_t kNobody = 65534;

mode_t permissions_of(const std::string& path) {
    return static_cast<mode_t>(fs::status(path).permissions());
}

/// Does something as another user.
///
/// @return what it returned; nothing if this user cannot become another
std::optional<int> as_nobody(const std::function<int()>& act) {
    if (geteuid() != 0) {
        return std::nullopt;
    }
    const pid_t child = fork();
    if (child == 0) {
        _exit(setgid(kNobody) == 0 && setuid(kNobody) == 0 ? act() : 255);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 254;
}

TEST(WholeFile, AppearsWithItsCommit) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.write("table.csv", "old");
    {
        WholeFile file(path);
        ASSERT_NE(file.stream(), nullptr);
        EXPECT_FALSE(file.isInPlace());
        std::fputs("new", file.stream());
        EXPECT_EQ(test::read_file(path), "old");
        EXPECT_EQ(file.commit(), std::error_code());
    }
    EXPECT_EQ(test::read_file(path), "new");
    EXPECT_EQ(directory.entryCount(), 1U);
}

TEST(WholeFile, LeavesNothingWithoutACommit) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.write("table.csv", "old");
    {
        const WholeFile file(path);
        std::fputs("new", file.stream());
    }
    EXPECT_EQ(test::read_file(path), "old");
    EXPECT_EQ(directory.entryCount(), 1U);
}

TEST(WholeFile, HasNoStreamWhereItCannotBeWritten) {
    WholeFile file("no/such/directory/table.csv");
    EXPECT_EQ(file.stream(), nullptr);
    EXPECT_EQ(file.commit(), std::errc::no_such_file_or_directory);
}

TEST(WholeFile, KeepsAnEarlierFileWhenTheMoveFails) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.file("table.csv");
    fs::create_directories(path + "/occupied");
    {
        WholeFile file(path);
        std::fputs("new", file.stream());
        EXPECT_EQ(file.commit(), std::errc::is_a_directory);
        errno = ENOSPC;
    }
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_TRUE(fs::is_directory(path));
    EXPECT_EQ(directory.entryCount(), 1U);
}

TEST(WholeFile, IsWrittenThroughALink) {
    const test::TemporaryDirectory directory;
    const test::TemporaryDirectory elsewhere;
    elsewhere.write("target", "old");
    const std::string link = directory.file("table.csv");
    fs::create_symlink(elsewhere.file("target"), link);
    {
        WholeFile file(link);
        std::fputs("new", file.stream());
        // It waits beside the target, which may lie on another disk than the link.
        EXPECT_EQ(directory.entryCount(), 1U);
        EXPECT_EQ(elsewhere.entryCount(), 2U);
        EXPECT_EQ(test::read_file(link), "old");
        EXPECT_EQ(file.commit(), std::error_code());
    }
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(test::read_file(elsewhere.file("target")), "new");
    EXPECT_EQ(elsewhere.entryCount(), 1U);
}

TEST(WholeFile, MakesWhatADanglingLinkLeadsTo) {
    const test::TemporaryDirectory directory;
    fs::create_symlink("target", directory.file("link"));
    EXPECT_EQ(write_whole_text(directory.file("link"), "new"), std::error_code());
    EXPECT_TRUE(fs::is_symlink(directory.file("link")));
    EXPECT_EQ(test::read_file(directory.file("target")), "new");

    testing::internal::CaptureStdout();
    fs::create_symlink("no/such/directory/f", directory.file("lost"));
    EXPECT_EQ(write_whole_text(directory.file("lost"), "new"),
              std::errc::no_such_file_or_directory);
    fs::create_symlink("circle", directory.file("circle"));
    EXPECT_EQ(write_whole_text(directory.file("circle"), "new"),
              std::errc::too_many_symbolic_link_levels);
    testing::internal::GetCapturedStdout();
    EXPECT_TRUE(fs::is_symlink(directory.file("lost")));
    EXPECT_TRUE(fs::is_symlink(directory.file("circle")));
}

TEST(WholeFile, KeepsThePermissionsOfTheFileThatItReplaces) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.write("table.csv", "old");
    for (const mode_t permissions : {0600U, 0444U, 0666U, 0755U}) {
        fs::permissions(path, static_cast<fs::perms>(permissions));
        EXPECT_EQ(write_whole_text(path, "new"), std::error_code());
        EXPECT_EQ(permissions_of(path), permissions);
    }
    const mode_t mask = umask(027);
    EXPECT_EQ(write_whole_text(directory.file("fresh"), "new"), std::error_code());
    umask(mask);
    EXPECT_EQ(permissions_of(directory.file("fresh")), 0640U);
}

TEST(WholeFile, HasThePermissionsBeforeItHasContents) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.write("table.csv", "old");
    fs::permissions(path, static_cast<fs::perms>(0600));
    const WholeFile file(path);
    for (const auto& entry : fs::directory_iterator(directory.prefix())) {
        EXPECT_EQ(permissions_of(entry.path().string()), 0600U) << entry.path();
    }
}

TEST(WholeFile, KeepsTheOwnerOfTheFileThatItReplaces) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.write("table.csv", "old");
    if (geteuid() != 0 || chown(path.c_str(), kNobody, kNobody) != 0) {
        GTEST_SKIP() << "needs to give files away";
    }
    EXPECT_EQ(write_whole_text(path, "new"), std::error_code());

    struct stat status {};

    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, kNobody);
    EXPECT_EQ(status.st_gid, kNobody);
    EXPECT_EQ(test::read_file(path), "new");
}

TEST(WholeFile, OfAnotherUserIsReplacedWhereTheDirectoryAllowsIt) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.write("table.csv", "old");
    fs::permissions(directory.prefix(), fs::perms::all);
    const auto status =
        as_nobody([&path] { return write_whole_text(path, "new") == std::error_code() ? 0 : 1; });
    if (!status) {
        GTEST_SKIP() << "needs to become another user";
    }
    EXPECT_EQ(status, 0);
    EXPECT_EQ(test::read_file(path), "new");

    struct stat replaced {};

    ASSERT_EQ(stat(path.c_str(), &replaced), 0);
    EXPECT_EQ(replaced.st_uid, kNobody);
}

TEST(WholeFile, IsWrittenInPlaceWhereTheDirectoryIsClosed) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.write("table.csv", "an old and longer content");
    fs::permissions(path, static_cast<fs::perms>(0666));
    fs::permissions(directory.prefix(), static_cast<fs::perms>(0555));
    EXPECT_FALSE(is_written_in_place(directory.file("none")));
    testing::internal::CaptureStdout();
    const auto status = as_nobody([&] {
        const bool is_told = is_written_in_place(path);
        const std::error_code failure = write_whole_text(path, "new");
        const bool is_refused = static_cast<bool>(write_whole_text(directory.file("none"), "new"));
        std::fflush(stdout);
        return is_told && !failure && is_refused ? 0 : 1;
    });
    const std::string said = testing::internal::GetCapturedStdout();
    fs::permissions(directory.prefix(), fs::perms::owner_all);
    if (!status) {
        GTEST_SKIP() << "needs to become another user";
    }
    EXPECT_EQ(status, 0);
    EXPECT_EQ(test::read_file(path), "new");
    EXPECT_THAT(said, HasSubstr("-- Nothing can be made in the directory of " + path));
    EXPECT_THAT(said, HasSubstr("an interrupted write leaves a part of it\n"));
    EXPECT_THAT(said, HasSubstr("I cannot open file: " + directory.file("none")));
    EXPECT_EQ(directory.entryCount(), 1U);
}

TEST(WholeFile, ThatMayNotBeWrittenInAClosedDirectoryIsReported) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.write("table.csv", "old");
    fs::permissions(path, static_cast<fs::perms>(0444));
    fs::permissions(directory.prefix(), static_cast<fs::perms>(0555));
    const auto status = as_nobody([&path] {
        const bool is_refused = write_whole_text(path, "new") == std::errc::permission_denied;
        return is_refused && !is_written_in_place(path) ? 0 : 1;
    });
    fs::permissions(directory.prefix(), fs::perms::owner_all);
    if (!status) {
        GTEST_SKIP() << "needs to become another user";
    }
    EXPECT_EQ(status, 0);
    EXPECT_EQ(test::read_file(path), "old");
}

TEST(WholeFile, GoesToAPipeAsItIs) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.file("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    EXPECT_EQ(write_whole_text(path, "through"), std::error_code());
    char read_back[16] = {};
    EXPECT_EQ(read(reader, read_back, sizeof read_back), 7);
    EXPECT_STREQ(read_back, "through");
    close(reader);
    EXPECT_TRUE(fs::is_fifo(path));
    EXPECT_EQ(directory.entryCount(), 1U);
}

TEST(WholeFile, GoesToADeviceAsItIs) {
    const test::TemporaryDirectory directory;
    fs::create_symlink("/dev/null", directory.file("null"));
    EXPECT_EQ(write_whole_text("/dev/null", "lost"), std::error_code());
    EXPECT_EQ(write_whole_text(directory.file("null"), "lost"), std::error_code());
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    testing::internal::CaptureStdout();
    EXPECT_EQ(write_whole_text("/dev/full", "lost"), std::errc::no_space_on_device);
    EXPECT_THAT(testing::internal::GetCapturedStdout(), HasSubstr("I cannot write file"));
}

TEST(WholeFile, GoesToStandardOutputAmongTheLinesOfTheConsole) {
    testing::internal::CaptureStdout();
    std::fputs("before\n", stdout);
    EXPECT_EQ(write_whole_text("/dev/stdout", "between\n"), std::error_code());
    std::fputs("behind\n", stdout);
    // Standard output is a file here, which is not replaced.
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "before\nbetween\nbehind\n");
}

TEST(WriteWholeFile, TakesPieceAfterPiece) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.file("pieces");
    EXPECT_EQ(write_whole_file(path,
                               [](std::FILE* stream) {
                                   std::fputs("one ", stream);
                                   std::fputs("two", stream);
                               }),
              std::error_code());
    EXPECT_EQ(test::read_file(path), "one two");
}

TEST(WriteWholeFile, SaysWhatItCannotOpenOrWrite) {
    const test::TemporaryDirectory directory;
    fs::create_directories(directory.file("d/occupied"));
    testing::internal::CaptureStdout();
    EXPECT_EQ(write_whole_text(directory.file("none/f"), ""), std::errc::no_such_file_or_directory);
    EXPECT_EQ(write_whole_text(directory.file("d"), ""), std::errc::is_a_directory);
    const std::string said = testing::internal::GetCapturedStdout();
    EXPECT_THAT(said, HasSubstr("Error: I cannot open file: " + directory.file("none/f")));
    EXPECT_THAT(said, HasSubstr("Error: I cannot write file: " + directory.file("d")));
}

}  // namespace
}  // namespace ovik
