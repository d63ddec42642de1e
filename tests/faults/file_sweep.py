"""Fails the 1st, 2nd, ... call of each kind that a small run makes on files."""

import argparse
import errno
import os
import sys

from faults import Bench, Faulty, sweep_calls

CALLS = ["open", "read", "write", "fsync", "close", "rename"]
SHORT = 0


def faults():
    """Kinds of faults; those that the command is to get over by itself come once."""
    for call in CALLS:
        for error in (errno.ENOSPC, errno.EIO):
            for onwards in (False, True):
                yield call, error, onwards
        yield call, errno.EINTR, False
    yield "write", SHORT, False
    yield "write", SHORT, True


def check(bench, outcome, error):
    # A matrix that cannot be opened is bad input.
    statuses = (0, 1) if bench.read_results() != bench.earlier else (0, 1, 2)
    bench.check(outcome, statuses)
    if outcome.status != 0 and error in (SHORT, errno.EINTR):
        raise Faulty(f"does not get over it: {outcome.error_text!r}")
    if outcome.status != 0 and bench.directory not in outcome.error_text:
        raise Faulty(f"does not name the file: {outcome.error_text!r}")
    if outcome.status == 1 and os.strerror(error) not in outcome.error_text:
        raise Faulty(f"does not name the reason: {outcome.error_text!r}")


def sweep(bench, call, error, onwards, stride):
    fault = {"CALL": call, "ERROR": error} | ({"ONWARDS": 1} if onwards else {})

    def judge(outcome):
        check(bench, outcome, error)
        return "failed with a message" if outcome.status else "succeeded"

    return sweep_calls(bench, fault, stride, judge)


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("--command", required=True)
    arguments.add_argument("--library", required=True)
    arguments.add_argument("--stride", type=int, default=1)
    options = arguments.parse_args()
    failures = 0
    with Bench(options.command, options.library, []) as bench:
        for call, error, onwards in faults():
            total, tally, errors = sweep(bench, call, error, onwards, options.stride)
            failures += len(errors)
            what = errno.errorcode.get(error, "one byte at a time")
            which = "each and all that follow" if onwards else "each alone"
            print(f"{total} calls of {call}, {which}, {what}: {dict(tally)}")
            for text in errors:
                print("  " + text)
    sys.exit(1 if failures else 0)


main()
