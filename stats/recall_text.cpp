#include "stats/recall_text.h"

#include <cstdio>

#include "util/counted.h"

namespace ovik {

std::string recall_text(const NeighbourRecall& recall) {
    char percent[32];
    std::snprintf(percent, sizeof percent, "%.1f", 100.0 * recall.share);
    return std::string(percent) + " % of the nearest, of " + counted(recall.rows, "row", "rows");
}

}  // namespace ovik
