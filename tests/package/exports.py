#!/usr/bin/env python3
"""Holds what a shared library exports to what the public headers mark.

usage: exports.py [--nm NM] LIBRARY PROJECT

Names are compared without the arguments of templates and functions. Names of types stand for vtable
and typeinfo.
"""
import argparse
import pathlib
import re
import subprocess
import sys

import public_interface


def qualified_name(symbol):
    """`double ovik::Class<int>::function(char) const` is `ovik::Class::function`."""
    symbol = re.sub(r"@@\w+$|\[abi:\w+\]", "", symbol)
    symbol = re.sub(r"^(vtable|typeinfo name|typeinfo|TLS \w+ function) for ", "", symbol)
    arguments = 1
    while arguments > 0:
        symbol, arguments = re.subn(r"<[^<>]*>", "", symbol)
    return symbol.split("(")[0].split(" ")[-1]


def exported_names(nm, library):
    command = [nm, "--dynamic", "--defined-only", "--demangle", library]
    lines = subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()
    symbols = [line.split(" ", 2) for line in lines]
    # Absolute symbols are the versions.
    return {qualified_name(name) for _, kind, name in symbols if kind != "A"}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--nm", default="nm")
    parser.add_argument("library")
    parser.add_argument("project", type=pathlib.Path)
    options = parser.parse_args()
    misplaced = public_interface.misplaced(options.project)
    if misplaced:
        sys.exit("\n".join(misplaced))
    exported = exported_names(options.nm, options.library)
    marked = public_interface.public_names(options.project)
    failures = [f"exported, but not marked in a public header: {name}"
                 for name in sorted(exported - marked)]
    failures += [f"marked in a public header, but not exported: {name}"
                 for name in sorted(marked - exported)]
    sys.exit("\n".join(failures) if failures else 0)


if __name__ == "__main__":
    main()
