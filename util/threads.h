#pragma once

#include <string>

#include "util/api.h"

namespace ovik {

/// Sets the number of threads of the run, for the loops that the calling thread begins.
///
/// More than the parallel loops take become fewer. A thread is started by the first loop that has
/// work for it.
///
/// @param requested  0 for one per core, or what OMP_NUM_THREADS says
/// @return what the user should know of it; empty if the threads are those requested
OVIK_API std::string set_thread_count(int requested);

/// What the user should know of the threads once the calling thread's loops have run: that the
/// system granted fewer than they wanted; empty if it granted all.
OVIK_API std::string denied_threads_note();

}  // namespace ovik
