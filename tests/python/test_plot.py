"""The map as a plot."""

import re
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest

import ovik
from ovik._palette import COLOURS, GREY, MARKERS, style_of

PALETTE = Path(__file__).resolve().parents[2] / "plots/page/src/palette.js"

matplotlib = pytest.importorskip("matplotlib")
matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402
from matplotlib.colors import to_hex  # noqa: E402


@pytest.fixture(autouse=True)
def closed_figures():
    yield
    pyplot.close("all")


def drawn(axes):
    """Colour and number of the points of each group."""
    return [(to_hex(group.get_facecolor()[0]), len(group.get_offsets())) for group in axes.collections]


def test_colours_are_those_of_the_page():
    (light,) = re.findall(r"light: \[('#0072b2'.*?)\]", PALETTE.read_text())
    assert list(COLOURS) == re.findall("#[0-9a-f]{6}", light)
    names = re.findall(r"name: '([a-z ]+)', scale", PALETTE.read_text())
    assert names == ["circle", "triangle", "square", "diamond", "downward triangle", "plus", "cross",
                     "star"]
    assert len(MARKERS) == len(names)


def test_styles_differ_as_on_the_page():
    styles = [style_of(category) for category in range(64)]
    assert len(set(styles)) == 64
    assert styles[0] == ("#0072b2", "o")
    assert styles[8] == ("#0072b2", "^")
    assert style_of(64) == styles[0]


def test_map_without_labels_has_one_colour(points):
    tsne = ovik.TSNE(n_iter=3).fit(points)
    axes = ovik.plot(tsne, title="A map")
    assert drawn(axes) == [(COLOURS[0], 90)]
    assert np.array_equal(axes.collections[0].get_offsets(), tsne.embedding_)
    assert axes.get_title() == "A map" and axes.get_legend() is None


def test_groups_have_colours_as_they_appear(points):
    labels = ["b"] * 20 + ["a"] * 30 + [None] * 40
    axes = ovik.plot(points, labels)
    # Small groups over large ones, and those without a label beneath all.
    assert drawn(axes) == [(GREY, 40), (COLOURS[1], 30), (COLOURS[0], 20)]
    legend = [text.get_text() for text in axes.get_legend().get_texts()]
    assert legend == ["b", "a", "(no label)"]
    axes = ovik.plot(points, ["Other"] * 60 + ["a"] * 30)
    assert drawn(axes) == [(GREY, 60), (COLOURS[0], 30)]
    assert GREY in PALETTE.read_text()
    assert ovik.plot(points, labels, legend=False).get_legend() is None


@pytest.fixture
def named_map(points):
    pandas = pytest.importorskip("pandas")
    return pandas.DataFrame(points[:, :2], index=[f"G{row}" for row in range(90)])


def test_series_finds_its_rows_by_name(points, named_map):
    pandas = pytest.importorskip("pandas")
    values = pandas.Series(points[:, 3], index=named_map.index)
    for shuffled in (values[::-1], pandas.concat([pandas.Series({"other": 1.0}), values.sample(frac=1)])):
        axes = ovik.plot(named_map, shuffled)
        assert np.array_equal(axes.collections[0].get_array(), points[:, 3])
    tsne = ovik.TSNE(n_iter=1).fit(pandas.DataFrame(points, index=named_map.index))
    assert np.array_equal(ovik.plot(tsne, values[::-1]).collections[0].get_array(), points[:, 3])
    # Whole numbers are names, too, where they do not just count.
    counted = pandas.DataFrame(points).sample(frac=1, random_state=3)
    tsne = ovik.TSNE(n_iter=1).fit(counted)
    drawn_numbers = ovik.plot(tsne, pandas.Series(points[:, 3])).collections[0].get_array()
    assert np.array_equal(drawn_numbers, counted[3])


def test_series_without_names_goes_by_the_order(points, named_map):
    pandas = pytest.importorskip("pandas")
    for labels in (pandas.Series(points[:, 3]), list(points[:, 3])):
        assert np.array_equal(ovik.plot(named_map, labels).collections[0].get_array(), points[:, 3])
    named = pandas.Series(points[:, 3], index=named_map.index[::-1])
    for unnamed_map in (points, pandas.DataFrame(points)):
        assert np.array_equal(ovik.plot(unnamed_map, named).collections[0].get_array(), points[:, 3])


