#include "plots/gnuplot_text.h"

#include "util/plain_text.h"

namespace ovik {

/// Pieces in single quotes, inside which gnuplot substitutes nothing. What would end a piece is
/// spelt out, since gnuplot takes a doubled quote at the start of a piece for its end.
std::string gnuplot_text(std::string_view text) {
    std::string result = "'";
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 0x20U || c == '\'') {
            result += "'.sprintf('%c'," + std::to_string(code) + ").'";
        } else {
            result += c;
        }
    }
    return result + "'";
}

std::string gnuplot_line(const std::string& text, std::size_t length) {
    return gnuplot_text(shortened(one_line_utf8(text), length));
}

}  // namespace ovik
