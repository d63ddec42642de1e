#include "results/map_model.h"

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <string_view>

#include "results/byte_encoding.h"
#include "util/input_error.h"
#include "util/whole_file.h"

namespace ovik {

namespace {

constexpr std::string_view kMagic = "OVIKMODL";
constexpr std::uint64_t kVersion = 1;
/// Magic, version and length of the body.
constexpr std::size_t kHeadSize = 3 * kNumberSize;
constexpr std::size_t kDigestSize = 2 * kNumberSize;

/// A body as it is put together.
class BodyWriter {
  public:
    void put(std::size_t number) { bytes_.put(std::uint64_t{number}); }

    void put(double number) { bytes_.put(number); }

    void put(const std::string& text) {
        put(text.size());
        bytes_.put(text);
    }

    void put(const std::vector<std::string>& texts) {
        put(texts.size());
        for (const std::string& text : texts) {
            put(text);
        }
    }

    void put(const std::vector<double>& numbers) {
        put(numbers.size());
        bytes_.put(std::span<const double>(numbers));
    }

    [[nodiscard]] const std::string& bytes() const { return bytes_.bytes(); }

  private:
    ByteEncoder bytes_;
};

/// A body as it is taken apart. What asks for more than there is, is damage, whatever the digest
/// says: a length may have been written by anybody.
class BodyReader {
  public:
    explicit BodyReader(std::string_view bytes) : bytes_(bytes) {}

    /// Whether all that was read was there, and nothing is left.
    [[nodiscard]] bool isWhole() const { return !is_short_ && bytes_.left() == 0; }

    void get(std::size_t& number) { number = has(kNumberSize) ? bytes_.integer() : 0; }

    void get(double& number) { number = has(kNumberSize) ? bytes_.real() : 0.0; }

    void get(std::string& text) {
        const std::size_t length = count(1);
        text = std::string(bytes_.text(length));
    }

    void get(std::vector<std::string>& texts) {
        texts.resize(count(kNumberSize));
        for (std::string& text : texts) {
            get(text);
        }
    }

    void get(std::vector<double>& numbers) { numbers = bytes_.reals(count(kNumberSize)); }

  private:
    bool has(std::size_t size) {
        is_short_ = is_short_ || bytes_.left() < size;
        return !is_short_;
    }

    /// A length, of elements that take so many bytes at least.
    std::size_t count(std::size_t least_size) {
        std::size_t count = 0;
        get(count);
        is_short_ = is_short_ || count > bytes_.left() / least_size;
        return is_short_ ? 0 : count;
    }

