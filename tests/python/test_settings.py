"""Parameters that are more than numbers of the fit."""

import os

import numpy as np
import pytest

import ovik


def fit(points, **params):
    return ovik.TSNE(**{"n_iter": 3, "n_jobs": 1, **params}).fit(points)


def refusal(points, **params):
    with pytest.raises(ValueError) as caught:
        fit(points, **params)
    return str(caught.value)


def test_random_state_is_the_seed(points):
    by_seed = fit(points, seed=5)
    assert by_seed.seed_ == 5
    assert np.array_equal(fit(points, random_state=5).embedding_, by_seed.embedding_)
    assert np.array_equal(fit(points, random_state=np.int64(5)).embedding_, by_seed.embedding_)
    assert not np.array_equal(fit(points).embedding_, by_seed.embedding_)


def test_without_random_state_the_seed_is_always_the_same(points):
    assert fit(points, random_state=None).seed_ == fit(points).seed_ == 11


@pytest.mark.parametrize("make", [np.random.RandomState, np.random.default_rng])
def test_seeds_are_drawn_from_generators(points, make):
    generator = make(3)
    first, second = fit(points, random_state=generator), fit(points, random_state=generator)
    assert first.seed_ != second.seed_
    assert first.seed_ == fit(points, random_state=make(3)).seed_
    assert np.array_equal(first.embedding_, fit(points, seed=first.seed_).embedding_)


def test_seed_and_random_state_are_not_both_given(points):
    assert refusal(points, seed=5, random_state=5).startswith("both seed=5 and random_state are given")


@pytest.mark.parametrize("value", [-1, 2**31, 1.5, "5"])
def test_other_random_states_are_refused(points, value):
    assert refusal(points, random_state=value).startswith("random_state should be a whole number from 0")


def test_automatic_learning_rate_grows_with_the_rows(points):
    assert fit(points, learning_rate="auto").learning_rate_ == 200.0
    assert fit(points).learning_rate_ == 200.0
    large = np.random.default_rng(1).normal(size=(2600, 3))
    early = fit(large, learning_rate="auto")
    assert early.learning_rate_ == 2600 / 12
    assert np.array_equal(early.embedding_, fit(large, learning_rate=2600 / 12).embedding_)
    # The step of the last exaggerated iteration is the last of its length.
    ending = fit(large, learning_rate="auto", stop_lying_iter=3)
    assert ending.learning_rate_ == 2600 / 12
    late = fit(large, learning_rate="auto", stop_lying_iter=1)
    assert late.learning_rate_ == 2600
    fixed = fit(large, learning_rate=2600 / 12, stop_lying_iter=1)
    assert not np.array_equal(late.embedding_, fixed.embedding_)
    assert "learning_rate should be a number above 0" in refusal(points, learning_rate="slow")


def test_automatic_learning_rate_follows_an_annealed_exaggeration():
    large = np.random.default_rng(1).normal(size=(2600, 3))
    annealed = {"schedule": "annealed", "learning_rate": "auto", "hold_iter": 1, "release_iter": 2}
    rates = [fit(large, n_iter=n, **annealed).learning_rate_ for n in (1, 2, 3)]
    assert rates == pytest.approx([2600 / (1 + 11 * 2 / 3), 2600 / (1 + 11 / 3), 2600])
    assert fit(large, preset="refined").learning_rate_ == 650


def test_several_seeds_keep_the_map_of_lowest_cost(points):
    best = fit(points, seeds=3, seed=4)
    each = [fit(points, seed=seed) for seed in (4, 5, 6)]
    costs = [one.kl_divergence_ for one in each]
    assert best.seed_costs_ == dict(zip((4, 5, 6), costs, strict=True))
    kept = each[int(np.argmin(costs))]
    assert best.seed_ == kept.seed_ != 4
    assert np.array_equal(best.embedding_, kept.embedding_)
    assert np.array_equal(best.costs_, kept.costs_)
    assert best.seed_agreement_ == pytest.approx(ovik.agreement(*each), rel=1e-12)
    assert not hasattr(best.set_params(seeds=1).fit(points), "seed_costs_")


@pytest.mark.parametrize("params, words", [
    ({"seeds": 0}, "seeds should be"),
    ({"init": "pca"}, "every seed has the same start"),
    ({"preset": "refined"}, "every seed has the same start"),
    ({"callbacks": print}, "callbacks follow one fit"),
    ({"seed": 2**31 - 2}, "seed"),
])
def test_several_seeds_need_a_random_start_each(points, params, words):
    assert words in refusal(points, **{"seeds": 3, **params})


