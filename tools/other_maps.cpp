#include "tools/other_maps.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "stats/map_stability.h"
#include "stats/trust_texts.h"
#include "stats/varied_maps.h"
#include "util/console.h"

#include "tools/interruption.h"
#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

/// What the map of a run was fitted by.
template <typename T>
FitOptions options_of(const TSNE<T>& tsne, const Options& options, const FitReport& report) {
    FitOptions fit = options.fit;
    fit.perplexity = tsne.perplexity;
    if (report.seeds) {
        fit.seed = report.seeds->runs[report.seeds->kept].seed;
    }
    return fit;
}

}  // namespace

template <typename T>
std::shared_ptr<const RecordedStability> compare_with_other_maps(const TSNE<T>& tsne,
                                                                 const Options& options,
                                                                 MatrixView<const double> X,
                                                                 const FitReport& report,
                                                                 const RowClusters* clusters) {
    std::optional<VariedMaps> others;
    if (goes_on()) {
        others = varied_maps(X,
                             options_of(tsne, options, report),
                             static_cast<std::size_t>(options.stability),
                             {options.seeds_at_once, &goes_on, options.on_stage});
    }
    if (!others) {
        complain("Stability is not measured of a run that was interrupted");
        return nullptr;
    }
    const MatrixView<const double> map{
        tsne.Y, X.rows, static_cast<std::size_t>(options.fit.out_dims)};
    std::span<const std::uint32_t> of_rows;
    if (clusters != nullptr) {
        of_rows = clusters->clusters;
    }
    auto stability = std::make_shared<const RecordedStability>(
        map_stability(map, others->of_seeds, others->of_columns, of_rows));
    for (const std::string& line : stability_lines(*stability)) {
        print_info(line);
    }
    return stability;
}

template std::shared_ptr<const RecordedStability> compare_with_other_maps(const TSNE<float>&,
                                                                          const Options&,
                                                                          MatrixView<const double>,
                                                                          const FitReport&,
                                                                          const RowClusters*);
template std::shared_ptr<const RecordedStability> compare_with_other_maps(const TSNE<double>&,
                                                                          const Options&,
                                                                          MatrixView<const double>,
                                                                          const FitReport&,
                                                                          const RowClusters*);

}  // namespace ovik::tool
