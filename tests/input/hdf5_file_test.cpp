#include "input/hdf5_file.h"

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
using testing::IsEmpty;

TEST(Hdf5File, TellsWhatStandsWhere) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.file("m.h5");
    {
        test::Hdf5Writer file(path);
        file.group("b");
        file.numbers("b/c", {1.0});
        file.group("a");
        file.textAttribute("a", "is", "told");
        file.numberAttribute("a", "shape", {3, -4});
        H5Lcreate_soft("/b", file.id(), "link", H5P_DEFAULT, H5P_DEFAULT);
    }
    const File file(path, "m.h5", 1e9);
    EXPECT_EQ(file.kindOf(""), Kind::Group);
    EXPECT_EQ(file.kindOf("b"), Kind::Group);
    EXPECT_EQ(file.kindOf("b/c"), Kind::Dataset);
    EXPECT_EQ(file.kindOf("b/d"), Kind::Nothing);
    EXPECT_EQ(file.kindOf("d/b/c"), Kind::Nothing);
    EXPECT_THAT(file.namesIn(""), ElementsAre("a", "b", "link"));
    EXPECT_EQ(file.textAttribute("a", "is"), "told");
    EXPECT_EQ(file.textAttribute("a", "shape"), std::nullopt);
    EXPECT_EQ(file.textAttribute("b", "is"), std::nullopt);
    EXPECT_THAT(file.numberAttribute("a", "shape"), ElementsAre(3, -4));
    EXPECT_THAT(file.numberAttribute("a", "is"), IsEmpty());
    EXPECT_THAT(test::refusal_of([&] { static_cast<void>(file.kindOf("link/c")); }),
                HasSubstr("m.h5: link: this is a link to another place, and links are not "
                          "followed"));
}

TEST(Hdf5File, ThatIsNoneIsRefusedWithoutAnythingPrinted) {
    const test::TemporaryDirectory directory;
    const std::string path = directory.write("m.h5", "\x89HDF\r\n\x1a\n and then something else");
    testing::internal::CaptureStderr();
    EXPECT_THAT(test::refusal_of([&] { File(path, "m.h5", 1e9); }),
                HasSubstr("m.h5: this HDF5 file cannot be opened ("));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Hdf5File, RefusesWhatDoesNotFitInMemory) {
    const test::TemporaryDirectory directory;
    test::Hdf5Writer(directory.file("m.h5")).group("a");
    const File file(directory.file("m.h5"), "m.h5", 1e9);
    file.checkMemory("it", 1e9, "Take less.");
    EXPECT_THAT(
        test::refusal_of([&] { file.checkMemory("it", 2e9, "Take less."); }),
        HasSubstr("m.h5: it takes about 2.0 GB of memory, and 1.0 GB are left\nTake less."));
}

}  // namespace
}  // namespace ovik::hdf5
