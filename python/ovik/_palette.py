"""Colours and markers of labels, as on the chart page."""

from __future__ import annotations

# Okabe and Ito's colours, told apart with any colour vision; the yellow is darkened for white.
COLOURS = (
    "#0072b2", "#d55e00", "#009e73", "#cc79a7", "#e69f00", "#56b4e9", "#a39200", "#333333",
)  # fmt: skip

# Circle, triangle, square, diamond, downward triangle, plus, cross, star.
MARKERS = ("o", "^", "s", "D", "v", "P", "X", "*")

# Of labels that say that a point belongs to none of the others, which lie beneath.
GREY = "#b4bcc4"
_NO_LABELS = {"", "other", "none", "na", "unknown"}


def is_no_label(label: str) -> bool:
    """Whether a label says that."""
    return label.strip().lower() in _NO_LABELS


def style_of(category: int) -> tuple[str, str]:
    """Colour and marker of a label; the first eight differ in both, the first 64 in one of them."""
    index = category % (len(COLOURS) * len(MARKERS))
    shape = (index + index // len(MARKERS)) % len(MARKERS)
    return COLOURS[index % len(COLOURS)], MARKERS[shape]
