#!/usr/bin/env python3
"""Holds what the command makes of AnnData and 10x files to what it makes of the same numbers as text,
and the map that it writes back to its own table.

usage: cells_test.py COMMAND
"""

import gzip
import json
import pathlib
import subprocess
import sys
import tempfile
import warnings

import anndata
import h5py
import numpy as np
import scipy.io
import scipy.sparse
import scipy.sparse.linalg

CELLS, GENES = 70, 40
RUN = ["-q", "-i", "20", "--no-plots"]
command = pathlib.Path(sys.argv[1]).resolve()


def require(holds, what):
    if not holds:
        sys.exit(f"does not hold: {what}")


class Place:
    """A directory, in which the command runs."""

    def __init__(self, directory):
        self.directory = pathlib.Path(directory)

    def run(self, *options, status=0, perplexity="8"):
        neighbours = ["-p", perplexity] if perplexity else []
        done = subprocess.run([command, *RUN, *neighbours, *options], cwd=self.directory, capture_output=True, text=True)
        require(done.returncode == status, f"{options} ends with {status}: {done.stdout}{done.stderr}")
        return done.stderr

    def table(self, *options):
        """The table of a run."""
        self.run(*options, "-o", "out", "-n", "t")
        return (self.directory / "out" / "t_tsne_8_0.csv").read_bytes()


def counts():
    """Cells of three kinds, each with genes of its own, and the genes in which they differ."""
    random = np.random.default_rng(5)
    kinds = random.integers(0, 3, CELLS)
    rates = 0.2 + 3.0 * (np.arange(GENES)[None, :] % 3 == kinds[:, None])
    return random.poisson(rates).astype(np.float32)


