#include "util/partial_entry.h"

#include <cerrno>
#include <filesystem>
#include <optional>

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace ovik {
namespace {

using Kind = PartialEntry::Kind;

TEST(PartialEntry, StandsBesideItsPlaceUntilItIsMovedThere) {
    const test::TemporaryDirectory directory;
    const std::string place = directory.write("f", "old");
    PartialEntry entry(place, Kind::File);
    ASSERT_TRUE(entry.isOpen());
    EXPECT_EQ(entry.path().find(directory.prefix() + ".ovik-"), 0U);
    EXPECT_EQ(directory.entryCount(), 2U);
    EXPECT_TRUE(entry.moveTo(place));
    EXPECT_EQ(test::read_file(place), "");
    EXPECT_EQ(directory.entryCount(), 1U);
}

TEST(PartialEntry, VanishesWithWhatItHolds) {
    const test::TemporaryDirectory directory;
    for (const Kind kind : {Kind::File, Kind::Directory}) {
        const PartialEntry entry(directory.file("f"), kind);
        ASSERT_TRUE(entry.isOpen());
        if (kind == Kind::Directory) {
            directory.write(std::filesystem::path(entry.path()).filename().string() + "/g", "x");
        }
        EXPECT_EQ(directory.entryCount(), 1U);
    }
    EXPECT_EQ(directory.entryCount(), 0U);
}

TEST(PartialEntry, TellsWhyItCannotBeMade) {
    for (const Kind kind : {Kind::File, Kind::Directory}) {
        const PartialEntry entry("no/such/directory/f", kind);
        EXPECT_EQ(errno, ENOENT);
        EXPECT_FALSE(entry.isOpen());
    }
}

TEST(PartialEntry, KeepsTheReasonOfAnEarlierFailure) {
    const test::TemporaryDirectory directory;
    std::optional<PartialEntry> entry(std::in_place, directory.file("f"), Kind::File);
    errno = ENOSPC;
    entry.reset();
    EXPECT_EQ(errno, ENOSPC);
}

TEST(RemoveLeftOverEntries, SparesThoseAtWorkAndWhatIsNotOurs) {
    const test::TemporaryDirectory directory;
    const PartialEntry file(directory.file("f"), Kind::File);
    const PartialEntry folder(directory.file("f"), Kind::Directory);
    directory.write("f", "x");
    directory.write(".ovik-x", "x");
    directory.write("x.part", "x");
    directory.write(".ovik-1-1.part", "left over");
    std::filesystem::create_directory(directory.file(".ovik-1-2.part"));
    directory.write(".ovik-1-2.part/g", "left over");
    EXPECT_EQ(directory.entryCount(), 7U);
    remove_left_over_entries(directory.file("f"));
    EXPECT_EQ(directory.entryCount(), 5U);
    EXPECT_TRUE(std::filesystem::exists(file.path()));
    EXPECT_TRUE(std::filesystem::exists(folder.path()));
}

TEST(RemoveLeftOverEntries, DoesNothingWhereThereIsNoDirectory) {
    remove_left_over_entries("no/such/directory/f");
}

}  // namespace
}  // namespace ovik
