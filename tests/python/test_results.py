"""The package comes to the numbers of the command."""

import json

import numpy as np
import pytest

import ovik


def as_in_table(embedding):
    return [["%.0f" % y if y == 0 else "%.3f" % y for y in row] for row in embedding]


@pytest.mark.parametrize("theta", [0.0, 0.5])
@pytest.mark.parametrize("n_iter", [1, 260])
def test_embedding_is_the_commands_bit_for_bit(time_courses, embed_by_command, theta, n_iter):
    expected = embed_by_command(
        time_courses, "-p", "12.5", "-t", str(theta), "-i", str(n_iter)
    )
    X = ovik.read_matrix(time_courses, missing="zero").values
    for n_jobs in (1, 2, 3, -1):
        tsne = ovik.TSNE(perplexity=12.5, theta=theta, n_iter=n_iter, n_jobs=n_jobs).fit(X)
        assert tsne.n_iter_ == n_iter
        assert tsne.embedding_.tobytes() == expected.embedding.tobytes()
        assert as_in_table(tsne.embedding_) == expected.coordinates


def test_whole_brauer_matrix(brauer, embed_by_command):
    expected = embed_by_command(brauer, "-p", "30")
    embedding = ovik.TSNE(perplexity=30).fit_transform(ovik.read_matrix(brauer).values)
    assert embedding.shape == (5537, 2)
    assert embedding.tobytes() == expected.embedding.tobytes()
    assert as_in_table(embedding) == expected.coordinates


def test_schedule_is_the_commands(time_courses, embed_by_command):
    expected = embed_by_command(
        time_courses, "-i", "40", "--stop-lying-iter", "10", "--mom-switch-iter", "20"
    )
    tsne = ovik.TSNE(n_iter=40, stop_lying_iter=10, mom_switch_iter=20)
    X = ovik.read_matrix(time_courses, missing="zero").values
    assert tsne.fit_transform(X).tobytes() == expected.embedding.tobytes()


@pytest.mark.parametrize("params, options", [
    ({"metric": "pearson"}, ["--metric", "pearson"]),
    ({"pca": 5}, ["--pca", "5"]),
    ({"affinity": "uniform", "neighbours": 9}, ["--affinity", "uniform", "--neighbours", "9"]),
    ({"multiscale": (5, 30)}, ["--multiscale", "5,30"]),
    ({"neighbour_search": "approximate"}, ["--neighbour-search", "approximate"]),
    ({"init": "pca"}, ["--start", "pca"]),
    ({"schedule": "annealed", "hold_iter": 10, "release_iter": 15},
     ["--schedule", "annealed", "--hold-iter", "10", "--release-iter", "15"]),
    ({"learning_rate": "auto"}, ["--learning-rate", "auto"]),
    ({"preset": "refined"}, ["--preset", "refined"]),
])
def test_choices_are_the_commands(time_courses, embed_by_command, params, options):
    expected = embed_by_command(time_courses, "-i", "40", *options)
    X = ovik.read_matrix(time_courses, missing="zero").values
    assert ovik.TSNE(n_iter=40, **params).fit_transform(X).tobytes() == expected.embedding.tobytes()


def test_stops_where_the_command_does(time_courses, embed_by_command):
    expected = embed_by_command(time_courses, "-i", "400", "--stop-when", "0.01", "--stop-lying-iter", "20")
    X = ovik.read_matrix(time_courses, missing="zero").values
    tsne = ovik.TSNE(n_iter=400, stop_when=0.01, stop_lying_iter=20).fit(X)
    assert tsne.n_iter_ < 400
    assert tsne.embedding_.tobytes() == expected.embedding.tobytes()


# The automatic rate of 900 rows is 200 while they are exaggerated twelvefold, and 900 at the end.
@pytest.mark.parametrize("n_iter, params, options", [
    (40, {"learning_rate": "auto", "stop_lying_iter": 20},
     ["--learning-rate", "auto", "--stop-lying-iter", "20"]),
    (40, {"schedule": "annealed", "hold_iter": 10, "release_iter": 20, "learning_rate": "auto"},
     ["--schedule", "annealed", "--hold-iter", "10", "--release-iter", "20",
      "--learning-rate", "auto"]),
    (40, {"preset": "refined", "hold_iter": 10, "release_iter": 20},
     ["--preset", "refined", "--hold-iter", "10", "--release-iter", "20"]),
    (300, {"preset": "refined"}, ["--preset", "refined"]),
])
def test_steps_behind_the_exaggeration_are_the_commands(
    first_genes, embed_by_command, n_iter, params, options
):
    expected = embed_by_command(first_genes, "-i", str(n_iter), *options)
    X = ovik.read_matrix(first_genes).values
    tsne = ovik.TSNE(n_iter=n_iter, **params).fit(X)
    assert tsne.embedding_.tobytes() == expected.embedding.tobytes()
    assert tsne.learning_rate_ == len(X) == 900


@pytest.mark.parametrize("stop_lying_iter", [10, 999])
def test_cost_is_the_commands_without_exaggeration(time_courses, embed_by_command, stop_lying_iter):
    expected = embed_by_command(
        time_courses, "-i", "20", "--stop-lying-iter", str(stop_lying_iter), "--quality"
    )
    tsne = ovik.TSNE(n_iter=20, stop_lying_iter=stop_lying_iter)
    tsne.fit(ovik.read_matrix(time_courses, missing="zero").values)
    assert f"-- Cost without exaggeration: {tsne.kl_divergence_:.4f}\n" in expected.output


@pytest.mark.parametrize("n_components", [2, 3, 5])
def test_embedding_has_the_dimensions_asked_for(points, n_components):
    embedding = ovik.TSNE(n_components, n_iter=3).fit_transform(points)
    assert embedding.shape == (90, n_components)
    assert embedding.dtype == np.float64
    assert np.allclose(embedding.mean(axis=0), 0.0)


def test_costs_and_quality_are_the_commands(time_courses, embed_by_command, tmp_path):
    report = tmp_path / "report.json"
    embed_by_command(time_courses, "-i", "300", "--quality", "--json", report)
    (run,) = json.loads(report.read_text())["runs"]
    X = ovik.read_matrix(time_courses, missing="zero")
    for measured in run["quality"]:
        tsne = ovik.TSNE(n_iter=300, quality=measured["neighbours"]).fit(X)
        assert tsne.costs_.tolist() == run["costs"]
        assert tsne.costs_[-1] == tsne.kl_divergence_ == run["final_cost"]
        assert tsne.trustworthiness_ == measured["trustworthiness"]
        assert tsne.knn_recall_ == measured["preservation"]
    assert [measured["neighbours"] for measured in run["quality"]] == [10, 30]


def test_quality_is_measured_on_request_alone(points):
    tsne = ovik.TSNE(n_iter=3, quality=5).fit(points)
    assert 0.0 < tsne.knn_recall_ < 1.0
    assert not hasattr(tsne.set_params(quality=None).fit(points), "knn_recall_")
