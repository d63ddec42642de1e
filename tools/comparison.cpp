#include "tools/comparison.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <system_error>

#include <nlohmann/json.hpp>

#include "plots/comparison_page.h"
#include "stats/method.h"
#include "stats/option_texts.h"
#include "stats/run_names.h"
#include "util/console.h"
#include "util/counted.h"
#include "util/format.h"
#include "util/input_error.h"
#include "util/input_file.h"
#include "util/whole_file.h"

#include "tools/result_paths.h"
#include "tools/standard_streams.h"

namespace ovik::tool {

namespace {

using Json = nlohmann::json;
using Facts = std::vector<std::pair<std::string, std::string>>;

std::string with_decimals(double value, int decimals) {
    char text[400];  // a double has at most 309 digits before its point
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

Facts input_facts(const ComparisonEntry& entry) {
    return {
        {"Input",
         counted(entry.rows, "row", "rows") + ", " + counted(entry.columns, "column", "columns")},
        {"Method", method_of(entry.options).title(entry.options)}};
}

Facts run_facts(const FitOptions& options, const RunRecord& run) {
    Facts facts{{"Last iteration", std::to_string(run.iteration)},
                {"Cost", with_decimals(run.final_cost, 4)}};
    if (const std::string choices = choices_text(options); !choices.empty()) {
        facts.emplace_back("Choices", choices);
    }
    for (const RecordedQuality& quality : run.quality) {
        facts.emplace_back("Nearest " + std::to_string(quality.neighbours),
                           "trustworthiness " + with_decimals(quality.trustworthiness, 4) + ", " +
                               with_decimals(100.0 * quality.preservation, 1) + " % kept");
    }
    return facts;
}

/// What a run is called.
///
/// @param is_alone  without the title of its data
std::string title_of(const ComparisonEntry& entry, bool is_alone) {
    if (std::isnan(entry.run.perplexity)) {
        const std::string neighbourhood = neighbourhood_text(entry.options, 1);
        if (!is_alone) {
            return entry.title + ": " + neighbourhood;
        }
        return std::string(1, static_cast<char>(std::toupper(neighbourhood.front()))) +
               neighbourhood.substr(1);
    }
    return (is_alone ? "Perplexity " : entry.title + ": perplexity ") +
           shortest_text(entry.run.perplexity);
}

/// Whether all entries have in common what `value` takes of them.
template <typename Value>
bool share(const std::vector<ComparisonEntry>& entries, const Value& value) {
    return std::all_of(entries.begin(), entries.end(), [&](const ComparisonEntry& entry) {
        return value(entry) == value(entries.front());
    });
}

/// A run with the paths of its files as they are found from the page.
ComparedRun compared_run(const ComparisonEntry& entry,
                         const std::filesystem::path& page_directory) {
    ComparedRun compared;
    for (const ResultFile& file : entry.run.files) {
        if (!file.failure.empty()) {
            continue;
        }
        const std::filesystem::path path = entry.directory / file.path;
        const std::string found = std::filesystem::proximate(path, page_directory).string();
        if (file.what == "Figure" && path.extension() == ".png") {
            compared.picture = found;
        } else if (file.what == "Chart page") {
            compared.chart_page = found;
        }
        compared.files.emplace_back(file.what + " (" + path.extension().string().substr(1) + ")",
                                    found);
    }
    return compared;
}

/// @throws nlohmann::json::exception if the report lacks something, or it is of another kind
RunRecord record_of(const Json& run) {
    RunRecord record;
    const Json& perplexity = run.at("perplexity");
    record.perplexity = perplexity.is_null() ? std::nan("") : perplexity.get<double>();
    record.iteration = run.at("last_iteration").get<int>();
    record.final_cost = run.at("final_cost").get<double>();
    for (const Json& quality : run.at("quality")) {
        record.quality.push_back({quality.at("neighbours").get<std::size_t>(),
                                  quality.at("trustworthiness").get<double>(),
                                  quality.at("preservation").get<double>()});
    }
    for (const Json& file : run.at("files")) {
        const Json& failure = file.at("failure");
        record.files.push_back({file.at("what").get<std::string>(),
                                file.at("path").get<std::string>(),
                                failure.is_null() ? "" : failure.get<std::string>()});
    }
    return record;
}

/// @throws nlohmann::json::exception if the value is of another kind
template <typename Option>
void read_value(const Json& json, const Option& option) {
    if constexpr (requires { option.set(""); }) {
        static_cast<void>(option.set(json.get<std::string>()));
    } else if constexpr (requires { option.isAutomatic(); }) {
        if (option.automatic != nullptr && json.is_string()) {
            *option.automatic = true;
        } else {
            json.get_to(option.value);
        }
    } else {
        const std::size_t count = std::min(json.size(), NumberList::kMost);
        for (std::size_t i = 0; i < count; ++i) {
            option.value.add(json.at(i).get<double>());
        }
    }
}

/// The options of a fit, as far as a report has them.
FitOptions fit_options_of(const Json& options) {
    FitOptions fit;
    visit_fit_options(fit, [&options](const auto& option) {
        const auto found = options.find(std::string(option.words.name));
        if (found != options.end() && !found->is_null()) {
            read_value(*found, option);
        }
    });
    return fit;
}

/// The runs of a report.
///
/// @throws InputError if it is none
std::vector<ComparisonEntry> entries_of(const std::string& path) {
    std::ifstream file = open_input_file(path);
    if (!file.is_open()) {
        throw InputError(path + ": " + std::generic_category().message(errno));
    }
    const std::string text(std::istreambuf_iterator<char>(file), {});
    const std::filesystem::path directory = std::filesystem::absolute(path).parent_path();
    std::vector<ComparisonEntry> entries;
    try {
        const Json report = Json::parse(text);
        const Json& input = report.at("input");
        const Json& options = report.at("options");
        if (report.at("runs").empty()) {
            throw InputError(path +
                             ": the report of rows that were placed on a map has no run of its "
                             "own\nGive the reports of runs that made maps.");
        }
        for (const Json& run : report.at("runs")) {
            entries.push_back({options.at("title").get<std::string>(),
                               input.at("rows").get<std::size_t>(),
                               input.at("columns").get<std::size_t>(),
                               fit_options_of(options),
                               record_of(run),
                               directory});
        }
    } catch (const Json::exception&) {
        throw InputError(path +
                         ": not the report of a run\nGive the files that runs wrote with --json.");
    }
    return entries;
}

}  // namespace

bool write_comparison(const std::string& path, const std::vector<ComparisonEntry>& entries) {
    const std::filesystem::path directory = std::filesystem::absolute(path).parent_path();
    const bool one_title = share(entries, [](const ComparisonEntry& entry) { return entry.title; });
    const bool one_input = share(entries, &input_facts);
    Comparison comparison;
    comparison.title = one_title && !entries.empty() ? entries.front().title : "Comparison of runs";
    if (one_input && !entries.empty()) {
        comparison.facts = input_facts(entries.front());
    }
    for (const ComparisonEntry& entry : entries) {
        ComparedRun run = compared_run(entry, directory);
        run.title = title_of(entry, one_title);
        if (!one_input) {
            run.facts = input_facts(entry);
        }
        const Facts facts = run_facts(entry.options, entry.run);
        run.facts.insert(run.facts.end(), facts.begin(), facts.end());
        comparison.runs.push_back(std::move(run));
    }
    if (const auto failure = write_whole_text(path, comparison_page(comparison))) {
        complain("Comparison could not be written: " + path + " (" + failure.message() + ")");
        return false;
    }
    print_info("Comparison: " + path);
    return true;
}

ExitStatus collect_reports(const Options& options) {
    std::vector<ComparisonEntry> entries;
    for (const std::string& path : options.collected_reports) {
        const std::vector<ComparisonEntry> more = entries_of(path);
        entries.insert(entries.end(), more.begin(), more.end());
    }
    std::stable_sort(
        entries.begin(), entries.end(), [](const ComparisonEntry& a, const ComparisonEntry& b) {
            // Those without a perplexity come last.
            return a.run.perplexity < b.run.perplexity ||
                   (!std::isnan(a.run.perplexity) && std::isnan(b.run.perplexity));
        });
    prepare_directory(options.out_dir);
    return write_comparison(comparison_path(options), entries) ? Success : FailedRun;
}

}  // namespace ovik::tool
