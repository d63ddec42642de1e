#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Parts of the engine whose results are the same bits on every machine: with portable numerics,
/// for any compiler, processor and number of threads. Each is small enough for a tenth of a second.

namespace ovik {
class Ranks;
}

namespace ovik::golden {

/// What a stage of a part came to.
struct StageDigest {
    /// Such as "neighbours" or "map"; stages come in the order in which they follow from one
    /// another.
    std::string stage;
    /// XXH3 of 64 bits of the numbers, the lowest byte first.
    std::uint64_t digest = 0;

    bool operator==(const StageDigest&) const = default;
};

/// Part by part, stage by stage: what is computed.
struct Part {
    std::string name;
    std::function<std::vector<StageDigest>()> compute;
    /// Whether it stands for others where not all can be computed, as for many instruction sets.
    bool is_selected = false;
};

/// All parts, the elementary ones first.
const std::vector<Part>& all_parts();

/// The parts that several processes can share: maps by the mesh, and some that have rows for each
/// of four.
///
/// @param ranks  of which this is the first, and the others serve fits; have to outlive the parts
std::vector<Part> shared_parts(Ranks& ranks);

/// What a stage came to.
StageDigest stage_of(std::string stage, std::span<const double> values);

/// The parts that a list of digests has, and the stages of each, in its order.
struct ExpectedPart {
    std::string name;
    std::vector<StageDigest> stages;
};

/// Reads a list of digests: lines of part, stage and sixteen hexadecimal digits between tabs.
///
/// @throws std::invalid_argument for a line of another form
std::vector<ExpectedPart> expected_parts(std::string_view text);

/// The first stage of a part that is not as expected; empty if all are.
std::string first_difference(const std::vector<StageDigest>& computed,
                             const std::vector<StageDigest>& expected);

}  // namespace ovik::golden
