#include "stats/perplexity_choice.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "util/counted.h"
#include "util/format.h"
#include "util/rounded.h"

namespace ovik {

namespace {

/// A share by which perplexities are judged.
struct Criterion {
    const char* name;
    double PerplexityOutcome::*share;
};

constexpr std::array<Criterion, 3> kCriteria = {{
    {"rows better than noise", &PerplexityOutcome::better_than_noise},
    {"stability", &PerplexityOutcome::stability},
    {"kept neighbours", &PerplexityOutcome::kept},
}};

using Outcomes = std::span<const PerplexityOutcome>;

/// Whether a map says more than one of noise would.
bool is_above_noise(const PerplexityOutcome& outcome) {
    return std::isnan(outcome.better_than_noise) || outcome.better_than_noise > outcome.of_noise;
}

/// The best share of the perplexities that are left; NaN if it was not measured of all.
double best_of(Outcomes outcomes, const Criterion& criterion) {
    double best = 0.0;
    for (const PerplexityOutcome& outcome : outcomes) {
        if (is_above_noise(outcome)) {
            const double share = outcome.*criterion.share;
            best = std::isnan(share) ? share : std::max(best, share);
        }
        if (std::isnan(best)) {
            break;
        }
    }
    return best;
}

/// Where a perplexity lies farthest below the best.
struct Lag {
    double lag = 0.0;
    const char* in = "";
};

Lag lag_of(const PerplexityOutcome& outcome, Outcomes outcomes) {
    Lag largest;
    for (const Criterion& criterion : kCriteria) {
        const double lag = best_of(outcomes, criterion) - outcome.*criterion.share;
        if (lag > largest.lag) {
            largest = {lag, criterion.name};
        }
    }
    return largest;
}

/// "stability (41.0 %, best 44.0 %) and ..."
std::string shares_text(const PerplexityOutcome& outcome, Outcomes outcomes) {
    std::vector<std::string> parts;
    for (const Criterion& criterion : kCriteria) {
        const double best = best_of(outcomes, criterion);
        if (!std::isnan(best)) {
            parts.push_back(std::string(criterion.name) + " (" +
                            percent_text(outcome.*criterion.share) + ", best " +
                            percent_text(best) + ")");
        }
    }
    std::string text;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        text += (i == 0 ? "" : i + 1 == parts.size() ? " and " : ", ") + parts[i];
    }
    return text;
}

std::string points_text(double share) {
    return rounded_text(100.0 * share, 1) + " points";
}

PerplexityChoice none_of(Outcomes outcomes) {
    double most = 0.0;
    double limit = 0.0;
    for (const PerplexityOutcome& outcome : outcomes) {
        most = std::max(most, outcome.better_than_noise);
        limit = std::max(limit, outcome.of_noise);
    }
    return {std::nullopt,
            "No perplexity is recommended: with none of them more than " + percent_text(most) +
                " of the rows are placed better than noise, and noise itself may reach " +
                percent_text(limit) +
                ". What these maps show cannot be told from shuffled values."};
}

}  // namespace

PerplexityChoice choose_perplexity(Outcomes outcomes) {
    if (!outcomes.empty() && std::none_of(outcomes.begin(), outcomes.end(), &is_above_noise)) {
        return none_of(outcomes);
    }
    if (outcomes.size() < 2) {
        return {std::nullopt, "There is one perplexity, and so nothing to choose from."};
    }
    std::optional<std::size_t> chosen;
    Lag least{std::numeric_limits<double>::infinity(), ""};
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        if (!is_above_noise(outcomes[i])) {
            continue;
        }
        const Lag lag = lag_of(outcomes[i], outcomes);
        const bool is_near = lag.lag <= kNearTheBest;
        const bool is_smaller = !chosen || outcomes[i].perplexity < outcomes[*chosen].perplexity;
        const bool best_is_near = least.lag <= kNearTheBest;
        if (is_near == best_is_near
                ? (is_near ? is_smaller
                           : lag.lag < least.lag || (lag.lag == least.lag && is_smaller))
                : is_near) {
            chosen = i;
            least = lag;
        }
    }
    // NOLINTNEXTLINE(bugprone-unchecked-optional-access): one is above noise
    const PerplexityOutcome& best = outcomes[*chosen];
    const std::string start = "Perplexity " + shortest_text(best.perplexity) + " is recommended: ";
    const std::string shares = shares_text(best, outcomes);
    if (least.lag <= kNearTheBest) {
        return {chosen,
                start + "it is the smallest that lies at most " + points_text(kNearTheBest) +
                    " below the best in " + shares + "."};
    }
    return {chosen,
            start + "none is near the best in all that was measured, and its lag is the least, " +
                points_text(least.lag) + " in " + least.in + "; " + shares + "."};
}

std::string sentence_of_copies(std::size_t duplicate_rows) {
    if (duplicate_rows == 0) {
        return "";
    }
    return " But " + counted(duplicate_rows, "row holds", "rows hold") +
           " the same values as an earlier one: copies stay together on a map, which shuffled "
           "values do not, so that they count as better than noise, stable and kept because they "
           "are copies. Leave copies out before a perplexity is chosen.";
}

double largest_share_of_noise(std::size_t rows, std::size_t matrices) {
    constexpr double kShare = 0.05;
    constexpr double kDesignEffect = 5.2;
    constexpr double kDeviations = 3.0;
    const auto n = static_cast<double>(rows);
    const double variance = kDesignEffect * kShare * (1.0 - kShare) *
                            (1.0 / n + 1.0 / (n * static_cast<double>(matrices)));
    return kShare + kDeviations * std::sqrt(variance);
}

}  // namespace ovik
