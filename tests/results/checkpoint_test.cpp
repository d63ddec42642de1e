#include "results/checkpoint.h"

#include <cmath>
#include <cstring>
#include <filesystem>
#include <limits>
#include <span>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/random_points.h"
#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::HasSubstr;

Checkpoint small_checkpoint() {
    Checkpoint checkpoint;
    checkpoint.run = {
        2, 5, 3, {{"perplexity", "12.75"}, {"theta", "0.5"}, {"switch", "-1"}}, {1, 2}, {3, 4}};
    checkpoint.iteration = 137;
    checkpoint.cost = 1.5;
    checkpoint.marked_cost = 2.0;
    checkpoint.embedding = {0.0, -0.0, 1e-310, -1e300, 0.1, 2.0};
    checkpoint.velocity = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0};
    checkpoint.gains = {0.01, 1.0, 1.2, 0.8, 0.64, 7.0};
    return checkpoint;
}

/// Of the same bits; also for NaN and the two zeros.
bool same_bits(const std::vector<double>& a, const std::vector<double>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

class CheckpointFile : public testing::Test {
  protected:
    /// Why a file of these bytes is refused; empty if it is not.
    [[nodiscard]] std::string refusal(const std::string& bytes) const {
        return refusalOf(directory_.write("refused", bytes));
    }

    [[nodiscard]] static std::string refusalOf(const std::string& path) {
        try {
            read_checkpoint(path);
        } catch (const InputError& error) {
            return error.what();
        }
        return "";
    }

    [[nodiscard]] std::string smallFile() const {
        EXPECT_EQ(write_checkpoint(path_, small_checkpoint()), "");
        return test::read_file(path_);
    }

    test::TemporaryDirectory directory_;
    std::string path_ = directory_.file("fit.ckpt");
};

TEST_F(CheckpointFile, GivesBackEveryBit) {
    Checkpoint written = small_checkpoint();
    written.velocity[0] = std::nan("");
    written.velocity[1] = std::numeric_limits<double>::infinity();
    ASSERT_EQ(write_checkpoint(path_, written), "");
    const Checkpoint read = read_checkpoint(path_);
    EXPECT_EQ(read.run.rows, 2U);
    EXPECT_EQ(read.run.columns, 5U);
    EXPECT_EQ(read.run.out_dims, 3U);
    EXPECT_EQ(read.run.options, written.run.options);
    EXPECT_EQ(read.run.values, (Digest{1, 2}));
    EXPECT_EQ(read.run.names, (Digest{3, 4}));
    EXPECT_EQ(read.iteration, 137);
    EXPECT_EQ(read.cost, 1.5);
    EXPECT_EQ(read.marked_cost, 2.0);
    EXPECT_TRUE(same_bits(read.embedding, written.embedding));
    EXPECT_TRUE(same_bits(read.velocity, written.velocity));
    EXPECT_TRUE(same_bits(read.gains, written.gains));
}

TEST_F(CheckpointFile, HoldsAnEmbeddingOfNoPoints) {
    ASSERT_EQ(write_checkpoint(path_, Checkpoint{}), "");
    EXPECT_TRUE(read_checkpoint(path_).embedding.empty());
}

TEST_F(CheckpointFile, HasTheLowestByteFirst) {
    const std::string bytes = smallFile();
    using std::string_literals::operator""s;
    EXPECT_EQ(bytes.substr(0, 40),
              "OVIKCKPT"
              "\3\0\0\0\0\0\0\0"
              "\2\0\0\0\0\0\0\0"
              "\5\0\0\0\0\0\0\0"
              "\3\0\0\0\0\0\0\0"s);
    const std::string options = "perplexity=12.75\ntheta=0.5\nswitch=-1\n";
    EXPECT_EQ(bytes.substr(40, 8), "\x25\0\0\0\0\0\0\0"s);
    EXPECT_EQ(bytes.substr(48, options.size()), options);
    // Behind two digests, 137, 1.5, which is 0x3ff8000000000000, and 2.
    const std::size_t progress = 48 + options.size() + 32;
    EXPECT_EQ(bytes.substr(progress, 8), "\x89\0\0\0\0\0\0\0"s);
    EXPECT_EQ(bytes.substr(progress + 8, 8), "\0\0\0\0\0\0\xf8\x3f"s);
    EXPECT_EQ(bytes.substr(progress + 16, 8), "\0\0\0\0\0\0\0\x40"s);
    EXPECT_EQ(bytes.size(), progress + 24 + 3 * 6 * 8 + 8);
}

TEST_F(CheckpointFile, IsRefusedWhereverItIsCut) {
    const std::string whole = smallFile();
    ASSERT_EQ(refusal(whole), "");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_NE(refusal(whole.substr(0, size)), "") << size << " bytes";
    }
}

