#pragma once

#include <string>

namespace ovik {

/// What a program runs on, and by what it was built: all on which numbers may depend that are left
/// to the platform, such as exponentials of the C library.
struct Platform {
    /// The model of the processor; empty where the system does not tell.
    std::string processor;
    /// The kind of processor, such as "x86_64".
    std::string architecture;
    /// The instruction set of the kernels.
    std::string instructions;
    /// The operating system, such as "Linux".
    std::string system;
    /// Name and version of the C library, such as "glibc 2.36"; empty where it does not tell.
    std::string c_library;
    /// Name and version of the compiler.
    std::string compiler;

    bool operator==(const Platform&) const = default;
};

/// The platform of this process.
Platform this_platform();

/// "glibc 2.36 on Model of processor (x86_64, avx2), compiled by GCC 12.2.0".
std::string text_of(const Platform& platform);

}  // namespace ovik
