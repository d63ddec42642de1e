#include "golden/digest_program.h"

int main(int argc, char** argv) {
    return ovik::golden::run_digest_program(argc - 1, argv + 1);
}
