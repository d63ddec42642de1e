#include "input/hdf5_file.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "util/child_trial.h"
#include "util/input_error.h"
#include "util/memory_text.h"

namespace ovik::hdf5 {

namespace {

constexpr std::size_t kMostNames = 1000;
constexpr std::size_t kMostTextBytes = std::size_t{1} << 20U;

/// What the library says of its last failure: the innermost reason.
struct Reason {
    std::string text;
    bool is_memory = false;
};

herr_t take_reason(unsigned int depth, const H5E_error2_t* error, void* taken) {
    auto& reason = *static_cast<Reason*>(taken);
    reason.is_memory = reason.is_memory || error->min_num == H5E_NOSPACE ||
                       error->min_num == H5E_CANTALLOC || error->min_num == H5E_NOIDS;
    if (depth == 0 && error->desc != nullptr) {
        try {
            reason.text = error->desc;
        } catch (...) {
            reason.is_memory = true;
        }
    }
    return 0;
}

Reason last_reason() {
    Reason reason;
    H5Ewalk2(H5E_DEFAULT, H5E_WALK_UPWARD, take_reason, &reason);
    H5Eclear2(H5E_DEFAULT);
    return reason;
}

/// What the system said, if the library quotes it between addresses and times.
std::string system_message_in(const std::string& reason) {
    constexpr std::string_view kBefore = "error message = '";
    const std::size_t before = reason.find(kBefore);
    if (before == std::string::npos) {
        return reason;
    }
    const std::size_t begin = before + kBefore.size();
    return reason.substr(begin, reason.find('\'', begin) - begin);
}

struct NameList {
    std::vector<std::string> names;
    bool has_failed = false;
};

herr_t take_name(hid_t /*group*/, const char* name, const H5L_info_t* /*info*/, void* taken) {
    auto& list = *static_cast<NameList*>(taken);
    try {
        list.names.emplace_back(name);
    } catch (...) {
        list.has_failed = true;
        return -1;
    }
    return list.names.size() < kMostNames ? 0 : 1;
}

Handle access_without_locks(const std::string& name) {
    Handle access(H5Pcreate(H5P_FILE_ACCESS), H5Pclose);
    // A file system without locks will do all the same, as will a file that this process has locked
    // by itself.
    if (!access.isOpen() || H5Pset_file_locking(access.id(), 0, 1) < 0) {
        refuse_failed(name, "cannot be opened");
    }
    return access;
}

}  // namespace

Handle::Handle(Handle&& other) noexcept : id_(std::exchange(other.id_, -1)), close_(other.close_) {}

Handle& Handle::operator=(Handle&& other) noexcept {
    std::swap(id_, other.id_);
    std::swap(close_, other.close_);
    return *this;
}

Handle::~Handle() {
    static_cast<void>(close());
}

bool Handle::close() {
    const hid_t id = std::exchange(id_, -1);
    return id < 0 || close_(id) >= 0;
}

void refuse(const std::string& place, const std::string& reason) {
    throw InputError(place + ": " + reason);
}

void refuse_failed(const std::string& place, const std::string& reason) {
    const Reason last = last_reason();
    if (last.is_memory) {
        throw std::bad_alloc();
    }
    refuse(place,
           reason + (last.text.empty() ? "" : " (" + last.text + ")") +
               "\nThe file may be damaged: fetch or write it again.");
}

void fail_written(const std::string& place) {
    const Reason last = last_reason();
    if (last.is_memory) {
        throw std::bad_alloc();
    }
    throw std::runtime_error(place + ": cannot be written" +
                             (last.text.empty() ? "" : " (" + system_message_in(last.text) + ")"));
}

void require_sound(const std::string& name,
                   std::uint64_t bytes,
                   const std::function<void()>& read) {
    constexpr std::uint64_t kLeastSeconds = 10;
    constexpr std::uint64_t kSlowestRate = 10'000'000;
    if (!survives(read, static_cast<unsigned int>(kLeastSeconds + bytes / kSlowestRate))) {
        refuse(name,
               "the names or attributes of this HDF5 file cannot be read: it is damaged\nFetch or "
               "write it again.");
    }
}

void start_library() {
    H5dont_atexit();
    H5open();
    H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
    H5PLset_loading_state(0);
}

File::File(const std::string& path, std::string name, double most_bytes, Access access)
    : name_(std::move(name)),
      most_bytes_(most_bytes) {
    start_library();
    const Handle list = access_without_locks(name_);
    const unsigned int mode = access == Access::Read ? H5F_ACC_RDONLY : H5F_ACC_RDWR;
    file_ = Handle(H5Fopen(path.c_str(), mode, list.id()), H5Fclose);
    if (!file_.isOpen()) {
        refuse_failed(name_, "this HDF5 file cannot be opened");
    }
}

void File::close() {
    if (H5Fflush(file_.id(), H5F_SCOPE_GLOBAL) < 0 || !file_.close()) {
        fail_written(name_);
    }
}

H5L_type_t File::linkAt(const std::string& path) const {
    H5L_info_t link{};
    if (H5Lget_info(file_.id(), path.c_str(), &link, H5P_DEFAULT) < 0) {
        refuse_failed(place(path), "cannot be looked up");
    }
    return link.type;
}

bool File::isLink(const std::string& name) const {
    return linkAt(name) != H5L_TYPE_HARD;
}

Kind File::kindOf(const std::string& path) const {
    std::size_t end = 0;
    while (end < path.size()) {
        end = std::min(path.find('/', end + 1), path.size());
        const std::string part = path.substr(0, end);
        const htri_t exists = H5Lexists(file_.id(), part.c_str(), H5P_DEFAULT);
        if (exists < 0) {
            refuse_failed(place(part), "cannot be looked up");
        }
        if (exists == 0) {
            return Kind::Nothing;
        }
        const H5L_type_t link = linkAt(part);
        if (link != H5L_TYPE_HARD) {
            refuse(place(part),
                   std::string("this is a link ") +
                       (link == H5L_TYPE_SOFT ? "to another place" : "into another file") +
                       ", and links are not followed\nWrite the file with the data in it.");
        }
    }
    const Handle object(H5Oopen(file_.id(), path.empty() ? "/" : path.c_str(), H5P_DEFAULT),
                        H5Oclose);
    if (!object.isOpen()) {
        refuse_failed(place(path), "cannot be opened");
    }
    const H5I_type_t type = H5Iget_type(object.id());
    return type == H5I_GROUP ? Kind::Group : type == H5I_DATASET ? Kind::Dataset : Kind::Nothing;
}

std::vector<std::string> File::namesIn(const std::string& group) const {
    NameList list;
    const Handle opened(H5Gopen2(file_.id(), group.empty() ? "/" : group.c_str(), H5P_DEFAULT),
                        H5Gclose);
    if (!opened.isOpen() ||
        H5Literate(opened.id(), H5_INDEX_NAME, H5_ITER_INC, nullptr, take_name, &list) < 0) {
        if (list.has_failed) {
            throw std::bad_alloc();
        }
        refuse_failed(place(group), "cannot be listed");
    }
    return std::move(list.names);
}

Handle File::attributeOf(const std::string& path, const std::string& attribute) const {
    const char* const object = path.empty() ? "/" : path.c_str();
    const htri_t exists = H5Aexists_by_name(file_.id(), object, attribute.c_str(), H5P_DEFAULT);
    if (exists < 0) {
        refuse_failed(place(path), "its attributes cannot be read");
    }
    if (exists == 0) {
        return {};
    }
    Handle opened(H5Aopen_by_name(file_.id(), object, attribute.c_str(), H5P_DEFAULT, H5P_DEFAULT),
                  H5Aclose);
    if (!opened.isOpen()) {
        refuse_failed(place(path), "its attribute \"" + attribute + "\" cannot be read");
    }
    return opened;
}

std::optional<std::string> File::textAttribute(const std::string& path,
                                               const std::string& attribute) const {
    const Handle opened = attributeOf(path, attribute);
    if (!opened.isOpen()) {
        return std::nullopt;
    }
    const Handle type(H5Aget_type(opened.id()), H5Tclose);
    const Handle space(H5Aget_space(opened.id()), H5Sclose);
    if (!type.isOpen() || !space.isOpen() || H5Tget_class(type.id()) != H5T_STRING ||
        H5Sget_simple_extent_npoints(space.id()) != 1) {
        return std::nullopt;
    }
    const auto fail = [&] {
        refuse_failed(place(path), "its attribute \"" + attribute + "\" cannot be read");
    };
    if (H5Tis_variable_str(type.id()) > 0) {
        char* text = nullptr;
        const Handle memory(H5Tcopy(type.id()), H5Tclose);
        if (H5Aread(opened.id(), memory.id(), static_cast<void*>(&text)) < 0) {
            fail();
        }
        std::string copy = text == nullptr ? "" : text;
        H5free_memory(text);
        return copy;
    }
    const std::size_t size = H5Tget_size(type.id());
    if (size == 0 || size > kMostTextBytes) {
        return std::nullopt;
    }
    std::string text(size, '\0');
    if (H5Aread(opened.id(), type.id(), text.data()) < 0) {
        fail();
    }
    text.resize(std::min(text.find('\0'), text.size()));
    return text;
}

std::vector<long long> File::numberAttribute(const std::string& path,
                                             const std::string& attribute) const {
    constexpr hssize_t kMost = 8;
    const Handle opened = attributeOf(path, attribute);
    if (!opened.isOpen()) {
        return {};
    }
    const Handle type(H5Aget_type(opened.id()), H5Tclose);
    const Handle space(H5Aget_space(opened.id()), H5Sclose);
    const hssize_t count = space.isOpen() ? H5Sget_simple_extent_npoints(space.id()) : 0;
    if (!type.isOpen() || H5Tget_class(type.id()) != H5T_INTEGER || count < 1 || count > kMost) {
        return {};
    }
    std::vector<long long> numbers(static_cast<std::size_t>(count));
    if (H5Aread(opened.id(), H5T_NATIVE_LLONG, numbers.data()) < 0) {
        refuse_failed(place(path), "its attribute \"" + attribute + "\" cannot be read");
    }
    return numbers;
}

void File::checkMemory(const std::string& what, double bytes, const std::string& cure) const {
    if (bytes > most_bytes_) {
        refuse(name_,
               what + " takes about " + memory_text(bytes) + " of memory, and " +
                   memory_text(std::max(most_bytes_, 0.0)) + " are left\n" + cure);
    }
}

}  // namespace ovik::hdf5
