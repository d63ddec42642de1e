#pragma once

namespace ovik::tool {

/// How the command ends.
enum ExitStatus : int {
    Success = 0,
    /// The run failed: memory, disk.
    FailedRun = 1,
    /// Bad usage or bad input: nothing was run and nothing written.
    BadInput = 2,
    /// What was to be equal differs: a map from that of a report, a part from its digest.
    Different = 3,
    /// Ended by SIGINT (Ctrl-C) or SIGTERM: 128 and the number of the signal.
    Interrupted = 130,
    Terminated = 143,
};

}  // namespace ovik::tool
