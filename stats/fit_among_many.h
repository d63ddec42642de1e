#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

#include "util/stage.h"
#include "util/stage_count.h"

namespace ovik {

/// Iterations of a fit, at most.
inline std::uint64_t iteration_count(int max_iter) {
    return max_iter < 0 ? 0 : static_cast<std::uint64_t>(max_iter) + 1;
}

/// One of several fits that may be made side by side: its iterations count among those of all, and
/// it ends where all are to end.
class FitAmongMany {
  public:
    /// @param all      counts the iterations of all fits; has to outlive this
    /// @param goes_on  asked again and again, by several threads at once; may be empty
    FitAmongMany(StageCount& all, const std::function<bool()>& goes_on)
        : all_(all),
          goes_on_(goes_on) {}

    /// Makes the fit.
    ///
    /// @param work  given what is to be told of the stages of the fit
    /// @return what `work` returns; none if it was ended
    /// @throws what `work`, `goes_on` and the listener of the count throw
    template <typename Work>
    std::optional<std::invoke_result_t<const Work&, const OnStage&>> make(const Work& work) {
        const OnStage on_stage = [this](Stage stage, std::uint64_t done, std::uint64_t /*total*/) {
            endIfAsked();
            // Only the thread of the fit tells of iterations; rows are told of by any.
            if (stage == Stage::Iterations) {
                all_.add(done - std::exchange(done_, done));
            }
        };
        try {
            endIfAsked();
            return work(on_stage);
        } catch (const Ended&) {
            return std::nullopt;
        }
    }

  private:
    /// Is thrown through a fit that has no result to give.
    struct Ended {};

    void endIfAsked() const {
        if (goes_on_ && !goes_on_()) {
            throw Ended();
        }
    }

    StageCount& all_;
    const std::function<bool()>& goes_on_;
    std::uint64_t done_ = 0;
};

}  // namespace ovik
