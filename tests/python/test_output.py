"""The container that a map is returned in."""

import pickle

import numpy as np
import pytest

import ovik


def quick():
    return ovik.TSNE(n_iter=3, n_jobs=1)


def test_default_is_an_array(points):
    assert isinstance(quick().set_output(transform="default").fit_transform(points), np.ndarray)


def test_data_frame_has_the_index_of_the_input(points, time_courses):
    pandas = pytest.importorskip("pandas")
    tsne = quick().set_output(transform="pandas")
    table = pandas.DataFrame(points, index=range(100, 190))
    framed = tsne.fit_transform(table)
    assert isinstance(framed, pandas.DataFrame)
    assert framed.index.equals(table.index)
    assert framed.columns.tolist() == ["tsne0", "tsne1"]
    assert np.array_equal(framed.to_numpy(), tsne.embedding_)
    matrix = ovik.read_matrix(time_courses, missing="zero")
    assert tsne.fit_transform(matrix).index.tolist() == matrix.row_names
    assert tsne.fit_transform(points).index.tolist() == list(range(90))


def test_output_is_kept_where_it_is_not_set_anew(points):
    pytest.importorskip("pandas")
    tsne = quick().set_output(transform="pandas").set_output()
    for twin in (tsne, pickle.loads(pickle.dumps(tsne))):
        assert type(twin.fit_transform(points)).__name__ == "DataFrame"


def test_other_containers_are_refused():
    with pytest.raises(ValueError, match='transform should be "default" or "pandas", not \'polars\''):
        quick().set_output(transform="polars")


def test_names_of_components(points):
    tsne = ovik.TSNE(3, n_iter=3, n_jobs=1).fit(points)
    assert tsne.get_feature_names_out().tolist() == ["tsne0", "tsne1", "tsne2"]
    assert tsne.get_feature_names_out(list("abcdef")).dtype == object
    with pytest.raises(ValueError, match="input_features should have length equal to number of fe"):
        tsne.get_feature_names_out(["a"])


def test_names_of_components_are_held_against_the_columns(time_courses):
    matrix = ovik.read_matrix(time_courses, missing="zero")
    tsne = quick().fit(matrix)
    assert tsne.get_feature_names_out(matrix.column_names).tolist() == ["tsne0", "tsne1"]
    with pytest.raises(ValueError, match="input_features is not equal to feature_names_in_"):
        tsne.get_feature_names_out(matrix.column_names[::-1])


def test_components_have_no_names_before_a_fit():
    with pytest.raises(ValueError, match="has not been fitted yet"):
        quick().get_feature_names_out()
