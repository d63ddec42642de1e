"""The package among the estimators and pipelines of scikit-learn, whose checks it passes."""

import numpy as np
import pytest

import ovik

pytest.importorskip("sklearn")
from sklearn import config_context  # noqa: E402
from sklearn.base import clone  # noqa: E402
from sklearn.pipeline import make_pipeline  # noqa: E402
from sklearn.preprocessing import StandardScaler  # noqa: E402
from sklearn.utils import estimator_checks  # noqa: E402

# What the checks ask for and is refused on purpose: the reason, as the refusal says it.
ONE_COMPONENT = "n_components should be a whole number from 2 to 50, not 1"
TOO_FEW_ROWS = "perplexity=20: with n_samples="

OF_ONE_COMPONENT = {
    "check_dict_unchanged",
    "check_dont_overwrite_parameters",
    "check_fit2d_1feature",
    "check_fit2d_predict1d",
    "check_methods_sample_order_invariance",
    "check_methods_subset_invariance",
}
# Rows of the fit are placed like any others, not where the fit left them.
OTHER_PLACES = "fit_transform and transform outcomes not consistent in TSNE"
OF_OTHER_PLACES = {
    "check_transformer_data_not_an_array",
    "check_transformer_general",
    "check_transformer_general(readonly_memmap=True)",
}
# These have at most 21 rows, which the default perplexity, 20, is too large for.
OF_FEW_ROWS = {
    "check_estimators_dtypes",
    "check_estimators_fit_returns_self",
    "check_estimators_fit_returns_self(readonly_memmap=True)",
    "check_estimators_nan_inf",
    "check_estimators_overwrite_params",
}


def cases(tsne, few_rows):
    reasons = dict.fromkeys(OF_ONE_COMPONENT, ONE_COMPONENT) | dict.fromkeys(few_rows, TOO_FEW_ROWS)
    reasons |= dict.fromkeys(OF_OTHER_PLACES, OTHER_PLACES)
    checks = estimator_checks.check_estimator(tsne, generate_only=True)
    for estimator, check in checks:
        name = estimator_checks._get_check_estimator_ids(check)
        yield pytest.param(estimator, check, reasons.pop(name, None), id=f"{tsne!r}-{name}")
    assert not reasons, "checks that are not there any more"


ALL_CASES = [
    *cases(ovik.TSNE(n_jobs=1), OF_FEW_ROWS),
    *cases(ovik.TSNE(perplexity=3, n_jobs=1), set()),
]


@pytest.mark.filterwarnings("ignore")
@pytest.mark.parametrize("estimator, check, reason", ALL_CASES)
def test_check_passes_or_fails_for_its_reason(estimator, check, reason):
    if reason is None:
        check(estimator)
        return
    with pytest.raises((ValueError, AssertionError)) as caught:
        check(estimator)
    assert reason in str(caught.value)


def test_no_check_was_left_out():
    assert len(ALL_CASES) >= 2 * 28


def test_clone_has_the_parameters_and_no_results(points):
    tsne = ovik.TSNE(n_iter=3, theta=0.25, init=points[:, :2].copy(), n_jobs=1)
    twin = clone(tsne.fit(points))
    assert not hasattr(twin, "embedding_")
    assert np.array_equal(twin.fit_transform(points), tsne.embedding_)


def test_is_the_last_step_of_a_pipeline(points):
    expected = ovik.TSNE(n_iter=3).fit_transform(StandardScaler().fit_transform(points))
    pipeline = make_pipeline(StandardScaler(), ovik.TSNE(n_iter=3))
    assert np.array_equal(pipeline.fit_transform(points), expected)


def test_output_follows_pipeline_and_configuration(points):
    pandas = pytest.importorskip("pandas")
    table = pandas.DataFrame(points, index=[f"G{row}" for row in range(90)], columns=list("abcdef"))
    pipeline = make_pipeline(StandardScaler(), ovik.TSNE(n_iter=3)).set_output(transform="pandas")
    with config_context(transform_output="pandas"):
        configured = ovik.TSNE(n_iter=3).fit_transform(table)
        chosen = ovik.TSNE(n_iter=3).set_output(transform="default").fit_transform(table)
    for framed in (pipeline.fit_transform(table), configured):
        assert list(framed.index) == list(table.index)
        assert list(framed.columns) == ["tsne0", "tsne1"]
    assert isinstance(chosen, np.ndarray)
    framed = clone(ovik.TSNE(n_iter=3).set_output(transform="pandas")).fit_transform(table)
    assert isinstance(framed, pandas.DataFrame)


def test_grid_of_parameters_is_set(points):
    tsne = ovik.TSNE()
    for params in ({"perplexity": 5.0, "n_iter": 3}, {"perplexity": 10.0, "n_iter": 4}):
        assert clone(tsne).set_params(**params).fit(points).n_iter_ == params["n_iter"]
