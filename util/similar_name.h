#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Names for people who mistyped one.

namespace ovik {

/// How many letters to insert, leave out, replace or swap with their neighbour make one text of the
/// other, no letter twice.
std::size_t edit_distance(std::string_view one, std::string_view other);

/// The name that is most like a text in any letter case, the first of several.
///
/// @return a name that begins with the text, or for which no more than a third of the text's
///         letters have to change; empty if none does
std::string similar_name(std::string_view text, const std::vector<std::string>& names);

}  // namespace ovik
