#!/usr/bin/env python3
"""Builds golden_digests in several ways, runs it, and writes the table of docs/same-bytes.md.

What the rows are stands in builds.toml, what came of them in same_bytes.json: rows that are not
asked for keep what they had, as long as their list of digests is the same.
"""

import argparse
import hashlib
import json
import pathlib
import re
import shutil
import subprocess
import sys
import tomllib

SOURCE = pathlib.Path(__file__).resolve().parents[2]
BUILDS = SOURCE / "tests/golden/builds.toml"
RESULTS = SOURCE / "tests/golden/same_bytes.json"
LIST = SOURCE / "golden/digests.tsv"
# Of what several processes share.
RANK_LIST = SOURCE / "golden/rank_digests.tsv"
DOCUMENT = SOURCE / "docs/same-bytes.md"
THREADS = [1, 2, 5]
# By which the program tells that the processor has not got the instructions.
NOT_HERE = 77


def rows():
    return tomllib.loads(BUILDS.read_text())["build"]


def digests_of(text):
    """Stage by stage: ((part, stage, how often that stage came before), digest)."""
    found = {}
    for line in text.splitlines():
        part, stage, digest = line.split("\t")
        number = sum(key[:2] == (part, stage) for key in found)
        found[part, stage, number] = digest
    return found


def parts_of(digests):
    return list(dict.fromkeys(key[0] for key in digests))


def cell_of(printed, expected):
    """What a run says, by the list: "equal (44 parts)", or the parts that differ."""
    found = digests_of(printed)
    parts = parts_of(found)
    if not parts:
        return "differs: nothing was computed"
    wrong = [
        part
        for part in parts
        if {key: value for key, value in found.items() if key[0] == part}
        != {key: value for key, value in expected.items() if key[0] == part}
    ]
    if wrong:
        return f"differs in {', '.join(wrong)} ({len(wrong)} of {len(parts)} parts)"
    count = len(parts)
    return f"equal ({count} of {len(parts_of(expected))} parts)"


def compiler_name(row):
    """Name and version, by what the compiler says of itself."""
    said = subprocess.run([row["compiler"], "--version"], capture_output=True, text=True).stdout
    version = re.search(r"\d+(\.\d+)+", said)
    name = "Clang" if "clang" in said.lower() else "GCC"
    return f"{name} {version.group(0)}" if version else name


def configure(row, directory):
    if "preset" in row:
        return ["cmake", "--preset", row["preset"], "-B", str(directory), *row.get("options", [])]
    return [
        "cmake", "-S", str(SOURCE), "-B", str(directory),
        f"-DCMAKE_CXX_COMPILER={row['compiler']}",
        "-DCMAKE_BUILD_TYPE=Release",
        f"-DCMAKE_CXX_FLAGS_RELEASE={row['optimisation']} -DNDEBUG",
        "-DOVIK_TESTS=OFF", "-DOVIK_TOOLS=OFF", "-DOVIK_BENCH=OFF",
        *row.get("options", []),
    ]


def build(row, jobs):
    """The program, or why there is none."""
    for needed in [row.get("compiler"), *row.get("launcher", [])[:1]]:
        if needed and shutil.which(needed) is None:
            return None, f"not run: {needed} is not there"
    directory = SOURCE / row.get("directory", f"build/same-bytes/{row['name']}")
    program = directory / row.get("program", "golden/golden_digests")
    for command in [
        configure(row, directory),
        ["cmake", "--build", str(directory), "--target", program.name, f"-j{jobs}"],
    ]:
        done = subprocess.run(command, cwd=SOURCE, capture_output=True, text=True)
        if done.returncode != 0:
            print(done.stdout[-3000:] + done.stderr[-3000:], file=sys.stderr)
            return None, "not run: does not build"
    return program, None


def run(row, program, expected, instructions, threads=None, ranks=None):
    command = [word.format(ranks=ranks, source=SOURCE) for word in row.get("launcher", [])]
    command.append(str(program))
    if threads:
        command += ["--threads", str(threads)]
    if instructions:
        command += ["--instructions", instructions]
    if row.get("parts") == "selected":
        command.append("--selected")
    done = subprocess.run(command, capture_output=True, text=True)
    if done.returncode == NOT_HERE:
        return "not run: not on this processor"
    if done.returncode != 0:
        print(done.stderr[-3000:], file=sys.stderr)
        return f"differs: ended with status {done.returncode}"
    return cell_of(done.stdout, expected)


