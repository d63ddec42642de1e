#include "results/checkpoint.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

// NOLINTNEXTLINE(readability-identifier-naming): the library's own switch, for nothing to link
#define XXH_INLINE_ALL
#include <xxhash.h>

#include "util/format.h"
#include "util/input_error.h"
#include "util/whole_file.h"

namespace ovik {

namespace {

constexpr std::string_view kMagic = "OVIKCKPT";
constexpr std::uint64_t kVersion = 1;
constexpr std::size_t kNumberSize = 8;
/// Magic and version, by which a file is known for what it is.
constexpr std::size_t kOpeningSize = 2 * kNumberSize;
/// All that stands before the arrays.
constexpr std::size_t kHeaderSize = 15 * kNumberSize;
constexpr std::size_t kArrays = 3;

/// Texts and numbers as bytes.
class Encoder {
  public:
    void put(std::string_view text) { bytes_ += text; }

    void put(std::uint64_t number) {
        std::array<char, kNumberSize> bytes{};
        for (std::size_t i = 0; i < kNumberSize; ++i) {
            bytes[i] = static_cast<char>(number >> (8 * i));
        }
        bytes_.append(bytes.data(), bytes.size());
    }

    void put(double number) { put(std::bit_cast<std::uint64_t>(number)); }

    void put(int number) { put(static_cast<std::uint64_t>(std::int64_t{number})); }

    void put(const Digest& digest) {
        put(digest.low);
        put(digest.high);
    }

    void put(const double* numbers, std::size_t count) {
        bytes_.reserve(bytes_.size() + count * kNumberSize);
        std::for_each(numbers, numbers + count, [this](double number) { put(number); });
    }

    void clear() { bytes_.clear(); }

    [[nodiscard]] const std::string& bytes() const { return bytes_; }

    [[nodiscard]] std::string take() { return std::move(bytes_); }

  private:
    std::string bytes_;
};

/// Numbers from bytes, of which there are enough.
class Decoder {
  public:
    explicit Decoder(std::string_view bytes) : bytes_(bytes) {}

    std::uint64_t integer() {
        std::uint64_t number = 0;
        for (std::size_t i = 0; i < kNumberSize; ++i) {
            number |= std::uint64_t{static_cast<unsigned char>(bytes_[i])} << (8 * i);
        }
        bytes_.remove_prefix(kNumberSize);
        return number;
    }

    double real() { return std::bit_cast<double>(integer()); }

    int smallInteger() { return static_cast<int>(static_cast<std::int64_t>(integer())); }

    Digest digest() {
        const std::uint64_t low = integer();
        return {low, integer()};
    }

    std::vector<double> reals(std::size_t count) {
        std::vector<double> numbers(count);
        std::generate(numbers.begin(), numbers.end(), [this] { return real(); });
        return numbers;
    }

  private:
    std::string_view bytes_;
};

std::uint64_t checksum(std::string_view bytes) {
    return XXH3_64bits(bytes.data(), bytes.size());
}

/// Digests bytes as they come.
class DigestStream {
  public:
    DigestStream() { XXH3_128bits_reset(&state_); }

    void add(std::string_view bytes) { XXH3_128bits_update(&state_, bytes.data(), bytes.size()); }

    [[nodiscard]] Digest digest() const {
        const XXH128_hash_t hash = XXH3_128bits_digest(&state_);
        return {hash.low64, hash.high64};
    }

