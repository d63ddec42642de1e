"""The matrix reader."""

from __future__ import annotations

import locale
import os
import stat
import warnings
from collections.abc import Sequence
from typing import Any, Literal, NamedTuple

import numpy as np
from numpy.typing import NDArray

from . import _core


class MatrixNote(UserWarning):
    """Tells how a matrix file was taken where it could be taken otherwise."""


class Matrix(NamedTuple):
    """A matrix file."""

    values: NDArray[np.float64]
    """Shape (rows, columns)."""

    row_names: list[str]
    """One per row: from the file, else ``"1"``, ``"2"`` and so on."""

    column_names: list[str]
    """One per column, or none: the file has none, or not as many."""


def read_matrix(
    path: str | os.PathLike[str],
    delimiter: str | None = None,
    *,
    decimal: str | None = None,
    header: bool = True,
    names: bool = True,
    names_column: str | int | None = None,
    skip_columns: str | int | Sequence[str | int] = (),
    na: str | Sequence[str] = (),
    missing: str | None = None,
    sheet: str | None = None,
    row_names: str | os.PathLike[str] | None = None,
    log1p: bool | Literal["portable"] = False,
    center: Literal["rows", "columns"] | None = None,
    scale: bool = False,
    transpose: bool = False,
    encoding: str = "utf-8",
) -> Matrix:
    """Read a matrix as the command ``ovik-tsne`` does.

    Parameters
    ----------
    path : str or path-like
        Delimited text (one header line, then a name and its values per line), a NumPy array
        (``.npy``), a Matrix Market file or an Excel workbook; plain or packed by gzip. Told apart by
        their first bytes.
    delimiter : str, optional
        The character between the fields of delimited text. By default the one that gives the most
        numbers: tab, comma, semicolon or blank. Fields may stand in double quotes.
    decimal : {None, ".", ","}, optional
        The decimal sign. By default a point, and numbers with a decimal comma are refused.
    header : bool, default True
        Whether the text has a header line. Lines above it that are comments or empty are skipped.
    names : bool, default True
        Whether the rows have names; without, they are called ``"1"``, ``"2"`` and so on.
    names_column : str or int, optional
        The column of the names: its header, or the number of its field from 1. By default the
        first, or what files of its kind have (.pcl and .cdt, GEO, GCT, featureCounts and others).
    skip_columns : str, int or sequence of them, default ()
        Columns that are no values, such as descriptions, named as above.
    na : str or sequence of str, default ()
        Texts that stand for a missing value besides ``NA`` and the like, as the file has them:
        ``"-999"`` where it has -999.
    missing : {None, "zero", "row-mean", "column-mean", "drop", "error"}, optional
        What becomes of missing values (empty fields, ``NA``, ``NaN``, ``null`` and the like; NaN in
        arrays). None leaves them NaN, which `TSNE` refuses. The others are what the command has:
        0, the means of rows or columns, rows left out, or an error.
    sheet : str, optional
        The sheet of an Excel workbook. By default the first that is not hidden.
    row_names : str or path-like, optional
        A file with the name of a row per line, for formats that have none.
    log1p : bool or "portable", default False
        Whether to take log(1 + x) of the values: for counts. "portable" takes one that is the same on
        every machine, for ``TSNE(numerics="portable")``. No value may be missing for this and the
        next two; they are done in this order.
    center : {None, "rows", "columns"}, optional
        Which means to subtract.
    scale : bool, default False
        Whether to divide each column by its standard deviation (n - 1).
    transpose : bool, default False
        Whether to make rows of the columns at last, which need names of their own then.
    encoding : str, default "utf-8"
        Of the names.

    Returns
    -------
    Matrix
        Named tuple of the values, float64 of shape (rows, columns), the names of the rows and those
        of the columns.

    Raises
    ------
    OSError
        If the file cannot be opened or read to its end; FileNotFoundError and so on.
    ValueError
        If it does not hold a matrix of finite numbers with at least 3 rows, or a value is text; the
        message names file, line, row and cure. Also for names that are not of the encoding (UnicodeDecodeError).
    RuntimeError
        If the process has set a numeric locale with a decimal comma.

    Warns
    -----
    UserWarning
        For names that are empty or repeated, for a matrix with genes in its columns, and for what
        else may not be as it is meant.
    MatrixNote
        A UserWarning that tells how the file was taken: the first of several sheets, cells with
        errors, names that are numbers, a kind of table that is known.
    """
    _require_readable(path)
    if row_names is not None:
        _require_readable(row_names)
    _require_decimal_point()
    form: dict[str, Any] = {
        "delimiter": _checked_delimiter(delimiter),
        "decimal": _checked_decimal(decimal),
        "has_header": bool(header),
        "has_names": bool(names),
        "names_column": "" if names_column is None else _column(names_column, encoding),
        "skip_columns": [_column(column, encoding) for column in _listed(skip_columns)],
        "missing_signs": [_checked_sign(sign).encode(encoding) for sign in _listed(na)],
        "sheet": "" if sheet is None else sheet.encode(encoding),
        "row_names": "" if row_names is None else os.fsencode(row_names),
        "log1p": _checked_log1p(log1p),
        "is_portable": log1p == "portable",
        "center": _checked_center(center),
        "scale": bool(scale),
        "transpose": bool(transpose),
    }
    values, rows, columns, remarks, notes = _core.read_matrix(
        os.fsencode(path), form, missing or ""
    )
    for note in notes:
        warnings.warn(note.decode(errors="replace"), MatrixNote, stacklevel=2)
    for remark in remarks:
        warnings.warn(remark.decode(errors="replace"), stacklevel=2)
    return Matrix(
        values,
        [text.decode(encoding) for text in rows],
        [text.decode(encoding) for text in columns],
    )


