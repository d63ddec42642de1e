#include "tools/sparse_input.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "stats/fit_console.h"
#include "stats/sparse_components.h"
#include "util/available_memory.h"
#include "util/input_error.h"
#include "util/memory_text.h"
#include "util/stage.h"

#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

/// @throws InputError if what is asked for takes the columns themselves
void check_use(const Options& options) {
    const std::string reason =
        "the matrix is sparse and too large to be made dense, so that its components stand for its "
        "columns";
    if (options.fit.metric != MetricKind::Euclidean) {
        throw InputError("--metric " + std::string(choice_name(options.fit.metric)) + ": " +
                         reason +
                         ", which are compared by --metric euclidean alone\nLeave "
                         "--metric away.");
    }
    if (options.against_noise > 0) {
        throw InputError(
            (options.chooses_perplexity ? "--choose-perplexity: " : "--against-noise: ") + reason +
            ", which are not there to be shuffled\nLeave it away, or give fewer columns.");
    }
    if (!options.model.empty()) {
        throw InputError("--model: " + reason +
                         ", of which a model knows nothing\nLeave --model away, or make the map of "
                         "components that are in the file (--layer obsm/X_pca).");
    }
}

/// @throws InputError if there is too little memory for the components
void check_component_memory(const SparseRows& sparse, std::size_t count) {
    const double bytes = 8.0 * (static_cast<double>(sparse.columns) *
                                    static_cast<double>(most_directions(count) + 3 * count) +
                                static_cast<double>(sparse.rows) * static_cast<double>(count + 32));
    const AvailableMemory available = available_memory();
    if (bytes > available.bytes) {
        throw InputError(
            "the components take about " + memory_text(bytes) + " of memory, and " +
            memory_text(std::max(available.bytes, 0.0)) + " are left " + available.limit +
            "\nFewer components (--pca) or fewer rows take less; --force tries all the "
            "same.");
    }
}

void tell_of_components(const SparseComponents& found, std::size_t count, std::size_t columns) {
    print_components(
        static_cast<int>(count), static_cast<int>(columns), found.components.varianceKept());
    if (found.residual > kComponentTolerance) {
        char residual[32];
        std::snprintf(residual, sizeof residual, "%.1g", found.residual);
        complain("note: the last components are known up to " + std::string(residual) +
                 " of the largest variance: variances that are nearly equal have no components of "
                 "their own");
    }
}

/// Finds the components, and tells how far that is: among how many of the most directions.
SparseComponents components_told(const SparseRows& sparse,
                                 std::size_t count,
                                 const OnStage& on_stage) {
    tell(on_stage, Stage::Components, 0, 0);
    SparseComponents found =
        sparse_components(sparse, count, [&on_stage](std::size_t directions, std::size_t most) {
            tell(on_stage, Stage::Components, directions, most);
        });
    tell(on_stage, Stage::Components, 1, 1);
    return found;
}

}  // namespace

void settle_sparse_input(LoadedMatrix& loaded, Options& options) {
    InspectedMatrix& matrix = loaded.matrix;
    if (!matrix.sparse) {
        return;
    }
    const auto count = static_cast<std::size_t>(options.fit.pca);
    const std::size_t columns = matrix.sparse->columns;
    check_use(options);
    Options checked = options;
    settle_fit_options(checked, matrix.sparse->rows, columns);
    if (!options.force) {
        check_component_memory(*matrix.sparse, count);
    }
    options.sparse_components = options.fit.pca;
    options.fit.pca = 0;
    options.given.erase("pca");
    if (!options.dry_run) {
        const SparseComponents found = components_told(*matrix.sparse, count, options.on_stage);
        tell_of_components(found, count, columns);
        options.sparse_variance_kept = found.components.varianceKept();
        const std::vector<double>& scores = found.components.scores;
        matrix.values = std::make_unique_for_overwrite<double[]>(scores.size());
        std::copy(scores.begin(), scores.end(), matrix.values.get());
    }
    matrix.sparse.reset();
    matrix.report.columns = count;
    matrix.column_names.clear();
    for (std::size_t c = 0; c < count; ++c) {
        matrix.column_names.push_back("PC" + std::to_string(c + 1));
    }
}

}  // namespace ovik::tool
