#include "results/checkpoint.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "results/byte_encoding.h"
#include "util/input_error.h"
#include "util/whole_file.h"

namespace ovik {

namespace {

constexpr std::string_view kMagic = "OVIKCKPT";
constexpr std::uint64_t kVersion = 3;
/// Magic and version, by which a file is known for what it is.
constexpr std::size_t kOpeningSize = 2 * kNumberSize;
/// What stands before the options: the opening, three sizes and the length of the options.
constexpr std::size_t kShapeSize = kOpeningSize + 4 * kNumberSize;
/// A limit far above what the text of the options takes; a longer one is damage.
constexpr std::uint64_t kMostOptionBytes = 1U << 16U;
/// What stands between the options and the arrays: two digests, iteration and two costs.
constexpr std::size_t kProgressSize = 7 * kNumberSize;
constexpr std::size_t kArrays = 3;

std::string option_lines(const RunIdentity& run) {
    std::string lines;
    for (const auto& [name, value] : run.options) {
        lines += name;
        lines += "=";
        lines += value;
        lines += "\n";
    }
    return lines;
}

/// The names and values of the options in the text that `option_lines` made of them.
std::vector<std::pair<std::string, std::string>> options_of(std::string_view lines) {
    std::vector<std::pair<std::string, std::string>> options;
    while (!lines.empty()) {
        const std::string_view line = lines.substr(0, lines.find('\n'));
        const std::size_t sign = std::min(line.find('='), line.size());
        options.emplace_back(line.substr(0, sign), line.substr(std::min(sign + 1, line.size())));
        lines.remove_prefix(std::min(line.size() + 1, lines.size()));
    }
    return options;
}

std::string encoded(const Checkpoint& checkpoint) {
    const RunIdentity& run = checkpoint.run;
    const std::string options = option_lines(run);
    ByteEncoder file;
    file.put(kMagic);
    file.put(kVersion);
    file.put(std::uint64_t{run.rows});
    file.put(std::uint64_t{run.columns});
    file.put(std::uint64_t{run.out_dims});
    file.put(std::uint64_t{options.size()});
    file.put(options);
    file.put(run.values);
    file.put(run.names);
    file.put(checkpoint.iteration);
    file.put(checkpoint.cost);
    file.put(checkpoint.marked_cost);
    for (const auto* array : {&checkpoint.embedding, &checkpoint.velocity, &checkpoint.gains}) {
        file.put(std::span<const double>(*array));
    }
    file.put(checksum_of(file.bytes()));
    return file.take();
}

std::string reason(int error) {
    return std::generic_category().message(error);
}

[[noreturn]] void refuse_damaged(const std::string& path, const std::string& damage) {
    throw InputError(path + ": the checkpoint is damaged: " + damage +
                     "\nGo on from another one, or start anew.");
}

/// The first bytes of a file, fewer than wanted where it ends.
std::string read_bytes(std::ifstream& file, std::size_t count) {
    std::string bytes(count, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(count));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return bytes;
}

std::ifstream open_checkpoint(const std::string& path) {
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open() || std::filesystem::is_directory(path)) {
        throw InputError(path + ": the checkpoint cannot be read (" +
                         reason(errno != 0 ? errno : EISDIR) + ")");
    }
    return file;
}

void check_opening(const std::string& path, std::string_view bytes) {
    if (bytes.substr(0, kMagic.size()) != kMagic) {
        throw InputError(path + ": this is not a checkpoint");
    }
    if (bytes.size() < kOpeningSize) {
        refuse_damaged(path, "it has " + std::to_string(bytes.size()) + " bytes only");
    }
    const std::uint64_t version = ByteDecoder(bytes.substr(kMagic.size())).integer();
    if (version != kVersion) {
        throw InputError(path + ": this is a checkpoint of version " + std::to_string(version) +
                         ", and only those of version " + std::to_string(kVersion) +
                         " can be gone on from\nUse the program that wrote it, or start anew.");
    }
}

/// The number of elements of each array.
///
/// @param header_size  bytes that stand before the arrays
/// @throws InputError if they do not fill the file
std::size_t array_size(const std::string& path, const RunIdentity& run, std::size_t header_size) {
    // Twice as many as the engine can count, so that the product below is one.
    constexpr std::uint64_t kMost = std::uint64_t{1} << 32U;
    std::error_code ignored;
    const std::uintmax_t size = std::filesystem::file_size(path, ignored);
    if (run.rows >= kMost || run.out_dims >= kMost) {
        refuse_damaged(path, "its sizes make no sense");
    }
    const std::uintmax_t count = std::uintmax_t{run.rows} * run.out_dims;
    const std::uintmax_t room = size - header_size - kNumberSize;
    if (size < header_size + kNumberSize || room % (kArrays * kNumberSize) != 0 ||
        room / (kArrays * kNumberSize) != count) {
        refuse_damaged(path,
                       "its " + std::to_string(size) + " bytes are not those of " +
                           std::to_string(count) + " coordinates");
    }
    return count;
}

/// Appends bytes of a file to those that have been read.
///
/// @throws InputError if it ends before
void read_on(const std::string& path, std::ifstream& file, std::size_t count, std::string& bytes) {
    const std::size_t wanted = bytes.size() + count;
    bytes += read_bytes(file, count);
    if (bytes.size() < wanted) {
        refuse_damaged(path, "it has " + std::to_string(bytes.size()) + " bytes only");
    }
}

/// Reads what stands before the arrays.
///
/// @param bytes  what has been read of the file: its opening; the rest of the header follows
Checkpoint read_header(const std::string& path, std::ifstream& file, std::string& bytes) {
    Checkpoint checkpoint;
    RunIdentity& run = checkpoint.run;
    read_on(path, file, kShapeSize - kOpeningSize, bytes);
    ByteDecoder shape(std::string_view(bytes).substr(kOpeningSize));
    run.rows = shape.integer();
    run.columns = shape.integer();
    run.out_dims = shape.integer();
    const std::uint64_t option_bytes = shape.integer();
    if (option_bytes > kMostOptionBytes) {
        refuse_damaged(path, "its sizes make no sense");
    }
    read_on(path, file, option_bytes + kProgressSize, bytes);
    ByteDecoder progress(std::string_view(bytes).substr(kShapeSize));
    run.options = options_of(progress.text(option_bytes));
    run.values = progress.digest();
    run.names = progress.digest();
    checkpoint.iteration = progress.smallInteger();
    checkpoint.cost = progress.real();
    checkpoint.marked_cost = progress.real();
    return checkpoint;
}

/// What differs between two runs, a line each.
class Differences {
  public:
    void compare(const std::string& what, const std::string& there, const std::string& here) {
        if (there != here) {
            add(what + ": " + there + " in the checkpoint, " + here + " now");
        }
    }

