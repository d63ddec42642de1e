#include "stats/embedding.h"

#include "stats/run_results.h"
#include "util/counted.h"
#include "util/input_error.h"

namespace ovik {

namespace {

std::vector<std::string> row_numbers(std::size_t rows) {
    std::vector<std::string> numbers(rows);
    for (std::size_t n = 0; n < rows; ++n) {
        numbers[n] = std::to_string(n + 1);
    }
    return numbers;
}

}  // namespace

WrittenResults Embedding::write(const ResultSettings& settings) const {
    if (!settings.labels.empty() && settings.labels.size() != rows_) {
        throw InputError("there are " + counted(settings.labels.size(), "label", "labels") +
                         " for " + std::to_string(rows_) +
                         " rows\nGive a label for every row, or none.");
    }
    const std::vector<std::string> numbers =
        names().empty() ? row_numbers(rows_) : std::vector<std::string>();
    return write_results<double>(
        settings,
        settings.out_dir + settings.out_name,
        {points(), names().empty() ? numbers : names(), input_columns_, options_, fit_.report});
}

}  // namespace ovik
