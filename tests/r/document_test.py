#!/usr/bin/env python3
"""Runs the R code of docs/r.md as it stands there, and looks at what it leaves.

usage: document_test.py RSCRIPT PROJECT
"""

import csv
import os
import pathlib
import re
import subprocess
import sys
import tempfile

rscript, project = sys.argv[1], pathlib.Path(sys.argv[2])
blocks = re.findall(r"^```r\n(.*?)^```$", (project / "docs/r.md").read_text(), re.MULTILINE | re.DOTALL)
if len(blocks) != 1:
    sys.exit(f"docs/r.md has {len(blocks)} blocks of R code")
with tempfile.TemporaryDirectory() as directory:
    place = pathlib.Path(directory)
    (place / "data").symlink_to(project / "data")
    (place / "shown.R").write_text(blocks[0])
    subprocess.run([rscript, "--vanilla", "shown.R"], cwd=place, env=dict(os.environ), check=True)
    with (place / "map.csv").open(newline="") as lines:
        rows = list(csv.DictReader(lines))
    plot = (place / "Rplots.pdf").stat().st_size
if len(rows) != 5537 or list(rows[0]) != ["name", "tsne1", "tsne2", "label"]:
    sys.exit(f"map.csv has {len(rows)} rows of {list(rows[0])}")
if not {"ARG5,6", "CDC28"} <= {row["name"] for row in rows} or plot < 50000:
    sys.exit("names are missing, or the plot is")
