#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "results/recorded_stability.h"
#include "results/row_reliability.h"

namespace ovik {

/// A number that tells how far a map can be trusted, in words.
struct TrustNumber {
    std::string name;
    std::string value;
    /// What the number says, for a reader who has never heard of it.
    std::string sentence;
};

/// What is known of how far a map can be trusted, for its chart page.
struct MapTrust {
    std::vector<TrustNumber> numbers;
    /// How many nearest neighbours of each row were looked at; 0 if none were.
    std::size_t neighbours = 0;
    /// For each row the share of these that are among its nearest on the map; empty if it was not
    /// measured.
    std::vector<double> kept;
    /// What else is known of each row; null for nothing.
    std::shared_ptr<const RowReliability> rows = nullptr;
    /// How far the map stays as it is on others; null if it was not compared with any.
    std::shared_ptr<const RecordedStability> stability = nullptr;
};

}  // namespace ovik
