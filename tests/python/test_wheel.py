"""The package as its users install it: by the lines of the documentation, and by CMake."""

import importlib.metadata
import os
import re
import subprocess
import sys
import zipfile
from pathlib import Path

import ovik

PROJECT = Path(__file__).resolve().parents[2]
USE = """
import importlib.metadata, numpy, ovik
print(ovik.__file__)
assert ovik.TSNE(n_iter=3).fit_transform(numpy.eye(90)).shape == (90, 2)
assert ovik.gene_function("CDC28")
assert importlib.metadata.version("ovik") == ovik.__version__
"""


def run(*command, **options):
    """A command in an environment without the package in the path; its standard output."""
    inherited = {name: value for name, value in os.environ.items() if name != "PYTHONPATH"}
    environment = inherited | options.pop("env", {})
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE, env=environment,
                          **options).stdout


def documented_lines():
    """How the documentation has the package installed, without the line for root."""
    document = (PROJECT / "docs/python.md").read_text()
    (block,) = [text for text in re.findall(r"^```sh\n(.*?)^```", document, re.MULTILINE | re.DOTALL)
                if "pip wheel" in text]
    lines = block.replace("\\\n", " ").splitlines()
    assert lines[0].startswith("apt-get install ")
    return "\n".join(lines[1:])


def other_pythons(directory):
    """Programs that stand first in the path and must not be run."""
    directory.mkdir()
    for name in ("python3", "python", "pip", "pip3"):
        program = directory / name
        program.write_text(f"#!/bin/sh\necho 'another {name} was run' >&2\nexit 1\n")
        program.chmod(0o755)
    return f"{directory}:{os.environ['PATH']}"


def wheel_metadata(wheel):
    with zipfile.ZipFile(wheel) as files:
        (name,) = (name for name in files.namelist() if name.endswith(".dist-info/METADATA"))
        return fields(files.read(name).decode())


def fields(metadata):
    """Without the version of the format, and blanks that make no difference."""
    lines = [line.replace(" ", "") for line in metadata.splitlines() if ": " in line]
    return {re.sub("[()]", "", line) for line in lines if not line.startswith("Metadata-Version")}


def test_documented_lines_install_into_a_fresh_environment(tmp_path):
    # pip leaves its traces in the source.
    subprocess.run(["cp", "-r", PROJECT / "python", tmp_path / "python"], check=True)
    for entry in PROJECT.iterdir():
        if entry.name not in ("python", "build", "dist", "out", ".git"):
            (tmp_path / entry.name).symlink_to(entry)
    path = other_pythons(tmp_path / "others")
    # Without a build of the project at hand, all of it is built.
    run("sh", "-e", "-c", documented_lines(), cwd=tmp_path, env={"PATH": path})
    where = run(tmp_path / "my-environment/bin/python", "-c", USE)
    assert where.startswith(str(tmp_path / "my-environment"))
    installed = {path.name for path in Path(where.strip()).parent.iterdir()}
    assert {path.name for path in (PROJECT / "python/ovik").glob("*.py*")} <= installed
    assert "py.typed" in installed
    (wheel,) = (tmp_path / "dist").glob("ovik-*.whl")
    configured = Path(ovik.__file__).parents[1].glob("ovik-*.dist-info/METADATA")
    assert wheel_metadata(wheel) == fields(next(configured).read_text())


def test_installation_by_cmake_is_known_by_name(tmp_path):
    run("cmake", "--install", os.environ["OVIK_BUILD_DIR"], "--prefix", tmp_path, "--component", "python")
    packages = tmp_path / "lib/python3/dist-packages"
    where = run(sys.executable, "-c", USE, env={"PYTHONPATH": str(packages)}, cwd=tmp_path)
    assert where.startswith(str(packages))
    (found,) = importlib.metadata.distributions(name="ovik", path=[str(packages)])
    assert found.requires == ["numpy (>=1.24)"]
    assert {path.name for path in packages.iterdir()} == {"ovik", f"ovik-{ovik.__version__}.dist-info"}
