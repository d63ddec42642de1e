#pragma once

#include <string>

namespace ovik {

/// Refuses to let a checkpoint replace what is not one, such as a matrix.
///
/// @throws InputError if there is something else than a checkpoint or an empty file
void check_checkpoint_path(const std::string& path);

}  // namespace ovik
