"""Parameters of the estimator that are more than numbers of the fit, as the engine takes them."""

from __future__ import annotations

import operator
import os
from collections.abc import Callable
from typing import Any

import numpy as np
from numpy.typing import NDArray

PRESETS = ("classic", "refined")
_STARTS = ("random", "pca")
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


def automatic_learning_rate(n_samples: int, exaggeration: float, least: float) -> float:
    """The learning rate for a number of rows.

    The steps of Belkina et al., "Automated optimized parameters for t-distributed stochastic neighbor
    embedding improve visualization and analysis of large datasets", Nature Communications 10:5415,
    2019, but never shorter ones than `least` gives.
    """
    return max(n_samples / exaggeration, least)


def start_of(init: Any, shape: tuple[int, int]) -> NDArray[np.float64] | None:
    """The coordinates to start from; None for a start that the fit makes."""
    if isinstance(init, str):
        if init not in _STARTS:
            raise ValueError(
                f'init should be "random", "pca" or an array of the shape {shape}, not {init!r}\n'
                "Another start can be computed and given as an array."
            )
        return None
    try:
        start = np.array(init, dtype=np.float64, order="C")
    except (TypeError, ValueError) as error:
        raise ValueError(
            f'init should be "random", "pca" or an array of numbers: {error}'
        ) from error
    if start.shape != shape:
        raise ValueError(
            f"init should have a row per row of X and a column per component, the shape {shape}, not "
            f"{start.shape}"
        )
    if not np.isfinite(start).all():
        raise ValueError("init holds values that are not finite (NaN or infinite)")
    return start


def is_default(value: Any, default: Any) -> bool:
    """Whether a parameter is as the constructor has it; of any value, such as an array."""
    return value is default or (
        type(value) is type(default) and isinstance(value, int | float | str) and value == default
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
