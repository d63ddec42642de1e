#include "tools/h5ad_result.h"

#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/file.h>
#include <unistd.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"

#ifdef OVIK_READS_HDF5
    #include <csignal>
    #include <sys/resource.h>
    #include <sys/stat.h>

    #include "input/hdf5_dataset.h"
    #include "input/hdf5_file.h"

    #include "tests/support/hdf5_writer.h"
#endif

namespace ovik::tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

#ifdef OVIK_READS_HDF5

class H5adResult : public testing::Test {
  protected:
    H5adResult() {
        test::Hdf5Writer file(path_);
        test::write_cells(file);
        options_.into = path_;
        options_.matrix = path_;
    }

    std::string refusal(const std::vector<std::string>& names) {
        return test::refusal_of([&] { check_h5ad_result(options_, names); });
    }

    /// Writes a map of 4 rows; @return why it could not be written.
    std::string written(const std::vector<double>& map,
                        const RunFacts& facts,
                        Precision precision = Precision::Double) {
        return write_h5ad_result(
            path_, digest_of(names_), {map.data(), 4, map.size() / 4}, precision, facts);
    }

    std::vector<double> numbers(const std::string& dataset) {
        const hdf5::File file(path_, "cells.h5ad", 1e9);
        const hdf5::Dataset array(file, dataset);
        std::vector<double> values(array.size());
        array.readAll(values.data());
        return values;
    }

    test::TemporaryDirectory directory_;
    std::string path_ = directory_.file("cells.h5ad");
    std::vector<std::string> names_ = {"AAA-1", "CCC-1", "GGG-1", "TTT-1"};
    Options options_;
};

const std::vector<double> kMap = {0.1, 1, 2, 3, 4, 5, 6, -7};

TEST_F(H5adResult, StandsBesideWhatTheFileHolds) {
    chmod(path_.c_str(), 0640);
    const RunFacts facts = {{"perplexity", "30.5"},
                            {"seed", "7"},
                            {"metric", "\"euclidean\""},
                            {"multiscale", "[10,20]"},
                            {"stop_when", "null"}};
    EXPECT_EQ(written(kMap, facts), "");
    EXPECT_EQ(numbers("obsm/X_tsne"), kMap);
    EXPECT_EQ(numbers("layers/dense"), test::kCells);
    EXPECT_THAT(numbers("uns/tsne/perplexity"), ElementsAre(30.5));
    EXPECT_THAT(numbers("uns/tsne/multiscale"), ElementsAre(10, 20));
    const hdf5::File file(path_, "cells.h5ad", 1e9);
    EXPECT_EQ(file.textAttribute("obsm/X_tsne", "encoding-type"), "array");
    EXPECT_EQ(file.textAttribute("uns/tsne", "encoding-type"), "dict");
    EXPECT_EQ(file.textAttribute("uns/tsne/metric", "encoding-type"), "string");
    EXPECT_EQ(file.kindOf("uns/tsne/stop_when"), hdf5::Kind::Nothing);
    // Nothing is left beside it, and its permissions are as they were.
    EXPECT_EQ(directory_.entryCount(), 1);
    EXPECT_EQ(std::filesystem::status(path_).permissions(), std::filesystem::perms(0640));
}

TEST_F(H5adResult, TakesThePlaceOfAnEarlierOne) {
    EXPECT_EQ(written(kMap, {{"seed", "7"}}), "");
    const std::vector<double> other = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12.5};
    EXPECT_EQ(written(other, {{"perplexity", "5"}}, Precision::Float), "");
    EXPECT_THAT(numbers("obsm/X_tsne"), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12.5));
    EXPECT_EQ(hdf5::File(path_, "m", 1e9).kindOf("uns/tsne/seed"), hdf5::Kind::Nothing);
}

TEST_F(H5adResult, OfOtherRowsIsRefused) {
    EXPECT_EQ(check_h5ad_result(options_, names_), digest_of(names_));
    EXPECT_EQ(check_h5ad_result(options_, {"1", "2", "3", "4"}), digest_of(names_));
    EXPECT_THAT(refusal({"AAA-1"}),
                HasSubstr("cells.h5ad: its obs has 4 rows, and the map 1\nName the file"));
    EXPECT_THAT(refusal({"AAA-1", "CCC-1", "TTT-1", "GGG-1"}),
                HasSubstr("row 3 is \"GGG-1\" in its obs, and \"TTT-1\" in the map"));
}

