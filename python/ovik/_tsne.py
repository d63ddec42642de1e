"""The estimator."""

from __future__ import annotations

import inspect
import operator
import sys
import threading
import warnings
from typing import Any, Self

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _core
from ._parameters import DESCRIPTIONS, FitParameters

# The random start is drawn from the random stream of the process.
_one_fit_at_a_time = threading.Lock()

_LARGEST_INT = 2**31 - 1


class TSNE(FitParameters):
    """t-SNE: embeds the rows of a matrix so that rows with similar values lie close together.

    The same input and parameters give the same bytes on every run, for any number
    of threads, and the same as the command ``ovik-tsne`` gives.

    Parameters
    ----------
{options}    n_jobs : int, default -1
        Threads; -1 for one per core, or what ``OMP_NUM_THREADS`` says. They change the time, never
        the result.
    verbose : bool, default False
        Whether the engine's progress is shown, on the standard output and standard error of the
        process.

    Attributes
    ----------
    embedding_ : ndarray of shape (n_samples, n_components), float64
        Where the rows lie. Axes and orientation mean nothing.
    kl_divergence_ : float
        Cost of the embedding: Kullback-Leibler divergence from the similarities of the rows, without
        exaggeration, in nats.
    n_iter_ : int
        The iteration done last.
    n_features_in_ : int
        Columns of the input.
    feature_names_in_ : ndarray of shape (n_features_in_,), object
        Names of the columns; only after a fit on a table whose column names are all strings.

    Notes
    -----
    One fit runs at a time in a process; others wait. The interpreter lock is free meanwhile. Ctrl-C
    ends a fit after the iteration at hand, or with the first one, by KeyboardInterrupt.

    There is no `transform`: new rows cannot be added to an embedding.

    References
    ----------
    van der Maaten and Hinton, "Visualizing data using t-SNE", JMLR 9:2579, 2008.
    van der Maaten, "Accelerating t-SNE using tree-based algorithms", JMLR 15:3221, 2014.

    Examples
    --------
    >>> embedding = TSNE(perplexity=30).fit_transform(X)
    """

    embedding_: NDArray[np.float64]
    kl_divergence_: float
    n_iter_: int
    n_features_in_: int
    feature_names_in_: NDArray[np.object_]

    def fit(self, X: ArrayLike, y: Any = None) -> Self:
        """Embed the rows of a matrix.

        Parameters
        ----------
        X : array-like of shape (n_samples, n_features)
            At least 3 rows and 1 column of finite numbers: an array, lists, a data frame. Not
            changed, and not copied before the engine's own copy if it is a C-contiguous float64
            array.
        y : ignored

        Returns
        -------
        TSNE
            This object, with its attributes set. A fit that fails leaves them as they were.

        Raises
        ------
        ValueError
            If a parameter is out of its range, or X cannot be embedded: not two-dimensional, too few
            rows for the perplexity, values that are not finite or have no common scale, rows all
            equal.
        MemoryError
            If the fit cannot have its memory.
        RuntimeError
            If the embedding gets out of range.
        KeyboardInterrupt
            On Ctrl-C.
        """
        options = self._fit_options()
        _core.check_options(options)
        threads = self._checked_threads()
        values = _as_matrix(X)
        _check_finite(values)
        _check_perplexity(float(self.perplexity), len(values))
        if self.verbose:
            sys.stdout.flush()
        with _one_fit_at_a_time:
            embedding, cost, last_iteration, note = _core.embed(
                values, options, threads, bool(self.verbose)
            )
        if note:
            warnings.warn(note, stacklevel=2)
        self.embedding_ = embedding
        self.kl_divergence_ = cost
        self.n_iter_ = last_iteration
        self.n_features_in_ = values.shape[1]
        self._set_feature_names(X)
        return self

    def fit_transform(self, X: ArrayLike, y: Any = None) -> NDArray[np.float64]:
        """Embed the rows of a matrix and return `embedding_`; see `fit`."""
        return self.fit(X).embedding_

    def get_params(self, deep: bool = True) -> dict[str, Any]:
        """The parameters of the constructor, by name; `deep` makes no difference."""
        return {name: getattr(self, name) for name in self._parameters()}

    def set_params(self, **params: Any) -> Self:
        """Set parameters of the constructor.

        Returns
        -------
        TSNE
            This object.

        Raises
        ------
        ValueError
            If one is not a parameter; nothing is set then.
        """
        for name in params:
            if name not in self._parameters():
                raise ValueError(
                    f"{name!r} is not a parameter of TSNE, which has " + ", ".join(self._parameters())
                )
        for name, value in params.items():
            setattr(self, name, value)
        return self

    def __repr__(self) -> str:
        changed = (
            f"{name}={getattr(self, name)!r}"
            for name, parameter in self._parameters().items()
            if getattr(self, name) is not parameter.default
        )
        return f"TSNE({', '.join(changed)})"

    @classmethod
    def _parameters(cls) -> dict[str, inspect.Parameter]:
        parameters = dict(inspect.signature(cls.__init__).parameters)
        del parameters["self"]
        return parameters

    def _checked_threads(self) -> int:
        """The number of threads as the engine takes it: 0 for one per core."""
        n_jobs = _whole_number("n_jobs", self.n_jobs, -1, 1_000_000)
        if n_jobs == 0:
            raise ValueError("n_jobs should be -1 (one thread per core) or at least 1, not 0")
        return max(n_jobs, 0)

    def _set_feature_names(self, X: Any) -> None:
        names = list(getattr(X, "columns", ()))
        if names and all(isinstance(name, str) for name in names):
            self.feature_names_in_ = np.array(names, dtype=object)
        elif hasattr(self, "feature_names_in_"):
            del self.feature_names_in_


