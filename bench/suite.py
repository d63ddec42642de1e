"""Times whole runs and writes docs/performance.md; run by scripts/bench.

Every figure is the median of several runs that alternate with those that it is compared with.
"""

import argparse
import json
import re
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

import document
import limits
import rows
from machine import BENCH, COMMAND, ROOT

COUNTS = ROOT / "bench/instruction_counts.json"
TOLERANCE = 0.10
# Rows and columns of the bars of the figure of the stages.
STAGE_SIZES = [(2500, 80), (6600, 80), (50000, 50)]


def chosen(names, pattern):
    return [name for name in names if re.search(pattern, name)]


def measure_rows(session, pattern):
    table = []
    for name in chosen(rows.ROWS, pattern):
        cells = rows.ROWS[name](session)
        table.append([name, *cells])
        print(f"{name}: {' | '.join(cells)}", flush=True)
    return table


def measure_busy(session, pattern):
    table = []
    jobs = rows.comparison_jobs(session)
    for name in chosen(jobs, pattern):
        table.append([name, *rows.busy_row(session, jobs[name])])
        print(": ".join([name, " | ".join(table[-1][1:])]), flush=True)
    return table


def measure_against(session, pattern, other):
    jobs = rows.comparison_jobs(session)
    for name in chosen(jobs, pattern):
        ratio, theirs, ours = rows.against_row(session, jobs[name], other)
        print(f"{name}: {theirs} and {ours}: {ratio}", flush=True)


def measure_stages(session, sizes):
    """The seconds of the stages for each size, with the best set of the processor."""
    best = next(iter(session.commands))
    bars = []
    for size, columns in sizes:
        seconds = document.stage_seconds(session.stages(size, columns, best))
        bars.append((f"{size:,} x {columns}", seconds))
        parts = ", ".join(f"{name} {each:.2f}" for name, each in zip(document.STAGES, seconds))
        print(f"{bars[-1][0]}: {parts}", flush=True)
    return bars


def write_stages(bars):
    table = document.table(["seconds of", *[label for label, _ in bars]],
                           [[name, *[f"{seconds[i]:.2f}" for _, seconds in bars]]
                            for i, name in enumerate(document.STAGES)])
    document.draw_stages(bars)
    image = "![Stages of runs in per cent](images/stages.svg)"
    text = document.where_measured("shortest times")
    document.write_block("stages", "\n\n".join([text, table, image]))


def measure_all(session, runs):
    """Everything, each part written as soon as it is there."""
    sets = list(session.commands)
    medians = document.where_measured(f"medians of {runs} alternating runs")
    table = measure_rows(session, "")
    document.write_block("measured", medians + "\n\n" + document.table(["run", *sets], table))
    document.draw_growth(session.growth())
    write_stages(measure_stages(session, STAGE_SIZES))
    write_limits(sets)


def write_limits(sets):
    core = document.table(["a nanosecond of one core", "operations", "divisions",
                           "bytes of the cache", "bytes of the memory"], limits.core_rows(sets))
    loops = document.table(["loop", "set", "needs", "bound", "measured", "bound of measured"],
                           limits.limit_rows(sets))
    text = document.where_measured("one core, shortest times")
    document.write_block("limits", "\n\n".join([text, core, loops]))


def write_busy(session, runs):
    table = measure_busy(session, "")
    text = document.where_measured(f"medians of {runs} alternating runs")
    head = ["whole run", "quiet", "beside one", "beside two"]
    document.write_block("busy", text + "\n\n" + document.table(head, table))


def instruction_counts(session):
    """Instructions of three small runs on one thread, which do not depend on what else runs."""
    few = session.clustered(300, 20)
    jobs = {
        "exact, 300 x 20, 20 iterations": [COMMAND, few, "-t", "0", "-i", "20"],
        "Barnes-Hut, 300 x 20, 40 iterations": [COMMAND, few, "-i", "40"],
        "reading 20,000 x 20": [BENCH / "read_matrix", session.clustered(20000, 20), "1"],
    }
    counts = {}
    for name, words in jobs.items():
        options = ["-j", "1", "-q", "--no-plots", "-o", session.folder]
        result = subprocess.run(
            ["env", "OMP_NUM_THREADS=1", "valgrind", "--tool=callgrind",
             "--callgrind-out-file=/dev/null", *map(str, words),
             *map(str, options if words[0] == COMMAND else [])],
            capture_output=True, text=True, check=True)
        counts[name] = int(re.search(r"Collected : (\d+)", result.stderr).group(1))
    return counts


def check(session):
    """Compares instruction counts with those recorded; false if one has grown or shrunk."""
    recorded = json.loads(COUNTS.read_text())
    fits = True
    for name, count in instruction_counts(session).items():
        change = count / recorded[name] - 1
        fits = fits and abs(change) <= TOLERANCE
        print(f"{name}: {count:,} instructions, {100 * change:+.1f} % of those recorded")
    return fits


def read_arguments():
    parser = argparse.ArgumentParser(prog="scripts/bench", description=__doc__)
    parser.add_argument("--runs", type=int, default=5, help="runs of which the median is taken")
    parser.add_argument("--sizes", type=int, nargs="+",
                        default=[1000, 5000, 20000, 50000, 100000, 200000],
                        help="rows at which growth is measured")
    parser.add_argument("--only", metavar="REGEX",
                        help="measure the rows whose names match, and write nothing")
    parser.add_argument("--busy", action="store_true",
                        help="whole runs beside one and two programs that keep a core busy")
    parser.add_argument("--against", metavar="COMMAND", type=Path,
                        help="whole runs in turns with another build of the command")
    parser.add_argument("--stages", action="store_true", help="the stages of runs alone")
    parser.add_argument("--limits", action="store_true",
                        help="how near inner loops are to what a core can do, alone")
    parser.add_argument("--check", action="store_true",
                        help="compare instruction counts with those recorded")
    parser.add_argument("--record", action="store_true", help="record instruction counts")
    return parser.parse_args()


def work(arguments, folder):
    session = rows.Session(arguments.runs, arguments.sizes, folder)
    rows.add_growth_rows(arguments.sizes)
    pattern = arguments.only or ""
    if arguments.record:
        COUNTS.write_text(json.dumps(instruction_counts(session), indent=2) + "\n")
    elif arguments.check:
        sys.exit(0 if check(session) else "Instruction counts have changed by more than 10 %.")
    elif arguments.against:
        measure_against(session, pattern, arguments.against)
    elif arguments.busy and arguments.only:
        measure_busy(session, pattern)
    elif arguments.busy:
        write_busy(session, arguments.runs)
    elif arguments.only:
        measure_rows(session, pattern)
    elif arguments.stages:
        write_stages(measure_stages(session, STAGE_SIZES))
    elif arguments.limits:
        write_limits(list(session.commands))
    else:
        measure_all(session, arguments.runs)


def main():
    # Ends by an exception, so that what was started is ended too.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("ended by a signal"))
    arguments = read_arguments()
    with tempfile.TemporaryDirectory() as folder:
        work(arguments, Path(folder))


main()
