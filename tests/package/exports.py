#!/usr/bin/env python3
"""Holds what a shared library exports to a list of names.

usage: exports.py --nm NM LIBRARY LIST

The list has a qualified name a line, without the arguments of templates and functions. Names of
types stand for vtable and typeinfo.
"""
import argparse
import re
import subprocess
import sys


def qualified_name(symbol):
    """`double ovik::Class<int>::function(char) const` is `ovik::Class::function`."""
    symbol = re.sub(r"@@\w+$|\[abi:\w+\]", "", symbol)
    symbol = re.sub(r"^(vtable|typeinfo name|typeinfo) for ", "", symbol)
    arguments = 1
    while arguments > 0:
        symbol, arguments = re.subn(r"<[^<>]*>", "", symbol)
    return symbol.split("(")[0].split(" ")[-1]


parser = argparse.ArgumentParser()
parser.add_argument("--nm", default="nm")
parser.add_argument("library")
parser.add_argument("list")
options = parser.parse_args()

command = [options.nm, "--dynamic", "--defined-only", "--demangle", options.library]
lines = subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()
symbols = [line.split(" ", 2) for line in lines]
# Absolute symbols are the versions.
exported = {qualified_name(name) for _, kind, name in symbols if kind != "A"}
with open(options.list, encoding="utf-8") as file:
    listed = {line.strip() for line in file if line.strip() and not line.startswith("#")}

failures = [f"exported, though not in the list: {name}" for name in sorted(exported - listed)]
failures += [f"in the list, but not exported: {name}" for name in sorted(listed - exported)]
sys.exit("\n".join(failures) if failures else 0)
