#include "input/hdf5_dataset.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <new>
#include <utility>

#include <zlib.h>

#include "util/counted.h"

namespace ovik::hdf5 {

namespace {

/// Elements that are read together where chunks do not say otherwise.
constexpr std::size_t kBlock = std::size_t{1} << 20U;

/// Chunks of more packed bytes are unpacked once to see how long they become, for gzip's bytes may
/// grow a thousandfold, and the library has no limit of its own.
constexpr hsize_t kTrustedBytes = std::size_t{1} << 18U;

/// Of the unpacked chunks of an array the library keeps so much.
constexpr std::size_t kCacheBytes = std::size_t{1} << 20U;

/// What an array has in the place of a text of any length: its length, the address of its heap, of
/// up to 16 bytes, and its place there.
constexpr double kHeapReference = 4.0 + 16.0 + 4.0;

/// How many texts are read together, and, of those of fixed length, how many bytes.
constexpr std::size_t kTexts = 4096;
constexpr std::size_t kTextBlockBytes = std::size_t{1} << 24U;

constexpr std::size_t kMostTextLength = std::size_t{1} << 16U;

/// The names of ways to pack bytes that other libraries bring.
std::string filter_name(H5Z_filter_t filter) {
    static const std::map<H5Z_filter_t, std::string> kNames = {
        {H5Z_FILTER_SZIP, "szip"},
        {H5Z_FILTER_NBIT, "nbit"},
        {H5Z_FILTER_SCALEOFFSET, "scaleoffset"},
        {307, "bzip2"},
        {32000, "lzf"},
        {32001, "blosc"},
        {32004, "lz4"},
        {32008, "bitshuffle"},
        {32013, "zfp"},
        {32015, "zstd"},
        {32026, "blosc2"}};
    const auto name = kNames.find(filter);
    return name != kNames.end() ? name->second : "number " + std::to_string(filter);
}

/// What texts of any length may take while some of them are read, for elements of a damaged file
/// may all be the same long text; and those texts, of which the library loses some where it fails.
struct TextMemory {
    std::size_t left = kTexts * 4096;
    bool is_spent = false;
    std::vector<std::unique_ptr<char[]>> texts;
};

void* take_text_memory(std::size_t size, void* memory) {
    auto& budget = *static_cast<TextMemory*>(memory);
    if (size > budget.left) {
        budget.is_spent = true;
        return nullptr;
    }
    try {
        budget.texts.push_back(std::make_unique<char[]>(size));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    budget.left -= size;
    return budget.texts.back().get();
}

/// All are given back together.
void give_back(void* /*text*/, void* /*memory*/) {}

/// Counts what gzip'd bytes unpack to.
class UnpackedSize {
  public:
    UnpackedSize() { is_ready_ = inflateInit(&stream_) == Z_OK; }

    UnpackedSize(const UnpackedSize&) = delete;
    UnpackedSize& operator=(const UnpackedSize&) = delete;

    ~UnpackedSize() {
        if (is_ready_) {
            inflateEnd(&stream_);
        }
    }

    /// Whether the bytes unpack to no more than so many. Those that are damaged do: the library
    /// tells of them.
    bool isWithin(std::vector<unsigned char>& packed, std::size_t most) {
        if (!is_ready_) {
            throw std::bad_alloc();
        }
        std::array<unsigned char, 1U << 15U> unpacked{};
        stream_.next_in = packed.data();
        stream_.avail_in = static_cast<unsigned int>(packed.size());
        int status = Z_OK;
        while (status == Z_OK && stream_.total_out <= most) {
            stream_.next_out = unpacked.data();
            stream_.avail_out = unpacked.size();
            status = inflate(&stream_, Z_NO_FLUSH);
        }
        return stream_.total_out <= most;
    }

  private:
    z_stream stream_{};
    bool is_ready_ = false;
};

}  // namespace

Dataset::Dataset(const File& file, const std::string& path)
    : place_(file.place(path)),
      block_(kBlock) {
    switch (file.kindOf(path)) {
        case Kind::Nothing:
            refuse(place_, "is not there\nThe file may be damaged: fetch or write it again.");
        case Kind::Group:
            refuse(place_, "is a group, and an array is needed");
        case Kind::Dataset:
            break;
    }
    open(file, path);
    checkStorage(file, path);
}

void Dataset::open(const File& file, const std::string& path) {
    dataset_ = Handle(H5Dopen2(file.id(), path.c_str(), H5P_DEFAULT), H5Dclose);
    if (!dataset_.isOpen()) {
        refuse_failed(place_, "cannot be opened");
    }
    type_ = Handle(H5Dget_type(dataset_.id()), H5Tclose);
    const Handle space(H5Dget_space(dataset_.id()), H5Sclose);
    const int rank = space.isOpen() ? H5Sget_simple_extent_ndims(space.id()) : -1;
    if (!type_.isOpen() || rank < 0) {
        refuse_failed(place_, "its shape cannot be read");
    }
    if (H5Sget_simple_extent_type(space.id()) == H5S_NULL) {
        refuse(place_, "is empty: it has no elements");
    }
    std::vector<hsize_t> extents(static_cast<std::size_t>(rank));
    if (rank > 0 && H5Sget_simple_extent_dims(space.id(), extents.data(), nullptr) < 0) {
        refuse_failed(place_, "its shape cannot be read");
    }
    constexpr std::size_t kMost = std::numeric_limits<std::ptrdiff_t>::max() / 16;
    for (const hsize_t extent : extents) {
        if (extent != 0 && size_ > kMost / extent) {
            refuse(place_, "is larger than any memory");
        }
        shape_.push_back(extent);
        size_ *= extent;
    }
}

void Dataset::checkStorage(const File& file, const std::string& path) {
    const Handle creation(H5Dget_create_plist(dataset_.id()), H5Pclose);
    if (!creation.isOpen()) {
        refuse_failed(place_, "its layout cannot be read");
    }
    const H5D_layout_t layout = H5Pget_layout(creation.id());
    if (layout == H5D_VIRTUAL || H5Pget_external_count(creation.id()) > 0) {
        refuse(place_,
               "its numbers are in other files, which are not opened\nWrite the file with the data "
               "in it.");
    }
    checkFilters(creation.id());
    if (size_ > 0 && H5Dget_storage_size(dataset_.id()) == 0) {
        refuse(place_,
               "has a shape and no elements: they were never written\nWrite the file again.");
    }
    if (layout == H5D_CHUNKED) {
        checkChunks(file, creation.id());
        if (holdsTexts() && chunk_bytes_ > kCacheBytes) {
            keepChunk(file, path);
        }
    }
}

/// Opens the array once more, so that one chunk at a time stays unpacked. Texts are read fewer at a
/// time than a large chunk has, which would be unpacked for each of these times.
void Dataset::keepChunk(const File& file, const std::string& path) {
    const Handle access(H5Pcreate(H5P_DATASET_ACCESS), H5Pclose);
    if (!access.isOpen() || H5Pset_chunk_cache(access.id(),
                                               H5D_CHUNK_CACHE_NSLOTS_DEFAULT,
                                               chunk_bytes_,
                                               H5D_CHUNK_CACHE_W0_DEFAULT) < 0) {
        refuse_failed(place_, "cannot be opened");
    }
    // What is open already would be opened with the settings that it has.
    dataset_ = Handle();
    dataset_ = Handle(H5Dopen2(file.id(), path.c_str(), access.id()), H5Dclose);
    if (!dataset_.isOpen()) {
        refuse_failed(place_, "cannot be opened");
    }
}

void Dataset::checkFilters(hid_t creation) const {
    const int count = H5Pget_nfilters(creation);
    bool is_deflated = false;
    for (int i = 0; i < count; ++i) {
        unsigned int flags = 0;
        std::size_t parameters = 0;
        unsigned int settings = 0;
        const H5Z_filter_t filter = H5Pget_filter2(creation,
                                                   static_cast<unsigned int>(i),
                                                   &flags,
                                                   &parameters,
                                                   nullptr,
                                                   0,
                                                   nullptr,
                                                   &settings);
        if (filter < 0) {
            refuse_failed(place_, "its filters cannot be read");
        }
        if (filter != H5Z_FILTER_DEFLATE && filter != H5Z_FILTER_SHUFFLE &&
            filter != H5Z_FILTER_FLETCHER32) {
            refuse(place_,
                   "is packed by the filter " + filter_name(filter) +
                       ", and gzip alone is read\nWrite it again so (in Python: "
                       "anndata.read_h5ad(\"FILE\").write_h5ad(\"FILE\", compression=\"gzip\")).");
        }
        // What `checkPackedChunk` looks at would not be what gzip is given.
        if (is_deflated && filter != H5Z_FILTER_FLETCHER32) {
            refuse(place_, "is packed by gzip and then changed again\nWrite the file again.");
        }
        is_deflated = is_deflated || filter == H5Z_FILTER_DEFLATE;
    }
}

void Dataset::checkChunks(const File& file, hid_t creation) {
    chunk_.resize(shape_.size());
    if (H5Pget_chunk(creation, static_cast<int>(chunk_.size()), chunk_.data()) !=
            static_cast<int>(chunk_.size()) ||
        std::find(chunk_.begin(), chunk_.end(), hsize_t{0}) != chunk_.end()) {
        refuse_failed(place_, "its chunks cannot be read");
    }
    // Of texts of any length the library says what a pointer takes.
    double bytes = H5Tis_variable_str(type_.id()) > 0
                       ? kHeapReference
                       : static_cast<double>(H5Tget_size(type_.id()));
    for (const hsize_t extent : chunk_) {
        bytes *= static_cast<double>(extent);
    }
    file.checkMemory("a chunk of it", 2.0 * bytes, "Write the file with smaller chunks.");
    chunk_bytes_ = static_cast<std::size_t>(bytes);
    checkChunkCount();
    // A chunk that does not fit the cache would be unpacked for every block that it has a part of.
    if (shape_.size() == 1) {
        block_ = std::max<std::size_t>(kBlock / chunk_[0], 1) * chunk_[0];
    }
    if (size_ > 0 && H5Pget_nfilters(creation) > 0) {
        checkPackedChunks();
    }
}

/// A shape costs a damaged file nothing, and chunks that are not there would be zeros: so there
/// have to be as many as the shape needs, before anything is done for each of them.
///
/// @throws InputError if there are fewer
void Dataset::checkChunkCount() const {
    hsize_t needed = 1;
    for (std::size_t d = 0; d < chunk_.size(); ++d) {
        needed *= shape_[d] / chunk_[d] + (shape_[d] % chunk_[d] == 0 ? 0 : 1);
    }
    const Handle space(H5Dget_space(dataset_.id()), H5Sclose);
    hsize_t written = 0;
    if (!space.isOpen() || H5Dget_num_chunks(dataset_.id(), space.id(), &written) < 0) {
        refuse_failed(place_, "its chunks cannot be counted");
    }
    if (written < needed) {
        refuse(place_,
               "has " + std::to_string(written) + " of the " + std::to_string(needed) +
                   " chunks of its shape: the others were never written\nWrite the file again.");
    }
}

/// Looks at every chunk before the library unpacks any.
void Dataset::checkPackedChunks() const {
    std::vector<hsize_t> offset(chunk_.size(), 0);
    std::size_t dimension = 0;
    do {
        checkPackedChunk(offset);
        dimension = chunk_.size();
        while (dimension-- > 0) {
            offset[dimension] += chunk_[dimension];
            if (offset[dimension] < shape_[dimension]) {
                break;
            }
            offset[dimension] = 0;
        }
    } while (dimension < chunk_.size());
}

/// @throws InputError if a chunk unpacks to more bytes than a chunk has
void Dataset::checkPackedChunk(const std::vector<hsize_t>& offset) const {
    hsize_t packed_bytes = 0;
    if (H5Dget_chunk_storage_size(dataset_.id(), offset.data(), &packed_bytes) < 0) {
        refuse_failed(place_, "a chunk of it cannot be found");
    }
    if (packed_bytes <= kTrustedBytes) {
        return;
    }
    // Bytes that gzip cannot shorten grow by next to nothing.
    const hsize_t most = chunk_bytes_ + chunk_bytes_ / 100 + 1024;
    const auto is_bomb = [&] {
        if (packed_bytes > most) {
            return true;
        }
        std::vector<unsigned char> packed(packed_bytes);
        std::uint32_t left_out = 0;
        if (H5Dread_chunk(dataset_.id(), H5P_DEFAULT, offset.data(), &left_out, packed.data()) <
            0) {
            refuse_failed(place_, "cannot be read");
        }
        return !UnpackedSize().isWithin(packed, most);
    };
    if (is_bomb()) {
        refuse(place_,
               "a chunk unpacks to more bytes than a chunk has\nThe file is damaged, or made to "
               "fill the memory: fetch or write it again.");
    }
}

bool Dataset::holdsTexts() const {
    return H5Tget_class(type_.id()) == H5T_STRING;
}

bool Dataset::holdsWholeNumbers() const {
    return H5Tget_class(type_.id()) == H5T_INTEGER;
}

void Dataset::requireNumbers() const {
    if ((!holdsWholeNumbers() && H5Tget_class(type_.id()) != H5T_FLOAT) ||
        H5Tget_size(type_.id()) > sizeof(long double)) {
        refuse(place_, "its elements are no numbers\nName an array of numbers.");
    }
}

void Dataset::requireWholeNumbers() const {
    if (!holdsWholeNumbers() || H5Tget_size(type_.id()) > sizeof(std::int64_t)) {
        refuse(place_,
               "its elements should be whole numbers\nThe file may be damaged: fetch or write it "
               "again.");
    }
}

void Dataset::requireDimensions(std::size_t count) const {
    if (shape_.size() != count) {
        refuse(place_,
               "has " + counted(shape_.size(), "dimension", "dimensions") + ", and " +
                   std::to_string(count) + (count == 1 ? " is needed" : " are needed"));
    }
}

Handle Dataset::selection(std::size_t begin, std::size_t end) const {
    Handle space(H5Dget_space(dataset_.id()), H5Sclose);
    if (!space.isOpen()) {
        refuse_failed(place_, "cannot be read");
    }
    std::vector<hsize_t> start(shape_.size(), 0);
    std::vector<hsize_t> count(shape_.begin(), shape_.end());
    if (!shape_.empty()) {
        start[0] = begin;
        count[0] = end - begin;
        if (H5Sselect_hyperslab(
                space.id(), H5S_SELECT_SET, start.data(), nullptr, count.data(), nullptr) < 0) {
            refuse_failed(place_, "cannot be read");
        }
    }
    return space;
}

namespace {

void read_block(hid_t dataset,
                const Handle& from,
                std::size_t count,
                hid_t memory_type,
                void* numbers,
                const std::string& place) {
    const hsize_t extent = count;
    const Handle to(H5Screate_simple(1, &extent, nullptr), H5Sclose);
    if (!to.isOpen() ||
        H5Dread(dataset, memory_type, to.id(), from.id(), H5P_DEFAULT, numbers) < 0) {
        refuse_failed(place, "cannot be read");
    }
}

}  // namespace

/// Rows, or elements of one dimension, that are read together: whole chunks, so that none is
/// unpacked twice.
std::size_t Dataset::rowsTogether() const {
    const std::size_t elements = size_ / shape_[0];
    const std::size_t rows = std::max<std::size_t>(kBlock / elements, 1);
    return chunk_.empty() ? rows : (rows + chunk_[0] - 1) / chunk_[0] * chunk_[0];
}

void Dataset::readAll(double* values, const OnShare& on_share) const {
    if (size_ == 0) {
        return;
    }
    const std::size_t rows = shape_.empty() ? 1 : shape_[0];
    const std::size_t elements = size_ / rows;
    const std::size_t together = shape_.empty() ? 1 : rowsTogether();
    for (std::size_t begin = 0; begin < rows; begin += together) {
        const std::size_t end = std::min(begin + together, rows);
        read_block(dataset_.id(),
                   selection(begin, end),
                   (end - begin) * elements,
                   H5T_NATIVE_DOUBLE,
                   values + begin * elements,
                   place_);
        if (on_share) {
            on_share(static_cast<double>(end) / static_cast<double>(rows));
        }
    }
}

void Dataset::read(std::size_t begin, std::size_t end, double* numbers) const {
    if (begin < end) {
        read_block(
            dataset_.id(), selection(begin, end), end - begin, H5T_NATIVE_DOUBLE, numbers, place_);
    }
}

void Dataset::read(std::size_t begin, std::size_t end, std::int64_t* numbers) const {
    if (begin < end) {
        read_block(
            dataset_.id(), selection(begin, end), end - begin, H5T_NATIVE_INT64, numbers, place_);
    }
}

void Dataset::forEachText(const std::function<void(std::size_t, std::string)>& take) const {
    if (!holdsTexts()) {
        refuse(place_, "its elements should be texts");
    }
    std::size_t together = kTexts;
    if (H5Tis_variable_str(type_.id()) <= 0) {
        const std::size_t length = H5Tget_size(type_.id());
        if (length == 0 || length > kMostTextLength) {
            refuse(place_, "its texts have a length of " + std::to_string(length) + " bytes each");
        }
        together = std::min(kTexts, kTextBlockBytes / length);
    }
    for (std::size_t begin = 0; begin < size_; begin += together) {
        readTexts(begin, std::min(begin + together, size_), take);
    }
}

void Dataset::readTexts(std::size_t begin,
                        std::size_t end,
                        const std::function<void(std::size_t, std::string)>& take) const {
    const Handle from = selection(begin, end);
    if (H5Tis_variable_str(type_.id()) > 0) {
        readVariableTexts(from, begin, end, take);
        return;
    }
    const std::size_t length = H5Tget_size(type_.id());
    std::vector<char> bytes(length * (end - begin));
    read_block(dataset_.id(), from, end - begin, type_.id(), bytes.data(), place_);
    for (std::size_t i = begin; i < end; ++i) {
        const char* const text = &bytes[(i - begin) * length];
        take(i, std::string(text, strnlen(text, length)));
    }
}

void Dataset::readVariableTexts(const Handle& from,
                                std::size_t begin,
                                std::size_t end,
                                const std::function<void(std::size_t, std::string)>& take) const {
    std::vector<char*> texts(end - begin, nullptr);
    const hsize_t extent = texts.size();
    const Handle to(H5Screate_simple(1, &extent, nullptr), H5Sclose);
    const Handle transfer(H5Pcreate(H5P_DATASET_XFER), H5Pclose);
    TextMemory memory;
    if (!to.isOpen() || !transfer.isOpen() ||
        H5Pset_vlen_mem_manager(transfer.id(), take_text_memory, &memory, give_back, nullptr) < 0) {
        refuse_failed(place_, "its texts cannot be read");
    }
    const herr_t read = H5Dread(dataset_.id(),
                                type_.id(),
                                to.id(),
                                from.id(),
                                transfer.id(),
                                static_cast<void*>(texts.data()));
    if (memory.is_spent) {
        refuse(place_, "its texts are longer than names are\nThe file may be damaged.");
    }
    if (read < 0) {
        refuse_failed(place_, "its texts cannot be read");
    }
    for (std::size_t i = begin; i < end; ++i) {
        const char* const text = texts[i - begin];
        take(i, text == nullptr ? std::string() : std::string(text));
    }
}

}  // namespace ovik::hdf5
