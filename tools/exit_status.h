#pragma once

namespace ovik::tool {

/// How the command ends.
enum ExitStatus : int {
    Success = 0,
    /// The run failed: memory, disk.
    FailedRun = 1,
    /// Bad usage or bad input: nothing was run and nothing written.
    BadInput = 2,
};

}  // namespace ovik::tool
