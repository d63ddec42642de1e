#!/usr/bin/env python3
"""Runs ovik-tsne-mpi by mpirun, beside ovik-tsne.

Usage: mpi_test.py OVIK_TSNE OVIK_TSNE_MPI MPIRUN [CASE...]
"""

import os
import pathlib
import random
import signal
import subprocess
import sys
import tempfile
import time
import unittest

ALONE, SHARED, MPIRUN = sys.argv[1:4]
# Three windows of rows, the last of them not full.
ROWS = 8500
MESH = ("--method", "mesh", "-p", "5", "--names", "other", "--coordinates", "npy,tsv", "-n", "m")
RESULTS = ("m_tsne_5_0.csv", "m_tsne_5_0.npy", "m_tsne_5_0.tsv", "m_tsne_5_0.html")
PATIENCE = 600


def write_matrix(path, rows):
    numbers = random.Random(rows)
    with path.open("w") as file:
        file.write("row\ta\tb\tc\n")
        for n in range(rows):
            values = (numbers.gauss(6.0 * (n % 5), 1.0), numbers.gauss(0.0, 1.0), numbers.gauss(0.0, 1.0))
            file.write(f"r{n}\t" + "\t".join(f"{value:.5f}" for value in values) + "\n")


def environment():
    """Tests may run as root, and in containers, where processes do not read one another's memory."""
    return dict(
        os.environ,
        OMPI_ALLOW_RUN_AS_ROOT="1",
        OMPI_ALLOW_RUN_AS_ROOT_CONFIRM="1",
        OMPI_MCA_btl_vader_single_copy_mechanism="none",
        OMP_NUM_THREADS="1",
        LC_ALL="C.UTF-8",
    )


def words_of_ranks(count):
    return (MPIRUN, "--oversubscribe", "--bind-to", "none", "-n", str(count), SHARED)


def start(words):
    return subprocess.Popen(
        [str(word) for word in words],
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
        text=True,
        env=environment(),
    )


def run(words):
    process = start(words)
    out, err = process.communicate(timeout=PATIENCE)
    return process.returncode, out, err


def rank_processes(mpirun):
    """The processes of the ranks, by their numbers."""
    ranks = {}
    for place in pathlib.Path("/proc").iterdir():
        try:
            if not place.name.isdigit():
                continue
            parent = int((place / "stat").read_text().rpartition(")")[2].split()[1])
            if parent != mpirun.pid:
                continue
            for entry in (place / "environ").read_bytes().split(b"\0"):
                if entry.startswith(b"OMPI_COMM_WORLD_RANK="):
                    ranks[int(entry.partition(b"=")[2])] = int(place.name)
        except (FileNotFoundError, ProcessLookupError):
            pass
    return ranks


