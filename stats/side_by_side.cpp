#include "stats/side_by_side.h"

#include <algorithm>

#include "util/parallel.h"

namespace ovik {

void run_side_by_side(std::size_t count,
                      std::size_t at_once,
                      const std::function<void(std::size_t)>& work) {
    const auto threads = static_cast<std::size_t>(worker_count(count + 1));
    const std::size_t together = at_once == 0 ? threads : std::min(at_once, threads);
    const std::size_t in_groups = together < 2 ? 0 : count - count % together;
    parallel_tasks(in_groups,
                   static_cast<int>(together),
                   [&work](std::size_t i, std::size_t /*worker*/) { work(i); });
    for (std::size_t i = in_groups; i < count; ++i) {
        work(i);
    }
}

}  // namespace ovik
