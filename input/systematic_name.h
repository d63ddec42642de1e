#pragma once

#include <string_view>

namespace ovik {

/// Whether a text is built as the systematic names of yeast genes: YAL001C, YDL246C-A, Q0045; in
/// capitals or not. Whether there is such a gene is not asked.
bool is_systematic_name(std::string_view text);

}  // namespace ovik