TEST_F(CheckpointFile, IsRefusedWithBytesBehindIt) {
    const std::string whole = smallFile();
    for (const std::size_t more : {1U, 8U, 24U, 1000U}) {
        EXPECT_THAT(refusal(whole + std::string(more, '\0')), HasSubstr("is damaged")) << more;
    }
}

TEST_F(CheckpointFile, IsRefusedWithAnyBitFlipped) {
    const std::string whole = smallFile();
    for (std::size_t i = 0; i < whole.size(); ++i) {
        for (unsigned int bit = 0; bit < 8; ++bit) {
            std::string damaged = whole;
            damaged[i] = static_cast<char>(static_cast<unsigned char>(damaged[i]) ^ (1U << bit));
            EXPECT_NE(refusal(damaged), "") << "bit " << bit << " of byte " << i;
        }
    }
}

TEST_F(CheckpointFile, IsRefusedForWhatIsWrongWithIt) {
    const std::string whole = smallFile();
    const std::string name = directory_.file("refused");
    EXPECT_EQ(refusal("gene\ta\nG1\t2\n"), name + ": this is not a checkpoint");
    EXPECT_EQ(refusal(""), name + ": this is not a checkpoint");
    EXPECT_EQ(refusal(whole.substr(0, 100)),
              name +
                  ": the checkpoint is damaged: it has 100 bytes only\n"
                  "Go on from another one, or start anew.");
    EXPECT_THAT(refusal(whole.substr(0, 200)),
                HasSubstr("its 200 bytes are not those of 6 coordinates"));
    std::string changed = whole;
    changed[150] = static_cast<char>(changed[150] + 1);
    EXPECT_THAT(refusal(changed), HasSubstr("its checksum is not that of its bytes"));
    changed = whole;
    changed[8] = 1;
    EXPECT_THAT(refusal(changed),
                HasSubstr("this is a checkpoint of version 1, and only those of version 3 can"));
    // More options than there can be.
    changed = whole;
    changed[45] = '\x7f';
    EXPECT_THAT(refusal(changed), HasSubstr("its sizes make no sense"));
    // More rows than memory has bytes.
    changed = whole;
    changed[23] = '\x7f';
    EXPECT_THAT(refusal(changed), HasSubstr("its sizes make no sense"));
}

TEST_F(CheckpointFile, IsRefusedWhereItCannotBeRead) {
    EXPECT_THAT(refusalOf("no/such/file"),
                HasSubstr("no/such/file: the checkpoint cannot be read (No such file"));
    EXPECT_THAT(refusalOf(directory_.prefix()), HasSubstr("cannot be read (Is a directory)"));
    EXPECT_THAT(refusalOf("/dev/zero"), HasSubstr("this is not a checkpoint"));
}

TEST_F(CheckpointFile, ReplacesAnEarlierOneWhole) {
    static_cast<void>(smallFile());
    Checkpoint later = small_checkpoint();
    later.iteration = 200;
    EXPECT_EQ(write_checkpoint(path_, later), "");
    EXPECT_EQ(read_checkpoint(path_).iteration, 200);
    EXPECT_EQ(directory_.entryCount(), 1U);
}

