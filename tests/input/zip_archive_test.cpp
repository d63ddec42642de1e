#include "input/zip_archive.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/zip.h"

namespace ovik {
namespace {

using testing::HasSubstr;

/// What is said of bytes, or of their member "a"; if nothing is, it is whole or not there.
std::string refusal(const std::string& bytes) {
    try {
        const ZipArchive archive("m.xlsx", bytes);
        EXPECT_THAT(archive.member("a"), testing::AnyOf(std::nullopt, "content"));
    } catch (const InputError& error) {
        return error.what();
    }
    return "";
}

TEST(ZipArchive, GivesItsMembersByName) {
    const std::string bytes = test::ZipWriter::archive(
        {{"a", "first"}, {"folder/b", ""}, {"A", std::string(100000, 'x')}});
    const ZipArchive archive("m.xlsx", bytes);
    EXPECT_EQ(archive.member("A"), std::string(100000, 'x'));
    EXPECT_EQ(archive.member("a"), "first");
    EXPECT_EQ(archive.member("folder/b"), "");
    EXPECT_EQ(archive.member("b"), std::nullopt);
    EXPECT_EQ(archive.member("a"), "first");
}

TEST(ZipArchive, IsRefusedWhenDamagedOrCutOff) {
    const std::string whole = test::ZipWriter::archive({{"a", "content"}});
    const std::size_t directory = whole.find("PK\x01\x02");
    for (std::size_t size = 0; size <= directory; ++size) {
        EXPECT_THAT(refusal(whole.substr(0, size)), HasSubstr("m.xlsx: the archive")) << size;
    }
    std::string other = whole;
    other[whole.find("content")] = 'C';
    EXPECT_THAT(refusal(other), HasSubstr("m.xlsx: the archive that it is made of is damaged"));
}

TEST(ZipArchive, GivesNothingWrongWhereverItIsCutOffOrChanged) {
    const std::string whole = test::ZipWriter::archive({{"a", "content"}});
    for (std::size_t i = 0; i < whole.size(); ++i) {
        EXPECT_THAT(refusal(whole.substr(0, i)),
                    testing::AnyOf("", testing::StartsWith("m.xlsx: ")));
        for (const unsigned flip : {1U, 0x80U, 0xffU}) {
            std::string other = whole;
            other[i] = static_cast<char>(static_cast<unsigned char>(other[i]) ^ flip);
            EXPECT_THAT(refusal(other), testing::AnyOf("", testing::StartsWith("m.xlsx: "))) << i;
        }
    }
}

TEST(ZipArchive, IsRefusedWhenProtectedOrTooLarge) {
    std::string bytes = test::ZipWriter::archive({{"a", "content"}});
    const std::size_t entry = bytes.find("PK\x01\x02");
    bytes[entry + 8] = 1;
    EXPECT_THAT(refusal(bytes), HasSubstr("m.xlsx: it is protected by a password"));
    bytes[entry + 8] = 0;
    bytes[entry + 27] = '\x90';
    EXPECT_THAT(refusal(bytes), HasSubstr("m.xlsx: it is too large to be unpacked"));
}

}  // namespace
}  // namespace ovik
