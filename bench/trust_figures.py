"""Measures what docs/trust.md says of the bundled matrices and of pure noise, and writes its tables.

usage: scripts/trust-figures [--directory DIRECTORY]

A perplexity is chosen for each matrix, from what all of them show. Fits that have ended are kept in
the directory, so that a call that was ended goes on with those that are missing.
"""

import argparse
import json
import random
import tempfile
from functools import reduce
from operator import getitem
from pathlib import Path

from document import table, write_block
from machine import COMMAND, ROOT, run

DOCUMENT = ROOT / "docs/trust.md"
PERPLEXITIES = "5,10,20,30,50,100"
NOISE_ROWS, NOISE_COLUMNS = 2000, 36
# The shares of a run in each table: title, and where the report has it.
AGAINST_NOISE = (
    ("kept of 30", ("quality", 1, "preservation")),
    ("told from noise by kept neighbours", ("noise", "kept", "told")),
    ("better than 95 % of it", ("noise", "kept", "better")),
    ("not as noise", ("noise", "kept", "signal")),
    ("told from noise by misfit", ("noise", "misfit", "told")),
    ("better than 95 % of it", ("noise", "misfit", "better")),
    ("not as noise", ("noise", "misfit", "signal")),
)
CHOICE = (
    ("better than 95 % of noise", ("noise", "kept", "better")),
    ("shared by seeds", ("trials", "shared_by_seeds")),
    ("shared by columns", ("trials", "shared_by_columns")),
    ("kept of 30", ("quality", 1, "preservation")),
)


def write_noise(path):
    """Writes rows of normal values, always the same."""
    draws = random.Random(1)
    with path.open("w") as file:
        print("name", *(f"c{column}" for column in range(NOISE_COLUMNS)), sep="\t", file=file)
        for row in range(NOISE_ROWS):
            values = (f"{draws.gauss(0, 1):.6f}" for _ in range(NOISE_COLUMNS))
            print(f"row{row}", *values, sep="\t", file=file)
    return path


def report_of(matrix, directory):
    """The report of a choice among the perplexities."""
    results = directory / matrix.stem
    report = results / "report.json"
    whole = run(
        COMMAND, matrix, "--preset", "refined", "-i", "500", "--choose-perplexity", PERPLEXITIES,
        "--names", "other", "--no-plots", "--quiet", "--out-dir", results, "--name", "m",
        "--json", report)
    print(f"{matrix.stem}: {whole.seconds:.0f} s, {whole.processor_seconds:.0f} s of processor time", flush=True)
    return json.loads(report.read_text())


def shares(reports, columns):
    """A line for each matrix and perplexity."""
    rows = []
    for title, report in reports.items():
        for number, one in enumerate(report["runs"]):
            cells = [f"{100 * reduce(getitem, path, one):.1f} %" for _, path in columns]
            rows.append([title if number == 0 else "", f"{one['perplexity']:g}", *cells])
    return table(["matrix", "perplexity", *(title for title, _ in columns)], rows)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--directory", type=Path, metavar="DIRECTORY")
    given = parser.parse_args()
    with tempfile.TemporaryDirectory() as place:
        directory = given.directory or Path(place)
        directory.mkdir(parents=True, exist_ok=True)
        matrices = {
            "Brauer, 5537 genes": ROOT / "data/brauer2008_chemostat.tsv",
            "Eisen, 2467 genes": ROOT / "data/eisen1998_timecourses.tsv",
            f"noise, {NOISE_ROWS} rows": write_noise(directory / "noise.tsv"),
        }
        reports = {title: report_of(matrix, directory) for title, matrix in matrices.items()}
    sentences = [f"- {title}: \"{report['choice']['sentence']}\"" for title, report in reports.items()]
    write_block("against noise", shares(reports, AGAINST_NOISE), DOCUMENT)
    write_block("choice", "\n".join([shares(reports, CHOICE), "", *sentences]), DOCUMENT)


if __name__ == "__main__":
    main()
