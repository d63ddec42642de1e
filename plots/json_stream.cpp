#include "plots/json_stream.h"

#include "plots/html_text.h"

namespace ovik {

void JsonStream::flush() {
    const bool is_plain = text_.find_first_of("<>&") == std::string::npos;
    sink_(is_plain ? text_ : json_for_script(text_));
    text_.clear();
}

}  // namespace ovik
