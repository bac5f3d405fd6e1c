"""Face tables of meshes of tetrahedra."""

from fluent_mesh import FluentMesh, MeshError


def tetrahedron_volume(points, cell):
    """Signed volume, positive for a box's corner followed by its neighbours along x, y and z."""
    ax, ay, az = points[cell[0]]
    bx, by, bz = points[cell[1]]
    cx, cy, cz = points[cell[2]]
    dx, dy, dz = points[cell[3]]
    bx, by, bz = bx - ax, by - ay, bz - az
    cx, cy, cz = cx - ax, cy - ay, cz - az
    dx, dy, dz = dx - ax, dy - ay, dz - az
    return ((by * cz - bz * cy) * dx + (bz * cx - bx * cz) * dy + (bx * cy - by * cx) * dz) / 6.0


def build_tetrahedra(points, cells, zone_of, zone_order):
    """Make the face table of a mesh of tetrahedra.

    cells: tuples of four point numbers, in any order. zone_of(p, q, r) gets the coordinates of a boundary
    face's corners and returns its zone's name; zone_order fixes the order of the zones. Raises MeshError for
    other and flat cells, unused points, faces with more than two cells, and unknown or empty zones.

    As in 2D, c0 of an interior face is the cell with the higher number.
    """
    cells = [_positive(points, number, cell) for number, cell in enumerate(cells)]
    interior, boundary = _pair_faces(cells)
    zones = {name: [] for name in zone_order}
    for face in boundary:
        name = zone_of(*(points[node] for node in face[:3]))
        if name not in zones:
            raise MeshError("face {}-{}-{} lies in the unknown zone {!r}".format(*face[:3], name))
        zones[name].append(face)
    for name, faces in zones.items():
        if not faces:
            raise MeshError(f"zone {name!r} has no faces")
    used = {node for cell in cells for node in cell}
    if len(used) != len(points):
        raise MeshError(f"{len(points) - len(used)} points belong to no cell")
    return FluentMesh(points, cells, interior, list(zones.items()))


def _positive(points, number, cell):
    if len(cell) != 4:
        raise MeshError(f"cell {number} has {len(cell)} points")
    volume = tetrahedron_volume(points, cell)
    if volume == 0.0:
        raise MeshError(f"cell {number} is flat")
    a, b, c, d = cell
    return (a, b, c, d) if volume > 0.0 else (a, b, d, c)


def _pair_faces(cells):
    waiting = {}
    interior = []
    for number, (a, b, c, d) in enumerate(cells):
        # Each turns so that its normal points at the fourth point.
        for p, q, r in ((a, b, c), (a, d, b), (a, c, d), (b, d, c)):
            if q < p and q < r:
                p, q, r = q, r, p
            elif r < p:
                p, q, r = r, p, q
            # With the lowest number first, a neighbour names the same face the other way round.
            other = waiting.pop((p, r, q), None)
            if other is not None:
                interior.append((p, q, r, number, other))
            elif (p, q, r) in waiting:
                raise MeshError(f"face {p}-{q}-{r} belongs to cells that overlap")
            else:
                waiting[(p, q, r)] = number
    return interior, [(*face, number, -1) for face, number in waiting.items()]
