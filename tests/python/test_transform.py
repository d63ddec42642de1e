"""Placing further rows on an embedding."""

import os
import pickle
import subprocess

import numpy as np
import pytest
from table import Table

import ovik


@pytest.fixture
def fitted(points):
    return ovik.TSNE(perplexity=10, n_iter=100).fit(points[:80])


def test_places_each_row_by_itself(fitted, points):
    before = fitted.embedding_.copy()
    together = fitted.transform(points[80:])
    assert together.shape == (10, 2)
    for row in range(10):
        assert np.array_equal(fitted.transform(points[80 + row:81 + row])[0], together[row])
    assert np.array_equal(fitted.transform(points[:79:-1]), together[::-1])
    assert np.array_equal(fitted.embedding_, before)


def test_is_the_same_for_any_threads_and_after_pickling(fitted, points):
    expected = fitted.transform(points[80:])
    for n_jobs in (1, 2, 5):
        assert np.array_equal(fitted.set_params(n_jobs=n_jobs).transform(points[80:]), expected)
    assert np.array_equal(pickle.loads(pickle.dumps(fitted)).transform(points[80:]), expected)


def test_keeps_the_input_of_the_fit(points):
    given = points[:80].copy()
    fitted = ovik.TSNE(perplexity=10, n_iter=100).fit(given)
    expected = fitted.transform(points[80:])
    given[:] = 0.0
    assert np.array_equal(fitted.transform(points[80:]), expected)


def test_matches_columns_by_name(points):
    fitted = ovik.TSNE(perplexity=10, n_iter=100).fit(Table(points[:80], list("abcdef")))
    expected = fitted.transform(points[80:])
    swapped = Table(points[80:, ::-1], list("fedcba"))
    assert np.array_equal(fitted.transform(swapped), expected)
    with pytest.raises(ValueError, match=r"missing \['a'\], additional \['x'\]"):
        fitted.transform(Table(points[80:], list("xbcdef")))


def test_refuses_what_cannot_be_placed(fitted, points):
    with pytest.raises(ValueError, match="has not been fitted yet"):
        ovik.TSNE().transform(points)
    with pytest.raises(ValueError, match="X has 5 features, but TSNE is expecting 6 features"):
        fitted.transform(points[80:, :5])
    with pytest.raises(ValueError, match="there is no row to place"):
        fitted.transform(points[:0])
    bad = points[80:].copy()
    bad[3, 2] = np.nan
    with pytest.raises(ValueError, match="in row 3, column 2"):
        fitted.transform(bad)
    bad[3, 2] = 1e300
    with pytest.raises(ValueError, match="row 4 has values"):
        fitted.transform(bad)


def all_neighbours(points):
    """Each row's distances from all others, as compressed sparse rows."""
    distances = np.sqrt(((points[:, None, :] - points[None, :, :]) ** 2).sum(-1))
    others = ~np.eye(len(points), dtype=bool)
    return distances[others], np.nonzero(others)[1], np.arange(len(points) + 1) * (len(points) - 1)


@pytest.mark.parametrize("name, value", [("pca", 3), ("multiscale", (5, 10))])
def test_refuses_maps_of_other_comparisons(points, name, value):
    perplexity = {} if name == "multiscale" else {"perplexity": 10}
    fitted = ovik.TSNE(**{name: value}, **perplexity, n_iter=10).fit(points[:80])
    assert fitted._map == {"barring": name}, "the input would be kept for nothing"
    with pytest.raises(ValueError, match=f"made with {name}\n"):
        fitted.transform(points[80:])


def test_compares_rows_by_the_metric_of_the_map(points):
    fitted = ovik.TSNE(metric="pearson", perplexity=10, n_iter=50).fit(points[:80])
    placed = fitted.transform(points[80:])
    # A correlation does not change with a factor.
    np.testing.assert_array_equal(fitted.transform(points[80:] * 8.0), placed)
    other = ovik.TSNE(perplexity=10, n_iter=50).fit(points[:80])
    assert (other.transform(points[80:] * 8.0) != other.transform(points[80:])).any()
    with pytest.raises(ValueError, match="row 1 does not vary, so that it has no pearson"):
        fitted.transform(np.ones((1, points.shape[1])))


def test_warns_of_rows_unlike_those_of_the_map(fitted, points):
    far = points[80:83].copy()
    far[1] += 1000
    with pytest.warns(UserWarning, match=r"^1 row \(1\) is farther from all rows of the map than any"):
        places = fitted.transform(far)
    assert np.isfinite(places).all()
    pandas = pytest.importorskip("pandas")
    table = pandas.DataFrame(far + 1000, index=["a", "b", "c"])
    with pytest.warns(UserWarning, match=r"^3 rows \('a', 'b', 'c'\) are farther"):
        fitted.transform(table)


def test_finds_no_row_of_the_map_too_far_away(fitted, points, recwarn):
    fitted.transform(points[:80])
    assert not [warning for warning in recwarn if "farther" in str(warning.message)]


def test_refuses_maps_of_given_neighbours(points):
    fitted = ovik.TSNE(perplexity=10, n_iter=10, neighbour_graph=all_neighbours(points[:80]))
    fitted.fit(points[:80])
    with pytest.raises(ValueError, match="made with neighbour_graph\n"):
        fitted.transform(points[80:])


def test_places_rows_as_the_command_does(points, tmp_path):


    def write(name, rows):
        lines = ["row\t" + "\t".join("abcdef")]
        lines += [f"R{n}\t" + "\t".join(repr(float(x)) for x in row) for n, row in enumerate(rows)]
        (tmp_path / name).write_text("\n".join(lines) + "\n")
        return tmp_path / name

    command = [os.environ["OVIK_TSNE"], "--quiet", "--names", "other", "--no-plots", "--out-dir", tmp_path]
    model = tmp_path / "map.model"
    subprocess.run([*command, write("old.tsv", points[:80]), "-p", "10", "-i", "100", "--model", model],
                   check=True)
    subprocess.run([*command, write("new.tsv", points[80:]), "--onto", model], check=True)
    table = (tmp_path / "new_onto.csv").read_text().splitlines()[1:]
    places = ovik.TSNE(perplexity=10, n_iter=100).fit(points[:80]).transform(points[80:])
    for line, place in zip(table, places, strict=True):
        assert line.split(",")[1:3] == [f"{x:.3f}" for x in place]