def measure(row, expected, jobs):
    """A line of cells for each set of instructions."""
    program, why = build(row, jobs)
    lines = []
    for instructions in row.get("instructions", [None]):
        columns = row.get("ranks") or row.get("threads", THREADS)
        kind = "ranks" if "ranks" in row else "threads"
        cells = {}
        for number in columns:
            cells[str(number)] = why or run(
                row, program, expected, instructions, **{kind: number}
            )
            print(f"{row['name']} {instructions or ''} {kind} {number}: {cells[str(number)]}",
                  flush=True)
        lines.append({"instructions": instructions or "best", "cells": cells})
    compiler = row.get("compiler_name") or (compiler_name(row) if program and "compiler" in row
                                            else row.get("compiler", row.get("preset", "")))
    return {"compiler": compiler, "lines": lines}


def table(chosen, results, title, columns):
    """Rows that were not run since the list changed say so."""
    head = ["machine", "compiler", "optimisation", "instructions"]
    lines = ["| " + " | ".join(head + [f"{title} {number}" for number in columns]) + " |",
             "|" + "---|" * (len(head) + len(columns))]
    for row in chosen:
        kept = results.get(row["name"])
        for number, instructions in enumerate(row.get("instructions", ["best"])):
            line = kept["lines"][number] if kept else {"cells": {}}
            cells = [line["cells"].get(str(column), "not run") for column in columns]
            compiler = kept["compiler"] if kept else row.get("compiler", row.get("preset", ""))
            lines.append("| " + " | ".join(
                [row["machine"], compiler, row.get("optimisation", "of the preset"), instructions,
                 *cells]) + " |")
    return "\n".join(lines) + "\n"


def tables(all_rows, results):
    with_threads = [row for row in all_rows if "ranks" not in row]
    with_ranks = [row for row in all_rows if "ranks" in row]
    text = table(with_threads, results, "threads:", THREADS)
    if with_ranks:
        ranks = sorted({number for row in with_ranks for number in row["ranks"]})
        text += "\n" + table(with_ranks, results, "ranks:", ranks)
    return text


def document_with(text, inner):
    begin, end = "<!-- table of builds -->\n", "<!-- end of the table -->\n"
    before, rest = text.split(begin)
    _, after = rest.split(end)
    return before + begin + inner + end + after


def list_of(row):
    return RANK_LIST if "ranks" in row else LIST


def list_name(row):
    return hashlib.sha256(list_of(row).read_bytes()).hexdigest()[:16]


def kept_results(all_rows):
    """What is known of rows by their lists as these are."""
    kept = json.loads(RESULTS.read_text()) if RESULTS.exists() else {}
    return {row["name"]: kept[row["name"]] for row in all_rows
            if kept.get(row["name"], {}).get("list") == list_name(row)}


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("names", nargs="*", help="rows to run (all of them)")
    parser.add_argument("--list", action="store_true", help="name the rows, and stop")
    parser.add_argument("--check", action="store_true",
                        help="only see whether the document has the table of what is known")
    parser.add_argument("--table", action="store_true",
                        help="only write the table of what is known, as for new rows")
    parser.add_argument("--jobs", type=int, default=2, help="compilers side by side (2)")
    wishes = parser.parse_args()
    all_rows = rows()
    if wishes.list:
        print("\n".join(row["name"] for row in all_rows))
        return 0
    unknown = set(wishes.names) - {row["name"] for row in all_rows}
    if unknown:
        parser.error(f"no such row: {', '.join(sorted(unknown))}")
    results = kept_results(all_rows)
    text = DOCUMENT.read_text()
    if wishes.check:
        if document_with(text, tables(all_rows, results)) != text:
            print("docs/same-bytes.md has another table: call scripts/same-bytes")
            return 1
        return 0
    for row in all_rows:
        if not wishes.table and (not wishes.names or row["name"] in wishes.names):
            expected = digests_of(list_of(row).read_text())
            results[row["name"]] = {"list": list_name(row), **measure(row, expected, wishes.jobs)}
    RESULTS.write_text(json.dumps(results, indent=1) + "\n")
    DOCUMENT.write_text(document_with(text, tables(all_rows, results)))
    cells = [cell for row in results.values() for line in row["lines"]
             for cell in line["cells"].values()]
    return 1 if any(cell.startswith("differs") for cell in cells) else 0


if __name__ == "__main__":
    sys.exit(main())
