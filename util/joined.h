#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ovik {

/// The texts, with something between each two.
inline std::string joined(const std::vector<std::string>& texts, std::string_view between = ", ") {
    std::string result;
    for (std::size_t n = 0; n < texts.size(); ++n) {
        result += n == 0 ? "" : between;
        result += texts[n];
    }
    return result;
}

/// The first of many texts, between commas, with dots where there are more.
///
/// @param texts  at least as many as are listed, or all
/// @param most   how many are listed at most
/// @param count  how many there are, where `texts` may hold the first of them alone
inline std::string first_few(const std::vector<std::string>& texts,
                             std::size_t most,
                             std::size_t count) {
    const std::size_t listed = std::min(texts.size(), most);
    const auto end = texts.begin() + static_cast<std::ptrdiff_t>(listed);
    return joined({texts.begin(), end}) + (count > listed ? ", ..." : "");
}

/// The same of all texts that there are.
inline std::string first_few(const std::vector<std::string>& texts, std::size_t most) {
    return first_few(texts, most, texts.size());
}

}  // namespace ovik