    void add(const std::string& line) { lines_ += "\n  " + line; }

    [[nodiscard]] const std::string& lines() const { return lines_; }

  private:
    std::string lines_;
};

/// The value of an option; "none" where there is no such option.
std::string value_of(const RunIdentity& run, const std::string& name) {
    const auto found = std::find_if(run.options.begin(),
                                    run.options.end(),
                                    [&name](const auto& option) { return option.first == name; });
    return found == run.options.end() ? "none" : found->second;
}

void compare_options(const RunIdentity& there, const RunIdentity& here, Differences& differences) {
    for (const auto& [name, value] : here.options) {
        differences.compare(name, value_of(there, name), value);
    }
    for (const auto& [name, value] : there.options) {
        if (value_of(here, name) == "none") {
            differences.compare(name, value, "none");
        }
    }
}

}  // namespace

std::string write_checkpoint(const std::string& path, const Checkpoint& checkpoint) {
    const std::string bytes = encoded(checkpoint);
    WholeFile file(path);
    if (file.stream() != nullptr) {
        std::fwrite(bytes.data(), 1, bytes.size(), file.stream());
    }
    const std::error_code failure = file.commit();
    return failure ? failure.message() : "";
}

Checkpoint read_checkpoint(const std::string& path) {
    std::ifstream file = open_checkpoint(path);
    std::string bytes = read_bytes(file, kOpeningSize);
    check_opening(path, bytes);
    Checkpoint checkpoint = read_header(path, file, bytes);
    const std::size_t header_size = bytes.size();
    const std::size_t count = array_size(path, checkpoint.run, header_size);
    bytes += read_bytes(file, (kArrays * count + 1) * kNumberSize);
    const std::string_view all = bytes;
    const std::size_t end = header_size + kArrays * count * kNumberSize;
    if (all.size() != end + kNumberSize ||
        ByteDecoder(all.substr(end)).integer() != checksum_of(all.substr(0, end))) {
        refuse_damaged(path, "its checksum is not that of its bytes");
    }
    ByteDecoder arrays(all.substr(header_size));
    for (auto* array : {&checkpoint.embedding, &checkpoint.velocity, &checkpoint.gains}) {
        *array = arrays.reals(count);
    }
    return checkpoint;
}

bool opens_as_checkpoint(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return read_bytes(file, kMagic.size()) == kMagic;
}

void check_goes_on(const std::string& path,
                   const Checkpoint& checkpoint,
                   const RunIdentity& run,
                   int max_iter) {
    const RunIdentity& there = checkpoint.run;
    Differences differences;
    differences.compare("rows", std::to_string(there.rows), std::to_string(run.rows));
    differences.compare("columns", std::to_string(there.columns), std::to_string(run.columns));
    compare_options(there, run, differences);
    if (there.rows == run.rows && there.columns == run.columns) {
        if (there.values != run.values) {
            differences.add("the values of the matrix are others");
        }
        if (there.names != run.names) {
            differences.add("the names of its rows are others");
        }
    }
    if (differences.lines().empty() &&
        (there.out_dims != run.out_dims || checkpoint.iteration < 0)) {
        refuse_damaged(path, "its sizes contradict its options");
    }
    if (!differences.lines().empty()) {
        throw InputError(path + ": this checkpoint is not of this run" + differences.lines() +
                         "\nGive the matrix and the options of the run that wrote it, or start "
                         "anew.");
    }
    if (checkpoint.iteration > max_iter) {
        throw InputError(path + ": this checkpoint is of iteration " +
                         std::to_string(checkpoint.iteration) + ", and the run ends with " +
                         std::to_string(max_iter) + "\nSet a later last iteration, or start anew.");
    }
}

}  // namespace ovik
