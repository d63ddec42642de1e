#include "stats/sparse_components.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "stats/component_columns.h"
#include "stats/leading_eigenvectors.h"
#include "util/mixed_bits.h"
#include "util/parallel.h"

namespace ovik {

namespace {

/// Directions that are multiplied together.
constexpr std::size_t kBlock = 16;

/// A direction of which orthogonalisation leaves less than this share of the largest product is
/// made of rounding errors.
constexpr double kLeftShare = 1e-11;

constexpr std::size_t kRowGrain = 256;

/// Some vectors side by side: row-major, rows x width.
struct Block {
    std::size_t width = 0;
    std::vector<double> values;
};

/// The matrix with its columns centred, as far as products need it.
class CentredRows {
  public:
    explicit CentredRows(const SparseRows& X) : X_(X), means_(X.columns, 0.0) {
        for (std::size_t i = 0; i < X.entries(); ++i) {
            means_[X.column_of[i]] += X.values[i];
        }
        for (double& mean : means_) {
            mean /= static_cast<double>(X.rows);
        }
        divideColumns();
    }

    /// Its product with vectors, rows x width.
    [[nodiscard]] Block times(const Block& vectors) const {
        const std::size_t width = vectors.width;
        std::vector<double> of_means(width, 0.0);
        for (std::size_t j = 0; j < X_.columns; ++j) {
            for (std::size_t c = 0; c < width; ++c) {
                of_means[c] += means_[j] * vectors.values[j * width + c];
            }
        }
        Block product{width, std::vector<double>(X_.rows * width)};
        parallel_for_each(X_.rows, kRowGrain, [&](std::size_t n) {
            double* __restrict const sums = product.values.data() + n * width;
            for (std::size_t i = X_.starts[n]; i < X_.starts[n + 1]; ++i) {
                const double x = X_.values[i];
                const double* __restrict const v = vectors.values.data() + X_.column_of[i] * width;
                for (std::size_t c = 0; c < width; ++c) {
                    sums[c] += x * v[c];
                }
            }
            for (std::size_t c = 0; c < width; ++c) {
                sums[c] -= of_means[c];
            }
        });
        return product;
    }

    /// The product of its transpose with vectors, columns x width.
    [[nodiscard]] Block transposeTimes(const Block& vectors) const {
        const std::size_t width = vectors.width;
        std::vector<double> sums(width, 0.0);
        for (std::size_t n = 0; n < X_.rows; ++n) {
            for (std::size_t c = 0; c < width; ++c) {
                sums[c] += vectors.values[n * width + c];
            }
        }
        Block product{width, std::vector<double>(X_.columns * width)};
        parallel_for(shares_.size() - 1, 1, [&](std::size_t /*worker*/, IndexRange range) {
            addProducts(vectors, shares_[range.begin], shares_[range.end], product);
        });
        for (std::size_t j = 0; j < X_.columns; ++j) {
            for (std::size_t c = 0; c < width; ++c) {
                product.values[j * width + c] -= means_[j] * sums[c];
            }
        }
        return product;
    }

    /// The sum of the squares of all values, centred.
    [[nodiscard]] double squares() const {
        std::vector<double> sums(X_.columns, 0.0);
        std::vector<std::size_t> zeros(X_.columns, X_.rows);
        for (std::size_t i = 0; i < X_.entries(); ++i) {
            const std::size_t j = X_.column_of[i];
            const double deviation = X_.values[i] - means_[j];
            sums[j] += deviation * deviation;
            --zeros[j];
        }
        double sum = 0.0;
        for (std::size_t j = 0; j < X_.columns; ++j) {
            sum += sums[j] + static_cast<double>(zeros[j]) * (means_[j] * means_[j]);
        }
        return sum;
    }

  private:
    /// Adds the products of the entries in some columns, in the order of the rows.
    void addProducts(const Block& vectors,
                     std::size_t begin,
                     std::size_t end,
                     Block& product) const {
        const std::size_t width = vectors.width;
        const std::uint32_t* const columns = X_.column_of.data();
        for (std::size_t n = 0; n < X_.rows; ++n) {
            const double* __restrict const v = vectors.values.data() + n * width;
            const std::uint32_t* const last = columns + X_.starts[n + 1];
            const std::uint32_t* at = columns + X_.starts[n];
            at = begin == 0 ? at : std::lower_bound(at, last, begin);
            for (; at != last && *at < end; ++at) {
                const double x = X_.values[static_cast<std::size_t>(at - columns)];
                double* __restrict const sums = product.values.data() + *at * width;
                for (std::size_t c = 0; c < width; ++c) {
                    sums[c] += x * v[c];
                }
            }
        }
    }

