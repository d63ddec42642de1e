#include <cstdio>
#include <ovik/util/matrix_reader.h>
#include <string>
#include <vector>

/// Reads a delimited matrix with one header line.
int main() {
    std::vector<std::vector<double>> rows;
    std::vector<std::string> names;
    ovik::read_matrix_w_index(rows, names, "data/brauer2008_chemostat.tsv", 1, '\t');
    if (rows.empty()) {
        return 1;  // the console has said why
    }
    std::printf("%zu rows, %s has %zu values, %g first\n",
                rows.size(),
                names[0].c_str(),
                rows[0].size(),
                rows[0][0]);
}
