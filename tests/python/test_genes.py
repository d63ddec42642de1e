"""The gene table."""

import re
from pathlib import Path

import ovik


def test_genes_are_found_by_either_name():
    gene = ovik.gene_function("CDC28")
    assert gene.name == "CDC28"
    assert gene.systematic_name == "YBR160W"
    assert "kinase" in gene.function
    assert ovik.gene_function("YBR160W") == gene


def test_genes_that_share_a_name_have_their_own_systematic_names():
    first, second = (ovik.gene_function(name) for name in ("YPL187W", "YGL089C"))
    assert first.name == second.name == "MF"
    assert (first.systematic_name, second.systematic_name) == ("YPL187W", "YGL089C")


def test_function_that_is_not_known_is_none():
    functions = [ovik.gene_function(f"YAL{n:03d}{strand}") for n in range(1, 70) for strand in "WC"]
    assert any(gene is not None and gene.function is None for gene in functions)
    assert not any(gene is not None and gene.function == "NULL" for gene in functions)


def test_unknown_names_give_none():
    assert ovik.gene_function("cdc28") is None
    assert ovik.gene_function("") is None


def test_version_is_the_projects():
    cmake = (Path(__file__).resolve().parents[2] / "CMakeLists.txt").read_text()
    assert ovik.__version__ == re.search(r"project\(ovik VERSION (\S+)", cmake)[1]
