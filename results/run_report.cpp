#include "results/run_report.h"

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <filesystem>

#include "util/json_text.h"
#include "util/whole_file.h"

namespace ovik {

namespace {

/// Changes when a reader of earlier reports would no longer understand.
constexpr int kReportVersion = 1;

/// A time in the form "2026-11-21T18:58:03Z".
std::string utc_text(long long seconds) {
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    char text[40];
    const bool is_date = gmtime_r(&time, &parts) != nullptr &&
                         std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts) > 0;
    return is_date ? text : "";
}

/// A path as it is found from the directory of the report.
std::string path_from(const std::filesystem::path& directory, const std::string& path) {
    return std::filesystem::proximate(path, directory).string();
}

std::string json_input(const RunReport& report, const std::filesystem::path& directory) {
    return json_object(
        {{"path",
          json_text(report.input == "-" ? report.input : path_from(directory, report.input))},
         {"format", json_text(report.format)},
         {"rows", json_text(report.rows)},
         {"columns", json_text(report.columns)},
         {"missing_values", json_text(report.missing_values)},
         {"duplicate_rows", json_text(report.duplicate_rows)},
         {"digest",
          json_object({{"algorithm", json_text(std::string("XXH3-128"))},
                       {"values", json_text(hexadecimal(report.values))},
                       {"names", json_text(hexadecimal(report.names))}})}});
}

std::string json_platform(const Platform& platform) {
    return json_object({{"processor", json_text(platform.processor)},
                        {"architecture", json_text(platform.architecture)},
                        {"instructions", json_text(platform.instructions)},
                        {"system", json_text(platform.system)},
                        {"c_library", json_text(platform.c_library)},
                        {"compiler", json_text(platform.compiler)}});
}

std::string json_given_files(const std::vector<GivenFile>& files,
                             const std::filesystem::path& directory) {
    std::vector<std::string> list;
    list.reserve(files.size());
    for (const GivenFile& file : files) {
        const std::string digest = file.digest ? json_text(hexadecimal(*file.digest)) : "null";
        list.push_back(json_object({{"option", json_text(file.option)},
                                    {"path", json_text(path_from(directory, file.path))},
                                    {"algorithm", json_text(std::string("XXH3-128"))},
                                    {"digest", digest}}));
    }
    return json_list(list);
}

std::string json_embedding(std::uint64_t checksum) {
    return json_object({{"algorithm", json_text(std::string("XXH3-64"))},
                        {"digest", json_text(hexadecimal(checksum))}});
}

std::string json_quality(const std::vector<RecordedQuality>& qualities) {
    std::vector<std::string> list;
    list.reserve(qualities.size());
    for (const RecordedQuality& quality : qualities) {
        list.push_back(json_object({{"neighbours", json_text(quality.neighbours)},
                                    {"trustworthiness", json_text(quality.trustworthiness)},
                                    {"preservation", json_text(quality.preservation)}}));
    }
    return json_list(list);
}

std::string json_files(const std::vector<ResultFile>& files,
                       const std::filesystem::path& directory) {
    std::vector<std::string> list;
    list.reserve(files.size());
    for (const ResultFile& file : files) {
        list.push_back(
            json_object({{"what", json_text(file.what)},
                         {"path", json_text(path_from(directory, file.path))},
                         {"failure", file.failure.empty() ? "null" : json_text(file.failure)}}));
    }
    return json_list(list);
}

std::string json_agreement(const std::optional<RecordedAgreement>& agreement) {
    return agreement ? json_object({{"disparity", json_text(agreement->disparity)},
                                    {"neighbours", json_text(agreement->neighbours)},
                                    {"shared_neighbours", json_text(agreement->shared_neighbours)}})
                     : "null";
}

/// The members that a run from several seeds has besides.
std::vector<std::pair<std::string, std::string>> seed_members(const RunRecord& run) {
    if (run.seeds.empty()) {
        return {};
    }
    std::vector<std::string> list;
    list.reserve(run.seeds.size());
    for (const RecordedSeed& one : run.seeds) {
        list.push_back(json_object({{"seed", json_text(one.seed)},
                                    {"last_iteration", json_text(one.iteration)},
                                    {"final_cost", json_text(one.final_cost)},
                                    {"complete", json_text(one.is_complete)}}));
    }
    return {{"seeds", json_list(list)},
            {"kept_seed", json_text(run.kept_seed)},
            {"agreement", json_agreement(run.agreement)}};
}

std::string json_seconds(const RecordedSeconds& seconds) {
    std::vector<std::pair<std::string, std::string>> members{
        {"similarities", json_text(seconds.similarities)},
        {"fitting", json_text(seconds.fitting)},
        {"results", json_text(seconds.results)}};
    if (seconds.sample > 0.0) {
        members.emplace_back("sample", json_text(seconds.sample));
    }
    return json_object(members);
}

std::string json_rows(const std::vector<std::vector<std::uint32_t>>& lists) {
    std::vector<std::string> rows;
    rows.reserve(lists.size());
    for (const std::vector<std::uint32_t>& list : lists) {
        rows.push_back(json_list_of(std::vector<std::size_t>(list.begin(), list.end())));
    }
    return json_list(rows);
}

/// Rows are told by their numbers, from 0.
std::string json_reliability(const RowReliability& reliability) {
    std::vector<std::pair<std::string, std::string>> members{{"near", json_text(reliability.near)},
                                                             {"far", json_text(reliability.far)}};
    for (const RowNumbers& column : reliability.columns) {
        members.emplace_back(column.name, json_list_of(column.values));
    }
    members.emplace_back("false_neighbours", json_rows(reliability.falsely_near));
    members.emplace_back("torn_neighbours", json_rows(reliability.torn));
    return json_object(members);
}

/// What was not measured is null.
std::string json_trials(const RecordedTrials& trials) {
    return json_object({{"seeds", json_text(trials.seeds)},
                        {"columns", json_text(trials.columns)},
                        {"neighbours", json_text(trials.neighbours)},
                        {"shared_by_seeds", json_text(trials.shared_by_seeds)},
                        {"shared_by_columns", json_text(trials.shared_by_columns)},
                        {"spread_by_seeds", json_text(trials.spread_by_seeds)},
                        {"spread_by_columns", json_text(trials.spread_by_columns)}});
}

std::string json_noise_summary(const RecordedNoiseSummary& summary) {
    return json_object({{"better", json_text(summary.better)},
                        {"told", json_text(summary.told)},
                        {"least_rate", json_text(summary.least_rate)},
                        {"signal", json_text(summary.signal)},
                        {"needed", json_text(summary.needed)}});
}

/// @param duplicate_rows  rows that are told from noise because they are copies
std::string json_noise(const RecordedNoise& noise, std::size_t duplicate_rows) {
    return json_object({{"matrices", json_text(noise.matrices)},
                        {"neighbours", json_text(noise.neighbours)},
                        {"groups", json_text(noise.groups)},
                        {"least_chance", json_text(noise.least_chance)},
                        {"duplicate_rows", json_text(duplicate_rows)},
                        {"kept", json_noise_summary(noise.kept)},
                        {"misfit", json_noise_summary(noise.misfit)}});
}

/// Clusters are told by their numbers, from 1.
std::string json_stability(const RecordedStability& stability) {
    std::vector<std::pair<std::string, std::string>> members{
        {"seeds", json_text(stability.seeds)},
        {"draws", json_text(stability.draws)},
        {"neighbours", json_text(stability.neighbours)}};
    for (const RowNumbers& column : stability.columns) {
        members.emplace_back(column.name, json_list_of(column.values));
    }
    std::vector<std::string> pairs;
    for (const RecordedClusterPair& pair : stability.pairs) {
        pairs.push_back(json_object({{"clusters",
                                      json_list({json_text(std::size_t{pair.first} + 1),
                                                 json_text(std::size_t{pair.second} + 1)})},
                                     {"separation", json_text(pair.separation)},
                                     {"apart_seeds", json_text(pair.apart_seeds)},
                                     {"apart_columns", json_text(pair.apart_columns)},
                                     {"stay_apart", json_text(pair.stay_apart)}}));
    }
    members.emplace_back("cluster_pairs", stability.has_clusters ? json_list(pairs) : "null");
    return json_object(members);
}

/// @param duplicate_rows  of the matrix
std::string json_run(const RunRecord& run,
                     std::size_t duplicate_rows,
                     const std::filesystem::path& directory) {
    std::vector<std::pair<std::string, std::string>> members{
        {"perplexity", json_text(run.perplexity)},
        {"last_iteration", json_text(run.iteration)},
        {"settled", json_text(run.settled)},
        {"final_cost", json_text(run.final_cost)},
        {"variance_kept", run.variance_kept ? json_text(*run.variance_kept) : "null"},
        {"seconds", run.trials ? "null" : json_seconds(run.seconds)},
        {"quality", json_quality(run.quality)},
        {"files", json_files(run.files, directory)},
        {"costs", json_list_of(run.costs)}};
    if (run.embedding) {
        members.emplace_back("embedding", json_embedding(*run.embedding));
    }
    if (run.neighbour_recall) {
        members.emplace_back("neighbour_recall", json_text(*run.neighbour_recall));
    }
    if (run.sample_recall) {
        members.emplace_back("sample_neighbour_recall", json_text(*run.sample_recall));
    }
    if (run.clusters) {
        members.emplace_back("clusters",
                             json_object({{"resolution", json_text(run.clusters->resolution)},
                                          {"modularity", json_text(run.clusters->modularity)},
                                          {"sizes", json_list_of(run.clusters->sizes)}}));
    }
    if (run.reliability) {
        members.emplace_back("reliability", json_reliability(*run.reliability));
    }
    if (run.trials) {
        members.emplace_back("trials", json_trials(*run.trials));
    }
    if (run.noise) {
        members.emplace_back("noise", json_noise(*run.noise, duplicate_rows));
    }
    if (run.stability) {
        members.emplace_back("stability", json_stability(*run.stability));
    }
    const auto of_seeds = seed_members(run);
    members.insert(members.end(), of_seeds.begin(), of_seeds.end());
    return json_object(members);
}

std::string json_choice(const RecordedChoice& choice, const std::filesystem::path& directory) {
    return json_object(
        {{"recommended", choice.recommended ? json_text(*choice.recommended) : "null"},
         {"sentence", json_text(choice.sentence)},
         {"files", json_files(choice.files, directory)}});
}

std::string json_placement(const PlacementRecord& placement,
                           const std::filesystem::path& directory) {
    return json_object({{"model", json_text(path_from(directory, placement.model))},
                        {"map_rows", json_text(placement.map_rows)},
                        {"perplexity", json_text(placement.perplexity)},
                        {"seconds", json_text(placement.seconds)},
                        {"files", json_files(placement.files, directory)},
                        {"names", json_list_of(placement.names)},
                        {"costs", json_list_of(placement.costs)},
                        {"nearest", json_list_of(placement.nearest)},
                        {"nearest_distances", json_list_of(placement.nearest_distances)}});
}

}  // namespace

