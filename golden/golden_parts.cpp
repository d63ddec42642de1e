#include "golden/golden_parts.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "results/digest.h"

#include "golden/elementary_parts.h"
#include "golden/fit_parts.h"
#include "golden/further_parts.h"

namespace ovik::golden {

namespace {

std::string_view cut(std::string_view& text, char delimiter) {
    const std::size_t end = std::min(text.find(delimiter), text.size());
    const std::string_view field = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return field;
}

std::uint64_t digest_in(std::string_view digits) {
    constexpr int kBase = 16;
    std::uint64_t digest = 0;
    const char* const end = digits.data() + digits.size();
    const auto [rest, error] = std::from_chars(digits.data(), end, digest, kBase);
    if (error != std::errc() || rest != end || digits.size() != 16) {
        throw std::invalid_argument("no digest: " + std::string(digits));
    }
    return digest;
}

std::vector<Part> joined_parts() {
    std::vector<Part> parts;
    for (std::vector<Part> some : {elementary_parts(), fit_parts(), further_parts()}) {
        std::move(some.begin(), some.end(), std::back_inserter(parts));
    }
    return parts;
}

}  // namespace

const std::vector<Part>& all_parts() {
    static const std::vector<Part> parts = joined_parts();
    return parts;
}

StageDigest stage_of(std::string stage, std::span<const double> values) {
    return {std::move(stage), checksum_of(values)};
}

std::vector<ExpectedPart> expected_parts(std::string_view text) {
    std::vector<ExpectedPart> parts;
    while (!text.empty()) {
        std::string_view line = cut(text, '\n');
        const std::string_view name = cut(line, '\t');
        const std::string_view stage = cut(line, '\t');
        if (parts.empty() || parts.back().name != name) {
            parts.push_back({std::string(name), {}});
        }
        parts.back().stages.push_back({std::string(stage), digest_in(line)});
    }
    return parts;
}

std::string first_difference(const std::vector<StageDigest>& computed,
                             const std::vector<StageDigest>& expected) {
    const auto [now, before] =
        std::mismatch(computed.begin(), computed.end(), expected.begin(), expected.end());
    if (now != computed.end()) {
        return now->stage;
    }
    return before != expected.end() ? before->stage : "";
}

}  // namespace ovik::golden
