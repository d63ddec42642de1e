#pragma once

#include <string>
#include <string_view>

namespace ovik {

/// A text with each of some characters replaced.
///
/// @param characters  to be replaced, one by one
/// @param forms       what each of them becomes
std::string with_replaced(std::string_view text,
                          std::string_view characters,
                          const char* const* forms);

/// A text from the data, as one line of valid UTF-8, to be shown in a page or to stand in an
/// attribute in double quotes.
std::string html_text(std::string_view text);

/// JSON in a form that cannot end the script element which holds it.
std::string json_for_script(const std::string& json);

/// A path as a link that a browser takes for the same file: relative paths stay relative.
std::string link_text(std::string_view path);

}  // namespace ovik
