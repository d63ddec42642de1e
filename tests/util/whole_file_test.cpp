#include "util/whole_file.h"

#include <cerrno>
#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

TEST(WholeFile, AppearsWithItsCommit) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.write("table.csv", "old");
    {
        WholeFile file(path);
        ASSERT_NE(file.stream(), nullptr);
        std::fputs("new", file.stream());
        EXPECT_EQ(test::read_file(path), "old");
        EXPECT_TRUE(file.commit());
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
    const WholeFile file("no/such/directory/table.csv");
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(file.stream(), nullptr);
}

TEST(WholeFile, KeepsAnEarlierFileWhenTheMoveFails) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.file("table.csv");
    std::filesystem::create_directories(path + "/occupied");
    {
        WholeFile file(path);
        std::fputs("new", file.stream());
        EXPECT_FALSE(file.commit());
        EXPECT_EQ(errno, EISDIR);
    }
    EXPECT_EQ(errno, EISDIR);
    EXPECT_TRUE(std::filesystem::is_directory(path));
    EXPECT_EQ(directory.entryCount(), 1U);
}

}  // namespace
}  // namespace ovik
