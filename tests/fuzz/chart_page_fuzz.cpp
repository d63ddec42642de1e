#include "plots/chart_page.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "plots/javas.h"
#include "plots/page_template.h"
#include "plots/plotted_run.h"
#include "results/result_table.h"

#include "tests/fuzz/support/input_lines.h"
#include "tests/fuzz/support/require.h"
#include "tests/fuzz/support/utf8.h"
#include "tests/support/temporary_directory.h"

/// The chart page, taken apart as a browser does: whatever the data, they are the text of the title
/// and of one script element that is JSON, and all else is the page as it is built.

namespace ovik {
namespace {

using Json = nlohmann::json;

/// What a chart views.
struct ChartTexts {
    std::vector<std::pair<std::string, std::string>> parameters;
    std::vector<std::string> names;
    std::vector<std::string> groups;
    std::vector<std::string> functions;
};

/// The page's own text around what differs from chart to chart.
struct PageFrame {
    std::string_view before_title;
    std::string_view before_data;
    std::string_view after_data;

    explicit PageFrame(std::string_view page) {
        constexpr std::string_view kTitle = "{{page-title}}";
        constexpr std::string_view kData = "{{chart-data}}";
        const std::size_t title = page.find(kTitle);
        const std::size_t data = page.find(kData, title);
        OVIK_REQUIRE(test::is_valid_utf8(page));
        before_title = page.substr(0, title);
        before_data = page.substr(title + kTitle.size(), data - title - kTitle.size());
        after_data = page.substr(data + kData.size());
        OVIK_REQUIRE(before_title.ends_with("<title>") && before_data.starts_with("</title>"));
        OVIK_REQUIRE(before_data.ends_with("id=\"chart-data\">"));
        OVIK_REQUIRE(after_data.starts_with("</script>"));
    }
};

struct PageData {
    std::string_view title;
    std::string_view json;
};

/// Cuts the data out of a page; a tag ends them.
PageData data_of(std::string_view page) {
    static const PageFrame kFrame(page_template());
    OVIK_REQUIRE(page.starts_with(kFrame.before_title));
    page.remove_prefix(kFrame.before_title.size());
    PageData data;
    data.title = page.substr(0, page.find('<'));
    page.remove_prefix(data.title.size());
    OVIK_REQUIRE(page.starts_with(kFrame.before_data));
    page.remove_prefix(kFrame.before_data.size());
    data.json = page.substr(0, page.find('<'));
    page.remove_prefix(data.json.size());
    OVIK_REQUIRE(page == kFrame.after_data);
    return data;
}

/// The text that HTML stands for; it may hold no other markup than these references.
std::string decoded_html(std::string_view html) {
    constexpr std::array<std::pair<std::string_view, char>, 5> kReferences = {
        {{"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&#39;", '\''}}};
    std::string text;
    while (!html.empty()) {
        if (html[0] != '&') {
            OVIK_REQUIRE(std::string_view("<>\"'").find(html[0]) == std::string_view::npos);
            text += html[0];
            html.remove_prefix(1);
            continue;
        }
        const auto* const reference =
            std::find_if(kReferences.begin(), kReferences.end(), [html](const auto& entry) {
                return html.starts_with(entry.first);
            });
        OVIK_REQUIRE(reference != kReferences.end());
        text += reference->second;
        html.remove_prefix(reference->first.size());
    }
    return text;
}

std::vector<std::uint32_t> without_replacements(std::string_view text) {
    std::vector<std::uint32_t> codes = test::code_points(text);
    std::erase(codes, 0xFFFDU);
    return codes;
}

/// A text of the page is that of the chart, but for bytes that are no UTF-8.
void require_text(const Json& json, const std::string& text) {
    const auto& shown = json.get_ref<const std::string&>();
    OVIK_REQUIRE(test::is_valid_utf8(shown));
    if (test::is_valid_utf8(text)) {
        OVIK_REQUIRE(shown == text);
    } else {
        OVIK_REQUIRE(without_replacements(shown) == without_replacements(text));
    }
}

void require_texts(const Json& json, const std::vector<std::string>& texts) {
    OVIK_REQUIRE(json.is_array() && json.size() == texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        require_text(json[i], texts[i]);
    }
}

void require_numbers(const Json& json, const double* numbers) {
    for (const Json& number : json) {
        OVIK_REQUIRE(std::isfinite(*numbers) ? number == *numbers : number.is_null());
        ++numbers;
    }
}

/// The pairs of the page are the coordinates from the first row to the last, each pair under its
/// group.
void check_pairs(const Json& pairs, const Chart& chart) {
    std::size_t row = 0;
    for (const Json& pair : pairs) {
        const std::size_t count = pair["x"].size();
        OVIK_REQUIRE(count > 0 && pair["y"].size() == count && row + count <= chart.x.size());
        require_numbers(pair["x"], chart.x.data() + row);
        require_numbers(pair["y"], chart.y.data() + row);
        require_text(pair["group"], chart.groups.empty() ? "" : chart.groups[row]);
        row += count;
    }
    OVIK_REQUIRE(row == chart.x.size());
}

void check_json(const Json& json, const Chart& chart) {
    require_text(json["title"], chart.title);
    require_text(json["name"], chart.name);
    require_texts(json["texts"], chart.texts);
    require_texts(json["links"], chart.links);
    require_texts(json["colours"], chart.colours);
    require_texts(json["categoryOrder"], chart.category_order);
    require_text(json["colourScheme"], chart.colour_scheme);
    OVIK_REQUIRE(json["parameters"].size() == chart.parameters.size());
    for (std::size_t i = 0; i < chart.parameters.size(); ++i) {
        require_texts(json["parameters"][i],
                      {chart.parameters[i].first, chart.parameters[i].second});
    }
    check_pairs(json["pairs"], chart);
    const std::size_t point_count = json["pointCount"];
    OVIK_REQUIRE(chart.x.empty() ? point_count == 0 : json["pairs"][0]["x"].size() == point_count);
    const auto of_points = [point_count](std::span<const std::string> texts) {
        texts = texts.first(std::min(point_count, texts.size()));
        return std::vector<std::string>(texts.begin(), texts.end());
    };
    require_texts(json["names"], of_points(chart.names));
    require_texts(json["functions"], of_points(chart.functions));
    std::vector<std::string> labels = chart.labels;
    labels.resize(labels.size() == point_count || labels.size() == chart.x.size() ? point_count
                                                                                  : 0);
    require_texts(json["labels"], labels);
}

void check_page(const std::string& page, const Chart& chart) {
    const PageData data = data_of(page);
    OVIK_REQUIRE(decoded_html(data.title) == test::plain_line(chart.title));
    OVIK_REQUIRE(std::all_of(data.json.begin(), data.json.end(), [](char c) {
        return c >= ' ' && c <= '~' && c != '>' && c != '&';
    }));
    check_json(Json::parse(data.json), chart);
}

std::vector<std::string> texts_from(test::InputLines& input) {
    std::vector<std::string> texts(input.count(3));
    std::generate(texts.begin(), texts.end(), [&input] { return input.text(); });
    return texts;
}

/// The run's own title comes first, then its parameters.
std::string run_title_from(test::InputLines& input, ChartTexts& texts) {
    std::string title = input.text();
    const std::size_t count = input.count(2);
    for (std::size_t i = 0; i < count; ++i) {
        std::string name = input.text();
        texts.parameters.emplace_back(std::move(name), input.text());
    }
    return title;
}

Chart chart_from(test::InputLines& input, ChartTexts& texts) {
    Chart chart;
    chart.title = input.text();
    chart.name = input.text();
    chart.x_title = input.text();
    chart.y_title = input.text();
    chart.texts = texts_from(input);
    chart.colour_scheme = input.text();
    chart.category_order = texts_from(input);
    chart.colours = texts_from(input);
    chart.links = texts_from(input);
    chart.layout.margins = {static_cast<int>(input.count(1000)), 0, 0, 0};
    chart.layout.tick_decimals = static_cast<int>(input.count(20));
    const bool has_texts = input.flag();
    const std::size_t count = input.count(6);
    for (std::size_t n = 0; n < count; ++n) {
        chart.x.push_back(input.number());
        chart.y.push_back(input.number());
        if (has_texts) {
            texts.names.push_back(input.text());
            texts.groups.push_back(input.text());
            texts.functions.push_back(input.text());
        }
    }
    chart.parameters = texts.parameters;
    chart.names = texts.names;
    chart.groups = texts.groups;
    chart.functions = texts.functions;
    while (!input.isAtEnd()) {
        chart.labels.push_back(input.text());
    }
    return chart;
}

/// The plotting class on the same data: as those of a run, or from a table beside the page, as a
/// run leaves it.
void check_plotting(Chart chart, const std::string& run_title, bool from_run) {
    static const test::TemporaryDirectory kDirectory;
    const std::size_t N = chart.x.size();
    std::vector<double> Y;
    std::vector<std::string> names;
    std::map<std::string, std::string> functions;
    std::vector<double*> coordinates;
    Y.reserve(2 * N);
    for (std::size_t n = 0; n < N; ++n) {
        Y.insert(Y.end(), {chart.x[n], chart.y[n]});
        coordinates.push_back(Y.data() + 2 * n);
        names.push_back(chart.names.empty() ? "" : chart.names[n]);
        functions[names.back()] = chart.functions.empty() ? "" : chart.functions[n];
    }
    OVIK_REQUIRE(
        !write_result_table(kDirectory.file("page_plot.csv"),
                            make_result_table<double>(Y.data(), N, 2, names.data(), functions)));
    int parameters[9] = {30, 180, 75, 120, 130, 90, -90, 0, 1};
    Javas<double> plot(kDirectory.prefix(), "page");
    plot.set_param(static_cast<int>(N), 2, nullptr);
    plot.set_postfix("plot");
    PlottedRun<double> run;
    if (from_run) {
        run.title = run_title;
        run.parameters = chart.parameters;
        run.names = chart.names;
        run.functions = chart.functions;
        plot.setRun(run);
    }
    plot.plotting("scatter",
                  coordinates.data(),
                  {chart.title, chart.x_title, chart.y_title},
                  chart.category_order,
                  chart.colours,
                  {"false", chart.colour_scheme},
                  parameters,
                  chart.links,
                  chart.labels);
    const std::string page = test::read_file(kDirectory.file("page_plot.html"));
    const PageData data = data_of(page);
    const Json json = Json::parse(data.json);
    const std::string title = !chart.title.empty() ? chart.title
                              : !run.title.empty() ? std::string(run.title)
                                                   : "page_plot";
    require_text(json["title"], title);
    OVIK_REQUIRE(decoded_html(data.title) == test::plain_line(title));
    std::erase(chart.links, "");
    require_texts(json["links"], chart.links);
    OVIK_REQUIRE(json["pointCount"] == N);
    OVIK_REQUIRE(json["names"].empty() || json["names"].size() == N);
    if (from_run) {
        require_texts(json["names"], {chart.names.begin(), chart.names.end()});
        require_texts(json["functions"], {chart.functions.begin(), chart.functions.end()});
    }
}

}  // namespace
}  // namespace ovik

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ovik;
    test::InputLines input(data, size);
    const bool through_plotting = input.flag();
    ChartTexts texts;
    const std::string run_title = run_title_from(input, texts);
    const Chart chart = chart_from(input, texts);
    check_page(chart_page(chart), chart);
    if (through_plotting) {
        check_plotting(chart, run_title, true);
        check_plotting(chart, run_title, false);
    }
    return 0;
}
