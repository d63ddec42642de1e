#include "stats/neighbour_order.h"

#include <algorithm>
#include <span>
#include <vector>

#include "util/malloc_array.h"

namespace ovik {

namespace {

constexpr std::uint32_t kNotVisited = UINT32_MAX;

class NeighbourWalk {
  public:
    NeighbourWalk(const std::uint32_t* neighbours, std::size_t N, std::size_t count)
        : neighbours_(neighbours),
          count_(count),
          block_of_row_(N, kNotVisited) {
        visited_.reserve(N);
    }

    void visitAll() {
        for (std::size_t row = 0; row < block_of_row_.size(); ++row) {
            if (block_of_row_[row] != kNotVisited) {
                continue;
            }
            const std::uint32_t nearest = count_ > 0 ? neighbours_[row * count_] : kNotVisited;
            if (nearest != kNotVisited && block_of_row_[nearest] != kNotVisited) {
                block_of_row_[row] = block_of_row_[nearest];
                attached_.push_back(static_cast<std::uint32_t>(row));
            } else {
                walkFrom(static_cast<std::uint32_t>(row));
            }
        }
    }

    /// Writes the rows block by block, those that are attached to it behind those of its walk.
    void write(std::uint32_t* order) const {
        std::vector<std::size_t> next(blocks_ + 1, 0);
        for (const std::uint32_t block : block_of_row_) {
            ++next[block + 1];
        }
        for (std::size_t block = 0; block < blocks_; ++block) {
            next[block + 1] += next[block];
        }
        for (const auto& rows : {std::span(visited_), std::span(attached_)}) {
            for (const std::uint32_t row : rows) {
                order[next[block_of_row_[row]]++] = row;
            }
        }
    }

  private:
    /// The rows of a walk that may have neighbours which are not visited.
    struct Frontier {
        std::size_t head;
        std::size_t end;
    };

    /// Visits all that can be reached from a row.
    void walkFrom(std::uint32_t row) {
        std::vector<Frontier> frontiers;
        while (row != kNotVisited) {
            frontiers.push_back(visitAround(row));
            row = kNotVisited;
            while (row == kNotVisited && !frontiers.empty()) {
                row = nextOf(frontiers.back());
                if (row == kNotVisited) {
                    frontiers.pop_back();
                }
            }
        }
    }

    /// Visits a block of rows, breadth first.
    Frontier visitAround(std::uint32_t start) {
        Frontier frontier{visited_.size(), 0};
        const std::size_t most = frontier.head + kNeighbourhoodRows;
        visit(start);
        while (frontier.head < visited_.size() && visited_.size() < most) {
            for (const std::uint32_t neighbour : neighboursOf(visited_[frontier.head])) {
                if (block_of_row_[neighbour] == kNotVisited && visited_.size() < most) {
                    visit(neighbour);
                }
            }
            // The row at which the block became full is looked at again.
            frontier.head += visited_.size() < most ? 1 : 0;
        }
        frontier.end = visited_.size();
        ++blocks_;
        return frontier;
    }

    void visit(std::uint32_t row) {
        block_of_row_[row] = static_cast<std::uint32_t>(blocks_);
        visited_.push_back(row);
    }

    /// A neighbour of a frontier that is not visited.
    std::uint32_t nextOf(Frontier& frontier) const {
        for (; frontier.head < frontier.end; ++frontier.head) {
            for (const std::uint32_t neighbour : neighboursOf(visited_[frontier.head])) {
                if (block_of_row_[neighbour] == kNotVisited) {
                    return neighbour;
                }
            }
        }
        return kNotVisited;
    }

    [[nodiscard]] std::span<const std::uint32_t> neighboursOf(std::uint32_t row) const {
        return {neighbours_ + row * count_, count_};
    }

    const std::uint32_t* neighbours_;
    std::size_t count_;
    std::size_t blocks_ = 0;
    std::vector<std::uint32_t> block_of_row_;
    std::vector<std::uint32_t> visited_;
    std::vector<std::uint32_t> attached_;
};

}  // namespace

MallocArray<std::uint32_t> neighbour_order(const std::uint32_t* neighbours,
                                           std::size_t N,
                                           std::size_t count) {
    auto order = malloc_array<std::uint32_t>(N);
    require_allocated(order);
    NeighbourWalk walk(neighbours, N, count);
    walk.visitAll();
    walk.write(order.get());
    return order;
}

}  // namespace ovik
