#pragma once

#include <string>

#include "stats/seed_report.h"

namespace ovik {

/// The seeds of several fits in words: "11 to 15; 13 has the lowest cost".
std::string seeds_text(const SeedReport& seeds);

/// "Procrustes disparity 0.0123, 61.2 % of the 10 nearest neighbours shared".
std::string agreement_text(const MapAgreement& agreement);

}  // namespace ovik