def test_start_is_where_the_map_begins(points):
    start = np.random.default_rng(4).normal(scale=1e-4, size=(90, 2))
    still = fit(points, init=start, n_iter=1, learning_rate=1e-12)
    assert np.allclose(still.embedding_, start - start.mean(axis=0), rtol=0, atol=1e-15)
    moved = fit(points, init=start.tolist(), theta=0.0)
    assert np.array_equal(moved.embedding_, fit(points, init=start, theta=0.0, seed=3).embedding_)
    assert not np.array_equal(moved.embedding_, fit(points, theta=0.0).embedding_)


def test_start_of_places_far_apart_is_warned_of(points):
    start = np.random.default_rng(3).normal(size=(90, 2)) * 1e4
    with pytest.warns(UserWarning, match="^the places of the start lie up to .* from their mean"):
        fit(points, init=start, n_iter=1)


def test_start_finds_rows_by_name(points):
    pd = pytest.importorskip("pandas")
    start = np.random.default_rng(4).normal(scale=10, size=(90, 2))
    names = [f"G{row}" for row in range(90)]
    named = pd.DataFrame(start, index=names)
    by_place = fit(points, init=start).embedding_
    X = pd.DataFrame(points, index=names)
    assert np.array_equal(fit(X, init=named.iloc[::-1]).embedding_, by_place)
    start[[3, 80]] = np.nan
    without = fit(points, init=start).embedding_
    assert np.array_equal(fit(X, init=named.drop(index=["G3", "G80"])).embedding_, without)
    assert np.isfinite(without).all()
    assert "init has the row 'G4' twice" in refusal(X, init=named.rename({"G5": "G4"}))


def test_start_along_components_is_centred_and_scaled(points):
    still = fit(points, init="pca", n_iter=1, learning_rate=1e-12).embedding_
    centred = points - points.mean(axis=0)
    directions = np.linalg.svd(centred)[2][:2]
    largest = np.abs(directions).argmax(axis=1)
    scores = centred @ (directions.T * np.sign(directions[[0, 1], largest]))
    expected = scores * 1e-4 / scores[:, 0].std(ddof=1)
    assert np.allclose(still, expected, rtol=1e-8, atol=1e-13)


def test_components_stand_for_columns(points):
    reduced = fit(points, pca=3)
    assert reduced.embedding_.shape == (90, 2)
    assert not np.array_equal(reduced.embedding_, fit(points).embedding_)
    assert "components reduce nothing" in refusal(points, pca=points.shape[1])


def test_start_is_not_changed(points):
    start = np.random.default_rng(4).normal(size=(90, 2))
    before = start.copy()
    fit(points, init=start)
    assert np.array_equal(start, before)


@pytest.mark.parametrize("init, said", [
    ("grid", 'init should be "random", "pca", "sample" or an array of the shape (90, 2), not \'grid\''),
    ("given", 'init should be "random", "pca", "sample" or an array'),
    (np.zeros((90, 3)), "the shape (90, 2), not (90, 3)"),
    (np.full((90, 2), np.nan), "init has coordinates for none of the rows"),
    (np.tile([np.nan, 1.0], (90, 1)), "not finite"),
    (np.full((90, 2), np.inf), "not finite"),
    ([["a", "b"]] * 90, 'init should be "random", "pca", "sample" or an array of numbers'),
    (None, "not ()"),
])
def test_other_starts_are_refused(points, init, said):
    assert said in refusal(points, init=init)


@pytest.mark.parametrize("metric", ["manhattan", "Pearson", None, 3, ["cosine"]])
def test_other_metrics_are_refused(points, metric):
    assert refusal(points, metric=metric) == (
        'metric should be "euclidean", "pearson", "cosine", "spearman" or "precomputed", '
        f"not {metric!r}"
    )


@pytest.mark.parametrize("multiscale", [
    [10, 10], [0.5], ["a"], "10", 10, list(range(10, 19)), [np.nan], [[10, 20]], {"a": 1},
])
def test_other_lists_of_perplexities_are_refused(points, multiscale):
    assert refusal(points, multiscale=multiscale) == (
        "multiscale should be up to 8 different numbers, each at least 1, at most 1e9, "
        f"not {multiscale!r}"
    )


