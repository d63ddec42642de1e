#include "input/hdf5_names.h"

#include <functional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/hdf5_writer.h"
#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"

namespace ovik::hdf5 {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Names : public testing::Test {
  protected:
    std::vector<std::string> index(const std::function<void(test::Hdf5Writer&)>& content) {
        const std::string path = directory_.file("m.h5");
        {
            test::Hdf5Writer file(path);
            content(file);
        }
        return read_index(File(path, "m.h5", most_bytes_), "obs");
    }

    std::string refusal(const std::function<void(test::Hdf5Writer&)>& content) {
        return test::refusal_of([&] { index(content); });
    }

    test::TemporaryDirectory directory_;
    double most_bytes_ = 1e9;
};

/// A table whose index is a column of another name.
void table(test::Hdf5Writer& file, const std::string& index) {
    file.group("obs");
    file.textAttribute("obs", "_index", index);
}

/// A column of categories, two of them.
void categories(test::Hdf5Writer& file, const std::vector<std::int64_t>& codes) {
    table(file, "cell");
    file.group("obs/cell");
    file.textAttribute("obs/cell", "encoding-type", "categorical");
    file.texts("obs/cell/categories", {"first", "second"});
    file.wholeNumbers("obs/cell/codes", codes, H5T_STD_I8LE);
}

TEST_F(Names, AreTextsNumbersOrCategories) {
    EXPECT_THAT(index([](test::Hdf5Writer& file) {
                    file.table("obs", {"a", "b"});
                }),
                ElementsAre("a", "b"));
    EXPECT_THAT(index([](test::Hdf5Writer& file) {
                    table(file, "cell");
                    file.wholeNumbers("obs/cell", {7, -8});
                }),
                ElementsAre("7", "-8"));
    EXPECT_THAT(index([](test::Hdf5Writer& file) {
                    categories(file, {1, 0, -1, 1});
                }),
                ElementsAre("second", "first", "", "second"));
}

TEST_F(Names, ThatCannotBeReadAreRefused) {
    EXPECT_THAT(refusal([](test::Hdf5Writer& file) {
                    categories(file, {0, 2});
                }),
                HasSubstr("m.h5: obs/cell/codes: element 2 is 2, and there are 2 categories"));
    EXPECT_THAT(refusal([](test::Hdf5Writer& file) { file.group("obs"); }),
                HasSubstr("m.h5: obs: does not say in its attribute \"_index\""));
    EXPECT_THAT(refusal([](test::Hdf5Writer& file) { table(file, "../X"); }),
                HasSubstr("does not say in its attribute \"_index\""));
    EXPECT_THAT(refusal([](test::Hdf5Writer& file) { table(file, "cell"); }),
                HasSubstr("m.h5: obs/cell: is not there"));
    EXPECT_THAT(refusal([](test::Hdf5Writer& file) {
                    table(file, "cell");
                    file.numbers("obs/cell", {1.5, 2.5});
                }),
                HasSubstr("m.h5: obs/cell: its elements should be texts"));
    EXPECT_THAT(refusal([](test::Hdf5Writer& file) { file.numbers("obs", {1.0}); }),
                HasSubstr("m.h5: obs: is a table of an old kind"));
}

TEST_F(Names, HoldNoControlCharacters) {
    for (const char* const name : {"b\nc", "b\tc", "b\rc", "b\x7f"}) {
        EXPECT_THAT(refusal([name](test::Hdf5Writer& file) {
                        file.table("obs", {"a", name});
                    }),
                    HasSubstr("m.h5: obs/_index: element 2, \"b"));
    }
    EXPECT_THAT(
        refusal([](test::Hdf5Writer& file) {
            table(file, "cell");
            file.group("obs/cell");
            file.textAttribute("obs/cell", "encoding-type", "categorical");
            file.texts("obs/cell/categories", {"first\nline"});
            file.wholeNumbers("obs/cell/codes", {0});
        }),
        HasSubstr("m.h5: obs/cell/categories: element 1, \"first line\", holds a line break"));
}

TEST_F(Names, FitInMemoryAllTogether) {
    most_bytes_ = 1e6;
    const std::string refused = "its texts take more than the 1 MB of memory that are left";
    EXPECT_THAT(refusal([](test::Hdf5Writer& file) {
                    table(file, "cell");
                    file.fixedTexts(
                        "obs/cell", std::vector<std::string>(20, std::string(60'000, 'x')), 60'000);
                }),
                HasSubstr("m.h5: obs/cell: " + refused));
    EXPECT_THAT(refusal([](test::Hdf5Writer& file) {
                    table(file, "cell");
                    file.texts("obs/cell", std::vector<std::string>(300, std::string(4'000, 'x')));
                }),
                HasSubstr("m.h5: obs/cell: " + refused));
    // One long text, which every element repeats.
    EXPECT_THAT(refusal([](test::Hdf5Writer& file) {
                    table(file, "cell");
                    file.group("obs/cell");
                    file.textAttribute("obs/cell", "encoding-type", "categorical");
                    file.texts("obs/cell/categories", {std::string(50'000, 'x')});
                    file.wholeNumbers("obs/cell/codes", std::vector<std::int64_t>(40, 0));
                }),
                HasSubstr("m.h5: obs/cell/codes: " + refused));
}

}  // namespace
}  // namespace ovik::hdf5
