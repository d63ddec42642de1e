#pragma once

#include <cmath>
#include <cstdio>
#include <string>

namespace ovik {

/// An amount of memory in words: "85 MB", "19.2 GB".
inline std::string memory_text(double bytes) {
    constexpr double kMega = 1e6;
    constexpr double kGiga = 1e9;
    char text[400];
    if (bytes < kGiga) {
        std::snprintf(text, sizeof text, "%.0f MB", std::ceil(bytes / kMega));
    } else {
        std::snprintf(text, sizeof text, "%.1f GB", bytes / kGiga);
    }
    return text;
}

}  // namespace ovik
