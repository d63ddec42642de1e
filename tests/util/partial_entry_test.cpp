#include "util/partial_entry.h"

#include <cerrno>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using Kind = PartialEntry::Kind;

TEST(PartialEntry, StandsBesideItsPlaceUntilItIsMovedThere) {
    const test::TemporaryDirectory directory;
    const std::string place = directory.write("f", "old");
    PartialEntry entry(place, Kind::File);
    ASSERT_TRUE(entry.isOpen());
    EXPECT_EQ(entry.path().find(directory.prefix() + ".ovik-"), 0U);
    EXPECT_EQ(directory.entryCount(), 2U);
    EXPECT_TRUE(entry.moveTo(place));
    EXPECT_EQ(test::read_file(place), "");
    EXPECT_EQ(directory.entryCount(), 1U);
}

TEST(PartialEntry, VanishesWithWhatItHolds) {
    const test::TemporaryDirectory directory;
    for (const Kind kind : {Kind::File, Kind::Directory}) {
        const PartialEntry entry(directory.file("f"), kind);
        ASSERT_TRUE(entry.isOpen());
        if (kind == Kind::Directory) {
            directory.write(std::filesystem::path(entry.path()).filename().string() + "/g", "x");
        }
        EXPECT_EQ(directory.entryCount(), 1U);
    }
    EXPECT_EQ(directory.entryCount(), 0U);
}

TEST(PartialEntry, TellsWhyItCannotBeMade) {
    for (const Kind kind : {Kind::File, Kind::Directory}) {
        const PartialEntry entry("no/such/directory/f", kind);
        EXPECT_EQ(errno, ENOENT);
        EXPECT_FALSE(entry.isOpen());
    }
}

TEST(PartialEntry, KeepsTheReasonOfAnEarlierFailure) {
    const test::TemporaryDirectory directory;
    std::optional<PartialEntry> entry(std::in_place, directory.file("f"), Kind::File);
    errno = ENOSPC;
    entry.reset();
    EXPECT_EQ(errno, ENOSPC);
}

/// Larger than any number of a process.
constexpr const char* kLeftFile = ".ovik-99999999-1.part";
constexpr const char* kLeftDirectory = ".ovik-99999999-2.part";

bool any_name(std::string_view /*name*/) {
    return true;
}

TEST(RemoveLeftOver, SparesThoseAtWork) {
    const test::TemporaryDirectory directory;
    const PartialEntry file(directory.file("f"), Kind::File);
    const PartialEntry folder(directory.file("f"), Kind::Directory);
    directory.write(kLeftFile, "left over");
    std::filesystem::create_directory(directory.file(kLeftDirectory));
    directory.write(std::string(kLeftDirectory) + "/g", "left over");
    EXPECT_EQ(directory.entryCount(), 4U);
    remove_left_over_files(directory.file("f"));
    EXPECT_EQ(directory.entryCount(), 3U);
    remove_left_over_directories(directory.file("f"), &any_name);
    EXPECT_EQ(directory.entryCount(), 2U);
    EXPECT_TRUE(std::filesystem::exists(file.path()));
    EXPECT_TRUE(std::filesystem::exists(folder.path()));
}

TEST(RemoveLeftOver, SparesWhatItsOwnProcessLocksAndTakesTheRest) {
    const test::TemporaryDirectory directory;
    // As of an earlier process that had the number of this one.
    directory.write(".ovik-" + std::to_string(getpid()) + "-999999.part", "left over");
    remove_left_over_files(directory.file("f"));
    EXPECT_EQ(directory.entryCount(), 0U);
}

