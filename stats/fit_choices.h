#pragma once

#include <array>
#include <string_view>

/// What the options of a fit that are choices have to choose from, and the names by which command
/// line, Python, R, reports and checkpoints know it.

namespace ovik {

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
    /// Coordinates that the caller gives.
    Given,
};

/// How exaggeration, momentum and learning rate go on with the iterations.
enum class ScheduleKind {
    /// Exaggeration ends at once, and the momentum changes at once.
    Classic,
    /// Exaggeration falls little by little, with one momentum throughout.
    Annealed,
};

/// What the similarities of a row with its neighbours are.
enum class AffinityKind {
    /// Normal densities of a width of its own for each row, which gives the perplexity.
    Perplexity,
    /// The same for each of some nearest neighbours.
    Uniform,
};

/// The names of the members of a choice, in their order.
template <typename Kind>
inline constexpr std::array<std::string_view, 0> kChoiceNames{};

template <>
inline constexpr std::array<std::string_view, 5> kChoiceNames<MetricKind>{
    "euclidean", "pearson", "cosine", "spearman", "precomputed"};

template <>
inline constexpr std::array<std::string_view, 3> kChoiceNames<StartKind>{"random", "pca", "given"};

template <>
inline constexpr std::array<std::string_view, 2> kChoiceNames<ScheduleKind>{"classic", "annealed"};

template <>
inline constexpr std::array<std::string_view, 2> kChoiceNames<AffinityKind>{"perplexity",
                                                                            "uniform"};

/// The name of a member of a choice; empty for what is none.
template <typename Kind>
constexpr std::string_view choice_name(Kind kind) {
    const auto index = static_cast<std::size_t>(kind);
    return index < kChoiceNames<Kind>.size() ? kChoiceNames<Kind>[index] : std::string_view();
}

}  // namespace ovik
