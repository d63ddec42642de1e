#pragma once

#include "neighbours/search_manner.h"
#include "stats/fit_choices.h"
#include "util/elementary.h"

namespace ovik {

/// The functions that numerics stand for.
inline const Elementary& elementary_of(NumericsKind numerics) {
    return numerics == NumericsKind::Portable ? portable_elementary() : platform_elementary();
}

/// What decides among equally near rows.
inline NeighbourTies ties_of(NumericsKind numerics) {
    return numerics == NumericsKind::Portable ? NeighbourTies::ByRow : NeighbourTies::OfTree;
}

}  // namespace ovik
