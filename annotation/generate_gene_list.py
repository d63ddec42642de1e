#!/usr/bin/env python3
"""Makes gene_list.cpp from yeast_features.tsv and exceptions.tsv.

The rule:
1. Entries are the nuclear and mitochondrial open reading frames of the 2013 release, dubious ones
   included, in genome order. Left out are those of the 2-micron plasmid and spans below 100 base pairs.
2. The name of an entry is the standard name of 2013, else the systematic one, cut at the first "(".
3. The function is looked up by that name among the genes of the 2020 release that are not dubious, each
   listed under its standard name, else its systematic one: the headline, cut to 70 characters, without
   trailing blanks. A name that is not found has the function "NULL".
Exceptions (their file says why): standard names of kind "name" replace those of 2013; rows of kind
"release_2023" take the 2023 release in step 3.
"""

import csv
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
SHORTEST_SPAN = 100
LONGEST_FUNCTION = 70


def read_rows(name):
    lines = (HERE / name).read_text(encoding="ascii").splitlines()
    content = [line for line in lines if not line.startswith("#")]
    return list(csv.DictReader(content, delimiter="\t", quoting=csv.QUOTE_NONE))


def exceptions_of(kind):
    return {row["systematic"]: row["value"] for row in read_rows("exceptions.tsv") if row["kind"] == kind}


def functions_by_name(features, release):
    functions = {}
    for row in features:
        if row[f"qualifier_{release}"] != "Dubious":
            name = row[f"std_{release}"] or row["systematic"]
            functions.setdefault(name, row[f"headline_{release}"])
    return functions


def derive_entries(features):
    """Quadruples of systematic name, name, function and identifier at SGD."""
    names = exceptions_of("name")
    newer = exceptions_of("release_2023")
    functions_2020 = functions_by_name(features, "2020")
    functions_2023 = functions_by_name(features, "2023")
    entries = []
    for row in features:
        span = int(row["stop"]) - int(row["start"]) + 1
        if row["chrom"] == "2-micron" or span < SHORTEST_SPAN:
            continue
        systematic = row["systematic"]
        full_name = names.get(systematic) or row["std_2013"] or systematic
        name = full_name.split("(")[0]
        functions = functions_2023 if systematic in newer else functions_2020
        function = functions.get(name, "NULL")[:LONGEST_FUNCTION].rstrip()
        if systematic in newer and function != newer[systematic]:
            sys.exit(f"exceptions.tsv: {systematic} should be {function!r}, not {newer[systematic]!r}")
        entries.append((systematic, name, function, row["sgdid"]))
    return entries


def derive_aliases(features, entries):
    """Triples of a further standard name, of any release, and the systematic name and the name of its entry.
    A name that went from one gene to another is an alias of the one that is not listed under it."""
    name_of = {systematic: name for systematic, name, *_ in entries}
    aliases = set()
    for row in features:
        systematic = row["systematic"]
        for column in ("std_2013", "std_2020", "std_2023"):
            alias = row[column]
            if alias and alias != name_of.get(systematic, alias):
                aliases.add((alias, systematic, name_of[systematic]))
    return sorted(aliases)


def literal(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def lines_of(rows):
    return "".join("    {" + ", ".join(map(literal, row)) + "},\n" for row in rows)


def main():
    features = read_rows("yeast_features.tsv")
    entries = derive_entries(features)
    Path(sys.argv[1]).write_text(
        "// Made by generate_gene_list.py: do not edit. Annotation of the Saccharomyces Genome Database,\n"
        "// CC BY 4.0; README.md in this folder says how it was changed and whom to cite.\n"
        "// clang-format off\n"
        '#include "annotation/gene_list.h"\n\n'
        "namespace ovik {\n\n"
        "namespace {\n\n"
        f"constexpr GeneEntry kGenes[] = {{\n{lines_of(entries)}}};\n\n"
        f"constexpr GeneAlias kAliases[] = {{\n{lines_of(derive_aliases(features, entries))}}};\n\n"
        "}  // namespace\n\n"
        "std::span<const GeneEntry> gene_list() {\n    return kGenes;\n}\n\n"
        "std::span<const GeneAlias> gene_aliases() {\n    return kAliases;\n}\n\n"
        "}  // namespace ovik\n",
        encoding="ascii",
    )


if __name__ == "__main__":
    main()
