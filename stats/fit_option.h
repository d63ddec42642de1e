#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>
#include <span>
#include <string_view>
#include <type_traits>

#include "stats/fit_choices.h"
#include "stats/number_list.h"

/// What one of the options of a fit is to those who visit them: a number, a choice or a list.

namespace ovik {

/// What front ends call an option, and what they say of it.
struct OptionWords {
    /// In reports and checkpoints.
    std::string_view name;
    /// Of the Python parameter.
    std::string_view python;
    /// Of the command, separated by a comma.
    std::string_view flags;
    /// On the chart page.
    std::string_view title;
    /// One sentence, without a full stop.
    std::string_view sentence;
    /// What the number counts; empty for a plain number.
    std::string_view unit = "";
    /// Whether the states that a fit goes through depend on it, and not only which is the last.
    bool decides_states = true;
    /// Whether page and checkpoint of every run have it. The others they have where they are not as
    /// preset, or of a choice that is not.
    bool is_always_told = false;
};

/// The numbers that an option may have. Whether the ends belong to them is said for real numbers.
template <typename T>
struct OptionRange {
    T least;
    T most = std::numeric_limits<T>::max();
    bool holds_least = true;
    bool holds_most = true;

    /// False for NaN and infinities.
    [[nodiscard]] constexpr bool holds(T value) const {
        return (holds_least ? value >= least : value > least) &&
               (holds_most ? value <= most : value < most);
    }
};

/// A `Part` that is const if `Whole` is.
template <typename Part, typename Whole>
using ConstAs = std::conditional_t<std::is_const_v<Whole>, const Part, Part>;

/// A number, of which `Value` is the type: `double` or `int`, or either of them const.
template <typename Value>
struct FitOption {
    using Number = std::remove_const_t<Value>;

    Value& value;
    Number preset;
    OptionRange<Number> range;
    OptionWords words;
    /// Null, or where it is said that the fit computes the number itself: then `value` says
    /// nothing.
    ConstAs<bool, Value>* automatic = nullptr;

    [[nodiscard]] bool isInRange() const { return range.holds(value); }

    [[nodiscard]] bool isAutomatic() const { return automatic != nullptr && *automatic; }

    [[nodiscard]] bool isPreset() const { return value == preset && !isAutomatic(); }
};

/// One of several things, of which `Value` is the type: one of `fit_choices.h`, or it const.
template <typename Value>
struct FitChoice {
    using Kind = std::remove_const_t<Value>;

    Value& value;
    Kind preset;
    OptionWords words;
    /// What front ends take in the place of the last name, in words: "FILE" of the command. Empty
    /// where they take the names alone.
    std::string_view open_end = "";

    /// All names, the open end's among them.
    [[nodiscard]] static constexpr std::span<const std::string_view> names() {
        return kChoiceNames<Kind>;
    }

    /// The names that users give.
    [[nodiscard]] constexpr std::span<const std::string_view> givenNames() const {
        return names().first(names().size() - (open_end.empty() ? 0 : 1));
    }

    /// @return false if it is none of the names, and `value` is as before
    [[nodiscard]] bool set(std::string_view name) const requires(!std::is_const_v<Value>) {
        const auto found = std::find(names().begin(), names().end(), name);
        if (found == names().end()) {
            return false;
        }
        value = static_cast<Kind>(found - names().begin());
        return true;
    }

    [[nodiscard]] std::string_view name() const { return choice_name(value); }

    [[nodiscard]] bool isInRange() const { return !name().empty(); }

    [[nodiscard]] bool isPreset() const { return value == preset; }
};

/// Some numbers, none at first, of which `Value` is the type: `NumberList`, or it const.
template <typename Value>
struct FitList {
    Value& value;
    /// Of each number.
    OptionRange<double> range;
    OptionWords words;

    /// Whether each number may be, and none stands there twice.
    [[nodiscard]] bool isInRange() const {
        return std::all_of(value.begin(), value.end(), [this](double number) {
            return range.holds(number) && std::count(value.begin(), value.end(), number) == 1;
        });
    }

    [[nodiscard]] bool isPreset() const { return value.empty(); }
};

}  // namespace ovik
