"""The annotations of the package, as a type checker reads them."""

import importlib.util
import subprocess
import sys
from pathlib import Path

import pytest

pytestmark = pytest.mark.skipif(importlib.util.find_spec("mypy") is None, reason="no mypy")
PACKAGE = Path(__file__).resolve().parents[2] / "python"

ALLOWED = """
import numpy as np
import ovik

tsne = ovik.TSNE(
    2, learning_rate="auto", init=np.zeros((5, 2)), random_state=np.random.default_rng(1),
    callbacks=[lambda iteration, error, embedding: iteration > 3], on_interrupt="keep", n_jobs=None,
)
embedding = tsne.set_output(transform="pandas").fit(ovik.read_matrix("x")).embedding_
ovik.page(tsne, ["a"]).save("x.html")
reveal_type(tsne.fit_transform([[1.0]]).dtype)
"""

WRONG = [
    'ovik.TSNE(metric="manhattan")',
    'ovik.TSNE(on_interrupt="ignore")',
    'ovik.TSNE(learning_rate="slow")',
    'ovik.TSNE().set_output(transform="polars")',
]


def check(tmp_path, *arguments):
    return subprocess.run(
        [sys.executable, "-m", "mypy", "--strict", "--ignore-missing-imports",
         f"--cache-dir={tmp_path}", *arguments],
        capture_output=True, text=True, cwd=PACKAGE,
    )


@pytest.fixture(scope="module")
def cache(tmp_path_factory):
    return tmp_path_factory.mktemp("cache")


def test_package_has_strict_types(cache):
    result = check(cache, "ovik")
    assert result.returncode == 0, result.stdout


def test_users_see_the_types(cache, tmp_path):
    script = tmp_path / "script.py"
    script.write_text(ALLOWED)
    result = check(cache, script)
    assert result.returncode == 0, result.stdout
    assert "float" in result.stdout.split("Revealed type is")[1]


def test_other_texts_than_the_allowed_ones_are_seen(cache, tmp_path):
    script = tmp_path / "script.py"
    script.write_text("import ovik\n" + "\n".join(WRONG) + "\n")
    lines = [line for line in check(cache, script).stdout.splitlines() if "error:" in line]
    assert len(lines) == len(WRONG)
    assert all("Literal" in line for line in lines)
