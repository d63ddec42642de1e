#include "input/matrix_source.h"

#include <iterator>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/gzip.h"
#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::HasSubstr;

class MatrixSourceTest : public testing::Test {
  protected:
    static std::string contentOf(MatrixSource& source) {
        std::string content = source.takeHead();
        content.append(std::istreambuf_iterator<char>(source.rest()), {});
        return content;
    }

    test::TemporaryDirectory directory_;
};

TEST_F(MatrixSourceTest, KnowsARegularFile) {
    const std::string path = directory_.write("m.txt", "h\nG1\t1\n");
    MatrixSource source(path);
    EXPECT_EQ(source.name(), path);
    EXPECT_EQ(source.path(), path);
    EXPECT_TRUE(source.isSeekable());
    EXPECT_EQ(source.size(), 7U);
    EXPECT_EQ(source.head(), "h\nG1\t1\n");
    EXPECT_TRUE(source.isWholeInHead());
    EXPECT_EQ(contentOf(source), "h\nG1\t1\n");
    EXPECT_EQ(source.head(), "");
}

TEST_F(MatrixSourceTest, UnpacksGzip) {
    MatrixSource source(directory_.write("m.gz", test::gzipped("h\nG1\t1\n")));
    EXPECT_FALSE(source.isSeekable());
    EXPECT_EQ(source.size(), std::nullopt);
    EXPECT_EQ(contentOf(source), "h\nG1\t1\n");
}

TEST_F(MatrixSourceTest, ReadsAPipeOnce) {
    const std::string path = directory_.file("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const std::string content(300000, 'x');
    std::thread writer([&] { directory_.write("pipe", content); });
    MatrixSource source(path);
    EXPECT_FALSE(source.isSeekable());
    EXPECT_EQ(source.size(), std::nullopt);
    EXPECT_EQ(contentOf(source), content);
    writer.join();
}

TEST_F(MatrixSourceTest, HasAHeadThatHoldsTheFirstLinesWhole) {
    // More than the first bytes that are looked at.
    const std::string line(1200000, '1');
    MatrixSource source(directory_.write("m.txt", line + "\n" + line + "\n" + line + "\n" + line));
    EXPECT_FALSE(source.isWholeInHead());
    EXPECT_THAT(std::string(source.head()), HasSubstr(line + "\n" + line + "\n"));
    EXPECT_EQ(contentOf(source).size(), 4 * line.size() + 3);
}

TEST_F(MatrixSourceTest, TakesTextAtHandAsItIs) {
    for (const std::string text : {"", "h\nG1\t1\n", "\x1f\x8b no gzip"}) {
        MatrixSource source("m.xlsx", text);
        EXPECT_EQ(source.name(), "m.xlsx");
        EXPECT_EQ(source.path(), "");
        EXPECT_FALSE(source.isSeekable());
        EXPECT_TRUE(source.isWholeInHead());
        EXPECT_EQ(source.size(), text.size());
        EXPECT_EQ(contentOf(source), text);
    }
    std::string lines;
    while (lines.size() < 500000) {
        lines += "a line of many\n";
    }
    MatrixSource source("m.xlsx", lines);
    EXPECT_FALSE(source.isWholeInHead());
    EXPECT_EQ(contentOf(source), lines);
}

TEST_F(MatrixSourceTest, RefusesWhatCannotBeOpenedOrUnpacked) {
    const struct {
        std::string path;
        const char* reason;
    } kCases[] = {
        {directory_.file("none"), "/none: there is no such file"},
        {directory_.prefix(), "/: this is a directory: name the matrix file in it"},
        {directory_.write("cut.gz", "\x1f\x8b\x08"), "cut.gz: the gzip data end in the middle"},
        {directory_.file(std::string(300, 'm')), "m: cannot be read (File name too long)"},
    };

    for (const auto& [path, reason] : kCases) {
        try {
            const MatrixSource source(path);
            ADD_FAILURE() << path;
        } catch (const InputError& error) {
            EXPECT_THAT(error.what(), HasSubstr(reason));
        }
    }
}

TEST_F(MatrixSourceTest, NamesWhatCannotBeRead) {
    try {
        // There is nothing at the start of a process's memory.
        const MatrixSource source("/proc/self/mem");
        ADD_FAILURE();
    } catch (const std::system_error& error) {
        EXPECT_STREQ(error.what(), "/proc/self/mem: cannot be read: Input/output error");
    }
}

}  // namespace
}  // namespace ovik
