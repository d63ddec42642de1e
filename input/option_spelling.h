#pragma once

#include <functional>
#include <string>

namespace ovik {

/// How messages write an option with its value, so that the user of a front end can copy it:
/// `--missing drop`, `missing="drop"`.
///
/// @param option  named as on the command line, without the dashes
/// @param value   empty for the option alone
using OptionSpelling =
    std::function<std::string(const std::string& option, const std::string& value)>;

/// The spelling for programs that have no names of their own for these options: "missing drop".
inline std::string plainly_spelled(const std::string& option, const std::string& value) {
    return value.empty() ? option : option + " " + value;
}

}  // namespace ovik
