#include "input/xml_tags.h"

#include <utility>

#include "util/input_error.h"

namespace ovik {

XmlPart::XmlPart(const std::string& name, std::string text) : text_(std::move(text)) {
    constexpr unsigned kBlanksAreText = pugi::parse_default | pugi::parse_ws_pcdata_single;
    const pugi::xml_parse_result result =
        document_.load_buffer_inplace(text_.data(), text_.size(), kBlanksAreText);
    if (!result) {
        throw InputError(name + ": a part of the workbook is damaged (" + result.description() +
                         ")\nFetch or save it anew.");
    }
}

std::string_view tag_of(const pugi::xml_node& node) {
    const std::string_view name = node.name();
    // npos + 1 is 0
    return name.substr(name.find(':') + 1);
}

pugi::xml_node child(const pugi::xml_node& parent, std::string_view tag) {
    return parent.find_child([tag](const pugi::xml_node& node) { return tag_of(node) == tag; });
}

std::string string_of(const pugi::xml_node& item) {
    std::string text;
    for (const pugi::xml_node part : item.children()) {
        if (tag_of(part) == "t") {
            text += part.text().get();
        } else if (tag_of(part) == "r") {
            text += child(part, "t").text().get();
        }
    }
    return text;
}

}  // namespace ovik
