#include "stats/given_neighbours.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "input/market_entries.h"
#include "input/matrix_source.h"
#include "stats/cached_neighbours.h"
#include "stats/chosen_affinities.h"
#include "stats/method.h"
#include "stats/option_texts.h"
#include "util/counted.h"
#include "util/input_error.h"

namespace ovik {

namespace {

/// Collects the entries of a file as neighbours.
class GraphSink : public MarketSink {
  public:
    GraphSink(std::string source, std::size_t row_count)
        : source_(std::move(source)),
          row_count_(row_count) {}

    void begin(const MarketHead& head) override {
        if (!head.is_sparse) {
            throw InputError(
                source_ +
                ": the file holds a dense matrix (\"array\"), and a graph is a sparse "
                "one (\"coordinate\")\nA matrix of all distances is given in the place "
                "of the data, with the metric precomputed.");
        }
        if (head.is_pattern || head.mirror_sign < 0.0) {
            throw InputError(source_ +
                             ": the entries are no distances, since the file is one of \"" +
                             (head.is_pattern ? "pattern" : "skew-symmetric") +
                             "\"\nWrite the distances of neighbours as \"real general\".");
        }
        if (head.rows != row_count_ || head.columns != row_count_) {
            throw InputError(source_ + ": the graph has " + counted(head.rows, "row", "rows") +
                             " and " + counted(head.columns, "column", "columns") +
                             ", and the matrix has " + counted(row_count_, "row", "rows") +
                             "\nThe graph has to be of the rows of the matrix, in their order.");
        }
        is_symmetric_ = head.is_symmetric;
    }

    void add(const MarketEntry& entry) override {
        neighbours_.push_back({entry.row, entry.column, entry.value, entry.line});
        if (is_symmetric_ && entry.row != entry.column) {
            neighbours_.push_back({entry.column, entry.row, entry.value, entry.line});
        }
    }

    std::vector<GivenNeighbour> take() { return std::move(neighbours_); }

  private:
    std::string source_;
    std::size_t row_count_;
    bool is_symmetric_ = false;
    std::vector<GivenNeighbour> neighbours_;
};

void check_perplexity(double perplexity,
                      std::size_t row,
                      std::size_t count,
                      std::size_t wanted,
                      const std::string& source) {
    if (perplexity >= static_cast<double>(count)) {
        throw InputError(source + ": row " + std::to_string(row) + " has " +
                         counted(count, "neighbour", "neighbours") + ", and a perplexity of " +
                         plain_number(perplexity) + " needs more than as many\nGive " +
                         std::to_string(wanted) +
                         " neighbours of every row, three times the perplexity, or a lower "
                         "perplexity.");
    }
}

}  // namespace

NeighbourLists read_neighbour_lists(const std::string& path, std::size_t row_count) {
    MatrixSource source(path);
    if (!source.head().starts_with("%%MatrixMarket")) {
        throw InputError(source.name() +
                         ": is no Matrix Market file\nA graph of neighbours opens with "
                         "\"%%MatrixMarket matrix coordinate real general\".");
    }
    GraphSink graph(source.name(), row_count);
    read_market_entries(source, graph);
    return neighbour_lists(graph.take(), row_count, source.name());
}

std::shared_ptr<CachedNeighbours> make_given_neighbours(NeighbourLists lists) {
    return std::make_shared<CachedNeighbours>(std::move(lists));
}

std::string check_given_neighbours(const NeighbourLists& lists,
                                   const FitOptions& options,
                                   const std::string& source,
                                   std::size_t first,
                                   bool measures_quality) {
    if (!method_of(options).has_neighbours) {
        throw InputError(source +
                         ": the exact method takes all pairs of rows, and no neighbours\n" +
                         (options.method == MethodKind::Exact
                              ? "Take another method: barnes-hut or mesh."
                              : "Take Barnes-Hut: a theta above 0, such as 0.5."));
    }
    if (options.pca > 0) {
        throw InputError(source +
                         ": gives the neighbours that would else be searched for among principal "
                         "components, which have no effect so\nLeave out the components (pca), or "
                         "compute the neighbours among them.");
    }
    if (options.neighbour_search == NeighbourSearchKind::Approximate &&
        options.start != StartKind::Sample) {
        throw InputError(source +
                         ": gives the neighbours that would else be searched for, and an "
                         "approximate search has no effect so\nLeave out the search "
                         "(neighbour_search).");
    }
    if (options.metric != MetricKind::Euclidean && options.start != StartKind::Pca &&
        options.start != StartKind::Sample && !measures_quality) {
        throw InputError(source +
                         ": gives the neighbours that would else be searched for by the metric " +
                         std::string(choice_name(options.metric)) +
                         ", which has no effect so\nLeave out the metric, and compute the "
                         "neighbours by it.");
    }
    const auto wanted =
        static_cast<std::size_t>(std::max(affinity_neighbours(options, lists.rowCount()), 0));
    const std::vector<double> perplexities = perplexities_of(options);
    std::size_t fewest = wanted;
    std::size_t short_rows = 0;
    for (std::size_t n = 0; n < lists.rowCount(); ++n) {
        const std::size_t count = lists.of(n).size();
        fewest = std::min(fewest, count);
        short_rows += count < wanted ? 1 : 0;
        if (!perplexities.empty()) {
            const double largest = *std::max_element(perplexities.begin(), perplexities.end());
            check_perplexity(largest, n + first, count, wanted, source);
        }
    }
    if (short_rows == 0) {
        return "";
    }
    return source + ": " + counted(short_rows, "row has", "rows have") + " fewer than the " +
           std::to_string(wanted) + " neighbours that the fit takes, the fewest " +
           std::to_string(fewest) + ": their similarities end there";
}

}  // namespace ovik
