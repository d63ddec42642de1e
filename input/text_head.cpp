#include "input/text_head.h"

#include <algorithm>
#include <utility>

#include "util/input_error.h"

namespace ovik {

std::string foreign_format(std::string_view head) {
    if (head.starts_with("PK\x03\x04")) {
        return "this is a zip archive or a spreadsheet: save the sheet as tab-separated text";
    }
    for (const auto& [magic, program] : {std::pair{"\xfd"
                                                   "7zXZ",
                                                   "xz"},
                                         std::pair{"BZh", "bzip2"},
                                         std::pair{"\x28\xb5\x2f\xfd", "zstd"}}) {
        if (head.starts_with(magic)) {
            return std::string("this is packed by ") + program + ": unpack it first (" + program +
                   " -d), or pack it with gzip";
        }
    }
    if (head.starts_with("\xff\xfe") || head.starts_with("\xfe\xff")) {
        return "this is UTF-16 text: save it as UTF-8 or plain ASCII";
    }
    return "";
}

void check_text_head(const MatrixSource& source) {
    const std::string_view head = source.head();
    const std::size_t nul = head.find('\0');
    if (nul != std::string_view::npos) {
        refuse_nul_byte(
            source.name(),
            static_cast<std::size_t>(std::count(head.begin(), head.begin() + nul, '\n')) + 1);
    }
    // One at the very end may be the half of a Windows line end.
    if (head.substr(0, head.size() - 1).find('\r') != std::string_view::npos &&
        head.find('\n') == std::string_view::npos) {
        throw InputError(source.name() +
                         ": its lines end with carriage returns alone, as on old Macintoshes: save "
                         "it with Unix or Windows line ends (tr '\\r' '\\n')");
    }
}

void refuse_nul_byte(const std::string& name, std::size_t line) {
    throw InputError(name + ":" + std::to_string(line) +
                     ": the line holds a NUL byte, so this is no text file");
}

}  // namespace ovik
