#include "util/byte_queue.h"

#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

namespace ovik {
namespace {

TEST(ByteQueue, IsReadInTheOrderInWhichItWasFilled) {
    const std::vector<double> numbers = {1.5, -2.0, 3.25};
    ByteQueue queue;
    queue.put(std::uint32_t{7});
    queue.putAll(std::span(numbers));
    queue.put(std::uint8_t{9});
    const std::vector<std::byte> bytes = queue.take();
    EXPECT_EQ(bytes.size(), 4U + 24U + 1U);
    ByteReader reader(bytes);
    EXPECT_EQ(reader.get<std::uint32_t>(), 7U);
    std::vector<double> read(3);
    reader.getAll(std::span(read));
    EXPECT_EQ(read, numbers);
    EXPECT_FALSE(reader.isAtEnd());
    EXPECT_EQ(reader.get<std::uint8_t>(), 9U);
    EXPECT_TRUE(reader.isAtEnd());
}

TEST(ByteQueue, IsEmptyOnceTaken) {
    ByteQueue queue;
    queue.put(1.0);
    EXPECT_EQ(queue.take().size(), sizeof(double));
    EXPECT_TRUE(queue.take().empty());
}

TEST(ByteQueue, TakesNoNumbersAtAll) {
    ByteQueue queue;
    queue.putAll(std::span<const double>());
    EXPECT_TRUE(queue.take().empty());
    ByteReader reader({});
    std::vector<double> none;
    reader.getAll(std::span(none));
    EXPECT_TRUE(reader.isAtEnd());
}

}  // namespace
}  // namespace ovik
