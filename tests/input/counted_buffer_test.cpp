#include "input/counted_buffer.h"

#include <algorithm>
#include <istream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(CountedBuffer, GivesTheBytesAndSaysHowManyWereRead) {
    std::string bytes;
    for (long n = 0; bytes.size() < 9'000'000; ++n) {
        bytes += std::to_string(n * 7919) + (n % 11 == 0 ? "\n" : "\t");
    }
    std::stringbuf packed(bytes);
    std::vector<std::uint64_t> counts;
    CountedBuffer counted(packed, [&](std::uint64_t count) { counts.push_back(count); });
    std::istream stream(&counted);
    std::string line;
    std::string all;
    // Lines, then a large piece, then single bytes, then the rest.
    for (int n = 0; n < 20 && std::getline(stream, line); ++n) {
        all += line + "\n";
    }
    std::string piece(8'500'000, '\0');
    stream.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    all += piece;
    for (int n = 0; n < 5; ++n) {
        all += static_cast<char>(stream.get());
    }
    all.append(std::istreambuf_iterator<char>(stream), {});
    EXPECT_TRUE(all == bytes);
    EXPECT_TRUE(std::is_sorted(counts.begin(), counts.end()));
    EXPECT_EQ(counts.back(), bytes.size());
    EXPECT_GE(counts.size(), 4U);
    EXPECT_EQ(stream.get(), std::istream::traits_type::eof());
}

TEST(CountedBuffer, EndsWithNothing) {
    std::stringbuf nothing;
    CountedBuffer counted(nothing, [](std::uint64_t count) { EXPECT_EQ(count, 0U); });
    std::istream stream(&counted);
    EXPECT_EQ(stream.get(), std::istream::traits_type::eof());
}

}  // namespace
}  // namespace ovik