    /// Divides the columns into shares of as many entries each, for threads; an element of a
    /// product is of one share, so that they change no sum.
    void divideColumns() {
        std::vector<std::size_t> entries(X_.columns, 0);
        for (const std::uint32_t column : X_.column_of) {
            ++entries[column];
        }
        const auto workers = static_cast<std::size_t>(worker_count(X_.columns, kBlock));
        shares_.push_back(0);
        std::size_t seen = 0;
        for (std::size_t j = 0; j < X_.columns; ++j) {
            seen += entries[j];
            if (shares_.size() < workers && seen * workers >= shares_.size() * X_.entries()) {
                shares_.push_back(j + 1);
            }
        }
        shares_.push_back(X_.columns);
    }

    const SparseRows& X_;
    std::vector<double> means_;
    /// Where shares of the columns begin, and the number of columns.
    std::vector<std::size_t> shares_;
};

/// A number from -1 to 1 for each index.
double pseudo_random(std::uint64_t index) {
    // Indices are spread by the step that `mixed_bits` adds itself, once more.
    constexpr std::uint64_t kStep = 0x9e3779b97f4a7c15U;
    return static_cast<double>(mixed_bits(index * kStep) >> 11U) * 0x1p-52 - 1.0;
}

/// The products of the vectors of one block with those of another: left.width x right.width.
std::vector<double> products(const Block& left, const Block& right) {
    std::vector<double> sums(left.width * right.width, 0.0);
    const std::size_t rows = left.values.size() / left.width;
    for (std::size_t d = 0; d < rows; ++d) {
        const double* const b = right.values.data() + d * right.width;
        for (std::size_t a = 0; a < left.width; ++a) {
            const double x = left.values[d * left.width + a];
            double* __restrict const row = sums.data() + a * right.width;
            for (std::size_t c = 0; c < right.width; ++c) {
                row[c] += x * b[c];
            }
        }
    }
    return sums;
}

double length_of_column(const Block& block, std::size_t c) {
    double squares = 0.0;
    for (std::size_t i = c; i < block.values.size(); i += block.width) {
        squares += block.values[i] * block.values[i];
    }
    return std::sqrt(squares);
}

/// The directions found so far, each orthogonal to the others and of length 1.
class Directions {
  public:
    explicit Directions(std::size_t rows) : rows_(rows) {}

    [[nodiscard]] std::size_t size() const { return size_; }

    [[nodiscard]] const std::vector<Block>& blocks() const { return blocks_; }

    [[nodiscard]] const Block& last() const { return blocks_.back(); }

    /// Adds a block that is orthogonal to all others already. It may have no vectors.
    void add(Block block) {
        size_ += block.width;
        blocks_.push_back(std::move(block));
    }

    /// Takes the parts along all directions away from vectors.
    ///
    /// @return these parts, a matrix for each block
    std::vector<std::vector<double>> removeFrom(Block& vectors) const {
        std::vector<std::vector<double>> parts(blocks_.size());
        parallel_for_each(blocks_.size(), 1, [&](std::size_t i) {
            if (blocks_[i].width > 0) {
                parts[i] = products(blocks_[i], vectors);
            }
        });
        parallel_for_each(rows_, kRowGrain, [&](std::size_t d) {
            double* const w = vectors.values.data() + d * vectors.width;
            for (std::size_t i = 0; i < blocks_.size(); ++i) {
                const double* const v = blocks_[i].values.data() + d * blocks_[i].width;
                for (std::size_t a = 0; a < blocks_[i].width; ++a) {
                    subtract(v[a], parts[i].data() + a * vectors.width, vectors.width, w);
                }
            }
        });
        return parts;
    }

    /// Vectors of the space of the directions.
    ///
    /// @param coordinates  size x count
    [[nodiscard]] std::vector<double> combined(const std::vector<double>& coordinates,
                                               std::size_t count) const {
        std::vector<double> vectors(rows_ * count, 0.0);
        parallel_for_each(rows_, kRowGrain, [&](std::size_t d) {
            double* const sums = vectors.data() + d * count;
            const double* coordinate = coordinates.data();
            for (const Block& block : blocks_) {
                for (std::size_t a = 0; a < block.width; ++a, coordinate += count) {
                    add(block.values[d * block.width + a], coordinate, count, sums);
                }
            }
        });
        return vectors;
    }

  private:
    static void subtract(double factor,
                         const double* __restrict part,
                         std::size_t count,
                         double* __restrict from) {
        for (std::size_t c = 0; c < count; ++c) {
            from[c] -= factor * part[c];
        }
    }

