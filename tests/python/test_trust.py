"""How far to trust the place of each row, and what stays of an embedding."""

import json

import numpy as np
import pytest

import ovik

SMALL = {"perplexity": 7, "n_iter": 60}


def test_reliability_sums_to_cost_and_quality(points):
    tsne = ovik.TSNE(**SMALL, reliability=True, quality=30).fit(points)
    columns, false_neighbours, torn_neighbours = tsne.reliability_
    assert list(columns) == ["kept_10", "kept_30", "trustworthiness_10", "trustworthiness_30", "cost", "misfit"]
    assert columns["cost"].sum() == pytest.approx(tsne.kl_divergence_, rel=1e-12)
    assert columns["kept_30"].mean() == pytest.approx(tsne.knn_recall_, rel=1e-12)
    assert columns["trustworthiness_30"].mean() == pytest.approx(tsne.trustworthiness_, rel=1e-12)
    assert len(false_neighbours) == len(torn_neighbours) == len(points)
    distances = np.linalg.norm(points[:, None] - points[None], axis=2)
    np.fill_diagonal(distances, -1)
    ranks = distances.argsort(axis=1, kind="stable").argsort(axis=1)
    places = np.linalg.norm(tsne.embedding_[:, None] - tsne.embedding_[None], axis=2)
    np.fill_diagonal(places, -1)
    on_map = places.argsort(axis=1, kind="stable").argsort(axis=1)
    for row in range(len(points)):
        expected = {n for n in range(len(points)) if 0 < on_map[row, n] <= 10 and ranks[row, n] > 30}
        assert set(false_neighbours[row]) == expected


def test_reliability_leaves_the_embedding_and_goes_with_the_next_fit(points):
    tsne = ovik.TSNE(**SMALL, reliability=True).fit(points)
    plain = ovik.TSNE(**SMALL).fit(points)
    np.testing.assert_array_equal(tsne.embedding_, plain.embedding_)
    assert not hasattr(plain, "reliability_")
    tsne.set_params(reliability=False).fit(points)
    assert not hasattr(tsne, "reliability_")
    with pytest.raises(ValueError, match="at least 30 rows, and X has 29"):
        ovik.TSNE(**SMALL, reliability=True).fit(points[:29])


def test_stability_compares_with_other_seeds_and_columns(points):
    tsne = ovik.TSNE(**SMALL).fit(points)
    found = ovik.stability(tsne, points, 2)
    others = [ovik.TSNE(**SMALL, seed=seed).fit(points) for seed in (12, 13)]
    shared = [ovik.agreement(tsne, other).shared_neighbours for other in others]
    assert found.shared_seeds.mean() == pytest.approx(np.mean(shared), rel=1e-12)
    assert found.pairs == []
    for values in (found.shared_columns, found.spread_columns, found.spread_seeds):
        assert values.shape == (len(points),)
        assert np.isfinite(values).all()
    tsne.n_jobs = 1
    for one, other in zip(found[:4], ovik.stability(tsne, points, 2)[:4], strict=True):
        np.testing.assert_array_equal(one, other)


def test_stability_tells_which_clusters_stay_apart():
    groups = np.repeat(["a", "b", "c"], 30)
    X = np.random.default_rng(1).normal(size=(90, 8))
    X[groups == "b", :4] += 12
    X[groups == "c", 4:] += 12
    tsne = ovik.TSNE(perplexity=7, n_iter=400).fit(X)
    found = ovik.stability(tsne, X, 2, clusters=groups)
    assert [pair[:2] for pair in found.pairs] == [("a", "b"), ("a", "c"), ("b", "c")]
    assert all(pair.stay_apart and pair.apart_columns == 1 for pair in found.pairs)
    mixed = ovik.stability(tsne, X, 1, clusters=np.arange(90) % 2)
    assert not mixed.pairs[0].stay_apart


