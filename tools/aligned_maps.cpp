#include "tools/aligned_maps.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <unordered_map>
#include <utility>

#include "stats/procrustes.h"

namespace ovik::tool {

namespace {

/// With fewer rows in common, how a map is turned would be left to chance.
constexpr std::size_t kFewestShared = 3;

std::size_t rows_of(const RunMap& map) {
    return map.rows == nullptr ? 0 : map.rows->names.size();
}

/// Numbers genes by their names, and by how many of the name came before in their map.
class GeneNumbers {
  public:
    /// The genes of the rows of a map.
    ///
    /// @param found  called for each row whose gene is new, in their order
    template <typename Found>
    std::vector<std::size_t> of(const std::vector<std::string>& names, const Found& found) {
        std::unordered_map<std::string, std::size_t> seen;
        std::vector<std::size_t> genes;
        genes.reserve(names.size());
        for (std::size_t row = 0; row < names.size(); ++row) {
            std::vector<std::size_t>& known = genes_of_name_[names[row]];
            const std::size_t occurrence = seen[names[row]]++;
            if (occurrence == known.size()) {
                known.push_back(count_++);
                found(row);
            }
            genes.push_back(known[occurrence]);
        }
        return genes;
    }

  private:
    std::unordered_map<std::string, std::vector<std::size_t>> genes_of_name_;
    std::size_t count_ = 0;
};

/// Appends what is known of a row; texts that its map lacks are empty.
void append_gene(ComparedGenes& genes, const ComparedGenes& rows, std::size_t row) {
    const auto text = [row](const std::vector<std::string>& texts) {
        return row < texts.size() ? texts[row] : std::string();
    };
    genes.names.push_back(rows.names[row]);
    genes.functions.push_back(text(rows.functions));
    genes.listed_names.push_back(text(rows.listed_names));
}

/// Gives the genes that only other maps have no label.
void complete_labels(ComparedGenes& genes) {
    for (LabelColumn& column : genes.label_columns) {
        column.texts.resize(genes.names.size());
        if (column.isNumeric()) {
            column.numbers.resize(genes.names.size(), std::numeric_limits<double>::quiet_NaN());
        }
    }
}

/// The places of a map, gene by gene, with zeros for dimensions that others have besides; NaN for
/// genes without one.
std::vector<double> places_of_genes(const RunMap& map,
                                    const std::vector<std::size_t>& gene_of_row,
                                    std::size_t gene_count,
                                    std::size_t dims) {
    std::vector<double> places(gene_count * dims, std::numeric_limits<double>::quiet_NaN());
    for (std::size_t row = 0; row < gene_of_row.size(); ++row) {
        const std::span<const double> place{map.places.data() + row * map.dims, map.dims};
        if (std::all_of(
                place.begin(), place.end(), [](double value) { return std::isfinite(value); })) {
            const auto begin =
                places.begin() + static_cast<std::ptrdiff_t>(gene_of_row[row] * dims);
            std::fill_n(begin, dims, 0.0);
            std::copy(place.begin(), place.end(), begin);
        }
    }
    return places;
}

/// The places that two maps have in common.
struct SharedPlaces {
    std::vector<double> onto;
    std::vector<double> map;
};

SharedPlaces shared_places(const std::vector<double>& onto,
                           const std::vector<double>& map,
                           std::size_t dims) {
    SharedPlaces shared;
    for (std::size_t begin = 0; begin < map.size(); begin += dims) {
        if (!std::isnan(onto[begin]) && !std::isnan(map[begin])) {
            const auto offset = static_cast<std::ptrdiff_t>(begin);
            const auto end = static_cast<std::ptrdiff_t>(begin + dims);
            shared.onto.insert(shared.onto.end(), onto.begin() + offset, onto.begin() + end);
            shared.map.insert(shared.map.end(), map.begin() + offset, map.begin() + end);
        }
    }
    return shared;
}

/// Takes the first two dimensions.
void take_plane(AlignedMap& aligned, const std::vector<double>& places, std::size_t dims) {
    for (std::size_t begin = 0; begin < places.size(); begin += dims) {
        aligned.x.push_back(places[begin]);
        aligned.y.push_back(dims > 1 ? places[begin + 1] : 0.0);
        aligned.placed += std::isnan(places[begin]) ? 0 : 1;
    }
}

/// Lays a map onto the reference.
///
/// @param places  of all genes; moved
AlignedMap align(const std::vector<double>& reference,
                 std::vector<double> places,
                 std::size_t dims) {
    AlignedMap aligned;
    const SharedPlaces shared = shared_places(reference, places, dims);
    aligned.shared = shared.map.size() / dims;
    if (aligned.shared >= kFewestShared) {
        const MatrixView<const double> A{shared.onto.data(), aligned.shared, dims};
        const MatrixView<const double> B{shared.map.data(), aligned.shared, dims};
        procrustes_move(A, B).apply({places.data(), places.size() / dims, dims});
        aligned.agreement = map_agreement(A, B);
    }
    take_plane(aligned, places, dims);
    return aligned;
}

}  // namespace

AlignedMaps align_maps(const std::vector<RunMap>& maps) {
    AlignedMaps result;
    result.maps.resize(maps.size());
    const auto largest =
        std::max_element(maps.begin(), maps.end(), [](const RunMap& a, const RunMap& b) {
            return rows_of(a) < rows_of(b);
        });
    if (largest == maps.end() || rows_of(*largest) == 0) {
        return result;
    }
    result.reference = static_cast<std::size_t>(largest - maps.begin());
    GeneNumbers numbers;
    std::vector<std::vector<std::size_t>> gene_of_row(maps.size());
    const auto number = [&](std::size_t run) {
        if (maps[run].rows != nullptr) {
            gene_of_row[run] = numbers.of(maps[run].rows->names, [&](std::size_t row) {
                append_gene(result.genes, *maps[run].rows, row);
            });
        }
    };
    number(result.reference);
    std::size_t dims = 1;
    for (std::size_t run = 0; run < maps.size(); ++run) {
        if (run != result.reference) {
            number(run);
        }
        dims = std::max(dims, maps[run].dims);
    }
    result.genes.label_columns = largest->rows->label_columns;
    complete_labels(result.genes);
    const auto places = [&](std::size_t run) {
        return places_of_genes(maps[run], gene_of_row[run], result.genes.names.size(), dims);
    };
    const std::vector<double> reference = places(result.reference);
    for (std::size_t run = 0; run < maps.size(); ++run) {
        if (run == result.reference) {
            take_plane(result.maps[run], reference, dims);
            result.maps[run].shared = result.maps[run].placed;
        } else if (maps[run].rows != nullptr) {
            result.maps[run] = align(reference, places(run), dims);
        }
    }
    return result;
}

}  // namespace ovik::tool
