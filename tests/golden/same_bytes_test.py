#!/usr/bin/env python3
"""What same_bytes.py makes of digests that are equal, differ or are not there."""

import unittest

import same_bytes

LIST = "exact\tneighbours\t01\nexact\tmap\t02\nother maps\tmap\t03\nother maps\tmap\t04\n"
EXPECTED = same_bytes.digests_of(LIST)


class Cells(unittest.TestCase):
    def test_equal_parts_are_counted(self):
        self.assertEqual(same_bytes.cell_of(LIST, EXPECTED), "equal (2 of 2 parts)")
        self.assertEqual(
            same_bytes.cell_of("exact\tneighbours\t01\nexact\tmap\t02\n", EXPECTED),
            "equal (1 of 2 parts)",
        )

    def test_parts_that_differ_are_named(self):
        self.assertEqual(
            same_bytes.cell_of(LIST.replace("\t02", "\t09"), EXPECTED),
            "differs in exact (1 of 2 parts)",
        )
        # The second of two stages of one name, and a stage too few.
        for text in LIST.replace("\t04", "\t03"), LIST.replace("other maps\tmap\t04\n", ""):
            self.assertEqual(
                same_bytes.cell_of(text, EXPECTED), "differs in other maps (1 of 2 parts)"
            )

    def test_unknown_parts_and_nothing_differ(self):
        self.assertIn("differs in new", same_bytes.cell_of("new\tmap\t01\n", EXPECTED))
        self.assertEqual(same_bytes.cell_of("", EXPECTED), "differs: nothing was computed")


class Tables(unittest.TestCase):
    ROWS = [
        {"name": "a", "machine": "M", "compiler": "c", "optimisation": "-O3",
         "instructions": ["scalar", "best"]},
        {"name": "b", "machine": "N", "preset": "cross"},
        {"name": "c", "machine": "M", "preset": "mpi", "ranks": [1, 4]},
    ]

    def test_rows_without_results_were_not_run(self):
        results = {"a": {"compiler": "GCC 1.2", "lines": [
            {"instructions": "scalar", "cells": {"1": "equal", "2": "differs"}},
            {"instructions": "best", "cells": {}}]}}
        lines = same_bytes.tables(self.ROWS, results).splitlines()
        self.assertEqual(lines[2], "| M | GCC 1.2 | -O3 | scalar | equal | differs | not run |")
        self.assertEqual(lines[3], "| M | GCC 1.2 | -O3 | best | not run | not run | not run |")
        self.assertTrue(lines[4].startswith("| N | cross | of the preset | best | not run"))

    def test_ranks_have_a_table_of_their_own(self):
        lines = same_bytes.tables(self.ROWS, {}).splitlines()
        self.assertIn("| ranks: 1 | ranks: 4 |", lines[6])
        self.assertEqual(lines[8].count("not run"), 2)

    def test_the_document_keeps_what_is_around(self):
        text = "a\n<!-- table of builds -->\nold\n<!-- end of the table -->\nb\n"
        self.assertEqual(
            same_bytes.document_with(text, "new\n"),
            "a\n<!-- table of builds -->\nnew\n<!-- end of the table -->\nb\n",
        )


class Builds(unittest.TestCase):
    def test_what_is_not_there_is_not_run(self):
        row = {"name": "none", "compiler": "no-such-compiler", "optimisation": "-O3"}
        self.assertEqual(
            same_bytes.build(row, 1), (None, "not run: no-such-compiler is not there")
        )

    def test_rows_have_names_of_their_own_and_what_they_need(self):
        rows = same_bytes.rows()
        self.assertEqual(len({row["name"] for row in rows}), len(rows))
        for row in rows:
            self.assertTrue("preset" in row or {"compiler", "optimisation"} <= set(row), row)


if __name__ == "__main__":
    unittest.main()
