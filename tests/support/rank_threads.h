#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <map>
#include <mutex>
#include <span>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "util/ranks.h"

namespace ovik::test {

/// What ranks that are threads of one process have sent one another and not received yet.
class RankMail {
  public:
    void put(std::size_t from, std::size_t to, std::span<const std::byte> bytes) {
        const std::lock_guard lock(mutex_);
        letters_[{from, to}].emplace_back(bytes.begin(), bytes.end());
        changed_.notify_all();
    }

    /// @throws std::runtime_error if one of the ranks has given up
    std::vector<std::byte> take(std::size_t from, std::size_t to) {
        std::unique_lock lock(mutex_);
        auto& letters = letters_[{from, to}];
        changed_.wait(lock, [&] { return !letters.empty() || has_ended_; });
        if (letters.empty()) {
            throw std::runtime_error("another rank is there no longer");
        }
        std::vector<std::byte> letter = std::move(letters.front());
        letters.pop_front();
        return letter;
    }

    void end() {
        const std::lock_guard lock(mutex_);
        has_ended_ = true;
        changed_.notify_all();
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::map<std::pair<std::size_t, std::size_t>, std::deque<std::vector<std::byte>>> letters_;
    bool has_ended_ = false;
};

/// A rank that is a thread.
class RankThread final : public Ranks {
  public:
    RankThread(RankMail& mail, std::size_t rank, std::size_t count)
        : mail_(mail),
          rank_(rank),
          count_(count) {}

    [[nodiscard]] std::size_t rank() const override { return rank_; }

    [[nodiscard]] std::size_t count() const override { return count_; }

    void giveUp() noexcept override {
        Ranks::giveUp();
        mail_.end();
    }

  private:
    void transfer(std::span<const std::byte> out,
                  std::size_t to,
                  std::span<std::byte> in,
                  std::size_t from) override {
        if (!out.empty()) {
            mail_.put(rank_, to, out);
        }
        if (!in.empty()) {
            const std::vector<std::byte> letter = mail_.take(from, rank_);
            if (letter.size() != in.size()) {
                throw std::logic_error("a rank has sent another number of bytes than is expected");
            }
            std::copy(letter.begin(), letter.end(), in.begin());
        }
    }

    RankMail& mail_;
    std::size_t rank_;
    std::size_t count_;
};

/// Runs `body(ranks)` once for each of some ranks, side by side.
///
/// @throws what the first of them threw that did; the others have ended then
template <typename Body>
void run_ranks(std::size_t count, const Body& body) {
    RankMail mail;
    std::vector<std::exception_ptr> failures(count);
    std::vector<std::thread> threads;
    for (std::size_t rank = 0; rank < count; ++rank) {
        threads.emplace_back([&, rank] {
            RankThread ranks(mail, rank, count);
            try {
                body(static_cast<Ranks&>(ranks));
            } catch (...) {
                failures[rank] = std::current_exception();
                ranks.giveUp();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const std::exception_ptr& failure : failures) {
        if (failure) {
            std::rethrow_exception(failure);
        }
    }
}

}  // namespace ovik::test
