"""Sample meshes with free dimensions: boxes, rings and cubes by our own hand, a channel around a cylinder by Gmsh."""

import math

import numpy as np

from fluent_mesh import MeshError
from gmsh_arrays import gmsh_arrays
from gmsh_session import gmsh_session
from mesh_table import CellSource

# As in the sample boxes: where tetrahedra begin to turn over.
MOST_JITTER = 1.0 / 6.0
SIDES_2D = ("left", "right", "bottom", "top")
SIDES_3D = SIDES_2D + ("back", "front")


def even(cells, length):
    return np.linspace(0.0, length, cells + 1)


def stretched(cells, length, ratio, fine):
    """Points of a line whose cells grow evenly from the fine ends to the other, `ratio` times in all. fine: "low",
    "high" or "both"."""
    if not 1.0 <= ratio < math.inf:
        raise MeshError("the stretching must be at least 1 and finite")
    place = np.arange(cells)
    rank = {"low": place, "high": place[::-1], "both": np.minimum(place, place[::-1])}[fine]
    widths = ratio ** (rank / max(rank.max(), 1))
    ends = np.append(0.0, np.cumsum(widths)) * (length / widths.sum())
    ends[-1] = length
    return ends


def rectangle(x, y, triangles):
    """A grid of rectangles, or each cut in two, with a zone a side."""
    nx, ny = len(x) - 1, len(y) - 1
    points = np.stack(np.meshgrid(x, y), axis=2).reshape(-1, 2)
    node = np.arange((nx + 1) * (ny + 1)).reshape(ny + 1, nx + 1)
    corners = [node[:-1, :-1], node[:-1, 1:], node[1:, 1:], node[1:, :-1]]
    sides = (node[:, 0], node[:, -1], node[0], node[-1])
    groups = [(name, np.stack([line[:-1], line[1:]], axis=1)) for name, line in zip(SIDES_2D, sides)]
    return CellSource(points, _cut(corners, triangles), groups)


def ring(inner, outer, across, around, triangles):
    """A grid between two circles about the origin."""
    if not 0.0 < inner < outer:
        raise MeshError("the inner radius must be positive and below the outer one")
    radius = np.linspace(inner, outer, across + 1)
    angle = 2.0 * math.pi * np.arange(around) / around
    points = np.stack([np.outer(radius, np.cos(angle)), np.outer(radius, np.sin(angle))], axis=2).reshape(-1, 2)
    node = np.arange((across + 1) * around).reshape(across + 1, around)
    following = np.roll(node, -1, axis=1)
    corners = [node[:-1], node[1:], following[1:], following[:-1]]
    groups = [(name, np.stack([node[k], following[k]], axis=1)) for name, k in (("inner", 0), ("outer", -1))]
    return CellSource(points, _cut(corners, triangles), groups)


def _cut(corners, triangles):
    """Quadrilaterals from the arrays of their corners, or triangles whose diagonals change direction from one
    to the next, so that no direction is preferred."""
    quads = np.stack(corners, axis=2)
    if not triangles:
        return {4: quads.reshape(-1, 4)}
    odd = np.indices(quads.shape[:2]).sum(axis=0) % 2
    a, b, c, d = np.moveaxis(np.where(odd[:, :, None], np.roll(quads, 1, axis=2), quads), 2, 0)
    return {3: np.stack([np.stack([a, b, c], axis=2), np.stack([a, c, d], axis=2)], axis=2).reshape(-1, 3)}


def cube(counts, size, jitter):
    """A box of boxes, each cut into five tetrahedra, with a zone a side."""
    if not 0.0 <= jitter < MOST_JITTER:
        raise MeshError("the jitter must be at least 0 and below 1/6, where tetrahedra begin to turn over")
    nx, ny, nz = counts
    grid = np.stack(np.meshgrid(*(np.arange(n + 1) for n in counts), indexing="ij"), axis=3)[..., ::1]
    grid = grid.transpose(2, 1, 0, 3).reshape(-1, 3)
    places = grid.astype(float)
    if jitter:
        inside = ((grid > 0) & (grid < counts)).all(axis=1)
        move = np.random.default_rng(1).uniform(-jitter, jitter, places.shape)
        places[inside] += move[inside]
    node = np.arange(len(grid)).reshape(nz + 1, ny + 1, nx + 1)
    corner = [
        node[k : nz + k, j : ny + j, i : nx + i].ravel() for k in (0, 1) for j in (0, 1) for i in (0, 1)
    ]
    cubes = np.stack(corner, axis=1)
    odd = grid[cubes[:, 0]].sum(axis=1) % 2 == 1
    tetrahedra = np.empty((len(cubes), 5, 4), dtype=np.int64)
    # The diagonals of all squares join even points, so neighbouring cubes, mirror images of each other, fit.
    for rows, tips in ((odd, (0, 3, 5, 6)), (~odd, (1, 2, 4, 7))):
        own = cubes[rows]
        at_tips = [own[:, [tip ^ step for step in (0, 1, 2, 4)]] for tip in tips]
        between = own[:, [tip ^ 7 for tip in tips]]
        tetrahedra[rows] = np.stack([*at_tips[:2], between, *at_tips[2:]], axis=1)
    points = places * (np.asarray(size) / counts)
    return CellSource(points, {4: tetrahedra.reshape(-1, 4)}, _cube_sides(grid, counts, tetrahedra.reshape(-1, 4)))