    ByteDecoder bytes_;
    bool is_short_ = false;
};

/// Visits the members in the order of the file.
///
/// @param options  those of the model, name and value in turn
template <typename Model, typename Options, typename Visitor>
void visit_members(Model& model, Options& options, Visitor&& visit) {
    visit(model.rows);
    visit(model.columns);
    visit(model.out_dims);
    visit(options);
    visit(model.perplexity);
    visit(model.row_names);
    visit(model.column_names);
    visit(model.missing);
    visit(model.transformations);
    visit(model.column_means);
    visit(model.subtracted);
    visit(model.divisors);
    visit(model.centres);
    visit(model.factor);
    visit(model.largest_nearest_distance);
    visit(model.input);
    visit(model.embedding);
}

std::string encoded(const MapModel& model) {
    std::vector<std::string> options;
    for (const auto& [name, value] : model.options) {
        options.push_back(name);
        options.push_back(value);
    }
    BodyWriter body;
    visit_members(model, options, [&body](const auto& member) { body.put(member); });
    ByteEncoder file;
    file.put(kMagic);
    file.put(kVersion);
    file.put(std::uint64_t{body.bytes().size()});
    file.put(body.bytes());
    file.put(digest_of(std::string_view(file.bytes())));
    return file.take();
}

[[noreturn]] void refuse_damaged(const std::string& path, const std::string& damage) {
    throw InputError(path + ": the model is damaged: " + damage +
                     "\nWrite it anew with --model, or take another copy.");
}

std::ifstream open_model(const std::string& path) {
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open() || std::filesystem::is_directory(path)) {
        throw InputError(path + ": the model cannot be read (" +
                         std::generic_category().message(errno != 0 ? errno : EISDIR) +
                         ")\nGive the file that the run of the map wrote with --model.");
    }
    return file;
}

/// The next bytes of a file, fewer than wanted where it ends.
std::string next_bytes(std::ifstream& file, std::size_t count) {
    std::string bytes(count, '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(count));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return bytes;
}

/// @return the length of the body
/// @throws InputError if these are not the first bytes of a model, or its length is not that of the
/// file
std::size_t check_head(const std::string& path, std::string_view head) {
    if (head.substr(0, kMagic.size()) != kMagic) {
        throw InputError(path +
                         ": this is not a model\nGive the file that the run of the map wrote with "
                         "--model.");
    }
    if (head.size() < kHeadSize) {
        refuse_damaged(path, "it has " + std::to_string(head.size()) + " bytes only");
    }
    ByteDecoder numbers(head.substr(kMagic.size()));
    const std::uint64_t version = numbers.integer();
    if (version != kVersion) {
        throw InputError(path + ": this is a model of version " + std::to_string(version) +
                         ", and only those of version " + std::to_string(kVersion) +
                         " can be read\nUse the program that wrote it, or make the map anew.");
    }
    const std::uint64_t length = numbers.integer();
    std::error_code ignored;
    const std::uintmax_t size = std::filesystem::file_size(path, ignored);
    if (size < kHeadSize + kDigestSize || length != size - kHeadSize - kDigestSize) {
        refuse_damaged(path, "its " + std::to_string(size) + " bytes are not as many as it says");
    }
    return length;
}

bool are_finite(const std::vector<double>& numbers) {
    for (const double number : numbers) {
        if (!std::isfinite(number)) {
            return false;
        }
    }
    return true;
}

/// Whether a list has an element for each column, or is empty.
bool fits(const std::vector<double>& numbers, std::size_t columns) {
    return (numbers.empty() || numbers.size() == columns) && are_finite(numbers);
}

/// Whether the members are of one map.
bool is_consistent(const MapModel& model) {
    // The products below stay in range: the lists that they are compared with are in memory.
    const bool has_sizes =
        model.rows > 0 && model.columns > 0 && model.out_dims > 0 &&
        model.row_names.size() == model.rows && model.centres.size() == model.columns &&
        model.input.size() / model.rows == model.columns && model.input.size() % model.rows == 0 &&
        model.embedding.size() / model.rows == model.out_dims &&
        model.embedding.size() % model.rows == 0;
    const bool has_columns =
        (model.column_names.empty() || model.column_names.size() == model.columns) &&
        model.column_means.size() == model.columns && fits(model.column_means, model.columns) &&
        fits(model.subtracted, model.columns) && fits(model.divisors, model.columns);
    return has_sizes && has_columns && are_finite(model.centres) && are_finite(model.input) &&
           are_finite(model.embedding) && std::isfinite(model.factor) && model.perplexity >= 1.0;
}

}  // namespace

std::error_code write_map_model(const std::string& path, const MapModel& model) {
    return write_whole_text(path, encoded(model));
}

MapModel read_map_model(const std::string& path) {
    std::ifstream file = open_model(path);
    std::string bytes = next_bytes(file, kHeadSize);
    const std::size_t length = check_head(path, bytes);
    bytes += next_bytes(file, length + kDigestSize);
    const std::string_view all = bytes;
    const std::size_t end = kHeadSize + length;
    if (all.size() != end + kDigestSize ||
        ByteDecoder(all.substr(end)).digest() != digest_of(all.substr(0, end))) {
        refuse_damaged(path, "its digest is not that of its bytes");
    }
    MapModel model;
    std::vector<std::string> options;
    BodyReader body(all.substr(kHeadSize, length));
    visit_members(model, options, [&body](auto& member) { body.get(member); });
    if (!body.isWhole() || options.size() % 2 != 0 || !is_consistent(model)) {
        refuse_damaged(path, "its parts contradict one another");
    }
    for (std::size_t i = 0; i < options.size(); i += 2) {
        model.options.emplace_back(std::move(options[i]), std::move(options[i + 1]));
    }
    return model;
}

void check_model_path(const std::string& path) {
    namespace fs = std::filesystem;
    if (!fs::exists(path)) {
        return;
    }
    std::ifstream file(path, std::ios::binary);
    if (!fs::is_regular_file(path) ||
        (!fs::is_empty(path) && next_bytes(file, kMagic.size()) != kMagic)) {
        throw InputError(path +
                         ": this is not a model, and one would replace it\nGive another name with "
                         "--model, or remove it.");
    }
}

}  // namespace ovik
