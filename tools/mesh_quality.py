"""What a mesh is like: counts, extent, shapes of the cells, and the time step that it allows."""

import math

import numpy as np

from cell_order import NEAR, far_share
from mesh_table import measures, place
from mesh_zones import part_count

LONGEST = 10000.0  # the program's minimum of the faces starts there


def face_measures(table):
    """Lengths in 2D, areas in 3D."""
    corner = [table.points[table.nodes[:, k]] for k in range(table.dimension)]
    if table.dimension == 2:
        return np.linalg.norm(corner[1] - corner[0], axis=1)
    return 0.5 * np.linalg.norm(np.cross(corner[1] - corner[0], corner[2] - corner[0]), axis=1)


def cell_angles(table):
    """Smallest and largest angle of each cell in degrees: between sides in 2D, between faces in 3D."""
    low, high = np.full(len(table.cells), np.inf), np.full(len(table.cells), -np.inf)
    for rows, angle in _plane_angles(table) if table.dimension == 2 else _space_angles(table):
        low[rows], high[rows] = np.minimum(low[rows], angle), np.maximum(high[rows], angle)
    return np.degrees(low), np.degrees(high)


def _plane_angles(table):
    sizes = table.sizes
    for k in range(table.cells.shape[1]):
        rows = np.flatnonzero(sizes > k)
        here, before, after = (
            table.points[table.cells[rows, (k + step) % sizes[rows]]] for step in (0, -1, 1)
        )
        a, b = before - here, after - here
        yield rows, np.arctan2(np.abs(a[:, 0] * b[:, 1] - a[:, 1] * b[:, 0]), (a * b).sum(axis=1))


def _space_angles(table):
    corner = [table.points[table.cells[:, k]] for k in range(4)]
    normals = []
    for p, q, r in ((1, 3, 2), (0, 2, 3), (0, 3, 1), (0, 1, 2)):
        normals.append(np.cross(corner[q] - corner[p], corner[r] - corner[p]))
    for k in range(4):
        for j in range(k):
            a, b = normals[j], normals[k]
            yield slice(None), np.arctan2(np.linalg.norm(np.cross(a, b), axis=1), -(a * b).sum(axis=1))


def cell_widths(table, faces, sizes):
    """Each cell's thickness across its largest face."""
    largest = np.zeros(len(table.cells))
    np.maximum.at(largest, table.c0, faces)
    inner = table.c1 >= 0
    np.maximum.at(largest, table.c1[inner], faces[inner])
    if table.dimension == 3:
        return 3.0 * sizes / largest
    return np.where(table.sizes == 3, 2.0, 1.0) * sizes / largest


def time_step(dx, CFL, RT, Ma):
    """The program's rule for flows: CFL dx / (speed of sound + reference velocity)."""
    sound = math.sqrt(RT)
    return CFL * dx / (sound + sound * Ma)


def report_lines(table, CFL, RT, Ma):
    """The report, line by line."""
    sizes, _ = measures(table.points, table.cells)
    faces = face_measures(table)
    inner = table.c1 >= 0
    yield "cells      " + ", ".join(f"{count} {name}" for name, count in table.shape_counts())
    yield f"points     {len(table.points)}"
    yield f"faces      {len(faces)}: {int(inner.sum())} interior, {int((~inner).sum())} boundary"
    for k, name in enumerate(table.zone_names):
        own = table.zone == k
        kind = "length" if table.dimension == 2 else "area"
        yield f"zone       {name}: {int(own.sum())} faces, {kind} {faces[own].sum():.6g}"
    low, high = table.points.min(axis=0), table.points.max(axis=0)
    yield "extent     " + ", ".join(f"{axis} {a:.6g} to {b:.6g}" for axis, a, b in zip("xyz", low, high))
    yield from _shape_lines(table, sizes, inner)
    yield from _step_lines(table, sizes, faces, CFL, RT, Ma)
    yield f"numbering  {100.0 * far_share(table):.1f} % of the neighbours have numbers more than {NEAR} apart"
    parts = part_count(table)
    if parts > 1:
        yield f"warning    the cells make {parts} parts that have no face in common"


def _shape_lines(table, sizes, inner):
    word = "areas" if table.dimension == 2 else "volumes"
    ratio = np.exp(np.abs(np.log(sizes[table.c0[inner]] / sizes[table.c1[inner]]))).max(initial=1.0)
    yield (f"{word:10s} {sizes.min():.6g} to {sizes.max():.6g} (1 : {sizes.max() / sizes.min():.4g}, "
           f"neighbours up to 1 : {ratio:.4g}), together {sizes.sum():.6g}")
    low, high = cell_angles(table)
    at = int(low.argmin())
    between = "sides" if table.dimension == 2 else "faces"
    yield (f"angles     {low[at]:.4g} to {high.max():.4g} degrees between {between}; the smallest near "
           f"{place(table.centres()[at])}")


def _step_lines(table, sizes, faces, CFL, RT, Ma):
    at = int(faces.argmin())
    dx = min(LONGEST, float(faces[at]))
    word = "shortest face" if table.dimension == 2 else "smallest face area"
    yield f"dx         {dx:.6g}, the {word}, near {place(table.points[table.nodes[at]].mean(axis=0))}"
    dt = time_step(dx, CFL, RT, Ma)
    yield f"time step  {dt:.6g} with CFL {CFL:g}, RT {RT:g}, Ma {Ma:g}"
    width = cell_widths(table, faces, sizes).min()
    share = CFL * dx / width
    yield f"Courant    sound crosses {share:.4g} of the thinnest cell ({width:.4g}) in a step"
    if share > 1.0:
        yield (f"warning    the time step is too long for the thinnest cell; try a CFL number of "
               f"{CFL / share:.2g} or less")
