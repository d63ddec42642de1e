#include "results/kept_runs.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <system_error>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

const RunKey kRun{"perplexity_5_seed_1", "rows=3\nseed=1\n"};
const NumberLists kLists{{"map", {1.5, -0.0, 3e-310}}, {"nothing", {}}, {"kept", {0.25}}};

void write_bytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

class KeptRunsTest : public testing::Test {
  protected:
    test::TemporaryDirectory directory_;
    KeptRuns runs_{directory_.file("runs/of/it")};
};

TEST_F(KeptRunsTest, AreFoundAsTheyWereKept) {
    EXPECT_FALSE(runs_.find(kRun).has_value());
    EXPECT_EQ(runs_.size(), 0U);
    runs_.keep(kRun, kLists);
    const auto found = runs_.find(kRun);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(*found, kLists);
    EXPECT_TRUE(std::signbit(found->at("map")[1]));
    EXPECT_EQ(runs_.size(), std::filesystem::file_size(runs_.pathOf(kRun)));
    runs_.keep(kRun, {});
    EXPECT_EQ(runs_.find(kRun), NumberLists());
}

TEST_F(KeptRunsTest, AreNotTakenForThoseOfAnotherIdentity) {
    const RunKey other{kRun.name, "rows=3\nseed=2\n"};
    runs_.keep(kRun, kLists);
    EXPECT_FALSE(runs_.find(other).has_value());
    // Not even under the name of the other.
    std::filesystem::copy_file(runs_.pathOf(kRun), runs_.pathOf(other));
    EXPECT_FALSE(runs_.find(other).has_value());
    runs_.keep(other, {});
    EXPECT_EQ(runs_.find(kRun), kLists);
}

TEST_F(KeptRunsTest, AreNotThereIfDamaged) {
    runs_.keep(kRun, kLists);
    const std::string path = runs_.pathOf(kRun);
    const std::string whole = test::read_file(path);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 1);
        write_bytes(path, damaged);
        EXPECT_FALSE(runs_.find(kRun).has_value()) << at;
        write_bytes(path, whole.substr(0, at));
        EXPECT_FALSE(runs_.find(kRun).has_value()) << at;
    }
    write_bytes(path, whole + whole);
    EXPECT_FALSE(runs_.find(kRun).has_value());
    write_bytes(path, whole);
    EXPECT_TRUE(runs_.find(kRun).has_value());
}

TEST_F(KeptRunsTest, AreRefusedWhereTheyCannotBeWritten) {
    const std::string file = directory_.file("file");
    write_bytes(file, "");
    EXPECT_THROW(KeptRuns(file + "/runs").keep(kRun, kLists), std::system_error);
    std::filesystem::create_directories(runs_.pathOf(kRun));
    EXPECT_THROW(runs_.keep(kRun, kLists), std::system_error);
}

TEST_F(KeptRunsTest, AreNotTakenForMissingIfTheyCannotBeRead) {
    // A directory in their place can be opened but not read, by root as well.
    std::filesystem::create_directories(runs_.pathOf(kRun));
    try {
        const auto found = runs_.find(kRun);
        ADD_FAILURE() << "found: " << found.has_value();
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), testing::StartsWith(runs_.pathOf(kRun) + ": "));
        EXPECT_THAT(error.what(), testing::HasSubstr("cannot be read (Is a directory)\nMake it"));
    }
    EXPECT_THROW(KeptRuns(runs_.pathOf(kRun) + std::string(300, 'x')).find(kRun),
                 std::runtime_error);
}

TEST_F(KeptRunsTest, HaveTheSizeOfTheFilesThatAreThere) {
    runs_.keep(kRun, kLists);
    const std::uintmax_t whole = runs_.size();
    EXPECT_GT(whole, 0U);
    std::filesystem::create_symlink("gone", directory_.file("runs/of/it/gone.run"));
    EXPECT_EQ(runs_.size(), whole);
    EXPECT_EQ(KeptRuns(runs_.pathOf(kRun)).size(), 0U);
}

}  // namespace
}  // namespace ovik
