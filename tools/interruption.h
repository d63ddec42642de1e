#pragma once

#include "tools/exit_status.h"

/// How the command takes SIGINT (Ctrl-C) and SIGTERM. Before the first iteration there is nothing
/// to keep, and a signal ends the process at once. Later the first one asks the fit to end, so that
/// the results of what was reached get written, and a second one ends the process at once. Files
/// appear whole or not at all, so that earlier ones stay as they were.

namespace ovik::tool {

/// Starts to take the signals as above. A signal that is ignored stays so, as for jobs in the
/// background of a script.
void watch_for_interruption();

/// From now on fits are kept as they end: the first signal asks those at work to end, and messages
/// say that the others are there for the next call.
void promise_kept_fits();

/// To be called after every iteration: from the first on there are results to keep.
///
/// @return whether the fit is to go on
bool goes_on();

/// `Success`, or the status for the signal that has come.
ExitStatus interruption_status();

}  // namespace ovik::tool
