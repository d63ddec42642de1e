#include "tools/trust_options.h"

#include <string>

#include "stats/row_reliability.h"
#include "util/counted.h"
#include "util/input_error.h"

namespace ovik::tool {

void check_judged_rows(const Options& options, std::size_t rows) {
    if (!options.reliability || rows >= kFewestJudgedRows) {
        return;
    }
    throw InputError("--reliability takes at least " + std::to_string(kFewestJudgedRows) +
                     " rows, and the matrix has " + counted(rows, "row", "rows") +
                     "\nLeave it out: among so few rows nearly all are neighbours.");
}

}  // namespace ovik::tool
