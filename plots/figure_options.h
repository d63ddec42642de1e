#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ovik {

/// How large a figure is.
struct FigureSize {
    double width = 1200;
    /// 0: what the map needs, so that nothing stays empty.
    double height = 0;
    /// Whether these are millimetres on paper, and not pixels.
    bool millimetres = false;
};

/// What a figure shows beside the points.
struct FigureOptions {
    /// Above the axes; empty for none.
    std::string title = {};
    FigureSize size = {};
    /// Numbers of the points whose names are written beside them, each once.
    std::vector<std::size_t> highlighted = {};
};

}  // namespace ovik
