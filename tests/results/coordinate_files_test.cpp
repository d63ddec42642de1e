#include "results/coordinate_files.h"

#include <cstring>
#include <string>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

const std::vector<double> kCoordinates = {0.1, -2.5e-7, 1e300, 3.0, -0.0, 1.0 / 3.0};

class CoordinateFiles : public testing::Test {
  protected:
    test::TemporaryDirectory directory_;
    std::string path_ = directory_.file("map");
};

TEST_F(CoordinateFiles, OfTextReadAsTheSameNumbers) {
    const std::string names[] = {"CDC28", "a\tb\n", "\xff"};
    ASSERT_EQ(write_coordinates_tsv<double>(path_, names, kCoordinates.data(), 3, 2),
              std::error_code());
    EXPECT_EQ(test::read_file(path_),
              "name\tcomponent_1\tcomponent_2\n"
              "CDC28\t0.1\t-2.5e-07\n"
              "a b \t1e+300\t3\n"
              "\xef\xbf\xbd\t-0\t0.3333333333333333\n");
    ASSERT_EQ(write_coordinates_tsv<float>(path_, names, kCoordinates.data(), 1, 2),
              std::error_code());
    EXPECT_EQ(test::read_file(path_), "name\tcomponent_1\tcomponent_2\nCDC28\t0.1\t-2.5e-07\n");
}

TEST_F(CoordinateFiles, OfNumPyHoldTheBytesOfTheNumbers) {
    ASSERT_EQ(write_coordinates_npy<double>(path_, kCoordinates.data(), 3, 2), std::error_code());
    const std::string content = test::read_file(path_);
    ASSERT_EQ(content.size(), 128U + 48U);
    EXPECT_EQ(content.substr(0, 10), std::string("\x93NUMPY\x01\x00\x76\x00", 10));
    EXPECT_EQ(content.substr(10, 59),
              "{'descr': '<f8', 'fortran_order': False, 'shape': (3, 2), }");
    EXPECT_EQ(content.substr(69, 59), std::string(58, ' ') + "\n");
    EXPECT_EQ(std::memcmp(content.data() + 128, kCoordinates.data(), 48), 0);
}

TEST_F(CoordinateFiles, OfNumPyMayHoldFloats) {
    ASSERT_EQ(write_coordinates_npy<float>(path_, kCoordinates.data(), 1, 2), std::error_code());
    const std::string content = test::read_file(path_);
    EXPECT_NE(content.find("'<f4'"), std::string::npos);
    const float expected[] = {0.1F, -2.5e-7F};
    ASSERT_EQ(content.size(), 128U + 8U);
    EXPECT_EQ(std::memcmp(content.data() + 128, expected, 8), 0);
}

TEST_F(CoordinateFiles, ThatCannotBeWrittenAreReported) {
    const std::string nowhere = directory_.file("none/map");
    const std::string name = "A";
    testing::internal::CaptureStdout();
    EXPECT_EQ(write_coordinates_npy<double>(nowhere, kCoordinates.data(), 1, 2),
              std::errc::no_such_file_or_directory);
    EXPECT_EQ(write_coordinates_tsv<double>(nowhere, &name, kCoordinates.data(), 1, 2),
              std::errc::no_such_file_or_directory);
    EXPECT_NE(testing::internal::GetCapturedStdout().find(nowhere), std::string::npos);
}

}  // namespace
}  // namespace ovik
