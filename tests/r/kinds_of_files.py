#!/usr/bin/env python3
"""Has R read every kind of file that tests/input/kinds lists, and holds it to what the command makes of it.

usage: kinds_of_files.py RSCRIPT PROJECT
"""

import pathlib
import subprocess
import sys
import tempfile
import tomllib

rscript, project = sys.argv[1], pathlib.Path(sys.argv[2])
kinds_directory = project / "tests/input/kinds"
sys.path.insert(0, str(kinds_directory))
from kinds_of_files import lay_out  # noqa: E402

# What the command refuses before a fit, and R with the fit itself.
LEFT_TO_THE_FIT = ("all rows hold the same values", "too close", "too large")
FLAGS = {"--no-header": "header = FALSE", "--no-names": "names = FALSE", "--log1p": "log1p = TRUE",
         "--scale": "scale = TRUE", "--transpose": "transpose = TRUE"}
DELIMITERS = {"space": " ", "tab": "\\t"}

# What R makes of each file, a line each.
SCRIPT = r"""
library(ovik)
outcome <- function(read, like) {
  tryCatch(
    {
      matrix <- suppressWarnings(suppressMessages(read()))
      if (is.null(like)) return("read")
      expected <- suppressWarnings(suppressMessages(read_matrix(like)))
      # The command reads missing values as 0.
      matrix[is.nan(matrix)] <- 0
      expected[is.nan(expected)] <- 0
      same_names <- identical(rownames(matrix), rownames(expected))
      same_values <- identical(unname(matrix), unname(expected), num.eq = FALSE)
      if (same_names && same_values) "same" else paste("names alike:", same_names, "values alike:", same_values)
    },
    error = function(refusal) paste("refused:", gsub("\n", " ", conditionMessage(refusal)))
  )
}
"""


def in_quotes(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def arguments_of(options):
    """Options of the command as arguments of `read_matrix`."""
    values = {}
    arguments = []
    left = list(options)
    while left:
        option = left.pop(0)
        if option in FLAGS:
            arguments.append(FLAGS[option])
        else:
            values.setdefault(option.removeprefix("--").replace("-", "_"), []).append(left.pop(0))
    for name, texts in values.items():
        texts = [DELIMITERS.get(text, text) for text in texts] if name == "delimiter" else texts
        arguments.append(f"{name} = c({', '.join(map(in_quotes, texts))})")
    return arguments


def call_of(kind):
    read = ", ".join([in_quotes(kind["file"]), *arguments_of(kind.get("options", []))])
    like = in_quotes("values/" + kind["like"]) if "like" in kind else "NULL"
    return f"cat(outcome(function() read_matrix({read}), {like}), '\\n', sep = '')\n"


def is_as_listed(kind, outcome):
    if kind["status"] == 0:
        return outcome == "same"
    is_left = any(words in said for words in LEFT_TO_THE_FIT for said in kind["says"])
    return outcome == "read" if is_left else outcome.startswith("refused:") and kind["file"] in outcome


def main():
    listed = tomllib.loads((kinds_directory / "kinds.toml").read_text(encoding="utf-8"))["kind"]
    kinds = [kind for kind in listed if not kind.get("stdin")]
    with tempfile.TemporaryDirectory() as directory:
        place = pathlib.Path(directory)
        lay_out(place)
        (place / "kinds.R").write_text(SCRIPT + "".join(map(call_of, kinds)), encoding="utf-8")
        done = subprocess.run([rscript, "--vanilla", "kinds.R"], cwd=place, check=True,
                              stdout=subprocess.PIPE)
    outcomes = done.stdout.decode(errors="replace").splitlines()
    failures = [f"{kind['what']} ({kind['file']}): {outcome}"
                for kind, outcome in zip(kinds, outcomes, strict=True) if not is_as_listed(kind, outcome)]
    if failures:
        sys.exit("\n".join(failures))
    print(f"{len(kinds)} kinds of files")


main()
