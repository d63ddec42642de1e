"""The rows of the table of whole runs, each by what it measures."""

import re
import statistics
import subprocess
import time

from machine import BENCH, COMMAND, CORES, ROOT, busy_programs, instruction_sets, run

BRAUER = ROOT / "data/brauer2008_chemostat.tsv"
EISEN = ROOT / "data/eisen1998_timecourses.tsv"
EXACT = ("--theta", 0)


class Session:
    """How often is measured, where, and what has been."""

    def __init__(self, runs, sizes, folder):
        self.runs = runs
        self.sizes = sizes
        self.folder = folder
        self.commands = instruction_sets()
        self.stage_times = {}
        self.growth_rows = []

    def clustered(self, rows, columns):
        path = self.folder / f"clustered_{rows}x{columns}.tsv"
        if not path.exists():
            with path.open("w") as file:
                subprocess.run([BENCH / "write_clustered", str(rows), str(columns)],
                               stdout=file, check=True)
        return path

    def embed(self, matrix, *options, command=COMMAND):
        return run(command, matrix, "--perplexity", 30, "--no-plots", "--out-dir", self.folder,
                   *options)

    def medians(self, *jobs):
        """The median time of each job; the jobs take turns."""
        times = [[] for _ in jobs]
        for _ in range(self.runs):
            for job, job_times in zip(jobs, times):
                job_times.append(job().seconds)
        return [statistics.median(job_times) for job_times in times]

    def ratios(self, one, other, least=1):
        """The median of the ratios of neighbouring runs, since the machine's pace drifts."""
        ratios = [one().seconds / other().seconds for _ in range(max(self.runs, least))]
        return f"{statistics.median(ratios):.2f} times ({min(ratios):.2f} to {max(ratios):.2f})"

    def whole(self, matrix, *options):
        """Seconds of the command for each set of instructions."""
        return self.medians(*[lambda command=command: self.embed(matrix, *options, command=command)
                              for command in self.commands.values()])

    def stages(self, rows, columns, instructions):
        """Seconds of the stages, the shortest of all runs; other numbers as they are."""
        key = (rows, columns, instructions)
        if key not in self.stage_times:
            limit = ["avx2"] if instructions == "AVX2" else []
            outputs = [run(BENCH / "stages", rows, columns, *limit).output
                       for _ in range(min(self.runs, 3))]
            times = [{name: float(value) for name, value in map(str.split, output.splitlines())}
                     for output in outputs]
            self.stage_times[key] = {name: min(each[name] for each in times) for name in times[0]}
        return self.stage_times[key]

    def growth(self):
        """Rows, seconds of the similarities, milliseconds of an iteration on one thread and all."""
        if not self.growth_rows:
            table = run(BENCH / "barnes_hut_speed", "--clustered", *self.sizes).output
            self.growth_rows = [[float(cell) for cell in line.strip("| \n").split("|")]
                                for line in table.splitlines() if re.match(r"\| \d", line)]
        return self.growth_rows


ROWS = {}


def row(name):
    """A function of a session gives the row's cells: one for each set, or one for the best."""
    def keep(function):
        ROWS[name] = function
        return function

    return keep


def against_plain(session, kind, matrix, *options):
    plain, *commands = session.medians(
        lambda: run(BENCH / "plain_run", kind, matrix),
        *[lambda command=command: session.embed(matrix, *options, command=command)
          for command in session.commands.values()])
    return [f"{seconds:.2f} s; plain program {plain:.1f} s: {plain / seconds:.1f} times"
            for seconds in commands]


@row("exact, 2000 x 80, 1000 iterations")
def _(session):
    return against_plain(session, "exact", session.clustered(2000, 80), *EXACT)


@row("exact, 5537 x 36, an iteration with cost")
def _(session):
    cells = []
    for command in session.commands.values():
        few, many = session.medians(*[
            lambda count=count: session.embed(BRAUER, *EXACT, "--max-iter", count, command=command)
            for count in (20, 120)])
        cells.append(f"{10 * (many - few):.1f} ms")
    return cells


@row("exact, 5537 x 36, peak memory")
def _(session):
    peak = session.embed(BRAUER, *EXACT, "--max-iter", 2).bytes
    return [f"{peak / (5537 * 5537 * 8):.2f} dense matrices"]


@row("Barnes-Hut, Brauer 5537 x 36, 1000 iterations")
def _(session):
    return against_plain(session, "tree", BRAUER)


@row("Barnes-Hut, clustered 6600 x 80, whole command")
def _(session):
    return [f"{seconds:.2f} s" for seconds in session.whole(session.clustered(6600, 80))]


@row("Barnes-Hut, Eisen 2467 x 79, whole command")
def _(session):
    return [f"{seconds:.2f} s" for seconds in session.whole(EISEN)]


def similarities(rows, columns):
    @row(f"neighbours and similarities, {rows} x {columns}")
    def _(session):
        return [f"{session.stages(rows, columns, instructions)['similarities']:.2f} s"
                for instructions in session.commands]


