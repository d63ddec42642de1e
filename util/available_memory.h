#pragma once

#include <string>

namespace ovik {

/// Memory that a process can still get, and what sets the limit.
struct AvailableMemory {
    /// Bytes that this process can still get; infinity if nothing is known.
    double bytes;
    /// In words, such as "on this machine".
    std::string limit;
};

/// The least of what the machine has left, what the control groups of this process allow (version 1
/// or 2) and what its address space may grow by.
///
/// @param root  where the directories /proc and /sys are looked for; with its slash at the end
AvailableMemory available_memory(const std::string& root = "/");

/// Resident memory of this process now, in bytes; 0 if it is not known.
double resident_memory();

}  // namespace ovik
