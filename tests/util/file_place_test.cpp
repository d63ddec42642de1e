#include "util/file_place.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

TEST(DirectoryOf, EndsInItsSlash) {
    EXPECT_EQ(directory_of("a/b/c"), "a/b/");
    EXPECT_EQ(directory_of("/c"), "/");
    EXPECT_EQ(directory_of("c"), "./");
}

TEST(PlaceBehindLinks, IsThePathItselfWithoutLinks) {
    const test::TemporaryDirectory directory;
    for (const std::string& path : {directory.write("f", "x"), directory.file("none")}) {
        EXPECT_EQ(place_behind_links(path).path, path);
        EXPECT_EQ(place_behind_links(path).descriptor, -1);
    }
}

TEST(PlaceBehindLinks, FollowsLinksThatLeadToLinks) {
    const test::TemporaryDirectory directory;
    std::filesystem::create_directory(directory.file("d"));
    std::filesystem::create_symlink("d/second", directory.file("first"));
    std::filesystem::create_symlink("file", directory.file("d/second"));
    EXPECT_EQ(place_behind_links(directory.file("first")).path, directory.file("d/file"));
    std::filesystem::create_symlink(directory.file("first"), directory.file("absolute"));
    EXPECT_EQ(place_behind_links(directory.file("absolute")).path, directory.file("d/file"));
}

TEST(PlaceBehindLinks, IsNowhereIfTheyGoRoundInCircles) {
    const test::TemporaryDirectory directory;
    std::filesystem::create_symlink("b", directory.file("a"));
    std::filesystem::create_symlink("a", directory.file("b"));
    EXPECT_EQ(place_behind_links(directory.file("a")).path, "");
    EXPECT_EQ(errno, ELOOP);
}

TEST(PlaceBehindLinks, KnowsOtherNamesOfDescriptors) {
    const test::TemporaryDirectory directory;
    const std::string file = directory.write("f", "x");
    const int descriptor = open(file.c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    const std::string name = "/dev/fd/" + std::to_string(descriptor);
    EXPECT_EQ(place_behind_links(name).descriptor, descriptor);
    std::filesystem::create_symlink(name, directory.file("link"));
    EXPECT_EQ(place_behind_links(directory.file("link")).descriptor, descriptor);
    close(descriptor);
    EXPECT_EQ(place_behind_links(name).descriptor, -1);
}

}  // namespace
}  // namespace ovik
