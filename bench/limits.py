"""How near the inner loops are to what a core can do at most."""

import json

from machine import BENCH, run

# Additions and products, and divisions, that the formulas ask for, of one pair in two dimensions,
# and how the loop is called by bench/kernels. What a loop does beside them is no need: transposing,
# finding lanes, counting.
LOOPS = {
    "exact, sum of similarities, a pair": {
        # 1 + d^2, its reciprocal, and for row and column rounding, its error and the sums.
        "operations": 6 + 2 * 5, "divisions": 1,
        "benchmark": "rounded_similarities/set:{set}",
    },
    "exact, forces, a pair": {
        # 1 + d^2, q, q * (p - q / sum), and for row and column offset, product and sum.
        "operations": 6 + 2 + 2 * 6, "divisions": 2,
        "benchmark": "exact_block/set:{set}/cost:0",
    },
    "exact, cost, a pair": {
        # 1 + d^2, a polynomial of degree 6 with what leads to it, and p times it.
        "operations": 6 + 16 + 2, "divisions": 0,
        "benchmark": "exact_block/set:{set}/cost:1",
    },
}
# Fused steps of a division that is not left to the divider.
FUSED_STEPS = 7
SETS = {"AVX-512": ("avx512", 2), "AVX2": ("avx2", 1), "portable": ("scalar", 0)}


def core_limits(instructions):
    """Nanoseconds of an operation and of a division of a number, and other limits."""
    output = run(BENCH / f"limits_{SETS[instructions][0]}").output
    return {name: float(value) for name, value in map(str.split, output.splitlines())}


def measured_loops(instructions):
    """Nanoseconds of a pair in each loop, the shortest of some repeats."""
    number = SETS[instructions][1]
    names = {loop: needs["benchmark"].format(set=number) for loop, needs in LOOPS.items()}
    output = run(BENCH / "kernels", "--benchmark_filter=^(" + "|".join(names.values()) + ")$",
                 "--benchmark_repetitions=15", "--benchmark_min_time=0.05",
                 "--benchmark_format=json").output
    fastest = {}
    for each in json.loads(output)["benchmarks"]:
        if each["run_type"] == "iteration":
            fastest[each["name"]] = max(fastest.get(each["name"], 0.0), each["items_per_second"])
    return {loop: 1e9 / fastest[name] for loop, name in names.items()}


def bound(needs, core):
    """Nanoseconds when the divider does as many of the divisions as keep all units at work."""
    steps = (needs["operations"] + needs["divisions"] * FUSED_STEPS) * core["operation"]
    at_divider = needs["divisions"] * core["division"]
    spared = needs["divisions"] * FUSED_STEPS * core["operation"]
    share = min(1.0, steps / (at_divider + spared)) if at_divider > 0.0 else 0.0
    return steps - share * spared


def limit_rows(sets):
    """Cells: loop, set, what it needs, nanoseconds of the bound and measured, their ratio."""
    rows = []
    for instructions in sets:
        core = core_limits(instructions)
        measured = measured_loops(instructions)
        for loop, needs in LOOPS.items():
            least = bound(needs, core)
            rows.append([loop, instructions,
                         f"{needs['operations']} operations, {needs['divisions']} divisions",
                         f"{least:.2f} ns", f"{measured[loop]:.2f} ns",
                         f"{100 * least / measured[loop]:.0f} %"])
    return rows


def core_rows(sets):
    """Cells: set, operations, divisions and bytes of a nanosecond."""
    rows = []
    for instructions in sets:
        core = core_limits(instructions)
        rows.append([instructions, f"{1 / core['operation']:.0f}", f"{1 / core['division']:.1f}",
                     f"{core['cache']:.0f}", f"{core['memory']:.0f}"])
    return rows
