#include "python/src/page.h"

#include <map>

#include "annotation/gene_table.h"
#include "plots/chart_page.h"
#include "results/result_table.h"
#include "stats/gene_identifiers.h"
#include "stats/terms_of_rows.h"

namespace ovik::python {

std::string map_page(MatrixView<const double> map, const PageTexts& texts) {
    std::map<std::string, std::string> functions = make_gene_table();
    ResultTable<double> table = make_result_table<double>(map, texts.names, functions);
    // By the gene table's own words, in the place of which the caller's may come.
    const RowTerms terms = terms_of_rows(texts.names, table.functions);
    const std::vector<GeneIdentifiers> identifiers = gene_identifiers(texts.names, table.functions);
    for (std::size_t row = 0; !texts.functions.empty() && row < table.functions.size(); ++row) {
        table.functions[row] = texts.functions[row % texts.functions.size()];
    }
    Chart chart;
    chart.title = texts.title;
    chart.name = texts.name;
    chart.x_title = "Component 1";
    chart.y_title = "Component 2";
    chart.parameters = texts.parameters;
    chart.layout = chart_layout(kRunChartParameters.data());
    chart.labels = texts.labels;
    for (const auto& [x, y] : table.coordinates) {
        chart.x.push_back(x);
        chart.y.push_back(y);
    }
    chart.names = table.names;
    chart.groups = table.groups;
    chart.functions = table.functions;
    chart.identifiers = identifiers;
    chart.sets = texts.sets;
    chart.matrix = texts.matrix ? &*texts.matrix : nullptr;
    chart.metric = texts.metric;
    chart.terms = &terms;
    return chart_page(chart);
}

}  // namespace ovik::python