def write_files(place, values, cells, genes):
    sparse = scipy.sparse.csr_matrix(values)
    data = anndata.AnnData(sparse, dtype=np.float32)
    data.obs_names, data.var_names = cells, genes
    data.obs["kind"] = ["a", "b"] * (CELLS // 2)
    data.layers["columns"] = scipy.sparse.csc_matrix(values)
    data.layers["dense"] = values.astype(np.float64)
    data.obsm["X_pca"] = (values[:, :5] - values[:, :5].mean(axis=0)).astype(np.float32)
    data.raw = data
    data.uns["kept"] = {"a": 1}
    data.write_h5ad(place / "cells.h5ad", compression="gzip")
    with h5py.File(place / "cells.h5", "w") as file:
        matrix = file.create_group("matrix")
        by_cells = scipy.sparse.csc_matrix(sparse.T)
        for name in ("data", "indices", "indptr"):
            matrix.create_dataset(name, data=getattr(by_cells, name), compression="gzip", chunks=(50,))
        matrix["shape"] = np.array([GENES, CELLS], dtype="int32")
        matrix["barcodes"] = np.array(cells, dtype="S18")
        matrix.create_group("features")["name"] = np.array(genes, dtype="S")
    (place / "mtx").mkdir()
    scipy.io.mmwrite(str(place / "mtx" / "matrix.mtx"), scipy.sparse.coo_matrix(values.T), field="integer")
    (place / "mtx" / "barcodes.tsv.gz").write_bytes(gzip.compress("\n".join(cells).encode()))
    (place / "mtx" / "features.tsv").write_text("".join(f"ID{g}\t{g}\tGene Expression\n" for g in genes))
    rows = [f"{cell}\t" + "\t".join(map(repr, map(float, row))) for cell, row in zip(cells, values)]
    (place / "cells.tsv").write_text("\t".join(["cell", *genes]) + "\n" + "\n".join(rows) + "\n")


def check_reading(place):
    for options in ([], ["--row-totals", "median", "--log1p"], ["--row-totals", "10000", "--log1p", "--pca", "5"]):
        expected = place.table("cells.tsv", "--names", "other", *options)
        for source in (["cells.h5ad"], ["cells.h5ad", "--layer", "layers/columns"],
                       ["cells.h5ad", "--layer", "layers/dense"], ["cells.h5ad", "--layer", "raw/X"],
                       ["cells.h5"], ["mtx/matrix.mtx"]):
            require(place.table(*source, *options) == expected, f"{source} {options} is the text")


def check_writing(place, values):
    for precision, kind in (("double", np.float64), ("float", np.float32)):
        place.run("cells.h5ad", "--layer", "obsm/X_pca", "--into", "cells.h5ad", "--precision", precision,
                  "--coordinates", "npy", "-o", "out", "-n", "t", "--json", "out/t.json")
        data = anndata.read_h5ad(place.directory / "cells.h5ad")
        coordinates = np.load(place.directory / "out/t_tsne_8_0.npy")
        require(data.obsm["X_tsne"].dtype == kind, f"{precision} is {kind}")
        require(np.array_equal(data.obsm["X_tsne"], coordinates.astype(kind)), "the map is that of the run")
        require(np.array_equal(data.X.toarray(), values), "what it holds stays")
        require(data.uns["kept"] == {"a": 1}, "uns stays")
        facts = data.uns["tsne"]
        require(facts["program"] == "ovik-tsne" and facts["perplexity"] == 8.0, f"facts: {facts}")
        require(facts["precision"] == precision and facts["metric"] == "euclidean", f"facts: {facts}")
        require(facts["matrix"] == "cells.h5ad" and facts["layer"] == "obsm/X_pca", f"facts: {facts}")
        files = json.loads((place.directory / "out/t.json").read_text())["runs"][0]["files"]
        require("AnnData" in json.dumps(files), "the report has the file")
    place.run("cells.h5ad", "--into", "cells.h5ad", "--seeds", "3", "--affinity", "uniform", "--json", "out/s.json",
              perplexity=None)
    facts = anndata.read_h5ad(place.directory / "cells.h5ad").uns["tsne"]
    kept = json.loads((place.directory / "out/s.json").read_text())["runs"][0]["kept_seed"]
    require(facts["seed"] == kept and facts["seeds"] == 3, f"facts: {facts}, the kept seed is {kept}")
    require("perplexity" not in facts and "layer" not in facts, f"facts have what had no effect: {facts}")
    said = place.run("cells.tsv", "--into", "cells.h5ad", status=2)
    require("it has obsm/X_tsne already" in said, said)
    said = place.run("cells.h5ad", "--layer", "obsm/X_pac", status=2)
    require("did you mean obsm/X_pca?" in said, said)


def check_large_sparse(place):
    """One that stays sparse: the same bytes for any number of threads, and the variance of all components."""
    random = np.random.default_rng(3)
    rows, columns, count = 1010, 20_000, 3
    row = np.repeat(np.arange(rows), 40)
    # Each of four kinds has genes of its own.
    column = np.where(random.random(row.size) < 0.9, (row % 4) * 50 + random.integers(0, 50, row.size),
                      random.integers(0, columns, row.size))
    values = scipy.sparse.csr_matrix((random.integers(1, 9, row.size), (row, column)),
                                     shape=(rows, columns), dtype=np.float32)
    data = anndata.AnnData(values, dtype=np.float32)
    data.obs_names = [f"cell {n}" for n in range(rows)]
    data.write_h5ad(place.directory / "large.h5ad")
    report = place.directory / "out/t.json"
    wanted = ["large.h5ad", "--row-totals", "median", "--log1p", "--pca", str(count), "--json", str(report)]
    tables = [place.table(*wanted, "-j", threads) for threads in ("1", "2", "5")]
    require(tables[0] == tables[1] == tables[2], "threads change nothing")
    told = json.loads(report.read_text())
    require(told["options"]["pca"] == count and told["input"]["columns"] == count, f"report: {told['options']}")
    totals = np.asarray(values.sum(axis=1), dtype=float)
    scaled = values.astype(float).multiply(np.median(totals) / totals).log1p().tocsr()
    mean = np.asarray(scaled.mean(axis=0)).ravel()
    # The products of the centred rows, which need no dense matrix.
    along = scaled @ mean
    products = (scaled @ scaled.T).toarray() - along[:, None] - along[None, :] + mean @ mean
    kept = scipy.sparse.linalg.eigsh(products, count)[0].sum() / np.trace(products)
    require(abs(told["runs"][0]["variance_kept"] - kept) < 1e-7, f"{told['runs'][0]['variance_kept']} and {kept}")
    require("--metric cosine: the matrix is sparse" in place.run(*wanted, "--metric", "cosine", status=2),
            "other metrics are refused")


def main():
    warnings.simplefilter("ignore")
    values = counts()
    cells = [f"AAACCTG{n:04d}-1" for n in range(CELLS)]
    genes = [f"gene {g}" for g in range(GENES)]
    with tempfile.TemporaryDirectory() as directory:
        place = Place(directory)
        write_files(place.directory, values, cells, genes)
        check_reading(place)
        check_writing(place, values)
        check_large_sparse(place)


main()
