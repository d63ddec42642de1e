#include "golden/digest_program.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "results/digest.h"
#include "util/instruction_set.h"
#include "util/threads.h"

#include "golden/embedded_files.h"
#include "golden/golden_parts.h"
#include "golden/self_test.h"

namespace ovik::golden {

namespace {

constexpr int kDifferent = 3;
constexpr int kBadUsage = 2;
/// By which a test tells that it cannot be made here.
constexpr int kNotHere = 77;

constexpr const char* kUsage =
    "usage: golden_digests [--threads COUNT] [--instructions NAME] [--selected] [--check] "
    "[PART...]\n"
    "\n"
    "  --threads COUNT      as many (all cores)\n"
    "  --instructions NAME  none beyond these of the build, such as scalar (the processor's "
    "best);\n"
    "                       status 77 where the processor has not got them\n"
    "  --selected           a few parts that stand for the others\n"
    "  --check              print what differs from the list that the program was built with;\n"
    "                       status 3 if anything does\n";

struct Wishes {
    int threads = 0;
    std::string instructions;
    bool selected = false;
    bool check = false;
    std::vector<std::string> names;
};

/// @return false for a usage that is none
bool read_wishes(int argc, const char* const* argv, Wishes& wishes) {
    for (int i = 0; i < argc; ++i) {
        const std::string_view word = argv[i];
        const bool has_value = i + 1 < argc;
        if (word == "--threads" && has_value) {
            const char* const text = argv[++i];
            const char* const end = text + std::strlen(text);
            const auto [rest, error] = std::from_chars(text, end, wishes.threads);
            if (error != std::errc() || rest != end || wishes.threads < 1) {
                return false;
            }
        } else if (word == "--instructions" && has_value) {
            wishes.instructions = argv[++i];
        } else if (word == "--selected") {
            wishes.selected = true;
        } else if (word == "--check") {
            wishes.check = true;
        } else if (word.starts_with("-")) {
            return false;
        } else {
            wishes.names.emplace_back(word);
        }
    }
    return true;
}

/// @return 0, or the status with which to end
int limit_instructions(const std::string& name) {
    for (const InstructionSet set : kInstructionSets) {
        if (name_of(set) == name) {
            limit_instruction_set(set);
            return instruction_set() == set ? 0 : kNotHere;
        }
    }
    return kNotHere;
}

std::vector<Part> wanted_parts(const Wishes& wishes, Ranks* ranks) {
    const std::vector<Part> there = ranks != nullptr ? shared_parts(*ranks) : all_parts();
    std::vector<Part> parts;
    std::copy_if(
        there.begin(), there.end(), std::back_inserter(parts), [&wishes](const Part& part) {
            return (part.is_selected || !wishes.selected) &&
                   (wishes.names.empty() ||
                    std::find(wishes.names.begin(), wishes.names.end(), part.name) !=
                        wishes.names.end());
        });
    return parts;
}

void print(const Part& part) {
    for (const StageDigest& stage : part.compute()) {
        std::printf("%s\t%s\t%s\n",
                    part.name.c_str(),
                    stage.stage.c_str(),
                    hexadecimal(stage.digest).c_str());
    }
    std::fflush(stdout);
}

int check(const std::vector<Part>& parts, std::string_view list) {
    const std::vector<PartOutcome> outcomes =
        compare_parts(parts, expected_parts(list), [](const PartOutcome& outcome) {
            if (!outcome.first_difference.empty()) {
                std::printf(
                    "%s: differs in %s\n", outcome.name.c_str(), outcome.first_difference.c_str());
            }
        });
    const std::size_t differences = count_differences(outcomes);
    std::printf("%zu of %zu parts equal\n", outcomes.size() - differences, outcomes.size());
    return differences == 0 ? 0 : kDifferent;
}

int run(const Wishes& wishes, Ranks* ranks) {
    if (!wishes.instructions.empty()) {
        if (const int status = limit_instructions(wishes.instructions)) {
            std::fprintf(stderr, "not on this processor: %s\n", wishes.instructions.c_str());
            return status;
        }
    }
    if (wishes.threads > 0) {
        set_thread_count(wishes.threads);
    }
    const std::vector<Part> parts = wanted_parts(wishes, ranks);
    if (parts.empty()) {
        std::fputs("there is no such part\n", stderr);
        return kBadUsage;
    }
    if (wishes.check) {
        return check(parts, ranks != nullptr ? rank_digests_text() : digests_text());
    }
    std::for_each(parts.begin(), parts.end(), &print);
    return 0;
}

}  // namespace

int run_digest_program(int argc, const char* const* argv, Ranks* ranks) {
    Wishes wishes;
    if (!read_wishes(argc, argv, wishes)) {
        std::fputs(kUsage, stderr);
        return kBadUsage;
    }
    try {
        return run(wishes, ranks);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "golden_digests: %s\n", error.what());
        return 1;
    }
}

}  // namespace ovik::golden
