#pragma once

namespace ovik {

/// How long the stages of a run took, in seconds by the clock on the wall.
struct RunTimes {
    double similarities = 0.0;
    /// Without the map of a sample.
    double fitting = 0.0;
    /// What writing table, log and plots took.
    double results = 0.0;
    /// What the map of a sample took at which the rows start, and their places; 0 without.
    double sample = 0.0;
};

}  // namespace ovik
