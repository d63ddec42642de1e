#pragma once

#include <cstddef>
#include <memory>
#include <sys/types.h>

#include "util/api.h"

namespace ovik {

/// The threads that help one thread with its loops.
///
/// A loop is cut into pieces, which the thread itself and its helpers take one after the other. A
/// helper that waits for the next loop does so awake for a moment, then asleep, and so does the
/// thread at the end of a loop: what else runs on the machine gets the processors that they do not
/// use. Nobody waits for a helper that has not begun: what it would have done, others do.
///
/// Helpers are started by the first loop that asks for them and end with the team. A process that
/// was forked from one with helpers, which it does not inherit, starts its own.
class Team {
  public:
    /// Does a piece of a loop; throws nothing.
    using Piece = void (*)(const void* loop, std::size_t piece);

    /// The team of the calling thread, which ends with it.
    OVIK_API static Team& ofThisThread();

    /// Whether the calling thread is at work on a piece: loops that it begins are its own alone.
    OVIK_API static bool isAtWork();

    /// @param processors  as many threads take part in a loop at most, however many are asked for
    explicit Team(std::size_t processors);
    Team(const Team&) = delete;
    Team& operator=(const Team&) = delete;
    ~Team();

    /// Does all pieces of a loop, each once; returns when all are done.
    ///
    /// @param count    at least 1
    /// @param threads  at most so many take pieces, of which the calling one is one; at least 1
    /// @param piece    is called with `loop` and the numbers 0 to `count` - 1
    OVIK_API void run(std::size_t count, std::size_t threads, Piece piece, const void* loop);

    /// Helpers that there are: no more than other processors.
    [[nodiscard]] std::size_t helpers() const { return helpers_; }

    /// Helpers that a loop has asked for and the system has not granted; 0 if it had all.
    [[nodiscard]] std::size_t denied() const { return denied_; }

  private:
    /// What the thread and its helpers share.
    struct Board;

    void startHelpers(std::size_t wanted);

    std::size_t most_helpers_;
    std::shared_ptr<Board> board_;
    std::size_t helpers_ = 0;
    std::size_t denied_ = 0;
    /// The process that has the helpers.
    pid_t process_;
};

}  // namespace ovik
