"""What lists of genes have more of than chance gives."""

from __future__ import annotations

import os
import warnings
from collections.abc import Iterable
from typing import TYPE_CHECKING, Any, NamedTuple

from . import _core

if TYPE_CHECKING:
    from ._matrix import Matrix
    from ._tsne import TSNE


class EnrichedTerm(NamedTuple):
    """How a list of genes overlaps with those of a GO slim term."""

    term: str
    """Identifier, such as GO:0006457."""

    name: str
    """Such as protein folding."""

    aspect: str
    """What it tells of: process, function or component."""

    hits: int
    """Genes of the list that have the term."""

    size: int
    """Genes of the background that have it."""

    drawn: int
    """Annotated genes of the list."""

    total: int
    """Annotated genes of the background."""

    fold: float
    """``hits`` as a multiple of what chance gives on average."""

    p: float
    """The chance of so many hits or more: the upper tail of the hypergeometric distribution."""

    q: float
    """The false discovery rate over all terms that were tested (Benjamini and Hochberg)."""

    genes: list[str]
    """The hits, under the names that the gene table lists them under."""


class Enrichment(list[EnrichedTerm]):
    """The terms of a list of genes, the least likely by chance first: ``pandas.DataFrame`` takes it.

    Attributes
    ----------
    tested : int
        How many terms were tested: those of at least two genes of the background.
    not_found : list of str
        Names that are of no gene.
    ambiguous : list of str
        Names of several genes, of which none was taken.
    outside : list of str
        Genes of the list that are not in the background.
    without_terms : list of str
        Genes of the list that have no term.
    """

    def __init__(self, terms: Iterable[EnrichedTerm], facts: dict[str, Any]) -> None:
        super().__init__(terms)
        self.tested: int = facts["tested"]
        self.not_found: list[str] = facts["not_found"]
        self.ambiguous: list[str] = facts["ambiguous"]
        self.outside: list[str] = facts["outside"]
        self.without_terms: list[str] = facts["without_terms"]


def enrich(
    genes: str | Iterable[str], background: Matrix | TSNE | Iterable[str] | None = None
) -> Enrichment:
    """Test which GO slim terms a list of yeast genes has more of than chance gives.

    Genes without any term are left out on both sides, since nothing is known of them; a gene counts
    once, whatever names it has.

    Parameters
    ----------
    genes : iterable of str, or str
        Names as the command finds them, in any letter case: standard names, systematic names, names
        of proteins. A text holds them on lines of their own, or between blanks, tabs or commas.
    background : Matrix, TSNE or iterable of str, optional
        What the genes might have been drawn from: the rows of a matrix or of a fit, or names. By
        default all genes.

    Returns
    -------
    Enrichment
        Terms with at least one hit.

    Raises
    ------
    ValueError
        If no gene is found, or none is annotated and in the background.

    Warns
    -----
    UserWarning
        If most of the names are not found.

    Examples
    --------
    >>> best = enrich("HSP104 SSA1 HSP82")[0]
    >>> best.name, best.hits
    ('unfolded protein binding', 3)
    """
    names = _split(genes) if isinstance(genes, str) else _texts("genes", genes)
    rows, facts = _core.enrich(
        _list_of_bytes(names), None if background is None else _list_of_bytes(_names_of(background))
    )
    for kind in ("not_found", "ambiguous"):
        facts[kind] = [name.decode("utf-8", "surrogateescape") for name in facts[kind]]
    if facts["found"] == 0:
        raise ValueError(
            f"none of the {len(names)} names is that of one gene of yeast\n"
            "Genes are known by standard and systematic names (CDC28, YBR160W)."
        )
    if background is not None and facts["background"] == 0:
        raise ValueError("none of the names of background is that of one gene of yeast")
    if facts["drawn"] == 0:
        raise ValueError(
            "none of the genes is in a GO slim term" + ("" if background is None else " and in background")
        )
    if len(facts["not_found"]) > facts["found"]:
        warnings.warn(
            f"{len(facts['not_found'])} of {len(names)} names are not found: "
            + ", ".join(facts["not_found"][:10]),
            stacklevel=2,
        )
    return Enrichment((EnrichedTerm(*row) for row in rows), facts)


def _split(text: str) -> list[str]:
    names = _core.split_gene_names(text.encode("utf-8", "surrogateescape"))
    return [name.decode("utf-8", "surrogateescape") for name in names]


def _texts(what: str, names: Iterable[Any]) -> list[str]:
    texts = list(names)
    for name in texts:
        if not isinstance(name, str):
            raise TypeError(f"{what} should be names of genes, not {name!r}")
    return texts


def _list_of_bytes(names: list[str]) -> list[bytes]:
    return [name.encode("utf-8", "surrogateescape") for name in names]


def _names_of(background: Any) -> list[str]:
    if isinstance(background, str | bytes | os.PathLike):
        raise TypeError("background should be names or a matrix; read_matrix reads one from a file")
    for attribute in ("row_names_", "row_names"):
        names = getattr(background, attribute, None)
        if names is not None:
            return _texts("background", names)
    return _texts("background", background)
