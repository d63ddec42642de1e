"""Compares schedules of the fit on whole matrices, and writes the tables of docs/better-map.md.

usage: scripts/better-map [--command FILE] [--seeds COUNT] [--scan-seeds COUNT] [MATRIX ...]

Every run has perplexity 30 and one thread, two at most are made at once. MATRIX: brauer, eisen,
clustered; without any all three.
"""

import argparse
import itertools
import json
import os
import subprocess
import tempfile
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from pathlib import Path
from statistics import mean

from document import table, write_block
from machine import BENCH, COMMAND, ROOT, processor

DOCUMENT = ROOT / "docs/better-map.md"
FIRST_SEED = 11
REFINED = ("--preset", "refined")
# What differs from refined, one choice at a time.
VARIANTS = {
    "refined": (),
    "start random": ("--start", "random"),
    "exaggeration 8": ("--exaggeration", "8"),
    "exaggeration 12": ("--exaggeration", "12"),
    "hold 50, release 50": ("--hold-iter", "50", "--release-iter", "50"),
    "hold 0, release 250": ("--hold-iter", "0", "--release-iter", "250"),
    "final momentum 0.8": ("--final-momentum", "0.8"),
    "final momentum 0.9": ("--final-momentum", "0.9"),
    "learning rate 200": ("--learning-rate", "200"),
    "learning rate N / 4": ("--learning-rate", "{quarter}"),
    "learning rate 2 N": ("--learning-rate", "{double}"),
    "constant gains": ("--gains", "constant"),
    "constant gains, final momentum 0.99": ("--gains", "constant", "--final-momentum", "0.99"),
    "theta 0.25": ("--theta", "0.25"),
}


@dataclass
class Map:
    """A map with its measures."""

    points: list[complex]
    cost: float
    trustworthiness: float
    kept: float
    seconds: float


def processor_seconds(command):
    """Runs a program to its end; other programs may be at work on the same processor."""
    process = subprocess.Popen(command)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise SystemExit(f"{command[0]} ended with {process.returncode}")
    return usage.ru_utime + usage.ru_stime


class Bench:
    """The command, and a directory for what it writes."""

    def __init__(self, command, directory):
        self.command = command
        self.directory = Path(directory)

    def matrices(self, names):
        """The matrices of these names: file and rows."""
        clustered = self.directory / "clustered.tsv"
        with clustered.open("w") as file:
            subprocess.run([BENCH / "write_clustered", "6600", "80"], stdout=file, check=True)
        files = {
            "brauer": (ROOT / "data/brauer2008_chemostat.tsv", 5537),
            "eisen": (ROOT / "data/eisen1998_timecourses.tsv", 2467),
            "clustered": (clustered, 6600),
        }
        return {name: files[name] for name in names or files}

    def fit(self, matrix, options, seed, iterations):
        """A map, without the cost over all pairs, and the file of its coordinates."""
        file, rows = matrix
        place = tempfile.mkdtemp(dir=self.directory)
        report = Path(place) / "report.json"
        values = {"quarter": str(rows / 4), "double": str(2 * rows)}
        seconds = processor_seconds(
            [self.command, file, "--missing", "row-mean", "--perplexity", "30", "--threads", "1"]
            + ["--seed", str(seed), "--max-iter", str(iterations - 1), "--name", "map"]
            + ["--out-dir", place, "--coordinates", "tsv", "--quality", "--no-plots", "--quiet"]
            + ["--names", "other"]
            + ["--json", report, *(option.format(**values) for option in options)]
        )
        run = json.loads(report.read_text())["runs"][0]
        coordinates = next(report.parent.glob("*.tsv"))
        quality = next(sizes for sizes in run["quality"] if sizes["neighbours"] == 10)
        made = Map(
            points_of(coordinates),
            0.0,
            quality["trustworthiness"],
            quality["preservation"],
            seconds,
        )
        return made, coordinates

    def maps(self, matrix, wanted):
        """The maps of (options, seed, iterations), with their costs, in this order."""
        with ThreadPoolExecutor(max_workers=2) as pool:
            made = list(pool.map(lambda one: self.fit(matrix, *one), wanted))
        costs = subprocess.run(
            [BENCH / "map_cost", matrix[0], *(file for _, file in made)],
            check=True,
            text=True,
            stdout=subprocess.PIPE,
        ).stdout.split()
        for (one, _), cost in zip(made, costs, strict=True):
            one.cost = float(cost)
        return [one for one, _ in made]


