#include "tools/h5ad_result.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <limits>
#include <new>
#include <stdexcept>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include <nlohmann/json.hpp>

#ifdef OVIK_READS_HDF5
    #include "input/hdf5_dataset.h"
    #include "input/hdf5_file.h"
    #include "input/hdf5_names.h"
#endif
#include "util/available_memory.h"
#include "util/file_place.h"
#include "util/input_error.h"
#include "util/partial_entry.h"
#include "util/write_all.h"

namespace ovik::tool {

#ifdef OVIK_READS_HDF5

namespace {

using hdf5::File;
using hdf5::Handle;
using hdf5::Kind;

constexpr const char* kMap = "obsm/X_tsne";
constexpr const char* kFacts = "uns/tsne";
constexpr double kAnyMemory = std::numeric_limits<double>::infinity();

bool are_numbers(const std::vector<std::string>& names) {
    for (std::size_t n = 0; n < names.size(); ++n) {
        if (names[n] != std::to_string(n + 1)) {
            return false;
        }
    }
    return true;
}

bool is_same_file(const std::string& one, const std::string& other) {
    std::error_code error;
    return std::filesystem::equivalent(one, other, error) && !error;
}

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw InputError("--into: " + path + ": " + reason);
}

void check_rows(const std::string& path,
                const std::vector<std::string>& names,
                const std::vector<std::string>& row_names) {
    if (names.size() != row_names.size()) {
        refuse(path,
               "its obs has " + std::to_string(names.size()) + " rows, and the map " +
                   std::to_string(row_names.size()) + "\nName the file of these rows.");
    }
    if (are_numbers(row_names)) {
        return;
    }
    const auto [name, row] = std::mismatch(names.begin(), names.end(), row_names.begin());
    if (name != names.end()) {
        refuse(path,
               "row " + std::to_string(name - names.begin() + 1) + " is \"" + *name +
                   "\" in its obs, and \"" + *row +
                   "\" in the map\nName the file of these rows, in their order.");
    }
}

/// @throws std::runtime_error with what the library says, if something could not be written
void require(bool holds, const std::string& what) {
    if (!holds) {
        hdf5::fail_written(what);
    }
}

Handle text_type() {
    Handle type(H5Tcopy(H5T_C_S1), H5Tclose);
    require(type.isOpen() && H5Tset_size(type.id(), H5T_VARIABLE) >= 0 &&
                H5Tset_cset(type.id(), H5T_CSET_UTF8) >= 0,
            "a text");
    return type;
}

void set_text_attribute(const Handle& object, const char* name, const std::string& text) {
    const Handle type = text_type();
    const Handle space(H5Screate(H5S_SCALAR), H5Sclose);
    const Handle attribute(
        H5Acreate2(object.id(), name, type.id(), space.id(), H5P_DEFAULT, H5P_DEFAULT), H5Aclose);
    const char* const bytes = text.c_str();
    require(attribute.isOpen() &&
                H5Awrite(attribute.id(), type.id(), static_cast<const void*>(&bytes)) >= 0,
            name);
}

void set_encoding(const Handle& object, const std::string& type, const std::string& version) {
    set_text_attribute(object, "encoding-type", type);
    set_text_attribute(object, "encoding-version", version);
}

void remove(const File& file, const std::string& path) {
    if (file.kindOf(path) != Kind::Nothing) {
        require(H5Ldelete(file.id(), path.c_str(), H5P_DEFAULT) >= 0, path);
    }
}

/// Makes a group, or leaves one that is there.
void make_group(const File& file, const std::string& path) {
    if (file.kindOf(path) == Kind::Group) {
        return;
    }
    const Handle group(H5Gcreate2(file.id(), path.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                       H5Gclose);
    require(group.isOpen(), path);
    set_encoding(group, "dict", "0.1.0");
}

/// Writes an array, or, without extents, a single value.
void write_dataset(const File& file,
                   const std::string& path,
                   const std::vector<hsize_t>& extents,
                   hid_t type,
                   hid_t memory_type,
                   const void* values,
                   const std::string& encoding) {
    const Handle space(
        extents.empty()
            ? H5Screate(H5S_SCALAR)
            : H5Screate_simple(static_cast<int>(extents.size()), extents.data(), nullptr),
        H5Sclose);
    const Handle dataset(
        H5Dcreate2(
            file.id(), path.c_str(), type, space.id(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
        H5Dclose);
    require(space.isOpen() && dataset.isOpen() &&
                H5Dwrite(dataset.id(), memory_type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values) >= 0,
            path);
    set_encoding(dataset, encoding, "0.2.0");
}

void write_fact(const File& file, const std::string& path, const nlohmann::json& value) {
    if (value.is_string()) {
        const auto text = value.get<std::string>();
        const char* const bytes = text.c_str();
        const Handle type = text_type();
        write_dataset(
            file, path, {}, type.id(), type.id(), static_cast<const void*>(&bytes), "string");
    } else if (value.is_number_integer()) {
        const auto number = value.get<std::int64_t>();
        write_dataset(file, path, {}, H5T_STD_I64LE, H5T_NATIVE_INT64, &number, "numeric-scalar");
    } else if (value.is_number()) {
        const auto number = value.get<double>();
        write_dataset(file, path, {}, H5T_IEEE_F64LE, H5T_NATIVE_DOUBLE, &number, "numeric-scalar");
    } else if (value.is_array()) {
        std::vector<double> numbers;
        for (const nlohmann::json& element : value) {
            numbers.push_back(element.is_number() ? element.get<double>()
                                                  : std::numeric_limits<double>::quiet_NaN());
        }
        const std::vector<hsize_t> extents = {numbers.size()};
        write_dataset(
            file, path, extents, H5T_IEEE_F64LE, H5T_NATIVE_DOUBLE, numbers.data(), "array");
    }
}

/// @throws std::runtime_error if the file that was copied has got other rows since it was checked
void check_rows_again(const File& file, const Digest& rows) {
    const std::vector<std::string> names = hdf5::read_index(file, "obs");
    if (digest_of(names) != rows) {
        throw std::runtime_error(
            "its obs has got other rows, or another order, since the run began");
    }
}

/// Changes the copy of a file.
void write_map(const std::string& copy,
               const std::string& name,
               const Digest& rows,
               MatrixView<const double> embedding,
               Precision precision,
               const RunFacts& facts) {
    // What is read of it was found to fit in memory before the run, unless it has been changed.
    File file(copy, name, kAnyMemory, hdf5::Access::Change);
    check_rows_again(file, rows);
    make_group(file, "obsm");
    remove(file, kMap);
    write_dataset(file,
                  kMap,
                  {embedding.rows, embedding.columns},
                  precision == Precision::Float ? H5T_IEEE_F32LE : H5T_IEEE_F64LE,
                  H5T_NATIVE_DOUBLE,
                  embedding.values,
                  "array");
    make_group(file, "uns");
    remove(file, kFacts);
    make_group(file, kFacts);
    for (const auto& [fact, value] : facts) {
        write_fact(file, std::string(kFacts) + "/" + fact, nlohmann::json::parse(value));
    }
    file.close();
}

/// A descriptor that is closed with the scope.
class Descriptor {
  public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    ~Descriptor() {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
    }

    [[nodiscard]] int get() const { return descriptor_; }

  private:
    int descriptor_;
};

[[noreturn]] void throw_system_error() {
    throw std::system_error(errno, std::generic_category());
}

int open_to_read(const std::string& path) {
    const int file = static_cast<int>(TEMP_FAILURE_RETRY(open(path.c_str(), O_RDONLY | O_CLOEXEC)));
    if (file < 0) {
        throw_system_error();
    }
    return file;
}

/// Keeps programs that take locks, as Python's do, from changing a file as long as it is open.
///
/// @throws std::runtime_error if one of them has it open to change it
void lock_to_read(const Descriptor& file) {
    if (flock(file.get(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        throw std::runtime_error("another program has it open to change it");
    }
}

/// Copies all bytes, and the permissions.
void copy_file(const Descriptor& source, const PartialEntry& to) {
    constexpr mode_t kPermissions = 0777;
    constexpr std::size_t kBlock = std::size_t{1} << 20U;

    struct stat status {};

    if (fstat(source.get(), &status) != 0) {
        throw_system_error();
    }
    std::vector<char> bytes(kBlock);
    while (true) {
        const ssize_t count = TEMP_FAILURE_RETRY(read(source.get(), bytes.data(), bytes.size()));
        if (count < 0) {
            throw_system_error();
        }
        if (count == 0) {
            break;
        }
        if (!write_all(to.descriptor(), {bytes.data(), static_cast<std::size_t>(count)})) {
            throw_system_error();
        }
    }
    // On a file system without permissions or owners these fail, which does not matter.
    [[maybe_unused]] int result = fchmod(to.descriptor(), status.st_mode & kPermissions);
    result = fchown(to.descriptor(), status.st_uid, status.st_gid);
}

void check_lock(const std::string& path, const std::string& place) {
    try {
        const Descriptor file(open_to_read(place));
        lock_to_read(file);
    } catch (const std::runtime_error& error) {
        refuse(path, std::string(error.what()) + "\nClose it there.");
    }
}

}  // namespace

Digest check_h5ad_result(const Options& options, const std::vector<std::string>& row_names) {
    const std::string& path = options.into;
    if (path.empty()) {
        return {};
    }
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) {
        refuse(path, "there is no such file\nName an .h5ad file of the rows of the matrix.");
    }
    const std::string place = place_behind_links(path).path;
    if (access(place.c_str(), W_OK) != 0 || access(directory_of(place).c_str(), W_OK) != 0) {
        refuse(path,
               "it, or its directory, cannot be written to (" +
                   std::generic_category().message(errno) + ")");
    }
    check_lock(path, place);
    const std::string name = "--into: " + path;
    const double most_bytes = options.force ? kAnyMemory : available_memory().bytes;
    hdf5::require_sound(name, std::filesystem::file_size(place), [&] {
        hdf5::read_index(File(path, name, most_bytes), "obs");
    });
    const File file(path, name, most_bytes);
    if (file.kindOf("obs") == Kind::Nothing) {
        refuse(path, "this is no .h5ad file: it has no obs");
    }
    const std::vector<std::string> names = hdf5::read_index(file, "obs");
    check_rows(path, names, row_names);
    for (const char* const group : {"obsm", "uns"}) {
        if (file.kindOf(group) == Kind::Dataset) {
            refuse(path, std::string(group) + " is no group\nWrite the file again.");
        }
    }
    // Links to elsewhere are refused here, and not once all is computed.
    const bool has_map = file.kindOf(kMap) != Kind::Nothing;
    const bool has_facts = file.kindOf(kFacts) != Kind::Nothing;
    if (!is_same_file(path, options.matrix) && (has_map || has_facts)) {
        refuse(path,
               "it has " + std::string(has_map ? kMap : kFacts) +
                   " already, of another matrix than " + options.matrix +
                   "\nTake it out, or name another file.");
    }
    return digest_of(names);
}

std::string write_h5ad_result(const std::string& path,
                              const Digest& rows,
                              MatrixView<const double> embedding,
                              Precision precision,
                              const RunFacts& facts) {
    try {
        const std::string place = place_behind_links(path).path;
        remove_left_over_files(place);
        PartialEntry copy(place, PartialEntry::Kind::File);
        if (!copy.isOpen()) {
            throw_system_error();
        }
        const Descriptor source(open_to_read(place));
        lock_to_read(source);
        copy_file(source, copy);
        write_map(copy.path(), path, rows, embedding, precision, facts);
        if (TEMP_FAILURE_RETRY(fsync(copy.descriptor())) != 0 || !copy.moveTo(place)) {
            throw_system_error();
        }
    } catch (const std::system_error& error) {
        return error.code().message();
    } catch (const std::bad_alloc&) {
        return std::generic_category().message(ENOMEM);
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

#else

Digest check_h5ad_result(const Options& options, const std::vector<std::string>& /*row_names*/) {
    if (!options.into.empty()) {
        throw InputError("--into: this command was built without HDF5\nLeave it away.");
    }
    return {};
}

std::string write_h5ad_result(const std::string& /*path*/,
                              const Digest& /*rows*/,
                              MatrixView<const double> /*embedding*/,
                              Precision /*precision*/,
                              const RunFacts& /*facts*/) {
    return "this command was built without HDF5";
}

#endif

}  // namespace ovik::tool
