#include "input/text_head.h"

#include <algorithm>
#include <string_view>

#include "util/input_error.h"

namespace ovik {

void check_text_head(const MatrixSource& source) {
    const std::string_view head = source.head();
    if (source.isWholeInHead() && head.find_first_not_of(" \t\v\f\r\n") == std::string_view::npos) {
        throw InputError(source.name() +
                         (head.empty() ? ": the file is empty" : ": the file holds blanks alone") +
                         "\nCheck that the program that was to write it has done so, or fetch it "
                         "anew.");
    }
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
