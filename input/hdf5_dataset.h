#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "input/hdf5_file.h"

namespace ovik::hdf5 {

/// Takes which share of something large has been read, from 0 to 1; may be empty.
using OnShare = std::function<void(double share)>;

/// An array of a file whose layout has been checked: it lies in this file, and nothing but
/// gzip, shuffling and checksums was done to its bytes.
class Dataset {
  public:
    /// @throws InputError if there is none at the path, or one that is not read
    Dataset(const File& file, const std::string& path);

    /// The extents; empty for a single value.
    [[nodiscard]] const std::vector<std::size_t>& shape() const { return shape_; }

    /// The product of the extents.
    [[nodiscard]] std::size_t size() const { return size_; }

    /// What messages call it.
    [[nodiscard]] const std::string& place() const { return place_; }

    /// Whether its elements are texts.
    [[nodiscard]] bool holdsTexts() const;

    /// Whether its elements are whole numbers.
    [[nodiscard]] bool holdsWholeNumbers() const;

    /// @throws InputError unless its elements are numbers
    void requireNumbers() const;

    /// @throws InputError unless its elements are whole numbers
    void requireWholeNumbers() const;

    /// @throws InputError unless it has so many dimensions
    void requireDimensions(std::size_t count) const;

    /// Reads all numbers, the last index running fastest.
    ///
    /// @param values    `size` of them
    /// @param on_share  is told after every few rows
    void readAll(double* values, const OnShare& on_share = {}) const;

    /// Reads the numbers of an array of one dimension from `begin` to `end` - 1. A whole number
    /// that 64 bits do not hold becomes the nearest that they do.
    void read(std::size_t begin, std::size_t end, double* numbers) const;
    void read(std::size_t begin, std::size_t end, std::int64_t* numbers) const;

    /// Calls `take(index, text)` for all texts of an array of one dimension, or for a single one.
    /// Texts of fixed length end in front of their first zero byte.
    void forEachText(const std::function<void(std::size_t, std::string)>& take) const;

    /// Numbers that are read together: so many that no part of the file is unpacked twice.
    [[nodiscard]] std::size_t block() const { return block_; }

  private:
    void checkStorage(const File& file, const std::string& path);
    void checkFilters(hid_t creation) const;
    void checkChunks(const File& file, hid_t creation);
    void checkChunkCount() const;
    void checkPackedChunks() const;
    void checkPackedChunk(const std::vector<hsize_t>& offset) const;
    void open(const File& file, const std::string& path);
    void keepChunk(const File& file, const std::string& path);
    [[nodiscard]] Handle selection(std::size_t begin, std::size_t end) const;
    [[nodiscard]] std::size_t rowsTogether() const;
    void readTexts(std::size_t begin,
                   std::size_t end,
                   const std::function<void(std::size_t, std::string)>& take) const;
    void readVariableTexts(const Handle& space,
                           std::size_t begin,
                           std::size_t end,
                           const std::function<void(std::size_t, std::string)>& take) const;

    std::string place_;
    Handle dataset_;
    Handle type_;
    std::vector<std::size_t> shape_;
    std::size_t size_ = 1;
    std::size_t block_;
    /// Of a dataset in chunks: their extents and bytes, unpacked.
    std::vector<hsize_t> chunk_;
    std::size_t chunk_bytes_ = 0;
};

}  // namespace ovik::hdf5
