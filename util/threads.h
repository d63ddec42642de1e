#pragma once

#include <string>

#include "util/api.h"

namespace ovik {

/// Sets the number of threads of the run.
///
/// More than the parallel loops take, or than the system grants this process, become fewer.
///
/// @param requested  0 for one per core, or what OMP_NUM_THREADS says
/// @return what the user should know of it; empty if the threads are those requested
/// @throws InputError if OMP_STACKSIZE leaves threads too little stack to start
OVIK_API std::string set_thread_count(int requested);

}  // namespace ovik