TEST(RemoveLeftOver, SparesThoseOfARunningProcess) {
    const test::TemporaryDirectory directory;
    int pipe_ends[2];
    ASSERT_EQ(pipe(pipe_ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        close(pipe_ends[1]);
        char byte = 0;
        [[maybe_unused]] const ssize_t got = read(pipe_ends[0], &byte, 1);
        _exit(0);
    }
    close(pipe_ends[0]);
    const std::string name = ".ovik-" + std::to_string(child) + "-1.part";
    directory.write(name, "not locked, as on file systems without locks");
    remove_left_over_files(directory.file("f"));
    EXPECT_EQ(directory.entryCount(), 1U);
    close(pipe_ends[1]);
    waitpid(child, nullptr, 0);
    remove_left_over_files(directory.file("f"));
    EXPECT_EQ(directory.entryCount(), 0U);
}

TEST(RemoveLeftOver, TakesNothingWithoutTheWholePattern) {
    const test::TemporaryDirectory directory;
    const char* const kNames[] = {".ovik-x.part",
                                  ".ovik-x",
                                  "x.part",
                                  ".ovik-.part",
                                  ".ovik-99999999.part",
                                  ".ovik-99999999-.part",
                                  ".ovik--1.part",
                                  ".ovik-99999999-1x.part",
                                  ".ovik-99999999-1.part.txt",
                                  ".ovik-09999999-1.part",
                                  ".ovik-99999999999999999999-1.part",
                                  "ovik-99999999-1.part"};
    for (const char* name : kNames) {
        directory.write(name, "not ours");
        const std::string folder = "d" + std::string(name);
        std::filesystem::create_directory(directory.file(folder));
    }
    std::filesystem::create_directory(directory.file(".ovik-y.part"));
    directory.write(".ovik-y.part/work", "not ours");
    const std::size_t count = directory.entryCount();
    remove_left_over_files(directory.file("f"));
    remove_left_over_directories(directory.file("f"), &any_name);
    EXPECT_EQ(directory.entryCount(), count);
    EXPECT_EQ(test::read_file(directory.file(".ovik-y.part/work")), "not ours");
}

TEST(RemoveLeftOver, TakesFilesAndDirectoriesEachForThemselves) {
    const test::TemporaryDirectory directory;
    directory.write(kLeftFile, "left over");
    std::filesystem::create_directory(directory.file(kLeftDirectory));
    std::filesystem::create_symlink(directory.write("mine", "x"),
                                    directory.file(".ovik-99999999-3.part"));
    ASSERT_EQ(mkfifo(directory.file(".ovik-99999999-4.part").c_str(), 0600), 0);
    remove_left_over_directories(directory.file("f"), &any_name);
    EXPECT_EQ(directory.entryCount(), 4U);
    EXPECT_TRUE(std::filesystem::exists(directory.file(kLeftFile)));
    remove_left_over_files(directory.file("f"));
    EXPECT_EQ(directory.entryCount(), 3U);
    EXPECT_EQ(test::read_file(directory.file("mine")), "x");
}

TEST(RemoveLeftOver, TakesNoDirectoryWithAnythingForeign) {
    const auto is_known = [](std::string_view name) { return name == "known"; };
    for (const char* kind : {"file", "directory", "link"}) {
        const test::TemporaryDirectory directory;
        const std::string left = directory.file(kLeftDirectory);
        std::filesystem::create_directory(left);
        directory.write(std::string(kLeftDirectory) + "/known", "x");
        const std::string_view what(kind);
        if (what == "file") {
            directory.write(std::string(kLeftDirectory) + "/thesis.txt", "mine");
        } else if (what == "directory") {
            std::filesystem::create_directory(left + "/more");
        } else {
            std::filesystem::remove(left + "/known");
            std::filesystem::create_symlink("/", left + "/known");
        }
        const auto count = std::distance(std::filesystem::directory_iterator(left), {});
        remove_left_over_directories(directory.file("f"), is_known);
        ASSERT_TRUE(std::filesystem::exists(left)) << kind;
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(left), {}), count) << kind;
    }
}

TEST(RemoveLeftOver, TakesNothingOfAnotherUser) {
    constexpr uid_t kNobody = 65534;
    const test::TemporaryDirectory directory;
    const std::string path = directory.write(kLeftFile, "not ours");
    if (chown(path.c_str(), kNobody, kNobody) != 0) {
        GTEST_SKIP() << "needs to give files away";
    }
    std::filesystem::create_directory(directory.file(kLeftDirectory));
    const std::string known = directory.write(std::string(kLeftDirectory) + "/known", "x");
    ASSERT_EQ(chown(known.c_str(), kNobody, kNobody), 0);
    remove_left_over_files(directory.file("f"));
    remove_left_over_directories(directory.file("f"), &any_name);
    EXPECT_EQ(directory.entryCount(), 2U);
    EXPECT_TRUE(std::filesystem::exists(known));
}

TEST(RemoveLeftOver, DoesNothingWhereThereIsNoDirectory) {
    remove_left_over_files("no/such/directory/f");
    remove_left_over_directories("no/such/directory/f", &any_name);
    EXPECT_FALSE(std::filesystem::exists("no"));
}

}  // namespace
}  // namespace ovik
