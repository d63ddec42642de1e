#pragma once

#include <vector>

#include "input/load.h"
#include "util/matrix_view.h"

namespace ovik::bench {

/// Reads a matrix as the command does, but that missing values are the means of their rows.
inline LoadedMatrix loaded(const char* path) {
    std::vector<Remark> remarks;
    LoadOptions options;
    options.missing = MissingPolicy::RowMean;
    return load(path, options, remarks);
}

inline MatrixView<double> view(const LoadedMatrix& loaded) {
    const MatrixReport& shape = loaded.matrix.report;
    return {loaded.matrix.values.get(), shape.rows, shape.columns};
}

}  // namespace ovik::bench
