#include "plots/png_image.h"

#include <cstdint>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include "plots/png_chunk.h"

namespace ovik {
namespace {

/// The bytes of an image that `png_of` made, by the rules of the format.
std::vector<std::uint8_t> read_back(const std::string& png, std::size_t width, std::size_t height) {
    const std::size_t start = png.find("IDAT");
    EXPECT_NE(start, std::string::npos);
    std::string rows(height * (4 * width + 1), '\0');
    uLongf size = rows.size();
    EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(rows.data()),
                         &size,
                         reinterpret_cast<const Bytef*>(png.data() + start + 4),
                         png.size() - start - 4),
              Z_OK);
    EXPECT_EQ(size, rows.size());
    std::vector<std::uint8_t> rgba(4 * width * height);
    for (std::size_t row = 0; row < height; ++row) {
        const char* const line = rows.data() + row * (4 * width + 1);
        EXPECT_EQ(line[0], '\0');
        for (std::size_t n = 0; n < 4 * width; ++n) {
            rgba[row * 4 * width + n] = static_cast<std::uint8_t>(line[n + 1]);
        }
    }
    return rgba;
}

TEST(PngOf, HoldsThePixels) {
    PixelImage image{5, 4, {}};
    for (std::size_t n = 0; n < 4 * 5 * 4; ++n) {
        image.rgba.push_back(static_cast<std::uint8_t>(37 * n));
    }
    const std::string png = png_of(image);
    EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_EQ(png.substr(8, 8), std::string("\0\0\0\x0dIHDR", 8));
    EXPECT_EQ(png.substr(16, 8), std::string("\0\0\0\x05\0\0\0\x04", 8));
    EXPECT_EQ(png.substr(png.size() - 12), std::string("\0\0\0\0IEND\xae\x42\x60\x82", 12));
    EXPECT_EQ(read_back(png, 5, 4), image.rgba);
}

TEST(PngChunk, HasLengthNameContentAndChecksum) {
    // The checksum of "123456789" is the one by which implementations are checked.
    EXPECT_EQ(png_chunk("1234", "56789"),
              std::string("\0\0\0\x05", 4) + "123456789\xcb\xf4\x39\x26");
}

}  // namespace
}  // namespace ovik
