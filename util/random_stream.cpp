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

/// What `rand` keeps for the process. Its size decides the kind of generator: 128 bytes stand for
/// that of `rand`.
struct OwnRandomStream::State {
    random_data generator{};
    char numbers[128]{};
};

OwnRandomStream::OwnRandomStream() : state_(std::make_unique<State>()) {
    // Fails for numbers of a size that is too small alone.
    initstate_r(1, state_->numbers, sizeof state_->numbers, &state_->generator);
}

OwnRandomStream::~OwnRandomStream() = default;

void OwnRandomStream::seed(unsigned int seed) {
    srandom_r(seed, &state_->generator);
}

int OwnRandomStream::next() {
    std::int32_t number = 0;
    random_r(&state_->generator, &number);
    return number;
}

}  // namespace ovik