@pytest.mark.parametrize("params, said", [
    ({"hold_iter": 50}, 'hold_iter has no effect beside schedule="classic"\n'
     'Leave hold_iter out, or give schedule="annealed".'),
    ({"schedule": "annealed", "stop_lying_iter": 5}, 'beside schedule="annealed"'),
    ({"perplexity": 10, "affinity": "uniform"}, 'beside affinity="uniform"'),
    ({"perplexity": 10, "multiscale": (5, 20)}, "beside multiscale=[5,20]"),
    ({"neighbours": 5}, 'neighbours has no effect beside affinity="perplexity"'),
    ({"metric": "precomputed", "init": "pca"}, 'init="pca" does not go with metric="precomputed"'),
    ({"affinity": "uniform", "neighbours": 89}, "neighbours=89: a row has 89 others"),
    ({"multiscale": [10, 89]}, "multiscale=[10,89]: a row has 89 others"),
    ({"pca": 6}, "pca=6: the matrix has 90 rows and 6 columns"),
    ({"preset": "fine"}, 'preset should be "classic" or "refined", not \'fine\''),
    ({"preset": "refined", "stop_lying_iter": 5},
     'stop_lying_iter has no effect beside schedule="annealed"\n'
     'Leave stop_lying_iter out, or leave preset="refined" out.'),
    ({"preset": "refined", "schedule": "annealed", "momentum": 0.6}, 'or give schedule="classic".'),
    ({"preset": "refined", "pca": 1}, 'Give more than pca=1, or leave preset="refined" out.'),
    ({"init": "pca", "pca": 1}, "Give more than pca=1, or take the random start."),
])
def test_parameters_that_do_not_fit_are_refused(points, params, said):
    assert said in refusal(points, **params)


def settled(**params):
    """The options as the engine gets them."""
    return ovik.TSNE(**params)._settled_options(90, 6, False)


def test_preset_stands_for_what_has_its_default():
    refined = settled(preset="refined")
    assert refined["schedule"] == "annealed"
    assert refined["stop_lying_iter"] is None
    assert settled(preset="refined", exaggeration=4)["exaggeration"] == 4
    assert settled(preset="refined", metric="pearson")["metric"] == "pearson"
    assert settled(preset="refined", metric="precomputed")["init"] == "random"


def test_classic_preset_is_the_default():
    classic = settled()
    assert settled(preset="classic") == classic
    assert classic["schedule"] == "classic"
    assert classic["multiscale"] == []
    assert classic["hold_iter"] is classic["release_iter"] is classic["neighbours"] is None


def threads_seen(points, monkeypatch, n_jobs):
    seen = []
    embed = ovik._core.embed

    def watched(X, options, manner):
        seen.append(manner["threads"])
        return embed(X, options, manner)

    with monkeypatch.context() as patch:
        patch.setattr("ovik._tsne._core.embed", watched)
        fit(points, n_jobs=n_jobs)
    return seen[0]


@pytest.mark.parametrize("n_jobs, cores, threads", [
    (None, 8, 1), (1, 8, 1), (3, 8, 3), (-1, 8, 0), (-2, 8, 7), (-8, 8, 1), (-9, 8, 1), (-2, 1, 1),
])
def test_threads_are_counted_as_jobs_are(points, monkeypatch, n_jobs, cores, threads):
    monkeypatch.setattr(os, "sched_getaffinity", lambda pid: set(range(cores)))
    assert threads_seen(points, monkeypatch, n_jobs) == threads


def test_jobs_do_not_change_the_map(points):
    expected = fit(points).embedding_
    for n_jobs in (None, 2, -1, -2):
        assert np.array_equal(fit(points, n_jobs=n_jobs).embedding_, expected)


@pytest.mark.parametrize("params, said", [
    ({"n_jobs": 0}, "n_jobs should be at least 1, or -1"),
    ({"n_jobs": 1.5}, "n_jobs should be a whole number"),
    ({"quality": 0}, "quality should be a whole number from 1"),
    ({"quality": 45}, "quality should be less than half of n_samples=90, at most 44, not 45"),
    ({"on_interrupt": "ignore"}, 'on_interrupt should be "raise" or "keep", not \'ignore\''),
    ({"callbacks": 3}, "callbacks should be a function or a list of functions, not 3"),
    ({"callbacks": [print, None]}, "callbacks should be a function or a list of functions"),
    ({"callbacks_every_iters": 0}, "callbacks_every_iters should be a whole number from 1"),
])
def test_parameters_out_of_range(points, params, said):
    assert refusal(points, **params).startswith(said)
