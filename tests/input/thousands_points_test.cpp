#include "input/thousands_points.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "input/load.h"

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

class ThousandsPoints : public testing::Test {
  protected:
    /// All that is said of a matrix.
    std::string remarks_of(const std::string& text, const LoadOptions& options = {}) {
        std::vector<Remark> remarks;
        load(directory_.write("m.csv", text), options, remarks);
        std::string texts;
        for (const Remark& remark : remarks) {
            texts += remark.text + "\n";
        }
        return texts;
    }

    test::TemporaryDirectory directory_;
};

TEST_F(ThousandsPoints, AreWarnedOfBesideWholeNumbers) {
    EXPECT_EQ(remarks_of("Gen;P1;P2\nA;0;1.091\nB;219;-12.345\nC;7;8\n"),
              directory_.file("m.csv") +
                  ": 2 numbers have three digits behind a point, as \"1.091\" on line 2, and all "
                  "others are whole: points between thousands would look so, and they are read as "
                  "decimal points\nIf they stand between thousands, take them out of the file; if "
                  "they are decimal points, decimal . says so.\n");
}

TEST_F(ThousandsPoints, AreNotDoubtedWhereTheyCannotStandThere) {
    // Another number of digits, a zero in front, no whole number, an exponent.
    EXPECT_EQ(remarks_of("Gen;P1;P2\nA;0;1.091\nB;219;1.5\nC;7;8\n"), "");
    EXPECT_EQ(remarks_of("Gen;P1;P2\nA;0;1.091\nB;219;0.345\nC;7;8\n"), "");
    EXPECT_EQ(remarks_of("Gen;P1;P2\nA;1.000;1.091\nB;2.190;1.345\nC;7.125;8.001\n"), "");
    EXPECT_EQ(remarks_of("Gen;P1;P2\nA;0;1.091\nB;219;2e-3\nC;7;8\n"), "");
    EXPECT_EQ(remarks_of("gene\tP1\tP2\nA\t0\t1.091\nB\t219\t1.345\nC\t7\t8\n"), "");
}

TEST_F(ThousandsPoints, AreDecimalPointsIfTheUserSaysSo) {
    LoadOptions options;
    options.decimal = '.';
    EXPECT_EQ(remarks_of("Gen;P1;P2\nA;0;1.091\nB;219;1.345\nC;7;8\n", options), "");
}

}  // namespace
}  // namespace ovik
