#include "util/random_stream.h"

#include <cstdint>
#include <cstdlib>

namespace ovik {

namespace {

class ProcessRandomStream final : public RandomStream {
  public:
    void seed(unsigned int seed) override { std::srand(seed); }

    // NOLINTNEXTLINE(concurrency-mt-unsafe): one thread draws, in a fixed order
    int next() override { return std::rand(); }
};

}  // namespace

RandomStream& process_random_stream() {
    static ProcessRandomStream stream;
    return stream;
}

// The numbers are those of the additive generator r[i] = r[i - 3] + r[i - 31] (modulo 2^32), of
// which the lowest bit is left out, from the 31 numbers that the seed gives by r[i] = 16807 * r[i -
// 1] (modulo 2^31 - 1), and without the first 310.

OwnRandomStream::OwnRandomStream() {
    seed(1);
}

void OwnRandomStream::seed(unsigned int seed) {
    constexpr std::int64_t kModulus = 2147483647;
    constexpr std::int64_t kFactor = 16807;
    constexpr int kPassedOver = 310;
    // Of a seed of 0 nothing but zeros would follow.
    auto number = static_cast<std::int32_t>(seed == 0 ? 1 : seed);
    for (std::uint32_t& kept : numbers_) {
        kept = static_cast<std::uint32_t>(number);
        const std::int64_t next = number * kFactor % kModulus;
        number = static_cast<std::int32_t>(next < 0 ? next + kModulus : next);
    }
    // The sum of the fourth and the first comes first.
    place_ = 3;
    for (int i = 0; i < kPassedOver; ++i) {
        next();
    }
}

int OwnRandomStream::next() {
    constexpr std::size_t kShortLag = 3;
    const std::size_t before = (place_ + numbers_.size() - kShortLag) % numbers_.size();
    numbers_[place_] += numbers_[before];
    const std::uint32_t number = numbers_[place_];
    place_ = (place_ + 1) % numbers_.size();
    return static_cast<int>(number >> 1U);
}

}  // namespace ovik