def points_of(coordinates):
    """The points of a file of names and coordinates, as complex numbers around their mean."""
    rows = [line.split("\t") for line in coordinates.read_text().splitlines()[1:]]
    points = [complex(float(x), float(y)) for _, x, y in rows]
    centre = sum(points) / len(points)
    return [point - centre for point in points]


def disparity(one, other):
    """What is left of the squared distances of two maps, laid upon each other, 0 to 1."""
    turned = abs(sum(a * b.conjugate() for a, b in zip(one, other, strict=True)))
    mirrored = abs(sum(a * b for a, b in zip(one, other, strict=True)))
    sizes = [sum(abs(point) ** 2 for point in points) for points in (one, other)]
    return max(0.0, 1.0 - max(turned, mirrored) ** 2 / (sizes[0] * sizes[1]))


def spread(maps):
    pairs = list(itertools.combinations([one.points for one in maps], 2))
    return mean(disparity(*pair) for pair in pairs) if pairs else 0.0


def cost_text(maps):
    costs = [one.cost for one in maps]
    return f"{mean(costs):.3f}", f"{min(costs):.4f} to {max(costs):.4f}"


def seeds(count):
    return range(FIRST_SEED, FIRST_SEED + count)


def compare(bench, matrices, count):
    """Rows of the table of classic and refined."""
    rows = []
    for name, matrix in matrices.items():
        for title, options, iterations in (
            ("classic", (), 1000),
            ("refined", REFINED, 500),
            ("refined", REFINED, 1000),
            ("refined, start random", (*REFINED, "--start", "random"), 1000),
        ):
            maps = bench.maps(matrix, [(options, seed, iterations) for seed in seeds(count)])
            rows.append(
                [
                    name,
                    title,
                    str(iterations),
                    *cost_text(maps),
                    f"{spread(maps):.3f}",
                    f"{mean(one.trustworthiness for one in maps):.4f}",
                    f"{mean(one.kept for one in maps):.4f}",
                ]
            )
            print(*rows[-1], flush=True)
    return rows


def time_to_quality(bench, matrices):
    """Rows of the table of iterations and seconds to the cost of classic."""
    rows = []
    for name, matrix in matrices.items():
        classic = bench.maps(matrix, [((), FIRST_SEED, 1000)])[0]
        for iterations in range(125, 1001, 25):
            refined = bench.maps(matrix, [(REFINED, FIRST_SEED, iterations)])[0]
            if refined.cost <= classic.cost:
                break
        rows.append(
            [
                name,
                f"{classic.cost:.4f}",
                f"{classic.seconds:.2f}",
                str(iterations),
                f"{refined.seconds:.2f}",
                f"{refined.seconds / classic.seconds:.2f}",
            ]
        )
        print(*rows[-1], flush=True)
    return rows


def scan(bench, matrices, count):
    """Rows of the table of variants, with the mean cost after 1000 iterations on each matrix."""
    rows = []
    for title, options in VARIANTS.items():
        cells = [title]
        for matrix in matrices.values():
            wanted = [((*REFINED, *options), seed, 1000) for seed in seeds(count)]
            maps = bench.maps(matrix, wanted)
            cells += [cost_text(maps)[0], f"{mean(one.trustworthiness for one in maps):.4f}"]
            cells.append(f"{spread(maps):.3f}" if count > 1 else "")
        rows.append(cells)
        print(*cells, flush=True)
    return rows


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--command", default=COMMAND, help="the program that makes the maps")
    parser.add_argument("--seeds", type=int, default=5, help="of classic and refined")
    parser.add_argument("--scan-seeds", type=int, default=3, help="of the variants")
    parser.add_argument("matrices", nargs="*", metavar="MATRIX")
    given = parser.parse_args()
    with tempfile.TemporaryDirectory() as directory:
        bench = Bench(given.command, directory)
        matrices = bench.matrices(given.matrices)
        compared = compare(bench, matrices, given.seeds)
        heads = ["matrix", "run", "iterations", "cost", "of the seeds", "disparity"]
        heads += ["trustworthiness", "10 neighbours kept"]
        measured = f"{processor()}; {given.seeds} seeds, one thread."
        write_block("bars", table(heads, compared) + f"\n\n{measured}", DOCUMENT)
        heads = ["matrix", "cost of classic", "its seconds", "iterations of refined"]
        heads += ["their seconds", "ratio"]
        write_block("time", table(heads, time_to_quality(bench, matrices)), DOCUMENT)
        heads = ["run"]
        for name in matrices:
            heads += [name, "trustworthiness", "disparity"]
        write_block("scan", table(heads, scan(bench, matrices, given.scan_seeds)), DOCUMENT)


if __name__ == "__main__":
    main()
