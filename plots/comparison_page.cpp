#include "plots/comparison_page.h"

#include "plots/html_text.h"

namespace ovik {

namespace {

constexpr const char* kHead =
    "<!DOCTYPE html>\n"
    "<html lang=\"en\">\n"
    "<head>\n"
    "<meta charset=\"utf-8\">\n"
    "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; img-src file: "
    "'self'; style-src 'unsafe-inline'\">\n"
    "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
    "<meta name=\"color-scheme\" content=\"light dark\">\n";

constexpr const char* kStyle =
    "<style>\n"
    "body { margin: 2rem auto; max-width: 90rem; padding: 0 1rem; font: 1rem/1.5 sans-serif; "
    "color: #1c1c1c; background: #fff }\n"
    "h1 { font-size: 1.6rem; margin: 0 }\n"
    "h2 { font-size: 1.2rem; margin: 0 0 .5rem }\n"
    "ul.runs { list-style: none; padding: 0; display: grid; gap: 1.5rem; "
    "grid-template-columns: repeat(auto-fill, minmax(min(20rem, 100%), 1fr)) }\n"
    "ul.runs > li { border: 1px solid #ccc; border-radius: .4rem; padding: 1rem }\n"
    "img { width: 100%; height: auto; background: #fff }\n"
    "dl { display: grid; grid-template-columns: auto 1fr; gap: 0 1rem; margin: .5rem 0 }\n"
    "dt { color: #555 }\n"
    "dd { margin: 0; font-variant-numeric: tabular-nums; overflow-wrap: anywhere }\n"
    "a { color: #0058a3 }\n"
    "p.files a { margin-right: .8rem; white-space: nowrap }\n"
    "@media (prefers-color-scheme: dark) {\n"
    "  body { color: #e8e8e8; background: #161616 }\n"
    "  ul.runs > li { border-color: #444 }\n"
    "  dt { color: #aaa }\n"
    "  a { color: #7cc0ff }\n"
    "}\n"
    "</style>\n";

using Pairs = std::vector<std::pair<std::string, std::string>>;

std::string list_of_facts(const Pairs& facts) {
    if (facts.empty()) {
        return "";
    }
    std::string list = "<dl>";
    for (const auto& [name, value] : facts) {
        list += "<dt>" + html_text(name) + "</dt><dd>" + html_text(value) + "</dd>";
    }
    return list + "</dl>\n";
}

std::string link_to(const std::string& path, const std::string& inside) {
    return path.empty() ? inside : "<a href=\"" + link_text(path) + "\">" + inside + "</a>";
}

std::string item(const ComparedRun& run) {
    const std::string title = html_text(run.title);
    std::string result = "<li>\n<h2>" + link_to(run.chart_page, title) + "</h2>\n";
    if (!run.picture.empty()) {
        result += link_to(run.chart_page,
                          "<img src=\"" + link_text(run.picture) + "\" alt=\"Map: " + title +
                              "\" width=\"1200\" height=\"1200\" loading=\"lazy\">") +
                  "\n";
    }
    result += list_of_facts(run.facts);
    if (!run.files.empty()) {
        result += "<p class=\"files\">";
        for (const auto& [name, path] : run.files) {
            result += link_to(path, html_text(name)) + " ";
        }
        result += "</p>\n";
    }
    return result + "</li>\n";
}

}  // namespace

std::string comparison_page(const Comparison& comparison) {
    const std::string title = html_text(comparison.title);
    std::string page = std::string(kHead) + "<title>" + title + "</title>\n" + kStyle +
                       "</head>\n<body>\n<main>\n<h1>" + title + "</h1>\n" +
                       list_of_facts(comparison.facts) + "<ul class=\"runs\">\n";
    for (const ComparedRun& run : comparison.runs) {
        page += item(run);
    }
    return page + "</ul>\n</main>\n</body>\n</html>\n";
}

}  // namespace ovik
