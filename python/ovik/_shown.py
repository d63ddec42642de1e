"""What a plot or a page shows of a map."""

from __future__ import annotations

from collections.abc import Iterable
from typing import Any, NamedTuple

import numpy as np
from numpy.typing import ArrayLike, NDArray


class ShownMap(NamedTuple):
    """An embedding, and what its fit tells of it."""

    embedding: NDArray[np.float64]
    """Finite or not, of shape (rows, 2 or more), C-contiguous."""

    names: list[str] | None
    """Of the rows, where the input had them."""

    parameters: list[tuple[str, str]]
    """Of the run, in the order in which they are shown."""


def shown_map(what: Any) -> ShownMap:
    """Take a fitted estimator, a data frame or an array.

    Raises
    ------
    ValueError
        If there is no embedding in it.
    """
    if hasattr(what, "get_params"):
        if not hasattr(what, "embedding_"):
            raise ValueError("this TSNE has not been fitted yet: call fit first")
        names = getattr(what, "row_names_", None)
        return ShownMap(
            what.embedding_,
            None if names is None else list(names),
            list(getattr(what, "_caption", [])),
        )
    index = getattr(what, "index", None) if hasattr(what, "columns") else None
    return ShownMap(_as_embedding(what), None if index is None else [str(n) for n in index], [])


def texts_of_rows(name: str, texts: Iterable[Any] | None, count: int) -> list[str]:
    """One text per row; none without them.

    Raises
    ------
    ValueError
        If there is another number of them.
    """
    listed = [] if texts is None else ["" if _is_missing(text) else str(text) for text in texts]
    if texts is not None and len(listed) != count:
        raise ValueError(f"{name} should have one entry per row of the map, {count}, not {len(listed)}")
    return listed


def _is_missing(value: Any) -> bool:
    """Whether a label is None, NaN or pandas.NA, as data frames have what is missing."""
    is_nan = isinstance(value, (float, np.floating)) and value != value
    return value is None or is_nan or type(value).__name__ == "NAType"


def _as_embedding(values: ArrayLike) -> NDArray[np.float64]:
    embedding = np.ascontiguousarray(values, dtype=np.float64)
    if embedding.ndim != 2 or embedding.shape[1] < 2:
        raise ValueError(
            "the map should be a fitted TSNE, or an array of a row per point and at least two columns, "
            f"not of the shape {embedding.shape}"
        )
    return embedding
