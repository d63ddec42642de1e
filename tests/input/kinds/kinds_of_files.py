#!/usr/bin/env python3
"""Gives the command every kind of file in kinds.toml, and holds it to what the list says.

usage: kinds_of_files.py COMMAND SOURCE_DIRECTORY (--check | --write)

A kind has these members:

    what     the kind, in words
    file     a file of files/, or one of made_files.py
    options  of the command, if any
    stdin    true: the file comes through a pipe
    status   exit status: 0 read, 2 refused
    like     of what is read: a plain table in values/ with the names and values that a reader of the
             file would call its own; the command has to read the same bits of both
    format   of what is read: what the report calls it (text)
    says     what the command says: all of a refusal, or parts of it in this order

Every warning, note and refusal of the command has to be in the list. The table of all kinds stands in
docs/input.md between two marks: --check compares it, --write writes it.
"""

import json
import pathlib
import subprocess
import sys
import tempfile
import tomllib

from made_files import made_files

HERE = pathlib.Path(__file__).resolve().parent
BEGIN = "<!-- kinds of files, by scripts/kinds-table -->\n"
END = "<!-- end of the kinds of files -->\n"
FEWEST_KINDS = 60
RUN = ["-q", "-i", "1", "--no-plots"]

failures = []


def require(holds, kind, what):
    if not holds:
        failures.append(f"{kind['what']} ({kind['file']}): {what}")


def lay_out(directory):
    """Puts all files into a directory: those of files/ and values/, and those that are made."""
    for folder in ("files", "values"):
        (directory / folder).mkdir()
        for path in (HERE / folder).iterdir():
            target = directory / path.name if folder == "files" else directory / folder / path.name
            target.write_bytes(path.read_bytes())
    for name, content in made_files(directory).items():
        if (directory / name).exists():
            sys.exit(f"{name} is both made and in files/")
        (directory / name).write_bytes(content)


class Command:
    """The command, in a directory of files."""

    def __init__(self, command, directory):
        self.command = pathlib.Path(command).resolve()
        self.directory = directory

    def run(self, kind, options):
        content = None
        matrix = kind["file"]
        if kind.get("stdin"):
            content = (self.directory / matrix).read_bytes()
            matrix = "-"
        return subprocess.run(
            [self.command, *kind.get("options", []), *options, "--", matrix],
            cwd=self.directory, input=content, capture_output=True, timeout=60)

    def input_of(self, kind):
        """What the report of a run says of its input; None if there was no run."""
        report = self.directory / "out" / "run.json"
        report.unlink(missing_ok=True)
        done = self.run(kind, [*RUN, "-o", "out", "--json", str(report)])
        return json.loads(report.read_text())["input"] if done.returncode == 0 else None


def check_said(kind, out, err):
    """Requires the words of the list, and no complaint beside them."""
    begin = 0
    said = " ".join((out + err).split())
    for words in kind.get("says", []):
        begin = said.find(words, begin)
        require(begin >= 0, kind, f"does not say {words!r}, but: {said}")
        begin = max(begin, 0)
    for line in err.splitlines():
        line = " ".join(line.split())
        if line.startswith("ovik-tsne: "):
            require(any(words in said[said.index(line):] and words.split()[0] in line
                        for words in kind.get("says", [])), kind, f"says unasked: {line}")


def check_read(kind, command):
    """Requires the names and values of the plain table, bit for bit.

    @return what is read, in words
    """
    read = command.input_of(kind)
    like = command.input_of({**kind, "file": f"values/{kind['like']}", "options": [], "stdin": False})
    require(read is not None, kind, "is not embedded")
    require(like is not None, kind, f"values/{kind['like']} is not embedded")
    if read is None or like is None:
        return ""
    for member in ("rows", "columns", "digest"):
        require(read[member] == like[member], kind,
                f"{member}: {read[member]}, but values/{kind['like']} has {like[member]}")
    require(read["format"] == kind.get("format", "text"), kind, f"format: {read['format']}")
    return f"{read['format']}: {read['rows']} rows, {read['columns']} columns"


def cell(text):
    return text.replace("|", "\\|").replace("<", "&lt;").replace("\n", " ")


def table_row(kind, command):
    done = command.run(kind, ["--dry-run"])
    out, err = done.stdout.decode(errors="replace"), done.stderr.decode(errors="replace")
    require(done.returncode == kind["status"], kind, f"status {done.returncode}: {err}")
    check_said(kind, out, err)
    if kind["status"] == 0:
        read = check_read(kind, command)
    else:
        require("like" not in kind and kind.get("says"), kind, "a refusal says why")
        read = "refused"
    options = " ".join(kind.get("options", []))
    what = kind["what"] + (f", `{options}`" if options else "")
    said = " … ".join(kind.get("says", []))
    return f"| {cell(what)} | {cell(read)} | {cell(said)} | {kind['status']} |\n"


def document_with(document, table):
    head, rest = document.split(BEGIN)
    tail = rest.split(END)[1]
    return head + BEGIN + table + END + tail


def main():
    command, source, mode = sys.argv[1:]
    kinds = tomllib.loads((HERE / "kinds.toml").read_text(encoding="utf-8"))["kind"]
    if len(kinds) < FEWEST_KINDS:
        failures.append(f"there are {len(kinds)} kinds only")
    with tempfile.TemporaryDirectory() as directory:
        lay_out(pathlib.Path(directory))
        runner = Command(command, pathlib.Path(directory))
        table = "| file | what is read | what is said | exit status |\n|---|---|---|---|\n"
        table += "".join(table_row(kind, runner) for kind in kinds)
    path = pathlib.Path(source) / "docs/input.md"
    document = path.read_text(encoding="utf-8")
    if mode == "--write":
        path.write_text(document_with(document, table), encoding="utf-8")
    elif document_with(document, table) != document:
        failures.append("the table in docs/input.md is not what scripts/kinds-table makes")
    if failures:
        sys.exit("\n".join(failures))
    print(f"{len(kinds)} kinds of files")


if __name__ == "__main__":
    main()
