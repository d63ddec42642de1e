"""The package as its users install it: as a wheel, in an environment of its own."""

import os
import subprocess
import sys
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
USE = """
import numpy, ovik
print(ovik.__file__)
assert ovik.TSNE(n_iter=3).fit_transform(numpy.eye(90)).shape == (90, 2)
assert ovik.gene_function("CDC28")
"""


def run(*command, **environment):
    """A command in an environment without the package in the path; its standard output."""
    inherited = {name: value for name, value in os.environ.items() if name != "PYTHONPATH"}
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE,
                          env=inherited | environment).stdout


def test_wheel_installs_into_a_fresh_environment(tmp_path):
    source = tmp_path / "source" / "python"
    # pip leaves its traces in the source; the project around it is needed for its version.
    source.parent.mkdir()
    (source.parent / "CMakeLists.txt").symlink_to(PROJECT / "CMakeLists.txt")
    subprocess.run(["cp", "-r", PROJECT / "python", source], check=True)
    run(sys.executable, "-m", "pip", "wheel", "--quiet", "--no-build-isolation", "--no-deps", "--no-index",
        "--wheel-dir", tmp_path, source, OVIK_BUILD_DIR=os.environ["OVIK_BUILD_DIR"])
    (wheel,) = tmp_path.glob("ovik-*.whl")
    environment = tmp_path / "environment"
    run(sys.executable, "-m", "venv", "--system-site-packages", environment)
    python = environment / "bin" / "python"
    run(python, "-m", "pip", "install", "--quiet", "--no-index", "--no-deps", wheel)
    where = run(python, "-c", USE)
    assert where.startswith(str(environment))
    installed = {path.name for path in Path(where.strip()).parent.iterdir()}
    assert {"py.typed", "_core.pyi", "_tsne.py"} <= installed
