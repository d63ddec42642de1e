#include "util/work_memory_error.h"

namespace ovik {

const char* WorkMemoryError::what() const noexcept {
    return "a work array does not fit in memory: fewer rows, fewer columns, a lower perplexity or "
           "a "
           "theta above 0 take less";
}

}  // namespace ovik
