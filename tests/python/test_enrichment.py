"""Terms of lists of genes."""

import numpy as np
import pytest

import ovik

CHAPERONES = ["HSP104", "ssa1", "YMR186W", "Hsp82p"]


def test_the_least_likely_term_comes_first():
    terms = ovik.enrich(CHAPERONES)
    best = terms[0]
    assert (best.term, best.name, best.aspect) == ("GO:0051082", "unfolded protein binding", "function")
    assert (best.hits, best.drawn) == (4, 4)
    assert best.genes == ["SSA1", "HSP104", "HSC82", "HSP82"]
    assert best.fold == pytest.approx(best.hits / best.drawn / (best.size / best.total))
    assert [term.p for term in terms] == sorted(term.p for term in terms)
    assert all(0 < term.p <= term.q <= 1 for term in terms)
    assert terms.tested > len(terms)


def test_a_text_holds_names_in_any_form():
    assert ovik.enrich("HSP104,ssa1\n\"YMR186W\"\tHsp82p") == ovik.enrich(CHAPERONES)


def test_the_background_is_a_matrix_a_fit_or_names():
    names = ["CLN1", "CLN2", "ENO1", "ENO2", "YAL069W", "x"]
    matrix = ovik.Matrix(np.arange(18.0).reshape(6, 3), names, ["a", "b", "c"])
    terms = ovik.enrich(["CLN1", "CLN2", "HSP104", "YAL069W", "x", "MF"], matrix)
    assert terms == ovik.enrich(["CLN1", "CLN2"], names)
    assert terms[0].p == pytest.approx(1 / 6)
    assert (terms[0].hits, terms[0].size, terms[0].drawn, terms[0].total) == (2, 2, 2, 4)
    assert (terms.not_found, terms.ambiguous) == (["x"], ["MF"])
    assert (terms.outside, terms.without_terms) == (["HSP104"], ["YAL069W"])


@pytest.mark.parametrize(("genes", "background", "message"), [
    ([], None, "none of the 0 names"),
    (["TP53", "x"], None, "none of the 2 names is that of one gene of yeast"),
    (["YAL069W"], None, "none of the genes is in a GO slim term"),
    (["CLN1"], ["TP53"], "none of the names of background"),
    (["CLN1"], ["CLN2"], "and in background"),
])
def test_what_has_nothing_to_test_is_refused(genes, background, message):
    with pytest.raises(ValueError, match=message):
        ovik.enrich(genes, background)


def test_what_are_no_names_is_refused():
    with pytest.raises(TypeError, match="names of genes, not 7"):
        ovik.enrich([7])
    with pytest.raises(TypeError, match="read_matrix"):
        ovik.enrich(["CLN1"], "matrix.tsv")


def test_bytes_of_files_come_back_as_they_were():
    terms = ovik.enrich(["CLN1", "CLN2", "\udcff"])
    assert terms.not_found == ["\udcff"]


def test_lists_that_are_mostly_unknown_are_warned_of():
    with pytest.warns(UserWarning, match="2 of 3 names are not found: x, y"):
        ovik.enrich(["CLN1", "x", "y"])
