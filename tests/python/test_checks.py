"""What cannot be embedded is refused with its shape and the cure."""

import resource
import subprocess
import sys

import numpy as np
import pytest

import ovik


def refusal(X, error=ValueError, **params):
    with pytest.raises(error) as caught:
        ovik.TSNE(**{"n_iter": 3, **params}).fit(X)
    return str(caught.value)


def test_values_that_are_not_finite_are_counted_and_placed(points):
    points[40, 3] = np.nan
    points[7, 5] = -np.inf
    assert refusal(points).startswith(
        "X holds 2 of 540 values that are not finite (NaN or infinite), the first in row 7, "
        "column 5, counted from 0: -inf\nFill them in"
    )


def test_masked_values_are_missing(points):
    assert "holds 1 of 540 values" in refusal(np.ma.masked_array(points, points == points[2, 2]))


def test_missing_values_of_other_kinds_are_refused(points):
    table = points.astype(object)
    table[3, 3] = None
    assert "holds 1 of 540 values" in refusal(table) or "array of numbers" in refusal(table)


@pytest.mark.parametrize("shape", [(), (90,), (9, 5, 2)])
def test_other_than_two_dimensions(shape):
    assert f"not the shape {shape}\n" in refusal(np.ones(shape))


@pytest.mark.parametrize("shape", [(2, 5), (0, 5), (50, 0)])
def test_too_few_rows_or_columns(shape):
    assert f"n_samples={shape[0]} and n_features={shape[1]}" in refusal(np.ones(shape))


def test_elements_that_are_no_numbers_are_errors_of_their_kind():
    assert "argument must be a string or a real number" in refusal([[{}, {}]] * 5, error=TypeError)
    assert "Complex data not supported" in refusal(np.ones((5, 2), dtype=complex))


@pytest.mark.parametrize("X", [
    [["a", "b"]] * 5,
    [[1.0, "x"]] * 5,
    [[1.0, 2.0], [3.0]],
    np.ones((5, 2), dtype=complex),
    np.ones((5, 2), dtype="datetime64[s]"),
    [[{}, {}]] * 5,
    None,
])
def test_what_is_no_array_of_numbers(X):
    text = refusal(X)
    assert "X should be an array of numbers: " in text or "X should have two dimensions" in text


def test_rows_all_equal():
    assert refusal(np.ones((90, 4))).startswith("X: all rows hold the same values")


def test_values_without_a_common_scale(points):
    assert "too large" in refusal(points * 1e305)
    assert "too close" in refusal(points * 1e-305)


def test_perplexity_of_as_many_neighbours_as_there_are(points):
    assert refusal(points, perplexity=89).startswith(
        "perplexity=89: with n_samples=90 a row has 89 others"
    )
    with pytest.warns(UserWarning, match="should be at most a third of the other rows, 29.7"):
        ovik.TSNE(perplexity=88, n_iter=3).fit(points)


@pytest.mark.parametrize("params", [
    {"n_components": 1}, {"n_components": 51}, {"n_components": 2.0}, {"n_components": None},
    {"perplexity": 0.5}, {"perplexity": np.nan}, {"perplexity": "30"}, {"perplexity": None},
    {"theta": -0.1}, {"theta": np.inf}, {"theta": 10**400},
    {"n_iter": 0}, {"n_iter": 2**31}, {"n_iter": "9"},
    {"stop_lying_iter": -1}, {"mom_switch_iter": 2**31}, {"n_jobs": 0}, {"n_jobs": 0.5},
])
def test_parameters_out_of_range(points, params):
    (name, value), = params.items()
    text = refusal(points, **params)
    assert text.startswith(f"{name} should be ")
    assert text.endswith(repr(value))


def test_numbers_of_numpy_are_parameters_too(points):
    tsne = ovik.TSNE(np.int64(2), perplexity=np.float32(20), theta=0, n_iter=np.uint8(3))
    assert tsne.fit_transform(points).shape == (90, 2)


def test_more_threads_than_are_of_use_are_told(points):
    with pytest.warns(UserWarning, match="1000000 threads are more than are of use"):
        ovik.TSNE(n_iter=3, n_jobs=1_000_000).fit(points)


def test_too_little_memory_is_a_memory_error():
    """An exact fit of 40,000 rows takes 25 GB; the address space is limited to 4 GB."""
    script = """
import resource
import numpy, ovik
resource.setrlimit(resource.RLIMIT_AS, (4 * 2**30, resource.RLIM_INFINITY))
X = numpy.random.default_rng(1).normal(size=(40_000, 3))
try:
    ovik.TSNE(theta=0.0).fit(X)
except MemoryError as error:
    print(error)
"""
    run = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True)
    assert run.stderr == ""
    assert run.stdout.startswith("a work array does not fit in memory: fewer rows, ")
    assert run.stdout.endswith("or a theta above 0 take less\n")
    assert run.returncode == 0
