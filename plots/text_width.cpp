#include "plots/text_width.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>

#include "plots/characters.h"
#include "plots/figure_font.h"
#include "util/plain_text.h"

namespace ovik {

namespace {

constexpr const char* kEllipsis = "\xE2\x80\xA6";

/// Characters that the font lacks come from another one, and are square in East Asian scripts.
double character_width(std::string_view character) {
    constexpr std::uint32_t kFirstSquare = 0x1100;
    constexpr double kUnknown = 0.65;
    const std::uint32_t code = code_of(character);
    const std::optional<int> advance = figure_font_advance(code);
    return advance ? *advance / 1000.0 : code < kFirstSquare ? kUnknown : 1.0;
}

/// As many characters from a place on as a width has room for, at least `fewest`.
std::string fitting(const std::vector<std::string_view>& characters,
                    std::size_t first,
                    double font_size,
                    double width,
                    std::size_t fewest) {
    std::string text;
    double used = 0.0;
    for (std::size_t n = first; n < characters.size(); ++n) {
        used += character_width(characters[n]) * font_size;
        if (n >= first + fewest && used > width) {
            break;
        }
        text += characters[n];
    }
    return text;
}

/// No blank before the dots.
std::string with_dots(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text + kEllipsis;
}

/// Characters that stay whatever the room.
constexpr std::size_t kFewest = 2;

/// The start of a text, dots, and what is put behind.
std::string cut_end(const std::string& text,
                    double font_size,
                    double width,
                    const std::string& behind) {
    const double room = width - text_width(kEllipsis + behind, font_size);
    const std::string start = fitting(characters_of(text), 0, font_size, room, kFewest);
    return (start == text ? text : with_dots(start)) + behind;
}

/// A bit of the start of a text, dots, and what follows from a place on.
std::string cut_middle(const std::string& text, std::size_t place, double font_size, double width) {
    constexpr double kStart = 0.35;
    const auto characters = characters_of(text);
    const double dots = text_width(kEllipsis, font_size);
    const std::string start =
        with_dots(fitting(characters, 0, font_size, kStart * width - dots, kFewest));
    const double room = width - text_width(start, font_size);
    std::string rest;
    for (std::size_t n = place; n < characters.size(); ++n) {
        rest += characters[n];
    }
    if (text_width(rest, font_size) > room) {
        rest = with_dots(fitting(characters, place, font_size, room - dots, kFewest));
    }
    return start + rest;
}

/// Where the first word begins in which texts differ.
std::size_t place_of_difference(const std::vector<std::string>& texts) {
    const auto first = characters_of(texts.front());
    std::size_t same = first.size();
    for (const std::string& text : texts) {
        const auto characters = characters_of(text);
        const auto [end, other] =
            std::mismatch(first.begin(), first.end(), characters.begin(), characters.end());
        same = std::min(same, static_cast<std::size_t>(end - first.begin()));
    }
    constexpr std::size_t kFarthestBack = 8;
    for (std::size_t back = 0; back < kFarthestBack && back < same; ++back) {
        if (first[same - back - 1] == " ") {
            return same - back;
        }
    }
    return same;
}

/// The numbers of the texts with each short form.
std::map<std::string, std::vector<std::size_t>> numbers_of(const std::vector<std::string>& texts) {
    std::map<std::string, std::vector<std::size_t>> numbers;
    for (std::size_t n = 0; n < texts.size(); ++n) {
        numbers[texts[n]].push_back(n);
    }
    return numbers;
}

/// Cuts texts of one short form so that it shows where they differ.
void show_differences(const std::vector<std::string>& whole,
                      double font_size,
                      double width,
                      std::vector<std::string>& cut) {
    for (const auto& [text, numbers] : numbers_of(cut)) {
        if (numbers.size() < 2) {
            continue;
        }
        std::vector<std::string> alike;
        for (const std::size_t n : numbers) {
            alike.push_back(whole[n]);
        }
        const std::size_t place = place_of_difference(alike);
        for (const std::size_t n : numbers) {
            if (text_width(whole[n], font_size) > width) {
                cut[n] = cut_middle(whole[n], place, font_size, width);
            }
        }
    }
}

/// Numbers texts of one short form.
void number_alike(const std::vector<std::string>& whole,
                  double font_size,
                  double width,
                  std::vector<std::string>& cut) {
    std::set<std::string> taken(cut.begin(), cut.end());
    for (const auto& [text, numbers] : numbers_of(cut)) {
        std::size_t number = 1;
        for (const std::size_t n : numbers) {
            const bool is_long = text_width(whole[n], font_size) > width;
            while (numbers.size() > 1 && is_long && cut[n] == text) {
                const std::string behind = " (" + std::to_string(number++) + ")";
                const std::string other = cut_end(whole[n], font_size, width, behind);
                cut[n] = taken.insert(other).second ? other : text;
            }
        }
    }
}

}  // namespace

double text_width(std::string_view text, double font_size) {
    double width = 0.0;
    for (const std::string_view character : characters_of(text)) {
        width += character_width(character);
    }
    return width * font_size;
}

std::vector<std::string> cut_distinctly(const std::vector<std::string>& texts,
                                        double font_size,
                                        double width) {
    std::vector<std::string> whole;
    std::vector<std::string> cut;
    for (const std::string& text : texts) {
        whole.push_back(one_line_utf8(text));
        const bool is_long = text_width(whole.back(), font_size) > width;
        cut.push_back(is_long ? cut_end(whole.back(), font_size, width, "") : whole.back());
    }
    show_differences(whole, font_size, width, cut);
    number_alike(whole, font_size, width, cut);
    return cut;
}

}  // namespace ovik
