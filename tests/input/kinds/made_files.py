"""Files of kinds.toml that are no text: made here, the same bytes every time."""

import bz2
import gzip
import io
import lzma
import pickle
import sqlite3
import struct
import tarfile
import zipfile
import zlib

from made_workbooks import workbooks

TIME = (2026, 1, 1, 0, 0, 0)


def packed(content):
    return gzip.compress(content, mtime=0)


def zipped(members, is_packed=True):
    """A zip archive of members by name."""
    archive = io.BytesIO()
    method = zipfile.ZIP_DEFLATED if is_packed else zipfile.ZIP_STORED
    with zipfile.ZipFile(archive, "w", method) as file:
        for name, content in members.items():
            file.writestr(zipfile.ZipInfo(name, TIME), content)
    return archive.getvalue()


def tarred(name, content):
    archive = io.BytesIO()
    with tarfile.open(fileobj=archive, mode="w", format=tarfile.USTAR_FORMAT) as file:
        member = tarfile.TarInfo(name)
        member.size = len(content)
        file.addfile(member, io.BytesIO(content))
    return archive.getvalue()


def npy(descr, shape, data, column_major=False):
    header = f"{{'descr': '{descr}', 'fortran_order': {column_major}, 'shape': {shape}, }}"
    header = header.ljust(117) + "\n"
    return b"\x93NUMPY\x01\x00" + struct.pack("<H", len(header)) + header.encode() + data


def table_of(text):
    """The values of a plain table, rows of numbers."""
    return [[float(field) for field in line.split("\t")[1:]] for line in text.splitlines()[1:]]


def arrays(rows):
    count = len(rows) * len(rows[0])
    by_rows = [value for row in rows for value in row]
    by_columns = [row[d] for d in range(len(rows[0])) for row in rows]
    shape = (len(rows), len(rows[0]))
    return {
        "array.npy": npy("<f8", shape, struct.pack(f"<{count}d", *by_rows)),
        "by_columns.npy": npy("<f8", shape, struct.pack(f"<{count}d", *by_columns), True),
        "big_endian.npy": npy(">f8", shape, struct.pack(f">{count}d", *by_rows)),
        "vector.npy": npy("<f8", (count,), struct.pack(f"<{count}d", *by_rows)),
        "complex.npy": npy("<c16", (4, 5), struct.pack(f"<{count}d", *by_rows)),
        "objects.npy": npy("|O", shape, pickle.dumps(by_rows, protocol=4)),
        "cut_off.npy": npy("<f8", shape, struct.pack("<9d", *by_rows[:9])),
    }


def counts_array(rows):
    values = [int(value) for row in rows for value in row]
    return npy("<i4", (len(rows), len(rows[0])), struct.pack(f"<{len(values)}i", *values))


def sqlite(directory):
    path = directory / "made.sqlite"
    with sqlite3.connect(path) as database:
        database.execute("create table expression (gene text, value real)")
    content = path.read_bytes()
    path.unlink()
    return content


def picture():
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", 1, 1, 8, 0, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(b"\0\0")) + chunk(b"IEND", b""))


def r_object():
    """`saveRDS(1)` without its packing: version 3, native encoding, one real."""
    return (b"X\n" + struct.pack(">iii", 3, 0x040201, 0x030500) + struct.pack(">i", 5) + b"UTF-8"
            + struct.pack(">iid", 14, 1, 1.0))


def first_bytes():
    """Files whose first bytes are as they are, and the others those of no reader's concern here."""
    return {
        "table.parquet": b"PAR1\x15\x04\x15\x10\x15\x14" + bytes(20) + b"PAR1",
        "table.feather": b"ARROW1\0\0\xff\xff\xff\xff" + bytes(20) + b"ARROW1",
        "old.xls": bytes.fromhex("d0cf11e0a1b11ae1") + bytes(504),
        "cells.h5ad": b"\x89HDF\r\n\x1a\n" + bytes(40),
        "matlab.mat": b"MATLAB 5.0 MAT-file, Platform: GLNXA64".ljust(124) + b"\x00\x01IM",
        "packed.tsv.zst": b"\x28\xb5\x2f\xfd\x24\x05\x29\x00\x00gene\n",
        "article.pdf": b"%PDF-1.7\n%\xe2\xe3\xcf\xd3\n1 0 obj\n",
        "gel.jpg": b"\xff\xd8\xff\xe0\x00\x10JFIF\x00",
        "scan.tif": b"II*\x00\x08\x00\x00\x00",
        "program": b"\x7fELF\x02\x01\x01" + bytes(9),
        "reads.bam": packed(b"BAM\x01" + bytes(8)),
    }


def made_files(directory):
    """Contents by name.

    directory  holds the files of files/
    """
    def text(name):
        return (directory / name).read_bytes()

    matrix = text("chemostat.tsv")
    rows = table_of(matrix.decode())
    half = len(matrix) // 2
    return {
        **arrays(rows),
        **first_bytes(),
        "counts.npy": counts_array(table_of(text("rna_seq_counts.tsv").decode())),
        "chemostat.tsv.gz": packed(matrix),
        "two_members.tsv.gz": packed(matrix[:half]) + packed(matrix[half:]),
        "packed_without_saying.tsv": packed(matrix),
        "cut_off.tsv.gz": packed(matrix)[:-20],
        "damaged.tsv.gz": packed(matrix)[:60] + b"\0\0\0\0\0\0" + packed(matrix)[66:],
        "counts.mtx.gz": packed(text("counts.mtx")),
        "array.npy.gz": packed(arrays(rows)["array.npy"]),
        "packed.tsv.bz2": bz2.compress(matrix),
        "packed.tsv.xz": lzma.compress(matrix),
        "archive.zip": zipped({"chemostat.tsv": matrix}),
        "arrays.npz": zipped({"values.npy": arrays(rows)["array.npy"]}),
        "sheet.ods": zipped({"mimetype": "application/vnd.oasis.opendocument.spreadsheet"}, False),
        "letter.docx": zipped({"[Content_Types].xml": "<Types/>", "word/document.xml": "<w/>"}),
        "archive.tar": tarred("chemostat.tsv", matrix),
        "GSE8825_RAW.tar.gz": packed(tarred("GSM1.txt", matrix)),
        "unicode_text.txt": matrix.decode().encode("utf-16"),
        "utf16_without_mark.txt": matrix.decode().encode("utf-16-le"),
        "latin1.tsv": matrix.decode().replace("gene", "g\u00e8ne").encode("latin-1"),
        "frame.pkl": pickle.dumps({"TFC3": [0.1, 0.2]}, protocol=4),
        "frame.rds": packed(r_object()),
        "workspace.RData": packed(b"RDX3\n" + r_object()),
        "database.sqlite": sqlite(directory),
        "figure.png": picture(),
        **{name: zipped(parts) for name, parts in workbooks(matrix.decode()).items()},
        "cut_off.xlsx": zipped(workbooks(matrix.decode())["sheet.xlsx"])[:-100],
    }
