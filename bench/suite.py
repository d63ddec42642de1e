"""Times whole runs and writes docs/performance.md; run by scripts/bench.

Every figure is the median of several runs that alternate with those that it is compared with.
"""

import argparse
import json
import math
import os
import re
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / "build/release"
COMMAND = BUILD / "tools/ovik-tsne"
BRAUER = ROOT / "data/brauer2008_chemostat.tsv"
COUNTS = ROOT / "bench/instruction_counts.json"
TOLERANCE = 0.10


def run(*words, environment=None):
    """Runs a program; its wall time in seconds, peak memory in bytes, and output."""
    with tempfile.TemporaryFile("w+") as output:
        start = time.perf_counter()
        process = subprocess.Popen(
            [str(word) for word in words], stdout=output, stderr=subprocess.DEVNULL,
            env={**os.environ, **(environment or {})})
        _, status, usage = os.wait4(process.pid, 0)
        seconds = time.perf_counter() - start
        if status != 0:
            sys.exit(f"failed: {' '.join(map(str, words))}")
        output.seek(0)
        return seconds, usage.ru_maxrss * 1024, output.read()


def embed(matrix, folder, *options):
    return run(COMMAND, matrix, "--perplexity", 30, "--no-plots", "--out-dir", folder, *options)


def medians(runs, *jobs):
    """The median time of each job; the jobs take turns."""
    times = [[] for _ in jobs]
    for _ in range(runs):
        for job, job_times in zip(jobs, times):
            job_times.append(job()[0])
    return [statistics.median(job_times) for job_times in times]


def per_iteration(runs, matrix, folder, *options):
    """Seconds of an iteration: the difference of a long and a short run."""
    few, many = medians(runs,
                        lambda: embed(matrix, folder, "--max-iter", 20, *options),
                        lambda: embed(matrix, folder, "--max-iter", 120, *options))
    return (many - few) / 100


def against_plain(runs, kind, matrix, folder, *options):
    plain, command = medians(runs,
                             lambda: run(BUILD / "bench/plain_run", kind, matrix),
                             lambda: embed(matrix, folder, *options))
    return f"{command:.2f} s; plain program {plain:.1f} s: {plain / command:.1f} times"


def write_matrix(folder, rows, columns):
    path = Path(folder) / f"clustered_{rows}x{columns}.tsv"
    if not path.exists():
        with path.open("w") as file:
            subprocess.run([BUILD / "bench/write_clustered", str(rows), str(columns)],
                           stdout=file, check=True)
    return path


def growth(sizes):
    """Rows, seconds of the similarities, milliseconds of an iteration on one thread and on all."""
    _, _, table = run(BUILD / "bench/barnes_hut_speed", "--clustered", *sizes)
    return [[float(cell) for cell in line.strip("| \n").split("|")]
            for line in table.splitlines() if re.match(r"\| \d", line)]


def second_core(runs, matrix, folder, *options):
    """The median of the ratios of neighbouring runs, since the machine's pace drifts."""
    ratios = [embed(matrix, folder, "-j", 1, *options)[0]
              / embed(matrix, folder, "-j", 2, *options)[0] for _ in range(runs)]
    return f"{statistics.median(ratios):.2f} times ({min(ratios):.2f} to {max(ratios):.2f})"


def reading(matrix):
    values = 50 * 1000000 * 8
    lines = []
    for threads in (1, 2):
        _, memory, output = run(BUILD / "bench/read_matrix", matrix, threads)
        lines.append(f"{float(output.split()[0]):.0f} MB/s on {threads} thread(s)")
    return f"{', '.join(lines)}; peak memory {memory / values:.2f} times the doubles"


def stage_memory(matrix, theta):
    _, _, output = run(BUILD / "bench/stage_memory", matrix, theta)
    return ", ".join(re.findall(r"^\w+ \d+ MB$", output, flags=re.M))


