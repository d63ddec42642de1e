#include "util/base64.h"

#include <cstddef>
#include <cstdint>

namespace ovik {

std::string base64(std::string_view bytes) {
    static constexpr std::string_view kCharacters =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const auto byte_at = [bytes](std::size_t place) {
        return place < bytes.size()
                   ? static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[place]))
                   : 0U;
    };
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t first = 0; first < bytes.size(); first += 3) {
        const std::uint32_t three =
            byte_at(first) << 16U | byte_at(first + 1) << 8U | byte_at(first + 2);
        text += kCharacters[three >> 18U];
        text += kCharacters[three >> 12U & 63U];
        text += first + 1 < bytes.size() ? kCharacters[three >> 6U & 63U] : '=';
        text += first + 2 < bytes.size() ? kCharacters[three & 63U] : '=';
    }
    return text;
}

}  // namespace ovik
