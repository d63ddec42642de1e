"""Parameters of the estimator that are more than numbers of the fit, as the engine takes them."""

from __future__ import annotations

import operator
import os
from collections.abc import Callable
from typing import Any

import numpy as np
from numpy.typing import NDArray

PRESETS = ("classic", "refined")
_STARTS = ("random", "pca", "sample")
_SEEDS = 2**31


def whole_number(name: str, value: Any, least: int, most: int) -> int:
    """The value as a whole number.

    Raises
    ------
    ValueError
        If it is none, or out of its range.
    """
    try:
        number = operator.index(value)
    except TypeError:
        number = None
    if number is None or not least <= number <= most:
        raise ValueError(f"{name} should be a whole number from {least} to {most}, not {value!r}")
    return number


def one_of(name: str, value: Any, choices: tuple[str, ...]) -> str:
    """The value, which has to be one of some texts."""
    if not isinstance(value, str) or value not in choices:
        listed = " or ".join(f'"{choice}"' for choice in choices)
        raise ValueError(f"{name} should be {listed}, not {value!r}")
    return value


def thread_count(n_jobs: Any) -> int:
    """The number of threads as the engine takes it: 0 for one per core."""
    if n_jobs is None:
        return 1
    number = whole_number("n_jobs", n_jobs, -1_000_000, 1_000_000)
    if number == 0:
        raise ValueError(
            "n_jobs should be at least 1, or -1 (one thread per core), -2 (one fewer) and so on, not 0"
        )
    if number >= -1:
        return max(number, 0)
    return max(len(os.sched_getaffinity(0)) + 1 + number, 1)


def seed_of(random_state: Any, seed: Any, preset: int) -> Any:
    """The seed that a random state stands for; `seed` without one."""
    if random_state is None:
        return seed
    if seed != preset:
        raise ValueError(
            f"both seed={seed!r} and random_state are given\nGive one of them: they mean the same."
        )
    if isinstance(random_state, np.random.RandomState):
        return int(random_state.randint(_SEEDS))
    if isinstance(random_state, np.random.Generator):
        return int(random_state.integers(_SEEDS))
    return whole_number("random_state", random_state, 0, _SEEDS - 1)


def start_of(
    init: Any, shape: tuple[int, int], index: Any = None
) -> NDArray[np.float64] | None:
    """The coordinates to start from, NaN in rows without; None for a start that the fit makes.

    A data frame gives them by the names of its index where the rows have an index, too.
    """
    if isinstance(init, str):
        if init not in _STARTS:
            raise ValueError(
                f'init should be "random", "pca", "sample" or an array of the shape {shape}, not {init!r}\n'
                "Another start can be computed and given as an array."
            )
        return None
    if index is not None and hasattr(init, "reindex"):
        init = _reindexed(init, index)
    try:
        start = np.array(init, dtype=np.float64, order="C")
    except (TypeError, ValueError) as error:
        raise ValueError(
            f'init should be "random", "pca", "sample" or an array of numbers: {error}'
        ) from error
    if start.shape != shape:
        raise ValueError(
            f"init should have a row per row of X and a column per component, the shape {shape}, not "
            f"{start.shape}"
        )
    missing = np.isnan(start)
    if np.isinf(start).any() or (missing.any(axis=1) != missing.all(axis=1)).any():
        raise ValueError(
            "init holds values that are not finite (NaN or infinite) in rows with others that are\n"
            "A row of NaN starts at the median of its neighbours."
        )
    if missing.all():
        raise ValueError("init has coordinates for none of the rows of X")
    return start


def _reindexed(init: Any, index: Any) -> Any:
    """The rows of a data frame that an index asks for, NaN for those that it has not."""
    if not init.index.is_unique:
        raise ValueError(
            f"init has the row {init.index[init.index.duplicated()][0]!r} twice\n"
            "Give each name one row, or an array in the order of the rows of X."
        )
    return init.reindex(index)


def is_default(value: Any, default: Any) -> bool:
    """Whether a parameter is as the constructor has it; of any value, such as an array."""
    return value is default or (
        type(value) is type(default) and isinstance(value, int | float | str) and value == default
    )


