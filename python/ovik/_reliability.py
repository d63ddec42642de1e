"""How far to trust the place of each row."""

from __future__ import annotations

from typing import NamedTuple

import numpy as np
from numpy.typing import NDArray


class Reliability(NamedTuple):
    """How far to trust the place of each row, with an element for each."""

    columns: dict[str, NDArray[np.float64]]
    """``kept_10`` and ``kept_30``, the shares of its nearest neighbours in the data that are among its
    nearest in the embedding; ``trustworthiness_10`` and ``trustworthiness_30`` of those in the
    embedding; ``cost``, what it adds to `kl_divergence_`; ``misfit``, how far its similarities in the
    embedding are from its affinities, whatever it weighs in that. Below 61 rows without those of 30."""

    false_neighbours: list[list[int]]
    """Rows among its 10 nearest in the embedding that are not even among its 30 nearest in the data;
    of fewer than 61 rows, not among the nearer half of the others."""

    torn_neighbours: list[list[int]]
    """Rows among its 10 nearest in the data that are not even among its 30 nearest in the embedding."""
