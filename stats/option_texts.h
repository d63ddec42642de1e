#pragma once

#include <string>

#include "stats/fit_options.h"

/// Options in words, for front ends.

namespace ovik {

/// A number as a reader writes it: "30", "12.75", "1e9".
std::string plain_number(double value);
std::string plain_number(int value);

/// Which numbers an option takes, behind its sentence: "at least 0, below 1", "2 to 50".
std::string range_text(const OptionRange<double>& range);
std::string range_text(const OptionRange<int>& range);

/// A preset with what it counts: "250 iterations".
std::string preset_text(const std::string& preset, const OptionWords& words);

/// What an option should be: "a number at least 0, below 1", "a whole number from 2 to 50".
std::string requirement_text(const OptionRange<double>& range);
std::string requirement_text(const OptionRange<int>& range);

}  // namespace ovik
