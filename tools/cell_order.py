"""Orders of cells, faces and points in memory: a Hilbert curve in numpy, and when it is worth its while."""

import numpy as np

from mesh_table import sort_faces

NEAR = 2048  # cells whose records a processor's cache holds
GOOD_ENOUGH = 0.05  # the share of neighbours that may have numbers further apart
WORTH_IT = 0.5  # of that share must remain at most for new numbers to pay
BITS = 20


def far_share(table, number=None):
    """The share of interior faces whose cells have numbers more than NEAR apart; number: other numbers than theirs."""
    inner = table.c1 >= 0
    c0, c1 = table.c0[inner], table.c1[inner]
    if number is not None:
        c0, c1 = number[c0], number[c1]
    return float((np.abs(c0 - c1) > NEAR).mean()) if inner.any() else 0.0


def curve_keys(positions, bits=BITS):
    """Each position's place on a Hilbert curve.

    J. Skilling's transform (AIP Conf. Proc. 707, 381-387, 2004): undo the rotations from the coarsest level to
    the finest, then take the Gray code of the bits in turn.
    """
    low = positions.min(axis=0)
    span = float((positions.max(axis=0) - low).max()) or 1.0
    axes = list(((positions - low) / span * ((1 << bits) - 1)).astype(np.int64).T)
    for level in range(bits - 1, 0, -1):
        side, below = 1 << level, (1 << level) - 1
        for k, axis in enumerate(axes):
            high = (axis & side) != 0
            swap = np.where(high, 0, (axes[0] ^ axis) & below)
            axes[0] = np.where(high, axes[0] ^ below, axes[0] ^ swap)
            if k:
                axes[k] = axis ^ swap
    for k in range(1, len(axes)):
        axes[k] = axes[k] ^ axes[k - 1]
    flip = np.zeros_like(axes[0])
    for level in range(1, bits):
        flip ^= np.where(axes[-1] >> level & 1, (1 << level) - 1, 0)
    key = np.zeros_like(flip)
    for level in range(bits - 1, -1, -1):
        for axis in axes:
            key = key << 1 | (axis ^ flip) >> level & 1
    return key


def reorder(table, order="auto"):
    """Numbers the cells as asked ("keep", "curve", or "auto": along the curve where neighbours are too far apart as
    they stand), sorts the faces of each zone by their cells and drops unused points. Returns whether it renumbered."""
    before = far_share(table)
    renumber = order == "curve" or (order == "auto" and before > GOOD_ENOUGH)
    if renumber:
        sequence = np.argsort(curve_keys(table.centres()), kind="stable")
        number = np.empty(len(sequence) + 1, dtype=np.int64)
        number[sequence] = np.arange(len(sequence))
        number[-1] = -1
        # A structured mesh is in a kind order already.
        renumber = order == "curve" or far_share(table, number) < WORTH_IT * before
    if renumber:
        _renumber_cells(table, sequence, number)
        sort_faces(table)
    _renumber_points(table, renumber)
    return renumber


def _renumber_cells(table, sequence, number):
    table.cells = table.cells[sequence]
    table.c0, table.c1 = number[table.c0], number[table.c1]
    swap = table.c1 > table.c0
    table.c0, table.c1 = np.where(swap, table.c1, table.c0), np.where(swap, table.c0, table.c1)
    # The other cell is on the other side.
    table.nodes[swap, -2], table.nodes[swap, -1] = table.nodes[swap, -1], table.nodes[swap, -2]


def _renumber_points(table, by_use):
    """Drops unused points; by_use numbers the others in the order in which the cells meet them."""
    met = table.cells[table.cells >= 0]
    used, first = np.unique(met, return_index=True)
    if by_use:
        used = used[np.argsort(first)]
    dropped = len(table.points) - len(used)
    if dropped:
        table.notes.append(f"points that belong to no cell were left out: {dropped}")
    number = np.full(len(table.points) + 1, -1)
    number[used] = np.arange(len(used))
    table.points = table.points[used]
    table.cells, table.nodes = number[table.cells], number[table.nodes]
