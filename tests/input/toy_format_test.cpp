#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "input/load.h"
#include "input/matrix_formats.h"
#include "input/matrix_source.h"
#include "util/input_error.h"

#include "tests/support/gzip.h"
#include "tests/support/refusal.h"
#include "tests/support/temporary_directory.h"

/// What docs/architecture.md says of a new input format, followed step by step.

namespace ovik {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// Reads "TOY", rows and columns, and then a name and its values for each row, all separated by
/// blanks.
InspectedMatrix read_toy(MatrixSource& source, const LoadOptions& /*options*/) {
    std::string content = source.takeHead();
    content.append(std::istreambuf_iterator<char>(source.rest()), {});
    std::istringstream text(content);
    InspectedMatrix matrix;
    std::string word;
    text >> word >> matrix.report.rows >> matrix.report.columns;
    matrix.row_names.resize(matrix.report.rows);
    matrix.values = std::make_unique<double[]>(matrix.report.rows * matrix.report.columns);
    double* value = matrix.values.get();
    for (std::string& name : matrix.row_names) {
        text >> name;
        for (std::size_t d = 0; d < matrix.report.columns && text >> word; ++d) {
            *value++ = std::stod(word);
        }
    }
    if (!text) {
        throw InputError(source.name() + ": the toy is broken");
    }
    return matrix;
}

std::vector<MatrixFormat> formats_with_toy() {
    std::vector<MatrixFormat> formats = matrix_formats();
    formats.insert(formats.begin(),
                   {.name = "toy",
                    .recognises = [](std::string_view head) { return head.starts_with("TOY "); },
                    .read = read_toy,
                    .has_names = true});
    return formats;
}

class ToyFormat : public testing::Test {
  protected:
    LoadedMatrix loaded(const std::string& content) {
        return load(directory_.write("m.toy", content), options_, remarks_, formats_with_toy());
    }

    std::string refusal(const std::string& content) {
        return test::refusal_of([&] { loaded(content); });
    }

    test::TemporaryDirectory directory_;
    LoadOptions options_;
    std::vector<Remark> remarks_;
};

TEST_F(ToyFormat, IsLoadedWithNamesAndRemarks) {
    for (const std::string& content : {std::string("TOY 4 2\nA 1 2\nB 3 nan\nA 5 6\nC 7 8\n"),
                                       test::gzipped("TOY 4 2 A 1 2 B 3 nan A 5 6 C 7 8")}) {
        remarks_.clear();
        const LoadedMatrix toy = loaded(content);
        EXPECT_EQ(toy.format, "toy");
        EXPECT_THAT(toy.matrix.row_names, ElementsAre("A", "B", "A", "C"));
        EXPECT_THAT(std::vector<double>(toy.matrix.values.get(), toy.matrix.values.get() + 8),
                    ElementsAre(1.0, 2.0, 3.0, 0.0, 5.0, 6.0, 7.0, 8.0));
        EXPECT_EQ(toy.missing, 1U);
        ASSERT_EQ(remarks_.size(), 2U);
        EXPECT_THAT(remarks_[0].text, HasSubstr("m.toy: 1 row repeats the name of an earlier one"));
        EXPECT_THAT(remarks_[1].text,
                    HasSubstr("m.toy: 1 of 8 values is missing, in 1 of 4 rows and 1 of 2 columns, "
                              "and read as 0\n  row \"B\", column 2\n"));
    }
}

TEST_F(ToyFormat, HasItsMissingValuesTreatedAndItsRowsLabelled) {
    options_.missing = MissingPolicy::Drop;
    options_.labels_file = directory_.write("labels", "a\nb\nc\nd\n");
    const LoadedMatrix toy = loaded("TOY 4 1 A 1 B nan C 2 D 3");
    EXPECT_THAT(toy.matrix.row_names, ElementsAre("A", "C", "D"));
    EXPECT_THAT(toy.labels, ElementsAre("a", "c", "d"));
}

TEST_F(ToyFormat, IsCheckedLikeTheOthers) {
    const struct {
        const char* content;
        const char* reason;
    } kCases[] = {
        {"TOY 3 1 A 1 B 2", "m.toy: the toy is broken"},
        {"TOY 2 1 A 1 B 2", "m.toy: has 2 rows, and an embedding needs at least 3"},
        {"TOY 3 1 A 1 B inf C 2",
         "m.toy: column 1 of row 2 is \"inf\", which is not a finite number"},
        {"TOY 3 1 A 1 B 1 C 1", "m.toy: all rows hold the same values"},
        {"TOY 3 1 A 1 B 1 C 1e301", "m.toy: the values are too large to be computed with"},
    };

    for (const auto& [content, reason] : kCases) {
        EXPECT_THAT(refusal(content), HasSubstr(reason));
    }
    options_.row_names_file = directory_.write("names", "A\nB\nC\n");
    EXPECT_THAT(refusal("TOY 3 1 A 1 B 2 C 3"), HasSubstr("have names of their own"));
}

TEST_F(ToyFormat, LeavesTheOthersAsTheyAre) {
    EXPECT_EQ(loaded("h\nA\t1\nB\t2\nC\t3\n").format, "text");
}

}  // namespace
}  // namespace ovik
