#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <memory>
#include <new>
#include <omp.h>
#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

#include <glog/logging.h>

#include "plots/plain_text.h"
#include "stats/memory_estimate.h"
#include "stats/result_table.h"
#include "stats/tsne.h"
#include "util/console.h"
#include "util/format.h"
#include "util/input_error.h"
#include "util/malloc_array.h"
#include "util/matrix_check.h"

#include "tools/available_memory.h"
#include "tools/counted.h"
#include "tools/dry_run.h"
#include "tools/duplicate_rows.h"
#include "tools/exit_status.h"
#include "tools/gene_report.h"
#include "tools/input_checks.h"
#include "tools/interruption.h"
#include "tools/load_matrix.h"
#include "tools/map_quality.h"
#include "tools/memory_check.h"
#include "tools/options.h"
#include "tools/standard_streams.h"
#include "tools/threads.h"

/// The command `ovik-tsne`: checks the matrix, explains what is wrong with it, and runs the engine.

namespace ovik::tool {

namespace {

constexpr double kDefaultPerplexity = 20.0;

/// The command's log lines go to standard error, never to files of their own.
void start_logging(bool quiet) {
    FLAGS_logtostderr = true;
    FLAGS_minloglevel = quiet ? google::GLOG_WARNING : google::GLOG_INFO;
    google::InitGoogleLogging("ovik-tsne");
}

/// The perplexity of the run: as given, or 20, or the largest that few rows allow.
///
/// @throws InputError if no row has as many others
double choose_perplexity(const Options& options, std::size_t rows) {
    const double available = static_cast<double>(rows - 1);
    if (options.perplexity) {
        if (*options.perplexity >= available) {
            throw InputError("--perplexity: a row has " + std::to_string(rows - 1) +
                             " others, so it cannot have as many neighbours or more\nGive at most "
                             "a third of that; 5 to 50 are usual.");
        }
        return *options.perplexity;
    }
    if (3.0 * kDefaultPerplexity <= available) {
        return kDefaultPerplexity;
    }
    double largest = available / 3.0;
    while (3.0 * largest > available) {
        largest = std::nextafter(largest, 0.0);
    }
    print_info("Perplexity " + num2string(largest, 2) + ", the largest that " +
               std::to_string(rows) + " rows allow (the usual 20 needs 61)");
    return largest;
}

/// @param base  path of the results without their extensions
/// @throws InputError if the longest of their names is too long for a directory to hold
void check_file_name(const std::string& base) {
    constexpr std::size_t kLongestName = 255;
    const std::string name = std::filesystem::path(base + ".html").filename().string();
    if (name.size() > kLongestName) {
        throw InputError("the name of a result is too long: " + name +
                         "\nGive a shorter one with --name and --suffix.");
    }
}

/// @throws std::filesystem::filesystem_error, std::system_error if results cannot be put there
void prepare_directory(const std::string& directory) {
    std::filesystem::create_directories(directory);
    if (access(directory.c_str(), W_OK) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot write in " + directory);
    }
}

/// The path of table and plots without their extensions.
std::string result_base(const Options& options, double perplexity) {
    return options.out_dir + options.name + "_" + result_table_stem(perplexity, options.suffix);
}

/// Says where a result is, or why it is missing.
void report_file(const std::string& what, const std::string& path, std::error_code failure) {
    if (!failure) {
        print_info(what + ": " + path);
    } else {
        complain(what + " could not be written: " + path + " (" + failure.message() + ")");
    }
}

/// @throws std::runtime_error if the embedding has come to nothing
void check_finite(const IterationReport& reached) {
    if (!reached.finite) {
        std::putchar('\n');
        throw std::runtime_error("the embedding got out of range at iteration " +
                                 std::to_string(reached.iteration) +
                                 ", and no results are written\nBring the values of the matrix to "
                                 "a common scale, or choose another perplexity.");
    }
}

void report_checkpoint(const Options& options, const std::string& failure) {
    if (options.checkpoint.empty()) {
        return;
    }
    if (failure.empty()) {
        print_info("Checkpoint: " + options.checkpoint + " (to go on: --resume)");
    } else {
        complain("Checkpoint could not be written: " + options.checkpoint + " (" + failure + ")");
    }
}

/// Says what became of the results.
///
/// @return whether all that were asked for are there
template <typename T>
bool report_results(const TSNE<T>& tsne, const std::string& base, const Options& options) {
    report_file("Result table", base + ".csv", tsne.tableFailure());
    report_file("Run log", tsne.out_base + ".log", tsne.logFailure());
    if (options.plots) {
        report_file("Chart page", base + ".html", tsne.plots().page_failure);
    }
    if (tsne.plots().figure == FigureOutcome::Drawn) {
        print_info("Figure: " + base + ".png (also .svg, and the script .gp)");
    }
    report_checkpoint(options, tsne.checkpointFailure());
    return tsne.tableWritten() && tsne.logWritten() && !tsne.plots().page_failure &&
           tsne.plots().figure != FigureOutcome::Failed && tsne.checkpointFailure().empty();
}

template <typename T>
ExitStatus embed(const Options& options,
                 InspectedMatrix matrix,
                 double perplexity,
                 const std::vector<std::string>& labels) {
    const std::size_t duplicates =
        count_duplicate_rows(matrix.values.get(), matrix.report.rows, matrix.report.columns);
    TSNE<T> tsne(options.out_dir, options.name, options.suffix, options.title);
    // What `init` does, with a matrix that has been read.
    tsne.max_iter = options.max_iter;
    tsne.N = static_cast<int>(matrix.report.rows);
    tsne.D = static_cast<int>(matrix.report.columns);
    tsne.row_names = std::move(matrix.row_names);
    tsne.X = matrix.values.release();
    const auto finish = [](TSNE<T>* run) { run->finish(); };
    const std::unique_ptr<TSNE<T>, decltype(finish)> finished_whatever_happens(&tsne, finish);
    tsne.theta = options.theta;
    tsne.draw_plots = options.plots;
    tsne.checkpoint_path = options.checkpoint;
    tsne.checkpoint_every = options.checkpoint_every;
    tsne.resume_path = options.resume;
    tsne.on_iteration = [](const IterationReport& reached) {
        check_finite(reached);
        return goes_on();
    };
    if (options.standard_names) {
        rename_to_standard(tsne.row_names);
    }
    const std::string names_warning = systematic_names_warning(tsne.row_names);
    if (!names_warning.empty()) {
        complain("warning: " + names_warning);
    }
    tsne.checkResume(options.dims, perplexity, options.stop_lying_iter, options.mom_switch_iter);
    prepare_directory(options.out_dir);
    const std::string base = result_base(options, perplexity);
    tsne.actuate(
        options.dims, perplexity, labels, options.stop_lying_iter, options.mom_switch_iter);
    if (options.quality) {
        print_map_quality(tsne, options.dims);
    }
    const bool complete = report_results(tsne, base, options);
    print_info(one_line_utf8(found_genes_line(tsne.row_names)));
    if (duplicates > 0) {
        print_info("Equal rows: " + counted(duplicates, "row holds", "rows hold") +
                   " the same values as an earlier one");
    }
    return complete ? interruption_status() : FailedRun;
}

ExitStatus run(const Options& options) {
    if (!options.gene.empty()) {
        return show_gene(options.gene);
    }
    watch_for_interruption();
    if (!options.checkpoint.empty()) {
        check_checkpoint_path(options.checkpoint);
    }
    if (options.quiet && std::freopen("/dev/null", "w", stdout) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "cannot silence standard output");
    }
    const std::string threads_note = set_thread_count(options.threads);
    if (!threads_note.empty()) {
        complain("note: " + threads_note);
    }
    std::vector<std::string> labels;
    InspectedMatrix matrix = load_matrix(options, labels);
    const RunSize size{matrix.report.rows,
                       matrix.report.columns,
                       static_cast<std::size_t>(options.dims),
                       choose_perplexity(options, matrix.report.rows),
                       options.theta,
                       options.plots,
                       static_cast<std::size_t>(omp_get_max_threads())};
    const std::string base = result_base(options, size.perplexity);
    check_file_name(base);
    const AvailableMemory available = available_memory();
    if (options.dry_run) {
        print_plan(options, size, available, base);
    }
    if (!options.force) {
        check_memory(size, available);
    }
    if (options.dry_run) {
        return Success;
    }
    start_logging(options.quiet);
    return options.precision == Precision::Float
               ? embed<float>(options, std::move(matrix), size.perplexity, labels)
               : embed<double>(options, std::move(matrix), size.perplexity, labels);
}

/// The whole command but for what the streams have not taken yet; what goes wrong is explained on
/// standard error.
int run_command(int argc, const char* const* argv) {
    try {
        const ParsedCommand command = parse_command_line(argc, argv);
        return command.exit_status ? *command.exit_status : run(command.options);
    } catch (const InputError& error) {
        complain(error.what());
        return BadInput;
    } catch (const std::bad_alloc&) {
        complain("the matrix and its embedding do not fit in memory");
    } catch (const std::exception& error) {
        complain(error.what());
    }
    return FailedRun;
}

}  // namespace

}  // namespace ovik::tool

/// Where globals are built there is no one who could catch an exception. Runs before their
/// constructors.
[[gnu::constructor(101)]] static void end_if_memory_runs_out_before_main() {
    std::set_new_handler(ovik::exit_out_of_memory);
}

int main(int argc, char** argv) {
    std::set_new_handler(nullptr);
    ovik::tool::reserve_standard_streams();
    // A file that outgrows its limit is then reported like a full disk.
    std::signal(SIGXFSZ, SIG_IGN);
    const int status = ovik::tool::run_command(argc, argv);
    const bool all_printed = ovik::tool::flush_standard_streams();
    return all_printed || status != ovik::tool::Success ? status : ovik::tool::FailedRun;
}