TEST_F(H5adResult, OfRowsThatChangedDuringTheRunIsNotWritten) {
    std::swap(names_[2], names_[3]);
    const std::string before = test::read_file(path_);
    EXPECT_EQ(written(kMap, {}),
              "its obs has got other rows, or another order, since the run began");
    EXPECT_EQ(test::read_file(path_), before);
    EXPECT_EQ(directory_.entryCount(), 1);
}

TEST_F(H5adResult, RemovesTheCopiesOfRunsThatWereKilled) {
    // Larger than any number of a process.
    directory_.write(".ovik-99999999-1.part", "half a file");
    EXPECT_EQ(written(kMap, {}), "");
    EXPECT_EQ(directory_.entryCount(), 1);
}

TEST_F(H5adResult, ReplacesNoMapOfAnotherMatrix) {
    ASSERT_EQ(written(kMap, {}), "");
    check_h5ad_result(options_, names_);
    options_.matrix = directory_.write("other.tsv", "");
    EXPECT_THAT(refusal(names_), HasSubstr("cells.h5ad: it has obsm/X_tsne already, of another"));
}

TEST_F(H5adResult, NeedsAnAnnDataFile) {
    options_.into = directory_.file("none.h5ad");
    EXPECT_THAT(refusal(names_), HasSubstr("none.h5ad: there is no such file"));
    options_.into = directory_.write("text.h5ad", "gene\ta\n");
    EXPECT_THAT(refusal(names_), HasSubstr("text.h5ad: this HDF5 file cannot be opened"));
    options_.into = directory_.file("empty.h5ad");
    { test::Hdf5Writer file(options_.into); }
    EXPECT_THAT(refusal(names_), HasSubstr("empty.h5ad: this is no .h5ad file: it has no obs"));
    options_.into.clear();
    check_h5ad_result(options_, names_);
}

/// Lets no file of this process grow beyond a size while it lives.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(std::size_t bytes) : handler_(signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limit = before_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }

    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        signal(SIGXFSZ, handler_);
    }

  private:
    rlimit before_{};
    void (*handler_)(int);
};

TEST_F(H5adResult, SaysWhatTheSystemSaysWhereItCannotBeWritten) {
    const std::string before = test::read_file(path_);
    const std::vector<double> large(4 * 100'000, 1.0);
    std::string said;
    {
        const FileSizeLimit limit(before.size() + 1000);
        said = written(large, {});
    }
    EXPECT_EQ(said, "obsm/X_tsne: cannot be written (File too large)");
    {
        // A small map is not written before the file is closed.
        const FileSizeLimit limit(before.size() + 100);
        said = written(kMap, {});
    }
    EXPECT_EQ(said, path_ + ": cannot be written (File too large)");
    EXPECT_EQ(test::read_file(path_), before);
    EXPECT_EQ(directory_.entryCount(), 1);
}

TEST_F(H5adResult, IsNotWrittenIntoAFileThatAnotherProgramChanges) {
    const int file = open(path_.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(file, LOCK_EX), 0);
    EXPECT_EQ(refusal(names_),
              "--into: " + path_ + ": another program has it open to change it\nClose it there.");
    EXPECT_EQ(written(kMap, {}), "another program has it open to change it");
    close(file);
    EXPECT_EQ(refusal(names_), "");
    EXPECT_EQ(written(kMap, {}), "");
}

TEST_F(H5adResult, LeavesTheFileAsItIsWhereItFails) {
    const std::string before = test::read_file(path_);
    // A group cannot be made where an array stands.
    EXPECT_NE(written(kMap, {{"a", "1"}, {"a/b", "2"}}), "");
    EXPECT_EQ(test::read_file(path_), before);
    EXPECT_EQ(directory_.entryCount(), 1);
    path_ = directory_.file("none");
    EXPECT_NE(written(kMap, {}), "");
}

#else

TEST(H5adResult, NeedsHdf5) {
    Options options;
    check_h5ad_result(options, {});
    options.into = "cells.h5ad";
    EXPECT_THAT(test::refusal_of([&] { check_h5ad_result(options, {}); }),
                HasSubstr("built without HDF5"));
}

#endif

}  // namespace
}  // namespace ovik::tool
