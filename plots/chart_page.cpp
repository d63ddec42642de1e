#include "plots/chart_page.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>
#include <system_error>

#include "plots/component_pair.h"
#include "plots/html_text.h"
#include "plots/page_template.h"
#include "util/base64.h"
#include "util/json_text.h"

namespace ovik {

namespace {

/// Writes a value that is at hand.
template <typename T>
JsonStream::Write written(const T& value) {
    return [&value](JsonStream& json) { json.value(value); };
}

/// Writes a list of values that are at hand.
template <typename Range>
JsonStream::Write written_list(const Range& values) {
    return [&values](JsonStream& json) { json.list(values); };
}

/// The coordinates, a pair of components after the other.
void write_pairs(JsonStream& json, const Chart& chart, std::size_t point_count) {
    json.text("[");
    for (std::size_t first = 0; first < chart.x.size(); first += point_count) {
        const std::size_t count = std::min(point_count, chart.x.size() - first);
        const std::string group = chart.groups.empty() ? "" : chart.groups[first];
        const auto title = [&](std::size_t which, const std::string& given) {
            return first == 0 ? given : component_title(group, which, given);
        };
        const auto slice = [&](const std::vector<double>& values) -> JsonStream::Write {
            return
                [part = std::span(values).subspan(first, count)](JsonStream& to) { to.list(part); };
        };
        const std::string x_title = title(0, chart.x_title);
        const std::string y_title = title(1, chart.y_title);
        json.text(first == 0 ? "" : ",");
        json.object({{"group", written(group)},
                     {"xTitle", written(x_title)},
                     {"yTitle", written(y_title)},
                     {"x", slice(chart.x)},
                     {"y", slice(chart.y)}});
    }
    json.text("]");
}

/// One text per point: those of the first group.
JsonStream::Write column(std::span<const std::string> texts, std::size_t point_count) {
    return [of_points = texts.first(std::min(point_count, texts.size()))](JsonStream& json) {
        json.list(of_points);
    };
}

/// Labels are given per point, or per row of the table: then those of the first group count.
JsonStream::Write labels_of_points(const Chart& chart, std::size_t point_count) {
    const bool is_of_use =
        chart.labels.size() == point_count || chart.labels.size() == chart.x.size();
    return column(is_of_use ? std::span(chart.labels) : std::span<const std::string>(),
                  point_count);
}

/// Columns of another length than the points are of no use.
void write_label_columns(JsonStream& json, const Chart& chart, std::size_t point_count) {
    std::vector<const LabelColumn*> columns;
    for (const LabelColumn& one : chart.label_columns) {
        if (one.texts.size() == point_count) {
            columns.push_back(&one);
        }
    }
    json.list(columns, [&json](const LabelColumn* one) {
        json.object({{"title", written(one->title)},
                     {"texts", written_list(one->texts)},
                     {"numbers", written_list(one->numbers)}});
    });
}

/// Systematic name, identifier and aliases of each point; an empty list where there are none.
void write_aliases(JsonStream& json, const Chart& chart, std::size_t point_count) {
    const bool is_of_use = chart.identifiers.size() == point_count;
    const auto genes = chart.identifiers.first(is_of_use ? point_count : 0);
    json.list(genes, [&json](const GeneIdentifiers& gene) {
        std::string aliases;
        for (const std::string& alias : gene.aliases) {
            aliases += (aliases.empty() ? "" : "|") + alias;
        }
        json.text(gene.systematic.empty() ? "[]"
                                          : json_list({json_text(gene.systematic),
                                                       json_text(gene.sgd_id),
                                                       json_text(aliases)}));
    });
}

/// The sets, by the names of their points.
void write_sets(JsonStream& json, const Chart& chart) {
    json.list(chart.sets, [&](const GeneSet& set) {
        std::vector<std::size_t> rows;
        std::copy_if(
            set.rows.begin(), set.rows.end(), std::back_inserter(rows), [&](std::size_t row) {
                return row < chart.names.size();
            });
        json.object({{"name", written(set.name)},
                     {"colour", written(set.colour)},
                     {"genes", [&](JsonStream& to) {
                          to.list(rows, [&](std::size_t row) { to.value(chart.names[row]); });
                      }}});
    });
}

/// The terms of the points: `list` has identifier, name and aspect of each, `genes` their places in
/// it, and `repeated` the points of a gene that an earlier one is of. Null without any.
void write_terms(JsonStream& json, const Chart& chart, std::size_t point_count) {
    if (chart.terms == nullptr || chart.terms->of_rows.size() != point_count) {
        json.text("null");
        return;
    }
    const RowTerms& terms = *chart.terms;
    const auto write_list = [&terms](JsonStream& to) {
        to.list(terms.list, [&to](const RowTerms::Term& term) {
            to.text(json_list({json_text(term.id),
                               json_text(term.name),
                               json_text(std::string(1, term.aspect))}));
        });
    };
    const auto write_genes = [&terms](JsonStream& to) {
        to.list(terms.of_rows, [&to](const std::vector<std::size_t>& places) { to.list(places); });
    };
    const auto write_repeated = [&terms](JsonStream& to) {
        to.list(terms.repeated, [&to](const auto& pair) {
            to.text(json_list({json_text(pair.first), json_text(pair.second)}));
        });
    };
    json.object({{"list", write_list}, {"genes", write_genes}, {"repeated", write_repeated}});
}

void write_matrix(JsonStream& json, const Chart& chart, std::size_t point_count) {
    if (chart.matrix == nullptr || chart.matrix->rows != point_count) {
        json.text("null");
        return;
    }
    const QuantisedMatrix& matrix = *chart.matrix;
    const auto packed = [](std::string_view bytes) -> JsonStream::Write {
        return [bytes](JsonStream& to) { to.text('"' + base64(bytes) + '"'); };
    };
    json.object({{"columns", written_list(matrix.columns)},
                 {"bits", written(matrix.bits)},
                 {"lows", written_list(matrix.lows)},
                 {"steps", written_list(matrix.steps)},
                 {"values", packed(matrix.codes)},
                 {"filled", packed(matrix.filled)},
                 {"metric", written(chart.metric)}});
}

void write_parameters(JsonStream& json, const Chart& chart) {
    json.list(chart.parameters, [&json](const auto& parameter) {
        json.text(json_list({json_text(parameter.first), json_text(parameter.second)}));
    });
}

void write_layout(JsonStream& json, const ChartLayout& layout) {
    json.object({{"margins", written_list(layout.margins)},
                 {"legendWidth", written(layout.legend_width)},
                 {"xTickTurn", written(layout.x_tick_turn)},
                 {"yTitleTurn", written(layout.y_title_turn)},
                 {"tickDecimals", written(layout.tick_decimals)},
                 {"grid", written(layout.grid)}});
}

/// A number to more digits than colours and words can show, so that chances and rates stay on their
/// side of the bounds that the page compares them with.
std::string json_rounded(double value) {
    constexpr int kDigits = 6;
    char text[32];
    const auto [end, error] =
        std::to_chars(text, text + sizeof text, value, std::chars_format::general, kDigits);
    return std::isfinite(value) && error == std::errc() ? std::string(text, end) : "null";
}

/// Columns of numbers of the points.
void write_row_numbers(JsonStream& json, const std::vector<RowNumbers>& columns) {
    json.list(columns, [&json](const RowNumbers& column) {
        json.object({{"name", written(column.name)},
                     {"title", written(column.title)},
                     {"values", [&column](JsonStream& values) {
                          values.list(column.values, [&values](double value) {
                              values.text(json_rounded(value));
                          });
                      }}});
    });
}

/// How far the map stays as it is on others; null if it was not compared with any. Clusters are
/// told by their numbers, from 1.
void write_stability(JsonStream& json, const MapTrust& trust, std::size_t point_count) {
    const auto is_of_points = [point_count](const RowNumbers& column) {
        return column.values.size() == point_count;
    };
    if (trust.stability == nullptr ||
        !std::all_of(
            trust.stability->columns.begin(), trust.stability->columns.end(), is_of_points)) {
        json.text("null");
        return;
    }
    const RecordedStability& stability = *trust.stability;
    const auto write_pairs = [&stability](JsonStream& to) {
        to.list(stability.pairs, [&to](const RecordedClusterPair& pair) {
            to.text(json_list({json_text(std::size_t{pair.first} + 1),
                               json_text(std::size_t{pair.second} + 1),
                               json_rounded(pair.separation),
                               json_rounded(pair.apart_seeds),
                               json_rounded(pair.apart_columns),
                               json_text(pair.stay_apart)}));
        });
    };
    json.object({{"seeds", written(stability.seeds)},
                 {"draws", written(stability.draws)},
                 {"neighbours", written(stability.neighbours)},
                 {"columns", [&](JsonStream& to) { write_row_numbers(to, stability.columns); }},
                 {"pairs", write_pairs}});
}

/// For each point a list of others.
void write_lists(JsonStream& json, const std::vector<std::vector<std::uint32_t>>& of_points) {
    json.list(of_points, [&json](const std::vector<std::uint32_t>& others) {
        json.list(others, [&json](std::uint32_t other) { json.value(std::size_t{other}); });
    });
}

/// What is known of each point: numbers, and lists of others, empty where there are none. Null if
/// nothing is known.
void write_reliability(JsonStream& json, const MapTrust& trust, std::size_t point_count) {
    if (trust.rows == nullptr || trust.rows->falsely_near.size() != point_count ||
        trust.rows->torn.size() != point_count) {
        json.text("null");
        return;
    }
    const RowReliability& rows = *trust.rows;
    json.object({{"columns", [&rows](JsonStream& to) { write_row_numbers(to, rows.columns); }},
                 {"near", written(rows.near)},
                 {"far", written(rows.far)},
                 {"falselyNear", [&rows](JsonStream& to) { write_lists(to, rows.falsely_near); }},
                 {"torn", [&rows](JsonStream& to) { write_lists(to, rows.torn); }}});
}

/// What is known of how far the map can be trusted; null if nothing is.
void write_quality(JsonStream& json, const Chart& chart, std::size_t point_count) {
    if (chart.trust == nullptr || chart.trust->numbers.empty()) {
        json.text("null");
        return;
    }
    const MapTrust& trust = *chart.trust;
    const auto write_numbers = [&trust](JsonStream& to) {
        to.list(trust.numbers, [&to](const auto& number) {
            const auto& [name, value, sentence] = number;
            to.text(json_list({json_text(name), json_text(value), json_text(sentence)}));
        });
    };
    const auto write_kept = [&](JsonStream& to) {
        const bool is_of_use = trust.kept.size() == point_count;
        to.list(std::span(trust.kept).first(is_of_use ? point_count : 0),
                [&to](double share) { to.value(std::round(share * 1000.0) / 1000.0); });
    };
    json.object(
        {{"numbers", write_numbers},
         {"neighbours", written(trust.neighbours)},
         {"kept", write_kept},
         {"stability", [&](JsonStream& to) { write_stability(to, trust, point_count); }},
         {"reliability", [&](JsonStream& to) { write_reliability(to, trust, point_count); }}});
}

void write_chart(JsonStream& json, const Chart& chart) {
    const std::size_t point_count = rows_per_pair(chart.groups, chart.x.size());
    const auto of_points = [&](const auto& write) -> JsonStream::Write {
        return [&chart, point_count, write](JsonStream& to) { write(to, chart, point_count); };
    };
    const auto of_chart = [&](const auto& write) -> JsonStream::Write {
        return [&chart, write](JsonStream& to) { write(to, chart); };
    };
    json.object({{"type", [](JsonStream& to) { to.text("\"scatter\""); }},
                 {"title", written(chart.title)},
                 {"name", written(chart.name)},
                 {"texts", written_list(chart.texts)},
                 {"parameters", of_chart(&write_parameters)},
                 {"layout", [&chart](JsonStream& to) { write_layout(to, chart.layout); }},
                 {"showLabels", written(chart.show_labels)},
                 {"colourScheme", written(chart.colour_scheme)},
                 {"categoryOrder", written_list(chart.category_order)},
                 {"colours", written_list(chart.colours)},
                 {"links", written_list(chart.links)},
                 {"pointCount", written(point_count)},
                 {"pairs", of_points(&write_pairs)},
                 {"names", column(chart.names, point_count)},
                 {"functions", column(chart.functions, point_count)},
                 {"genes", column(chart.genes, point_count)},
                 {"terms", of_points(&write_terms)},
                 {"labels", labels_of_points(chart, point_count)},
                 {"labelColumns", of_points(&write_label_columns)},
                 {"aliases", of_points(&write_aliases)},
                 {"sets", of_chart(&write_sets)},
                 {"background", written(chart.background)},
                 {"quality", of_points(&write_quality)},
                 {"matrix", of_points(&write_matrix)}});
}

/// Says where the map is instead.
std::string page_without_map(const Chart& chart) {
    const std::string title = html_text(chart.title);
    const std::string name = html_text(chart.name);
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
           "style-src 'unsafe-inline'\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
           title +
           "</title>\n<style>:root{color-scheme:light dark}body{font:1rem/1.5 sans-serif;"
           "max-width:40em;margin:3em auto;padding:0 1em}</style>\n</head>\n<body>\n<main>\n<h1>" +
           title + "</h1>\n<p>This map has " + std::to_string(chart.x.size()) +
           " points, more than the " + std::to_string(kMostPagePoints) +
           " that a page shows. They are all in the result table, " + name +
           ".csv, and in the figure, " + name + ".svg.</p>\n</main>\n</body>\n</html>\n";
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

void write_chart_page(const Chart& chart, const TextSink& sink) {
    if (chart.x.size() > kMostPagePoints) {
        sink(page_without_map(chart));
        return;
    }
    constexpr std::string_view kTitle = "{{page-title}}";
    constexpr std::string_view kData = "{{chart-data}}";
    const std::string_view page = page_template();
    const std::size_t title = page.find(kTitle);
    const std::size_t data = page.find(kData);
    sink(page.substr(0, title));
    sink(html_text(chart.title));
    sink(page.substr(title + kTitle.size(), data - title - kTitle.size()));
    JsonStream json(sink);
    write_chart(json, chart);
    json.end();
    sink(page.substr(data + kData.size()));
}

std::string chart_page(const Chart& chart) {
    std::string page;
    write_chart_page(chart, [&page](std::string_view piece) { page += piece; });
    return page;
}

}  // namespace ovik
