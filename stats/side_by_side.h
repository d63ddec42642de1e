#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace ovik {

/// Does several pieces of work, each of which may have parallel loops of its own: side by side in
/// groups of `at_once`, each by one thread; those that fill no group one after the other by all
/// threads.
///
/// @param at_once  most pieces side by side; 0 for as many as there are threads
/// @throws what a piece threw: one of the exceptions, after all that had begun have ended
void run_side_by_side(std::size_t count,
                      std::size_t at_once,
                      const std::function<void(std::size_t)>& work);

/// The results of several pieces of work, made side by side.
///
/// @param goes_on  asked by the pieces, several at once; may be empty
/// @param make     `make(i, goes_on)` gives an optional result: none if the piece was ended by
/// `goes_on`, which says so when another piece has failed, too
/// @return one of each piece, or none at all if one was ended
/// @throws what a piece threw
template <typename Result, typename Make>
std::vector<Result> results_side_by_side(std::size_t count,
                                         std::size_t at_once,
                                         const std::function<bool()>& goes_on,
                                         const Make& make) {
    std::vector<std::optional<Result>> results(count);
    std::atomic<bool> has_failed = false;
    const std::function<bool()> all_go_on = [&] { return !has_failed && (!goes_on || goes_on()); };
    run_side_by_side(count, at_once, [&](std::size_t i) {
        try {
            results[i] = make(i, all_go_on);
        } catch (...) {
            has_failed = true;
            throw;
        }
    });
    std::vector<Result> made;
    for (std::optional<Result>& result : results) {
        if (!result) {
            return {};
        }
        made.push_back(std::move(*result));
    }
    return made;
}

}  // namespace ovik
