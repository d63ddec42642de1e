"""The script of the documentation, and the plot that it draws."""

import importlib.util
import subprocess
import sys
from pathlib import Path

import pytest

SCRIPT = Path(__file__).resolve().parents[2] / "docs" / "brauer_map.py"


def run(tmp_path):
    return subprocess.run([sys.executable, SCRIPT, tmp_path / "map.png"], capture_output=True,
                          text=True)


@pytest.mark.skipif(importlib.util.find_spec("matplotlib") is None, reason="no matplotlib")
def test_script_plots_a_map(tmp_path):
    result = run(tmp_path)
    assert result.returncode == 0, result.stderr
    assert result.stdout.startswith("5537 genes, 36 cultures\n")
    assert (tmp_path / "map.png").read_bytes().startswith(b"\x89PNG")


@pytest.mark.skipif(importlib.util.find_spec("matplotlib") is not None, reason="matplotlib is there")
def test_script_names_the_package_that_it_lacks(tmp_path):
    result = run(tmp_path)
    assert result.returncode == 1
    assert "5537 genes" in result.stdout
    assert result.stderr.endswith("apt-get install python3-matplotlib\n")
