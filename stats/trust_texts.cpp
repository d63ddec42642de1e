#include "stats/trust_texts.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "stats/map_stability.h"
#include "stats/median.h"
#include "stats/row_reliability.h"
#include "stats/seed_texts.h"
#include "util/counted.h"
#include "util/rounded.h"

namespace ovik {

namespace {

void add_quality(const NeighbourhoodQuality& quality, std::vector<TrustNumber>& numbers) {
    const std::string k = std::to_string(quality.neighbours);
    const double rows = static_cast<double>(quality.kept.size());
    numbers.push_back(
        {"Neighbours kept, of " + k,
         percent_text(quality.preservation),
         "So many of the " + k + " nearest neighbours that a row has in the data are among its " +
             k + " nearest on the map, averaged over the rows; a map of random places keeps " +
             percent_text(static_cast<double>(quality.neighbours) / (rows - 1.0)) + "."});
    numbers.push_back({"Trustworthiness, " + k + " neighbours",
                       rounded_text(quality.trustworthiness, 4),
                       "1 if all rows that are near one another on the map are near one another in "
                       "the data; about 0.5 for a map of random places."});
}

/// The share of near rows that some lists hold, averaged over the rows.
std::string share_of_near(const RowReliability& rows,
                          const std::vector<std::vector<std::uint32_t>>& lists) {
    std::size_t count = 0;
    for (const std::vector<std::uint32_t>& list : lists) {
        count += list.size();
    }
    return percent_text(static_cast<double>(count) / static_cast<double>(rows.near * lists.size()));
}

void add_misplaced(const RowReliability& rows, std::vector<TrustNumber>& numbers) {
    const std::string near = std::to_string(rows.near);
    const std::string far = std::to_string(rows.far);
    numbers.push_back({"False neighbours, of " + near,
                       share_of_near(rows, rows.falsely_near),
                       "So many of the " + near +
                           " rows that are nearest to one on the map are not "
                           "even among its " +
                           far + " nearest in the data."});
    numbers.push_back({"Torn neighbours, of " + near,
                       share_of_near(rows, rows.torn),
                       "So many of the " + near +
                           " rows that are nearest to one in the data are not "
                           "even among its " +
                           far + " nearest on the map."});
}

void add_noise(const RowReliability& rows,
               const std::string& by,
               const std::string& words,
               std::vector<TrustNumber>& numbers) {
    const std::optional<NoiseSummary> summary = noise_summary_of(rows, by);
    if (summary) {
        numbers.push_back(
            {"Told from noise by " + words,
             percent_text(summary->told),
             "So many of the rows can be told from rows of shuffled values by their " + words +
                 ", at a false discovery rate of 5 %; " + percent_text(summary->better) +
                 " are better than 95 % of those, as 5 % of pure noise are."});
    }
}

void add_seeds(const SeedReport& seeds, std::vector<TrustNumber>& numbers) {
    numbers.push_back({"Cost by seed",
                       seed_costs_text(seeds),
                       "The data were fitted from each of these seeds, and the map of the lowest "
                       "cost is shown: the nearer the costs, the less the seed matters to how good "
                       "the map is."});
    if (!seeds.agreement) {
        return;
    }
    numbers.push_back({"Procrustes disparity of the seeds",
                       rounded_text(seeds.agreement->disparity, 4),
                       "0 if the maps of the seeds are the same when one is moved, turned, "
                       "mirrored and scaled to lie on another, up to 1: where it is large, the "
                       "places of the groups relative to one another mean little."});
    numbers.push_back({"Neighbours shared by the seeds",
                       percent_text(seeds.agreement->shared_neighbours),
                       "So many of the " + std::to_string(seeds.agreement->neighbours) +
                           " nearest neighbours of a row on one map are so on another: which rows "
                           "are together is as stable as this."});
}

/// What a column of the stability tells of all rows.
struct ColumnSummary {
    double mean;
    double median;
};

ColumnSummary summary_of(const RowNumbers& column) {
    double sum = 0.0;
    for (const double value : column.values) {
        sum += value;
    }
    std::vector<double> values = column.values;
    return {sum / static_cast<double>(values.size()), median(values)};
}

/// The columns of one kind of maps: neighbours that stay, and the spread of the places.
struct KindOfMaps {
    std::string maps;
    const RowNumbers& shared;
    const RowNumbers& spread;
};

std::vector<KindOfMaps> kinds_of(const RecordedStability& stability) {
    std::vector<KindOfMaps> kinds;
    std::size_t at = 0;
    if (stability.seeds > 0) {
        kinds.push_back({counted(stability.seeds, "other seed", "other seeds"),
                         stability.columns[at],
                         stability.columns[at + 1]});
        at += 2;
    }
    if (stability.draws > 0) {
        kinds.push_back({counted(stability.draws, "draw of the columns", "draws of the columns"),
                         stability.columns[at],
                         stability.columns[at + 1]});
    }
    return kinds;
}

std::size_t pairs_that_stay(const RecordedStability& stability) {
    return static_cast<std::size_t>(
        std::count_if(stability.pairs.begin(), stability.pairs.end(), [](const auto& pair) {
            return pair.stay_apart;
        }));
}

void add_stability(const RecordedStability& stability, std::vector<TrustNumber>& numbers) {
    const std::string k = std::to_string(stability.neighbours);
    for (const KindOfMaps& kind : kinds_of(stability)) {
        numbers.push_back({"Map neighbours that stay, " + kind.maps,
                           percent_text(summary_of(kind.shared).mean),
                           "So many of the " + k +
                               " rows that are nearest to one on this map are so on such a map, "
                               "averaged over rows and maps: what changes with the seed or the "
                               "columns is no property of the data."});
        numbers.push_back({"Spread of the places, " + kind.maps,
                           rounded_text(summary_of(kind.spread).median, 3),
                           "Half of the rows move by less than this when such maps are laid onto "
                           "this one; 1 is the root mean square distance of the rows from the "
                           "middle of the map."});
    }
    if (stability.has_clusters) {
        numbers.push_back({"Pairs of clusters that stay apart",
                           std::to_string(pairs_that_stay(stability)) + " of " +
                               std::to_string(stability.pairs.size()),
                           "Two clusters are apart on a map where " + percent_text(kApart) +
                               " of their rows lie nearer to a row of their own cluster than to "
                               "any of the other, and stay so where they are on " +
                               percent_text(kStayApart) +
                               " of the maps of other seeds and of other columns."});
    }
}

}  // namespace

std::vector<std::string> stability_lines(const RecordedStability& stability) {
    std::vector<std::string> lines;
    for (const KindOfMaps& kind : kinds_of(stability)) {
        lines.push_back("Stability, " + kind.maps + ": " +
                        percent_text(summary_of(kind.shared).mean) + " of the " +
                        std::to_string(stability.neighbours) +
                        " nearest on the map stay, median spread " +
                        rounded_text(summary_of(kind.spread).median, 3));
    }
    lines.push_back(stability.has_clusters
                        ? "Stability of clusters: " + std::to_string(pairs_that_stay(stability)) +
                              " of " + counted(stability.pairs.size(), "pair", "pairs") +
                              " stay apart"
                        : "Stability of clusters: not compared without --clusters");
    return lines;
}

MapTrust map_trust(const FitReport& report,
                   std::vector<NeighbourhoodQuality> quality,
                   const RowClusters* clusters,
                   std::shared_ptr<const RowReliability> rows,
                   std::shared_ptr<const RecordedStability> stability) {
    MapTrust trust;
    if (!report.seeds && quality.empty() && clusters == nullptr && stability == nullptr) {
        return trust;
    }
    for (const NeighbourhoodQuality& one : quality) {
        add_quality(one, trust.numbers);
    }
    if (!quality.empty()) {
        trust.neighbours = quality.back().neighbours;
        trust.kept = std::move(quality.back().kept);
    }
    if (rows != nullptr) {
        add_misplaced(*rows, trust.numbers);
        add_noise(*rows, "kept", "kept neighbours", trust.numbers);
        add_noise(*rows, "misfit", "misfit", trust.numbers);
    }
    trust.rows = std::move(rows);
    trust.numbers.push_back({"Cost",
                             rounded_text(report.final_cost, 4),
                             "The Kullback-Leibler divergence of the map's similarities from those "
                             "of the data, in nats: the lower, the better, among maps of the same "
                             "data and perplexity alone."});
    if (report.seeds) {
        add_seeds(*report.seeds, trust.numbers);
    }
    if (stability != nullptr) {
        add_stability(*stability, trust.numbers);
    }
    trust.stability = std::move(stability);
    if (clusters != nullptr) {
        trust.numbers.push_back({"Modularity of the clusters",
                                 rounded_text(clusters->modularity, 4),
                                 "By how much more of the weight between neighbours lies within "
                                 "the clusters than chance would put there, up to 1: near 0, the "
                                 "data have no clusters to speak of."});
    }
    return trust;
}

}  // namespace ovik