TEST_F(CheckpointFile, SaysWhyItCannotBeWritten) {
    EXPECT_EQ(write_checkpoint("no/such/directory/fit.ckpt", small_checkpoint()),
              "No such file or directory");
    std::filesystem::create_directories(path_ + "/occupied");
    EXPECT_NE(write_checkpoint(path_, small_checkpoint()), "");
    EXPECT_EQ(directory_.entryCount(), 1U);
}

TEST_F(CheckpointFile, IsKnownByItsFirstBytes) {
    const std::string whole = smallFile();
    EXPECT_TRUE(opens_as_checkpoint(path_));
    EXPECT_TRUE(opens_as_checkpoint(directory_.write("cut", whole.substr(0, 8))));
    EXPECT_FALSE(opens_as_checkpoint(directory_.write("cut", whole.substr(0, 7))));
    EXPECT_FALSE(opens_as_checkpoint(directory_.write("matrix", "gene\ta\nG1\t2\n")));
    EXPECT_FALSE(opens_as_checkpoint("no/such/file"));
}

/// Why a run cannot go on from the small checkpoint; empty if it can.
std::string difference(const RunIdentity& run, int max_iter = 1000) {
    try {
        check_goes_on("fit.ckpt", small_checkpoint(), run, max_iter);
    } catch (const InputError& error) {
        return error.what();
    }
    return "";
}

TEST(CheckGoesOn, TakesTheSameRunToItsOwnOrALaterIteration) {
    EXPECT_EQ(difference(small_checkpoint().run), "");
    EXPECT_EQ(difference(small_checkpoint().run, 137), "");
    EXPECT_EQ(difference(small_checkpoint().run, 136),
              "fit.ckpt: this checkpoint is of iteration 137, and the run ends with 136\n"
              "Set a later last iteration, or start anew.");
}

TEST(CheckGoesOn, NamesEveryDifferenceWithBothValues) {
    RunIdentity run = small_checkpoint().run;
    run.options = {{"perplexity", "12.750000000000002"}, {"theta", "0.5"}, {"rate", "200"}};
    EXPECT_EQ(difference(run),
              "fit.ckpt: this checkpoint is not of this run\n"
              "  perplexity: 12.75 in the checkpoint, 12.750000000000002 now\n"
              "  rate: none in the checkpoint, 200 now\n"
              "  switch: -1 in the checkpoint, none now\n"
              "Give the matrix and the options of the run that wrote it, or start anew.");
}

TEST(CheckGoesOn, RefusesSizesThatContradictTheOptions) {
    Checkpoint checkpoint = small_checkpoint();
    RunIdentity run = checkpoint.run;
    checkpoint.run.out_dims = 50;
    EXPECT_THROW(check_goes_on("fit.ckpt", checkpoint, run, 200), InputError);
    checkpoint = small_checkpoint();
    checkpoint.iteration = -1;
    EXPECT_THROW(check_goes_on("fit.ckpt", checkpoint, run, 200), InputError);
}

TEST(CheckGoesOn, TellsAnotherMatrixByItsShapeOrElseByItsContents) {
    RunIdentity run = small_checkpoint().run;
    run.values.high = 9;
    EXPECT_THAT(difference(run), HasSubstr("\n  the values of the matrix are others\nGive"));
    run.names.low = 9;
    EXPECT_THAT(difference(run), HasSubstr("\n  the names of its rows are others\nGive"));
    run.rows = 4;
    run.columns = 6;
    EXPECT_THAT(difference(run),
                HasSubstr("\n  rows: 2 in the checkpoint, 4 now\n"
                          "  columns: 5 in the checkpoint, 6 now\nGive"));
}

}  // namespace
}  // namespace ovik
