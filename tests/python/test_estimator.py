"""The estimator's manners."""

import copy
import inspect
import pickle

import numpy as np
import pytest
from table import Table

import ovik


def quick(**params):
    return ovik.TSNE(n_iter=3, **params)


def test_constructor_only_stores_its_arguments():
    values = {name: object() for name in ovik.TSNE().get_params()}
    tsne = ovik.TSNE(**values)
    assert tsne.get_params() == values
    assert vars(tsne) == values


def test_parameters_have_the_commands_defaults():
    assert ovik.TSNE().get_params(deep=False) == {
        "n_components": 2, "perplexity": 20.0, "theta": 0.5, "method": "auto", "n_iter": 1000,
        "stop_lying_iter": 250, "mom_switch_iter": 250, "seed": 11, "learning_rate": 200.0,
        "exaggeration": 12.0, "start_spread": 0.0001, "momentum": 0.5, "final_momentum": 0.8,
        "gains": "adaptive", "metric": "euclidean", "pca": 0, "affinity": "perplexity", "neighbours": 15,
        "multiscale": None, "neighbour_search": "exact", "init": "random", "schedule": "classic", "hold_iter": 125,
        "release_iter": 125, "stop_when": 0.0, "numerics": "platform", "neighbour_graph": None,
        "preset": "classic", "random_state": None, "callbacks": None,
        "callbacks_every_iters": 50, "on_interrupt": "raise", "quality": None, "reliability": False, "seeds": 1,
        "n_jobs": -1, "verbose": False,
    }


def test_set_params_sets_all_or_nothing():
    tsne = ovik.TSNE()
    assert tsne.set_params(theta=0.0, n_iter=7) is tsne
    assert (tsne.theta, tsne.n_iter) == (0.0, 7)
    with pytest.raises(ValueError, match="'metric_name' is not a parameter of TSNE"):
        tsne.set_params(theta=1.0, metric_name=3)
    assert tsne.theta == 0.0


def test_repr_shows_what_is_not_default():
    assert repr(ovik.TSNE()) == "TSNE()"
    assert repr(ovik.TSNE(3, theta=0.0)) == "TSNE(n_components=3, theta=0.0)"


def test_fit_returns_itself_and_sets_attributes(points):
    tsne = quick()
    assert tsne.fit(points, np.zeros(90)) is tsne
    assert tsne.n_iter_ == 3
    assert tsne.n_features_in_ == 6
    assert not hasattr(tsne, "feature_names_in_")
    assert tsne.embedding_ is not quick().fit_transform(points)
    assert np.array_equal(tsne.embedding_, quick().fit_transform(points))


def test_failed_fit_leaves_attributes_as_they_were(points):
    tsne = quick().fit(points)
    embedding = tsne.embedding_
    with pytest.raises(ValueError):
        tsne.fit(points[:2])
    assert tsne.embedding_ is embedding


def test_column_names_are_those_of_the_last_fit(points):
    tsne = quick().fit(Table(points, list("abcdef")))
    assert tsne.feature_names_in_.tolist() == list("abcdef")
    assert tsne.feature_names_in_.dtype == object
    assert not hasattr(tsne.fit(Table(points, range(6))), "feature_names_in_")


@pytest.mark.parametrize("convert", [
    lambda X: X.tolist(),
    lambda X: X.astype(object),
    np.asfortranarray,
    lambda X: np.repeat(X, 2, axis=0)[::2],
    lambda X: X.astype(">f8"),
    lambda X: Table(X, list("abcdef")),
    lambda X: np.ma.masked_array(X),
])
def test_any_array_like_gives_the_same_bytes(points, convert):
    assert quick().fit_transform(convert(points)).tobytes() == quick().fit_transform(points).tobytes()


@pytest.mark.parametrize("dtype", [np.float32, np.int16, np.uint8, bool])
def test_other_numbers_are_converted(points, dtype):
    X = (points > 0).astype(dtype) if dtype is bool else (10 + 3 * points).astype(dtype)
    expected = quick().fit_transform(X.astype(np.float64))
    assert np.array_equal(quick().fit_transform(X), expected)


def test_input_is_not_changed(points):
    before = points.copy()
    points.flags.writeable = False
    quick().fit(points)
    assert np.array_equal(points, before)


def test_pickles_and_copies(points):
    tsne = quick(theta=0.25).fit(points)
    for twin in (pickle.loads(pickle.dumps(tsne)), copy.copy(tsne), copy.deepcopy(tsne)):
        assert twin.get_params() == tsne.get_params()
        assert np.array_equal(twin.embedding_, tsne.embedding_)
        assert np.array_equal(twin.fit_transform(points), tsne.embedding_)


def test_is_silent_unless_verbose(points, capfd):
    for theta in (0.0, 0.5):
        quick(theta=theta).fit(points)
    assert capfd.readouterr() == ("", "")
    quick(verbose=True).fit(points)
    out = capfd.readouterr().out
    assert out.startswith("-- Random seed:  11\n-- Launching t-SNE at perplexity = 20.00")
    assert "at iteration (3/3)" in out


def test_everything_public_has_a_docstring():
    for name in ovik.__all__:
        assert name == "__version__" or inspect.getdoc(getattr(ovik, name))
    for name, method in inspect.getmembers(ovik.TSNE, inspect.isfunction):
        assert name.startswith("_") or inspect.getdoc(method)
    documented = inspect.getdoc(ovik.TSNE)
    for name in ovik.TSNE().get_params():
        assert f"\n{name} : " in documented
