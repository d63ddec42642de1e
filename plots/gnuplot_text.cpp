#include "plots/gnuplot_text.h"

#include <charconv>

#include "plots/characters.h"
#include "plots/figure_font.h"
#include "util/plain_text.h"

namespace ovik {

namespace {

/// Characters in a row that the font of the figures lacks.
struct UnusualPart {
    std::size_t start = 0;
    std::size_t length = 0;
    /// Their code points in hexadecimal digits; empty for no such part.
    std::string codes{};
};

UnusualPart first_unusual_part(std::string_view text) {
    UnusualPart part;
    for (const std::string_view character : characters_of(text)) {
        const std::uint32_t code = code_of(character);
        if (!figure_font_advance(code)) {
            char digits[8];
            const auto end = std::to_chars(digits, digits + sizeof digits, code, 16).ptr;
            part.codes += (part.codes.empty() ? "" : " ") + std::string(digits, end);
            part.length += character.size();
        } else if (part.codes.empty()) {
            part.start += character.size();
        } else {
            break;
        }
    }
    return part;
}

}  // namespace

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

std::string gnuplot_shown_text(std::string_view text) {
    std::string result;
    std::string_view rest = text;
    while (!rest.empty()) {
        const UnusualPart part = first_unusual_part(rest);
        if (part.codes.empty()) {
            break;
        }
        const std::string_view before = rest.substr(0, part.start);
        const std::string_view unusual = rest.substr(part.start, part.length);
        result += gnuplot_text(before) + ".(fonts_have('" + part.codes + "') ? " +
                  gnuplot_text(unusual) + " : '" + std::string(character_count(unusual), '?') +
                  "').";
        rest.remove_prefix(part.start + part.length);
    }
    return result + gnuplot_text(rest);
}

std::string gnuplot_font_search() {
    return "# Question marks stand for characters that no font here has.\n"
           "fonts_have(codes) = strlen(system(\"fc-list ':scalable=true:charset=\".codes.\"' "
           "family "
           "2>/dev/null\")) > 0\n";
}

std::string gnuplot_any_font() {
    return "fonts_have(codes) = 1\n";
}

std::string gnuplot_line(const std::string& text, std::size_t length) {
    return gnuplot_shown_text(shortened(one_line_utf8(text), length));
}

}  // namespace ovik
