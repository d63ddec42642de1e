"""Metrics, distances in the place of values, and neighbours that are given."""

import numpy as np
import pytest
import scipy.sparse

from ovik import TSNE

ROWS = 60


def rows(seed=3):
    return np.random.default_rng(seed).normal(size=(ROWS, 6))


def distances(values):
    return np.abs(values[:, None, :] - values[None, :, :]).sum(axis=2)


def short(**parameters):
    return TSNE(perplexity=5, n_iter=20, **parameters)


def graph_of(values, count):
    """The nearest of each row, as a sparse matrix."""
    given = distances(values)
    np.fill_diagonal(given, np.inf)
    nearest = np.argsort(given, axis=1)[:, :count]
    starts = np.arange(0, ROWS * count + 1, count)
    near = np.take_along_axis(given, nearest, axis=1)
    return scipy.sparse.csr_matrix((near.ravel(), nearest.ravel(), starts), shape=(ROWS, ROWS))


@pytest.mark.parametrize("metric", ["pearson", "cosine", "spearman"])
@pytest.mark.parametrize("theta", [0.0, 0.5])
def test_rows_times_powers_of_two_have_the_same_map(metric, theta):
    X = rows()
    scaled = X * 2.0 ** (np.arange(ROWS) % 40 * 20 - 400)[:, None]
    expected = short(metric=metric, theta=theta).fit_transform(X)
    assert (short(metric=metric, theta=theta).fit_transform(scaled) == expected).all()
    assert (short(theta=theta).fit_transform(X) != expected).any()


def test_rows_that_do_not_vary_are_refused():
    X = rows()
    X[7] = 2.0
    with pytest.raises(ValueError, match=r"1 row has no correlation .* row 7 \(counted from 0\)"):
        short(metric="pearson").fit(X)
    short(metric="cosine").fit(X)


@pytest.mark.parametrize("theta", [0.0, 0.5])
def test_distances_take_the_place_of_values(theta):
    D = distances(rows())
    fitted = short(metric="precomputed", theta=theta, quality=10).fit(D)
    assert fitted.embedding_.shape == (ROWS, 2)
    assert 0.0 < fitted.knn_recall_ <= 1.0
    again = short(metric="precomputed", theta=theta).fit_transform(8.0 * D)
    assert (again == fitted.embedding_).all()
    assert (D == distances(rows())).all()


def test_what_is_no_matrix_of_distances_is_refused():
    D = distances(rows())
    D[4, 2] += 1.0
    with pytest.raises(ValueError, match="row 4, column 2, both counted from 0"):
        short(metric="precomputed").fit(D)
    with pytest.raises(ValueError, match="a matrix of distances is square"):
        short(metric="precomputed").fit(rows())
    with pytest.raises(ValueError, match="would count as 0\nGive an array"):
        short(metric="precomputed").fit(scipy.sparse.csr_matrix(D))


def test_neighbours_may_be_given(tmp_path):
    X = rows()
    graph = graph_of(X, ROWS - 1)
    expected = short(metric="precomputed").fit_transform(distances(X))
    arrays = (graph.data, graph.indices, graph.indptr)
    file = tmp_path / "graph.mtx"
    entries = graph.tocoo()
    lines = [f"{i + 1} {j + 1} {d!r}" for i, j, d in zip(entries.row, entries.col, entries.data.tolist())]
    file.write_text(
        f"%%MatrixMarket matrix coordinate real general\n{ROWS} {ROWS} {len(lines)}\n" + "\n".join(lines) + "\n"
    )
    for given in (graph, graph.tocoo(), arrays, file, str(file)):
        assert (short(neighbour_graph=given).fit_transform(X) == expected).all()
    assert (short().fit_transform(X) != expected).any()


def test_few_neighbours_are_warned_of():
    X = rows()
    with pytest.warns(UserWarning, match="60 rows have fewer than the 15 neighbours"):
        short(neighbour_graph=graph_of(X, 9)).fit(X)
    with pytest.raises(ValueError, match="row 0 has 4 neighbours, and a perplexity of 5"):
        short(neighbour_graph=graph_of(X, 4)).fit(X)


@pytest.mark.parametrize(
    "graph, message",
    [
        (np.zeros((4, 4)), "neighbour_graph should"),
        ((1.0, 2), "neighbour_graph should be a file"),
        (([1.0], [0.5], [0, 1]), "indices are whole numbers"),
        (([1.0], [1], [0, 1]), "has the shape \\(1, 60\\)"),
        (scipy.sparse.eye(4).tocsr(), "has the shape \\(4, 4\\), and X has 60 rows"),
        (([1.0], [-1], [0] + [1] * ROWS), "the index -1: rows count from 0"),
        (([1.0], [99], [0] + [1] * ROWS), "there is no row 99: the matrix has 60"),
        (([1.0], [1], [0] * ROWS + [2]), "should rise from 0 to the 1 entries"),
        (([-1.0], [1], [0] + [1] * ROWS), "have the distance -1"),
        (([1.0], [0], [0] + [1] * ROWS), "has the distance 1 from itself"),
    ],
)
def test_graphs_that_are_none_are_refused(graph, message):
    with pytest.raises(ValueError, match=message):
        short(neighbour_graph=graph).fit(rows())


def test_a_graph_is_for_a_search_only():
    X = rows()
    with pytest.raises(ValueError, match="both give distances"):
        short(metric="precomputed", neighbour_graph=graph_of(X, 20)).fit(distances(X))
    with pytest.raises(ValueError, match="the exact method"):
        short(theta=0.0, neighbour_graph=graph_of(X, 20)).fit(X)
