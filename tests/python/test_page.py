"""The chart page of a map."""

import base64
import html
import json
import os
import re
import stat
import subprocess

import numpy as np
import pytest

import ovik


def data_of(page):
    """The chart's data in a page."""
    (script,) = re.findall(r'<script type="application/json"[^>]*>(.*?)</script>', page, re.DOTALL)
    return json.loads(script)


@pytest.fixture
def tsne(time_courses):
    matrix = ovik.read_matrix(time_courses, missing="zero")
    return ovik.TSNE(n_iter=20, n_jobs=1).fit(matrix)


@pytest.mark.parametrize("n_components", [2, 3])
def test_page_is_the_commands(time_courses, tmp_path, n_components):
    subprocess.run([os.environ["OVIK_TSNE"], time_courses, "-i", "20", "--missing", "zero", "--quiet",
                    "--dims", str(n_components), "--out-dir", tmp_path, "--name", "run"], check=True)
    (path,) = tmp_path.glob("run_tsne_*.html")
    expected = data_of(path.read_text())
    tsne = ovik.TSNE(n_components, n_iter=20).fit(ovik.read_matrix(time_courses, missing="zero"))
    matrix = ovik.read_matrix(time_courses, missing="zero")
    shown = data_of(ovik.page(tsne, matrix=matrix, title=expected["title"]).html)
    assert shown.pop("name") == "ovik_map" and expected.pop("name")
    # Texts that nobody gave.
    assert not any(shown.pop("texts") + expected.pop("texts"))
    assert shown == expected


def test_page_shows_what_it_is_given(points):
    page = ovik.page(
        points[:3, :2], labels=["a", None, 7], names=["G1", "G<2>", "CDC28"], title="A & b",
        functions=["one", "two", ""],
    )
    shown = data_of(page.html)
    assert shown["title"] == "A & b"
    assert "<title>A &amp; b</title>" in page.html
    assert shown["names"] == ["G1", "G<2>", "CDC28"]
    assert shown["labels"] == ["a", "", "7"]
    assert shown["functions"] == ["one", "two", ""]
    assert shown["pairs"][0]["x"] == points[:3, 0].tolist()


def test_page_takes_a_matrix_along(points):
    values = points[:4].copy()
    values[1, 2] = np.nan
    shown = data_of(ovik.page(points[:4, :2], matrix=values).html)["matrix"]
    assert (shown["bits"], shown["metric"]) == (16, "euclidean")
    assert shown["columns"][:2] == ["column 1", "column 2"]
    codes = np.frombuffer(base64.b64decode(shown["values"]), "<u2").reshape(values.shape)
    assert codes[1, 2] == 0xFFFF and np.count_nonzero(codes == 0xFFFF) == 1
    decoded = shown["lows"] + codes * np.array(shown["steps"])
    known = np.isfinite(values)
    assert np.all((np.abs(decoded - values) <= 0.5001 * np.array(shown["steps"]))[known])
    small = data_of(ovik.page(points[:4, :2], matrix=values, page_data="small").html)["matrix"]
    assert small["bits"] == 8 and len(base64.b64decode(small["values"])) == values.size
    assert data_of(ovik.page(points[:4, :2]).html)["matrix"] is None


def test_page_refuses_other_matrices(points):
    with pytest.raises(ValueError, match="one row per row of the map, 4, not 3"):
        ovik.page(points[:4, :2], matrix=points[:3])
    with pytest.raises(ValueError, match="page_data should be 'small' or 'full', not 'none'"):
        ovik.page(points[:4, :2], matrix=points[:4], page_data="none")
    with pytest.raises(ValueError, match="4000001 values, and a page takes up to 4000000, or twice"):
        ovik.page(np.zeros((1, 2)), matrix=np.zeros((1, 4000001)))
    pandas = pytest.importorskip("pandas")
    table = pandas.DataFrame(points[:4, :2], index=list("abcd"))
    with pytest.raises(ValueError, match="their names differ"):
        ovik.page(table, matrix=table[::-1])


def test_missing_labels_are_empty(points):
    pandas = pytest.importorskip("pandas")
    missing = [None, float("nan"), np.float32("nan"), pandas.NA, "a"]
    assert data_of(ovik.page(points[:5, :2], missing).html)["labels"] == ["", "", "", "", "a"]


def test_functions_are_those_of_the_names(points):
    shown = data_of(ovik.page(points[:2, :2], names=["CDC28", "no gene"]).html)
    assert shown["functions"][0] == ovik.gene_function("CDC28").function


def test_genes_keep_their_terms_with_other_functions(points):
    names = ["CDC28", "no gene"]
    shown = data_of(ovik.page(points[:2, :2], names=names).html)
    given = data_of(ovik.page(points[:2, :2], names=names, functions=["one", "two"]).html)
    assert given["functions"] == ["one", "two"]
    assert len(given["terms"]["genes"][0]) > 0 and given["terms"]["genes"][1] == []
    assert given["terms"] == shown["terms"] and given["aliases"] == shown["aliases"]


def test_rows_of_an_array_are_counted(points):
    assert data_of(ovik.page(points).html)["names"][:2] == ["1", "2"]
    assert len(data_of(ovik.page(points).html)["pairs"]) == 15


