#include "plots/chart_page.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <system_error>

#include "plots/component_pair.h"
#include "plots/filled_template.h"
#include "plots/html_text.h"
#include "plots/page_template.h"
#include "util/base64.h"
#include "util/json_text.h"

namespace ovik {

namespace {

std::string json_slice(const std::vector<double>& values, std::size_t first, std::size_t count) {
    const auto begin = values.begin() + static_cast<std::ptrdiff_t>(first);
    return json_list_of(begin, begin + static_cast<std::ptrdiff_t>(count));
}

/// The coordinates, a pair of components after the other.
std::string json_pairs(const Chart& chart, std::size_t point_count) {
    std::vector<std::string> pairs;
    for (std::size_t first = 0; first < chart.x.size(); first += point_count) {
        const std::size_t count = std::min(point_count, chart.x.size() - first);
        const std::string group = chart.groups.empty() ? "" : chart.groups[first];
        const bool is_first = first == 0;
        const auto title = [&](std::size_t which, const std::string& given) {
            return is_first ? given : component_title(group, which, given);
        };
        pairs.push_back(json_object({{"group", json_text(group)},
                                     {"xTitle", json_text(title(0, chart.x_title))},
                                     {"yTitle", json_text(title(1, chart.y_title))},
                                     {"x", json_slice(chart.x, first, count)},
                                     {"y", json_slice(chart.y, first, count)}}));
    }
    return json_list(pairs);
}

/// One text per point: those of the first group.
std::string json_column(std::span<const std::string> texts, std::size_t point_count) {
    const auto of_points = texts.first(std::min(point_count, texts.size()));
    return json_list_of(of_points.begin(), of_points.end());
}

/// Labels are given per point, or per row of the table: then those of the first group count.
std::string json_labels(const Chart& chart, std::size_t point_count) {
    if (chart.labels.size() != point_count && chart.labels.size() != chart.x.size()) {
        return "[]";
    }
    const auto begin = chart.labels.begin();
    return json_list_of(begin, begin + static_cast<std::ptrdiff_t>(point_count));
}

/// Columns of another length than the points are of no use.
std::string json_label_columns(const Chart& chart, std::size_t point_count) {
    std::vector<std::string> columns;
    for (const LabelColumn& column : chart.label_columns) {
        if (column.texts.size() == point_count) {
            columns.push_back(json_object({{"title", json_text(column.title)},
                                           {"texts", json_list_of(column.texts)},
                                           {"numbers", json_list_of(column.numbers)}}));
        }
    }
    return json_list(columns);
}

/// Systematic name, identifier and aliases of each point; an empty list where there are none.
std::string json_aliases(const Chart& chart, std::size_t point_count) {
    std::vector<std::string> points;
    if (chart.identifiers.size() == point_count) {
        for (const GeneIdentifiers& gene : chart.identifiers) {
            std::string aliases;
            for (const std::string& alias : gene.aliases) {
                aliases += (aliases.empty() ? "" : "|") + alias;
            }
            points.push_back(gene.systematic.empty() ? "[]"
                                                     : json_list({json_text(gene.systematic),
                                                                  json_text(gene.sgd_id),
                                                                  json_text(aliases)}));
        }
    }
    return json_list(points);
}

/// The sets, by the names of their points.
std::string json_sets(const Chart& chart) {
    std::vector<std::string> sets;
    for (const GeneSet& set : chart.sets) {
        std::vector<std::string> genes;
        for (const std::size_t row : set.rows) {
            if (row < chart.names.size()) {
                genes.push_back(json_text(chart.names[row]));
            }
        }
        sets.push_back(json_object({{"name", json_text(set.name)},
                                    {"colour", json_text(set.colour)},
                                    {"genes", json_list(genes)}}));
    }
    return json_list(sets);
}

/// The terms of the points: `list` has identifier, name and aspect of each, `genes` their places in
/// it, and `repeated` the points of a gene that an earlier one is of. Null without any.
std::string json_terms(const Chart& chart, std::size_t point_count) {
    if (chart.terms == nullptr || chart.terms->of_rows.size() != point_count) {
        return "null";
    }
    std::vector<std::string> list;
    for (const RowTerms::Term& term : chart.terms->list) {
        list.push_back(json_list(
            {json_text(term.id), json_text(term.name), json_text(std::string(1, term.aspect))}));
    }
    std::vector<std::string> genes;
    for (const std::vector<std::size_t>& places : chart.terms->of_rows) {
        genes.push_back(json_list_of(places));
    }
    std::vector<std::string> repeated;
    for (const auto& [row, first] : chart.terms->repeated) {
        repeated.push_back(json_list({json_text(row), json_text(first)}));
    }
    return json_object({{"list", json_list(list)},
                        {"genes", json_list(genes)},
                        {"repeated", json_list(repeated)}});
}

std::string json_matrix(const Chart& chart, std::size_t point_count) {
    if (chart.matrix == nullptr || chart.matrix->rows != point_count) {
        return "null";
    }
    const QuantisedMatrix& matrix = *chart.matrix;
    return json_object({{"columns", json_list_of(matrix.columns)},
                        {"bits", json_text(matrix.bits)},
                        {"lows", json_list_of(matrix.lows)},
                        {"steps", json_list_of(matrix.steps)},
                        {"values", '"' + base64(matrix.codes) + '"'},
                        {"filled", '"' + base64(matrix.filled) + '"'},
                        {"metric", json_text(chart.metric)}});
}

std::string json_parameters(const Chart& chart) {
    std::vector<std::string> parameters;
    for (const auto& [name, value] : chart.parameters) {
        parameters.push_back(json_list({json_text(name), json_text(value)}));
    }
    return json_list(parameters);
}

std::string json_layout(const ChartLayout& layout) {
    return json_object({{"margins", json_list_of(layout.margins)},
                        {"legendWidth", json_text(layout.legend_width)},
                        {"xTickTurn", json_text(layout.x_tick_turn)},
                        {"yTitleTurn", json_text(layout.y_title_turn)},
                        {"tickDecimals", json_text(layout.tick_decimals)},
                        {"grid", json_text(layout.grid)}});
}

/// For each point a list of others; an empty list where there are none.
std::string json_lists(const std::vector<std::vector<std::uint32_t>>& rows) {
    std::vector<std::string> lists;
    lists.reserve(rows.size());
    for (const std::vector<std::uint32_t>& row : rows) {
        lists.push_back(json_list_of(std::vector<std::size_t>(row.begin(), row.end())));
    }
    return json_list(lists);
}

/// A number to as many digits as colours and words can show.
std::string json_rounded(double value) {
    constexpr int kDigits = 4;
    char text[32];
    const auto [end, error] =
        std::to_chars(text, text + sizeof text, value, std::chars_format::general, kDigits);
    return std::isfinite(value) && error == std::errc() ? std::string(text, end) : "null";
}

/// What is known of each point; null if nothing is.
std::string json_reliability(const MapTrust& trust, std::size_t point_count) {
    if (trust.rows == nullptr || trust.rows->falsely_near.size() != point_count ||
        trust.rows->torn.size() != point_count) {
        return "null";
    }
    std::vector<std::string> columns;
    for (const RowNumbers& column : trust.rows->columns) {
        std::vector<std::string> values;
        for (const double value : column.values) {
            values.push_back(json_rounded(value));
        }
        columns.push_back(json_object({{"name", json_text(column.name)},
                                       {"title", json_text(column.title)},
                                       {"values", json_list(values)}}));
    }
    return json_object({{"columns", json_list(columns)},
                        {"near", json_text(trust.rows->near)},
                        {"far", json_text(trust.rows->far)},
                        {"falselyNear", json_lists(trust.rows->falsely_near)},
                        {"torn", json_lists(trust.rows->torn)}});
}

/// What is known of how far the map can be trusted; null if nothing is.
std::string json_quality(const Chart& chart, std::size_t point_count) {
    if (chart.trust == nullptr || chart.trust->numbers.empty()) {
        return "null";
    }
    std::vector<std::string> numbers;
    for (const auto& [name, value, sentence] : chart.trust->numbers) {
        numbers.push_back(json_list({json_text(name), json_text(value), json_text(sentence)}));
    }
    std::vector<double> kept;
    if (chart.trust->kept.size() == point_count) {
        for (const double share : chart.trust->kept) {
            kept.push_back(std::round(share * 1000.0) / 1000.0);
        }
    }
    return json_object({{"numbers", json_list(numbers)},
                        {"neighbours", json_text(chart.trust->neighbours)},
                        {"kept", json_list_of(kept)},
                        {"reliability", json_reliability(*chart.trust, point_count)}});
}

std::string json_chart(const Chart& chart) {
    const std::size_t point_count = rows_per_pair(chart.groups, chart.x.size());
    return json_object({{"type", "\"scatter\""},
                        {"title", json_text(chart.title)},
                        {"name", json_text(chart.name)},
                        {"texts", json_list_of(chart.texts)},
                        {"parameters", json_parameters(chart)},
                        {"layout", json_layout(chart.layout)},
                        {"showLabels", json_text(chart.show_labels)},
                        {"colourScheme", json_text(chart.colour_scheme)},
                        {"categoryOrder", json_list_of(chart.category_order)},
                        {"colours", json_list_of(chart.colours)},
                        {"links", json_list_of(chart.links)},
                        {"pointCount", json_text(point_count)},
                        {"pairs", json_pairs(chart, point_count)},
                        {"names", json_column(chart.names, point_count)},
                        {"functions", json_column(chart.functions, point_count)},
                        {"genes", json_column(chart.genes, point_count)},
                        {"terms", json_terms(chart, point_count)},
                        {"labels", json_labels(chart, point_count)},
                        {"labelColumns", json_label_columns(chart, point_count)},
                        {"aliases", json_aliases(chart, point_count)},
                        {"sets", json_sets(chart)},
                        {"background", json_text(chart.background)},
                        {"quality", json_quality(chart, point_count)},
                        {"matrix", json_matrix(chart, point_count)}});
}

}  // namespace

ChartLayout chart_layout(const int* parameters) {
    ChartLayout layout;
    layout.margins.assign(parameters, parameters + 4);
    layout.legend_width = parameters[4];
    layout.x_tick_turn = parameters[5];
    layout.y_title_turn = parameters[6];
    layout.tick_decimals = parameters[7];
    layout.grid = parameters[8] != 0;
    return layout;
}

std::string chart_page(const Chart& chart) {
    // Pure ASCII, so that U+2028 and U+2029 are escaped too.
    const std::string json = json_chart(chart);
    return filled_template(
        page_template(),
        {{"{{page-title}}", html_text(chart.title)}, {"{{chart-data}}", json_for_script(json)}});
}

}  // namespace ovik
