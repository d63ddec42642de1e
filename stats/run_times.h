#pragma once

namespace ovik {

/// How long the stages of a run took, in seconds by the clock on the wall.
struct RunTimes {
    double similarities = 0.0;
    double fitting = 0.0;
    /// What writing table, log and plots took.
    double results = 0.0;
};

}  // namespace ovik
