"""Maps of annotated data."""

from __future__ import annotations

from typing import Any

import numpy as np

from ._tsne import TSNE


def pp_tsne(
    adata: Any,
    use_rep: str | None = None,
    key_added: str = "X_tsne",
    **parameters: Any,
) -> None:
    """Embed the observations of annotated data (AnnData), in place.

    ``adata.obsm[key_added]`` becomes the embedding, ``adata.uns`` what it was made by, under the same
    key without ``X_``: ``params`` with the parameters and ``use_rep``, and ``kl_divergence``.

    Parameters
    ----------
    adata : AnnData
        Or what has its ``X``, ``obsm`` and ``uns``.
    use_rep : str, optional
        What is embedded: the key of a representation in ``adata.obsm``, or ``"X"`` for the matrix
        itself. By default ``"X_pca"`` where it is there, else ``"X"``.
    key_added : str, default "X_tsne"
        Where the embedding goes.
    **parameters
        Of `TSNE`.

    Raises
    ------
    ValueError
        If there is no such representation, or it cannot be embedded.

    Examples
    --------
    >>> ovik.pp_tsne(adata, perplexity=30)
    >>> adata.obsm["X_tsne"]
    """
    chosen = use_rep if use_rep is not None else ("X_pca" if "X_pca" in adata.obsm else "X")
    if chosen != "X" and chosen not in adata.obsm:
        there = ", ".join(repr(key) for key in adata.obsm) or "nothing"
        raise ValueError(f"adata.obsm has no {chosen!r}: it has {there}, and \"X\" is adata.X")
    tsne = TSNE(**parameters)
    values = adata.X if chosen == "X" else adata.obsm[chosen]
    adata.obsm[key_added] = np.asarray(tsne.fit(values).embedding_)
    adata.uns[key_added.removeprefix("X_")] = {
        "params": _storable(tsne) | {"use_rep": chosen},
        "kl_divergence": tsne.kl_divergence_,
    }


def _storable(tsne: TSNE) -> dict[str, int | float | str]:
    """The parameters that a file of annotated data can hold: numbers and texts."""
    return {
        name: value
        for name, value in (tsne.get_params() | {"seed": tsne.seed_}).items()
        if isinstance(value, (int, float, str))
    }
