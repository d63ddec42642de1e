"""The clusters of the command are as good as those of libraries that find communities.

clusters_test.py COMMAND SOURCE_DIR: for the matrices that come with the project, the modularity that the
command prints is that of its clusters in a graph that is made here, and at most 1 % below the best that the
Leiden algorithm of another library finds.
"""

import re
import subprocess
import sys
import tempfile
from pathlib import Path

import igraph
import leidenalg
import numpy as np
from scipy.sparse import coo_matrix
from sklearn.neighbors import NearestNeighbors

PERPLEXITY = 20
NEIGHBOURS = 3 * PERPLEXITY
MATRICES = {"brauer2008_chemostat.tsv": (1.0,), "eisen1998_timecourses.tsv": (1.0, 2.0)}
SEEDS = 3


def values_of(path: Path) -> np.ndarray:
    """The values of a matrix as the command takes them: missing ones are 0."""
    lines = path.read_text().splitlines()[1:]
    fields = [line.split("\t")[1:] for line in lines]
    return np.array([[float(field) if field not in ("", "NA") else 0.0 for field in row] for row in fields])


def affinities(squared: np.ndarray) -> np.ndarray:
    """Gaussian affinities of rows of squared distances, each of the perplexity, by bisection."""
    least, most = np.zeros(len(squared)), np.full(len(squared), np.inf)
    precision = 1.0 / squared.mean(axis=1)
    for _ in range(200):
        p = np.exp(-(squared - squared[:, :1]) * precision[:, None])
        p /= p.sum(axis=1)[:, None]
        entropy = -(p * np.log(np.maximum(p, 1e-300))).sum(axis=1)
        is_wide = entropy > np.log(PERPLEXITY)
        least = np.where(is_wide, precision, least)
        most = np.where(is_wide, most, precision)
        precision = np.where(np.isinf(most), 2 * precision, (least + most) / 2)
    return p


def graph_of(values: np.ndarray) -> tuple[igraph.Graph, list[float]]:
    """The rows with their joint affinities, and the weights of the edges."""
    count = len(values)
    distances, neighbours = (
        NearestNeighbors(n_neighbors=NEIGHBOURS + 1, algorithm="brute").fit(values).kneighbors(values)
    )
    p = affinities(distances[:, 1:] ** 2)
    rows = np.repeat(np.arange(count), NEIGHBOURS)
    conditional = coo_matrix((p.ravel(), (rows, neighbours[:, 1:].ravel())), shape=(count, count)).tocsr()
    joint = ((conditional + conditional.T) / 2).tocoo()
    is_upper = joint.row < joint.col
    edges = list(zip(joint.row[is_upper].tolist(), joint.col[is_upper].tolist()))
    return igraph.Graph(n=count, edges=edges), joint.data[is_upper].tolist()


def clusters_of(command: str, matrix: Path, resolution: float) -> tuple[list[int], float]:
    """The clusters that the command writes, from 0, and the modularity that it prints."""
    with tempfile.TemporaryDirectory() as folder:
        options = ["-p", str(PERPLEXITY), "-i", "1", "--no-plots", "-o", folder, "-n", "m"]
        run = subprocess.run(
            [command, str(matrix), "--clusters", "--clusters-resolution", str(resolution), *options],
            check=True, capture_output=True, text=True,
        )
        lines = Path(folder, "m_tsne_20_0.clusters.tsv").read_text().splitlines()
    assert lines[0] == "name\tCluster", lines[0]
    printed = re.search(r"modularity ([0-9.]+)", run.stdout)
    assert printed is not None, run.stdout
    return [int(line.split("\t")[1]) - 1 for line in lines[1:]], float(printed.group(1))


def check(command: str, matrix: Path, resolutions: tuple[float, ...]) -> None:
    graph, weights = graph_of(values_of(matrix))
    total = 2 * sum(weights)
    for resolution in resolutions:
        clusters, printed = clusters_of(command, matrix, resolution)
        ways = {"weights": weights, "resolution_parameter": resolution}
        kind = leidenalg.RBConfigurationVertexPartition
        ours = kind(graph, initial_membership=clusters, **ways)
        best = max(
            leidenalg.find_partition(graph, kind, n_iterations=-1, seed=seed, **ways).quality() / total
            for seed in range(SEEDS)
        )
        modularity = ours.quality() / total
        usual = kind(graph, initial_membership=clusters, weights=weights).quality() / total
        print(f"{matrix.name}, resolution {resolution}: {modularity:.4f} of {best:.4f}")
        assert abs(usual - printed) < 2e-4, (usual, printed)
        assert modularity > 0.99 * best, (modularity, best)
        assert all(ours.subgraph(cluster).is_connected() for cluster in range(len(ours)))


def main() -> None:
    command, source = sys.argv[1:]
    for name, resolutions in MATRICES.items():
        check(command, Path(source, "data", name), resolutions)


main()
