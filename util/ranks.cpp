#include "util/ranks.h"

#include <algorithm>
#include <stdexcept>

namespace ovik {

namespace {

/// Up to so many bytes go down a tree, in few steps, others along the ranks, piece after piece.
constexpr std::size_t kFewBytes = std::size_t{1} << 16U;
constexpr std::size_t kPiece = std::size_t{1} << 20U;

}  // namespace

const char* name_of(Errand errand) {
    static constexpr const char* kNames[kErrands] = {
        "orders", "rows", "neighbours", "affinities", "charges", "gradients", "sums"};
    return kNames[static_cast<std::size_t>(errand)];
}

/// Counts what is sent.
void Ranks::swap(std::span<const std::byte> out,
                 std::size_t to,
                 std::span<std::byte> in,
                 std::size_t from,
                 Errand errand) {
    sent_[static_cast<std::size_t>(errand)] += out.size();
    transfer(out, to, in, from);
}

void Ranks::broadcastFrom(std::size_t first, std::span<std::byte> bytes, Errand errand) {
    if (!areSeveral()) {
        return;
    }
    if (first == 0 && bytes.size() > kFewBytes) {
        broadcastAlongRanks(bytes, errand);
    } else {
        broadcastByTree(first, bytes, errand);
    }
}

/// Who has the bytes gives them, in each step, to one that has not.
void Ranks::broadcastByTree(std::size_t first, std::span<std::byte> bytes, Errand errand) {
    const std::size_t place = (rank() + count() - first) % count();
    const auto rank_at = [&](std::size_t at) { return (at + first) % count(); };
    for (std::size_t have = 1; have < count(); have *= 2) {
        if (place < have && place + have < count()) {
            swap(bytes, rank_at(place + have), {}, 0, errand);
        } else if (place >= have && place < 2 * have) {
            swap({}, 0, bytes, rank_at(place - have), errand);
        }
    }
}

/// Each passes a piece on while it gets the next one.
void Ranks::broadcastAlongRanks(std::span<std::byte> bytes, Errand errand) {
    const std::size_t pieces = (bytes.size() + kPiece - 1) / kPiece;
    const auto piece = [&](std::size_t i) {
        return bytes.subspan(i * kPiece, std::min(kPiece, bytes.size() - i * kPiece));
    };
    const bool is_last = rank() + 1 == count();
    for (std::size_t i = 0; i <= pieces; ++i) {
        const std::span<std::byte> in =
            isFirst() || i == pieces ? std::span<std::byte>() : piece(i);
        const std::span<std::byte> out = is_last || i == 0 ? std::span<std::byte>() : piece(i - 1);
        swap(out, rank() + 1, in, rank() - 1, errand);
    }
}

/// First round a ring, so that each has the sums of a share, then these round the ring.
void Ranks::sum(std::span<std::int64_t> numbers, Errand errand) {
    const std::size_t R = count();
    const std::size_t next = (rank() + 1) % R;
    const std::size_t before = (rank() + R - 1) % R;
    const auto share = [&](std::size_t number) {
        const IndexRange range = static_share(numbers.size(), R, number % R);
        return numbers.subspan(range.begin, range.size());
    };
    std::vector<std::int64_t> added(R > 1 ? share(0).size() : 0);
    for (std::size_t step = 0; step + 1 < R; ++step) {
        const std::span<std::int64_t> own = share(rank() + 2 * R - step - 1);
        const std::span<std::int64_t> in(added.data(), own.size());
        swap(std::as_bytes(share(rank() + R - step)),
             next,
             std::as_writable_bytes(in),
             before,
             errand);
        parallel_for_each(
            own.size(), std::size_t{1} << 14U, [&](std::size_t i) { own[i] += in[i]; });
    }
    for (std::size_t step = 0; step + 1 < R; ++step) {
        swap(std::as_bytes(share(rank() + R + 1 - step)),
             next,
             std::as_writable_bytes(share(rank() + R - step)),
             before,
             errand);
    }
}

/// Round a ring.
void Ranks::gather(std::span<double> values, std::span<const std::size_t> starts, Errand errand) {
    const std::size_t R = count();
    const auto part = [&](std::size_t number) {
        const std::size_t i = number % R;
        return values.subspan(starts[i], starts[i + 1] - starts[i]);
    };
    for (std::size_t step = 0; step + 1 < R; ++step) {
        swap(std::as_bytes(part(rank() + R - step)),
             (rank() + 1) % R,
             std::as_writable_bytes(part(rank() + 2 * R - step - 1)),
             (rank() + R - 1) % R,
             errand);
    }
}

void Ranks::deal(std::span<const double> values,
                 std::span<const std::size_t> starts,
                 std::span<double> own,
                 Errand errand) {
    if (!isFirst()) {
        swap({}, 0, std::as_writable_bytes(own), 0, errand);
        return;
    }
    for (std::size_t to = 1; to < count(); ++to) {
        const auto part = values.subspan(starts[to], starts[to + 1] - starts[to]);
        swap(std::as_bytes(part), to, {}, 0, errand);
    }
}

void Ranks::pass(std::span<const double> out, std::span<double> in, Errand errand) {
    swap(std::as_bytes(out),
         (rank() + 1) % count(),
         std::as_writable_bytes(in),
         (rank() + count() - 1) % count(),
         errand);
}

/// What the ranks before have made of a number.
double Ranks::beginTurn(double start) {
    double number = start;
    if (!isFirst()) {
        swap({}, 0, std::as_writable_bytes(std::span(&number, 1)), rank() - 1, Errand::Sums);
    }
    return number;
}

/// What all have made of it in the end.
double Ranks::endTurn(double number) {
    const auto bytes = std::as_writable_bytes(std::span(&number, 1));
    if (rank() + 1 < count()) {
        swap(bytes, rank() + 1, {}, 0, Errand::Sums);
    }
    broadcastFrom(count() - 1, bytes, Errand::Sums);
    return number;
}

/// Tells the other one how many bytes come before they do.
std::vector<std::byte> Ranks::swapSized(std::span<const std::byte> out,
                                        std::size_t to,
                                        std::size_t from,
                                        Errand errand) {
    std::uint64_t out_size = out.size();
    std::uint64_t in_size = 0;
    swap(std::as_bytes(std::span(&out_size, 1)),
         to,
         std::as_writable_bytes(std::span(&in_size, 1)),
         from,
         errand);
    std::vector<std::byte> in(in_size);
    swap(out, to, in, from, errand);
    return in;
}

void Ranks::exchange(const Pack& pack, const Take& take, Errand errand) {
    const std::size_t R = count();
    take(rank(), pack(rank()));
    for (std::size_t step = 1; step < R; ++step) {
        const std::size_t to = (rank() + step) % R;
        const std::size_t from = (rank() + R - step) % R;
        take(from, swapSized(pack(to), to, from, errand));
    }
}

void Ranks::collect(std::span<const std::byte> bytes, const Take& take, Errand errand) {
    std::uint64_t size = bytes.size();
    const auto size_bytes = std::as_writable_bytes(std::span(&size, 1));
    if (!isFirst()) {
        swap(size_bytes, 0, {}, 0, errand);
        swap(bytes, 0, {}, 0, errand);
        return;
    }
    take(0, bytes);
    for (std::size_t from = 1; from < count(); ++from) {
        swap({}, 0, size_bytes, from, errand);
        std::vector<std::byte> in(size);
        swap({}, 0, in, from, errand);
        take(from, in);
    }
}

void OneRank::transfer(std::span<const std::byte> out,
                       std::size_t /*to*/,
                       std::span<std::byte> in,
                       std::size_t /*from*/) {
    if (!out.empty() || !in.empty()) {
        throw std::logic_error("a process by itself has nobody to send to");
    }
}

Ranks& one_rank() {
    static OneRank one;
    return one;
}

}  // namespace ovik
