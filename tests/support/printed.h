#pragma once

#include <cstdio>
#include <string>

namespace ovik::test {

/// A number as the console prints a cost, with six decimals.
inline std::string printed(double value) {
    char text[512];
    std::snprintf(text, sizeof text, "%f", value);
    return text;
}

}  // namespace ovik::test