std::string report_json(const RunReport& report, const std::string& path) {
    const std::filesystem::path directory = std::filesystem::absolute(path).parent_path();
    std::vector<std::string> runs;
    for (const RunRecord& run : report.runs) {
        runs.push_back(json_run(run, report.duplicate_rows, directory));
    }
    std::vector<std::pair<std::string, std::string>> members = {
        {"report", json_text(kReportVersion)},
        {"program", json_text(report.program)},
        {"version", json_text(report.version)},
        {"command_line", json_list_of(report.command_line)},
        {"started", json_text(utc_text(report.started))},
        {"options", json_object(report.options)},
        {"threads", json_text(report.threads)},
        {"platform", json_platform(report.platform)},
        {"given_files", json_given_files(report.given_files, directory)},
        {"input", json_input(report, directory)},
        {"seconds",
         json_object({{"reading", json_text(report.reading_seconds)},
                      {"total", json_text(report.total_seconds)}})},
        {"memory_bytes",
         json_object({{"estimated", json_text(report.estimated_memory)},
                      {"peak", json_text(report.peak_memory)}})},
        {"runs", json_list(runs)}};
    if (report.choice) {
        members.emplace_back("choice", json_choice(*report.choice, directory));
    }
    if (report.placement) {
        members.emplace_back("placement", json_placement(*report.placement, directory));
    }
    members.emplace_back("exit_status", json_text(report.exit_status));
    return json_object(members) + "\n";
}

std::error_code write_run_report(const std::string& path, const RunReport& report) {
    return write_whole_text(path, report_json(report, path));
}

}  // namespace ovik