def _cube_sides(grid, counts, tetrahedra):
    sides = [tetrahedra[:, c] for c in ((0, 1, 2), (0, 3, 1), (0, 2, 3), (1, 3, 2))]
    faces = np.concatenate(sides)
    groups = []
    for k, name in enumerate(SIDES_3D):
        axis, end = k // 2, (0, counts[k // 2])[k % 2]
        groups.append((name, faces[(grid[faces][:, :, axis] == end).all(axis=1)]))
    return groups


def channel_with_cylinder(length, height, centre, radius, sizes, reach, wake):
    """Free triangles in a channel around a cylinder.

    sizes: edges far from the cylinder and at it; reach: within so many radii of its surface the edges grow from the
    one to the other; wake: as long behind it, in diameters, edges stay below twice those at it.
    """
    x, y = centre
    if not (0.0 < radius and radius < x < length - radius and radius < y < height - radius):
        raise MeshError("the cylinder must lie inside the channel")
    if not 0.0 < sizes[1] <= sizes[0]:
        raise MeshError("cells at the cylinder must not be larger than elsewhere")
    with gmsh_session("the mesh around a cylinder") as gmsh:
        gmsh.option.setNumber("Mesh.Algorithm", 6)  # frontal: the most regular triangles
        gmsh.option.setNumber("Mesh.Smoothing", 10)
        gmsh.model.add("channel")
        circle = _draw_channel(gmsh, length, height, centre, radius)
        _set_sizes(gmsh, circle, centre, radius, sizes, reach, wake)
        gmsh.model.mesh.generate(2)
        arrays = gmsh_arrays(gmsh)
    # Gmsh leaves rounding noise such as 1e-17 on straight sides.
    points = np.round(arrays["points"][:, :2], 12)
    lines = np.flatnonzero(arrays["dimensions"] == 1)
    groups = [(str(arrays["names"][k]), arrays[f"group_{k}"]) for k in lines]
    return CellSource(points, {3: arrays["cells_2_3"]}, groups)


def _draw_channel(gmsh, length, height, centre, radius):
    kernel = gmsh.model.geo
    x, y = centre
    corners = [kernel.addPoint(*p, 0) for p in ((0, 0), (length, 0), (length, height), (0, height))]
    lines = [kernel.addLine(corners[i], corners[(i + 1) % 4]) for i in range(4)]
    middle = kernel.addPoint(x, y, 0)
    ends = [kernel.addPoint(x + radius * dx, y + radius * dy, 0) for dx, dy in ((1, 0), (0, 1), (-1, 0), (0, -1))]
    circle = [kernel.addCircleArc(ends[i], middle, ends[(i + 1) % 4]) for i in range(4)]
    surface = kernel.addPlaneSurface([kernel.addCurveLoop(lines), kernel.addCurveLoop(circle)])
    kernel.synchronize()
    # The moving wall of the set-up, the inlet, comes after those at rest.
    zones = (("bottom", lines[:1]), ("top", lines[2:3]), ("cylinder", circle), ("inlet", lines[3:]),
             ("outlet", lines[1:2]))
    for tag, (name, curves) in enumerate(zones, 1):
        gmsh.model.addPhysicalGroup(1, curves, tag)
        gmsh.model.setPhysicalName(1, tag, name)
    gmsh.model.addPhysicalGroup(2, [surface], len(zones) + 1)
    return circle


def _set_sizes(gmsh, circle, centre, radius, sizes, reach, wake):
    field = gmsh.model.mesh.field
    far, near = sizes
    for option in ("MeshSizeFromPoints", "MeshSizeFromCurvature", "MeshSizeExtendFromBoundary"):
        gmsh.option.setNumber("Mesh." + option, 0)
    distance, growth, behind, least = (field.add(kind) for kind in ("Distance", "Threshold", "Box", "Min"))
    field.setNumbers(distance, "CurvesList", circle)
    field.setNumber(distance, "NumPointsPerCurve", max(20, math.ceil(radius * math.pi / near)))
    for name, value in (("InField", distance), ("SizeMin", near), ("SizeMax", far), ("DistMin", 0.0),
                        ("DistMax", reach * radius)):
        field.setNumber(growth, name, value)
    for name, value in (("VIn", min(2.0 * near, far)), ("VOut", far), ("Thickness", reach * radius),
                        ("XMin", centre[0]), ("XMax", centre[0] + radius + 2.0 * radius * wake),
                        ("YMin", centre[1] - 1.5 * radius), ("YMax", centre[1] + 1.5 * radius)):
        field.setNumber(behind, name, value)
    field.setNumbers(least, "FieldsList", [growth, behind] if wake > 0.0 else [growth])
    field.setAsBackgroundMesh(least)
