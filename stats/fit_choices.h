#pragma once

#include <array>
#include <string_view>

/// What the options of a fit that are choices have to choose from, and the names by which command
/// line, Python, R, reports and checkpoints know it.

namespace ovik {

/// How the forces among the points of a map are computed.
enum class MethodKind {
    /// As theta says: 0 for the exact method, else Barnes-Hut.
    Auto,
    /// Repulsion by the cells of a tree, attraction among nearest neighbours.
    BarnesHut,
    /// Repulsion by a particle mesh, attraction among nearest neighbours.
    Mesh,
    /// All pairs.
    Exact,
};

/// How far rows are from one another.
enum class MetricKind {
    Euclidean,
    /// Euclidean between rows that are centred and scaled to length 1.
    Pearson,
    /// Euclidean between rows that are scaled to length 1.
    Cosine,
    /// As Pearson, of the ranks of the values in their row.
    Spearman,
    /// The input holds the distances themselves: rows x rows.
    Precomputed,
};

/// Where the points of the map start.
enum class StartKind {
    /// Drawn from a normal distribution.
    Random,
    /// The first principal components of the rows.
    Pca,
    /// The map of a sample of the rows, the others among their neighbours.
    Sample,
    /// Coordinates that the caller gives.
    Given,
};

/// How exaggeration, momentum and learning rate go on with the iterations.
enum class ScheduleKind {
    /// Exaggeration ends at once, and the momentum changes at once.
    Classic,
    /// Exaggeration falls little by little; momentum changes when it has.
    Annealed,
};

/// What each coordinate's step is multiplied by beside the learning rate.
enum class GainKind {
    /// A factor of its own that grows and shrinks with the signs of its gradients.
    Adaptive,
    /// 1 throughout.
    Constant,
};

/// What the similarities of a row with its neighbours are.
enum class AffinityKind {
    /// Normal densities of a width of its own for each row, which gives the perplexity.
    Perplexity,
    /// The same for each of some nearest neighbours.
    Uniform,
};

/// How the nearest neighbours of the rows are searched for.
enum class NeighbourSearchKind {
    /// All of them are found.
    Exact,
    /// Nearly all, in less time where there are many rows without clusters.
    Approximate,
};

/// Whose exponentials and logarithms decide a fit, and what decides among rows at equal distance.
enum class NumericsKind {
    /// Those of the platform's C library; the way of the search.
    Platform,
    /// Correctly rounded ones; the lower row: the same on every machine.
    Portable,
};

/// The names of the members of a choice, in their order: `kAll` of the specialisations.
template <typename Kind>
struct ChoiceNames;

template <>
struct ChoiceNames<MethodKind> {
    static constexpr std::array<std::string_view, 4> kAll{"auto", "barnes-hut", "mesh", "exact"};
};

template <>
struct ChoiceNames<MetricKind> {
    static constexpr std::array<std::string_view, 5> kAll{
        "euclidean", "pearson", "cosine", "spearman", "precomputed"};
};

template <>
struct ChoiceNames<StartKind> {
    static constexpr std::array<std::string_view, 4> kAll{"random", "pca", "sample", "given"};
};

template <>
struct ChoiceNames<ScheduleKind> {
    static constexpr std::array<std::string_view, 2> kAll{"classic", "annealed"};
};

template <>
struct ChoiceNames<GainKind> {
    static constexpr std::array<std::string_view, 2> kAll{"adaptive", "constant"};
};

template <>
struct ChoiceNames<AffinityKind> {
    static constexpr std::array<std::string_view, 2> kAll{"perplexity", "uniform"};
};

template <>
struct ChoiceNames<NeighbourSearchKind> {
    static constexpr std::array<std::string_view, 2> kAll{"exact", "approximate"};
};

template <>
struct ChoiceNames<NumericsKind> {
    static constexpr std::array<std::string_view, 2> kAll{"platform", "portable"};
};

/// The name of a member of a choice; empty for what is none.
template <typename Kind>
constexpr std::string_view choice_name(Kind kind) {
    const auto index = static_cast<std::size_t>(kind);
    return index < ChoiceNames<Kind>::kAll.size() ? ChoiceNames<Kind>::kAll[index]
                                                  : std::string_view();
}

}  // namespace ovik
