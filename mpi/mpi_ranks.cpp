#include "mpi/mpi_ranks.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <mpi.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace ovik {

namespace {

/// Most bytes of a message, which MPI counts by an `int`.
constexpr std::size_t kMostBytes = std::size_t{1} << 30U;

/// @throws std::runtime_error if a call has failed
void check(int code) {
    if (code == MPI_SUCCESS) {
        return;
    }
    char text[MPI_MAX_ERROR_STRING] = {};
    int length = 0;
    MPI_Error_string(code, text, &length);
    throw std::runtime_error("MPI: " + std::string(text, static_cast<std::size_t>(length)));
}

/// Waits until all are done: busily at first, as a message mostly comes soon, and later not, as the
/// first rank may write its results for long.
void wait_for(std::vector<MPI_Request>& requests) {
    using Clock = std::chrono::steady_clock;
    constexpr auto kBusy = std::chrono::milliseconds(20);
    constexpr auto kPause = std::chrono::microseconds(200);
    const auto start = Clock::now();
    for (;;) {
        int are_done = 0;
        check(MPI_Testall(
            static_cast<int>(requests.size()), requests.data(), &are_done, MPI_STATUSES_IGNORE));
        if (are_done != 0) {
            return;
        }
        if (Clock::now() - start > kBusy) {
            std::this_thread::sleep_for(kPause);
        }
    }
}

}  // namespace

MpiRanks::MpiRanks(int& argc, char**& argv) {
    int provided = 0;
    check(MPI_Init_thread(&argc, &argv, MPI_THREAD_FUNNELED, &provided));
    check(MPI_Comm_set_errhandler(MPI_COMM_WORLD, MPI_ERRORS_RETURN));
    int rank = 0;
    int count = 0;
    check(MPI_Comm_rank(MPI_COMM_WORLD, &rank));
    check(MPI_Comm_size(MPI_COMM_WORLD, &count));
    rank_ = static_cast<std::size_t>(rank);
    count_ = static_cast<std::size_t>(count);
}

MpiRanks::~MpiRanks() {
    MPI_Finalize();
}

void MpiRanks::abort(int status) {
    MPI_Abort(MPI_COMM_WORLD, status);
    std::abort();
}

void MpiRanks::transfer(std::span<const std::byte> out,
                        std::size_t to,
                        std::span<std::byte> in,
                        std::size_t from) {
    std::vector<MPI_Request> requests;
    for (std::size_t begin = 0; begin < in.size(); begin += kMostBytes) {
        const auto part = in.subspan(begin, std::min(kMostBytes, in.size() - begin));
        check(MPI_Irecv(part.data(),
                        static_cast<int>(part.size()),
                        MPI_BYTE,
                        static_cast<int>(from),
                        0,
                        MPI_COMM_WORLD,
                        &requests.emplace_back()));
    }
    for (std::size_t begin = 0; begin < out.size(); begin += kMostBytes) {
        const auto part = out.subspan(begin, std::min(kMostBytes, out.size() - begin));
        check(MPI_Isend(part.data(),
                        static_cast<int>(part.size()),
                        MPI_BYTE,
                        static_cast<int>(to),
                        0,
                        MPI_COMM_WORLD,
                        &requests.emplace_back()));
    }
    wait_for(requests);
}

}  // namespace ovik
