"""What the benchmarks run, on what, and beside what."""

import contextlib
import ctypes
import os
import re
import signal
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BUILD = ROOT / "build/release"
BENCH = BUILD / "bench"
COMMAND = BUILD / "tools/ovik-tsne"
CORES = len(os.sched_getaffinity(0))


@dataclass
class Run:
    """A program that has ended: wall time, processor time and peak memory, and what it wrote."""

    seconds: float
    processor_seconds: float
    bytes: int
    output: str


def run(*words, environment=None):
    with tempfile.TemporaryFile("w+") as output:
        start = time.perf_counter()
        process = subprocess.Popen(
            [str(word) for word in words], stdout=output, stderr=subprocess.DEVNULL,
            env={**os.environ, **(environment or {})})
        try:
            _, status, usage = os.wait4(process.pid, 0)
        except BaseException:
            process.kill()
            raise
        seconds = time.perf_counter() - start
        process.returncode = os.waitstatus_to_exitcode(status)
        if status != 0:
            sys.exit(f"failed: {' '.join(map(str, words))}")
        output.seek(0)
        return Run(seconds, usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024, output.read())


def processor_flags():
    found = re.search(r"^flags\s*:(.*)", Path("/proc/cpuinfo").read_text(), flags=re.M)
    return set(found.group(1).split()) if found else set()


def instruction_sets():
    """The sets to be measured, the best of the processor first, each with its command."""
    flags = processor_flags()
    if {"avx512f", "avx512dq", "avx512vl", "fma"} <= flags:
        return {"AVX-512": COMMAND, "AVX2": BENCH / "ovik-tsne-avx2"}
    return {"AVX2" if {"avx2", "fma"} <= flags else "portable": COMMAND}


def processor():
    names = re.findall(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    return f"{names[0] if names else 'unknown'}, {CORES} cores"


def commit():
    """The commit that is built, and whether files that matter differ from it."""
    def git(*words):
        return subprocess.run(["git", "-C", ROOT, *words], capture_output=True, text=True,
                              check=True).stdout.strip()

    changed = " with changes" if git("status", "--porcelain", "--untracked-files=no", ":!docs") else ""
    return git("rev-parse", "--short=10", "HEAD") + changed


def end_with_parent():
    """In a child: has the system end it when this program ends, however that comes about."""
    ctypes.CDLL(None).prctl(1, signal.SIGKILL)


@contextlib.contextmanager
def busy_programs(count):
    """So many programs, of one thread each, that compute without end."""
    programs = []
    try:
        for _ in range(count):
            programs.append(subprocess.Popen([sys.executable, "-c", "while True: pass"],
                                             preexec_fn=end_with_parent))
        yield
    finally:
        for program in programs:
            program.kill()
            program.wait()
