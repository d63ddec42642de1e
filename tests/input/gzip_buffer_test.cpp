#include "input/gzip_buffer.h"

#include <istream>
#include <iterator>
#include <sstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "util/input_error.h"

#include "tests/support/gzip.h"

namespace ovik {
namespace {

using test::gzipped;
using testing::HasSubstr;

/// @param begun  bytes that are read before the buffer takes over
std::string unpacked(const std::string& packed, std::size_t begun = 2) {
    std::istringstream file(packed);
    std::string head(begun, '\0');
    file.read(head.data(), static_cast<std::streamsize>(begun));
    GzipBuffer buffer(*file.rdbuf(), head, "m.gz");
    std::istream stream(&buffer);
    stream.exceptions(std::ios::badbit);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::string many_lines() {
    std::string content;
    for (int n = 0; n < 100000; ++n) {
        content += "GENE" + std::to_string(n * 7919 % 100003) + "\t1\n";
    }
    return content;
}

TEST(GzipBuffer, HoldsWhatWasPacked) {
    EXPECT_EQ(unpacked(gzipped("h\nG1\t1\n")), "h\nG1\t1\n");
    EXPECT_EQ(unpacked(gzipped("")), "");
    const std::string content = many_lines();
    EXPECT_EQ(unpacked(gzipped(content)), content);
}

TEST(GzipBuffer, GoesOnFromWhereItsFileStands) {
    const std::string packed = gzipped("h\nG1\t1\n");
    for (std::size_t begun = 0; begun <= packed.size(); ++begun) {
        EXPECT_EQ(unpacked(packed, begun), "h\nG1\t1\n") << begun;
    }
}

TEST(GzipBuffer, HoldsAllMembers) {
    EXPECT_EQ(unpacked(gzipped("a\n") + gzipped("") + gzipped("b\n")), "a\nb\n");
}

TEST(GzipBuffer, RefusesWhatIsDamagedOrCutOff) {
    const std::string packed = gzipped(many_lines());
    std::string damaged = packed;
    damaged[packed.size() / 2] = static_cast<char>(~damaged[packed.size() / 2]);

    const struct {
        std::string packed;
        const char* reason;
    } kCases[] = {
        {packed.substr(0, packed.size() - 1), "m.gz: the gzip data end in the middle"},
        {packed.substr(0, packed.size() / 2), "m.gz: the gzip data end in the middle"},
        {damaged, "m.gz: the gzip data are damaged ("},
        {packed + "no member", "m.gz: the gzip data are damaged ("},
        {"\x1f\x8bno member either", "m.gz: the gzip data are damaged ("},
    };

    for (const auto& [bytes, reason] : kCases) {
        try {
            unpacked(bytes);
            ADD_FAILURE() << reason;
        } catch (const InputError& error) {
            EXPECT_THAT(error.what(), HasSubstr(reason));
        }
    }
}

}  // namespace
}  // namespace ovik
