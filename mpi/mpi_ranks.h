#pragma once

#include <cstddef>
#include <span>

#include "util/ranks.h"

namespace ovik {

/// The processes that `mpirun` has started. There is one object in a process, which lives as long
/// as MPI is used, and is called by one thread.
class MpiRanks final : public Ranks {
  public:
    /// Begins MPI.
    ///
    /// @throws std::runtime_error if it cannot be
    MpiRanks(int& argc, char**& argv);

    /// Ends MPI; all ranks have to.
    ~MpiRanks() override;

    [[nodiscard]] std::size_t rank() const override { return rank_; }

    [[nodiscard]] std::size_t count() const override { return count_; }

    /// Ends all ranks at once.
    [[noreturn]] static void abort(int status);

  private:
    void transfer(std::span<const std::byte> out,
                  std::size_t to,
                  std::span<std::byte> in,
                  std::size_t from) override;

    std::size_t rank_ = 0;
    std::size_t count_ = 1;
};

}  // namespace ovik
