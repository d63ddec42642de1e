#include "results/map_model.h"

#include <cmath>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "results/byte_encoding.h"
#include "util/input_error.h"

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using testing::HasSubstr;

MapModel small_model() {
    MapModel model;
    model.rows = 3;
    model.columns = 2;
    model.out_dims = 2;
    model.options = {{"perplexity", "1.5"}, {"theta", "0.5"}};
    model.perplexity = 1.5;
    model.row_names = {"YAL001C", "", "a name, with \"signs\"\n"};
    model.column_names = {"heat 10", "cold"};
    model.missing = "row-mean";
    model.transformations = "log1p, scale";
    model.column_means = {1.0, -2.5};
    model.divisors = {0.5, 3.0};
    model.centres = {0.25, 1e-310};
    model.factor = 0.125;
    model.largest_nearest_distance = 0.75;
    model.input = {0.0, -0.0, 1.0, -1.0, 0.1, 0.2};
    model.embedding = {1e-300, 2.0, 3.0, -4.0, 5.0, 6.0};
    return model;
}

class ModelFile : public testing::Test {
  protected:
    /// Why a file of these bytes is refused; empty if it is not.
    [[nodiscard]] std::string refusal(const std::string& bytes) const {
        return refusalOf(directory_.write("refused", bytes));
    }

    [[nodiscard]] static std::string refusalOf(const std::string& path) {
        try {
            read_map_model(path);
        } catch (const InputError& error) {
            return error.what();
        }
        return "";
    }

    [[nodiscard]] std::string fileOf(const MapModel& model) const {
        EXPECT_FALSE(write_map_model(path_, model));
        return test::read_file(path_);
    }

    /// The same file with another body, and the digest that goes with it.
    static std::string withBody(const std::string& file, const std::string& body) {
        ByteEncoder whole;
        whole.put(file.substr(0, 16));
        whole.put(std::uint64_t{body.size()});
        whole.put(body);
        whole.put(digest_of(std::string_view(whole.bytes())));
        return whole.take();
    }

    test::TemporaryDirectory directory_;
    std::string path_ = directory_.file("map.model");
};

TEST_F(ModelFile, GivesBackAllThatWasWritten) {
    const MapModel written = small_model();
    static_cast<void>(fileOf(written));
    const MapModel read = read_map_model(path_);
    EXPECT_EQ(read.rows, 3U);
    EXPECT_EQ(read.columns, 2U);
    EXPECT_EQ(read.out_dims, 2U);
    EXPECT_EQ(read.options, written.options);
    EXPECT_EQ(read.perplexity, 1.5);
    EXPECT_EQ(read.row_names, written.row_names);
    EXPECT_EQ(read.column_names, written.column_names);
    EXPECT_EQ(read.missing, "row-mean");
    EXPECT_EQ(read.transformations, "log1p, scale");
    EXPECT_EQ(read.column_means, written.column_means);
    EXPECT_TRUE(read.subtracted.empty());
    EXPECT_EQ(read.divisors, written.divisors);
    EXPECT_EQ(read.centres, written.centres);
    EXPECT_EQ(read.factor, 0.125);
    EXPECT_EQ(read.largest_nearest_distance, 0.75);
    EXPECT_EQ(read.input, written.input);
    EXPECT_TRUE(std::signbit(read.input[1]));
    EXPECT_EQ(read.embedding, written.embedding);
}

TEST_F(ModelFile, IsTheSameForTheSameMap) {
    EXPECT_EQ(fileOf(small_model()), fileOf(small_model()));
}

TEST_F(ModelFile, IsRefusedWhereverItIsCut) {
    const std::string whole = fileOf(small_model());
    ASSERT_EQ(refusal(whole), "");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_NE(refusal(whole.substr(0, size)), "") << size << " bytes";
    }
}

TEST_F(ModelFile, IsRefusedWithBytesBehindIt) {
    const std::string whole = fileOf(small_model());
    for (const std::size_t more : {1U, 8U, 24U, 1000U}) {
        EXPECT_THAT(refusal(whole + std::string(more, '\0')), HasSubstr("is damaged")) << more;
    }
}

TEST_F(ModelFile, IsRefusedWithAnyBitFlipped) {
    const std::string whole = fileOf(small_model());
    for (std::size_t i = 0; i < whole.size(); ++i) {
        for (unsigned int bit = 0; bit < 8; ++bit) {
            std::string damaged = whole;
            damaged[i] = static_cast<char>(static_cast<unsigned char>(damaged[i]) ^ (1U << bit));
            EXPECT_NE(refusal(damaged), "") << "bit " << bit << " of byte " << i;
        }
    }
}

TEST_F(ModelFile, NeverTrustsALengthThoughItsDigestIsRight) {
    const std::string whole = fileOf(small_model());
    const std::string body = whole.substr(24, whole.size() - 40);
    ASSERT_EQ(withBody(whole, body), whole);
    for (std::size_t place = 0; place + 8 <= body.size(); ++place) {
        for (const char* const number :
             {"\xff\xff\xff\xff\xff\xff\xff\xff", "\x01\x00\x00\x00\x00\x00\x00\x20"}) {
            std::string damaged = body;
            damaged.replace(place, 8, number, 8);
            // What stands for a number may be any number; nothing is read from beyond the end.
            const std::string complaint = refusal(withBody(whole, damaged));
            EXPECT_TRUE(complaint.empty() || complaint.find("is damaged") != std::string::npos);
        }
    }
    for (std::size_t size = 0; size < body.size(); ++size) {
        EXPECT_THAT(refusal(withBody(whole, body.substr(0, size))), HasSubstr("contradict"));
    }
    EXPECT_THAT(refusal(withBody(whole, body + "x")), HasSubstr("contradict"));
}

