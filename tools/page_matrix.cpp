#include "tools/page_matrix.h"

#include <string>

#include "util/console.h"

namespace ovik::tool {

namespace {

/// 0 where no page with a matrix is wanted.
std::size_t bytes_of_value(const Options& options) {
    if (!options.plots || options.fit.metric == MetricKind::Precomputed) {
        return 0;
    }
    return options.page_data == PageData::Full ? 2 : options.page_data == PageData::Small ? 1 : 0;
}

/// What is said of a matrix that is too large.
std::string too_large_line(std::size_t values, std::size_t bytes) {
    return "Chart page: without the matrix, which has " + std::to_string(values) +
           " values, more than " + std::to_string(kMostPageBytes / bytes) +
           (bytes > 1 && values <= kMostPageBytes ? "; --page-data small has room for it" : "");
}

}  // namespace

std::size_t page_bytes(const Options& options, std::size_t values) {
    const std::size_t bytes = bytes_of_value(options) * values;
    return bytes <= kMostPageBytes ? bytes : 0;
}

std::shared_ptr<const QuantisedMatrix> settle_page_matrix(const LoadedMatrix& loaded,
                                                          const Options& options) {
    const InspectedMatrix& matrix = loaded.matrix;
    const MatrixView<const double> values{
        matrix.values.get(), matrix.report.rows, matrix.report.columns};
    const std::size_t bytes = bytes_of_value(options);
    if (page_bytes(options, values.size()) == 0) {
        if (bytes > 0 && values.size() > 0) {
            print_info(too_large_line(values.size(), bytes));
        }
        return nullptr;
    }
    return std::make_shared<const QuantisedMatrix>(
        quantised(values, matrix.column_names, static_cast<int>(8 * bytes), matrix.filled));
}

}  // namespace ovik::tool
