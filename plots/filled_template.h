#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace ovik {

/// A template with texts in the places of its placeholders, found in one pass: the texts may hold
/// what looks like a placeholder.
///
/// @param page   has each placeholder once
/// @param parts  placeholders, in the order of the page, and their texts
std::string filled_template(std::string_view page,
                            std::initializer_list<std::pair<std::string_view, std::string>> parts);

}  // namespace ovik
