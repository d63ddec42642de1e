"""A map of yeast genes: embeds their expression in chemostats and plots it.

The cells (# %%) run one by one in editors that know them, or all of them with
`python3 docs/brauer_map.py [PNG]` from the root of the project. Needs the package `ovik` and, for
the plot, matplotlib (Debian: python3-matplotlib).
"""

# %% The matrix: 5537 genes, 36 chemostat cultures
import sys
from pathlib import Path

import numpy as np

import ovik

project = Path(__file__).resolve().parent.parent
matrix = ovik.read_matrix(project / "data" / "brauer2008_chemostat.tsv")
print(f"{len(matrix.row_names)} genes, {len(matrix.column_names)} cultures")

# %% The map, some seconds: genes that behaved alike lie close together
tsne = ovik.TSNE(perplexity=30).fit(matrix.values)
print(f"cost {tsne.kl_divergence_:.3f} after iteration {tsne.n_iter_}")

# %% What the genes do, and which of them are of the ribosome
genes = [ovik.gene_function(name) for name in matrix.row_names]
of_ribosome = np.array(["ribosom" in (gene and gene.function or "").lower() for gene in genes])
print(f"{sum(gene is not None for gene in genes)} genes in the table, {of_ribosome.sum()} of them "
      "speak of ribosomes")

# %% The neighbours of a gene of the citric acid cycle
here = tsne.embedding_[matrix.row_names.index("CIT1")]
distances = np.linalg.norm(tsne.embedding_ - here, axis=1)
for row in np.argsort(distances)[1:6]:
    print(f"{matrix.row_names[row]:10} {genes[row].function if genes[row] else ''}")

# %% The plot
try:
    import matplotlib
except ImportError:
    sys.exit("The plot needs matplotlib; on Debian: apt-get install python3-matplotlib")
matplotlib.use("Agg")
import matplotlib.pyplot as plt

figure, axes = plt.subplots(figsize=(8, 8), layout="constrained")
for rows, colour, label in [
    (~of_ribosome, "#bbbbbb", "other"),
    (of_ribosome, "#d95f02", "ribosome"),
]:
    axes.scatter(*tsne.embedding_[rows].T, s=4, color=colour, label=label, linewidths=0)
axes.set(title="Yeast genes in chemostats", xticks=[], yticks=[], aspect="equal")
axes.legend(markerscale=3)
output = sys.argv[1] if len(sys.argv) > 1 else "brauer_map.png"
figure.savefig(output, dpi=150)
print(f"Plot: {output}")
