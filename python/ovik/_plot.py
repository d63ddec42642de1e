"""The map as a plot of matplotlib."""

from __future__ import annotations

from collections.abc import Iterable
from typing import TYPE_CHECKING, Any

import numpy as np
from numpy.typing import ArrayLike, NDArray

from ._palette import GREY, MARKERS, is_no_label, style_of
from ._shown import entries_of_rows, shown_map, texts_of

if TYPE_CHECKING:
    from matplotlib.axes import Axes

    from ._tsne import TSNE

_LARGEST_POINT = 36.0
_SMALLEST_POINT = 2.0
_MOST_LEGEND_ENTRIES = 30
_NO_NUMBER = "#bbbbbb"


def plot(
    tsne: TSNE | ArrayLike,
    labels: Iterable[Any] | None = None,
    *,
    ax: Axes | None = None,
    title: str = "",
    components: tuple[int, int] = (1, 2),
    size: float | None = None,
    legend: bool = True,
) -> Axes:
    """Draw a map with matplotlib, in the colours of the chart page.

    Parameters
    ----------
    tsne : TSNE or array-like of shape (n_samples, n_components)
        A fitted estimator, or an embedding.
    labels : iterable of length n_samples, optional
        What colours the points: real numbers by a scale, everything else by groups, in the order in
        which they appear; "other", "none", "NA", "unknown" and the empty label are grey and come last. A
        Series or a dict finds its rows by name where the map has names; rows that a dict leaves out have
        no label.
    ax : Axes, optional
        Where to draw; by default a new figure.
    title : str, optional
        Above the plot.
    components : tuple of two int, default (1, 2)
        Which components of the embedding are drawn, counted from 1.
    size : float, optional
        Area of a point in square points; by default the smaller, the more rows there are.
    legend : bool, default True
        Whether the labels are explained; of many groups only the first ones are.

    Returns
    -------
    Axes
        With the plot.

    Raises
    ------
    ValueError
        If there is no embedding, no such component, another number of labels, or no label of the name of a row.
    ImportError
        If matplotlib is not there; on Debian it is the package python3-matplotlib.

    Examples
    --------
    >>> ovik.plot(tsne, labels=["ribosome", "other", ...])
    """
    shown = shown_map(tsne)
    x, y = _columns(shown.embedding, components)
    # Checked before matplotlib is looked for: what is wrong is wrong without it, too.
    given = entries_of_rows("labels", labels, shown.keys, len(x))
    if ax is None:
        from matplotlib import pyplot

        _, ax = pyplot.subplots(figsize=(8, 7), layout="constrained")
    area = size if size is not None else np.clip(30_000 / len(x), _SMALLEST_POINT, _LARGEST_POINT)
    if given is None:
        _draw(ax, x, y, style_of(0), area)
    elif _are_real_numbers(given):
        _draw_scale(ax, x, y, np.asarray(given), area, legend)
    else:
        _draw_groups(ax, x, y, texts_of(given), area, legend)
    ax.set(
        title=title,
        xlabel=f"Component {components[0]}",
        ylabel=f"Component {components[1]}",
    )
    ax.set_aspect("equal", adjustable="datalim")
    ax.set_axisbelow(True)
    ax.grid(color="#e5e5e5", linewidth=0.5)
    return ax


def _columns(
    embedding: NDArray[np.float64], components: tuple[int, int]
) -> tuple[NDArray[np.float64], NDArray[np.float64]]:
    first, second = components
    count = embedding.shape[1]
    if not (1 <= first <= count and 1 <= second <= count):
        raise ValueError(f"components should be two numbers from 1 to {count}, not {components!r}")
    return embedding[:, first - 1], embedding[:, second - 1]


def _are_real_numbers(labels: Any) -> bool:
    """Whole numbers name groups."""
    return np.asarray(labels).dtype.kind == "f"


def _draw(ax: Any, x: Any, y: Any, style: tuple[str, str], area: float) -> Any:
    colour, marker = style
    return ax.scatter(x, y, s=area, color=colour, marker=marker, linewidths=0, alpha=0.8)


def _draw_scale(ax: Any, x: Any, y: Any, numbers: Any, area: float, legend: bool) -> None:
    from matplotlib import colormaps

    # Points without a number are grey, and not left out.
    colours = colormaps["viridis"].with_extremes(bad=_NO_NUMBER)
    points = ax.scatter(
        x, y, s=area, c=numbers, cmap=colours, linewidths=0, alpha=0.8, plotnonfinite=True
    )
    if legend:
        ax.figure.colorbar(points, ax=ax, shrink=0.6)


def _draw_groups(ax: Any, x: Any, y: Any, labels: list[str], area: float, legend: bool) -> None:
    seen = list(dict.fromkeys(labels))
    groups = [group for group in seen if not is_no_label(group)]
    groups += [group for group in seen if is_no_label(group)]
    numbers = {group: number for number, group in enumerate(groups)}
    group_of = np.array([numbers[label] for label in labels])
    sizes = np.bincount(group_of, minlength=len(groups))
    handles = {}
    # Grey ones beneath the others, small groups over large ones.
    for number in sorted(range(len(groups)), key=lambda n: (not is_no_label(groups[n]), -sizes[n])):
        rows = group_of == number
        style = (GREY, MARKERS[0]) if is_no_label(groups[number]) else style_of(number)
        handles[number] = _draw(ax, x[rows], y[rows], style, area)
    if legend:
        hidden = len(groups) - _MOST_LEGEND_ENTRIES
        shown = range(min(len(groups), _MOST_LEGEND_ENTRIES))
        ax.legend(
            [handles[number] for number in shown],
            [groups[number] or "(no label)" for number in shown],
            title=f"and {hidden} more" if hidden > 0 else None,
            loc="center left",
            bbox_to_anchor=(1.0, 0.5),
            frameon=False,
        )
