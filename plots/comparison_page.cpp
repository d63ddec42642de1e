#include "plots/comparison_page.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string_view>

#include "plots/filled_template.h"
#include "plots/html_text.h"
#include "plots/page_template.h"
#include "util/base64.h"
#include "util/json_text.h"

namespace ovik {

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

std::string list_of_facts(const Pairs& facts) {
    if (facts.empty()) {
        return "";
    }
    std::string list = "<dl class=\"facts\">";
    for (const auto& [name, value] : facts) {
        list += "<div><dt>" + html_text(name) + "</dt><dd>" + html_text(value) + "</dd></div>";
    }
    return list + "</dl>\n";
}

std::string link_to(const std::string& path, const std::string& inside) {
    return path.empty() ? inside : "<a href=\"" + link_text(path) + "\">" + inside + "</a>";
}

/// A paragraph; nothing without a text.
std::string paragraph(const char* style, const std::string& text) {
    return text.empty() ? ""
                        : "<p class=\"" + std::string(style) + "\">" + html_text(text) + "</p>\n";
}

std::string links_to(const Pairs& files) {
    if (files.empty()) {
        return "";
    }
    std::string links = "<p class=\"files\">";
    for (const auto& [name, path] : files) {
        links += link_to(path, html_text(name)) + " ";
    }
    return links + "</p>\n";
}

std::string item(const ComparedRun& run) {
    const std::string title = html_text(run.title);
    std::string result = "<li class=\"run card\">\n<h2>" + link_to(run.chart_page, title) +
                         "</h2>\n" + paragraph("note", run.note) + "<div class=\"map\"></div>\n";
    if (!run.picture.empty()) {
        result += "<img src=\"" + link_text(run.picture) +
                  "\" class=\"picture\" alt=\"Map: " + title +
                  "\" width=\"1200\" height=\"1200\">\n";
    }
    return result + links_to(run.files) + "</li>\n";
}

/// The choice of a perplexity in words and as a picture, in whose place scripts put their own.
std::string section_of_choice(const std::optional<ComparedChoice>& choice) {
    if (!choice) {
        return "";
    }
    const std::string picture =
        choice->picture.empty()
            ? ""
            : "<img src=\"" + link_text(choice->picture) +
                  "\" class=\"picture\" alt=\"Better than noise, stability and kept neighbours "
                  "against the perplexity: the numbers stand in the table below\" width=\"1000\" "
                  "height=\"600\">\n";
    return "<section class=\"card\" id=\"choice\">\n<h2>Choice of perplexity</h2>\n" +
           paragraph("recommendation", choice->sentence) + "<div class=\"choice-chart\"></div>\n" +
           picture + links_to(choice->files) + "</section>\n";
}

std::string number_cell(const ComparedNumber& number, std::size_t run) {
    const std::string text = number.values[run].empty() ? "<span class=\"none\">not measured</span>"
                                                        : html_text(number.values[run]);
    return number.is_best[run] ? "<td class=\"best\">" + text + " <span>best</span></td>"
                               : "<td>" + text + "</td>";
}

/// The numbers in a table, and below it what each of them says.
std::string table_of_numbers(const Comparison& comparison) {
    if (comparison.numbers.empty() || comparison.runs.empty()) {
        return "";
    }
    std::string table =
        "<section class=\"card\" id=\"numbers\">\n<h2>The runs in numbers</h2>\n"
        "<div class=\"numbers-frame\" tabindex=\"0\" role=\"region\" aria-label=\"The runs in "
        "numbers\">\n<table>\n<thead><tr><th scope=\"col\">Run</th>";
    for (const ComparedNumber& number : comparison.numbers) {
        table += "<th scope=\"col\">" + html_text(number.name) + "</th>";
    }
    table += "</tr></thead>\n<tbody>\n";
    for (std::size_t run = 0; run < comparison.runs.size(); ++run) {
        table += "<tr><th scope=\"row\">" + html_text(comparison.runs[run].title) + "</th>";
        for (const ComparedNumber& number : comparison.numbers) {
            table += number_cell(number, run);
        }
        table += "</tr>\n";
    }
    table += "</tbody>\n</table>\n</div>\n<dl class=\"sentences\">";
    for (const ComparedNumber& number : comparison.numbers) {
        table += "<div><dt>" + html_text(number.name) + "</dt><dd>" + html_text(number.sentence) +
                 "</dd></div>";
    }
    return table + "</dl>\n</section>\n";
}

std::string head_of(const Comparison& comparison) {
    return "<h1>" + html_text(comparison.title) + "</h1>\n" + list_of_facts(comparison.facts) +
           paragraph("alignment", comparison.alignment);
}

std::string list_of_runs(const Comparison& comparison) {
    std::string list;
    for (const ComparedRun& run : comparison.runs) {
        list += item(run);
    }
    return list;
}

/// What the places of a map span: least and most x, least and most y; zeros without a place.
std::array<double, 4> window_of(const ComparedRun& run) {
    std::array<double, 4> window{};
    bool is_empty = true;
    for (std::size_t gene = 0; gene < run.x.size(); ++gene) {
        const double x = run.x[gene];
        const double y = run.y[gene];
        if (std::isfinite(x) && std::isfinite(y)) {
            window = is_empty ? std::array{x, x, y, y}
                              : std::array{std::min(window[0], x),
                                           std::max(window[1], x),
                                           std::min(window[2], y),
                                           std::max(window[3], y)};
            is_empty = false;
        }
    }
    return window;
}

/// Stands for a gene that the map does not have; the other numbers of 16 bits span the window.
constexpr std::uint16_t kNoPlace = 0xFFFF;
constexpr double kSteps = 65534.0;

std::uint16_t step_of(double value, double least, double most) {
    // Halves, so that the range of the largest numbers is finite.
    const double width = most / 2 - least / 2;
    return width > 0.0
               ? static_cast<std::uint16_t>(std::lround((value / 2 - least / 2) / width * kSteps))
               : 0;
}

/// The places in base64: x and y of each gene in turn, 16 bits each, the lower 8 first.
std::string json_places(const ComparedRun& run, const std::array<double, 4>& window) {
    std::string bytes;
    bytes.reserve(4 * run.x.size());
    for (std::size_t gene = 0; gene < run.x.size(); ++gene) {
        const bool has_place = std::isfinite(run.x[gene]) && std::isfinite(run.y[gene]);
        for (const std::uint16_t step :
             {has_place ? step_of(run.x[gene], window[0], window[1]) : kNoPlace,
              has_place ? step_of(run.y[gene], window[2], window[3]) : kNoPlace}) {
            bytes.push_back(static_cast<char>(step & 255U));
            bytes.push_back(static_cast<char>(step >> 8U));
        }
    }
    return json_text(base64(bytes));
}

std::string json_run(const ComparedRun& run) {
    const std::array<double, 4> window = window_of(run);
    return json_object({{"title", json_text(run.title)},
                        {"window", json_list_of(window.begin(), window.end())},
                        {"places", json_places(run, window)}});
}

/// Null where there is nothing to choose.
std::string json_choice(const std::optional<ComparedChoice>& choice) {
    if (!choice) {
        return "null";
    }
    const ChoiceCurves& curves = choice->curves;
    std::vector<std::string> list;
    for (const ChoiceCurve& curve : curves.curves) {
        list.push_back(
            json_object({{"name", json_text(curve.name)}, {"shares", json_list_of(curve.shares)}}));
    }
    return json_object(
        {{"perplexities", json_list_of(curves.perplexities)},
         {"curves", json_list(list)},
         {"ofNoise", json_text(curves.of_noise)},
         {"recommended", curves.recommended ? json_text(*curves.recommended) : "null"}});
}

std::string json_comparison(const Comparison& comparison) {
    const ComparedGenes& genes = comparison.genes;
    std::vector<std::string> runs;
    for (const ComparedRun& run : comparison.runs) {
        runs.push_back(json_run(run));
    }
    std::vector<std::string> columns;
    for (const LabelColumn& column : genes.label_columns) {
        columns.push_back(json_object({{"title", json_text(column.title)},
                                       {"texts", json_list_of(column.texts)},
                                       {"numbers", json_list_of(column.numbers)}}));
    }
    return json_object({{"title", json_text(comparison.title)},
                        {"name", json_text(comparison.name)},
                        {"pointCount", json_text(genes.names.size())},
                        {"reference", json_text(comparison.reference)},
                        {"runs", json_list(runs)},
                        {"choice", json_choice(comparison.choice)},
                        {"names", json_list_of(genes.names)},
                        {"functions", json_list_of(genes.functions)},
                        {"genes", json_list_of(genes.listed_names)},
                        {"labelColumns", json_list(columns)}});
}

}  // namespace

std::string comparison_page(const Comparison& comparison) {
    return filled_template(comparison_template(),
                           {{"{{page-title}}", html_text(comparison.title)},
                            {"{{comparison-head}}", head_of(comparison)},
                            {"{{comparison-choice}}", section_of_choice(comparison.choice)},
                            {"{{comparison-runs}}", list_of_runs(comparison)},
                            {"{{comparison-numbers}}", table_of_numbers(comparison)},
                            {"{{comparison-data}}", json_for_script(json_comparison(comparison))}});
}

}  // namespace ovik
