"""The examples of the documentation, as they stand there."""

import importlib.util
import re
import subprocess
import sys
from pathlib import Path

import pytest

PROJECT = Path(__file__).resolve().parents[2]
OPTIONAL = ("anndata", "matplotlib", "pandas", "sklearn")

MATRIX = "data/brauer2008_chemostat.tsv"
ROWS = 300

# What the examples run in: plots need no screen. Fits take few iterations of few rows.
PREPARATION = """
import os
os.environ["MPLBACKEND"] = "Agg"
import ovik
ovik.TSNE.__init__.__kwdefaults__["n_iter"] = 60
"""

# What is to hold in the end.
OUTCOME = """
assert tsne.embedding_.shape == (300, 2) and tsne.row_names_[0] == matrix.row_names[0]
assert open("map.html", encoding="utf-8").read().count("CDC28") == 1
assert list(framed.columns) == ["tsne0", "tsne1"] and len(framed) == 300
assert stopped.n_iter_ in (40, 60)
assert adata.obsm["X_tsne"].shape == (300, 2)
"""


def examples(name):
    document = (PROJECT / "docs" / name).read_text()
    return re.findall(r"^```python\n(.*?)^```", document, re.MULTILINE | re.DOTALL)


@pytest.mark.skipif(any(importlib.util.find_spec(name) is None for name in OPTIONAL),
                    reason=f"the examples take {', '.join(OPTIONAL)}")
def test_examples_run(tmp_path):
    (tmp_path / "data").mkdir()
    head, *rows = (PROJECT / MATRIX).read_text().splitlines(keepends=True)
    # The genes of the examples come first.
    rows.sort(key=lambda row: not row.startswith(("CDC28\t", "CLN1\t", "CLN2\t")))
    (tmp_path / MATRIX).write_text(head + "".join(rows[:ROWS]))
    blocks = examples("python.md")
    assert len(blocks) >= 5
    script = "\n".join([PREPARATION, *blocks, OUTCOME])
    run = subprocess.run([sys.executable, "-W", "error::UserWarning", "-c", script], cwd=tmp_path,
                         capture_output=True, text=True)
    assert run.returncode == 0, run.stderr


def test_every_parameter_attribute_and_function_is_documented():
    import ovik

    document = (PROJECT / "docs" / "python.md").read_text()
    names = [*ovik.TSNE().get_params(), *ovik.TSNE.__annotations__, *ovik.__all__]
    missing = [name for name in names if not name.startswith("_") and f"`{name}" not in document]
    assert missing == []
