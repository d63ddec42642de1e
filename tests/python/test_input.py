"""What may be given as a matrix beside arrays."""

import numpy as np
import pytest

import ovik


def quick(**params):
    return ovik.TSNE(**{"n_iter": 3, "n_jobs": 1, **params})


def test_matrix_of_the_reader_gives_names(time_courses):
    matrix = ovik.read_matrix(time_courses, missing="zero")
    tsne = quick().fit(matrix)
    assert np.array_equal(tsne.embedding_, quick().fit_transform(matrix.values))
    assert tsne.row_names_.tolist() == matrix.row_names
    assert tsne.feature_names_in_.tolist() == matrix.column_names
    assert not hasattr(tsne.fit(matrix.values), "row_names_")


def test_data_frame_gives_names(points):
    pandas = pytest.importorskip("pandas")
    index = [f"G{row}" for row in range(90)]
    tsne = quick().fit(pandas.DataFrame(points, index=index, columns=list("abcdef")))
    assert tsne.row_names_.tolist() == index
    assert tsne.feature_names_in_.tolist() == list("abcdef")
    assert not hasattr(tsne.fit(pandas.DataFrame(points)), "row_names_")


@pytest.mark.parametrize("form", ["csr_matrix", "csc_matrix", "coo_matrix", "csr_array", "lil_matrix"])
def test_sparse_matrices_are_as_their_dense_ones(points, form):
    sparse = pytest.importorskip("scipy.sparse")
    points[points < 0.3] = 0.0
    expected = quick().fit_transform(points)
    assert np.array_equal(quick().fit_transform(getattr(sparse, form)(points)), expected)
    whole = (10 * points).astype(np.int32)
    expected = quick().fit_transform(whole)
    assert np.array_equal(quick().fit_transform(getattr(sparse, form)(whole)), expected)


def test_sparse_matrix_too_large_for_memory_is_refused_beforehand():
    sparse = pytest.importorskip("scipy.sparse")
    huge = sparse.csr_matrix((10**6, 10**7))
    with pytest.raises(MemoryError, match=r"1000000 x 10000000 values take 160000\.0 GB as the dense"):
        quick().fit(huge)


def test_sparse_matrix_of_complex_numbers_is_refused(points):
    sparse = pytest.importorskip("scipy.sparse")
    with pytest.raises(ValueError, match="Complex data not supported"):
        quick().fit(sparse.csr_matrix(points * 1j))


def test_missing_values_of_sparse_matrices_are_placed(points):
    sparse = pytest.importorskip("scipy.sparse")
    points[4, 2] = np.nan
    with pytest.raises(ValueError, match="the first in row 4, column 2"):
        quick().fit(sparse.csr_matrix(points))


def test_missing_values_of_a_matrix_of_the_reader_are_placed(time_courses):
    matrix = ovik.read_matrix(time_courses)
    matrix.values[5, 1] = np.nan
    with pytest.raises(ValueError, match="are not finite .* the first in row 5, column 1"):
        quick().fit(matrix)
