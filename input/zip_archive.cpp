#include "input/zip_archive.h"

#include <algorithm>
#include <cstring>
#include <minizip/unzip.h>
#include <utility>

#include "util/input_error.h"

namespace ovik {

namespace {

/// The bytes of an archive as minizip reads them: like a file with a position.
struct BytesInMemory {
    std::string_view bytes;
    std::size_t position = 0;
};

BytesInMemory& of(voidpf stream) {
    return *static_cast<BytesInMemory*>(stream);
}

zlib_filefunc64_def functions_for(BytesInMemory& archive) {
    zlib_filefunc64_def functions{};
    functions.opaque = &archive;
    functions.zopen64_file = [](voidpf opaque, const void* /*path*/, int /*mode*/) -> voidpf {
        return opaque;
    };
    functions.zread_file = [](voidpf /*opaque*/, voidpf stream, void* buffer, uLong size) -> uLong {
        BytesInMemory& memory = of(stream);
        const std::size_t count =
            std::min<std::size_t>(size, memory.bytes.size() - memory.position);
        std::memcpy(buffer, memory.bytes.data() + memory.position, count);
        memory.position += count;
        return count;
    };
    functions.ztell64_file = [](voidpf /*opaque*/, voidpf stream) -> ZPOS64_T {
        return of(stream).position;
    };
    functions.zseek64_file =
        [](voidpf /*opaque*/, voidpf stream, ZPOS64_T offset, int origin) -> long {
        BytesInMemory& memory = of(stream);
        const std::size_t base = origin == ZLIB_FILEFUNC_SEEK_CUR   ? memory.position
                                 : origin == ZLIB_FILEFUNC_SEEK_END ? memory.bytes.size()
                                                                    : 0;
        if (offset > memory.bytes.size() - base) {
            return -1;
        }
        memory.position = base + offset;
        return 0;
    };
    functions.zclose_file = [](voidpf /*opaque*/, voidpf /*stream*/) { return 0; };
    functions.zerror_file = [](voidpf /*opaque*/, voidpf /*stream*/) { return 0; };
    return functions;
}

[[noreturn]] void refuse(const std::string& name, const std::string& reason) {
    throw InputError(name + ": " + reason);
}

[[noreturn]] void refuse_damaged(const std::string& name) {
    refuse(name, "the archive that it is made of is damaged or cut off\nFetch or save it anew.");
}

}  // namespace

/// The state of minizip.
class ZipArchive::Reader {
  public:
    explicit Reader(std::string_view bytes)
        : memory_{bytes},
          functions_(functions_for(memory_)),
          file_(unzOpen2_64("", &functions_)) {}

    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    ~Reader() {
        if (file_ != nullptr) {
            unzClose(file_);
        }
    }

    [[nodiscard]] unzFile file() const { return file_; }

  private:
    BytesInMemory memory_;
    zlib_filefunc64_def functions_;
    unzFile file_;
};

ZipArchive::ZipArchive(std::string name, std::string_view bytes)
    : name_(std::move(name)),
      reader_(std::make_unique<Reader>(bytes)) {
    if (reader_->file() == nullptr) {
        refuse_damaged(name_);
    }
}

ZipArchive::~ZipArchive() = default;

std::optional<std::string> ZipArchive::member(const std::string& member_name) const {
    const unzFile file = reader_->file();
    constexpr int kCaseMatters = 1;
    if (unzLocateFile(file, member_name.c_str(), kCaseMatters) != UNZ_OK) {
        return std::nullopt;
    }
    unz_file_info64 info{};
    if (unzGetCurrentFileInfo64(file, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK) {
        refuse_damaged(name_);
    }
    if ((info.flag & 1U) != 0) {
        refuse(name_, "it is protected by a password: save it without one");
    }
    if (info.uncompressed_size > kLargestMember) {
        refuse(name_, "it is too large to be unpacked: save the sheet as tab-separated text");
    }
    if (unzOpenCurrentFile(file) != UNZ_OK) {
        refuse_damaged(name_);
    }
    std::string content(info.uncompressed_size, '\0');
    std::size_t size = 0;
    int count = 1;
    while (size < content.size() && count > 0) {
        constexpr std::size_t kPortion = std::size_t{1} << 24U;
        count =
            unzReadCurrentFile(file,
                               content.data() + size,
                               static_cast<unsigned>(std::min(kPortion, content.size() - size)));
        size += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    const bool is_whole = size == content.size();
    // Tells of a wrong checksum.
    if (unzCloseCurrentFile(file) != UNZ_OK || !is_whole) {
        refuse_damaged(name_);
    }
    return content;
}

}  // namespace ovik
