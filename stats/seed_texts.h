#pragma once

#include <string>

#include "stats/seed_report.h"

namespace ovik {

/// The seeds of several fits in words: "11 to 15; 13 has the lowest cost".
std::string seeds_text(const SeedReport& seeds);

/// The cost of each seed: "11: 1.2345, 12: 1.2301"; of more than 20, their range: "1.2301 to
/// 1.2345".
std::string seed_costs_text(const SeedReport& seeds);

/// "Procrustes disparity 0.0123, 61.2 % of the 10 nearest neighbours shared".
std::string agreement_text(const MapAgreement& agreement);

}  // namespace ovik
