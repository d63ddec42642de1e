"""How far an embedding stays as it is with other seeds and other columns."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, NamedTuple

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _core
from ._input import as_input, check_finite, columns_as_fitted, digest_of
from ._matrix import Matrix
from ._output import require_fitted
from ._settings import FEWEST_JUDGED_ROWS, thread_count, whole_number

if TYPE_CHECKING:
    from ._tsne import TSNE

_FEWEST_DRAWN_COLUMNS = 5


class ClusterPair(NamedTuple):
    """How far two clusters stay apart."""

    first: Any
    second: Any
    separation: float
    """The share of rows that lie nearer to a row of their own cluster than to any of the other in the
    embedding, averaged over the two."""
    apart_seeds: float
    """The share of the embeddings of other seeds in which that is 0.9 or more."""
    apart_columns: float
    """The same of other columns."""
    stay_apart: bool
    """Whether it is 0.9 or more in the embedding, and in 80 % of both kinds of others."""


class Stability(NamedTuple):
    """How far an embedding stays as it is, with an element for each row."""

    shared_seeds: NDArray[np.float64]
    """The share of its 10 nearest rows that are so with another seed, averaged over the seeds."""
    spread_seeds: NDArray[np.float64]
    """The root mean square distance of its places with other seeds from its own; 1 is that of all rows
    from the middle."""
    shared_columns: NDArray[np.float64]
    """As `shared_seeds`, with columns drawn anew."""
    spread_columns: NDArray[np.float64]
    """As `spread_seeds`, with columns drawn anew."""
    pairs: list[ClusterPair]
    """Of clusters of two rows or more; empty without `clusters`."""


def stability(
    tsne: TSNE, X: ArrayLike | Matrix, count: int = 5, *, clusters: ArrayLike | None = None
) -> Stability:
    """Make other embeddings, and measure how far one stays as it is.

    `count` embeddings are made from other seeds, and `count` of columns drawn anew with replacement,
    by the options of the fit; each is laid onto the embedding by moving, turning, mirroring and scaling.

    Parameters
    ----------
    tsne : TSNE
        Fitted, without precomputed distances, a neighbour graph or coordinates to start from.
    X : array-like of shape (n_samples, n_features)
        What it was fitted on: at least 30 rows and 5 columns.
    count : int, default 5
        Embeddings of each kind.
    clusters : array-like of shape (n_samples,), default None
        The cluster of each row, of any values that can be sorted.

    Returns
    -------
    Stability
        The same for any number of threads, and the same as the command ``ovik-tsne`` gives.

    Raises
    ------
    ValueError
        If X is not that of the fit, or the fit one that other columns or seeds would not change.
    KeyboardInterrupt
        On Ctrl-C.
    """
    require_fitted(tsne)
    options = tsne._fitted_options
    require_other_maps(tsne, options)
    values = values_of_fit(tsne, X)
    rows, columns = values.shape
    if rows < FEWEST_JUDGED_ROWS or columns < _FEWEST_DRAWN_COLUMNS:
        raise ValueError(
            f"stability takes at least {FEWEST_JUDGED_ROWS} rows and {_FEWEST_DRAWN_COLUMNS} columns, and X "
            f"has {rows} and {columns}"
        )
    count = whole_number("count", count, 1, min(1000, 2**31 - 1 - options["seed"]))
    names, numbers = _numbered(clusters, rows)
    found, pairs = _core.stability(
        values, tsne.embedding_, options, count, numbers, thread_count(tsne.n_jobs)
    )
    return Stability(
        found["shared_10_seeds"],
        found["spread_seeds"],
        found["shared_10_columns"],
        found["spread_columns"],
        [ClusterPair(names[pair[0]], names[pair[1]], *pair[2:]) for pair in pairs],
    )


def require_other_maps(tsne: TSNE, options: dict[str, Any]) -> None:
    """Refuse a fit beside which others cannot be made of other values."""
    for hindrance, what in (
        (options["metric"] == "precomputed", "precomputed distances have no columns"),
        (tsne._fitted_by_graph, "neighbour_graph gives the neighbours, whatever the columns"),
        (options["init"] == "given", "init gives every embedding the same start"),
    ):
        if hindrance:
            raise ValueError(f"{what}\nFit one without it.")


def values_of_fit(tsne: TSNE, X: ArrayLike | Matrix) -> NDArray[np.float64]:
    """The values that an estimator was fitted on, given once more."""
    given = as_input(X)
    values = columns_as_fitted(given, tsne.n_features_in_, getattr(tsne, "feature_names_in_", None))
    check_finite(values)
    if len(values) != len(tsne.embedding_):
        raise ValueError(f"X has {len(values)} rows, and the fit had {len(tsne.embedding_)}\nGive the X of the fit.")
    if digest_of(values) != tsne._fitted_digest:
        raise ValueError("X holds other values than that of the fit, or in another order\nGive the X of the fit.")
    return values


def _numbered(clusters: ArrayLike | None, rows: int) -> tuple[list[Any], list[int]]:
    """The clusters, and the number of that of each row."""
    if clusters is None:
        return [], []
    values = np.asarray(clusters)
    if values.shape != (rows,):
        raise ValueError(f"clusters should have one value per row, the shape ({rows},), not {values.shape}")
    names, numbers = np.unique(values, return_inverse=True)
    return names.tolist(), numbers.tolist()
