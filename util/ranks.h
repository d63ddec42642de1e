#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "util/parallel.h"

namespace ovik {

/// What ranks send one another bytes for.
enum class Errand {
    /// What is to be done next, and whether it goes on.
    Orders,
    /// Rows of a matrix, and the start of a map.
    Rows,
    /// Neighbours of rows, to whoever has the row.
    Neighbours,
    /// Conditional affinities, to whoever has the column.
    Affinities,
    /// Charges on the cells of a mesh.
    Charges,
    /// Gradients.
    Gradients,
    /// Numbers of which all have a part.
    Sums,
};

constexpr std::size_t kErrands = 7;

/// As in a table: "gradients".
const char* name_of(Errand errand);

/// Processes, on one machine or on several, that do one work together, each with memory of its own.
///
/// All of them have to call the same functions in the same order. What a function gives does not
/// depend on how many there are but by the parts that they bring: whole numbers are summed, and
/// numbers that are to be added in an order are added one rank after the other. A failure of one
/// is that of all: it cannot be mended.
///
/// @par Source Patarasuk and Yuan, "Bandwidth optimal all-reduce algorithms for clusters of
/// workstations", J. Parallel Distrib. Comput. 69:117, 2009, for sums and parts round a ring
class Ranks {
  public:
    /// Makes the bytes for a rank.
    using Pack = std::function<std::vector<std::byte>(std::size_t to)>;

    /// Takes the bytes of a rank.
    using Take = std::function<void(std::size_t from, std::span<const std::byte> bytes)>;

    Ranks() = default;
    Ranks(const Ranks&) = delete;
    Ranks& operator=(const Ranks&) = delete;
    virtual ~Ranks() = default;

    /// The number of this one, below `count`.
    [[nodiscard]] virtual std::size_t rank() const = 0;

    /// How many there are.
    [[nodiscard]] virtual std::size_t count() const = 0;

    [[nodiscard]] bool isFirst() const { return rank() == 0; }

    [[nodiscard]] bool areSeveral() const { return count() > 1; }

    /// Gives all what the first one has.
    void broadcast(std::span<std::byte> bytes, Errand errand) { broadcastFrom(0, bytes, errand); }

    /// The first one's end of it: gives the others numbers, which are only read.
    template <typename T>
    void tell(std::span<const T> values, Errand errand) {
        const auto bytes = std::as_bytes(values);
        broadcast({const_cast<std::byte*>(bytes.data()), bytes.size()}, errand);
    }

    /// The others' end.
    template <typename T>
    void hear(std::span<T> values, Errand errand) {
        broadcast(std::as_writable_bytes(values), errand);
    }

    /// Gives all the sums of the numbers that each has in a place; they must not overflow.
    void sum(std::span<std::int64_t> numbers, Errand errand);

    /// Gives all the parts of an array that each has.
    ///
    /// @param starts  where the part of each rank begins, and where the last one ends
    void gather(std::span<double> values, std::span<const std::size_t> starts, Errand errand);

    /// Gives each its part of an array that the first one has; the first one's stays where it is.
    ///
    /// @param values  of the first one alone
    /// @param starts  as `gather` has them
    /// @param own     of the others: room for the part of this one
    void deal(std::span<const double> values,
              std::span<const std::size_t> starts,
              std::span<double> own,
              Errand errand);

    /// Gives the next one round a ring what this one has, and takes what the one before has.
    ///
    /// @param in  written, as long as what the one before gives
    void pass(std::span<const double> out, std::span<double> in, Errand errand);

    /// Adds to a number one rank after the other.
    ///
    /// @param start  of the first
    /// @param add    takes what the ranks before have made of it, and gives what it becomes
    /// @return what the last one has made of it
    template <typename Add>
    double addInTurn(double start, const Add& add) {
        return endTurn(add(beginTurn(start)));
    }

    /// Brings each what all, itself among them, have for it.
    ///
    /// @param pack  called once for each rank
    /// @param take  called once for each rank
    void exchange(const Pack& pack, const Take& take, Errand errand);

    /// Brings the first one what all have, itself among them, in their order.
    ///
    /// @param take  called by the first one
    void collect(std::span<const std::byte> bytes, const Take& take, Errand errand);

    /// Says that this one cannot go on, so that the others do not wait for it for ever.
    virtual void giveUp() noexcept { has_given_up_ = true; }

    [[nodiscard]] bool hasGivenUp() const { return has_given_up_; }

    /// How many bytes this one has sent.
    [[nodiscard]] std::uint64_t sent(Errand errand) const {
        return sent_[static_cast<std::size_t>(errand)];
    }

  private:
    /// Sends and receives, side by side.
    ///
    /// @param out  nothing is sent if it is empty
    /// @param in   written, as long as what the other one sends; nothing is received if it is empty
    /// @throws std::runtime_error if the other one is there no longer
    virtual void transfer(std::span<const std::byte> out,
                          std::size_t to,
                          std::span<std::byte> in,
                          std::size_t from) = 0;

    void swap(std::span<const std::byte> out,
              std::size_t to,
              std::span<std::byte> in,
              std::size_t from,
              Errand errand);
    [[nodiscard]] double beginTurn(double start);
    [[nodiscard]] double endTurn(double number);
    void broadcastFrom(std::size_t first, std::span<std::byte> bytes, Errand errand);
    void broadcastByTree(std::size_t first, std::span<std::byte> bytes, Errand errand);
    void broadcastAlongRanks(std::span<std::byte> bytes, Errand errand);
    [[nodiscard]] std::vector<std::byte> swapSized(std::span<const std::byte> out,
                                                   std::size_t to,
                                                   std::size_t from,
                                                   Errand errand);

    std::uint64_t sent_[kErrands] = {};
    bool has_given_up_ = false;
};

/// A process by itself.
class OneRank final : public Ranks {
  public:
    [[nodiscard]] std::size_t rank() const override { return 0; }

    [[nodiscard]] std::size_t count() const override { return 1; }

  private:
    void transfer(std::span<const std::byte> out,
                  std::size_t to,
                  std::span<std::byte> in,
                  std::size_t from) override;
};

/// The process by itself that stands for no ranks; it sends nothing, and so counts nothing.
Ranks& one_rank();

}  // namespace ovik
