#pragma once

#include <cstddef>
#include <string>

namespace ovik {

/// A count and the word for what is counted, in the form that goes with it.
inline std::string counted(std::size_t count, const std::string& one, const std::string& many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

}  // namespace ovik
