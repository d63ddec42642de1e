#include "tools/given_files.h"

#include <string>
#include <sys/stat.h>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik::tool {
namespace {

TEST(GivenFiles, AreNoneOfAPlainRun) {
    Options options;
    options.matrix = "m.tsv";
    options.load.labels_file = "labels.txt";
    EXPECT_TRUE(given_files(options).empty());
}

TEST(GivenFiles, HaveTheDigestOfTheirBytes) {
    const test::TemporaryDirectory directory;
    Options options;
    options.start_file = directory.write("start.tsv", "name\tx\ty\n");
    options.neighbours_file = directory.write("graph.mtx", "%%MatrixMarket\n");
    options.load.row_names_file = directory.write("names.txt", std::string(200000, 'a'));
    const std::vector<GivenFile> files = given_files(options);
    ASSERT_EQ(files.size(), 3U);
    EXPECT_EQ(files[0].option, "row-names");
    EXPECT_EQ(files[0].digest, digest_of(std::string_view(std::string(200000, 'a'))));
    EXPECT_EQ(files[1].option, "neighbours-from");
    EXPECT_EQ(files[1].path, options.neighbours_file);
    EXPECT_EQ(files[2].option, "start");
    EXPECT_EQ(files[2].digest, digest_of(std::string_view("name\tx\ty\n")));
}

TEST(GivenFiles, HaveNoDigestIfTheyAreGoneOrCanBeReadOnce) {
    const test::TemporaryDirectory directory;
    Options options;
    options.start_file = directory.file("none");
    options.neighbours_file = directory.file("pipe");
    ASSERT_EQ(mkfifo(options.neighbours_file.c_str(), 0600), 0);
    for (const GivenFile& file : given_files(options)) {
        EXPECT_EQ(file.digest, std::nullopt) << file.option;
    }
}

TEST(ReplaceGivenFile, ChangesThatOptionAlone) {
    Options options;
    options.start_file = "a";
    options.neighbours_file = "b";
    replace_given_file(options, "start", "c");
    EXPECT_EQ(options.start_file, "c");
    EXPECT_EQ(options.neighbours_file, "b");
    replace_given_file(options, "neighbours-from", "d");
    replace_given_file(options, "row-names", "e");
    EXPECT_EQ(options.neighbours_file, "d");
    EXPECT_EQ(options.load.row_names_file, "e");
}

}  // namespace
}  // namespace ovik::tool
