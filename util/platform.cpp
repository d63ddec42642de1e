#include "util/platform.h"

#include <array>
#include <fstream>
#include <sys/utsname.h>
#include <unistd.h>

#include "util/instruction_set.h"

namespace ovik {

namespace {

/// The first model that the system's list of processors has.
std::string processor_model() {
    std::ifstream list("/proc/cpuinfo");
    std::string line;
    while (std::getline(list, line)) {
        const bool is_model = line.starts_with("model name") || line.starts_with("cpu\t");
        const std::size_t colon = line.find(": ");
        if (is_model && colon != std::string::npos) {
            return line.substr(colon + 2);
        }
    }
    return "";
}

std::string c_library() {
#ifdef _CS_GNU_LIBC_VERSION
    std::array<char, 64> text{};
    const std::size_t length = confstr(_CS_GNU_LIBC_VERSION, text.data(), text.size());
    return length > 0 && length <= text.size() ? text.data() : "";
#else
    return "";
#endif
}

std::string compiler() {
#if defined(__clang__)
    const std::string name = "Clang " __clang_version__;
    return name.substr(0, name.find_last_not_of(' ') + 1);
#elif defined(__GNUC__)
    return "GCC " __VERSION__;
#else
    return "";
#endif
}

}  // namespace

Platform this_platform() {
    utsname system{};
    const bool is_told = uname(&system) == 0;
    return {processor_model(),
            is_told ? system.machine : "",
            std::string(name_of(instruction_set())),
            is_told ? system.sysname : "",
            c_library(),
            compiler()};
}

std::string text_of(const Platform& platform) {
    const auto or_unknown = [](const std::string& text, const std::string& what) {
        return text.empty() ? "an unknown " + what : text;
    };
    return or_unknown(platform.c_library, "C library") + " on " +
           or_unknown(platform.processor, "processor") + " (" + platform.architecture + ", " +
           platform.instructions + "), compiled by " + or_unknown(platform.compiler, "compiler");
}

}  // namespace ovik
