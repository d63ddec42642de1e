#pragma once

#include <functional>

namespace ovik {

/// Tries work in a process of its own, for code of others that damaged input may crash or keep at
/// work for ever. What the work changes in memory stays in that process, and so does what it
/// writes to standard error.
///
/// @param seconds  of processor time that the work may take, at least 1
/// @return whether it came to its end, be it by an exception; also true if no process could be made
bool survives(const std::function<void()>& work, unsigned int seconds);

}  // namespace ovik