def first_line(runs, folder):
    """Seconds until the command has written a byte, with a tiny matrix."""
    times = []
    for _ in range(runs):
        start = time.perf_counter()
        process = subprocess.Popen([COMMAND, write_matrix(folder, 10, 3), "--out-dir", folder],
                                   stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        process.stdout.read(1)
        times.append(time.perf_counter() - start)
        process.stdout.read()
        process.wait()
    return f"{1000 * statistics.median(times):.0f} ms"


def processor():
    names = re.findall(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    return f"{names[0] if names else 'unknown'}, {len(os.sched_getaffinity(0))} cores"


def draw_growth(rows, path):
    points = "\n".join(f"{int(row[0])} {row[3]}" for row in rows)
    scale = rows[1][3] / (rows[1][0] * math.log2(rows[1][0]))
    script = f"""$points << END
{points}
END
set terminal svg size 640,420 font 'sans-serif,13' background 'white'
set output '{path}'
set logscale xy
set xlabel 'rows'
set ylabel 'milliseconds of an iteration with cost'
set key top left
set grid
plot {scale} * x * log(x) / log(2) title 'c N log N' lc rgb '#999999', \\
  $points with linespoints pt 7 lc rgb '#0072B2' title 'measured, all threads'
"""
    subprocess.run(["gnuplot", "-d"], input=script, text=True, check=True)


def measure(runs, sizes, folder):
    small = write_matrix(folder, 2000, 80)
    exact = ("--theta", 0)
    table = []

    def note(what, text):
        table.append((what, text))
        print(f"{what}: {text}", flush=True)

    note("exact, 2000 x 80, 1000 iterations", against_plain(runs, "exact", small, folder, *exact))
    note("exact, 5537 x 36, an iteration with cost",
         f"{1000 * per_iteration(runs, BRAUER, folder, *exact):.1f} ms")
    peak = embed(BRAUER, folder, *exact, "--max-iter", 2)[1]
    note("exact, 5537 x 36, peak memory", f"{peak / (5537 * 5537 * 8):.2f} dense matrices")
    note("Barnes-Hut, 5537 x 36, 1000 iterations", against_plain(runs, "tree", BRAUER, folder))
    pairs = max(runs, 11)
    note("second core, Barnes-Hut, 5537 x 36", second_core(pairs, BRAUER, folder))
    note("second core, exact, 5537 x 36",
         second_core(pairs, BRAUER, folder, *exact, "--max-iter", 60))
    rows = growth(sizes)
    for size, similarities, one, both, _ in rows:
        note(f"Barnes-Hut, {int(size)} x 50",
             f"similarities {similarities:.2f} s; an iteration with cost {both:.2f} ms, "
             f"{one / both:.2f} times faster than on one core")
    clustered = write_matrix(folder, 50000, 50)
    note("peak memory by stage, exact, 5537 x 36", stage_memory(BRAUER, 0))
    note("peak memory by stage, Barnes-Hut, 50000 x 50", stage_memory(clustered, 0.5))
    note("reading 1,000,000 x 50", reading(write_matrix(folder, 1000000, 50)))
    note("start to first byte", first_line(max(runs, 21), folder))
    return table, rows


def report(table, runs):
    path = ROOT / "docs/performance.md"
    text = path.read_text()
    lines = [f"Processor: {processor()}; medians of {runs} alternating runs.", "",
             "| run | measured |", "|---|---|"]
    lines += [f"| {what} | {result} |" for what, result in table]
    block = "<!-- measured -->\n" + "\n".join(lines) + "\n<!-- end -->"
    path.write_text(re.sub(r"<!-- measured -->.*?<!-- end -->", lambda _: block, text, flags=re.S))


def instruction_counts(folder):
    """Instructions of three small runs on one thread, which do not depend on what else runs."""
    few = write_matrix(folder, 300, 20)
    jobs = {
        "exact, 300 x 20, 20 iterations": [COMMAND, few, "-t", "0", "-i", "20"],
        "Barnes-Hut, 300 x 20, 40 iterations": [COMMAND, few, "-i", "40"],
        "reading 20,000 x 20": [BUILD / "bench/read_matrix", write_matrix(folder, 20000, 20), "1"],
    }
    counts = {}
    for name, words in jobs.items():
        options = ["-j", "1", "-q", "--no-plots", "-o", folder] if words[0] == COMMAND else []
        result = subprocess.run(
            ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null",
             *map(str, words), *options],
            capture_output=True, text=True, check=True, env={**os.environ, "OMP_NUM_THREADS": "1"})
        counts[name] = int(re.search(r"Collected : (\d+)", result.stderr).group(1))
    return counts


def check(folder):
    """Compares instruction counts with those recorded; false if one has grown or shrunk."""
    recorded = json.loads(COUNTS.read_text())
    fits = True
    for name, count in instruction_counts(folder).items():
        change = count / recorded[name] - 1
        fits = fits and abs(change) <= TOLERANCE
        print(f"{name}: {count:,} instructions, {100 * change:+.1f} % of those recorded")
    return fits


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--runs", type=int, default=5, help="runs of which the median is taken")
    parser.add_argument("--sizes", type=int, nargs="+",
                        default=[1000, 5000, 20000, 50000, 100000, 200000],
                        help="rows at which growth is measured")
    parser.add_argument("--check", action="store_true",
                        help="compare instruction counts with those recorded")
    parser.add_argument("--record", action="store_true", help="record instruction counts")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        if arguments.record:
            COUNTS.write_text(json.dumps(instruction_counts(folder), indent=2) + "\n")
        elif arguments.check:
            sys.exit(0 if check(folder) else "Instruction counts have changed by more than 10 %.")
        else:
            table, rows = measure(arguments.runs, arguments.sizes, folder)
            report(table, arguments.runs)
            draw_growth(rows, ROOT / "docs/images/growth.svg")


main()
