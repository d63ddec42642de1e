#!/usr/bin/env python3
"""Runs the snippets of docs/recipes.md as they stand there, in order, and looks at what they leave;
and that of data/README.md which makes the labels.

Usage: recipes_test.py COMMAND SOURCE_DIRECTORY
"""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROWS = 300
ITERATIONS = 30
PERPLEXITIES = ("5", "10", "30", "50")


def snippets(document):
    """All fenced blocks: their language, and their text."""
    return re.findall(r"^```(\w+)\n(.*?)^```$", document, re.MULTILINE | re.DOTALL)


def require(holds, what):
    if not holds:
        sys.exit(f"does not hold: {what}")


class Workplace:
    """A directory with a matrix, and a command `ovik-tsne` that takes few iterations."""

    def __init__(self, directory, command, source):
        self.directory = pathlib.Path(directory)
        rows = (source / "data/brauer2008_chemostat.tsv").read_text().splitlines(True)
        head, genes = rows[0], rows[1:]
        # Genes whose names hold commas are there, and the one that a snippet asks for.
        wanted = [row for row in genes if row.startswith(("ADE5,7\t", "DUR1,2\t", "RPL3\t"))]
        require(len(wanted) == 3, "the matrix has the genes of the snippets")
        matrix = [head] + wanted + [row for row in genes if row not in wanted][: ROWS - 3]
        (self.directory / "expression.tsv").write_text("".join(matrix))
        programs = self.directory / "programs"
        programs.mkdir()
        wrapper = programs / "ovik-tsne"
        wrapper.write_text(
            "#!/bin/sh\n"
            f'case " $* " in *" --collect "*|*" --reproduce "*) exec "{command}" "$@" ;; esac\n'
            f'exec "{command}" --max-iter {ITERATIONS} "$@"\n'
        )
        wrapper.chmod(0o755)
        self.environment = dict(
            os.environ,
            PATH=f"{programs}:{os.environ['PATH']}",
            HOME=str(self.directory),
            LC_ALL="C.UTF-8",
        )

    def run(self, program, *arguments, text=None, **variables):
        done = subprocess.run(
            [program, *arguments],
            input=text,
            cwd=self.directory,
            env=dict(self.environment, **variables),
            capture_output=True,
            text=True,
        )
        require(done.returncode == 0, f"{program} {arguments}: {done.stdout}{done.stderr}")
        return done.stdout

    def read(self, name):
        return (self.directory / name).read_text()


def check_comparison_runs(place, pictures=True):
    page = place.read("out/yeast_tsne_comparison.html")
    titles = re.findall(r"<h2>.*?(Perplexity \d+)", page)
    require(titles == [f"Perplexity {p}" for p in PERPLEXITIES], f"all runs on the page: {titles}")
    shown = re.findall(r'<img src="\./([^"]+)"', page)
    require(len(shown) == (len(PERPLEXITIES) if pictures else 1), f"pictures: {shown}")
    for picture in shown:
        require((place.directory / "out" / picture).exists(), f"{picture} is there")


def is_choice(text):
    return "--choose-perplexity" in text or "choose.sh" in text


def check_choice(place):
    """The jobs leave what one call leaves."""
    check_comparison_runs(place, pictures=False)
    require("<h2>Choice of perplexity</h2>" in place.read("out/yeast_tsne_comparison.html"),
            "the page has the choice")
    place.run("ovik-tsne", "expression.tsv", "--choose-perplexity", ",".join(PERPLEXITIES),
              "--out-dir", "one", "--name", "yeast", "--quiet")
    for name in ("choice.tsv", "choice.svg", "30_0.csv"):
        require(place.read(f"out/yeast_tsne_{name}") == place.read(f"one/yeast_tsne_{name}"),
                f"{name} is that of one call")


def forget_sweep(place):
    shutil.rmtree(place.directory / "out")
    (place.directory / "out").mkdir()


def run_r(place, text):
    checks = (
        f'if (exists("map")) stopifnot(nrow(map) == {ROWS}, is.numeric(map$component_1),\n'
        '  "ADE5,7" %in% map$name)\n'
        f'if (exists("table", mode = "list")) stopifnot(nrow(table) == {ROWS}, ncol(table) == 5,\n'
        '  "ADE5,7" %in% table$name, is.numeric(table$x),\n'
        '  any(grepl("ribosom", table[["function"]])))\n'
    )
    place.run("Rscript", "-", text=text + checks)


def run_python(place, text):
    checks = (
        "if 'coordinates' in globals():\n"
        f"    assert coordinates.shape == ({ROWS}, 2) and len(names) == {ROWS}\n"
        "    assert 'ADE5,7' in names\n"
        "else:\n"
        f"    assert len(run['costs']) == {ITERATIONS} + 1\n"
    )
    place.run("/usr/bin/python3", "-", text=text + checks)


def run_shell(place, text):
    printed = place.run("/bin/sh", "-e", text=text)
    if text.startswith("awk"):
        genes = printed.split()
        require(len(set(genes)) == 10 and "RPL3" not in genes, f"ten other genes: {genes}")
        said = place.run("/bin/sh", "-e", text="exec 2>&1\n" + text.replace("RPL3", "NO1"))
        require(said == "NO1 is no row of the map\n", f"a gene that is not there is missed: {said}")
    if "--reproduce" in text:
        require("-- Equal: the map has the bits of the report" in printed, "the map is equal")
    if "zcat" in text:
        require(len(place.read("out/without_first_column_tsne_30_0.csv").splitlines())
                == ROWS + 1, "a row per gene from standard input")
    if "--quality" in text:
        page = place.read("sweep/yeast_tsne_comparison.html")
        require(page.count("<img ") == 4 and "Trustworthiness, nearest 10" in page, "a page of four runs")
        for name in ("30_0.csv", "30_0.png"):
            ours = (place.directory / f"sweep/yeast_tsne_{name}").read_bytes()
            require(ours == (place.directory / f"out/yeast_tsne_{name}").read_bytes(),
                    f"{name} is that of the run by itself")


