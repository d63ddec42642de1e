#include "neighbours/join_partners.h"

#include <algorithm>

#include "util/mixed_bits.h"

namespace ovik {

namespace {

/// Fewest rows for which another thread pays. Each goes through all lists.
constexpr std::size_t kRowGrain = 4096;

constexpr std::uint64_t kAny = ~std::uint64_t{0};

/// A draw that suffices to get most rows as many partners as they may have, of lists of a length on
/// both sides: what is above is passed over at once.
std::uint64_t limit_of(std::size_t most, std::size_t length) {
    constexpr std::size_t kSpare = 2;
    return kSpare * most >= length ? kAny : kAny / length * (kSpare * most);
}

}  // namespace

JoinPartners::Draws::Draws(std::size_t N,
                           std::size_t most,
                           std::uint64_t round,
                           std::uint64_t limit)
    : most_(most),
      round_(mixed_bits(round)),
      partners_(N * most),
      counts_(N),
      greatest_(N, limit) {}

/// The same for both rows of a pair.
std::uint64_t JoinPartners::Draws::draw(std::size_t row, std::uint32_t partner) const {
    const std::uint64_t low = std::min<std::uint64_t>(row, partner);
    const std::uint64_t high = std::max<std::uint64_t>(row, partner);
    return mixed_bits(round_ ^ (low << 32U) ^ high);
}

bool JoinPartners::Draws::has(std::size_t row, std::uint32_t partner) const {
    const auto all = of(row);
    return draw(row, partner) <= greatest_[row] &&
           std::find(all.begin(), all.end(), partner) != all.end();
}

void JoinPartners::Draws::add(std::size_t row, std::uint32_t partner) {
    const std::uint64_t drawn = draw(row, partner);
    if (drawn >= greatest_[row]) {
        return;
    }
    std::uint32_t* const begin = partners_.data() + row * most_;
    std::uint32_t& count = counts_[row];
    std::uint32_t* const place =
        std::lower_bound(begin, begin + count, drawn, [&](std::uint32_t one, std::uint64_t value) {
            return draw(row, one) < value;
        });
    if (place != begin + count && *place == partner) {
        return;
    }
    count += count < most_ ? 1 : 0;
    std::copy_backward(place, begin + count - 1, begin + count);
    *place = partner;
    if (count == most_) {
        greatest_[row] = draw(row, begin[count - 1]);
    }
}

void JoinPartners::Draws::removeAll(std::size_t row, std::span<const std::uint32_t> others) {
    std::uint32_t* const begin = partners_.data() + row * most_;
    std::uint32_t* const end = std::remove_if(begin, begin + counts_[row], [&](std::uint32_t one) {
        return std::find(others.begin(), others.end(), one) != others.end();
    });
    counts_[row] = static_cast<std::uint32_t>(end - begin);
}

JoinPartners::JoinPartners(NearestLists& lists, std::size_t most, std::uint64_t round)
    : fresh_(lists.rowCount(), most, round, kAny),
      known_(lists.rowCount(), most, ~round, limit_of(most, lists.length())) {
    const std::size_t N = lists.rowCount();
    // Each worker goes through all lists, and draws for the rows of its share.
    parallel_for(N, kRowGrain, [&](std::size_t /*worker*/, IndexRange share) {
        for (std::size_t row = 0; row < N; ++row) {
            drawFrom(lists, row, share);
        }
    });
    parallel_for_each(N, kRowGrain, [&](std::size_t row) { settle(lists, row); });
}

/// Draws, of the entries of a row, for the rows of a share.
void JoinPartners::drawFrom(const NearestLists& lists, std::size_t row, IndexRange share) {
    const bool is_own = row >= share.begin && row < share.end;
    for (std::size_t place = 0; place < lists.count(row); ++place) {
        const std::uint32_t other = lists.at(row, place).row;
        Draws& draws = lists.isNew(row, place) ? fresh_ : known_;
        if (is_own) {
            draws.add(row, other);
        }
        if (other >= share.begin && other < share.end) {
            draws.add(other, static_cast<std::uint32_t>(row));
        }
    }
}

/// Marks what was drawn of a row's new entries as old.
void JoinPartners::settle(NearestLists& lists, std::size_t row) {
    // Two rows may be new to one of them alone.
    known_.removeAll(row, fresh_.of(row));
    for (std::size_t place = 0; place < lists.count(row); ++place) {
        if (lists.isNew(row, place) && fresh_.has(row, lists.at(row, place).row)) {
            lists.markAsOld(row, place);
        }
    }
}

}  // namespace ovik
