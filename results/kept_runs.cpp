#include "results/kept_runs.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
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
    std::ifstream file(pathOf(run), std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    return decoded(bytes, run.identity);
}

void KeptRuns::keep(const RunKey& run, const NumberLists& lists) const {
    std::filesystem::create_directories(directory_);
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
    std::error_code ignored;
    std::uintmax_t size = 0;
    for (const auto& entry : std::filesystem::directory_iterator(directory_, ignored)) {
        if (entry.path().extension() == kExtension) {
            size += entry.file_size(ignored);
        }
    }
    return size;
}

}  // namespace ovik
