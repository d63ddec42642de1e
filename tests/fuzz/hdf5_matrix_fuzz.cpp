#include "input/hdf5_matrix.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "input/load.h"
#include "util/input_error.h"

#include "tests/fuzz/support/input_lines.h"
#include "tests/fuzz/support/require.h"
#include "tests/support/hdf5_writer.h"
#include "tests/support/temporary_directory.h"

/// A sparse matrix whose arrays hold any numbers: it is refused, or read to the values that a plain
/// loop over the arrays gives. The file itself is sound, for what the library makes of others is
/// not for us to find.

namespace ovik {
namespace {

struct Arrays {
    bool is_by_columns = false;
    std::vector<std::int64_t> shape;
    std::vector<std::int64_t> pointers;
    std::vector<std::int64_t> indices;
    std::vector<double> data;
    std::size_t names = 0;
};

Arrays read_arrays(test::InputLines& input) {
    Arrays arrays;
    arrays.is_by_columns = input.count(1) == 1;
    for (int i = 0; i < 2; ++i) {
        arrays.shape.push_back(static_cast<std::int64_t>(input.count(40)) - 1);
    }
    arrays.names = input.count(40);
    const std::size_t pointers = input.count(41);
    const std::size_t indices = input.count(60);
    const std::size_t values = input.count(60);
    for (std::size_t i = 0; i < pointers; ++i) {
        arrays.pointers.push_back(input.wholeNumber());
    }
    for (std::size_t i = 0; i < indices; ++i) {
        arrays.indices.push_back(input.wholeNumber());
    }
    for (std::size_t i = 0; i < values; ++i) {
        arrays.data.push_back(input.number());
    }
    return arrays;
}

void write(const std::string& path, const Arrays& arrays) {
    test::Hdf5Writer file(path);
    std::vector<std::string> names;
    for (std::size_t n = 0; n < arrays.names; ++n) {
        names.push_back("c" + std::to_string(n));
    }
    file.table("obs", names);
    file.group("obsm");
    file.sparseGroup("obsm/X", arrays.is_by_columns ? "csc_matrix" : "csr_matrix", arrays.shape);
    file.numbers("obsm/X/data", arrays.data);
    file.wholeNumbers("obsm/X/indices", arrays.indices, H5T_STD_I64LE);
    file.wholeNumbers("obsm/X/indptr", arrays.pointers, H5T_STD_I64LE);
}

/// The values of arrays that were read, by a plain loop.
std::vector<double> plain_values(const Arrays& arrays) {
    const auto rows = static_cast<std::size_t>(arrays.shape[0]);
    const auto columns = static_cast<std::size_t>(arrays.shape[1]);
    std::vector<double> values(rows * columns, 0.0);
    for (std::size_t outer = 0; outer + 1 < arrays.pointers.size(); ++outer) {
        for (auto i = static_cast<std::size_t>(arrays.pointers[outer]);
             i < static_cast<std::size_t>(arrays.pointers[outer + 1]);
             ++i) {
            const auto inner = static_cast<std::size_t>(arrays.indices[i]);
            values[arrays.is_by_columns ? inner * columns + outer : outer * columns + inner] =
                arrays.data[i];
        }
    }
    return values;
}

}  // namespace
}  // namespace ovik

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ovik;
    static const test::TemporaryDirectory directory;
    test::InputLines input(data, size);
    const Arrays arrays = read_arrays(input);
    const std::string path = directory.file("m.h5ad");
    write(path, arrays);
    LoadOptions options;
    options.layer = "obsm/X";
    options.check_values = false;
    std::vector<Remark> remarks;
    try {
        const LoadedMatrix loaded = load(path, options, remarks, formats_with_hdf5());
        const MatrixReport& report = loaded.matrix.report;
        OVIK_REQUIRE(report.rows == arrays.names);
        OVIK_REQUIRE(static_cast<std::int64_t>(report.rows) == arrays.shape[0]);
        OVIK_REQUIRE(static_cast<std::int64_t>(report.columns) == arrays.shape[1]);
        const std::vector<double> expected = plain_values(arrays);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            OVIK_REQUIRE(std::isfinite(loaded.matrix.values[i]));
            OVIK_REQUIRE(loaded.matrix.values[i] == expected[i]);
        }
    } catch (const InputError& error) {
        OVIK_REQUIRE(std::string(error.what()).find("m.h5ad") != std::string::npos);
    }
    return 0;
}
