#pragma once

#include <memory>

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

/// A stream that nothing else draws from: the numbers of `rand` after `srand` with the same seed,
/// and after none those of the seed 1. Streams may be used by several threads, each by one.
class OwnRandomStream final : public RandomStream {
  public:
    /// @throws std::bad_alloc
    OwnRandomStream();
    ~OwnRandomStream() override;

    void seed(unsigned int seed) override;
    int next() override;

  private:
    struct State;

    std::unique_ptr<State> state_;
};

}  // namespace ovik
