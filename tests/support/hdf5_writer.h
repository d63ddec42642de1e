#pragma once

#include <cstdint>
#include <hdf5.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "input/hdf5_file.h"

namespace ovik::test {

/// Writes HDF5 files, sound ones and others.
class Hdf5Writer {
  public:
    using Extents = std::vector<hsize_t>;

    explicit Hdf5Writer(const std::string& path) : file_(created(path)) {}

    Hdf5Writer(const Hdf5Writer&) = delete;
    Hdf5Writer& operator=(const Hdf5Writer&) = delete;

    ~Hdf5Writer() { H5Fclose(file_); }

    [[nodiscard]] hid_t id() const { return file_; }

    void group(const std::string& path) {
        H5Gclose(opened(H5Gcreate2(file_, path.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT)));
    }

    /// A group that is a sparse matrix by its attributes.
    void sparseGroup(const std::string& path,
                     const std::string& encoding,
                     const std::vector<std::int64_t>& shape) {
        group(path);
        textAttribute(path, "encoding-type", encoding);
        numberAttribute(path, "shape", shape);
    }

    void numbers(const std::string& path,
                 const std::vector<double>& values,
                 Extents extents = {},
                 hid_t type = H5T_IEEE_F64LE) {
        write(path,
              extents.empty() ? Extents{values.size()} : extents,
              type,
              H5T_NATIVE_DOUBLE,
              values.data());
    }

    void wholeNumbers(const std::string& path,
                      const std::vector<std::int64_t>& values,
                      hid_t type = H5T_STD_I32LE) {
        write(path, {values.size()}, type, H5T_NATIVE_INT64, values.data());
    }

    void texts(const std::string& path, const std::vector<std::string>& texts) {
        std::vector<const char*> bytes;
        for (const std::string& text : texts) {
            bytes.push_back(text.c_str());
        }
        const hid_t type = textType(H5T_VARIABLE);
        write(path, {texts.size()}, type, type, bytes.data());
        H5Tclose(type);
    }

    /// Texts that take so many bytes each, filled up with zeros.
    void fixedTexts(const std::string& path, std::vector<std::string> texts, std::size_t length) {
        std::string bytes;
        for (std::string& text : texts) {
            text.resize(length, '\0');
            bytes += text;
        }
        const hid_t type = textType(length);
        write(path, {texts.size()}, type, type, bytes.data());
        H5Tclose(type);
    }

    /// A table such as `obs`, with names of rows or columns.
    void table(const std::string& path, const std::vector<std::string>& names) {
        group(path);
        textAttribute(path, "_index", "_index");
        texts(path + "/_index", names);
    }

    void textAttribute(const std::string& path, const std::string& name, const std::string& text) {
        const hid_t type = textType(H5T_VARIABLE);
        const hid_t space = H5Screate(H5S_SCALAR);
        const char* const bytes = text.c_str();
        attribute(path, name, type, space, static_cast<const void*>(&bytes));
        H5Sclose(space);
        H5Tclose(type);
    }

    void numberAttribute(const std::string& path,
                         const std::string& name,
                         const std::vector<std::int64_t>& numbers) {
        const hsize_t extent = numbers.size();
        const hid_t space = H5Screate_simple(1, &extent, nullptr);
        attribute(path, name, H5T_NATIVE_INT64, space, numbers.data());
        H5Sclose(space);
    }

    /// Datasets from here on come in chunks of these extents; none for one piece.
    void setChunks(const Extents& chunks) { chunks_ = chunks; }

    /// Chunks from here on are packed by gzip.
    void setGzip(bool is_packed) { is_packed_ = is_packed; }

  private:
    static hid_t created(const std::string& path) {
        // Once the library is in use, it is too late to say that it has nothing to do at the exit.
        hdf5::start_library();
        return opened(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT));
    }

    static hid_t opened(hid_t id) {
        if (id < 0) {
            throw std::runtime_error("HDF5 file of a test cannot be written");
        }
        return id;
    }

    static hid_t textType(std::size_t length) {
        const hid_t type = opened(H5Tcopy(H5T_C_S1));
        H5Tset_size(type, length);
        return type;
    }

    void write(const std::string& path,
               const Extents& extents,
               hid_t type,
               hid_t memory_type,
               const void* values) {
        const hid_t space =
            opened(H5Screate_simple(static_cast<int>(extents.size()), extents.data(), nullptr));
        const hid_t creation = H5Pcreate(H5P_DATASET_CREATE);
        if (chunks_.size() == extents.size()) {
            H5Pset_chunk(creation, static_cast<int>(chunks_.size()), chunks_.data());
            if (is_packed_) {
                H5Pset_shuffle(creation);
                H5Pset_deflate(creation, 6);
            }
        }
        const hid_t dataset = opened(
            H5Dcreate2(file_, path.c_str(), type, space, H5P_DEFAULT, creation, H5P_DEFAULT));
        if (H5Sget_simple_extent_npoints(space) > 0) {
            opened(H5Dwrite(dataset, memory_type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values));
        }
        H5Dclose(dataset);
        H5Pclose(creation);
        H5Sclose(space);
    }

    void attribute(const std::string& path,
                   const std::string& name,
                   hid_t type,
                   hid_t space,
                   const void* value) {
        const hid_t object = opened(H5Oopen(file_, path.c_str(), H5P_DEFAULT));
        const hid_t id =
            opened(H5Acreate2(object, name.c_str(), type, space, H5P_DEFAULT, H5P_DEFAULT));
        opened(H5Awrite(id, type, value));
        H5Aclose(id);
        H5Oclose(object);
    }

    hid_t file_;
    Extents chunks_;
    bool is_packed_ = false;
};

/// The matrix of the file that `write_cells` writes, 4 cells by 3 genes.
inline const std::vector<double> kCells = {0, 2, 0, 1, 0, 3, 0, 0, 0, 4, 5, 6};

/// An AnnData file of 4 cells: X by rows, layers/by_columns by columns, both sparse, layers/dense,
/// and obsm/X_pca of two components.
inline void write_cells(Hdf5Writer& file) {
    file.table("obs", {"AAA-1", "CCC-1", "GGG-1", "TTT-1"});
    file.table("var", {"ACT1", "CDC28", "RPL3"});
    file.sparseGroup("X", "csr_matrix", {4, 3});
    file.numbers("X/data", {2, 1, 3, 4, 5, 6}, {}, H5T_IEEE_F32LE);
    file.wholeNumbers("X/indices", {1, 0, 2, 0, 1, 2});
    file.wholeNumbers("X/indptr", {0, 1, 3, 3, 6});
    file.group("layers");
    file.sparseGroup("layers/by_columns", "csc_matrix", {4, 3});
    file.numbers("layers/by_columns/data", {1, 4, 2, 5, 3, 6});
    file.wholeNumbers("layers/by_columns/indices", {1, 3, 0, 3, 1, 3});
    file.wholeNumbers("layers/by_columns/indptr", {0, 2, 4, 6}, H5T_STD_I64LE);
    file.numbers("layers/dense", kCells, {4, 3});
    file.group("obsm");
    file.numbers("obsm/X_pca", {0.5, 1, -2, 4, 8, -16, 0.25, 3}, {4, 2}, H5T_IEEE_F32LE);
}

}  // namespace ovik::test
