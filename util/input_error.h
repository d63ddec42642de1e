#pragma once

#include <stdexcept>

#include "util/api.h"

namespace ovik {

/// Input that cannot be worked with; the message names the file, the row and the cure.
class OVIK_API InputError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace ovik
