"""Kills runs at random moments, and runs the command again."""

import argparse
import collections
import ctypes
import os
import random
import subprocess
import sys
import time

from faults import Bench, Faulty

PR_SET_CHILD_SUBREAPER = 36


def start_run(bench):
    return subprocess.Popen(bench.arguments, env=bench.environment(),
                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def wait_for_writing(bench, run):
    """Returns when the first unfinished result stands in the directory, or the run has ended."""
    while run.poll() is None:
        if any(name.startswith(".ovik-") for name in os.listdir(bench.results)):
            return


def durations(bench):
    """Seconds of a whole run, and of its writing."""
    start = time.monotonic()
    run = start_run(bench)
    wait_for_writing(bench, run)
    writing = time.monotonic()
    run.wait()
    end = time.monotonic()
    return end - start, end - writing


def run_and_kill(bench, moment, in_writing):
    """Returns whether the run was still going on then.

    moment: seconds from the start of the run, or of its writing
    """
    run = start_run(bench)
    if in_writing:
        wait_for_writing(bench, run)
    try:
        run.wait(moment)
        return False
    except subprocess.TimeoutExpired:
        run.kill()
        run.wait()
    # A program that the run started may still be at work.
    while True:
        try:
            os.waitpid(-1, 0)
        except ChildProcessError:
            return True


def without_log(results):
    return {name: content for name, content in results.items() if not name.endswith(".log")}


def check_next_run(bench):
    outcome = bench.run()
    if outcome.status != 0:
        raise Faulty(f"the next run fails: {outcome.error_text!r}")
    if without_log(bench.read_results()) != without_log(bench.later):
        raise Faulty(f"the next run leaves {sorted(bench.read_results())}")


def kill_at(bench, moment, in_writing):
    """Returns what the killed run left."""
    if not run_and_kill(bench, moment, in_writing):
        return "ended before"
    entries = bench.read_results()
    left_over = any(name.startswith(".ovik-") for name in entries)
    found = bench.check_results()
    check_next_run(bench)
    fresh = sum(found[name] == bench.later[name] for name in found)
    return f"{fresh} of {len(found)} results new" + (", parts left" if left_over else "")


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("--command", required=True)
    arguments.add_argument("--library")
    arguments.add_argument("--moments", type=int, default=200)
    arguments.add_argument("--seed", type=int, default=1)
    options = arguments.parse_args()
    print(f"seed {options.seed}")
    # Programs whose parent has been killed become children of this process.
    ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1)
    numbers = random.Random(options.seed)
    tally = collections.Counter()
    failures = 0
    with Bench(options.command, options.library, [], rows=400) as bench:
        whole, writing = durations(bench)
        for n in range(options.moments):
            bench.restore()
            # Writing is short, and three of four moments are in it.
            in_writing = n % 4 != 0
            moment = numbers.uniform(0, writing if in_writing else whole)
            try:
                tally[kill_at(bench, moment, in_writing)] += 1
            except Faulty as error:
                failures += 1
                print(f"killed {moment:.4f} s into {'writing' if in_writing else 'run'}: {error}")
    for what, count in sorted(tally.items()):
        print(f"{count} times: {what}")
    sys.exit(1 if failures else 0)


main()
