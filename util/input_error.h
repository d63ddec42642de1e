#pragma once

#include <stdexcept>

namespace ovik {

/// Input that cannot be worked with; the message names the file, the row and the cure.
class InputError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace ovik
