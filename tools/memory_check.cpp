#include "tools/memory_check.h"

#include <algorithm>

#include "input/matrix_guess.h"
#include "stats/method.h"
#include "util/input_error.h"

namespace ovik::tool {

namespace {

bool fits(const RunSize& size, const AvailableMemory& available) {
    return estimate_memory(size).peak() - resident_memory() <= available.bytes;
}

/// What would make the run smaller.
std::string cures(const RunSize& size, const AvailableMemory& available) {
    const std::optional<LighterFit> lighter = method_of(size.options).lighter(size.options);
    if (!lighter) {
        return "Fewer rows, fewer columns or a lower perplexity take less";
    }
    RunSize lighter_size = size;
    lighter_size.options = lighter->options;
    return lighter->what + " takes " + memory_text(estimate_memory(lighter_size).peak()) +
           (fits(lighter_size, available) ? "" : "; fewer rows or columns take less");
}

[[noreturn]] void refuse(const std::string& what,
                         double bytes,
                         const AvailableMemory& available,
                         const std::string& cure) {
    throw InputError(what + " takes about " + memory_text(bytes) + " of memory, and " +
                     memory_text(std::max(available.bytes, 0.0)) + " are left " + available.limit +
                     "\n" + cure + "; --force tries all the same.");
}

}  // namespace

void check_memory(const RunSize& size, const AvailableMemory& available) {
    if (!fits(size, available)) {
        refuse("the run", estimate_memory(size).peak(), available, cures(size, available));
    }
}

std::size_t seeds_at_once(const RunSize& size, const AvailableMemory& available) {
    return (size.seeds == 1 && size.other_maps == 0) || fits(size, available) ? 0 : 1;
}

void check_memory_of_reading(const MatrixSource& source,
                             const TableLayout& layout,
                             const AvailableMemory& available) {
    const std::optional<MatrixShape> shape = guess_shape(source, layout);
    if (!shape) {
        return;
    }
    RunSize size;
    size.rows = shape->rows;
    size.columns = shape->columns;
    const double bytes = estimate_memory(size).reading;
    if (bytes - resident_memory() > available.bytes) {
        refuse(source.name() + ": reading the matrix of about " + std::to_string(shape->rows) +
                   " rows and " + std::to_string(shape->columns) + " columns",
               bytes,
               available,
               "Fewer rows or columns take less");
    }
}

}  // namespace ovik::tool
