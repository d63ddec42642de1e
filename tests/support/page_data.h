#pragma once

#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>

namespace ovik::test {

/// The data of a page, as its script would read them.
///
/// @param html  a whole page
/// @param id    of the element with the data: of a chart page, unless the page is another
/// @throws std::runtime_error if the page has no such element
inline nlohmann::json page_data(const std::string& html, const std::string& id = "chart-data") {
    const std::string opening = "<script type=\"application/json\" id=\"" + id + "\">";
    const std::size_t at = html.find(opening);
    if (at == std::string::npos) {
        throw std::runtime_error("the page has no " + id);
    }
    const std::size_t start = at + opening.size();
    return nlohmann::json::parse(html.substr(start, html.find("</script>", start) - start));
}

}  // namespace ovik::test
