#pragma once

namespace ovik::tool {

/// How the command ends.
enum ExitStatus : int {
    kSuccess = 0,
    /// The run failed: memory, disk.
    kFailedRun = 1,
    /// Bad usage or bad input: nothing was run and nothing written.
    kBadInput = 2,
};

}  // namespace ovik::tool
