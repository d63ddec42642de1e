#include "stats/tsne.h"

#include <algorithm>
#include <utility>

#include "util/format.h"
#include "util/input_error.h"
#include "util/matrix_reader.h"
#include "util/parallel.h"

namespace ovik {

char gInstantiationGuardTSNE = 0;

namespace {

using Rows = std::vector<std::vector<double>>;

/// @throws InputError if the rows cannot be an input matrix
void check_shape(const std::string& path, const Rows& rows, const std::string* names) {
    if (rows.empty()) {
        throw InputError("\"" + path +
                         "\" cannot be opened or holds no rows: the first line is taken as the "
                         "header, and every "
                         "further line that is neither empty nor a comment should be a row");
    }
    const std::size_t columns = rows.front().size();
    for (std::size_t n = 0; n < rows.size(); ++n) {
        if (rows[n].size() < columns) {
            throw InputError("\"" + path + "\": row \"" + names[n] + "\" (number " +
                             std::to_string(n + 1) + ") has " + std::to_string(rows[n].size()) +
                             " values, but the first row has " + std::to_string(columns) +
                             ": fill its missing values in, or take the row out");
        }
    }
}

}  // namespace

template <typename T>
TSNE<T>::TSNE(std::string out_dir,
              std::string out_name,
              std::string out_suffix,
              std::string data_title)
    : out_dir(std::move(out_dir)),
      out_name(std::move(out_name)),
      out_base(this->out_dir + this->out_name),
      out_suffix(std::move(out_suffix)),
      data_title(std::move(data_title)) {}

template <typename T>
TSNE<T>::~TSNE() = default;

template <typename T>
void TSNE<T>::init(std::string path, int max_iter, char delimiter) {
    this->max_iter = max_iter;
    perplexity = FitOptions().perplexity;
    theta = FitOptions().theta;
    Rows rows;
    const std::size_t first_name = row_names.size();
    try {
        read_matrix_w_index<double>(rows, row_names, path, 1, delimiter);
        check_shape(path, rows, row_names.data() + first_name);
        const std::size_t columns = rows.front().size();
        const std::size_t count = rows.size() * columns;
        // What a caller has put there since `finish` is to be released as well.
        replaceArray(X, holdsInput(), new_array(count, 0.0));
    } catch (...) {
        row_names.resize(first_name);
        throw;
    }
    input_is_released_ = false;
    prepared_X_ = nullptr;
    N = static_cast<int>(rows.size());
    D = static_cast<int>(rows.front().size());
    const std::size_t columns = rows.front().size();
    parallel_for_each(rows.size(), 1, [&](std::size_t n) {
        std::copy_n(rows[n].begin(), columns, X + n * columns);
    });
}

template <typename T>
bool TSNE<T>::holdsInput() const {
    return !input_is_released_ || N != 0 || D != 0;
}

/// Whether the array at `Y` is this object's to release: an address that lies where the one
/// released last lay is taken for that one, which must not be released again.
template <typename T>
bool TSNE<T>::holdsEmbedding() const {
    return Y != released_Y_;
}

template <typename T>
void TSNE<T>::finish() {
    if (holdsInput()) {
        delete[] X;
    }
    if (holdsEmbedding()) {
        delete[] Y;
    }
    input_is_released_ = true;
    released_Y_ = Y;
    prepared_X_ = nullptr;
    N = 0;
    D = 0;
    replaced_.clear();
}

/// Puts a new array in the place of `X` or `Y`; an earlier one waits for `finish`.
template <typename T>
void TSNE<T>::replaceArray(double*& member, bool is_owned, std::unique_ptr<double[]> fresh) {
    if (member != nullptr && is_owned) {
        replaced_.emplace_back(member);
    }
    member = fresh.release();
}

template class TSNE<float>;
template class TSNE<double>;

}  // namespace ovik
