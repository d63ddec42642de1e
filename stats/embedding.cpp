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

/// @throws InputError unless there is one of something for every row, or none
void require_one_per_row(std::size_t count,
                         std::size_t rows,
                         const char* one,
                         const char* several) {
    if (count != 0 && count != rows) {
        throw InputError("there are " + counted(count, one, several) + " for " +
                         std::to_string(rows) + " rows\nGive a " + one +
                         " for every row, or none.");
    }
}

}  // namespace

WrittenResults Embedding::write(const ResultSettings& settings) const {
    require_one_per_row(settings.labels.size(), rows_, "label", "labels");
    for (const LabelColumn& column : settings.label_columns) {
        require_one_per_row(column.texts.size(), rows_, "label", "labels");
        require_one_per_row(column.numbers.size(), rows_, "number", "numbers");
    }
    require_one_per_row(settings.functions.size(), rows_, "function", "functions");
    require_one_per_row(settings.genes.size(), rows_, "gene", "genes");
    const std::vector<std::string> numbers =
        names().empty() ? row_numbers(rows_) : std::vector<std::string>();
    return write_results<double>(
        settings,
        settings.out_dir + settings.out_name,
        {points(), names().empty() ? numbers : names(), input_columns_, options_, fit_.report});
}

}  // namespace ovik
