#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace ovik {

/// A stream of random numbers.
class RandomStream {
  public:
    RandomStream() = default;
    RandomStream(const RandomStream&) = delete;
    RandomStream& operator=(const RandomStream&) = delete;
    virtual ~RandomStream() = default;

    /// Begins the stream anew. The same seed gives the same numbers.
    virtual void seed(unsigned int seed) = 0;

    /// The next number, 0 to 2^31 - 1.
    virtual int next() = 0;
};

/// The stream of `rand` and `srand`, of which a process has one.
RandomStream& process_random_stream();

/// A stream that nothing else draws from: the numbers that `rand` of the GNU C library gives after
/// `srand` with the same seed, and after none those of the seed 1, on every machine. Streams may be
/// used by several threads, each by one.
class OwnRandomStream final : public RandomStream {
  public:
    OwnRandomStream();

    void seed(unsigned int seed) override;
    int next() override;

  private:
    /// The last ones, of which the oldest stands at `place_`.
    std::array<std::uint32_t, 31> numbers_{};
    std::size_t place_ = 0;
};

}  // namespace ovik
