#pragma once

#include <cstdint>

namespace ovik {

/// A row, and its distance from a target.
struct NearRow {
    std::uint32_t row;
    double distance;

    bool operator==(const NearRow&) const = default;
};

/// Nearer rows come first, of equally near ones the lower.
inline bool is_nearer(const NearRow& a, const NearRow& b) {
    return a.distance != b.distance ? a.distance < b.distance : a.row < b.row;
}

}  // namespace ovik
