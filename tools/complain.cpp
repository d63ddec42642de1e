#include "tools/complain.h"

#include <cstdio>
#include <string_view>

#include "plots/plain_text.h"
#include "util/line_blocks.h"

namespace ovik::tool {

void complain(const std::string& message) {
    std::fputs("ovik-tsne: ", stderr);
    for_each_line(message, [](std::string_view line) {
        std::fprintf(stderr, "%s\n", one_line_utf8(line).c_str());
    });
}

}  // namespace ovik::tool
