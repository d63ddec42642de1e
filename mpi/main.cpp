#include <csignal>
#include <cstdio>
#include <exception>
#include <new>
#include <string>
#include <unistd.h>

#include "stats/shared_fit.h"

#include "mpi/mpi_ranks.h"
#include "tools/command.h"
#include "tools/exit_status.h"

/// The program `ovik-tsne-mpi`: the command, of which the first rank is `ovik-tsne`, and the others
/// serve its fit.

namespace {

/// Where a rank that fails lets the first one speak before: what all refuse or have no memory for
/// is its to tell.
constexpr unsigned int kSecondsForTheFirst = 1;

/// Says why a rank other than the first cannot go on.
void complain_of(const ovik::Ranks& ranks, const std::string& what) {
    char host[256] = "an unknown machine";
    gethostname(host, sizeof host - 1);
    const std::string line = "ovik-tsne: rank " + std::to_string(ranks.rank()) + " of " +
                             std::to_string(ranks.count()) + ", on " + host + ": " + what + '\n';
    std::fputs(line.c_str(), stderr);
}

/// What a rank other than the first does.
void serve(ovik::MpiRanks& ranks) {
    // The first one is told to end, and then ends the others.
    std::signal(SIGINT, SIG_IGN);
    std::signal(SIGTERM, SIG_IGN);
    std::string failure;
    try {
        ovik::serve_fits(ranks);
        return;
    } catch (const std::bad_alloc&) {
        failure = "its part of the fit does not fit in memory";
    } catch (const std::exception& error) {
        failure = error.what();
    }
    sleep(kSecondsForTheFirst);
    complain_of(ranks, failure);
    ovik::MpiRanks::abort(ovik::tool::FailedRun);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        ovik::MpiRanks ranks(argc, argv);
        if (!ranks.isFirst()) {
            serve(ranks);
            return ovik::tool::Success;
        }
        const int status = ovik::tool::run_whole_command(argc, argv, &ranks);
        if (ranks.hasGivenUp()) {
            ovik::MpiRanks::abort(status);
        }
        ovik::end_service(ranks);
        return status;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "ovik-tsne: %s\n", error.what());
        return ovik::tool::FailedRun;
    }
}