def test_series_of_other_names_is_refused(points, named_map):
    pandas = pytest.importorskip("pandas")
    with pytest.raises(ValueError, match=r"has no entry for 90 of 90 rows of the map \('G0', 'G1', 'G2', "
                                         r"\.\.\.\); its index has 'H0', 'H1', 'H2', "):
        ovik.plot(named_map, pandas.Series(points[:, 3], index=[f"H{row}" for row in range(90)]))
    with pytest.raises(ValueError, match=r"no entry for 1 of 90 rows of the map \('G7'\)"):
        ovik.plot(named_map, pandas.Series(points[:, 3], index=named_map.index).drop("G7"))
    twice = pandas.Series(["a"] * 91, index=[*reversed(named_map.index), "G5"])
    with pytest.raises(ValueError, match="the index of labels has 'G5' more than once"):
        ovik.plot(named_map, twice)


def test_dict_goes_by_name(named_map, points):
    axes = ovik.plot(named_map, {"G1": "a", "G0": "b", "other": "c"})
    assert drawn(axes) == [(GREY, 88), (COLOURS[0], 1), (COLOURS[1], 1)]
    scale = ovik.plot(named_map, {"G1": 0.5}).collections[0].get_array()
    assert scale[1] == 0.5 and scale.mask.sum() == 89
    with pytest.raises(ValueError, match="labels is a dict, and the rows of the map have no names"):
        ovik.plot(points, {"G1": "a"})
    with pytest.raises(ValueError, match="no key of labels .'H1'. is the name of a row .'G0', "):
        ovik.plot(named_map, {"H1": "a"})


def test_numbers_have_a_scale(points):
    axes = ovik.plot(points, points[:, 3])
    assert np.array_equal(axes.collections[0].get_array(), points[:, 3])
    assert len(axes.figure.axes) == 2
    assert len(drawn(ovik.plot(points, np.arange(90) % 3))) == 3


def test_points_without_a_number_are_grey(points):
    numbers = points[:, 3].copy()
    numbers[7] = np.nan
    axes = ovik.plot(points, numbers)
    axes.figure.canvas.draw()
    (group,) = axes.collections
    assert to_hex(group.get_facecolor()[7]) == "#bbbbbb"
    assert len(group.get_offsets()) == 90 and group.get_facecolor()[7, 3] == 0.8


def test_labels_that_say_none_are_grey_beneath_the_others_and_last(points):
    labels = ["Other"] * 20 + ["small"] * 10 + ["large"] * 40 + ["NA"] * 20
    axes = ovik.plot(points, labels)
    assert [text.get_text() for text in axes.get_legend().get_texts()] == ["small", "large", "Other", "NA"]
    assert drawn(axes) == [(GREY, 20), (GREY, 20), (COLOURS[1], 40), (COLOURS[0], 10)]
    assert f"'{GREY}'" in PALETTE.read_text()


def test_long_legends_say_that_there_is_more(points):
    legend = ovik.plot(points, [str(row) for row in range(90)]).get_legend()
    assert len(legend.get_texts()) == 30 and legend.get_title().get_text() == "and 60 more"


def test_components_and_axes_are_chosen(points):
    _, mine = pyplot.subplots()
    axes = ovik.plot(points, ax=mine, components=(3, 1), size=5)
    assert axes is mine
    assert np.array_equal(axes.collections[0].get_offsets(), points[:, [2, 0]])
    assert axes.get_xlabel() == "Component 3"
    assert axes.collections[0].get_sizes().tolist() == [5]


def test_what_cannot_be_drawn_is_refused(points):
    with pytest.raises(ValueError, match="components should be two numbers from 1 to 2, not .1, 3."):
        ovik.plot(points[:, :2], components=(1, 3))
    with pytest.raises(ValueError, match="labels should have one entry per row of the map, 90, not 2"):
        ovik.plot(points, ["a", "b"])
    with pytest.raises(ValueError, match="has not been fitted yet"):
        ovik.plot(ovik.TSNE())


def test_importing_the_package_imports_no_other():
    script = "import sys, ovik; print(*({'matplotlib', 'pandas', 'scipy', 'sklearn'} & set(sys.modules)))"
    run = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True, check=True)
    assert run.stdout.strip() == ""
