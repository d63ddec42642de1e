#include "util/similar_name.h"

#include <algorithm>
#include <utility>

namespace ovik {

namespace {

/// ASCII letters alone, in every locale.
std::string in_small_letters(std::string_view text) {
    std::string small(text);
    for (char& letter : small) {
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    return small;
}

/// Texts shorter than this begin too many names to stand for one.
constexpr std::size_t kShortestBeginning = 4;

}  // namespace

std::size_t edit_distance(std::string_view one, std::string_view other) {
    // Distances from the first i letters of the one to the first j of the other: rows i - 2, i - 1
    // and i.
    std::vector<std::size_t> before_last;
    std::vector<std::size_t> last;
    std::vector<std::size_t> row(other.size() + 1);
    for (std::size_t j = 0; j <= other.size(); ++j) {
        row[j] = j;
    }
    for (std::size_t i = 1; i <= one.size(); ++i) {
        before_last = std::exchange(last, row);
        row[0] = i;
        for (std::size_t j = 1; j <= other.size(); ++j) {
            const bool differs = one[i - 1] != other[j - 1];
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (differs ? 1U : 0U)});
            if (i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1]) {
                row[j] = std::min(row[j], before_last[j - 2] + 1);
            }
        }
    }
    return row.back();
}

std::string similar_name(std::string_view text, const std::vector<std::string>& names) {
    const std::string wanted = in_small_letters(text);
    std::string nearest;
    std::size_t least = wanted.size() / 3 + 1;
    for (const std::string& name : names) {
        const std::string offered = in_small_letters(name);
        const bool begins_so = wanted.size() >= kShortestBeginning && offered.starts_with(wanted);
        const std::size_t distance = begins_so
                                         ? std::min<std::size_t>(1, offered.size() - wanted.size())
                                         : edit_distance(wanted, offered);
        if (distance < least) {
            least = distance;
            nearest = name;
        }
    }
    return nearest;
}

}  // namespace ovik
