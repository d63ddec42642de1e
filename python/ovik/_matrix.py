"""The matrix reader."""

from __future__ import annotations

import locale
import os
import stat
import warnings
from typing import NamedTuple

import numpy as np
from numpy.typing import NDArray

from . import _core


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
    missing: str | None = None,
    encoding: str = "utf-8",
) -> Matrix:
    """Read a matrix as the command ``ovik-tsne`` does.

    Parameters
    ----------
    path : str or path-like
        Delimited text (one header line, then a name and its values per line), a NumPy array
        (``.npy``) or a Matrix Market file; plain or packed by gzip. Told apart by their first bytes.
    delimiter : str, optional
        The character between the fields of delimited text. By default the one that gives the most
        numbers: tab, comma, semicolon or blank.
    missing : {None, "zero", "row-mean", "column-mean", "drop", "error"}, optional
        What becomes of missing values (empty fields, ``NA``, ``NaN``, ``null`` and the like; NaN in
        arrays). None leaves them NaN, which `TSNE` refuses. The others are what the command has:
        0, the means of rows or columns, rows left out, or an error.
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
        If it does not hold a matrix of finite numbers with at least 3 rows; the text names file,
        line, row and cure. Also for names that are not of the encoding (UnicodeDecodeError).
    RuntimeError
        If the process has set a numeric locale with a decimal comma.

    Warns
    -----
    UserWarning
        For text where a number should be, which is read as 0.0, for text behind a number, which is
        ignored, and for names that are empty, quoted or repeated.
    """
    _require_readable(path)
    _require_decimal_point()
    values, row_names, column_names, remarks = _core.read_matrix(
        os.fsencode(path), _checked_delimiter(delimiter), missing or ""
    )
    for remark in remarks:
        warnings.warn(remark.decode(errors="replace"), stacklevel=2)
    return Matrix(
        values,
        [text.decode(encoding) for text in row_names],
        [text.decode(encoding) for text in column_names],
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
        or delimiter in "\r\n\0"
    ):
        raise ValueError(f"delimiter should be one character, such as '\\t', not {delimiter!r}")
    return delimiter
