#include "stats/method.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include <climits>

#include "neighbours/approximate_search.h"
#include "neighbours/neighbour_index.h"
#include "neighbours/neighbour_lists.h"
#include "stats/cached_neighbours.h"
#include "stats/chosen_affinities.h"
#include "stats/conditional_rows.h"
#include "stats/dense_affinities.h"
#include "stats/exact_objective.h"
#include "stats/joint_matrix.h"
#include "stats/mesh_repulsion.h"
#include "stats/neighbour_order.h"
#include "stats/numerics.h"
#include "stats/option_effect.h"
#include "stats/rank_joint_matrix.h"
#include "stats/rank_search.h"
#include "stats/sparse_objective.h"
#include "stats/tree_repulsion.h"
#include "util/format.h"
#include "util/input_error.h"
#include "util/ranks.h"

namespace ovik {

namespace {

bool holds_distances(const FitOptions& options) {
    return options.metric == MetricKind::Precomputed;
}

std::unique_ptr<Objective> make_exact(const MethodInput& input) {
    tell(input.on_stage, Stage::Affinities, 0, 0);
    DenseAffinities affinities = &dense_conditional_affinities;
    if (holds_distances(input.options)) {
        affinities = &dense_affinities_of_distances;
    }
    return std::make_unique<ExactObjective>(input.X,
                                            static_cast<std::size_t>(input.options.out_dims),
                                            chosen_dense_row(input.options),
                                            elementary_of(input.options.numerics).log,
                                            input.notes,
                                            affinities);
}

/// How many neighbours of each row have affinities; says so if the perplexity asks for more.
int told_neighbours(const MethodInput& input) {
    const int K = affinity_neighbours(input.options, input.X.rows);
    if (!bar_of(input.options, "perplexity") && input.options.perplexity > static_cast<double>(K)) {
        tell(input.notes, FitNote::PerplexityAboveNeighbours);
    }
    return K;
}

/// Conditional affinities of every row to its nearest others.
ConditionalRows sparse_affinities(const MethodInput& input, ValueForm form) {
    const int K = told_neighbours(input);
    const auto rows = chosen_rows(input.options, input.X.rows);
    NeighbourHooks hooks = input.neighbourHooks();
    std::optional<CachedNeighbours> nearest;
    if (holds_distances(input.options)) {
        nearest.emplace(nearest_by_distance(input.X, static_cast<std::size_t>(std::max(K, 0))));
        hooks.cached = &*nearest;
    }
    return conditional_rows(input.X, *rows, K, form, hooks);
}

/// How uniform affinities are stored: as what tells one value from its double, while the places of
/// the points leave room for that.
ValueForm uniform_form(std::size_t N, std::size_t dims) {
    constexpr std::size_t kPlaces = std::size_t{1} << 31U;
    return N < kPlaces / std::max<std::size_t>(dims, 1) ? ValueForm::OneOrTwo : ValueForm::Double;
}

/// Attraction along joint affinities to the nearest neighbours.
///
/// @param form  of affinities that are not uniform
SlicedAttraction attraction_along_neighbours(const MethodInput& input, ValueForm form) {
    const std::size_t N = input.X.rows;
    const auto dims = static_cast<std::size_t>(input.options.out_dims);
    const bool is_uniform = input.options.affinity == AffinityKind::Uniform;
    ConditionalRows rows = sparse_affinities(input, is_uniform ? uniform_form(N, dims) : form);
    tell(input.on_stage, Stage::Affinities, 0, 0);
    MallocArray<std::uint32_t> order;
    if (N >= kLeastReordered) {
        order = neighbour_order(rows.columns.get(), N, rows.row_length);
    }
    return {joint_matrix(std::move(rows), dims, std::move(order)),
            dims,
            elementary_of(input.options.numerics).log};
}

/// Attraction among nearest neighbours, and a repulsion that is made once the affinities are there,
/// which need the memory first.
///
/// @param form  of affinities that are not uniform
template <typename MakeRepulsion>
std::unique_ptr<Objective> make_sparse(const MethodInput& input,
                                       ValueForm form,
                                       const MakeRepulsion& make_repulsion) {
    const std::size_t N = input.X.rows;
    const auto dims = static_cast<std::size_t>(input.options.out_dims);
    SlicedAttraction attraction = attraction_along_neighbours(input, form);
    SparseForces forces(N, dims, make_repulsion(N, dims));
    return std::make_unique<SparseObjective>(std::move(attraction), std::move(forces));
}

std::unique_ptr<Objective> make_barnes_hut(const MethodInput& input) {
    return make_sparse(input, ValueForm::Double, [&](std::size_t N, std::size_t dims) {
        return std::make_unique<TreeRepulsion>(N, dims, input.options.theta);
    });
}

/// What one of several ranks does of a fit by the mesh.
///
/// @param form  of affinities that are not uniform
std::unique_ptr<Objective> make_mesh_of_rank(const MethodInput& input, ValueForm form) {
    const RankRows rank_rows(input.X.rows, *input.ranks);
    const auto dims = static_cast<std::size_t>(input.options.out_dims);
    const bool is_uniform = input.options.affinity == AffinityKind::Uniform;
    const int K = told_neighbours(input);
    if (K < 0) {
        throw WorkMemoryError();
    }
    ConditionalRows rows =
        conditional_rows_of_rank(input.X,
                                 *chosen_rows(input.options, input.X.rows),
                                 K,
                                 is_uniform ? uniform_form(input.X.rows, dims) : form,
                                 input.neighbourHooks(),
                                 rank_rows);
    tell(input.on_stage, Stage::Affinities, 0, 0);
    SlicedAttraction attraction(joint_matrix_of_rank(std::move(rows), dims, rank_rows),
                                dims,
                                elementary_of(input.options.numerics).log);
    SparseForces forces(rank_rows, dims, std::make_unique<MeshRepulsion>(rank_rows));
    return std::make_unique<SparseObjective>(std::move(attraction), std::move(forces));
}

/// @throws InputError if the map is not to have two dimensions
std::unique_ptr<Objective> make_mesh(const MethodInput& input) {
    if (input.options.out_dims != kMeshDims) {
        throw InputError("the mesh lies under maps in two dimensions, and not in " +
                         std::to_string(input.options.out_dims) +
                         "\nTake two dimensions, or the method barnes-hut.");
    }
    // Rounding them changes forces less than the mesh does by a factor of 1e5.
    constexpr ValueForm kForm = ValueForm::Single;
    if (input.ranks != nullptr && input.ranks->areSeveral()) {
        return make_mesh_of_rank(input, kForm);
    }
    return make_sparse(input, kForm, [](std::size_t N, std::size_t /*dims*/) {
        return std::make_unique<MeshRepulsion>(N);
    });
}

MethodMemory exact_memory(const RunSize& size) {
    const auto N = static_cast<double>(size.rows);
    const auto D = static_cast<double>(size.columns);
    return {8.0 * N * D + 16.0 * N * N, 8.0 * N * N, 0.0};
}

/// Joint affinities to the nearest neighbours, and attraction along them.
///
/// @param value_bytes  of an affinity that is not uniform
MethodMemory neighbours_memory(const RunSize& size, double value_bytes) {
    const auto N = static_cast<double>(size.rows);
    const auto D = static_cast<double>(size.columns);
    const auto d = static_cast<double>(size.options.out_dims);
    const double K = std::max(affinity_neighbours(size.options, size.rows), 0);
    const double entries = N * K;
    const double entry_bytes =
        4.0 + (size.options.affinity == AffinityKind::Uniform ? 0.0 : value_bytes);
    const double joint = entry_bytes * symmetric_share(size.columns) * entries;
    const double window =
        entry_bytes * K * std::min(N, static_cast<double>(SliceLayout::kWindowRows));
    const double reordered = size.rows < kLeastReordered ? 0.0 : 16.0 * N + 8.0 * N * d;
    const auto blocks = static_cast<double>(NeighbourIndex::blockCount(size.rows));
    const double of_queries = blocks * 512.0 * static_cast<double>(size.threads);
    const bool is_given = holds_distances(size.options);
    const double index = 164.0 * N + blocks * (128.0 * D + 256.0);
    // Lists of neighbours, before they are joined and after, are all that distances need.
    double searching =
        is_given ? 32.0 * entries : of_queries + (size.is_shared && size.seeds == 1 ? 0.0 : index);
    if (!is_given && size.options.neighbour_search == NeighbourSearchKind::Approximate) {
        searching = approximate_search_memory(size.rows, static_cast<std::size_t>(K));
    }
    const double graph = size.options.start == StartKind::Sample ? 4.0 * entries : 0.0;
    return {graph + std::max({entry_bytes * entries + searching,
                              (entry_bytes + 1.0) * entries + 12.0 * N,
                              joint + window + 50.0 * N + reordered}),
            joint + 38.0 * N + reordered,
            is_given ? 0.0 : index + 16.0 * entries + 16.0 * N};
}

MethodMemory barnes_hut_memory(const RunSize& size) {
    const auto N = static_cast<double>(size.rows);
    const auto d = static_cast<double>(size.options.out_dims);
    MethodMemory memory = neighbours_memory(size, sizeof(double));
    memory.fitting += 153.0 * N + 44.0 * N * d;
    return memory;
}

/// What one of several ranks has of joint affinities to the nearest neighbours, and takes to make
/// them.
MethodMemory rank_memory(const RunSize& size) {
    const auto N = static_cast<double>(size.rows);
    const double K = std::max(affinity_neighbours(size.options, size.rows), 0);
    const auto ranks = static_cast<double>(size.ranks);
    const double entries = N * K / ranks;
    // Its part of the rows and two that come by, in blocks, and the lists of its neighbours.
    double searching =
        (24.0 * static_cast<double>(size.columns) + 60.0 + 16.0 * (K + 2.0)) * N / ranks;
    if (size.options.neighbour_search == NeighbourSearchKind::Approximate) {
        searching =
            12.0 * entries + approximate_search_memory(size.rows, static_cast<std::size_t>(K));
    } else if (ties_of(size.options.numerics) == NeighbourTies::OfTree) {
        // The tree, for rows that nothing else decides.
        const auto blocks = static_cast<double>(NeighbourIndex::blockCount(size.rows));
        searching += 164.0 * N + blocks * (128.0 * static_cast<double>(size.columns) + 256.0);
    }
    const double graph = size.options.start == StartKind::Sample ? 4.0 * N * K : 0.0;
    // Affinities, and what goes to other ranks and comes from them.
    return {graph + std::max(searching, 50.0 * entries),
            8.0 * symmetric_share(size.columns) * entries + 38.0 * N,
            0.0};
}

MethodMemory mesh_memory(const RunSize& size) {
    const auto N = static_cast<double>(size.rows);
    const auto d = static_cast<double>(size.options.out_dims);
    // Maps of very many rows are wide while some points fly about.
    const double cells = std::max(2200.0 * std::sqrt(N), 16.0 * N);
    MethodMemory memory =
        size.ranks > 1 ? rank_memory(size) : neighbours_memory(size, sizeof(float));
    memory.fitting += 56.0 * N + 8.0 * N * d + 45.0 * cells;
    return memory;
}

std::optional<LighterFit> lighter_than_exact(const FitOptions& options) {
    LighterFit lighter{"The Barnes-Hut method (--theta 0.5)", options};
    lighter.options.theta = FitOptions().theta;
    if (options.method == MethodKind::Exact) {
        lighter.what = "The Barnes-Hut method (--method barnes-hut)";
        lighter.options.method = MethodKind::BarnesHut;
    }
    return lighter;
}

std::optional<LighterFit> lighter_by_neighbours(const FitOptions& options) {
    constexpr double kUsualPerplexity = 30.0;
    if (bar_of(options, "perplexity") || options.perplexity <= kUsualPerplexity) {
        return std::nullopt;
    }
    LighterFit lighter{"A perplexity of 30", options};
    lighter.options.perplexity = kUsualPerplexity;
    return lighter;
}

std::string exact_title(const FitOptions& /*options*/) {
    return "exact t-SNE";
}

std::string barnes_hut_title(const FitOptions& options) {
    return "Barnes-Hut t-SNE, theta " + shortest_text(options.theta);
}

std::string mesh_title(const FitOptions& /*options*/) {
    return "particle-mesh t-SNE";
}

constexpr Method kMethods[] = {
    {"exact", &exact_title, &make_exact, &exact_memory, &lighter_than_exact, false},
    {"Barnes-Hut",
     &barnes_hut_title,
     &make_barnes_hut,
     &barnes_hut_memory,
     &lighter_by_neighbours,
     true},
    {"particle-mesh", &mesh_title, &make_mesh, &mesh_memory, &lighter_by_neighbours, true, true},
};

constexpr const Method& kExact = kMethods[0];
constexpr const Method& kBarnesHut = kMethods[1];
constexpr const Method& kMesh = kMethods[2];

}  // namespace

double symmetric_share(std::size_t columns) {
    return std::min(1.0 + 0.06 * static_cast<double>(columns), 1.6);
}

std::span<const Method> methods() {
    return kMethods;
}

const Method& method_of(const FitOptions& options) {
    switch (options.method) {
        case MethodKind::Exact:
            return kExact;
        case MethodKind::BarnesHut:
            return kBarnesHut;
        case MethodKind::Mesh:
            return kMesh;
        default:
            return options.theta == 0.0 ? kExact : kBarnesHut;
    }
}

int neighbour_count(double perplexity, std::size_t N) {
    const double wanted = 3.0 * perplexity;
    const double available = std::clamp(static_cast<double>(N) - 1.0, 0.0, double{INT_MAX});
    // Compared before it is truncated: a huge or NaN perplexity has no int.
    return static_cast<int>(wanted < available ? std::max(wanted, -1.0 * INT_MAX) : available);
}

}  // namespace ovik
