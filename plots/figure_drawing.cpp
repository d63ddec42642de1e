#include "plots/figure_drawing.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "util/console.h"
#include "util/counted.h"
#include "util/input_file.h"
#include "util/plain_text.h"
#include "util/whole_file.h"

namespace ovik {

namespace {

/// In the directory of a drawing: what gnuplot says.
constexpr const char* kMessages = "messages";
/// And what it draws by, unless that is the script that is kept.
constexpr const char* kScript = "script";

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

/// @throws std::ios_base::failure if the picture cannot be read
std::string bytes_of(const std::string& picture) {
    std::ifstream from = open_input_file(picture);
    if (!from.is_open()) {
        throw_read_failure();
    }
    return {std::istreambuf_iterator<char>(from), {}};
}

/// Writes what gnuplot is to read.
///
/// @return whether all was written; if not, `errno` may have the reason
bool write_bytes(const std::string& path, const std::string& bytes) {
    errno = 0;
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    return file.good();
}

/// Writes a finished picture to its place as a whole file: links, permissions and other disks are
/// seen to there.
std::error_code place_picture(const std::string& bytes, const std::string& place) {
    WholeFile file(place);
    if (file.isInPlace()) {
        tell_of_writing_in_place(place);
    }
    if (file.stream() != nullptr) {
        std::fwrite(bytes.data(), 1, bytes.size(), file.stream());
    }
    return file.commit();
}

}  // namespace

void tell_missing_figure(const std::string& base, const std::string& reason) {
    const std::string line = "Figure " + base + ".png was not drawn: " + reason;
    const ClearedPlace place;
    std::fprintf(stderr, "%s.\n", one_line_utf8(line).c_str());
}

void tell_unplaced_names(const std::string& base, const std::vector<std::string>& names) {
    if (names.empty()) {
        return;
    }
    constexpr std::size_t kListed = 5;
    std::string line =
        "Figure " + base + ".png has no room for " + counted(names.size(), "name", "names") + " (";
    for (std::size_t n = 0; n < names.size() && n < kListed; ++n) {
        line += (n == 0 ? "" : ", ") + names[n];
    }
    line += std::string(names.size() > kListed ? ", ..." : "") +
            "): highlight fewer, or make it larger with --figure-size";
    const ClearedPlace place;
    std::fprintf(stderr, "%s.\n", one_line_utf8(line).c_str());
}

void remove_left_over_drawings(const std::string& base) {
    const std::string start = file_name_of(base) + "_";
    remove_left_over_directories(base, [&start](std::string_view name) {
        const bool is_picture = name.ends_with(".png") || name.ends_with(".svg");
        return name == kMessages || name == kScript || (is_picture && name.starts_with(start));
    });
}

FigureDrawing::FigureDrawing(std::string base,
                             PictureFinish finish,
                             const std::optional<DrawingFiles>& files)
    : base_(std::move(base)),
      finish_(std::move(finish)),
      directory_(base_, PartialEntry::Kind::Directory),
      can_be_drawn_later_(!files || files->can_be_drawn_later) {
    if (!directory_.isOpen()) {
        failure_ = std::generic_category().message(errno);
        return;
    }
    if (files) {
        const std::string inside = directory_.path() + "/";
        if (!write_bytes(inside + kScript, files->script) ||
            !write_bytes(inside + file_name_of(base_) + "_points.png", files->points)) {
            failure_ = std::generic_category().message(errno != 0 ? errno : EIO);
            return;
        }
    }
    try {
        // -d: settings of the user's own do not change the figure.
        program_ = std::make_unique<ChildProcess>(
            std::vector<std::string>{
                "gnuplot", "-d", files ? kScript : "../" + file_name_of(base_) + ".gp"},
            directory_.path(),
            directory_.path() + "/" + kMessages);
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
    const std::string later = ". Draw it later: run gnuplot on " + base_ + ".gp in its directory";
    tell_missing_figure(base_, failure + (can_be_drawn_later_ ? later : ""));
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
               last_message(directory_.path() + "/" + kMessages);
    }
    std::string picture;
    try {
        // Both or none, as far as can be told beforehand.
        for (const auto& [extension, ending] : {std::pair{".png", "IEND"}, {".svg", "</svg>"}}) {
            picture = drawn(extension);
            if (!ends_in(picture, ending)) {
                return "gnuplot left no whole picture for " + base_ + extension +
                       " (the disk may be full)";
            }
        }
        for (const char* const extension : {".png", ".svg"}) {
            picture = drawn(extension);
            std::string bytes = bytes_of(picture);
            if (finish_) {
                bytes = finish_(bytes, extension);
            }
            if (const auto failure = place_picture(bytes, base_ + extension)) {
                return failure.message() + ": " + base_ + extension;
            }
        }
    } catch (const std::ios_base::failure& failure) {
        return failure.code().message() + ": " + picture;
    }
    return "";
}

std::string FigureDrawing::drawn(const std::string& extension) const {
    return directory_.path() + "/" + file_name_of(base_) + extension;
}

}  // namespace ovik
