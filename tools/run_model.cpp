#include "tools/run_model.h"

#include <cstddef>

#include "stats/row_placement.h"
#include "util/format.h"

namespace ovik::tool {

template <typename T>
MapModel model_of_run(const TSNE<T>& tsne, const Options& options, const KnownColumns& columns) {
    MapModel model;
    model.rows = static_cast<std::size_t>(tsne.N);
    model.columns = static_cast<std::size_t>(tsne.D);
    model.out_dims = static_cast<std::size_t>(options.fit.out_dims);
    FitOptions fit = options.fit;
    fit.perplexity = tsne.perplexity;
    visit_fit_options(fit, [&model](const auto& option) {
        model.options.emplace_back(option.words.name, shortest_text(option.value));
    });
    model.perplexity = tsne.perplexity;
    model.row_names = tsne.row_names;
    model.column_names = columns.names;
    model.transformations = tsne.transformations;
    model.column_means = columns.means;
    model.subtracted = columns.subtracted;
    model.divisors = columns.divisors;
    model.centres = tsne.inputScale().means;
    model.factor = tsne.inputScale().factor;
    model.input.assign(tsne.X, tsne.X + model.rows * model.columns);
    model.largest_nearest_distance =
        largest_nearest_distance({model.input.data(), model.rows, model.columns});
    model.embedding.assign(tsne.Y, tsne.Y + model.rows * model.out_dims);
    return model;
}

template MapModel model_of_run(const TSNE<float>&, const Options&, const KnownColumns&);
template MapModel model_of_run(const TSNE<double>&, const Options&, const KnownColumns&);

}  // namespace ovik::tool
