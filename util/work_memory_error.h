#pragma once

#include <new>

#include "util/api.h"

namespace ovik {

/// A work array that does not fit in memory. The members of `TSNE` turn it into the message
/// "Memory allocation failed!" and the end of the process; other callers get the exception.
class OVIK_API WorkMemoryError : public std::bad_alloc {
  public:
    [[nodiscard]] OVIK_API const char* what() const noexcept override;
};

}  // namespace ovik