class Mpi(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.addCleanup(self.temporary.cleanup)
        self.place = pathlib.Path(self.temporary.name)
        self.matrix = self.place / "m.tsv"

    def results(self, name, names=RESULTS):
        return {file: (self.place / name / file).read_bytes() for file in names}

    def make(self, words, name, *options):
        status, out, err = run([*words, self.matrix, "-o", self.place / name, *options])
        self.assertEqual(status, 0, out + err)
        return out, err

    def expect_the_same(self, *options, ranks=(1, 2, 3, 4), names=RESULTS):
        self.make((ALONE,), "alone", *options)
        expected = self.results("alone", names)
        for count in ranks:
            self.make(words_of_ranks(count), f"by_{count}", *options)
            for file, content in self.results(f"by_{count}", names).items():
                self.assertEqual(content, expected[file], f"{file} of {count} ranks")

    def wait_for(self, path, process):
        for _ in range(PATIENCE * 20):
            if path.exists():
                return
            self.assertIsNone(process.poll(), "the run has ended")
            time.sleep(0.05)
        self.fail(f"there is no {path}")

    def test_any_number_of_ranks_leaves_the_same_bytes(self):
        write_matrix(self.matrix, ROWS)
        self.expect_the_same(*MESH, "-i", "30", "--stop-lying-iter", "10")

    def test_the_refined_preset_leaves_the_same_bytes(self):
        write_matrix(self.matrix, ROWS)
        self.expect_the_same(*MESH, "--preset", "refined", "-i", "20", "--clusters", ranks=(3,))

    def test_a_start_by_a_sample_leaves_the_same_bytes(self):
        write_matrix(self.matrix, ROWS)
        self.expect_the_same(*MESH, "--start", "sample", "-i", "20", "--quality", ranks=(2,))

    def test_more_ranks_than_windows_of_rows_leave_the_same_bytes(self):
        write_matrix(self.matrix, 40)
        self.expect_the_same(*MESH, "-i", "20", ranks=(4, 6))

    def test_a_report_and_messages_are_those_of_one(self):
        write_matrix(self.matrix, 100)
        out, err = self.make(words_of_ranks(3), "out", *MESH, "-i", "5")
        self.assertEqual(out.count("m_tsne_5_0.csv"), 1, out + err)
        self.assertNotIn("MPI", err)

    def refusal(self, *words, ranks=3):
        status, out, err = run([*words_of_ranks(ranks), *words])
        self.assertEqual(status, 2, out + err)
        self.assertNotIn("MPI_ABORT", err)
        self.assertEqual(err.count("ovik-tsne: "), 1, err)
        self.assertFalse((self.place / "out").exists())
        return err

    def test_what_ranks_cannot_share_is_refused_before_the_matrix_is_read(self):
        missing = self.place / "missing.tsv"
        self.assertIn("Give --method mesh", self.refusal(missing, "-o", self.place / "out"))
        for option in (("--onto", "m.model"), ("--seeds", "3"), ("--reliability",), ("-p", "5,10")):
            err = self.refusal(missing, "-o", self.place / "out", "--method", "mesh", *option)
            self.assertNotIn("missing.tsv", err)

    def test_bad_usage_and_bad_input_are_told_once(self):
        self.refusal("--no-such-option")
        self.assertIn("missing.tsv", self.refusal(self.place / "missing.tsv", *MESH))
        self.matrix.write_text("row\ta\tb\nx\t1\tno\ny\t2\t3\n")
        self.refusal(self.matrix, *MESH, "-o", self.place / "out")

    def test_a_rank_that_dies_ends_the_run_which_goes_on_by_another_number(self):
        write_matrix(self.matrix, ROWS)
        checkpoint = self.place / "run.checkpoint"
        lasting = (*MESH, "-i", "400")
        keeping = ("--checkpoint", checkpoint, "--checkpoint-every", "1")
        process = start(
            [*words_of_ranks(3), self.matrix, "-o", self.place / "died", *MESH, "-i", "100000", *keeping]
        )
        self.wait_for(checkpoint, process)
        os.kill(rank_processes(process)[1], signal.SIGKILL)
        _, err = process.communicate(timeout=PATIENCE)
        self.assertNotEqual(process.returncode, 0)
        self.assertIn("rank 1", err)
        self.assertFalse((self.place / "died" / RESULTS[0]).exists())
        resume = (*lasting, "--resume", checkpoint)
        self.make((ALONE,), "alone", *lasting)
        self.make(words_of_ranks(2), "by_2", *resume)
        self.assertEqual(self.results("by_2", RESULTS[:3]), self.results("alone", RESULTS[:3]))

    def test_an_interrupted_first_rank_writes_what_was_reached(self):
        write_matrix(self.matrix, ROWS)
        checkpoint = self.place / "run.checkpoint"
        process = start(
            [*words_of_ranks(3), self.matrix, "-o", self.place / "out", *MESH, "-i", "100000"]
            + ["--checkpoint", checkpoint, "--checkpoint-every", "1"]
        )
        self.wait_for(checkpoint, process)
        os.kill(rank_processes(process)[0], signal.SIGINT)
        _, err = process.communicate(timeout=PATIENCE)
        self.assertEqual(process.returncode, 130, err)
        self.assertIn("interrupted", err)
        self.results("out")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]])
