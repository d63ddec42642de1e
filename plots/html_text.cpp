#include "plots/html_text.h"

#include "util/plain_text.h"

namespace ovik {

std::string with_replaced(std::string_view text,
                          std::string_view characters,
                          const char* const* forms) {
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        const std::size_t kind = characters.find(c);
        if (kind == std::string_view::npos) {
            result += c;
        } else {
            result += forms[kind];
        }
    }
    return result;
}

std::string html_text(std::string_view text) {
    static constexpr const char* kForms[] = {"&lt;", "&gt;", "&amp;", "&quot;", "&#39;"};
    return with_replaced(one_line_utf8(text), "<>&\"'", kForms);
}

std::string json_for_script(const std::string& json) {
    // These characters occur in strings alone, where they may be written as escapes.
    static constexpr const char* kForms[] = {"\\u003c", "\\u003e", "\\u0026"};
    return with_replaced(json, "<>&", kForms);
}

std::string link_text(std::string_view path) {
    constexpr std::string_view kPlain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    constexpr const char* kDigits = "0123456789ABCDEF";
    // A colon in the first part would make that a scheme.
    std::string link = path.substr(0, 1) == "/" ? "" : "./";
    for (const char c : path) {
        const auto code = static_cast<unsigned char>(c);
        if (kPlain.find(c) != std::string_view::npos) {
            link += c;
        } else {
            link += {'%', kDigits[code >> 4U], kDigits[code & 15U]};
        }
    }
    return link;
}

}  // namespace ovik