def test_given_start_is_told(points):
    tsne = ovik.TSNE(n_iter=3, init=points[:, :2]).fit(points)
    assert ["Start", "given"] in data_of(ovik.page(tsne).html)["parameters"]
    assert ["Iterations", "3"] not in data_of(ovik.page(tsne).html)["parameters"]
    assert ["Last iteration", "3"] in data_of(ovik.page(tsne).html)["parameters"]


def test_data_frame_gives_names(points):
    pandas = pytest.importorskip("pandas")
    tsne = ovik.TSNE(n_iter=3).set_output(transform="pandas")
    framed = tsne.fit_transform(pandas.DataFrame(points, index=[f"G{row}" for row in range(90)]))
    assert data_of(ovik.page(framed).html)["names"][:2] == ["G0", "G1"]


def test_series_and_dicts_find_their_rows_by_name(points):
    pandas = pytest.importorskip("pandas")
    framed = pandas.DataFrame(points[:3, :2], index=["A", "B", "C"])
    shown = data_of(ovik.page(
        framed, pandas.Series({"C": "z", "A": "x", "B": "y"}), names={"B": "b", "A": "a", "C": "c"},
        functions=pandas.Series({"B": "two", "C": "three", "A": "one"}),
    ).html)
    assert shown["labels"] == ["x", "y", "z"] and shown["names"] == ["a", "b", "c"]
    assert shown["functions"] == ["one", "two", "three"]
    # Names that are given serve a map without any.
    labels = {"C": "z", "A": "x"}
    shown = data_of(ovik.page(points[:3, :2], labels, names=["A", "B", "C"]).html)
    assert shown["labels"] == ["x", "", "z"]
    with pytest.raises(ValueError, match="functions has no entry for 1 of 3 rows of the map .'C'."):
        ovik.page(framed, functions=pandas.Series({"A": "one", "B": "two"}))


def test_notebook_shows_it_in_a_frame_of_its_own(tsne):
    page = ovik.page(tsne, height=500)
    shown = page._repr_html_()
    (source,) = re.findall(r'srcdoc="([^"]*)"', shown)
    assert html.unescape(source) == page.html
    assert 'sandbox="allow-scripts allow-downloads"' in shown and "height: 500px" in shown
    assert repr(page).startswith("<chart page of ")


def test_page_is_saved_whole(tsne, tmp_path):
    path = tmp_path / "map.html"
    page = ovik.page(tsne)
    mask = os.umask(0o027)
    try:
        page.save(path)
    finally:
        os.umask(mask)
    assert path.read_text(encoding="utf-8") == page.html
    assert stat.S_IMODE(path.stat().st_mode) == 0o640
    path.chmod(0o600)
    link = tmp_path / "link.html"
    link.symlink_to(path)
    page.save(str(link))
    assert link.is_symlink() and stat.S_IMODE(path.stat().st_mode) == 0o600
    with pytest.raises(OSError):
        page.save(tmp_path / "none" / "map.html")
    with pytest.raises(IsADirectoryError):
        page.save(tmp_path)
    assert sorted(os.listdir(tmp_path)) == ["first_rows.tsv", "link.html", "map.html"]


def test_texts_of_another_number_are_refused(points):
    for texts in ("names", "labels", "functions"):
        with pytest.raises(ValueError, match=f"{texts} should have one entry per row .* 90, not 1"):
            ovik.page(points, **{texts: ["x"]})


@pytest.mark.parametrize("what, said", [
    (ovik.TSNE(), "has not been fitted yet"),
    (np.zeros((5, 1)), "not of the shape (5, 1)"),
    (np.zeros(5), "not of the shape (5,)"),
])
def test_what_is_no_map(what, said):
    with pytest.raises(ValueError) as caught:
        ovik.page(what)
    assert said in str(caught.value)


def test_texts_of_any_bytes_are_shown(points):
    shown = data_of(ovik.page(points[:1, :2], names=["G\udce9"], title="\udce9").html)
    assert shown["names"] == ["G\ufffd"]


def test_sets_find_their_genes(points):
    names = ["CDC28", "CLN1", "x"]
    page = ovik.page(points[:3, :2], names=names, sets={"a <b>": ["YMR199W", "cdc28"], "x": ["x"]})
    assert data_of(page.html)["sets"] == [
        {"name": "a <b>", "colour": "", "genes": ["CDC28", "CLN1"]}, {"name": "x", "colour": "", "genes": ["x"]},
    ]
    assert data_of(page.html)["aliases"] == [
        ["YBR160W", "S000000364", ""], ["YMR199W", "S000004812", ""], [],
    ]


def test_genes_of_sets_that_are_missing_are_told(points):
    with pytest.warns(UserWarning, match="sets: 1 of 2 genes of 'a' are those of no row: ACT1") as notes:
        ovik.page(points[:2, :2], names=["CDC28", "CLN1"], sets={"a": ["ACT1", "CLN1"]})
    assert notes[0].filename == __file__
    with pytest.raises(ValueError, match="sets: no gene of 'b' is that of a row"):
        ovik.page(points[:2, :2], names=["CDC28", "CLN1"], sets={"b": ["ACT1"]})
