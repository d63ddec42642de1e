#pragma once

#include <functional>

namespace ovik {

/// What a fit tells in passing. Front ends that show it have words of their own.
enum class FitNote {
    /// Work arrays are there, and the affinities begin.
    SimilaritiesBegin,
    /// The exact method begins.
    ExactMethod,
    /// Before and after the distances of all pairs of rows.
    DistancesBegin,
    DistancesDone,
    /// The dense affinities are made symmetric.
    Symmetrizing,
    /// The perplexity is above the number of neighbours that a row gets.
    PerplexityAboveNeighbours,
    /// The neighbour index is there, and its queries begin.
    NeighbourIndexBuilt,
    /// An approximate search was wanted, and the exact one is made: the rows do not bear the other.
    SearchIsExact,
    /// A sample of the rows is embedded, at whose map the rows start.
    SampleBegins,
};

/// Takes the notes of a fit; may be empty.
using FitNotes = std::function<void(FitNote)>;

inline void tell(const FitNotes& notes, FitNote note) {
    if (notes) {
        notes(note);
    }
}

}  // namespace ovik