if TSNE.__doc__:
    TSNE.__doc__ = TSNE.__doc__.replace("{options}", DESCRIPTIONS)


def _whole_number(name: str, value: Any, least: int, most: int) -> int:
    try:
        number = operator.index(value)
    except TypeError:
        number = None
    if number is None or not least <= number <= most:
        raise ValueError(f"{name} should be a whole number from {least} to {most}, not {value!r}")
    return number


def _as_matrix(X: Any) -> NDArray[np.float64]:
    """X as a C-contiguous float64 array of two dimensions."""
    if hasattr(X, "toarray"):
        raise ValueError("X is sparse, which this t-SNE cannot use\nGive X.toarray().")
    if isinstance(X, np.ma.MaskedArray):
        X = np.ma.filled(X.astype(np.float64), np.nan)
    try:
        array = np.asarray(X)
        if array.dtype.kind not in "biufO":
            raise TypeError(f"its elements are {array.dtype}")
        values = np.ascontiguousarray(array, dtype=np.float64)
    except (TypeError, ValueError) as error:
        raise ValueError(
            f"X should be an array of numbers: {error}\n"
            "Leave columns of text out, fill missing values in, and give every row the same number of "
            "values."
        ) from error
    if array.ndim != 2:
        raise ValueError(
            f"X should have two dimensions (n_samples, n_features), not the shape {array.shape}\n"
            "X.reshape(-1, 1) makes a column of a single feature."
        )
    n_samples, n_features = array.shape
    if n_samples < 3 or n_features < 1:
        raise ValueError(
            f"X has n_samples={n_samples} and n_features={n_features}, and an embedding needs at "
            "least 3 samples (rows) and 1 feature (column)"
        )
    if n_samples > _LARGEST_INT:
        raise ValueError(f"X has n_samples={n_samples}, and at most {_LARGEST_INT} can be embedded")
    return values


def _check_finite(values: NDArray[np.float64]) -> None:
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


def _check_perplexity(perplexity: float, n_samples: int) -> None:
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
            stacklevel=3,
        )