    static void add(double factor,
                    const double* __restrict part,
                    std::size_t count,
                    double* __restrict to) {
        for (std::size_t c = 0; c < count; ++c) {
            to[c] += factor * part[c];
        }
    }

    std::size_t rows_;
    std::size_t size_ = 0;
    std::vector<Block> blocks_;
};

/// Takes from a column of a block what it has along another one, of length 1.
///
/// @return how much that was
double make_orthogonal(Block& block, std::size_t to, std::size_t column) {
    const std::size_t width = block.width;
    double product = 0.0;
    for (std::size_t i = 0; i < block.values.size(); i += width) {
        product += block.values[i + to] * block.values[i + column];
    }
    for (std::size_t i = 0; i < block.values.size(); i += width) {
        block.values[i + column] -= product * block.values[i + to];
    }
    return product;
}

/// Some columns of a block.
Block columns_of(const Block& block, const std::vector<std::size_t>& columns) {
    const std::size_t rows = block.values.size() / std::max<std::size_t>(block.width, 1);
    Block some{columns.size(), std::vector<double>(rows * columns.size())};
    for (std::size_t d = 0; d < rows; ++d) {
        for (std::size_t k = 0; k < columns.size(); ++k) {
            some.values[d * columns.size() + k] = block.values[d * block.width + columns[k]];
        }
    }
    return some;
}

/// Makes the vectors of a block orthogonal to one another and of length 1, twice for rounding.
/// Those of which next to nothing is left are left out.
///
/// @param least  length below which a vector is made of rounding errors
/// @return the lengths and parts that were taken away: block.width before x after, by which the
/// vectors after make those before
std::vector<std::vector<double>> orthonormalise(Block& block, double least) {
    const std::size_t width = block.width;
    const std::size_t rows = block.values.size() / std::max<std::size_t>(width, 1);
    std::vector<std::size_t> kept;
    std::vector<std::vector<double>> parts(width, std::vector<double>(width, 0.0));
    for (std::size_t c = 0; c < width; ++c) {
        for (int pass = 0; pass < 2; ++pass) {
            for (std::size_t k = 0; k < kept.size(); ++k) {
                parts[c][k] += make_orthogonal(block, kept[k], c);
            }
        }
        const double length = length_of_column(block, c);
        if (length > least) {
            for (std::size_t d = 0; d < rows; ++d) {
                block.values[d * width + c] /= length;
            }
            parts[c][kept.size()] = length;
            kept.push_back(c);
        }
    }
    block = columns_of(block, kept);
    return parts;
}

/// The space of the directions as it grows, and the covariances in it.
class KrylovSpace {
  public:
    KrylovSpace(const CentredRows& X, std::size_t columns)
        : X_(X),
          columns_(columns),
          directions_(columns) {
        addRandomBlock();
    }

    [[nodiscard]] const Directions& directions() const { return directions_; }

    /// Whether every direction that there is has been found.
    [[nodiscard]] bool isWhole() const { return is_whole_; }

    /// Multiplies the last block, and adds what is new of the product.
    void grow() {
        const std::size_t width = directions_.last().width;
        Block next = X_.transposeTimes(X_.times(directions_.last()));
        for (std::size_t c = 0; c < width; ++c) {
            largest_product_ = std::max(largest_product_, length_of_column(next, c));
        }
        std::vector<std::vector<double>> parts = directions_.removeFrom(next);
        const std::vector<std::vector<double>> rest = directions_.removeFrom(next);
        for (std::size_t i = 0; i < parts.size(); ++i) {
            for (std::size_t at = 0; at < parts[i].size(); ++at) {
                parts[i][at] += rest[i][at];
            }
        }
        multiplied_ = directions_.size();
        last_width_ = width;
        parts_.push_back(std::move(parts));
        coupling_ = orthonormalise(next, kLeftShare * largest_product_);
        if (next.width > 0) {
            // What rounding left along the others counts for more once a short vector is made long.
            directions_.removeFrom(next);
            orthonormalise(next, kLeftShare);
        }
        if (next.width == 0) {
            coupling_.assign(width, std::vector<double>(width, 0.0));
            addRandomBlock();
        } else {
            directions_.add(std::move(next));
        }
    }

    /// Directions whose products are known.
    [[nodiscard]] std::size_t multiplied() const { return multiplied_; }

