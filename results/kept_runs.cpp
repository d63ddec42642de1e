#include "results/kept_runs.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "results/byte_encoding.h"
#include "results/digest.h"
#include "util/whole_file.h"

namespace ovik {

namespace {

constexpr std::string_view kMagic = "OVIKKEPT";
constexpr std::uint64_t kVersion = 1;
constexpr const char* kExtension = ".run";

std::string encoded(const std::string& identity, const NumberLists& lists) {
    ByteEncoder file;
    const auto put_text = [&file](const std::string& text) {
        file.put(std::uint64_t{text.size()});
        file.put(text);
    };
    file.put(kMagic);
    file.put(kVersion);
    put_text(identity);
    file.put(std::uint64_t{lists.size()});
    for (const auto& [name, numbers] : lists) {
        put_text(name);
        file.put(std::uint64_t{numbers.size()});
        file.put(std::span<const double>(numbers));
    }
    file.put(checksum_of(file.bytes()));
    return file.take();
}

/// Reads what bytes hold as far as there are any.
class CheckedDecoder {
  public:
    explicit CheckedDecoder(std::string_view bytes) : bytes_(bytes) {}

    [[nodiscard]] bool isGood() const { return is_good_; }

    [[nodiscard]] std::size_t left() const { return bytes_.left(); }

    std::uint64_t integer() { return take(kNumberSize) ? bytes_.integer() : 0; }

    std::string_view text(std::uint64_t length) {
        return take(length) ? bytes_.text(length) : std::string_view();
    }

    std::vector<double> reals(std::uint64_t count) {
        const bool is_there = count <= bytes_.left() / kNumberSize && take(count * kNumberSize);
        is_good_ = is_good_ && is_there;
        return is_there ? bytes_.reals(count) : std::vector<double>();
    }

  private:
    bool take(std::uint64_t size) {
        is_good_ = is_good_ && size <= bytes_.left();
        return is_good_;
    }

    ByteDecoder bytes_;
    bool is_good_ = true;
};

/// The bytes of a file; none if there is no such file.
///
/// @throws std::runtime_error if it is there and cannot be read
std::optional<std::string> bytes_of(const std::string& path) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                               &std::fclose);
    if (file == nullptr && errno == ENOENT) {
        return std::nullopt;
    }
    std::string bytes;
    std::array<char, 65536> piece{};
    for (std::size_t count = 1; file != nullptr && count > 0;) {
        count = std::fread(piece.data(), 1, piece.size(), file.get());
        bytes.append(piece.data(), count);
    }
    if (file == nullptr || std::ferror(file.get()) != 0) {
        throw std::runtime_error(path + ": the finished run that is kept there cannot be read (" +
                                 std::generic_category().message(errno) +
                                 ")\nMake it readable; or remove it, and it is made again.");
    }
    return bytes;
}

/// @return none if the bytes are not those of a run of this identity
std::optional<NumberLists> decoded(std::string_view bytes, const std::string& identity) {
    if (bytes.size() < kMagic.size() + kNumberSize || !bytes.starts_with(kMagic)) {
        return std::nullopt;
    }
    const std::string_view body = bytes.substr(0, bytes.size() - kNumberSize);
    if (ByteDecoder(bytes.substr(body.size())).integer() != checksum_of(body)) {
        return std::nullopt;
    }
    CheckedDecoder file(body.substr(kMagic.size()));
    if (file.integer() != kVersion || file.text(file.integer()) != identity) {
        return std::nullopt;
    }
    NumberLists lists;
    for (std::uint64_t left = file.integer(); left > 0 && file.isGood(); --left) {
        const std::string name(file.text(file.integer()));
        lists[name] = file.reals(file.integer());
    }
    return file.isGood() && file.left() == 0 ? std::optional(std::move(lists)) : std::nullopt;
}

}  // namespace

std::string KeptRuns::pathOf(const RunKey& run) const {
    constexpr std::size_t kDigits = 16;
    return directory_ + "/" + run.name + "_" +
           hexadecimal(digest_of(std::string_view(run.identity))).substr(0, kDigits) + kExtension;
}

std::optional<NumberLists> KeptRuns::find(const RunKey& run) const {
    const std::optional<std::string> bytes = bytes_of(pathOf(run));
    return bytes ? decoded(*bytes, run.identity) : std::nullopt;
}

void KeptRuns::keep(const RunKey& run, const NumberLists& lists) const {
    // Where that fails, so does writing the file, which says why.
    std::error_code ignored;
    std::filesystem::create_directories(directory_, ignored);
    const std::string path = pathOf(run);
    const std::string bytes = encoded(run.identity, lists);
    WholeFile file(path);
    if (file.stream() != nullptr) {
        std::fwrite(bytes.data(), 1, bytes.size(), file.stream());
    }
    if (const std::error_code failure = file.commit()) {
        throw std::system_error(failure, "cannot keep a finished run: " + path);
    }
}

std::uintmax_t KeptRuns::size() const {
    std::error_code failure;
    std::uintmax_t size = 0;
    std::filesystem::directory_iterator entry(directory_, failure);
    for (; !failure && entry != std::filesystem::directory_iterator(); entry.increment(failure)) {
        std::error_code is_gone;
        const std::uintmax_t bytes = entry->file_size(is_gone);
        if (entry->path().extension() == kExtension && !is_gone) {
            size += bytes;
        }
    }
    return size;
}

}  // namespace ovik
