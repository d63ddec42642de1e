"""Writes what was measured into docs/performance.md, and draws its figures."""

import math
import re
import subprocess

from machine import ROOT, commit, processor

DOCUMENT = ROOT / "docs/performance.md"
IMAGES = ROOT / "docs/images"


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "---|" * len(head)]
    for cells in rows:
        lines.append("| " + " | ".join([*cells, *[""] * (len(head) - len(cells))]) + " |")
    return "\n".join(lines)


def where_measured(what):
    return f"{processor()}; commit {commit()}; {what}."


def write_block(name, text, document_file=DOCUMENT):
    """Puts a text between the comments that begin with the block's name and end it."""
    document = document_file.read_text()
    pattern = f"<!-- {name} -->.*?<!-- end -->"
    if not re.search(pattern, document, flags=re.S):
        raise SystemExit(f"{document_file} has no place for '{name}'")
    block = f"<!-- {name} -->\n{text}\n<!-- end -->"
    document_file.write_text(re.sub(pattern, lambda _: block, document, flags=re.S))


def plot(script):
    subprocess.run(["gnuplot", "-d"], input=script, text=True, check=True)


def draw_growth(rows):
    points = "\n".join(f"{int(row[0])} {row[3]}" for row in rows)
    reference = rows[min(1, len(rows) - 1)]
    scale = reference[3] / (reference[0] * math.log2(reference[0]))
    plot(f"""$points << END
{points}
END
set terminal svg size 640,420 font 'sans-serif,13' background 'white'
set output '{IMAGES / "growth.svg"}'
set logscale xy
set xlabel 'rows'
set ylabel 'milliseconds of an iteration with cost'
set key top left
set grid
plot {scale} * x * log(x) / log(2) title 'c N log N' lc rgb '#999999', \\
  $points with linespoints pt 7 lc rgb '#0072B2' title 'measured, all threads'
""")


# Seconds of a run of so many iterations, from what `stages` prints.
ITERATIONS = 1000
STAGES = {
    "neighbours": ("#0072B2", lambda times: times["neighbours"]),
    "joint similarities": ("#56B4E9", lambda times: times["similarities"] - times["neighbours"]),
    "tree": ("#009E73", lambda times: ITERATIONS * times["tree"]),
    "walk": ("#E69F00", lambda times: ITERATIONS * times["walk"]),
    "attraction": ("#D55E00", lambda times: ITERATIONS * (
        times["gradient"] - times["tree"] - times["walk"])),
    "cost": ("#CC79A7", lambda times: ITERATIONS * (
        times["gradient-and-cost"] - times["gradient"])),
    "step": ("#999999", lambda times: ITERATIONS * times["step"]),
}


def stage_seconds(times):
    return [max(0.0, seconds(times)) for _, seconds in STAGES.values()]


def draw_stages(bars, path=IMAGES / "stages.svg"):
    """One bar for each (label, seconds of the stages), in parts of the whole run."""
    lines = []
    for label, seconds in bars:
        total = sum(seconds)
        shares = " ".join(f"{100 * each / total:.2f}" for each in seconds)
        lines.append(f'"{label}\\n{total:.1f} s" {shares}')
    newline = "\n"
    boxes = ", \\\n  ".join(
        f"$bars using {column}:xtic(1) title '{name}' lc rgb '{colour}'"
        for column, (name, (colour, _)) in enumerate(STAGES.items(), start=2))
    plot(f"""$bars << END
{newline.join(lines)}
END
set terminal svg size 760,440 font 'sans-serif,13' background 'white'
set output '{path}'
set style data histograms
set style histogram rowstacked
set style fill solid border rgb 'white'
set boxwidth 0.6
set bmargin 4
set ylabel 'per cent of a run of {ITERATIONS} iterations'
set yrange [0:100]
set key outside right center invert
set grid ytics
plot {boxes}
""")
