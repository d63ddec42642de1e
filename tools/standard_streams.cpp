#include "tools/standard_streams.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <unistd.h>

#include "util/console.h"
#include "util/line_blocks.h"
#include "util/plain_text.h"

namespace ovik::tool {

namespace {

/// What a line has in printable ASCII, without taking memory.
void print_ascii(std::string_view line) {
    for (const char byte : line) {
        std::fputc(byte >= ' ' && byte <= '~' ? byte : '?', stderr);
    }
}

}  // namespace

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
    const ClearedPlace place;
    std::fputs("ovik-tsne: ", stderr);
    for_each_line(message, [](std::string_view line) {
        try {
            std::fputs(one_line_utf8(line).c_str(), stderr);
        } catch (const std::bad_alloc&) {
            print_ascii(line);
        }
        std::fputc('\n', stderr);
    });
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
