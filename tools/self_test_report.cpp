#include "tools/self_test_report.h"

#include <cstddef>
#include <cstdio>
#include <string>

#include "util/console.h"
#include "util/counted.h"
#include "util/platform.h"

#include "golden/self_test.h"
#include "tools/standard_streams.h"

namespace ovik::tool {

ExitStatus show_self_test(const std::vector<golden::Part>& parts,
                          const std::vector<golden::ExpectedPart>& expected) {
    print_info("Portable numbers of " OVIK_VERSION " by " + text_of(this_platform()));
    const auto outcomes =
        golden::compare_parts(parts, expected, [](const golden::PartOutcome& outcome) {
            print_info(outcome.name + ": " +
                       (outcome.first_difference.empty()
                            ? "equal"
                            : "differs, first in: " + outcome.first_difference));
            std::fflush(stdout);
        });
    const std::size_t differences = golden::count_differences(outcomes);
    if (differences > 0) {
        complain(std::to_string(differences) + " of " + counted(outcomes.size(), "part", "parts") +
                 (differences == 1 ? " differs" : " differ") +
                 " from what every machine has: maps of --numerics portable are others here\n"
                 "The first one that differs tells where to look: what is above it is equal, and "
                 "what is below it may follow from it.");
        return Different;
    }
    print_info("All " + counted(outcomes.size(), "part", "parts") +
               " equal: maps of --numerics "
               "portable are here what they are everywhere");
    return Success;
}

}  // namespace ovik::tool
