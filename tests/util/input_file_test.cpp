#include "util/input_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

std::string first_line(const std::string& path) {
    return with_read_failures_named(path, [&] {
        std::ifstream file = open_input_file(path);
        if (!file.is_open()) {
            throw_read_failure();
        }
        std::string line;
        std::getline(file, line);
        return line;
    });
}

TEST(InputFile, EndsWithoutAnException) {
    const test::TemporaryDirectory directory;
    EXPECT_EQ(first_line(directory.write("f", "a\nb")), "a");
    EXPECT_EQ(first_line(directory.write("empty", "")), "");
}

TEST(InputFile, NamesWhatCannotBeReadAndWhy) {
    const test::TemporaryDirectory directory;
    for (const auto& [path, reason] : {std::pair(directory.prefix(), "Is a directory"),
                                       {directory.file("f"), "No such file or directory"}}) {
        try {
            first_line(path);
            ADD_FAILURE() << path;
        } catch (const std::system_error& error) {
            EXPECT_EQ(error.what(), path + ": cannot be read: " + reason);
        }
    }
}

}  // namespace
}  // namespace ovik
