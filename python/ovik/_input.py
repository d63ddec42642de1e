"""What a fit takes as its matrix."""

from __future__ import annotations

import hashlib
import warnings
from typing import Any, NamedTuple

import numpy as np
from numpy.typing import NDArray

from . import _core
from ._matrix import Matrix

_LARGEST_INT = 2**31 - 1
_BYTES_OF_A_VALUE = 8


class Input(NamedTuple):
    """A matrix with the names that it came with."""

    values: NDArray[np.float64]
    """C-contiguous, two-dimensional."""

    index: Any
    """The index of a table, the row names of a `Matrix`; None for others."""

    feature_names: NDArray[np.object_] | None
    """Of the columns, if all are strings."""

    @property
    def row_names(self) -> NDArray[np.object_] | None:
        """Of the rows, if all are strings."""
        return None if self.index is None else _names(self.index)


class _WrongElements(TypeError, ValueError):
    """Elements that are no numbers: NumPy tells some by the one class, some by the other."""


def as_input(X: Any, fewest_rows: int = 3) -> Input:
    """Take an array, a table or a `Matrix` apart.

    Raises
    ------
    ValueError
        If it has not two dimensions, so many rows and a column of numbers.
    MemoryError
        If it is sparse, and too large for a dense matrix.
    """
    if isinstance(X, Matrix):
        return Input(_as_values(X.values, fewest_rows), X.row_names, _names(X.column_names))
    columns = getattr(X, "columns", None)
    if columns is None:
        return Input(_as_values(X, fewest_rows), None, None)
    return Input(_as_values(X, fewest_rows), getattr(X, "index", None), _names(columns))


def digest_of(values: NDArray[np.float64]) -> bytes:
    """What tells a matrix from others."""
    return hashlib.blake2b(np.ascontiguousarray(values).ravel().data, digest_size=16).digest()


def refuse_sparse_distances(X: Any) -> None:
    """Refuse a sparse matrix as one of distances."""
    if hasattr(X, "toarray"):
        raise ValueError(
            'X is sparse: with metric="precomputed" a distance that it leaves out would count as 0\n'
            "Give an array of all distances, or the rows themselves with neighbour_graph=X."
        )


def check_finite(values: NDArray[np.float64]) -> None:
    """Refuse values that are not finite, with their number and the first place."""
    finite = np.isfinite(values)
    if finite.all():
        return
    row, column = divmod(int(np.argmin(finite)), values.shape[1])
    count = values.size - int(np.count_nonzero(finite))
    raise ValueError(
        f"X holds {count} of {values.size} values that are not finite (NaN or infinite), the first "
        f"in row {row}, column {column}, counted from 0: {values[row, column]}\n"
        "Fill them in, for example by the means of their columns, or leave such rows out."
    )


def check_perplexity(perplexity: float, n_samples: int) -> None:
    """Refuse a perplexity that the rows do not allow, and warn of a large one."""
    others = n_samples - 1
    if perplexity >= others:
        raise ValueError(
            f"perplexity={perplexity:g}: with n_samples={n_samples} a row has {others} others, so it "
            "cannot have as many neighbours or more\n"
            "Give at most a third of that; 5 to 50 are usual."
        )
    if 3.0 * perplexity > others:
        warnings.warn(
            f"perplexity={perplexity:g} is large for n_samples={n_samples}: it should be at most a "
            f"third of the other rows, {others / 3.0:.1f}",
            stacklevel=4,
        )


def _names(names: Any) -> NDArray[np.object_] | None:
    listed = list(names)
    if not listed or not all(isinstance(name, str) for name in listed):
        return None
    return np.array(listed, dtype=object)


def _as_values(X: Any, fewest_rows: int) -> NDArray[np.float64]:
    """X as a C-contiguous float64 array of two dimensions."""
    if hasattr(X, "toarray"):
        X = _dense(X)
    if isinstance(X, np.ma.MaskedArray):
        masked: Any = X
        X = masked.astype(np.float64).filled(np.nan)
    try:
        array = np.asarray(X)
        if array.dtype.kind == "c":
            raise TypeError(f"Complex data not supported: its elements are {array.dtype}")
        if array.dtype.kind not in "biufO":
            raise TypeError(f"its elements are {array.dtype}")
        values = np.ascontiguousarray(array, dtype=np.float64)
    except (TypeError, ValueError) as error:
        raise _WrongElements(
            f"X should be an array of numbers: {error}\n"
            "Leave columns of text out, fill missing values in, and give every row the same number of "
            "values."
        ) from error
    if array.ndim != 2:
        raise ValueError(
            f"X should have two dimensions (n_samples, n_features), not the shape {array.shape}\n"
            "X.reshape(-1, 1) makes a column of a single feature."
        )
    _check_shape(array.shape[0], array.shape[1], fewest_rows)
    return values


def _dense(X: Any) -> Any:
    """A sparse matrix as a dense array, if that and the engine's copy fit in memory."""
    n_samples, n_features = X.shape
    needed = 2 * _BYTES_OF_A_VALUE * n_samples * n_features
    available, limit = _core.available_memory()
    if needed > available:
        raise MemoryError(
            f"X is sparse, and its {n_samples} x {n_features} values take {needed / 1e9:.1f} GB as the "
            f"dense matrix that a fit needs and its copy; {available / 1e9:.1f} GB are left {limit}\n"
            "Bring it to fewer columns first, for example to some 50 principal components."
        )
    return X.toarray()


def columns_as_fitted(
    given: Input, n_features: int, names: NDArray[np.object_] | None
) -> NDArray[np.float64]:
    """The values with their columns in the order of those of a fit: by name where both have some.

    Raises
    ------
    ValueError
        If columns are missing or additional, or are not as many.
    """
    values = given.values
    mine = None if given.feature_names is None else list(given.feature_names)
    theirs = None if names is None else list(names)
    if mine is not None and theirs is not None and mine != theirs:
        missing = [name for name in theirs if name not in mine]
        additional = [name for name in mine if name not in theirs]
        if missing or additional or len(set(mine)) < len(mine):
            raise ValueError(
                "The feature names should match those that were passed during fit: missing "
                f"{missing[:5]}, additional {additional[:5]}\n"
                "Give rows of the same measurements, each column once."
            )
        values = np.ascontiguousarray(values[:, [mine.index(name) for name in theirs]])
    if values.shape[1] != n_features:
        raise ValueError(
            f"X has {values.shape[1]} features, but TSNE is expecting {n_features} features as "
            "input"
        )
    return values


def _check_shape(n_samples: int, n_features: int, fewest_rows: int) -> None:
    if n_samples < fewest_rows or n_features < 1:
        if fewest_rows == 1 and n_samples < 1:
            raise ValueError(
                f"Found array with 0 sample(s) (shape=({n_samples}, {n_features})) while a minimum of "
                "1 is required: there is no row to place"
            )
        shortage = (
            f"\n{n_features} feature(s) (shape=({n_samples}, {n_features})) while a minimum of 1 is "
            "required."
        )
        raise ValueError(
            f"X has n_samples={n_samples} and n_features={n_features}, and an embedding needs at "
            "least 3 samples (rows) and 1 feature (column)" + (shortage if n_features < 1 else "")
        )
    if n_samples > _LARGEST_INT:
        raise ValueError(f"X has n_samples={n_samples}, and at most {_LARGEST_INT} can be embedded")
