#include "plots/chart_page.h"

#include <algorithm>
#include <string_view>

#include "plots/component_pair.h"
#include "plots/page_template.h"
#include "plots/plain_text.h"
#include "plots/run_caption.h"

#include <nlohmann/json.hpp>

namespace ovik {

namespace {

using Json = nlohmann::ordered_json;

/// Points: the rows of the first pair of components, or all of them without a table.
std::size_t point_count_of(const Chart& chart) {
    return chart.rows && !chart.rows->empty() ? rows_per_pair(*chart.rows) : chart.x.size();
}

Json json_slice(const std::vector<double>& values, std::size_t first, std::size_t count) {
    const auto begin = values.begin() + static_cast<std::ptrdiff_t>(first);
    return std::vector<double>(begin, begin + static_cast<std::ptrdiff_t>(count));
}

/// The coordinates, a pair of components after the other. Numbers that are not finite become null.
Json json_pairs(const Chart& chart, std::size_t point_count) {
    Json pairs = Json::array();
    for (std::size_t first = 0; first < chart.x.size(); first += point_count) {
        const std::size_t count = std::min(point_count, chart.x.size() - first);
        const std::string group = chart.rows ? (*chart.rows)[first].group : "";
        const bool is_first = first == 0;
        pairs.push_back(
            {{"group", group},
             {"xTitle", is_first ? chart.x_title : component_title(group, 0, chart.x_title)},
             {"yTitle", is_first ? chart.y_title : component_title(group, 1, chart.y_title)},
             {"x", json_slice(chart.x, first, count)},
             {"y", json_slice(chart.y, first, count)}});
    }
    return pairs;
}

/// One text per point, taken from the rows of the first group.
Json json_column(const Chart& chart, std::size_t point_count, std::string ResultRow::*column) {
    Json texts = Json::array();
    for (std::size_t n = 0; chart.rows && n < point_count; ++n) {
        texts.push_back((*chart.rows)[n].*column);
    }
    return texts;
}

/// Labels are given per point, or per row of the table: then those of the first group count.
Json json_labels(const Chart& chart, std::size_t point_count) {
    if (chart.labels.size() != point_count && chart.labels.size() != chart.x.size()) {
        return Json::array();
    }
    const auto begin = chart.labels.begin();
    return std::vector<std::string>(begin, begin + static_cast<std::ptrdiff_t>(point_count));
}

Json json_chart(const Chart& chart) {
    const std::size_t point_count = point_count_of(chart);
    const ChartLayout& layout = chart.layout;
    Json parameters = Json::array();
    for (const auto& [name, value] : current_caption().parameters) {
        parameters.push_back({name, value});
    }
    return {{"type", "scatter"},
            {"title", chart.title},
            {"name", chart.name},
            {"texts", chart.texts},
            {"parameters", parameters},
            {"layout",
             {{"margins", layout.margins},
              {"legendWidth", layout.legend_width},
              {"xTickTurn", layout.x_tick_turn},
              {"yTitleTurn", layout.y_title_turn},
              {"tickDecimals", layout.tick_decimals},
              {"grid", layout.grid}}},
            {"showLabels", chart.show_labels},
            {"colourScheme", chart.colour_scheme},
            {"categoryOrder", chart.category_order},
            {"colours", chart.colours},
            {"links", chart.links},
            {"pointCount", point_count},
            {"pairs", json_pairs(chart, point_count)},
            {"names", json_column(chart, point_count, &ResultRow::name)},
            {"functions", json_column(chart, point_count, &ResultRow::function)},
            {"labels", json_labels(chart, point_count)}};
}

/// A text with each of some characters replaced.
std::string escaped(std::string_view text, std::string_view characters, const char* const* forms) {
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        const std::size_t kind = characters.find(c);
        if (kind == std::string_view::npos) {
            result += c;
        } else {
            result += forms[kind];
        }
    }
    return result;
}

/// JSON in a form that cannot end the script element which holds it: these characters occur in
/// strings alone, where they may be written as escapes.
std::string escaped_for_script(const std::string& json) {
    static constexpr const char* kForms[] = {"\\u003c", "\\u003e", "\\u0026"};
    return escaped(json, "<>&", kForms);
}

std::string escaped_for_html(const std::string& text) {
    static constexpr const char* kForms[] = {"&lt;", "&gt;", "&amp;", "&quot;", "&#39;"};
    return escaped(one_line_utf8(text), "<>&\"'", kForms);
}

}  // namespace

std::string chart_page(const Chart& chart) {
    // Pure ASCII, so that U+2028 and U+2029 are escaped too; bytes that are not UTF-8 become
    // U+FFFD.
    const std::string json = json_chart(chart).dump(-1, ' ', true, Json::error_handler_t::replace);
    const std::string_view page = page_template();
    constexpr std::string_view kTitle = "{{page-title}}";
    constexpr std::string_view kData = "{{chart-data}}";
    const std::size_t title = page.find(kTitle);
    const std::size_t data = page.find(kData, title);
    std::string result(page.substr(0, title));
    result += escaped_for_html(chart.title);
    result += page.substr(title + kTitle.size(), data - title - kTitle.size());
    result += escaped_for_script(json);
    result += page.substr(data + kData.size());
    return result;
}

}  // namespace ovik
