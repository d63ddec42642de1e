#include "plots/figure_drawing.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "util/input_file.h"
#include "util/plain_text.h"

namespace ovik {

namespace {

std::string file_name_of(const std::string& path) {
    return path.substr(path.rfind('/') + 1);  // npos + 1 is 0
}

/// The last line that says something; before it, gnuplot repeats the command that failed.
std::string last_message(const std::string& path) {
    constexpr std::size_t kLongest = 200;
    std::ifstream file(path);
    std::string message;
    std::string line;
    while (std::getline(file, line)) {
        if (line.find_first_not_of(" \t\r") != std::string::npos) {
            message = line;
        }
    }
    return message.substr(0, kLongest);
}

/// Whether a file ends in these bytes, but for a few behind them: gnuplot reports success on a full
/// disk, too.
bool ends_in(const std::string& path, const std::string& ending) {
    constexpr std::streamoff kTail = 32;
    std::ifstream file = open_input_file(path);
    if (!file.is_open() && errno != ENOENT) {
        throw_read_failure();
    }
    file.seekg(0, std::ios::end);
    const std::streamoff size = file.tellg();
    if (!file || size < kTail) {
        return false;
    }
    std::string tail(static_cast<std::size_t>(kTail), '\0');
    file.seekg(size - kTail);
    file.read(tail.data(), kTail);
    return tail.find(ending) != std::string::npos;
}

bool flush_to_disk(const std::string& path) {
    const int descriptor =
        static_cast<int>(TEMP_FAILURE_RETRY(::open(path.c_str(), O_RDONLY | O_CLOEXEC)));
    if (descriptor < 0) {
        return false;
    }
    const bool flushed = TEMP_FAILURE_RETRY(fsync(descriptor)) == 0;
    const int reason = errno;
    ::close(descriptor);
    errno = reason;
    return flushed;
}

}  // namespace

void tell_missing_figure(const std::string& base, const std::string& reason) {
    const std::string line = "Figure " + base + ".png was not drawn: " + reason;
    std::fprintf(stderr, "%s.\n", one_line_utf8(line).c_str());
}

FigureDrawing::FigureDrawing(std::string base)
    : base_(std::move(base)),
      directory_(base_, PartialEntry::Kind::Directory) {
    if (!directory_.isOpen()) {
        failure_ = std::generic_category().message(errno);
        return;
    }
    try {
        // -d: settings of the user's own do not change the figure.
        program_ = std::make_unique<ChildProcess>(
            std::vector<std::string>{"gnuplot", "-d", "../" + file_name_of(base_) + ".gp"},
            directory_.path(),
            directory_.path() + "/messages");
    } catch (const std::system_error& error) {
        lacks_program_ = error.code() == std::errc::no_such_file_or_directory &&
                         std::filesystem::exists(directory_.path());
        failure_ = lacks_program_ ? "gnuplot is not installed (Debian: apt-get install gnuplot-nox)"
                                  : error.what();
    }
}

FigureOutcome FigureDrawing::complete(std::chrono::milliseconds limit) {
    const std::string failure = finish(limit);
    if (failure.empty()) {
        return FigureOutcome::Drawn;
    }
    tell_missing_figure(
        base_, failure + ". Draw it later: run gnuplot on " + base_ + ".gp in its directory");
    return lacks_program_ ? FigureOutcome::ScriptOnly : FigureOutcome::Failed;
}

std::string FigureDrawing::finish(std::chrono::milliseconds limit) {
    if (program_ == nullptr) {
        return failure_;
    }
    const std::optional<int> status = program_->wait(limit);
    if (!status) {
        return "gnuplot had not finished after " + std::to_string(limit.count() / 1000) +
               " seconds";
    }
    if (*status != 0) {
        return "gnuplot ended with status " + std::to_string(*status) + ": " +
               last_message(directory_.path() + "/messages");
    }
    // Both or none, as far as can be told beforehand.
    for (const auto& [extension, ending] : {std::pair{".png", "IEND"}, {".svg", "</svg>"}}) {
        try {
            if (!ends_in(drawn(extension), ending)) {
                return "gnuplot left no whole picture for " + base_ + extension +
                       " (the disk may be full)";
            }
        } catch (const std::ios_base::failure& failure) {
            return failure.code().message() + ": " + drawn(extension);
        }
    }
    for (const char* const extension : {".png", ".svg"}) {
        const std::string place = base_ + extension;
        if (!flush_to_disk(drawn(extension)) ||
            TEMP_FAILURE_RETRY(std::rename(drawn(extension).c_str(), place.c_str())) != 0) {
            return std::generic_category().message(errno) + ": " + place;
        }
    }
    return "";
}

std::string FigureDrawing::drawn(const std::string& extension) const {
    return directory_.path() + "/" + file_name_of(base_) + extension;
}

}  // namespace ovik
