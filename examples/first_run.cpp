#include <cstdio>
#include <ovik/stats/tsne.h>

int main() {
    // The directory out/ has to exist.
    ovik::TSNE<double> tsne("out/", "yeast", "", "Yeast in chemostats");
    tsne.init("data/brauer2008_chemostat.tsv", 1000, '\t');
    tsne.theta = 0.5;                     // 0.0 selects the exact method
    tsne.actuate(2, 30.0, {}, 250, 250);  // writes out/yeast_tsne_30_0.csv, .html, .png, ...
    std::printf("%s lies at %g, %g\n", tsne.row_names[0].c_str(), tsne.Y[0], tsne.Y[1]);
    tsne.finish();
}
