#include <cstdio>
#include <exception>

#include "stats/shared_fit.h"

#include "golden/digest_program.h"
#include "mpi/mpi_ranks.h"

/// `golden_digests` by several processes.

int main(int argc, char** argv) {
    try {
        ovik::MpiRanks ranks(argc, argv);
        if (!ranks.isFirst()) {
            ovik::serve_fits(ranks);
            return 0;
        }
        const int status = ovik::golden::run_digest_program(argc - 1, argv + 1, &ranks);
        if (ranks.hasGivenUp()) {
            ovik::MpiRanks::abort(status);
        }
        ovik::end_service(ranks);
        return status;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "golden_digests_mpi: %s\n", error.what());
        ovik::MpiRanks::abort(1);
    }
}
