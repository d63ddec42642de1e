"""Holds out every tenth gene of a bundled matrix, places it on the map of the others, and measures how
far it lies from the genes that are its neighbours on the map of all genes.

usage: new_rows.py COMMAND ROOT
"""

import csv
import re
import subprocess
import sys
import tempfile
from pathlib import Path

import numpy as np

NEIGHBOURS = 10
PERPLEXITY = "30"
MATRICES = {"Brauer": "brauer2008_chemostat.tsv", "Eisen": "eisen1998_timecourses.tsv"}


def coordinates(path):
    with path.open(encoding="utf-8", errors="replace") as file:
        return np.array([[float(row[1]), float(row[2])] for row in list(csv.reader(file))[1:]])


def nearest(points, targets, count=NEIGHBOURS):
    """The positions of the points that are nearest to each target, nearest first."""
    squares = ((targets[:, None, :] - points[None, :, :]) ** 2).sum(axis=2)
    return np.argsort(squares, axis=1, kind="stable")[:, :count]


def measure(command, matrix, folder):
    """Mean distance from the neighbours, and the share of them kept, for each way to find a place."""
    header, *rows = matrix.read_text().splitlines()
    is_new = np.arange(len(rows)) % 10 == 9
    files = {"all": rows,
             "old": [row for row, new in zip(rows, is_new) if not new],
             "new": [row for row, new in zip(rows, is_new) if new]}
    for name, lines in files.items():
        (folder / f"{name}.tsv").write_text("\n".join([header, *lines]) + "\n")

    def run(name, *options):
        subprocess.run([command, folder / f"{name}.tsv", "--out-dir", folder, "--no-plots", "--quiet",
                        *options], check=True)

    run("all", "--perplexity", PERPLEXITY)
    run("old", "--perplexity", PERPLEXITY, "--model", folder / "old.model")
    run("new", "--onto", folder / "old.model")
    whole = coordinates(folder / "all_tsne_30_0.csv")
    old = coordinates(folder / "old_tsne_30_0.csv")
    values = {name: np.array([[float(field or 0) for field in line.split("\t")[1:]] for line in lines])
              for name, lines in files.items()}
    wanted = nearest(whole[~is_new], whole[is_new])
    of_input = np.concatenate([nearest(values["old"], values["new"][first:first + 50], 25)
                               for first in range(0, len(values["new"]), 50)])
    places = {
        "placed": coordinates(folder / "new_onto.csv"),
        "nearest neighbour": old[of_input[:, 0]],
        "mean of 10 neighbours": old[of_input[:, :10]].mean(axis=1),
        "median of 25 neighbours": np.median(old[of_input], axis=1),
    }
    results = {}
    for way, place in places.items():
        distances = np.linalg.norm(place[:, None, :] - old[wanted], axis=2).mean(axis=1)
        kept = np.mean([len(set(mine) & set(theirs)) / NEIGHBOURS
                        for mine, theirs in zip(nearest(old, place), wanted)])
        results[way] = (distances.mean(), np.median(distances), kept)
    return results


def main(command, root):
    measured = {}
    for title, name in MATRICES.items():
        with tempfile.TemporaryDirectory() as folder:
            measured[title] = measure(command, root / "data" / name, Path(folder))
    lines = ["| place of a held-out gene | " + " | ".join(
                 f"{title}: mean distance | median | neighbours kept" for title in measured) + " |",
             "|---" * (1 + 3 * len(measured)) + "|"]
    for way in next(iter(measured.values())):
        cells = [f"{mean:.2f} | {median:.2f} | {kept:.3f}"
                 for mean, median, kept in (results[way] for results in measured.values())]
        lines.append(f"| {way} | " + " | ".join(cells) + " |")
    document = root / "docs/new-rows.md"
    block = "<!-- held-out genes -->\n" + "\n".join(lines) + "\n<!-- end -->"
    text, count = re.subn("<!-- held-out genes -->.*?<!-- end -->", lambda _: block,
                          document.read_text(), flags=re.S)
    if count != 1:
        raise SystemExit(f"{document} has no place for the table")
    document.write_text(text)


if __name__ == "__main__":
    main(Path(sys.argv[1]), Path(sys.argv[2]).resolve())
