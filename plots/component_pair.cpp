#include "plots/component_pair.h"

#include <algorithm>

namespace ovik {

std::size_t rows_per_pair(const std::vector<ResultRow>& rows) {
    const auto other = std::find_if(rows.begin(), rows.end(), [&rows](const ResultRow& row) {
        return row.group != rows.front().group;
    });
    return static_cast<std::size_t>(other - rows.begin());
}

std::string component_title(const std::string& group,
                            std::size_t position,
                            const std::string& fallback) {
    const std::size_t first = group.find(':');
    const std::size_t second = group.rfind(':');
    if (first == second) {
        return fallback;
    }
    const std::string component =
        position == 0 ? group.substr(first + 1, second - first - 1) : group.substr(second + 1);
    return "Component " + component;
}

}  // namespace ovik
