#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <hdf5.h>
#include <optional>
#include <string>
#include <vector>

/// Files of the format HDF5, by the C interface of its library. What a file holds is trusted in
/// nothing: links are not followed, so that it leads to no other file, no code is loaded to unpack
/// it, and sizes are held against a limit before memory is taken for them. The library prints
/// nothing; what it has to say goes into messages.

namespace ovik::hdf5 {

/// Something of the library that is closed with the scope. Open unless a call failed.
class Handle {
  public:
    using Close = herr_t (*)(hid_t);

    Handle() = default;

    Handle(hid_t id, Close close) : id_(id), close_(close) {}

    Handle(Handle&& other) noexcept;
    Handle& operator=(Handle&& other) noexcept;
    ~Handle();

    [[nodiscard]] hid_t id() const { return id_; }

    [[nodiscard]] bool isOpen() const { return id_ >= 0; }

    /// @return whether that worked
    [[nodiscard]] bool close();

  private:
    hid_t id_ = -1;
    Close close_ = nullptr;
};

/// Refuses something of a file.
///
/// @param place  the file and the path in it
/// @throws InputError "PLACE: REASON"
[[noreturn]] void refuse(const std::string& place, const std::string& reason);

/// Refuses what a call of the library could not do, with what the library says about it.
///
/// @throws InputError; std::bad_alloc if the library found no memory
[[noreturn]] void refuse_failed(const std::string& place, const std::string& reason);

/// Tells that a call of the library could not write, with what it or the system says about it.
///
/// @throws std::runtime_error "PLACE: cannot be written (REASON)"; std::bad_alloc if the library
/// found no memory
[[noreturn]] void fail_written(const std::string& place);

/// What a file is opened for.
enum class Access { Read, Change };

/// What stands at a path of a file.
enum class Kind { Nothing, Group, Dataset };

/// A file that is open, and its groups.
class File {
  public:
    /// Opens a file. One that is to be changed should be nobody else's.
    ///
    /// @param name        what messages call it
    /// @param most_bytes  of memory that one thing of the file may take
    /// @throws InputError if it is none of this format, or damaged
    File(const std::string& path,
         std::string name,
         double most_bytes,
         Access access = Access::Read);

    /// Writes all changes, and closes the file.
    ///
    /// @throws std::runtime_error if that fails
    void close();

    [[nodiscard]] const std::string& name() const { return name_; }

    [[nodiscard]] hid_t id() const { return file_.id(); }

    [[nodiscard]] double mostBytes() const { return most_bytes_; }

    /// What messages call a path of the file, such as "cells.h5ad: layers/counts".
    [[nodiscard]] std::string place(const std::string& path) const { return name_ + ": " + path; }

    /// What stands at a path; "" is the root.
    ///
    /// @throws InputError if a part of the path is a link to somewhere else
    [[nodiscard]] Kind kindOf(const std::string& path) const;

    /// Whether a name in the root is a link to somewhere else.
    [[nodiscard]] bool isLink(const std::string& name) const;

    /// The names in a group in the order of the alphabet, at most a thousand.
    [[nodiscard]] std::vector<std::string> namesIn(const std::string& group) const;

    /// A text that stands at a group or dataset; nothing if there is none, or it is no text.
    [[nodiscard]] std::optional<std::string> textAttribute(const std::string& path,
                                                           const std::string& attribute) const;

    /// The whole numbers that stand at a group; empty if there are none. At most eight.
    [[nodiscard]] std::vector<long long> numberAttribute(const std::string& path,
                                                         const std::string& attribute) const;

    /// Refuses to take more memory than there is.
    ///
    /// @param what  such as "the matrix of 3 rows and 4 columns"
    /// @param cure  what takes less
    void checkMemory(const std::string& what, double bytes, const std::string& cure) const;

  private:
    [[nodiscard]] H5L_type_t linkAt(const std::string& path) const;
    [[nodiscard]] Handle attributeOf(const std::string& path, const std::string& attribute) const;

    std::string name_;
    double most_bytes_;
    Handle file_;
};

/// Refuses a file at whose texts the library crashes, or never ends, as it does at some damaged
/// ones: they are read in a process of their own first.
///
/// @param name   what messages call the file
/// @param bytes  its size
/// @param read   reads names and attributes
/// @throws InputError
void require_sound(const std::string& name, std::uint64_t bytes, const std::function<void()>& read);

/// Makes the library silent and keeps it from loading code and, where it is not yet in use, from
/// writing once more at the exit what could not be written.
void start_library();

}  // namespace ovik::hdf5
