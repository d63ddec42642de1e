"""What a plot or a page shows of a map."""

from __future__ import annotations

from collections import Counter
from collections.abc import Iterable, Mapping
from typing import Any, NamedTuple

import numpy as np
from numpy.typing import ArrayLike, NDArray


class ShownMap(NamedTuple):
    """An embedding, and what its fit tells of it."""

    embedding: NDArray[np.float64]
    """Finite or not, of shape (rows, 2 or more), C-contiguous."""

    names: list[str] | None
    """Of the rows, where the input had them."""

    keys: list[str] | None
    """What finds the entry of a row where entries have names: those of the rows, or their index."""

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
            getattr(what, "_row_keys", None),
            list(getattr(what, "_caption", [])),
        )
    index = getattr(what, "index", None) if hasattr(what, "columns") else None
    keys = None if index is None else [str(key) for key in index]
    return ShownMap(_as_embedding(what), keys, keys, [])


def entries_of_rows(
    name: str, entries: Iterable[Any] | None, keys: list[str] | None, count: int
) -> list[Any] | None:
    """One entry per row: by name where entries and rows have names, else in their order.

    Rows that a dict leaves out get NaN.

    Raises
    ------
    ValueError
        If there is another number of them, or no entry for a row.
    """
    if isinstance(entries, Mapping):
        return _joined_dict(name, entries, keys)
    index = getattr(entries, "index", None)
    if entries is None or index is None or callable(index) or keys is None:
        listed = None if entries is None else list(entries)
    else:
        listed = _joined_series(name, list(entries), [str(key) for key in index], keys)
    if listed is not None and len(listed) != count:
        raise ValueError(f"{name} should have one entry per row of the map, {count}, not {len(listed)}")
    return listed


def texts_of(entries: list[Any] | None) -> list[str]:
    """The texts of entries, empty where they are missing; none without entries."""
    return ["" if _is_missing(entry) else str(entry) for entry in entries or []]


def _joined_dict(name: str, entries: Mapping[Any, Any], keys: list[str] | None) -> list[Any]:
    if keys is None:
        raise ValueError(
            f"{name} is a dict, and the rows of the map have no names\n"
            "Give a list in the order of the rows, or fit a Matrix or a data frame with names."
        )
    by_key = {str(key): entry for key, entry in entries.items()}
    if not any(key in by_key for key in keys):
        raise ValueError(f"no key of {name} ({_first(list(by_key))}) is the name of a row ({_first(keys)})")
    return [by_key.get(key, float("nan")) for key in keys]


def _joined_series(name: str, entries: list[Any], index: list[str], keys: list[str]) -> list[Any]:
    """The entries by the index of their Series; in their order if the one or the other just counts."""
    by_key = dict(zip(index, entries, strict=True))
    absent = [key for key in keys if key not in by_key]
    if index == keys or (absent and (_just_counts(index) or _just_counts(keys))):
        return entries
    if absent:
        raise ValueError(
            f"{name} has no entry for {len(absent)} of {len(keys)} rows of the map ({_first(absent)}); "
            f"its index has {_first(index)}\n"
            "Give it the names of the rows, or its values alone, in the order of the rows."
        )
    if len(by_key) < len(index):
        twice = [key for key, count in Counter(index).items() if count > 1]
        raise ValueError(f"the index of {name} has {_first(twice)} more than once")
    return [by_key[key] for key in keys]


def _just_counts(keys: list[str]) -> bool:
    """Whether keys are the numbers that pandas gives to rows without names."""
    return keys == [str(number) for number in range(len(keys))]


def _first(keys: list[str]) -> str:
    return ", ".join(repr(key) for key in keys[:3]) + (", ..." if len(keys) > 3 else "")


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
