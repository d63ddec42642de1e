#include "util/threads.h"

#include <algorithm>
#include <omp.h>

#include "util/counted.h"
#include "util/parallel.h"
#include "util/team.h"

namespace ovik {

std::string set_thread_count(int requested) {
    const int wanted = requested > 0 ? requested : omp_get_max_threads();
    const int used = std::min(wanted, most_workers());
    omp_set_num_threads(used);
    if (used < wanted) {
        return std::to_string(wanted) +
               " threads are more than are of use here: " + std::to_string(used) + " are taken";
    }
    return "";
}

std::string denied_threads_note() {
    const Team& team = Team::ofThisThread();
    if (team.denied() == 0) {
        return "";
    }
    return "the system granted this process " + counted(team.helpers() + 1, "thread", "threads") +
           " instead of " + std::to_string(team.helpers() + 1 + team.denied()) +
           ": the run took longer";
}

}  // namespace ovik
