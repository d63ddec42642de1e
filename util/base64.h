#pragma once

#include <string>
#include <string_view>

namespace ovik {

/// Bytes as text of 64 letters, digits and signs, padded by "=" to a multiple of four characters.
///
/// @par Source RFC 4648, section 4
std::string base64(std::string_view bytes);

}  // namespace ovik
