#include "util/random_stream.h"

#include <cstdlib>
#include <thread>
#include <vector>

#include <climits>
#include <gtest/gtest.h>

namespace ovik {
namespace {

constexpr unsigned int kSeeds[] = {0, 1, 2, 11, 16807, INT_MAX, 1U << 31, UINT_MAX};

/// More than the generator's table is long, many times.
constexpr int kDraws = 5000;

std::vector<int> drawn(RandomStream& stream, unsigned int seed) {
    stream.seed(seed);
    std::vector<int> numbers(kDraws);
    for (int& number : numbers) {
        number = stream.next();
    }
    return numbers;
}

std::vector<int> of_rand(unsigned int seed) {
    std::srand(seed);
    std::vector<int> numbers(kDraws);
    for (int& number : numbers) {
        number = std::rand();
    }
    return numbers;
}

TEST(OwnRandomStream, GivesTheNumbersOfRand) {
    OwnRandomStream stream;
    for (const unsigned int seed : kSeeds) {
        EXPECT_EQ(drawn(stream, seed), of_rand(seed)) << "seed " << seed;
    }
}

TEST(OwnRandomStream, BeginsWithTheSeedOne) {
    const std::vector<int> expected = of_rand(1);
    OwnRandomStream stream;
    for (const int number : expected) {
        ASSERT_EQ(stream.next(), number);
    }
}

TEST(OwnRandomStream, IsDisturbedByNoOther) {
    OwnRandomStream first;
    OwnRandomStream second;
    first.seed(3);
    second.seed(4);
    const std::vector<int> of_first = of_rand(3);
    const std::vector<int> of_second = of_rand(4);
    const int third = of_rand(5).front();
    std::srand(5);
    for (std::size_t i = 0; i < of_first.size(); ++i) {
        ASSERT_EQ(first.next(), of_first[i]);
        ASSERT_EQ(second.next(), of_second[i]);
    }
    EXPECT_EQ(std::rand(), third);
}

TEST(OwnRandomStream, IsTheSameInThreadsSideBySide) {
    std::vector<int> numbers[2];
    {
        const std::jthread first([&] {
            OwnRandomStream stream;
            numbers[0] = drawn(stream, 21);
        });
        const std::jthread second([&] {
            OwnRandomStream stream;
            numbers[1] = drawn(stream, 22);
        });
    }
    EXPECT_EQ(numbers[0], of_rand(21));
    EXPECT_EQ(numbers[1], of_rand(22));
}

TEST(ProcessRandomStream, IsThatOfRand) {
    for (const unsigned int seed : kSeeds) {
        EXPECT_EQ(drawn(process_random_stream(), seed), of_rand(seed)) << "seed " << seed;
    }
}

}  // namespace
}  // namespace ovik
