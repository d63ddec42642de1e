"""What is said of rows that have been placed on a map."""

from __future__ import annotations

import warnings
from typing import Any

import numpy as np
from numpy.typing import ArrayLike, NDArray

_LISTED = 3


def warn_of_distant(
    index: Any, distances: NDArray[np.float64], reach: float, is_lost: list[bool]
) -> None:
    """Warn of rows that have no true place on a map.

    Parameters
    ----------
    index : sequence or None
        What the rows are called; None for their numbers.
    distances : ndarray of shape (n_rows,)
        From the nearest row of the map.
    reach : float
        The largest such distance of a row of the map.
    is_lost : list of bool
        Whether no place was found that is better than one infinitely far away.
    """
    distant = _listed(index, distances > reach)
    if distant:
        warnings.warn(
            f"{distant} farther from all rows of the map than any of these from its nearest: what is "
            "unlike the map has no true place on it\nSee that values and units are those of the fit.",
            stacklevel=3,
        )
    lost = _listed(index, is_lost)
    if lost:
        warnings.warn(
            f"{lost} nowhere near the rows of the map that are most alike: no place was found that is "
            "better than one infinitely far away\nRead nothing into it.",
            stacklevel=3,
        )


def _listed(index: Any, holds: ArrayLike) -> str:
    """The first few of the rows for which something holds; empty for none."""
    rows = np.flatnonzero(np.asarray(holds, dtype=bool))
    if len(rows) == 0:
        return ""
    names = ", ".join(str(row) if index is None else repr(index[row]) for row in rows[:_LISTED])
    more = ", ..." if len(rows) > _LISTED else ""
    return f"{len(rows)} {'row' if len(rows) == 1 else 'rows'} ({names}{more}) {'is' if len(rows) == 1 else 'are'}"
