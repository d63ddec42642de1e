"""What the genes of budding yeast do."""

from __future__ import annotations

from typing import NamedTuple

from . import _core


class Gene(NamedTuple):
    """A gene of budding yeast, as the gene table has it."""

    name: str
    """Standard name, such as CDC28; of a gene without one the systematic name."""

    systematic_name: str
    """Such as YBR160W."""

    function: str | None
    """What its product does, in one line; None if that is not known."""


def gene_function(name: str) -> Gene | None:
    """Look a yeast gene up in the table that the package holds.

    Parameters
    ----------
    name : str
        Standard or systematic name, in upper case: ``"CDC28"``, ``"YBR160W"``.

    Returns
    -------
    Gene or None
        None if the table has no gene of this name.

    Examples
    --------
    >>> gene_function("YBR160W").name
    'CDC28'
    """
    entry = _core.find_gene(name)
    if entry is None:
        return None
    listed_name, systematic_name, function = entry
    return Gene(listed_name, systematic_name, None if function == "NULL" else function)