    /// The best components among the directions whose products are known.
    [[nodiscard]] LeadingEigenvectors components(std::size_t count) const {
        const std::size_t m = multiplied_;
        std::vector<double> covariances(m * m);
        std::size_t column = 0;
        for (std::size_t block = 0; block < parts_.size(); ++block) {
            const std::size_t width = directions_.blocks()[block].width;
            std::size_t row = 0;
            for (std::size_t i = 0; i <= block; ++i) {
                const std::size_t height = directions_.blocks()[i].width;
                for (std::size_t k = 0; k < height * width; ++k) {
                    const std::size_t r = row + k / width;
                    const std::size_t c = column + k % width;
                    covariances[r * m + c] = parts_[block][i][k];
                    covariances[c * m + r] = parts_[block][i][k];
                }
                row += height;
            }
            column += width;
        }
        return leading_eigenvectors(std::move(covariances), m, count);
    }

    /// The largest residual of components, as a share of the largest eigenvalue.
    [[nodiscard]] double residual(const LeadingEigenvectors& found) const {
        const std::size_t count = found.values.size();
        const std::size_t first = multiplied_ - last_width_;
        double largest = 0.0;
        for (std::size_t c = 0; c < count; ++c) {
            double squares = 0.0;
            for (std::size_t k = 0; k < last_width_; ++k) {
                double sum = 0.0;
                for (std::size_t a = 0; a < last_width_; ++a) {
                    sum += coupling_[a][k] * found.vectors[(first + a) * count + c];
                }
                squares += sum * sum;
            }
            largest = std::max(largest, std::sqrt(squares));
        }
        return found.values[0] > 0.0 ? largest / found.values[0] : 0.0;
    }

  private:
    /// Adds pseudo-random directions, for there are no others to begin or go on with.
    void addRandomBlock() {
        Block block{kBlock, std::vector<double>(columns_ * kBlock)};
        for (double& value : block.values) {
            value = pseudo_random(drawn_++);
        }
        directions_.removeFrom(block);
        directions_.removeFrom(block);
        orthonormalise(block, kLeftShare * std::sqrt(static_cast<double>(columns_)));
        is_whole_ = block.width == 0;
        if (!is_whole_) {
            directions_.add(std::move(block));
        }
    }

    const CentredRows& X_;
    std::size_t columns_;
    Directions directions_;
    std::uint64_t drawn_ = 0;
    double largest_product_ = 0.0;
    /// What the products of each block have along the blocks up to it.
    std::vector<std::vector<std::vector<double>>> parts_;
    /// What the products of the last block have along the one behind it: width x width.
    std::vector<std::vector<double>> coupling_;
    std::size_t multiplied_ = 0;
    std::size_t last_width_ = 0;
    bool is_whole_ = false;
};

/// The components of the directions that were found.
PrincipalComponents components_of(const SparseRows& X,
                                  const CentredRows& centred,
                                  const Directions& directions,
                                  LeadingEigenvectors leading,
                                  std::size_t count) {
    // Directions whose products are not known have no part in the components.
    leading.vectors.resize(directions.size() * count, 0.0);
    const double divisor = static_cast<double>(X.rows) - 1.0;
    PrincipalComponents found;
    found.count = count;
    found.total_variance = centred.squares() / divisor;
    found.loadings = directions.combined(leading.vectors, count);
    for (std::size_t c = 0; c < count; ++c) {
        const bool varies = leading.values[c] > kVaryingShare * leading.values[0];
        found.varying += varies ? 1 : 0;
        found.variances.push_back(varies ? leading.values[c] / divisor : 0.0);
        if (varies) {
            normalise_column(found.loadings, count, c);
        } else {
            clear_column(found.loadings, count, c);
        }
    }
    found.scores = centred.times({count, found.loadings}).values;
    return found;
}

}  // namespace

SparseComponents sparse_components(
    const SparseRows& X,
    std::size_t count,
    const std::function<void(std::size_t directions, std::size_t most)>& on_step) {
    const CentredRows centred(X);
    KrylovSpace space(centred, X.columns);
    const std::size_t most = most_directions(count);
    SparseComponents result;
    LeadingEigenvectors leading;
    while (true) {
        space.grow();
        result.directions = space.multiplied();
        if (on_step) {
            on_step(result.directions, most);
        }
        const bool is_last = space.isWhole() || result.directions >= most;
        if (result.directions < count && !is_last) {
            continue;
        }
        leading = space.components(count);
        result.residual = space.residual(leading);
        if (is_last || result.residual <= kComponentTolerance) {
            break;
        }
    }
    result.components = components_of(X, centred, space.directions(), std::move(leading), count);
    return result;
}

}  // namespace ovik
