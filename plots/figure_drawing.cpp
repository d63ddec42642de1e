#include "plots/figure_drawing.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace ovik {

namespace {

std::string directory_of(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

std::string file_name_of(const std::string& path) {
    return path.substr(path.rfind('/') + 1);  // npos + 1 is 0
}

/// A directory of its own beside a file.
std::string make_directory_beside(const std::string& path) {
    static std::atomic<unsigned int> count = 0;
    std::string directory = directory_of(path) + ".ovik-" + std::to_string(getpid()) + "-" +
                            std::to_string(++count) + ".figure.part";
    // What a killed process of the same number left is in the way.
    std::filesystem::remove_all(directory);
    std::filesystem::create_directory(directory);
    return directory;
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
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const std::streamoff size = file.tellg();
    if (!file || size < kTail) {
        return false;
    }
    std::string tail(static_cast<std::size_t>(kTail), '\0');
    file.seekg(size - kTail);
    file.read(tail.data(), kTail);
    return file && tail.find(ending) != std::string::npos;
}

bool flush_to_disk(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool flushed = descriptor >= 0 && fsync(descriptor) == 0;
    if (descriptor >= 0) {
        ::close(descriptor);
    }
    return flushed;
}

}  // namespace

FigureDrawing::FigureDrawing(std::string base) : base_(std::move(base)) {
    try {
        directory_ = make_directory_beside(base_);
        // -d: settings of the user's own do not change the figure.
        program_ = std::make_unique<ChildProcess>(
            std::vector<std::string>{"gnuplot", "-d", "../" + file_name_of(base_) + ".gp"},
            directory_,
            directory_ + "/messages");
    } catch (const std::system_error& error) {
        const bool is_missing = error.code() == std::errc::no_such_file_or_directory &&
                                std::filesystem::exists(directory_);
        failure_ = is_missing ? "gnuplot is not installed (Debian: apt-get install gnuplot-nox)"
                              : error.what();
    }
}

FigureDrawing::~FigureDrawing() {
    program_.reset();
    std::error_code ignored;
    if (!directory_.empty()) {
        std::filesystem::remove_all(directory_, ignored);
    }
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
               last_message(directory_ + "/messages");
    }
    const std::string png_failure = place(".png", "IEND");
    const std::string svg_failure = place(".svg", "</svg>");
    return png_failure.empty() ? svg_failure : png_failure;
}

std::string FigureDrawing::place(const std::string& extension, const std::string& ending) const {
    const std::string drawn = directory_ + "/" + file_name_of(base_) + extension;
    const std::string final_path = base_ + extension;
    if (!ends_in(drawn, ending)) {
        return "gnuplot left no whole picture for " + final_path;
    }
    if (!flush_to_disk(drawn) || std::rename(drawn.c_str(), final_path.c_str()) != 0) {
        return std::generic_category().message(errno) + ": " + final_path;
    }
    return "";
}

}  // namespace ovik
