#include "util/team.h"

#include <algorithm>
#include <new>
#include <omp.h>
#include <pthread.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace ovik {

namespace {

/// How often a thread looks for what it waits for before it sleeps: some 100 microseconds, which is
/// longer than most pauses within an iteration, and than it takes to wake up.
constexpr int kLooks = 2000;

/// Threads that look at one thing are not to hinder those that write another.
constexpr std::size_t kCacheLine = 64;

// A word says how it stands with a loop: how many helpers are at it, whether more may come, and the
// number of the loop.
constexpr std::uint32_t kHelpers = 0x7FF;
constexpr std::uint32_t kIsOpen = 0x800;
constexpr std::uint32_t kNextLoop = 0x1000;

constexpr std::uint32_t loop_of(std::uint32_t word) {
    return word & ~(kHelpers | kIsOpen);
}

thread_local bool is_at_work = false;

void pause() {
#if defined(__x86_64__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    // The instruction that is called yield takes no time on most processors.
    __asm__ volatile("isb");
#endif
}

/// Looks until something has happened, or long enough.
template <typename Predicate>
void look_for(const Predicate& has_happened) {
    for (int look = 0; look < kLooks && !has_happened(); ++look) {
        pause();
    }
}

/// A place in each thread for a team, which ends with the thread.
pthread_key_t make_key() {
    pthread_key_t key = 0;
    const int error = pthread_key_create(&key, [](void* team) { delete static_cast<Team*>(team); });
    if (error != 0) {
        throw std::system_error(
            error, std::generic_category(), "threads have no place of their own");
    }
    return key;
}

}  // namespace

struct Team::Board {
    /// Takes pieces until none is left.
    void work() {
        for (std::size_t i = next.fetch_add(1); i < count; i = next.fetch_add(1)) {
            piece(loop, i);
        }
    }

    /// What a helper does from its start to its end.
    void help(std::uint32_t last_loop);

    /// Works on the loop of the word `now` if there is a seat left.
    void join(std::uint32_t now);

    /// Waits until a loop begins, or the end is there.
    std::uint32_t wait(std::uint32_t last_loop);

    /// Closes the loop, and waits for the helpers that are at it.
    void close();

    /// The piece that is taken next.
    alignas(kCacheLine) std::atomic<std::size_t> next = 0;
    // Of the loop, written before it opens.
    Piece piece = nullptr;
    const void* loop = nullptr;
    std::size_t count = 0;
    std::atomic<std::uint32_t> seats = 0;

    alignas(kCacheLine) std::atomic<std::uint32_t> word = 0;
    /// Changes when the last helper leaves a loop that is closed.
    std::atomic<std::uint32_t> departures = 0;
    std::atomic<bool> is_over = false;
};

void Team::Board::help(std::uint32_t last_loop) {
    is_at_work = true;
    for (;;) {
        const std::uint32_t now = wait(last_loop);
        if (is_over) {
            return;
        }
        last_loop = loop_of(now);
        join(now);
    }
}

std::uint32_t Team::Board::wait(std::uint32_t last_loop) {
    std::uint32_t now = word;
    const auto is_another = [&] {
        now = word;
        return loop_of(now) != last_loop;
    };
    look_for(is_another);
    while (!is_another()) {
        word.wait(now);
    }
    return now;
}

void Team::Board::join(std::uint32_t now) {
    const std::uint32_t begun = loop_of(now);
    while (loop_of(now) == begun && (now & kIsOpen) != 0 && (now & kHelpers) < seats) {
        if (word.compare_exchange_weak(now, now + 1)) {
            work();
            const std::uint32_t before = word.fetch_sub(1);
            if ((before & kHelpers) == 1 && (before & kIsOpen) == 0) {
                ++departures;
                departures.notify_one();
            }
            return;
        }
    }
}

void Team::Board::close() {
    word.fetch_and(~kIsOpen);
    const auto is_left = [this] { return (word & kHelpers) == 0; };
    look_for(is_left);
    for (;;) {
        const std::uint32_t before = departures;
        if (is_left()) {
            return;
        }
        departures.wait(before);
    }
}

Team& Team::ofThisThread() {
    static const auto processors = static_cast<std::size_t>(omp_get_num_procs());
    // Not a thread_local object: where the memory to note its destructor is lacking, the C library
    // ends the process.
    static const pthread_key_t key = make_key();
    void* const before = pthread_getspecific(key);
    if (before != nullptr) {
        return *static_cast<Team*>(before);
    }
    auto team = std::make_unique<Team>(processors);
    if (pthread_setspecific(key, team.get()) != 0) {
        throw std::bad_alloc();
    }
    return *team.release();
}

bool Team::isAtWork() {
    return is_at_work;
}

Team::Team(std::size_t processors)
    : most_helpers_(processors - 1),
      board_(std::make_shared<Board>()),
      process_(getpid()) {}

Team::~Team() {
    board_->is_over = true;
    board_->word += kNextLoop;
    board_->word.notify_all();
}

void Team::run(std::size_t count, std::size_t threads, Piece piece, const void* loop) {
    const std::size_t wanted = std::min(std::min(threads, count) - 1, most_helpers_);
    startHelpers(wanted);
    const std::size_t helpers = std::min(wanted, helpers_);
    Board& board = *board_;
    board.piece = piece;
    board.loop = loop;
    board.count = count;
    board.next = 0;
    board.seats = static_cast<std::uint32_t>(helpers);
    board.word = loop_of(board.word) + kNextLoop + kIsOpen;
    if (helpers == helpers_) {
        board.word.notify_all();
    } else {
        for (std::size_t i = 0; i < helpers; ++i) {
            board.word.notify_one();
        }
    }
    is_at_work = true;
    board.work();
    is_at_work = false;
    board.close();
}

void Team::startHelpers(std::size_t wanted) {
    if (process_ != getpid()) {
        // The helpers are the other process's, and so is what they know of the board.
        board_ = std::make_shared<Board>();
        helpers_ = 0;
        process_ = getpid();
    }
    // What the system has denied once is not asked for again.
    while (denied_ == 0 && helpers_ < wanted) {
        try {
            // Nobody waits for the end of a helper: it keeps the board as long as it needs it.
            std::thread([board = board_, loop = loop_of(board_->word)] {
                board->help(loop);
            }).detach();
            ++helpers_;
        } catch (const std::system_error&) {
            denied_ = wanted - helpers_;
        }
    }
}

}  // namespace ovik
