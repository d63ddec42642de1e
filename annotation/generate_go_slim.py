#!/usr/bin/env python3
"""Makes go_slim.cpp from go_slim_terms.tsv and go_slim_genes.tsv.

Terms are in the order of their identifiers; genes are those of gene_list.cpp, in its order. The three roots are
left out: they say that nothing more special is known.
"""

import sys
from pathlib import Path

sys.dont_write_bytecode = True

from generate_gene_list import derive_entries, literal, read_rows  # noqa: E402

ROOTS = {"GO:0008150", "GO:0003674", "GO:0005575"}
NUMBERS_PER_LINE = 24


def lines_of_numbers(numbers):
    starts = range(0, len(numbers), NUMBERS_PER_LINE)
    lines = (", ".join(map(str, numbers[start : start + NUMBERS_PER_LINE])) for start in starts)
    return "".join(f"    {line},\n" for line in lines)


def main():
    rows = [row for row in read_rows("go_slim_terms.tsv") if row["go_id"] not in ROOTS]
    rows.sort(key=lambda row: row["go_id"])
    terms = "".join(f"    {{{literal(row['go_id'])}, {literal(row['term'])}, '{row['aspect']}'}},\n" for row in rows)
    place = {row["go_id"]: number for number, row in enumerate(rows)}
    ids = {row["systematic"]: set(row["go_ids"].split(";")) - ROOTS for row in read_rows("go_slim_genes.tsv")}
    starts, numbers = [0], []
    for systematic, *_ in derive_entries(read_rows("yeast_features.tsv")):
        numbers += sorted(place[term] for term in ids.get(systematic, ()))
        starts.append(len(numbers))
    Path(sys.argv[1]).write_text(
        "// Made by generate_go_slim.py: do not edit. GO slim mapping of the Saccharomyces Genome Database and\n"
        "// terms of the Gene Ontology, both CC BY 4.0; README.md in this folder says how they were changed and\n"
        "// whom to cite.\n"
        "// clang-format off\n"
        '#include "annotation/go_slim.h"\n\n'
        "namespace ovik {\n\n"
        "namespace {\n\n"
        f"constexpr GoTerm kTerms[] = {{\n{terms}}};\n\n"
        "// Of all genes, one after the other.\n"
        f"constexpr std::uint16_t kTermsOfGenes[] = {{\n{lines_of_numbers(numbers)}}};\n\n"
        "// Where the terms of each gene start among them, and where the last ones end.\n"
        f"constexpr std::uint32_t kStarts[] = {{\n{lines_of_numbers(starts)}}};\n\n"
        "}  // namespace\n\n"
        "std::span<const GoTerm> go_terms() {\n    return kTerms;\n}\n\n"
        "std::span<const std::uint16_t> go_terms_of(const GeneEntry& gene) {\n"
        "    const auto place = &gene - gene_list().data();\n"
        "    return {kTermsOfGenes + kStarts[place], kTermsOfGenes + kStarts[place + 1]};\n}\n\n"
        "}  // namespace ovik\n",
        encoding="ascii",
    )


if __name__ == "__main__":
    main()
