"""Whether noise would place rows as well."""

from __future__ import annotations

from typing import TYPE_CHECKING, NamedTuple

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _core
from ._matrix import Matrix
from ._output import require_fitted
from ._settings import thread_count, whole_number
from ._stability import require_other_maps, values_of_fit

if TYPE_CHECKING:
    from ._tsne import TSNE


class AgainstNoise(NamedTuple):
    """How rows compare with rows of noise, with an element for each."""

    p_kept: NDArray[np.float64]
    """The chance that noise keeps as many of its 30 nearest neighbours (10 below 61 rows), and among as
    many has as low a misfit."""
    q_kept: NDArray[np.float64]
    """The false discovery rate of that (Benjamini and Hochberg); told from noise where 0.05 or less."""
    p_misfit: NDArray[np.float64]
    """The chance that noise has as low a misfit."""
    q_misfit: NDArray[np.float64]
    """The false discovery rate of that."""
    concentration: NDArray[np.float64]
    """How much of what sets the row apart lies in one column, up to 1; rows are compared with those of
    like concentration."""


def against_noise(tsne: TSNE, X: ArrayLike | Matrix, count: int = 5) -> AgainstNoise:
    """Embed shuffled values, and tell of each row whether noise would place it as well.

    The values of each column are shuffled over the rows, `count` times, and embedded by the options of
    the fit.

    Parameters
    ----------
    tsne : TSNE
        Fitted with `reliability`, from one seed, without precomputed distances, a neighbour graph or
        coordinates to start from.
    X : array-like of shape (n_samples, n_features)
        What it was fitted on.
    count : int, default 5
        Matrices of noise.

    Returns
    -------
    AgainstNoise
        The same for any number of threads, and the same as the command ``ovik-tsne`` gives.

    Raises
    ------
    ValueError
        If X is not that of the fit, or the fit one that noise cannot be compared with.
    KeyboardInterrupt
        On Ctrl-C.
    """
    require_fitted(tsne)
    options = tsne._fitted_options
    require_other_maps(tsne, options)
    if not hasattr(tsne, "reliability_"):
        raise ValueError("the fit does not tell of single rows\nFit one with reliability=True.")
    if tsne._fitted_seeds > 1:
        raise ValueError(
            "the best embedding of several seeds would be compared with single ones of noise\n"
            "Fit one of a single seed."
        )
    values = values_of_fit(tsne, X)
    count = whole_number("count", count, 1, 1000)
    columns = tsne.reliability_.columns
    neighbours = 30 if "kept_30" in columns else 10
    found = _core.against_noise(
        values,
        columns[f"kept_{neighbours}"].tolist(),
        columns["misfit"].tolist(),
        neighbours,
        options,
        count,
        thread_count(tsne.n_jobs),
    )
    return AgainstNoise(**found)
