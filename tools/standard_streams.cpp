#include "tools/standard_streams.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace ovik::tool {

void reserve_standard_streams() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) == -1) {
            // Takes the lowest number that is free: this one. The mode is the one not used.
            [[maybe_unused]] const int opened =
                open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

void complain(std::string_view message) {
    std::fputs("ovik-tsne: ", stderr);
    std::fwrite(message.data(), 1, message.size(), stderr);
    std::fputc('\n', stderr);
}

bool flush_standard_streams() {
    errno = 0;
    const bool printed = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (!printed) {
        const char* const reason = errno != 0 ? strerrordesc_np(errno) : "lines were lost";
        std::fprintf(stderr, "ovik-tsne: standard output could not be written (%s)\n", reason);
    }
    return printed && std::ferror(stderr) == 0;
}

}  // namespace ovik::tool
