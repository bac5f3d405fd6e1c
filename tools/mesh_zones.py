"""Boundary zones: names for faces that have none, names that the layout can hold, and parts that hang together."""

import re

import numpy as np

from fluent_mesh import MeshError
from mesh_table import MOST_ZONES

SIDES = ("left", "right", "bottom", "top", "back", "front")  # low and high end of x, y and z
ON_SIDE = 1e-6  # of the mesh's extent
FLAT_SHARE, FLAT_FACES = 0.5, 3  # what makes a flat end of a piece that is no box: share of the side, and faces


def linked(count, a, b):
    """For each of `count` things the lowest number among those that the pairs (a, b) tie it to."""
    label = np.arange(count)
    while True:
        low = np.minimum(label[a], label[b])
        new = label.copy()
        np.minimum.at(new, label[a], low)
        np.minimum.at(new, label[b], low)
        while (new != new[new]).any():
            new = new[new]
        if (new == label).all():
            return label
        label = new


def part_count(table):
    """How many parts the cells make that have no face in common."""
    inner = table.c1 >= 0
    return len(np.unique(linked(len(table.cells), table.c0[inner], table.c1[inner])))


def finish_zones(table):
    """Names every boundary face, drops zones without faces, and makes all names fit the layout."""
    _name_the_rest(table)
    boundary = table.c1 < 0
    counts = np.bincount(table.zone[boundary], minlength=len(table.zone_names))
    number = np.append(np.cumsum(counts > 0) - 1, -1)
    table.zone = np.where(boundary, number[table.zone], -1)
    names = [name for name, count in zip(table.zone_names, counts) if count]
    if len(names) > MOST_ZONES:
        raise MeshError(f"has {len(names)} boundary zones, and the program holds {MOST_ZONES}")
    table.zone_names = _fit(names, table.notes)


def _name_the_rest(table):
    """Faces without a zone: the sides of a box by their place, the rest by what hangs together."""
    rest = np.flatnonzero((table.c1 < 0) & (table.zone < 0))
    if not len(rest):
        return
    some_named = ((table.c1 < 0) & (table.zone >= 0)).any()
    sides, shares = _box_sides(table, rest)
    piece = _pieces(table, rest)
    found = []
    taken = set(table.zone_names)
    for label in np.unique(piece):
        own = piece == label
        on_box = own & (sides >= 0)
        # A curved boundary touches the box here and there; a box is made of it.
        if 2 * on_box.sum() <= own.sum():
            on_box &= _flat_ends(sides[on_box], shares[on_box])[sides]
        found += [(SIDES[k], rest[on_box & (sides == k)]) for k in np.unique(sides[on_box])]
        own &= ~on_box
        if own.any():
            found.append(("wall", rest[own]))
    merged = {}
    for name, faces in found:
        if name in SIDES and name in merged:
            merged[name] = np.concatenate([merged[name], faces])
        else:
            merged[_free(name, taken | merged.keys())] = faces
    for name, faces in merged.items():
        table.zone[faces] = len(table.zone_names)
        table.zone_names = table.zone_names + [name]
    what = "boundary faces" if not some_named else "other boundary faces"
    table.notes.append(f"{len(rest)} {what} had no name; their zones: {', '.join(merged)}")


def _box_sides(table, faces):
    """The side of the box around the mesh that each face lies on, -1 for none, and how much of it the face covers."""
    corner = table.points[table.nodes[faces]]
    held = table.points[np.unique(table.nodes)]  # a file may hold points that no cell uses
    low, high = held.min(axis=0), held.max(axis=0)
    near = ON_SIDE * (high - low).max()
    side, share = np.full(len(faces), -1), np.zeros(len(faces))
    for axis in range(table.dimension):
        for end, at in ((0, low[axis]), (1, high[axis])):
            on = (np.abs(corner[:, :, axis] - at) <= near).all(axis=1)
            side[on] = 2 * axis + end
            edge = np.delete(corner[on, 1:] - corner[on, :1], axis, axis=2) / np.delete(high - low, axis)
            share[on] = np.abs(edge[:, 0, 0] if table.dimension == 2 else 0.5 * np.linalg.det(edge))
    return side, share


def _flat_ends(sides, shares):
    """For each side of the box whether these faces make a flat end of it, as at the ends of a wavy channel."""
    covered = np.bincount(sides, weights=shares, minlength=len(SIDES)) >= FLAT_SHARE - ON_SIDE
    return covered & (np.bincount(sides, minlength=len(SIDES)) >= FLAT_FACES)


def _pieces(table, faces):
    """A number for each face, the same for those that hang together by their nodes."""
    nodes = table.nodes[faces]
    pairs = [(nodes[:, 0], nodes[:, k]) for k in range(1, nodes.shape[1])]
    a, b = (np.concatenate(column) for column in zip(*pairs))
    return linked(len(table.points), a, b)[nodes[:, 0]]


def _free(name, taken):
    number, free = 1, name
    while free in taken:
        number += 1
        free = f"{name}-{number}"
    return free


def _fit(names, notes):
    """Names as single words without brackets and quotes, each once."""
    fitted = []
    for name in names:
        word = re.sub(r"[\s()\"\x00-\x1f\x7f]+", "_", name.strip()).strip("_") or "zone"
        word = _free(word, set(fitted))
        if word != name:
            notes.append(f"zone {name!r} is called {word} in the file")
        fitted.append(word)
    return fitted
