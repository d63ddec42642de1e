#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "neighbours/nearest_lists.h"
#include "util/parallel.h"

namespace ovik {

/// For each row, some of those that are its neighbours or have it among theirs, drawn at random: of
/// the new ones, and of those that are not. What is drawn depends on the lists and the round alone.
class JoinPartners {
  public:
    /// Draws, and marks the neighbours that were drawn as old.
    ///
    /// @param lists  of all rows
    /// @param most   of a row, new and old ones each
    /// @param round  each draws others
    JoinPartners(NearestLists& lists, std::size_t most, std::uint64_t round);

    /// The new ones of a row; distinct.
    [[nodiscard]] std::span<const std::uint32_t> fresh(std::size_t row) const {
        return fresh_.of(row);
    }

    /// The others of a row; distinct, and none of the new ones.
    [[nodiscard]] std::span<const std::uint32_t> known(std::size_t row) const {
        return known_.of(row);
    }

  private:
    /// A bounded set of partners for each row: those whose draws are least.
    class Draws {
      public:
        /// @param limit  draws are below
        Draws(std::size_t N, std::size_t most, std::uint64_t round, std::uint64_t limit);

        [[nodiscard]] std::span<const std::uint32_t> of(std::size_t row) const {
            return std::span(partners_).subspan(row * most_, counts_[row]);
        }

        [[nodiscard]] bool has(std::size_t row, std::uint32_t partner) const;

        void add(std::size_t row, std::uint32_t partner);
        void removeAll(std::size_t row, std::span<const std::uint32_t> others);

      private:
        [[nodiscard]] std::uint64_t draw(std::size_t row, std::uint32_t partner) const;

        std::size_t most_;
        std::uint64_t round_;
        /// By their draws.
        std::vector<std::uint32_t> partners_;
        std::vector<std::uint32_t> counts_;
        /// For each row the greatest draw of a full set, before it is full the limit.
        std::vector<std::uint64_t> greatest_;
    };

    void drawFrom(const NearestLists& lists, std::size_t row, IndexRange share);
    void settle(NearestLists& lists, std::size_t row);

    Draws fresh_;
    Draws known_;
};

}  // namespace ovik