def _require_readable(path: str | os.PathLike[str]) -> None:
    """Raise the OSError that opening gives; a pipe can be opened once only, and is left alone."""
    if not stat.S_ISFIFO(os.stat(path).st_mode):
        with open(path, "rb"):
            pass


def _require_decimal_point() -> None:
    if locale.localeconv()["decimal_point"] != ".":
        raise RuntimeError(
            "the numeric locale of this process has no decimal point, and numbers would be misread\n"
            'Call locale.setlocale(locale.LC_NUMERIC, "C") first.'
        )


def _checked_delimiter(delimiter: str | None) -> str | None:
    if delimiter is not None and (
        not isinstance(delimiter, str)
        or len(delimiter) != 1
        or not delimiter.isascii()
        or delimiter in '\r\n\0"'
    ):
        raise ValueError(f"delimiter should be one character, such as '\\t', not {delimiter!r}")
    return delimiter


def _checked_decimal(decimal: str | None) -> str | None:
    if decimal not in (None, ".", ","):
        raise ValueError(f"decimal should be '.' or ',', not {decimal!r}")
    return decimal


def _checked_log1p(log1p: bool | str) -> bool:
    if isinstance(log1p, str) and log1p != "portable":
        raise ValueError(f'log1p should be True, False or "portable", not "{log1p}"')
    return bool(log1p)


def _checked_center(center: str | None) -> str:
    if center not in (None, "rows", "columns"):
        raise ValueError(f"center should be None, 'rows' or 'columns', not {center!r}")
    return center or ""


def _checked_sign(sign: str) -> str:
    if not isinstance(sign, str):
        raise ValueError(
            f"na should be texts as they stand in the file, not {sign!r}\n"
            '"-999" stands for a missing value where the file has -999, and not where it has -999.0.'
        )
    return sign


def _listed(one_or_more: Any) -> list[Any]:
    """What may be one text or number, or a sequence of them, as a list."""
    return [one_or_more] if isinstance(one_or_more, (str, int, float)) else list(one_or_more)


def _column(column: str | int, encoding: str) -> bytes:
    if isinstance(column, bool) or not isinstance(column, (str, int)):
        raise ValueError(f"a column should be a header or a number, not {column!r}")
    text = f"#{column}" if isinstance(column, int) else column
    return text.encode(encoding)