similarities(6600, 80)
similarities(50000, 50)


@row("iteration with cost, 50000 x 50")
def _(session):
    times = [session.stages(50000, 50, instructions) for instructions in session.commands]
    return [f"{1e3 * (each['step'] + each['gradient-and-cost']):.1f} ms" for each in times]


@row("second core, Barnes-Hut, 5537 x 36")
def _(session):
    return [session.ratios(lambda: session.embed(BRAUER, "-j", 1),
                           lambda: session.embed(BRAUER, "-j", 2), least=11)]


@row("second core, exact, 5537 x 36")
def _(session):
    few = (*EXACT, "--max-iter", 60)
    return [session.ratios(lambda: session.embed(BRAUER, *few, "-j", 1),
                           lambda: session.embed(BRAUER, *few, "-j", 2), least=11)]


@row("twice as many threads as cores, Eisen 2467 x 79: the time of one a core")
def _(session):
    return [session.ratios(lambda: session.embed(EISEN, "-j", 2 * CORES),
                           lambda: session.embed(EISEN, "-j", CORES), least=11)]


def add_growth_rows(sizes):
    for place, size in enumerate(sizes):
        @row(f"Barnes-Hut, {size} x 50")
        def _(session, place=place):
            _, similarity, one, both, _ = session.growth()[place]
            return [f"similarities {similarity:.2f} s; an iteration with cost {both:.2f} ms, "
                    f"{one / both:.2f} times faster than on one core"]


def stage_memory(matrix, theta):
    output = run(BENCH / "stage_memory", matrix, theta).output
    return [", ".join(re.findall(r"^\w+ \d+ MB$", output, flags=re.M))]


@row("peak memory by stage, exact, 5537 x 36")
def _(session):
    return stage_memory(BRAUER, 0)


@row("peak memory by stage, Barnes-Hut, 50000 x 50")
def _(session):
    return stage_memory(session.clustered(50000, 50), 0.5)


@row("reading 1,000,000 x 50")
def _(session):
    matrix = session.clustered(1000000, 50)
    runs = {threads: run(BENCH / "read_matrix", matrix, threads) for threads in (1, 2)}
    rates = ", ".join(f"{float(each.output.split()[0]):.0f} MB/s on {threads} thread(s)"
                      for threads, each in runs.items())
    return [f"{rates}; peak memory {runs[2].bytes / (50 * 1000000 * 8):.2f} times the doubles"]


@row("reading a file of 30 bytes")
def _(session):
    path = session.folder / "tiny.tsv"
    path.write_text("row\tv1\tv2\nr1\t1.5\t2\nr2\t3\t4.125\n")
    runs = [run(BENCH / "read_matrix", path, CORES) for _ in range(max(session.runs, 21))]
    threads = max(int(each.output.split()[2]) for each in runs)
    return [f"{threads} thread(s); "
            f"{1e3 * statistics.median(each.processor_seconds for each in runs):.1f} ms of "
            f"processor time in {1e3 * statistics.median(each.seconds for each in runs):.1f} ms"]


@row("start to first byte")
def _(session):
    times = []
    for _ in range(max(session.runs, 21)):
        start = time.perf_counter()
        with subprocess.Popen([COMMAND, session.clustered(10, 3), "--out-dir", session.folder],
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as process:
            process.stdout.read(1)
            times.append(time.perf_counter() - start)
            process.stdout.read()
    return [f"{1000 * statistics.median(times):.0f} ms"]


def comparison_jobs(session):
    """Whole runs that are also timed beside busy programs, and against another command."""
    return {
        "exact, 2000 x 80, 300 iterations":
            (session.clustered(2000, 80), *EXACT, "--max-iter", 300),
        "Barnes-Hut, Brauer 5537 x 36": (BRAUER,),
        "Barnes-Hut, clustered 6600 x 80": (session.clustered(6600, 80),),
        "Barnes-Hut, Eisen 2467 x 79": (EISEN,),
    }


def busy_row(session, words):
    """Cells: seconds of a quiet run, and how many times as long it takes beside one and two."""
    quiet, factors = [], {1: [], 2: []}
    for _ in range(session.runs):
        quiet.append(session.embed(*words).seconds)
        for count, of_count in factors.items():
            with busy_programs(count):
                of_count.append(session.embed(*words).seconds / quiet[-1])
    return [f"{statistics.median(quiet):.2f} s",
            *[f"{statistics.median(each):.2f} times ({min(each):.2f} to {max(each):.2f})"
              for each in factors.values()]]


def against_row(session, words, other):
    """Cells: how many times as long another command takes, and the median seconds of both."""
    theirs, ours = [], []
    for _ in range(session.runs):
        theirs.append(session.embed(*words, command=other).seconds)
        ours.append(session.embed(*words).seconds)
    ratios = [one / another for one, another in zip(theirs, ours)]
    return [f"{statistics.median(ratios):.2f} times ({min(ratios):.2f} to {max(ratios):.2f})",
            f"{statistics.median(theirs):.2f} s", f"{statistics.median(ours):.2f} s"]
