#include "tools/comparison.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

#include <nlohmann/json.hpp>

#include "plots/comparison_page.h"
#include "stats/method.h"
#include "stats/run_names.h"
#include "util/console.h"
#include "util/counted.h"
#include "util/format.h"
#include "util/input_error.h"
#include "util/input_file.h"
#include "util/whole_file.h"

#include "tools/choice_results.h"
#include "tools/comparison_numbers.h"
#include "tools/reported_options.h"
#include "tools/result_files.h"
#include "tools/result_paths.h"
#include "tools/standard_streams.h"
#include "tools/table_map.h"

namespace ovik::tool {

namespace {

using Json = nlohmann::json;
using Facts = std::vector<std::pair<std::string, std::string>>;

Facts input_facts(const ComparisonEntry& entry) {
    return {
        {"Input",
         counted(entry.rows, "row", "rows") + ", " + counted(entry.columns, "column", "columns")},
        {"Method", method_of(entry.options).title(entry.options)}};
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

AlignedMaps aligned_maps_of(const std::vector<ComparisonEntry>& entries) {
    std::vector<RunMap> maps;
    maps.reserve(entries.size());
    for (const ComparisonEntry& entry : entries) {
        maps.push_back(entry.map);
    }
    return align_maps(maps);
}

/// What there is to say of a map beside others.
std::string map_note(const AlignedMaps& maps, std::size_t run) {
    const AlignedMap& map = maps.maps[run];
    const std::size_t genes = maps.genes.names.size();
    if (map.x.empty()) {
        return "The coordinates of this map could not be read. ";
    }
    std::string note;
    if (map.placed < genes) {
        note = counted(genes - map.placed, "gene of the others is", "genes of the others are") +
               " not in this map. ";
    }
    if (run != maps.reference && !map.agreement) {
        note += "It lies as it is: it has too few genes in common with the reference. ";
    }
    return note;
}

/// What a run of other input than the others came from.
std::string input_note(const ComparisonEntry& entry) {
    std::string note;
    for (const auto& [name, value] : input_facts(entry)) {
        note.append(name).append(": ").append(value).append(". ");
    }
    return note;
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

/// The choice with the paths of its files as they are found from the page.
ComparedChoice compared_choice(const ChosenPerplexity& choice,
                               const std::vector<ComparisonEntry>& entries,
                               const std::filesystem::path& page_directory) {
    ComparedChoice compared{choice.choice.sentence, choice_curves(entries, choice.choice), "", {}};
    for (const ResultFile& file : choice.files) {
        if (!file.failure.empty()) {
            continue;
        }
        const std::filesystem::path path(file.path);
        const std::string found = std::filesystem::proximate(path, page_directory).string();
        if (path.extension() == ".svg") {
            compared.picture = found;
        }
        compared.files.emplace_back(file.what + " (" + path.extension().string().substr(1) + ")",
                                    found);
    }
    return compared;
}

/// @throws nlohmann::json::exception if something is lacking, or of another kind
RecordedTrials trials_of(const Json& json) {
    RecordedTrials trials;
    json.at("seeds").get_to(trials.seeds);
    json.at("columns").get_to(trials.columns);
    json.at("neighbours").get_to(trials.neighbours);
    const auto read = [&json](const char* name, double& number) {
        const Json& value = json.at(name);
        number = value.is_null() ? std::nan("") : value.get<double>();
    };
    read("shared_by_seeds", trials.shared_by_seeds);
    read("shared_by_columns", trials.shared_by_columns);
    read("spread_by_seeds", trials.spread_by_seeds);
    read("spread_by_columns", trials.spread_by_columns);
    return trials;
}

/// @throws nlohmann::json::exception if something is lacking, or of another kind
RecordedNoise noise_of(const Json& json) {
    const auto summary_of = [](const Json& summary) {
        return RecordedNoiseSummary{summary.at("better").get<double>(),
                                    summary.at("told").get<double>(),
                                    summary.at("least_rate").get<double>(),
                                    summary.at("signal").get<double>(),
                                    summary.at("needed").get<std::size_t>()};
    };
    return {json.at("matrices").get<std::size_t>(),
            json.at("neighbours").get<std::size_t>(),
            json.at("groups").get<std::size_t>(),
            json.at("least_chance").get<double>(),
            summary_of(json.at("kept")),
            summary_of(json.at("misfit"))};
}

/// @throws nlohmann::json::exception if the report lacks something, or it is of another kind
RunRecord record_of(const Json& run) {
    RunRecord record;
    const Json& perplexity = run.at("perplexity");
    record.perplexity = perplexity.is_null() ? std::nan("") : perplexity.get<double>();
    record.iteration = run.at("last_iteration").get<int>();
    record.final_cost = run.at("final_cost").get<double>();
    if (const auto seconds = run.find("seconds"); seconds != run.end() && !seconds->is_null()) {
        record.seconds = {seconds->at("similarities").get<double>(),
                          seconds->at("fitting").get<double>(),
                          seconds->at("results").get<double>(),
                          seconds->value("sample", 0.0)};
    }
    record.kept_seed = run.value("kept_seed", 0);
    for (const Json& seed : run.value("seeds", Json::array())) {
        record.seeds.push_back({seed.at("seed").get<int>(),
                                seed.at("last_iteration").get<int>(),
                                seed.at("final_cost").get<double>(),
                                seed.at("complete").get<bool>()});
    }
    for (const Json& quality : run.at("quality")) {
        record.quality.push_back({quality.at("neighbours").get<std::size_t>(),
                                  quality.at("trustworthiness").get<double>(),
                                  quality.at("preservation").get<double>()});
    }
    if (const auto noise = run.find("noise"); noise != run.end()) {
        record.noise = noise_of(*noise);
    }
    if (const auto trials = run.find("trials"); trials != run.end()) {
        record.trials = trials_of(*trials);
    }
    for (const Json& file : run.at("files")) {
        const Json& failure = file.at("failure");
        record.files.push_back({file.at("what").get<std::string>(),
                                file.at("path").get<std::string>(),
                                failure.is_null() ? "" : failure.get<std::string>()});
    }
    return record;
}

/// The options of a fit, as far as a report has them.
FitOptions fit_options_of(const Json& options) {
    FitOptions fit;
    read_reported_options(options, fit);
    return fit;
}

/// What tells data of other values, names or neighbours apart, as far as a report has it.
std::string data_of(const Json& report) {
    return report.at("input").value("digest", Json()).dump() +
           report.at("options").value("neighbours_from", Json()).dump();
}

/// The map by the table that the run left; none without one.
RunMap map_of(const ComparisonEntry& entry) {
    for (const ResultFile& file : entry.run.files) {
        if (file.what == "Result table" && file.failure.empty()) {
            return read_table_map((entry.directory / file.path).string(), entry.rows);
        }
    }
    return {};
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
                               data_of(report),
                               {},
                               directory,
                               input.value("duplicate_rows", std::size_t{0}),
                               path});
            entries.back().map = map_of(entries.back());
        }
    } catch (const Json::exception&) {
        throw InputError(path +
                         ": not the report of a run\nGive the files that runs wrote with --json.");
    }
    return entries;
}

}  // namespace

