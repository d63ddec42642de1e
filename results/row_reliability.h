#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace ovik {

/// A number that is known of each row.
struct RowNumbers {
    /// Of the column in tables and reports, such as "kept_10".
    std::string name;
    /// What the chart page calls it.
    std::string title;
    /// One per row.
    std::vector<double> values;
};

/// How far the place of each row on a map can be trusted.
struct RowReliability {
    std::vector<RowNumbers> columns;
    /// How many nearest rows are near, and beyond how many rows are far.
    std::size_t near = 0;
    std::size_t far = 0;
    /// For each row those that are near on the map and far in the data, the nearest first.
    std::vector<std::vector<std::uint32_t>> falsely_near;
    /// For each row those that are near in the data and far on the map, the nearest first.
    std::vector<std::vector<std::uint32_t>> torn;
};

}  // namespace ovik
