#include "plots/filled_template.h"

#include <cstddef>

namespace ovik {

std::string filled_template(std::string_view page,
                            std::initializer_list<std::pair<std::string_view, std::string>> parts) {
    std::string result;
    for (const auto& [placeholder, text] : parts) {
        const std::size_t place = page.find(placeholder);
        result += page.substr(0, place);
        result += text;
        page.remove_prefix(place + placeholder.size());
    }
    result += page;
    return result;
}

}  // namespace ovik
