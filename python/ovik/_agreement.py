"""How far maps of the same rows agree."""

from __future__ import annotations

import operator
from typing import TYPE_CHECKING, NamedTuple

import numpy as np
from numpy.typing import ArrayLike

from . import _core
from ._shown import shown_map

if TYPE_CHECKING:
    from ._tsne import TSNE


class Agreement(NamedTuple):
    """How far two maps agree, or several, averaged over the pairs."""

    disparity: float
    """Procrustes disparity, 0 to 1: what is left when the maps are moved, turned, mirrored and scaled
    to lie as near to one another as they can; 0 for maps of one shape."""

    shared_neighbours: float
    """The share of the nearest neighbours of a row that are the same in both maps, 0 to 1, averaged
    over the rows."""


def agreement(*maps: TSNE | ArrayLike, neighbours: int = 10) -> Agreement:
    """Measure how far maps of the same rows agree.

    Parameters
    ----------
    *maps : TSNE or array-like of shape (n_samples, n_components)
        Two or more fitted estimators or embeddings, of the same rows in the same order.
    neighbours : int, default 10
        How many nearest neighbours of each row are compared, at least 1; or as many as there are other
        rows, if that is less.

    Returns
    -------
    Agreement
        Averaged over all pairs of the maps.

    Raises
    ------
    ValueError
        If the maps are of other rows or dimensions, or not finite, or fewer than two.

    Examples
    --------
    >>> import numpy as np
    >>> square = np.array([[0.0, 0], [0, 1], [1, 0], [1, 1]])
    >>> round(agreement(square, 2 * square[:, ::-1] + 5).disparity, 9)
    0.0
    """
    if operator.index(neighbours) < 1:
        raise ValueError(f"neighbours should be at least 1, not {neighbours}")
    shown = [shown_map(given) for given in maps]
    for number, one in enumerate(shown, 1):
        if not np.isfinite(one.embedding).all():
            raise ValueError(f"map {number} has coordinates that are not finite")
    keys = [one.keys for one in shown if one.keys is not None]
    if any(other != keys[0] for other in keys[1:]):
        raise ValueError(
            "the maps are of rows with other names, or in another order\n"
            "Give maps of the same rows in the same order."
        )
    return Agreement(*_core.agreement([one.embedding for one in shown], operator.index(neighbours)))
