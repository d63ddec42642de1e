"""Runs of the command in which something goes wrong, and what may be left of them."""

import collections
import os
import random
import resource
import shutil
import signal
import subprocess
import tempfile

GENES = ["CDC28", "TUB1", "RPL3", "URA3", "SEO1", "COX3", "YBR160W"]

# In the place of gnuplot, for speed: two files that look like whole pictures.
GNUPLOT = """#!/bin/sh
base=${2#../}
base=${base%.gp}
head -n 40 "$2" >"$base.png"
echo '                                IEND' >>"$base.png"
head -n 50 "$2" >"$base.svg"
echo '                                </svg>' >>"$base.svg"
"""


class Faulty(Exception):
    """The command did what it must not do."""


class Outcome:
    """How a run ended.

    calls: how many calls of the kind in question it made; None if it could not tell.
    """

    def __init__(self, status, error_text, calls):
        self.status = status
        self.error_text = error_text
        self.calls = calls


class Bench:
    """A directory with a matrix, with results of an earlier run, and with a stand-in for gnuplot.

    After each run every result has to be that of the earlier run or that of a whole new one.
    """

    def __init__(self, command, library, options, rows=16):
        self.directory = tempfile.mkdtemp(prefix="ovik-faults-")
        self.library = library
        self.results = self.path("results")
        self.arguments = [command, self.path("m.tsv"), "--out-dir", self.results,
                          "--max-iter", "3", "--threads", "2"] + options
        os.mkdir(self.path("bin"))
        os.mkdir(self.results)
        self._write("bin/gnuplot", GNUPLOT)
        os.chmod(self.path("bin/gnuplot"), 0o755)
        # Aborted runs would be slow.
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        self._write_matrix(1, rows)
        self.run()
        self.earlier = self.read_results()
        self._write_matrix(2, rows)
        self.run()
        self.later = self.read_results()
        for name, content in self.later.items():
            if content == self.earlier[name]:
                raise Faulty(f"the two runs do not differ in {name}")
        self.restore()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        shutil.rmtree(self.directory)

    def path(self, name):
        return os.path.join(self.directory, name)

    def _write(self, name, text):
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write(text)

    def _write_matrix(self, seed, rows):
        numbers = random.Random(seed)
        lines = ["gene\ta\tb\tc"]
        for row in range(rows):
            name = GENES[row] if row < len(GENES) else f"X{row}"
            lines.append(name + "".join(f"\t{numbers.gauss(0, 1):.3f}" for _ in range(3)))
        self._write("m.tsv", "\n".join(lines) + "\n")

    def restore(self):
        """Puts the results of the earlier run back, and nothing else."""
        shutil.rmtree(self.results)
        os.mkdir(self.results)
        for name, content in self.earlier.items():
            with open(os.path.join(self.results, name), "wb") as file:
                file.write(content)

    def read_results(self):
        """File names and contents; None for what is no file."""
        found = {}
        for name in os.listdir(self.results):
            path = os.path.join(self.results, name)
            found[name] = None
            if os.path.isfile(path):
                with open(path, "rb") as file:
                    found[name] = file.read()
        return found

    def environment(self):
        return {"PATH": self.path("bin") + ":/usr/bin:/bin", "LC_ALL": "C"}

    def run(self, fault=None):
        """fault: what the preloaded library is told, without the prefix of its variables."""
        environment = self.environment()
        count = self.path("calls")
        if fault is not None:
            environment |= {"LD_PRELOAD": self.library, "OVIK_FAULT_COUNT": count}
            environment |= {f"OVIK_FAULT_{name}": str(value) for name, value in fault.items()}
        try:
            done = subprocess.run(self.arguments, env=environment, timeout=60, check=False,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        except subprocess.TimeoutExpired:
            raise Faulty("hangs") from None
        calls = None
        if os.path.exists(count):
            with open(count, encoding="ascii") as file:
                calls = int(file.read())
            os.remove(count)
        return Outcome(done.returncode, done.stderr.decode(errors="replace"), calls)

    def check_results(self):
        """Every result is whole: the earlier one or the new one. Returns what there is."""
        found = self.read_results()
        unfinished = [name for name in found if name.startswith(".ovik-")]
        for name in unfinished:
            del found[name]
        if found.keys() != self.earlier.keys():
            raise Faulty(f"leaves {sorted(found)}")
        for name, content in found.items():
            if content not in (self.earlier[name], self.later[name]):
                raise Faulty(f"leaves {name} torn")
        if unfinished:
            # Of a process that could not clean up: the next run does.
            self.run()
            left = [name for name in self.read_results() if name in unfinished]
            if left:
                raise Faulty(f"leaves {left}, and the next run does as well")
        return found

    def check(self, outcome, statuses=(0, 1)):
        """The run succeeded and left what it should, or failed and said so."""
        said = repr(outcome.error_text)
        if outcome.status < 0:
            raise Faulty(f"ends by {signal.Signals(-outcome.status).name}: {said}")
        found = self.check_results()
        if outcome.status == 0 and found != self.later:
            missing = [name for name in found if found[name] != self.later[name]]
            raise Faulty(f"succeeds without {missing}: {said}")
        if outcome.status not in statuses:
            raise Faulty(f"ends with status {outcome.status}: {said}")
        if outcome.status != 0 and outcome.error_text == "":
            raise Faulty("fails without a word")


def sweep_calls(bench, fault, stride, judge, beyond=0):
    """Makes the 1st, 2nd, ... call fail, a run each.

    judge(outcome): says how a run ended, or finds it faulty
    beyond: how many numbers are tried behind the last call of an undisturbed run

    Returns the number of calls, how many runs ended how, and what was wrong.
    """
    total = bench.run(fault).calls
    bench.restore()
    tally = collections.Counter()
    errors = []
    for number in range(1, total + 1 + beyond, stride):
        try:
            tally[judge(bench.run(fault | {"AT": number}))] += 1
        except Faulty as error:
            tally["faulty"] += 1
            errors.append(f"call {number}: {error}")
        if bench.read_results() != bench.earlier:
            bench.restore()
    return total, tally, errors