def test_stability_refuses_what_would_not_change(points):
    tsne = ovik.TSNE(**SMALL).fit(points)
    with pytest.raises(ValueError, match="count should be a whole number from 1"):
        ovik.stability(tsne, points, 0)
    with pytest.raises(ValueError, match="X has 89 rows, and the fit had 90"):
        ovik.stability(tsne, points[:89])
    with pytest.raises(ValueError, match="clusters should have one value per row"):
        ovik.stability(tsne, points, clusters=[1, 2])
    with pytest.raises(ValueError, match="at least 30 rows and 5 columns"):
        ovik.stability(ovik.TSNE(**SMALL).fit(points[:, :4]), points[:, :4])
    distances = np.linalg.norm(points[:, None] - points[None], axis=2)
    with pytest.raises(ValueError, match="precomputed distances have no columns"):
        ovik.stability(ovik.TSNE(**SMALL, metric="precomputed").fit(distances), distances)
    with pytest.raises(ValueError, match="the same start"):
        ovik.stability(ovik.TSNE(**SMALL, init=points[:, :2]).fit(points), points)
    with pytest.raises(ValueError):
        ovik.stability(ovik.TSNE(**SMALL), points)


def test_only_the_matrix_of_the_fit_is_taken(points):
    tsne = ovik.TSNE(**SMALL, reliability=True).fit(points)
    assert ovik.stability(tsne, points.tolist(), 1).pairs == []
    for other in (points + 1, points[::-1], points[:, ::-1]):
        with pytest.raises(ValueError, match="X holds other values than that of the fit"):
            ovik.stability(tsne, other, 1)
        with pytest.raises(ValueError, match="X holds other values than that of the fit"):
            ovik.against_noise(tsne, other, 1)


def test_parameters_count_as_they_were_at_the_fit(points):
    tsne = ovik.TSNE(**SMALL, seeds=2, reliability=True).fit(points)
    tsne.set_params(seeds=1)
    with pytest.raises(ValueError, match="several seeds"):
        ovik.against_noise(tsne, points, 1)
    tsne.fit(points).set_params(seeds=2, neighbour_graph="none.mtx")
    assert len(ovik.against_noise(tsne, points, 1).p_kept) == len(points)
    assert ovik.stability(tsne, points, 1).pairs == []
    distances = np.linalg.norm(points[:, None] - points[None], axis=2)
    nearest = distances.argsort(axis=1, kind="stable")[:, 1:31]
    graph = (np.take_along_axis(distances, nearest, 1).ravel(), nearest.ravel(), np.arange(0, 2701, 30))
    by_graph = ovik.TSNE(**SMALL, neighbour_graph=graph).fit(points).set_params(neighbour_graph=None)
    with pytest.raises(ValueError, match="neighbour_graph gives the neighbours"):
        ovik.stability(by_graph, points, 1)


def test_against_noise_is_the_commands(time_courses, embed_by_command, tmp_path):
    report = tmp_path / "report.json"
    embed_by_command(time_courses, "-i", "30", "--against-noise", "2", "--json", report)
    (run,) = json.loads(report.read_text())["runs"]
    X = ovik.read_matrix(time_courses, missing="zero")
    tsne = ovik.TSNE(n_iter=30, reliability=True).fit(X)
    for jobs in (1, 2):
        tsne.n_jobs = jobs
        found = ovik.against_noise(tsne, X, 2)
        for name, values in found._asdict().items():
            assert list(values) == run["reliability"][name], name
    assert np.mean(found.q_kept <= 0.05) == pytest.approx(run["noise"]["kept"]["told"])


def test_against_noise_refuses_what_noise_cannot_be_compared_with(points):
    tsne = ovik.TSNE(**SMALL, reliability=True).fit(points)
    assert np.all(ovik.against_noise(tsne, points, 1).p_kept <= 1)
    with pytest.raises(ValueError, match="count"):
        ovik.against_noise(tsne, points, 0)
    with pytest.raises(ValueError, match="89 rows"):
        ovik.against_noise(tsne, points[:89])
    with pytest.raises(ValueError, match="reliability=True"):
        ovik.against_noise(ovik.TSNE(**SMALL).fit(points), points)
    with pytest.raises(ValueError, match="several seeds"):
        ovik.against_noise(ovik.TSNE(**SMALL, seeds=2, reliability=True).fit(points), points)
    with pytest.raises(ValueError, match="start"):
        ovik.against_noise(
            ovik.TSNE(**SMALL, init=tsne.embedding_, reliability=True).fit(points), points
        )
