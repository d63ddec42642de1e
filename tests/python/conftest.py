"""What the tests of the package share."""

import os
import subprocess
from pathlib import Path
from typing import NamedTuple

import numpy as np
import pytest

DATA = Path(__file__).resolve().parents[2] / "data"


@pytest.fixture
def brauer():
    return DATA / "brauer2008_chemostat.tsv"


@pytest.fixture
def time_courses(tmp_path):
    """The first 200 genes of the time courses, of which some lack values."""
    lines = (DATA / "eisen1998_timecourses.tsv").read_text().splitlines(keepends=True)
    path = tmp_path / "first_rows.tsv"
    path.write_text("".join(lines[:201]))
    return path


@pytest.fixture
def first_genes(brauer, tmp_path):
    """The first 900 genes of the chemostat cultures."""
    path = tmp_path / "first_genes.tsv"
    path.write_text("".join(brauer.read_text().splitlines(keepends=True)[:901]))
    return path


@pytest.fixture
def points():
    return np.random.default_rng(5).normal(size=(90, 6))


class CommandResult(NamedTuple):
    coordinates: list[list[str]]
    """As they stand in the result table."""

    embedding: np.ndarray
    """To the last bit, from the checkpoint (results/checkpoint.h)."""

    output: str


@pytest.fixture
def embed_by_command(tmp_path):
    """Runs the command on a matrix file, two output dimensions."""

    def embed(path, *options):
        checkpoint = tmp_path / "run.ckpt"
        output = subprocess.run(
            [os.environ["OVIK_TSNE"], path, "--no-plots", "--missing", "zero", "--out-dir", tmp_path,
             "--name", "run", "--checkpoint", checkpoint, *options],
            check=True, capture_output=True, text=True,
        ).stdout
        (table,) = tmp_path.glob("run_tsne_*.csv")
        with table.open(newline="") as lines:
            rows = [line.split(",Group:")[0].split(",")[-3:] for line in lines][1:]
        coordinates = [[x, y] for x, y, psize in rows if psize == "1"]
        state = checkpoint.read_bytes()
        start = 104 + int.from_bytes(state[40:48], "little")
        embedding = np.frombuffer(state, "<f8", 2 * len(coordinates), offset=start).reshape(-1, 2)
        return CommandResult(coordinates, embedding, output)

    return embed