def run_snakemake(place, text):
    forget_sweep(place)
    (place.directory / "Snakefile").write_text(text)
    place.run("snakemake", "--cores", "2", "--quiet")
    if is_choice(text):
        check_choice(place)
        return
    check_comparison_runs(place)
    logged = place.read("out/yeast.log").count("1-1-1-0\n")
    require(logged == len(PERPLEXITIES), f"{logged} records of runs side by side")


def run_slurm(place, text):
    """What the scheduler does with an array: the script once for each task."""
    forget_sweep(place)
    script = "choose.sh" if is_choice(text) else "tsne.sh"
    (place.directory / script).write_text(text)
    for task in range(len(PERPLEXITIES)):
        place.run("/bin/sh", script, SLURM_ARRAY_TASK_ID=str(task), SLURM_CPUS_PER_TASK="2")


def run_sbatch(place, text):
    """With a stand-in for the scheduler that runs the last step at once."""
    stand_in = place.directory / "programs/sbatch"
    stand_in.write_text(
        "#!/bin/sh\n"
        'if [ "$1" = --parsable ]; then echo 17; exit; fi\n'
        '[ "$1" = --dependency=afterok:17 ] && [ "$2" = --wrap ] && exec sh -ec "$3"\n'
    )
    stand_in.chmod(0o755)
    place.run("/bin/sh", "-e", text=text)
    check_choice(place) if is_choice(text) else check_comparison_runs(place)
    reports = [json.loads(place.read(f"out/{p}.json")) for p in PERPLEXITIES]
    digests = {report["input"]["digest"]["values"] for report in reports}
    require(len(digests) == 1, "all runs had the same input")


def check_labels(place, source):
    """The labels of the data are those that the words of the descriptions give."""
    (_, text), = snippets((source / "data/README.md").read_text())
    rows = (source / "data/brauer2008_chemostat.tsv").read_text().splitlines(True)[: ROWS + 1]
    (place.directory / "first_rows.tsv").write_text("".join(rows))
    place.run("ovik-tsne", "first_rows.tsv", "--out-dir", "out", "--name", "brauer2008",
              "--perplexity", "30", "--no-plots", "--quiet")
    labels = place.run("/bin/sh", "-e", text=text).splitlines()
    given = (source / "data/brauer2008_labels.txt").read_text().splitlines()[:ROWS]
    require(labels == given and len(set(given)) == 4, "the labels are made of the descriptions")


def run_docker(place, text):
    """With a stand-in for docker that runs the command in the directory which is its volume."""
    stand_in = place.directory / "programs/docker"
    stand_in.write_text(
        "#!/bin/sh\n"
        '[ "$1 $2 $3" = "run --rm --user" ] && [ "$5" = --volume ] || exit 9\n'
        f'[ "$6" = "{place.directory}:/data" ] && [ "${{7%:*}}" = ovik-tsne ] || exit 8\n'
        'shift 7; exec ovik-tsne "$@"\n'
    )
    stand_in.chmod(0o755)
    place.run("/bin/sh", "-e", text=text)
    require(len(place.read("out/expression_tsne_30_0.csv").splitlines()) == ROWS + 1,
            "a row per gene from the container")


def run_mpi(place, text):
    """The job anew, and once more as it goes on from its checkpoint; with stand-ins for `mpirun` and
    `ovik-tsne-mpi`, which leaves the bytes of `ovik-tsne`."""
    forget_sweep(place)
    mpirun = place.directory / "programs/mpirun"
    mpirun.write_text(
        "#!/bin/sh\n"
        '[ "$1 $2 $3 $4" = "--map-by ppr:1:node --bind-to none" ] || exit 9\n'
        'shift 4; exec "$@"\n'
    )
    mpirun.chmod(0o755)
    shutil.copy(place.directory / "programs/ovik-tsne", place.directory / "programs/ovik-tsne-mpi")
    place.run("/bin/sh", "-e", text=text, SLURM_CPUS_PER_TASK="2")
    table = place.read("out/yeast_tsne_30_0.csv")
    require(len(table.splitlines()) == ROWS + 1, "a row per gene from several machines")
    place.run("/bin/sh", "-e", text=text, SLURM_CPUS_PER_TASK="2")
    require(place.read("out/yeast_tsne_30_0.csv") == table, "and the same from the checkpoint")


RUNNERS = {
    "mpi": run_mpi,
    "docker": run_docker,
    "r": run_r,
    "python": run_python,
    "sh": run_shell,
    "snakemake": run_snakemake,
    "slurm": run_slurm,
    "sbatch": run_sbatch,
}


def main():
    command, source = sys.argv[1], pathlib.Path(sys.argv[2])
    found = snippets((source / "docs/recipes.md").read_text())
    require({language for language, _ in found} == set(RUNNERS), "snippets of every kind are there")
    with tempfile.TemporaryDirectory() as directory:
        place = Workplace(directory, command, source)
        check_labels(place, source)
        for language, text in found:
            print(f"{language}: {text.splitlines()[0]}", flush=True)
            RUNNERS[language](place, text)


main()
