#include "annotation/gene_func_map.h"

/// A program that does nothing but hold the gene table.
int main() {
    return ovik::gene_func_map.size() == 6560 ? 0 : 1;
}
