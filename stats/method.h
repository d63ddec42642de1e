#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "neighbours/neighbour_graph.h"
#include "stats/fit_notes.h"
#include "stats/fit_options.h"
#include "stats/memory_estimate.h"
#include "stats/numerics.h"
#include "stats/objective.h"
#include "stats/sparse_affinities.h"
#include "util/matrix_view.h"
#include "util/random_stream.h"
#include "util/stage.h"

namespace ovik {

class CachedNeighbours;
class Ranks;

/// What a method makes its objective of.
struct MethodInput {
    /// Centred and scaled; read while the objective is made. Of several ranks the first has values.
    MatrixView<const double> X;
    const FitOptions& options;
    FitNotes notes = {};
    /// Null, or neighbours from other runs over the same X.
    CachedNeighbours* cached_neighbours = nullptr;
    /// Null, or what takes the neighbours that the method finds.
    NeighbourGraph* graph = nullptr;
    /// Seeded; methods that search for neighbours draw from it first, and the random start then.
    RandomStream& random = process_random_stream();
    /// Takes how far neighbours and affinities are.
    OnStage on_stage = {};
    /// Null, or what is told how many of the nearest a search found that is not exact.
    std::optional<NeighbourRecall>* recall = nullptr;
    /// Whether the graph is to have distances.
    bool wants_distances = true;
    /// Null, or the ranks that make an objective each, for their rows; then there are no neighbours
    /// from other runs.
    Ranks* ranks = nullptr;

    /// What a search for neighbours takes of it.
    [[nodiscard]] NeighbourHooks neighbourHooks() const {
        return {notes,
                cached_neighbours,
                graph,
                &random,
                {options.neighbour_search == NeighbourSearchKind::Approximate,
                 on_stage,
                 ties_of(options.numerics)},
                recall,
                wants_distances};
    }
};

/// How many symmetric entries sparse affinities have for each conditional one, as seen: the more,
/// the more columns tell the rows apart.
double symmetric_share(std::size_t columns);

/// What the stages of a method take beside the input, in bytes.
struct MethodMemory {
    double similarities = 0.0;
    double fitting = 0.0;
    /// Of several runs over one input: what they share all the time.
    double shared = 0.0;
};

/// A smaller fit that is worth trying where one does not fit in memory.
struct LighterFit {
    /// As the subject of "takes 85 MB".
    std::string what;
    FitOptions options;
};

/// A method of embedding: a row of the list of methods. Nothing outside that list asks which method
/// some options stand for but by its members.
struct Method {
    std::string_view name;
    /// In words, with what the name does not tell: "Barnes-Hut t-SNE, theta 0.5".
    std::string (*title)(const FitOptions& options);
    /// Makes the objective of a fit.
    std::unique_ptr<Objective> (*make)(const MethodInput& input);
    MethodMemory (*memory)(const RunSize& size);
    /// The cure for too little memory, if the method has one.
    std::optional<LighterFit> (*lighter)(const FitOptions& options);
    /// Whether it searches for nearest neighbours, which runs over one input may share.
    bool has_neighbours;
    /// Whether several ranks may share a fit by it.
    bool is_shareable = false;
};

/// All methods.
std::span<const Method> methods();

/// Dimensions of the maps that have a mesh.
constexpr int kMeshDims = 2;

/// The method that some options stand for: the one that they name, else with `theta` exactly 0 the
/// exact one, and Barnes-Hut with any other.
const Method& method_of(const FitOptions& options);

/// How many neighbours of each of N rows methods with neighbours take: 3 * perplexity (truncated),
/// or the N - 1 that there are if it asks for more; negative for a negative perplexity.
int neighbour_count(double perplexity, std::size_t N);

}  // namespace ovik