def neighbour_graph_of(graph: Any, n_samples: int, metric: Any) -> Any:
    """Neighbours in the place of a search as the engine takes them: None, a path, or three arrays."""
    if graph is None:
        return None
    if metric == "precomputed":
        raise ValueError(
            'neighbour_graph does not go with metric="precomputed": both give distances\n'
            "Leave one of them out."
        )
    if isinstance(graph, (str, bytes, os.PathLike)):
        return os.fsencode(graph)
    if hasattr(graph, "tocsr"):
        _require_graph_shape(graph.shape, n_samples)
        graph = graph.tocsr()
        graph = (graph.data, graph.indices, graph.indptr)
    try:
        data, indices, indptr = graph
        distances = np.array(data, dtype=np.float64, order="C")
        neighbours = _whole_numbers(indices)
        starts = _whole_numbers(indptr)
    except (TypeError, ValueError) as error:
        raise ValueError(
            "neighbour_graph should be a file, a sparse matrix, or the arrays data, indices and indptr "
            f"of one in compressed rows: {error}"
        ) from error
    if distances.ndim != 1 or neighbours.shape != distances.shape or starts.ndim != 1:
        raise ValueError(
            "neighbour_graph should have as many indices as data, and a start for each row, not arrays "
            f"of the shapes {distances.shape}, {neighbours.shape} and {starts.shape}"
        )
    _require_graph_shape((len(starts) - 1, n_samples), n_samples)
    if starts[0] != 0 or starts[-1] != len(distances) or (np.diff(starts) < 0).any():
        raise ValueError(
            f"indptr of neighbour_graph should rise from 0 to the {len(distances)} entries that there are"
        )
    if len(neighbours) and neighbours.min() < 0:
        raise ValueError(f"neighbour_graph has the index {neighbours.min()}: rows count from 0")
    return distances, neighbours, starts


def _whole_numbers(values: Any) -> NDArray[np.int64]:
    array = np.asarray(values)
    if array.dtype.kind not in "iu":
        raise ValueError(f"indices are whole numbers, not {array.dtype}")
    return np.array(array, dtype=np.int64, order="C")


def _require_graph_shape(shape: tuple[int, ...], n_samples: int) -> None:
    if tuple(shape) != (n_samples, n_samples):
        raise ValueError(
            f"neighbour_graph has the shape {tuple(shape)}, and X has {n_samples} rows\n"
            "The graph has to be of the rows of X, in their order."
        )


def quality_neighbours(quality: Any, n_samples: int) -> int:
    """How many neighbours the quality is measured for; 0 for not at all."""
    if quality is None:
        return 0
    most = (n_samples - 1) // 2
    number = whole_number("quality", quality, 1, _SEEDS - 1)
    if number > most:
        raise ValueError(
            f"quality should be less than half of n_samples={n_samples}, at most {most}, not {number}"
        )
    return number


FEWEST_JUDGED_ROWS = 30


def wants_reliability(reliability: Any, n_samples: int) -> bool:
    """Whether it is told how far to trust each row, of which there have to be enough."""
    if reliability and n_samples < FEWEST_JUDGED_ROWS:
        raise ValueError(
            f"reliability takes at least {FEWEST_JUDGED_ROWS} rows, and X has {n_samples}\n"
            "Leave it out: among so few rows nearly all are neighbours."
        )
    return bool(reliability)


def one_callback(callbacks: Any) -> Callable[[int, float, NDArray[np.float64]], bool] | None:
    """One function that calls them all, and says whether one of them asks for the end."""
    if callbacks is None:
        return None
    listed = [callbacks] if callable(callbacks) else callbacks
    try:
        functions = list(listed)
    except TypeError:
        functions = [None]
    if not all(callable(function) for function in functions):
        raise ValueError(f"callbacks should be a function or a list of functions, not {callbacks!r}")
    if not functions:
        return None

    def call_all(iteration: int, error: float, embedding: NDArray[np.float64]) -> bool:
        # All of them are called, whatever the first one says.
        return any([bool(function(iteration, error, embedding)) for function in functions])

    return call_all
