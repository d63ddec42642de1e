#include "tools/reproduction.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <set>
#include <span>
#include <string_view>
#include <utility>

#include <nlohmann/json.hpp>

#include "results/digest.h"
#include "stats/fit_choices.h"
#include "util/console.h"
#include "util/counted.h"
#include "util/format.h"

#include "tools/command_report.h"
#include "tools/embedding_run.h"
#include "tools/interruption.h"
#include "tools/perplexity_sweep.h"
#include "tools/standard_streams.h"
#include "tools/start_file.h"

namespace ovik::tool {

namespace {

using Json = nlohmann::json;

std::string shape_text(std::size_t rows, std::size_t columns) {
    return counted(rows, "row", "rows") + " and " + counted(columns, "column", "columns");
}

/// Options that say where something lies or how it is written, and shape no map.
bool shapes_no_map(std::string_view name) {
    const std::set<std::string_view> kNames = {"neighbours_from", "title", "precision"};
    return kNames.contains(name);
}

/// The call as it is made again.
class Reproduction {
  public:
    Reproduction(const LoadedMatrix& loaded,
                 std::shared_ptr<CachedNeighbours> neighbours,
                 const Options& options,
                 const ReportedCall& reported)
        : loaded_(loaded),
          neighbours_(std::move(neighbours)),
          options_(options),
          reported_(reported),
          start_places_(settle_start(options, loaded.matrix.row_names)) {}

    /// Fits one map anew and says whether it is equal; where a signal ended it, nothing.
    [[nodiscard]] bool isEqual(const ReportedRun& expected, double perplexity) const {
        const RunRecord now = run_fit_alone(options_, input(), perplexity, expected.last_iteration);
        if (interruption_status() != Success) {
            return false;
        }
        const std::string digest = hexadecimal(now.embedding.value_or(0));
        const std::string map = nameOf(expected);
        if (digest == expected.embedding) {
            print_info("Equal: " + map + " has the bits of the report (XXH3-64 " + digest +
                       ", after iteration " + std::to_string(now.iteration) + ")");
            return true;
        }
        complain("differs: " + map + " has other bits than that of " + reported_.path +
                 " (XXH3-64 " + digest + ", not " + expected.embedding + "); " +
                 costs_text(expected.costs, now.costs));
        return false;
    }

  private:
    /// A copy of the matrix, which a fit changes.
    [[nodiscard]] RunInput input() const {
        RunInput input;
        input.rows = loaded_.matrix.report.rows;
        input.columns = loaded_.matrix.report.columns;
        const std::size_t count = input.rows * input.columns;
        input.values.reset(new double[count]);
        std::copy_n(loaded_.matrix.values.get(), count, input.values.get());
        input.row_names = loaded_.matrix.row_names;
        input.neighbours = neighbours_;
        input.start_places = start_places_;
        return input;
    }

    [[nodiscard]] std::string nameOf(const ReportedRun& run) const {
        return reported_.runs.size() > 1 && run.perplexity
                   ? "the map of perplexity " + shortest_text(*run.perplexity)
                   : "the map";
    }

