#include "results/checkpoint_path.h"

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "results/checkpoint.h"
#include "util/input_error.h"

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

TEST(CheckpointPath, MayNameWhatIsNotThereOrEmptyOrACheckpoint) {
    const test::TemporaryDirectory directory;
    EXPECT_NO_THROW(check_checkpoint_path(directory.file("none")));
    EXPECT_NO_THROW(check_checkpoint_path(directory.write("empty", "")));
    Checkpoint checkpoint;
    checkpoint.embedding = checkpoint.velocity = checkpoint.gains = {1.0, 2.0};
    const std::string path = directory.file("fit.ckpt");
    static_cast<void>(write_checkpoint(path, checkpoint));
    ASSERT_GT(std::filesystem::file_size(path), 0U);
    EXPECT_NO_THROW(check_checkpoint_path(path));
}

TEST(CheckpointPath, IsRefusedIfSomethingElseIsThere) {
    const test::TemporaryDirectory directory;
    for (const std::string& path : {directory.write("m.tsv", "h\nG1\t1\n"), directory.prefix()}) {
        try {
            check_checkpoint_path(path);
            ADD_FAILURE() << path;
        } catch (const InputError& error) {
            EXPECT_THAT(error.what(), testing::StartsWith(path + ": this is not a checkpoint"));
        }
    }
}

}  // namespace
}  // namespace ovik
