#pragma once

#include <cstdint>

namespace ovik {

/// A row, and its distance from a target.
struct NearRow {
    std::uint32_t row;
    double distance;

    bool operator==(const NearRow&) const = default;
};

}  // namespace ovik
