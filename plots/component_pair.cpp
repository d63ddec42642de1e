#include "plots/component_pair.h"

#include <algorithm>

namespace ovik {

std::size_t rows_per_pair(std::span<const std::string> groups, std::size_t row_count) {
    if (groups.empty()) {
        return row_count;
    }
    const auto other = std::find_if(groups.begin(), groups.end(), [&groups](const auto& group) {
        return group != groups.front();
    });
    return static_cast<std::size_t>(other - groups.begin());
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
