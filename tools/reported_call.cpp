#include "tools/reported_call.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

#include <nlohmann/json.hpp>

#include "results/digest.h"
#include "stats/fit_options.h"
#include "util/input_error.h"
#include "util/input_file.h"

#include "tools/exit_status.h"
#include "tools/given_files.h"
#include "tools/reported_options.h"

namespace ovik::tool {

namespace {

using Json = nlohmann::json;

std::string whole_text(const std::string& path) {
    std::ifstream file = open_input_file(path);
    if (!file.is_open()) {
        throw InputError(path + ": " + std::generic_category().message(errno));
    }
    return with_read_failures_named(
        path, [&file] { return std::string(std::istreambuf_iterator<char>(file), {}); });
}

/// @throws InputError if calls of this kind cannot be made again
void check_kind(const Json& report, const std::string& path) {
    if (report.contains("placement")) {
        throw InputError(path +
                         ": rows that were placed on a map (--onto) are not compared\nGive "
                         "the report of the run that made the map.");
    }
    if (report.contains("choice")) {
        throw InputError(path +
                         ": a choice of perplexity leaves no map to compare\nGive the "
                         "report of a run with the perplexity that was chosen.");
    }
    if (report.at("runs").empty()) {
        throw InputError(path + ": has no run: it was ended before the first map was there");
    }
    for (const Json& run : report.at("runs")) {
        if (!run.contains("embedding")) {
            throw InputError(path + ": has no digest of the map: version " +
                             report.at("version").get<std::string>() +
                             " did not write it\nRun that version once more, and this one, and "
                             "compare their coordinates (--coordinates npy).");
        }
        for (const Json& seed : run.value("seeds", Json::array())) {
            if (!seed.at("complete").get<bool>()) {
                throw InputError(path +
                                 ": is of several seeds of which some were ended early, "
                                 "which cannot be made again");
            }
        }
    }
}

Platform platform_of(const Json& json) {
    return {json.at("processor").get<std::string>(),
            json.at("architecture").get<std::string>(),
            json.at("instructions").get<std::string>(),
            json.at("system").get<std::string>(),
            json.at("c_library").get<std::string>(),
            json.at("compiler").get<std::string>()};
}

ReportedRun run_of(const Json& json) {
    ReportedRun run;
    const Json& perplexity = json.at("perplexity");
    if (!perplexity.is_null()) {
        run.perplexity = perplexity.get<double>();
    }
    run.last_iteration = json.at("last_iteration").get<int>();
    run.embedding = json.at("embedding").at("digest").get<std::string>();
    for (const Json& cost : json.at("costs")) {
        run.costs.push_back(cost.is_null() ? std::nan("") : cost.get<double>());
    }
    return run;
}

ReportedCall call_of(const Json& report, const std::string& path) {
    ReportedCall call;
    call.path = path;
    call.version = report.at("version").get<std::string>();
    call.command_line = report.at("command_line").get<std::vector<std::string>>();
    call.options = report.at("options").dump();
    const Json& input = report.at("input");
    call.rows = input.at("rows").get<std::size_t>();
    call.columns = input.at("columns").get<std::size_t>();
    call.values = input.at("digest").at("values").get<std::string>();
    call.names = input.at("digest").at("names").get<std::string>();
    call.platform = platform_of(report.at("platform"));
    const std::filesystem::path directory = std::filesystem::absolute(path).parent_path();
    for (const Json& file : report.at("given_files")) {
        const Json& digest = file.at("digest");
        call.files.push_back(
            {file.at("option").get<std::string>(),
             (directory / file.at("path").get<std::string>()).lexically_normal().string(),
             digest.is_null() ? "" : digest.get<std::string>()});
    }
    for (const Json& run : report.at("runs")) {
        call.runs.push_back(run_of(run));
    }
    return call;
}

/// The command line without an option and its value.
std::vector<std::string> without_option(const std::vector<std::string>& command_line,
                                        const std::string& name) {
    std::vector<std::string> kept;
    for (std::size_t i = 0; i < command_line.size(); ++i) {
        if (command_line[i] == name) {
            ++i;
        } else if (!command_line[i].starts_with(name + "=")) {
            kept.push_back(command_line[i]);
        }
    }
    return kept;
}

/// Puts the options of the fit that the report has in the place of others, as if they were given:
/// presets have no say in them.
void take_fit_options(const ReportedCall& reported, Options& options) {
    const Json given = Json::parse(reported.options);
    options.preset = PresetKind::Classic;
    read_reported_options(given, options.fit);
    visit_fit_options(options.fit, [&](const auto& option) {
        const auto found = given.find(std::string(option.words.name));
        if (found != given.end() && !found->is_null()) {
            options.given.emplace(option.words.name);
        }
    });
    options.load.transformations.is_portable = options.fit.numerics == NumericsKind::Portable;
    options.perplexities.clear();
    for (const ReportedRun& run : reported.runs) {
        if (run.perplexity) {
            options.perplexities.push_back(*run.perplexity);
        }
    }
}

/// What the report's command line asks for.
Options parsed_again(const ReportedCall& reported) {
    std::vector<std::string> command_line = reported.command_line;
    // A file that is not where it was would be refused as the name of no start.
    if (std::any_of(reported.files.begin(), reported.files.end(), [](const auto& file) {
            return file.option == "start";
        })) {
        command_line = without_option(command_line, "--start");
    }
    std::vector<const char*> arguments;
    arguments.reserve(command_line.size());
    for (const std::string& argument : command_line) {
        arguments.push_back(argument.c_str());
    }
    ParsedCommand command =
        parse_command_line(static_cast<int>(arguments.size()), arguments.data());
    if (command.exit_status) {
        throw InputError(reported.path +
                         ": this version does not take the command line of the "
                         "report, which is of version " +
                         reported.version + "\nRun that version.");
    }
    return std::move(command.options);
}

/// Checks a file that was given, and says where it is now.
void settle_file(const ReportedCall::File& file, const Options& call, Options& options) {
    std::string path = file.path;
    for (const GivenFile& now : given_files(call)) {
        if (now.option == file.option) {
            path = now.path;
        }
    }
    if (file.digest.empty()) {
        throw InputError("--" + file.option +
                         " was no plain file, such as a pipe, so that it cannot be told whether "
                         "another one is the same\nWrite it to a file for runs that are to be "
                         "reproduced.");
    }
    replace_given_file(options, file.option, path);
    for (const GivenFile& now : given_files(options)) {
        if (now.option == file.option && !now.digest) {
            throw InputError(path + ": the file of --" + file.option +
                             " is not there\nSay where it is now: --" + file.option + " FILE.");
        }
        if (now.option == file.option && hexadecimal(*now.digest) != file.digest) {
            throw DifferenceFound(path + ": differs: the file of --" + file.option +
                                  " has other bytes than that of the report");
        }
    }
}

/// Leaves away what is no part of the map.
void leave_results_away(Options& options) {
    options.plots = false;
    options.page_data = PageData::None;
    options.report_file.clear();
    options.checkpoint.clear();
    options.resume.clear();
    options.model.clear();
    options.into.clear();
    options.sets_file.clear();
    options.highlight.clear();
    options.load.labels_file.clear();
    options.clusters = false;
    options.quality = false;
    options.reliability = false;
    options.against_noise = 0;
    options.stability = 0;
    options.dry_run = false;
}

}  // namespace

ReportedCall read_reported_call(const std::string& path) {
    const std::string text = whole_text(path);
    try {
        const Json report = Json::parse(text);
        check_kind(report, path);
        return call_of(report, path);
    } catch (const Json::exception&) {
        throw InputError(path +
                         ": not the report of a run\nGive the file that a run wrote with --json.");
    }
}

Options options_to_reproduce(const ReportedCall& reported, const Options& call) {
    Options options = parsed_again(reported);
    leave_results_away(options);
    options.matrix = call.matrix;
    options.threads = call.threads;
    options.quiet = call.quiet;
    options.force = call.force;
    for (const ReportedCall::File& file : reported.files) {
        settle_file(file, call, options);
    }
    take_fit_options(reported, options);
    return options;
}

}  // namespace ovik::tool
