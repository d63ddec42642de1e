"""Functions that see the fit while it runs."""

import threading

import numpy as np
import pytest

import ovik


def fit(points, callbacks, **params):
    return ovik.TSNE(**{"n_iter": 12, "n_jobs": 1, "callbacks": callbacks, **params}).fit(points)


def test_callbacks_see_iteration_cost_and_embedding(points):
    seen = []
    tsne = fit(points, lambda *state: seen.append(state), callbacks_every_iters=5)
    assert [iteration for iteration, _, _ in seen] == [0, 5, 10, 12]
    assert [error for _, error, _ in seen] == [tsne.costs_[n] for n in (0, 5, 10, 12)]
    assert np.array_equal(seen[-1][2], tsne.embedding_)
    for iteration, _, embedding in seen:
        shorter = ovik.TSNE(n_iter=max(iteration, 1), n_jobs=1).fit(points)
        assert iteration == 0 or np.array_equal(embedding, shorter.embedding_)


def test_costs_are_exaggerated_under_the_classic_schedule_alone(points):
    def costs(**params):
        return ovik.TSNE(n_iter=3, n_jobs=1, **params).fit(points).costs_

    # One step from the same random start.
    true_cost = costs(stop_lying_iter=0)[0]
    assert costs()[0] > 2 * true_cost
    assert costs(schedule="annealed")[0] == pytest.approx(true_cost, rel=0.01)


def test_callbacks_do_not_change_the_map(points):
    def scribble(iteration, error, embedding):
        embedding[:] = 7.0

    plain = ovik.TSNE(n_iter=12, n_jobs=1).fit(points)
    assert np.array_equal(fit(points, scribble, callbacks_every_iters=1).embedding_, plain.embedding_)


def test_one_that_says_so_ends_the_fit(points):
    seen = []

    def note(iteration, error, embedding):
        seen.append(iteration)

    tsne = fit(points, [lambda iteration, *_: iteration >= 6, note], callbacks_every_iters=3)
    assert seen == [0, 3, 6]
    assert tsne.n_iter_ == 6 and len(tsne.costs_) == 7
    assert np.array_equal(tsne.embedding_, ovik.TSNE(n_iter=6, n_jobs=1).fit(points).embedding_)


def test_truth_of_numpy_counts(points):
    assert fit(points, lambda *_: np.bool_(True)).n_iter_ == 0
    assert fit(points, lambda *_: np.bool_(False)).n_iter_ == 12
    with pytest.raises(ValueError, match="truth value"):
        fit(points, lambda iteration, error, embedding: embedding)


def test_exception_ends_the_fit_and_leaves_it(points):
    def fail(iteration, error, embedding):
        raise LookupError("of its own")

    tsne = ovik.TSNE(n_iter=10**9, callbacks=fail, n_jobs=1)
    with pytest.raises(LookupError, match="of its own"):
        tsne.fit(points)
    assert not hasattr(tsne, "embedding_")


def test_no_callbacks_are_called(points):
    assert fit(points, []).n_iter_ == 12


def test_callbacks_run_in_the_thread_of_the_fit(points):
    seen = []
    fit(points, lambda *_: seen.append(threading.current_thread()))
    assert set(seen) == {threading.current_thread()}


def test_callback_may_fit_again(points):
    inner = []

    def again(iteration, error, embedding):
        inner.append(ovik.TSNE(n_iter=3, n_jobs=1).fit_transform(points))

    tsne = fit(points, again)
    assert np.array_equal(inner[0], ovik.TSNE(n_iter=3, n_jobs=1).fit_transform(points))
    assert np.array_equal(tsne.embedding_, ovik.TSNE(n_iter=12, n_jobs=1).fit_transform(points))


def test_many_calls_take_little_time(points):
    calls = []
    fit(points, lambda *_: calls.append(1), n_iter=400, callbacks_every_iters=1)
    assert len(calls) == 401
