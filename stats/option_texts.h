#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "stats/fit_options.h"

/// Options in words, for front ends.

namespace ovik {

/// A number as a reader writes it: "30", "12.75", "1e9".
std::string plain_number(double value);
std::string plain_number(int value);

/// The numbers between commas; empty for none.
std::string list_text(const NumberList& numbers);

/// The long one of the command's names, without its dashes: "max-iter".
std::string long_name(const OptionWords& words);

/// Some texts as alternatives: "a", "a or b", "a, b or c".
std::string alternatives_text(std::span<const std::string> texts);

/// Which numbers an option takes, behind its sentence: "at least 0, below 1", "2 to 50".
std::string range_text(const OptionRange<double>& range);
std::string range_text(const OptionRange<int>& range);

/// A preset with what it counts: "250 iterations".
std::string preset_text(const std::string& preset, const OptionWords& words);

/// What an option should be: "a number at least 0, below 1", "a whole number from 2 to 50".
std::string requirement_text(const OptionRange<double>& range);
std::string requirement_text(const OptionRange<int>& range);

/// What stands in the place of a number that the fit computes itself.
inline constexpr std::string_view kAutomatic = "auto";

/// @name The texts of an option of each kind.
/// The value is as a reader writes it: "30", "auto", "pearson", "10,50"; the preset too, but "none"
/// for a list. The range stands behind the sentence of the option.
/// @{

template <typename Value>
std::string value_text(const FitOption<Value>& option) {
    return option.isAutomatic() ? std::string(kAutomatic) : plain_number(option.value);
}

template <typename Value>
std::string preset_text(const FitOption<Value>& option) {
    return plain_number(option.preset);
}

template <typename Value>
std::string requirement_text(const FitOption<Value>& option) {
    return requirement_text(option.range) +
           (option.automatic == nullptr ? "" : ", or " + std::string(kAutomatic));
}

template <typename Value>
std::string range_text(const FitOption<Value>& option) {
    return range_text(option.range) +
           (option.automatic == nullptr ? "" : ", or " + std::string(kAutomatic));
}

template <typename Value>
std::string value_text(const FitChoice<Value>& option) {
    return option.isInRange() ? std::string(option.name())
                              : plain_number(static_cast<int>(option.value));
}

template <typename Value>
std::string preset_text(const FitChoice<Value>& option) {
    return std::string(choice_name(option.preset));
}

/// @param open_end  what the front end calls what it takes in the place of the last name
template <typename Value>
std::string requirement_text(const FitChoice<Value>& option, std::string_view open_end = "") {
    std::vector<std::string> texts(option.givenNames().begin(), option.givenNames().end());
    if (!option.open_end.empty()) {
        texts.emplace_back(open_end.empty() ? option.open_end : open_end);
    }
    return alternatives_text(texts);
}

template <typename Value>
std::string range_text(const FitChoice<Value>& option) {
    return requirement_text(option);
}

template <typename Value>
std::string value_text(const FitList<Value>& option) {
    return list_text(option.value);
}

template <typename Value>
std::string preset_text(const FitList<Value>& /*option*/) {
    return "none";
}

template <typename Value>
std::string requirement_text(const FitList<Value>& option) {
    return "up to " + std::to_string(NumberList::kMost) + " different numbers, each " +
           range_text(option.range);
}

template <typename Value>
std::string range_text(const FitList<Value>& option) {
    return "each " + range_text(option.range);
}

/// @}

}  // namespace ovik
