"""The chart page of a map."""

from __future__ import annotations

import html
import os
import tempfile
import warnings
from collections.abc import Iterable, Mapping
from typing import TYPE_CHECKING, Any, Literal

from numpy.typing import ArrayLike

from . import _core
from ._input import as_input
from ._shown import ShownMap, entries_of_rows, shown_map, texts_of

if TYPE_CHECKING:
    from ._tsne import TSNE


class Page:
    """A chart page: shows itself as the last line of a notebook's cell, and can be saved.

    Attributes
    ----------
    html : str
        The whole page, which needs nothing but itself.
    """

    def __init__(self, html: str, height: int) -> None:
        self.html = html
        self._height = height

    def _repr_html_(self) -> str:
        # Without its own origin the page cannot reach into the notebook.
        return (
            f'<iframe srcdoc="{html.escape(self.html)}" sandbox="allow-scripts allow-downloads" '
            f'style="width: 100%; height: {self._height}px; border: 0" title="Chart page"></iframe>'
        )

    def save(self, path: str | os.PathLike[str]) -> None:
        """Write the page to a file, whole or not at all: an earlier one stays until then.

        Raises
        ------
        OSError
            If it cannot be written.
        """
        target = os.path.realpath(path)
        with tempfile.NamedTemporaryFile(
            "w", encoding="utf-8", newline="", dir=os.path.dirname(target), delete=False
        ) as file:
            try:
                file.write(self.html)
                file.flush()
                os.chmod(file.name, _permissions(target))
                os.replace(file.name, target)
            except BaseException:
                os.unlink(file.name)
                raise

    def __repr__(self) -> str:
        return f"<chart page of {len(self.html)} characters: .save(path) writes it>"


def page(
    tsne: TSNE | ArrayLike,
    labels: Iterable[Any] | None = None,
    *,
    matrix: Any = None,
    page_data: Literal["small", "full"] = "full",
    names: Iterable[str] | None = None,
    functions: Iterable[str] | None = None,
    title: str = "",
    sets: Mapping[str, Iterable[str]] | None = None,
    height: int = 800,
) -> Page:
    """Make the interactive chart page of a map, as the command leaves one.

    Parameters
    ----------
    tsne : TSNE or array-like of shape (n_samples, n_components)
        A fitted estimator, or an embedding. Of more than two components the page shows every pair.
    labels : iterable of length n_samples, optional
        What colours the points, by groups. As names and functions, a Series or a dict finds its rows
        by name where the map has names; rows that a dict leaves out have none.
    matrix : Matrix, data frame or array-like of shape (n_samples, n_features), optional
        The values of the rows, which the page then shows, colours and compares genes by, in the
        metric of the map; as they were fitted, in the order of the map. NaN is a missing value.
    page_data : {"full", "small"}, default "full"
        How exactly the page has them: by 16 bits, to 1/131068 of the range of their column, up to
        4,000,000 values; or by 8, to 1/508, up to 8,000,000.
    names : iterable of str, optional
        Of the rows. By default those of the matrix or table that was fitted, else ``"1"``, ``"2"``
        and so on.
    functions : iterable of str, optional
        What the genes do. By default the gene table is asked by the names.
    title : str, optional
        Above the chart.
    sets : dict of iterables of str, optional
        Sets of genes that the page lists, by their names. Genes are found by the names of the rows, else
        by any name that the gene table knows.
    height : int, default 800
        Of the page in a notebook, in pixels.

    Returns
    -------
    Page
        In Jupyter it shows itself; ``.save("map.html")`` writes it to a file.

    Raises
    ------
    ValueError
        If there is no embedding, another number of names, labels or functions than of rows, or none
        of the name of a row; if the matrix has other rows, or too many values for a page; if no gene of a
        set is that of a row.

    Warns
    -----
    UserWarning
        If some genes of a set are those of no row.

    Examples
    --------
    >>> ovik.page(tsne, title="Chemostats").save("map.html")
    """
    shown = shown_map(tsne)
    count = len(shown.embedding)
    given_names = entries_of_rows("names", names, shown.keys, count)
    of_input = shown.names or [str(row) for row in range(1, count + 1)]
    # Rows without names of their own are found by those that they are given.
    keys = shown.keys or (texts_of(given_names) if given_names else None)
    row_names = _list_of_bytes(of_input if given_names is None else given_names)
    texts = {
        "title": _as_bytes(title or "t-SNE map"),
        "name": _as_bytes("ovik_map"),
        "names": row_names,
        "labels": _list_of_bytes(entries_of_rows("labels", labels, keys, count)),
        "functions": _list_of_bytes(entries_of_rows("functions", functions, keys, count)),
        "sets": _rows_of_sets(sets or {}, row_names),
        "parameters": shown.parameters,
        "matrix": _form_of(matrix, page_data, shown),
        "metric": _metric_of(tsne),
    }
    return Page(_core.page(shown.embedding, texts), height)


def _rows_of_sets(
    sets: Mapping[str, Iterable[str]], row_names: list[bytes]
) -> list[tuple[bytes, list[int]]]:
    rows_of_sets = []
    for name, genes in sets.items():
        listed = list(dict.fromkeys(str(gene) for gene in genes))
        found = _core.find_rows(row_names, [_as_bytes(gene) for gene in listed])
        missing = [gene for gene, rows in zip(listed, found) if not rows]
        if len(missing) == len(listed):
            raise ValueError(f"sets: no gene of {name!r} is that of a row")
        if missing:
            first = ", ".join(missing[:3]) + (", ..." if len(missing) > 3 else "")
            warnings.warn(
                f"sets: {len(missing)} of {len(listed)} genes of {name!r} are those of no row: {first}",
                stacklevel=3,
            )
        rows_of_sets.append((_as_bytes(str(name)), sorted({row for rows in found for row in rows})))
    return rows_of_sets


def _metric_of(tsne: Any) -> str:
    """The metric by which the rows of a map are compared; distances had one that is not known."""
    metric = str(getattr(tsne, "metric", "euclidean"))
    return "euclidean" if metric == "precomputed" else metric


def _form_of(matrix: Any, page_data: str, shown: ShownMap) -> dict[str, Any] | None:
    """The matrix with the names of its columns, for the module."""
    if page_data not in ("small", "full"):
        raise ValueError(f"page_data should be 'small' or 'full', not {page_data!r}")
    if matrix is None:
        return None
    given = as_input(matrix, fewest_rows=1)
    if len(given.values) != len(shown.embedding):
        raise ValueError(
            f"matrix should have one row per row of the map, {len(shown.embedding)}, not {len(given.values)}"
        )
    index = None if given.index is None else [str(key) for key in given.index]
    if index is not None and shown.keys is not None and index != shown.keys:
        raise ValueError("matrix should have the rows of the map in their order: their names differ")
    columns = [] if given.feature_names is None else [_as_bytes(name) for name in given.feature_names]
    return {"values": given.values, "columns": columns, "bits": 8 if page_data == "small" else 16}


def _as_bytes(text: str) -> bytes:
    return text.encode("utf-8", "surrogateescape")


def _list_of_bytes(entries: list[Any] | None) -> list[bytes]:
    return [_as_bytes(text) for text in texts_of(entries)]


def _permissions(path: str) -> int:
    """Those of the earlier file, else what a new one gets."""
    try:
        return os.stat(path).st_mode & 0o7777
    except FileNotFoundError:
        mask = os.umask(0)
        os.umask(mask)
        return 0o666 & ~mask