std::optional<ChosenPerplexity> tell_choice(const Options& options,
                                            const std::vector<ComparisonEntry>& entries) {
    std::optional<PerplexityChoice> choice = choice_among(entries);
    if (!choice) {
        return std::nullopt;
    }
    if (entries.front().run.noise) {
        choice->sentence += sentence_of_copies(entries.front().duplicate_rows);
    }
    std::vector<ResultFile> files = write_choice(options, entries, *choice);
    print_info(choice->sentence);
    return ChosenPerplexity{std::move(*choice), std::move(files)};
}

bool write_comparison(const std::string& path,
                      const std::vector<ComparisonEntry>& entries,
                      const std::optional<ChosenPerplexity>& choice) {
    const std::filesystem::path directory = std::filesystem::absolute(path).parent_path();
    const bool one_title = share(entries, [](const ComparisonEntry& entry) { return entry.title; });
    const bool one_input = share(entries, &input_facts);
    Comparison comparison;
    comparison.title = one_title && !entries.empty() ? entries.front().title : "Comparison of runs";
    comparison.name = std::filesystem::path(path).stem().string();
    if (one_input && !entries.empty()) {
        comparison.facts = input_facts(entries.front());
    }
    AlignedMaps maps = aligned_maps_of(entries);
    comparison.numbers = numbers_of(entries, maps);
    comparison.reference = maps.reference;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        ComparedRun run = compared_run(entries[i], directory);
        run.title = title_of(entries[i], one_title);
        run.note = map_note(maps, i) + (one_input ? "" : input_note(entries[i]));
        run.x = std::move(maps.maps[i].x);
        run.y = std::move(maps.maps[i].y);
        comparison.runs.push_back(std::move(run));
    }
    if (std::any_of(maps.maps.begin(), maps.maps.end(), [](const AlignedMap& map) {
            return map.agreement.has_value();
        })) {
        comparison.alignment =
            "Each map is moved, turned, mirrored where that helps, and scaled to lie as near as it "
            "can to that of \"" +
            comparison.runs[maps.reference].title +
            "\" (Procrustes), which keeps its shape. Genes are matched by their names.";
    }
    comparison.genes = std::move(maps.genes);
    if (choice) {
        comparison.choice = compared_choice(*choice, entries, directory);
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
    const std::optional<ChosenPerplexity> choice = tell_choice(options, entries);
    if (const std::string why = choice ? "" : why_no_choice(entries); !why.empty()) {
        complain("note: no perplexity is chosen. " + why +
                 "\nGive reports of --choose-perplexity that differ in the perplexity alone.");
    }
    const bool is_written = write_comparison(comparison_path(options), entries, choice);
    return is_written && (!choice || are_there(choice->files)) ? Success : FailedRun;
}

}  // namespace ovik::tool
