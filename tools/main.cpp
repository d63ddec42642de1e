#include <new>

#include "stats/exit_without_memory.h"

#include "tools/command.h"

/// The program `ovik-tsne`.

/// Nobody could catch an exception where globals are built, so this runs before their
/// constructors.
[[gnu::constructor(101)]] static void end_if_memory_runs_out_before_main() {
    std::set_new_handler(ovik::exit_out_of_memory);
}

int main(int argc, char** argv) {
    return ovik::tool::run_whole_command(argc, argv);
}
