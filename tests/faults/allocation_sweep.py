"""Fails the 1st, 2nd, ... allocation of small runs: that one alone, or all from there on."""

import argparse
import errno
import sys

from faults import Bench, Faulty, sweep_calls

RUNS = {
    "exact": ["--theta", "0"],
    "exact, no plots": ["--theta", "0", "--no-plots"],
    "Barnes-Hut": ["--theta", "0.5"],
    "Barnes-Hut, no plots": ["--theta", "0.5", "--no-plots"],
}
# The rest of a run does not matter to what comes before `main`.
BEFORE_MAIN = ["--dry-run"]


OUT_OF_MEMORY = "Memory allocation failed!"


def ending(outcome):
    """What the run said last."""
    if outcome.status == 0:
        return "succeeded"
    last_line = outcome.error_text.splitlines()[-1]
    if last_line.endswith(OUT_OF_MEMORY):
        return OUT_OF_MEMORY
    for opening in ("ovik-tsne: ", "libgomp: ", "Figure "):
        if last_line.startswith(opening):
            return f"line that opens with {opening!r}"
    raise Faulty(f"does not end with a line of its own: {outcome.error_text!r}")


def sweep(bench, onwards, stride, kinds):
    fault = kinds | {"CALL": "allocation", "ERROR": errno.ENOMEM}
    fault |= {"ONWARDS": 1} if onwards else {}

    def judge(outcome):
        bench.check(outcome)
        return ending(outcome)

    # Threads shift the numbers of calls a little.
    return sweep_calls(bench, fault, stride, judge, beyond=stride + 9)


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("--command", required=True)
    arguments.add_argument("--library", required=True)
    arguments.add_argument("--stride", type=int, default=1)
    options = arguments.parse_args()
    failures = 0
    runs = [(name, run_options, {}) for name, run_options in RUNS.items()]
    runs.append(("before main", BEFORE_MAIN, {"EARLY": 1}))
    for name, run_options, kinds in runs:
        with Bench(options.command, options.library, run_options) as bench:
            for onwards in (False, True):
                total, tally, errors = sweep(bench, onwards, options.stride, kinds)
                failures += len(errors)
                which = "and all that follow" if onwards else "alone"
                print(f"{name}: {total} allocations, failed {which}: {dict(tally)}")
                for error in errors[:20]:
                    print("  " + error)
    sys.exit(1 if failures else 0)


main()