  private:
    XXH3_state_t state_{};
};

std::string encoded(const Checkpoint& checkpoint) {
    const RunIdentity& run = checkpoint.run;
    Encoder file;
    file.put(kMagic);
    file.put(kVersion);
    file.put(std::uint64_t{run.rows});
    file.put(std::uint64_t{run.columns});
    file.put(std::uint64_t{run.out_dims});
    file.put(run.perplexity);
    file.put(run.theta);
    file.put(run.stop_lying_iter);
    file.put(run.mom_switch_iter);
    file.put(run.values);
    file.put(run.names);
    file.put(checkpoint.iteration);
    file.put(checkpoint.cost);
    for (const auto* array : {&checkpoint.embedding, &checkpoint.velocity, &checkpoint.gains}) {
        file.put(array->data(), array->size());
    }
    file.put(checksum(file.bytes()));
    return file.take();
}

/// Reads what stands before the arrays, behind the opening.
Checkpoint decoded_header(Decoder& file) {
    Checkpoint checkpoint;
    RunIdentity& run = checkpoint.run;
    run.rows = file.integer();
    run.columns = file.integer();
    run.out_dims = file.integer();
    run.perplexity = file.real();
    run.theta = file.real();
    run.stop_lying_iter = file.smallInteger();
    run.mom_switch_iter = file.smallInteger();
    run.values = file.digest();
    run.names = file.digest();
    checkpoint.iteration = file.smallInteger();
    checkpoint.cost = file.real();
    return checkpoint;
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
    const std::uint64_t version = Decoder(bytes.substr(kMagic.size())).integer();
    if (version != kVersion) {
        throw InputError(path + ": this is a checkpoint of version " + std::to_string(version) +
                         ", and only those of version " + std::to_string(kVersion) +
                         " can be gone on from\nUse the program that wrote it, or start anew.");
    }
}

/// Elements of each array.
///
/// @throws InputError if they do not fill the file
std::size_t array_size(const std::string& path, const RunIdentity& run) {
    // Twice as many as the engine can count, so that the product below is one.
    constexpr std::uint64_t kMost = std::uint64_t{1} << 32U;
    std::error_code ignored;
    const std::uintmax_t size = std::filesystem::file_size(path, ignored);
    if (run.rows >= kMost || run.out_dims >= kMost) {
        refuse_damaged(path, "its sizes make no sense");
    }
    const std::uintmax_t count = std::uintmax_t{run.rows} * run.out_dims;
    const std::uintmax_t room = size - kHeaderSize - kNumberSize;
    if (size < kHeaderSize + kNumberSize || room % (kArrays * kNumberSize) != 0 ||
        room / (kArrays * kNumberSize) != count) {
        refuse_damaged(path,
                       "its " + std::to_string(size) + " bytes are not those of " +
                           std::to_string(count) + " coordinates");
    }
    return count;
}

/// What differs between two runs, a line each.
class Differences {
  public:
    template <typename Value>
    void compare(const std::string& what, Value there, Value here) {
        if (there != here) {
            lines_ += "\n  " + what + ": " + shortest_text(there) + " in the checkpoint, " +
                      shortest_text(here) + " now";
        }
    }

    void add(const std::string& line) { lines_ += "\n  " + line; }

    [[nodiscard]] const std::string& lines() const { return lines_; }

  private:
    std::string lines_;
};

}  // namespace

Digest digest_of(const double* values, std::size_t count) {
    constexpr std::size_t kBlock = 4096;
    DigestStream stream;
    Encoder block;
    for (std::size_t first = 0; first < count; first += kBlock) {
        block.clear();
        block.put(values + first, std::min(kBlock, count - first));
        stream.add(block.bytes());
    }
    return stream.digest();
}

Digest digest_of(const std::string* texts, std::size_t count) {
    DigestStream stream;
    Encoder text;
    for (std::size_t i = 0; i < count; ++i) {
        // With its length: "ab", "c" are other texts than "a", "bc".
        text.clear();
        text.put(std::uint64_t{texts[i].size()});
        text.put(texts[i]);
        stream.add(text.bytes());
    }
    return stream.digest();
}

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
    std::string bytes = read_bytes(file, kHeaderSize);
    check_opening(path, bytes);
    if (bytes.size() < kHeaderSize) {
        refuse_damaged(path, "it has " + std::to_string(bytes.size()) + " bytes only");
    }
    Decoder header(std::string_view(bytes).substr(kOpeningSize));
    Checkpoint checkpoint = decoded_header(header);
    const std::size_t count = array_size(path, checkpoint.run);
    bytes += read_bytes(file, (kArrays * count + 1) * kNumberSize);
    const std::string_view all = bytes;
    const std::size_t end = kHeaderSize + kArrays * count * kNumberSize;
    if (all.size() != end + kNumberSize ||
        Decoder(all.substr(end)).integer() != checksum(all.substr(0, end))) {
        refuse_damaged(path, "its checksum is not that of its bytes");
    }
    Decoder arrays(all.substr(kHeaderSize));
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
    differences.compare("rows", there.rows, run.rows);
    differences.compare("columns", there.columns, run.columns);
    differences.compare("output dimensions", there.out_dims, run.out_dims);
    differences.compare("perplexity", there.perplexity, run.perplexity);
    differences.compare("theta", there.theta, run.theta);
    differences.compare("end of early exaggeration", there.stop_lying_iter, run.stop_lying_iter);
    differences.compare("momentum switch", there.mom_switch_iter, run.mom_switch_iter);
    if (there.rows == run.rows && there.columns == run.columns) {
        if (there.values != run.values) {
            differences.add("the values of the matrix are others");
        }
        if (there.names != run.names) {
            differences.add("the names of its rows are others");
        }
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