TEST_F(ModelFile, IsRefusedIfItsPartsAreNotOfOneMap) {
    const auto changed = [this](auto change) {
        MapModel model = small_model();
        change(model);
        return refusal(fileOf(model));
    };
    const auto contradicts = HasSubstr("its parts contradict one another\nWrite it anew with");
    EXPECT_THAT(changed([](MapModel& model) { model.rows = 0; }), contradicts);
    EXPECT_THAT(changed([](MapModel& model) { model.rows = 6; }), contradicts);
    EXPECT_THAT(changed([](MapModel& model) { model.columns = 3; }), contradicts);
    EXPECT_THAT(changed([](MapModel& model) { model.out_dims = 3; }), contradicts);
    EXPECT_THAT(changed([](MapModel& model) { model.row_names.pop_back(); }), contradicts);
    EXPECT_THAT(changed([](MapModel& model) { model.column_names.pop_back(); }), contradicts);
    EXPECT_THAT(changed([](MapModel& model) { model.column_means.clear(); }), contradicts);
    EXPECT_THAT(changed([](MapModel& model) { model.subtracted = {1.0}; }), contradicts);
    EXPECT_THAT(changed([](MapModel& model) { model.centres.pop_back(); }), contradicts);
    EXPECT_THAT(changed([](MapModel& model) { model.input.pop_back(); }), contradicts);
    EXPECT_THAT(changed([](MapModel& model) { model.input[0] = HUGE_VAL; }), contradicts);
    EXPECT_THAT(changed([](MapModel& model) { model.embedding[0] = NAN; }), contradicts);
    EXPECT_THAT(changed([](MapModel& model) { model.factor = NAN; }), contradicts);
    EXPECT_THAT(changed([](MapModel& model) { model.perplexity = 0.0; }), contradicts);
    EXPECT_EQ(changed([](MapModel& model) { model.column_names.clear(); }), "");
}

TEST_F(ModelFile, IsRefusedForWhatIsWrongWithIt) {
    const std::string whole = fileOf(small_model());
    const std::string name = directory_.file("refused");
    EXPECT_EQ(refusal("gene\ta\nG1\t2\n"),
              name +
                  ": this is not a model\nGive the file that the run of the map wrote with "
                  "--model.");
    EXPECT_THAT(refusal(""), HasSubstr("this is not a model"));
    EXPECT_THAT(refusal(whole.substr(0, 20)), HasSubstr("it has 20 bytes only"));
    EXPECT_THAT(refusal(whole.substr(0, 100)), HasSubstr("are not as many as it says"));
    std::string changed = whole;
    changed[60] = static_cast<char>(changed[60] + 1);
    EXPECT_THAT(refusal(changed), HasSubstr("its digest is not that of its bytes"));
    changed = whole;
    changed[8] = 2;
    EXPECT_THAT(refusal(changed),
                HasSubstr("this is a model of version 2, and only those of version 1 can"));
}

TEST_F(ModelFile, IsRefusedWhereItCannotBeRead) {
    EXPECT_THAT(refusalOf("no/such/file"),
                HasSubstr("no/such/file: the model cannot be read (No such file"));
    EXPECT_THAT(refusalOf(directory_.prefix()), HasSubstr("cannot be read (Is a directory)"));
    EXPECT_THAT(refusalOf("/dev/zero"), HasSubstr("this is not a model"));
}

TEST_F(ModelFile, ReplacesAnEarlierOneWhole) {
    static_cast<void>(fileOf(small_model()));
    MapModel later = small_model();
    later.perplexity = 2.0;
    EXPECT_FALSE(write_map_model(path_, later));
    EXPECT_EQ(read_map_model(path_).perplexity, 2.0);
    EXPECT_EQ(directory_.entryCount(), 1U);
}

TEST_F(ModelFile, SaysWhyItCannotBeWritten) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    EXPECT_EQ(write_map_model("no/such/directory/map.model", small_model()),
              std::errc::no_such_file_or_directory);
    testing::internal::GetCapturedStdout();
    testing::internal::GetCapturedStderr();
}

TEST_F(ModelFile, ReplacesNothingElse) {
    const auto complaint = [](const std::string& path) -> std::string {
        try {
            check_model_path(path);
        } catch (const InputError& error) {
            return error.what();
        }
        return "";
    };
    static_cast<void>(fileOf(small_model()));
    EXPECT_EQ(complaint(path_), "");
    EXPECT_EQ(complaint(directory_.file("none")), "");
    EXPECT_EQ(complaint(directory_.write("empty", "")), "");
    EXPECT_THAT(complaint(directory_.write("matrix", "gene\ta\nG1\t2\n")),
                HasSubstr("this is not a model, and one would replace it"));
    EXPECT_THAT(complaint(directory_.prefix()), HasSubstr("this is not a model"));
}

}  // namespace
}  // namespace ovik
