#include "util/write_string.h"

#include <cerrno>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

TEST(WriteString, AppendsAndCreates) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.file("run.log");
    EXPECT_TRUE(write_string(path, "one\n", "", "a+", "", "#", "\n"));
    EXPECT_TRUE(write_string(path, "two\n", "", "a+", "", "#", "\n"));
    EXPECT_EQ(test::read_file(path), "one\ntwo\n");
}

TEST(WriteString, AddsNothingToTheText) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.file("run.log");
    EXPECT_TRUE(write_string(path, "no line end", "x", "w", "y", "#", "\n"));
    EXPECT_EQ(test::read_file(path), "no line end");
}

TEST(WriteString, TellsOfAFileThatCannotBeWritten) {
    EXPECT_FALSE(write_string("no/such/directory/run.log", "x", "", "a+", "", "#", "\n"));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_FALSE(write_string("/dev/full", "x", "", "a+", "", "#", "\n"));
    EXPECT_EQ(errno, ENOSPC);
}

}  // namespace
}  // namespace ovik