    const LoadedMatrix& loaded_;
    const std::shared_ptr<CachedNeighbours> neighbours_;
    const Options& options_;
    const ReportedCall& reported_;
    const std::vector<double> start_places_;
};

/// Says, where all is equal, what is not: it may be what the reader wants to know.
void tell_of_other_surroundings(const ReportedCall& reported) {
    if (reported.version != OVIK_VERSION) {
        print_info("The report is of version " + reported.version + ", this is " OVIK_VERSION);
    }
    const Platform here = this_platform();
    if (reported.platform != here) {
        print_info("The report is of " + text_of(reported.platform) + "; this is " + text_of(here));
    }
}

}  // namespace

void check_reported_values(const ReportedCall& reported, const LoadedMatrix& loaded) {
    const MatrixReport& matrix = loaded.matrix.report;
    if (matrix.rows != reported.rows || matrix.columns != reported.columns) {
        throw DifferenceFound("differs: the input has " + shape_text(matrix.rows, matrix.columns) +
                              ", that of the report " +
                              shape_text(reported.rows, reported.columns) +
                              "\nNothing was computed: give the matrix that the report is of.");
    }
    const std::string values = hexadecimal(digest_of(
        std::span<const double>(loaded.matrix.values.get(), matrix.rows * matrix.columns)));
    if (values != reported.values) {
        throw DifferenceFound(
            "differs: the values of the input are not those of the report "
            "(XXH3-128 " +
            values + ", not " + reported.values +
            ")\nNothing was computed: give the matrix that the report is of.");
    }
}

void check_reported_options(const ReportedCall& reported, const Options& options) {
    const Json expected = Json::parse(reported.options);
    std::set<std::string> known;
    for (const auto& [name, value] : reported_options(options)) {
        known.insert(name);
        const auto found = expected.find(name);
        if (found != expected.end() && !shapes_no_map(name) && *found != Json::parse(value)) {
            std::string difference = "differs: the option " + name + " of the report is ";
            difference +=
                found->dump() + ", and comes to " + value + " here\nThe report is of version ";
            difference += reported.version + ", this is " OVIK_VERSION ".";
            throw DifferenceFound(difference);
        }
    }
    for (const auto& [name, value] : expected.items()) {
        if (!known.contains(name) && !value.is_null()) {
            throw DifferenceFound("differs: this version, " OVIK_VERSION ", has no option " + name +
                                  ", which the report, of version " + reported.version + ", has");
        }
    }
}

std::vector<std::string> likely_causes(const ReportedCall& reported,
                                       const std::string& version,
                                       const Platform& here,
                                       NumericsKind numerics) {
    std::vector<std::string> causes;
    if (reported.version != version) {
        causes.push_back("the report is of version " + reported.version + ", this is " + version +
                         ": the changelog says what changes maps");
    }
    const std::string platforms = text_of(reported.platform) + "; this is " + text_of(here);
    const bool is_elsewhere = reported.platform != here;
    if (is_elsewhere && numerics == NumericsKind::Platform) {
        causes.push_back("the report is of " + platforms +
                         ": with --numerics platform a map is bound to the C library and the "
                         "processor; make it with --numerics portable, which has the same bits on "
                         "every machine");
    } else if (is_elsewhere) {
        causes.push_back("the report is of " + platforms +
                         ": with --numerics portable that should change nothing; ovik-tsne "
                         "--self-test tells which part of the program does");
    }
    if (causes.empty()) {
        causes.push_back(
            "version and platform are those of the report: a fault of the program or "
            "of the machine; ovik-tsne --self-test tells which");
    }
    return causes;
}

std::string costs_text(const std::vector<double>& reported, const std::vector<double>& now) {
    const auto same = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    const auto [old_end, new_end] =
        std::mismatch(reported.begin(), reported.end(), now.begin(), now.end(), same);
    const auto count = static_cast<std::size_t>(old_end - reported.begin());
    if (old_end == reported.end() && new_end == now.end()) {
        return "the costs of all iterations are the same";
    }
    if (count == 0) {
        return "already the first cost is another one";
    }
    return "the costs of the first " + counted(count, "iteration is", "iterations are") +
           " the same";
}

ExitStatus reproduce_maps(LoadedMatrix loaded,
                          const std::vector<double>& perplexities,
                          const std::shared_ptr<CachedNeighbours>& neighbours,
                          const Options& options,
                          const ReportedCall& reported) {
    settle_names(loaded.matrix.row_names, options.names);
    const bool has_names = hexadecimal(digest_of(loaded.matrix.row_names)) == reported.names;
    if (!has_names) {
        complain("differs: the names of the rows are not those of the report, the values are");
    }
    const Reproduction reproduction(loaded,
                                    neighbours != nullptr
                                        ? neighbours
                                        : shared_neighbours(perplexities, options, reported.rows),
                                    options,
                                    reported);
    bool has_maps = true;
    for (std::size_t i = 0; i < reported.runs.size(); ++i) {
        const bool is_equal = reproduction.isEqual(reported.runs[i], perplexities.at(i));
        if (interruption_status() != Success) {
            complain("ended before it was known whether the map is equal");
            return interruption_status();
        }
        has_maps = has_maps && is_equal;
    }
    if (has_maps) {
        tell_of_other_surroundings(reported);
        return has_names ? Success : Different;
    }
    for (const std::string& cause :
         likely_causes(reported, OVIK_VERSION, this_platform(), options.fit.numerics)) {
        complain("likely cause: " + cause);
    }
    return Different;
}

}  // namespace ovik::tool
