"""How far maps agree."""

import numpy as np
import pytest

import ovik


@pytest.fixture
def map_of_rows():
    return np.random.default_rng(3).normal(size=(60, 2))


def test_a_map_agrees_with_its_mirror_image(map_of_rows):
    found = ovik.agreement(map_of_rows, 3 - 2 * map_of_rows[:, ::-1])
    assert found.disparity == pytest.approx(0, abs=1e-13)
    assert found.shared_neighbours == 1


def test_disparity_is_that_of_the_singular_values(map_of_rows):
    other = map_of_rows + np.random.default_rng(4).normal(scale=0.7, size=(60, 2))
    centred = [one - one.mean(axis=0) for one in (map_of_rows, other)]
    A, B = (one / np.linalg.norm(one) for one in centred)
    overlap = np.linalg.svd(A.T @ B, compute_uv=False).sum()
    found = ovik.agreement(map_of_rows, other)
    assert found.disparity == pytest.approx(1 - overlap**2, abs=1e-13)
    assert 0 < found.shared_neighbours < 1


def test_several_maps_are_averaged(map_of_rows):
    maps = [map_of_rows + np.random.default_rng(s).normal(size=(60, 2)) for s in range(3)]
    pairs = [ovik.agreement(maps[i], maps[j], neighbours=5) for i, j in ((0, 1), (0, 2), (1, 2))]
    found = ovik.agreement(*maps, neighbours=5)
    assert found.disparity == pytest.approx(np.mean([pair.disparity for pair in pairs]))
    assert found.shared_neighbours == pytest.approx(np.mean([pair.shared_neighbours for pair in pairs]))


def test_fitted_estimators_are_maps():
    X = np.random.default_rng(5).normal(size=(40, 4))
    fitted = [ovik.TSNE(perplexity=5, n_iter=50, random_state=seed).fit(X) for seed in (1, 2)]
    assert ovik.agreement(*fitted) == ovik.agreement(*(one.embedding_ for one in fitted))


def test_what_cannot_be_compared_is_refused(map_of_rows):
    with pytest.raises(ValueError, match="takes two"):
        ovik.agreement(map_of_rows)
    with pytest.raises(ValueError, match="59 rows .* cannot be compared with one of 60 rows"):
        ovik.agreement(map_of_rows, map_of_rows[1:])
    with pytest.raises(ValueError, match="neighbours should be at least 1, not 0"):
        ovik.agreement(map_of_rows, map_of_rows, neighbours=0)
    spoilt = map_of_rows.copy()
    spoilt[3, 1] = np.nan
    with pytest.raises(ValueError, match="map 2 has coordinates that are not finite"):
        ovik.agreement(map_of_rows, spoilt)


def test_maps_of_rows_in_another_order_are_refused(map_of_rows):
    pandas = pytest.importorskip("pandas")
    frame = pandas.DataFrame(map_of_rows, index=[f"G{n}" for n in range(60)])
    assert ovik.agreement(frame, frame + 1).shared_neighbours == 1
    with pytest.raises(ValueError, match="in another order"):
        ovik.agreement(frame, frame[::-1])
