#!/usr/bin/env python3
"""Holds the C++ code in documents to the programs that are compiled: examples/*.cpp.

usage: shown_examples.py EXAMPLES DOCUMENT...
"""
import pathlib
import re
import sys

examples = {path.read_text(): path.name for path in pathlib.Path(sys.argv[1]).glob("*.cpp")}
failures = []
shown = set()
for document in map(pathlib.Path, sys.argv[2:]):
    for block in re.findall(r"^```cpp\n(.*?)^```$", document.read_text(), re.DOTALL | re.MULTILINE):
        if block not in examples:
            failures.append(f"{document}: no example is this block:\n{block}")
        shown.add(block)
failures += [f"{name} is in no document" for text, name in examples.items() if text not in shown]
if not examples:
    failures.append("there are no examples")
sys.exit("\n".join(failures) if failures else 0)
