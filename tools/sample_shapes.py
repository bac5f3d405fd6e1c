"""The domains of the sample cases as points and cells: squares, a channel, a slab and an annulus."""

from decimal import Decimal, localcontext

from fluent_mesh import MeshError, build_mesh, number_points_by_use, sort_along_curve
from gmsh_session import gmsh_session

CHANNEL_LENGTH = 6  # channel heights
SLAB_LENGTH = 5  # slab heights
INNER_RADIUS = Decimal("0.9")
OUTER_RADIUS = Decimal("3")
PI = Decimal("3.14159265358979323846264338327950288419716939937510")
TOLERANCE = 1e-9


class Rectangle:
    """A rectangle of height 1 with its lower left corner in the origin and one zone a side."""

    def __init__(self, length, bottom, left, right, top, zone_order):
        self.length = length
        self.sides = {"bottom": bottom, "left": left, "right": right, "top": top}
        self.zone_order = zone_order

    def zone_of(self, p, q):
        x, y = 0.5 * (p[0] + q[0]), 0.5 * (p[1] + q[1])
        distances = {"bottom": abs(y), "left": abs(x), "right": abs(x - self.length), "top": abs(y - 1.0)}
        side = min(distances, key=distances.get)
        return self.sides[side] if distances[side] < TOLERANCE else None

    def quads(self, cells):
        """Squares with 1 / cells a side, row by row."""
        nx, ny = self.length * cells, cells
        points = [(i / cells, j / cells) for j in range(ny + 1) for i in range(nx + 1)]
        corner = (0, 1, nx + 2, nx + 1)
        return points, [tuple(j * (nx + 1) + i + c for c in corner) for j in range(ny) for i in range(nx)]

    def draw(self, gmsh, size):
        kernel = gmsh.model.geo
        corners = [(0, 0), (self.length, 0), (self.length, 1), (0, 1)]
        tags = [kernel.addPoint(x, y, 0, size) for x, y in corners]
        lines = [kernel.addLine(tags[i], tags[(i + 1) % 4]) for i in range(4)]
        kernel.addPlaneSurface([kernel.addCurveLoop(lines)])

    def edge_length(self, cells):
        return 1.0 / cells


class Annulus:
    """The ring between two circles about the origin."""

    zone_order = ("inner", "outer")

    def zone_of(self, p, q):
        radius = 0.5 * ((p[0] ** 2 + p[1] ** 2) ** 0.5 + (q[0] ** 2 + q[1] ** 2) ** 0.5)
        if abs(radius - float(INNER_RADIUS)) < TOLERANCE:
            return "inner"
        return "outer" if abs(radius - float(OUTER_RADIUS)) < TOLERANCE else None

    def quads(self, cells):
        """Rings of equal width, three times as many cells round as across, ring by ring."""
        around = 3 * cells
        points = []
        with localcontext() as context:
            context.prec = 40
            directions = [_direction(Decimal(i) / around) for i in range(around)]
            for ring in range(cells + 1):
                radius = INNER_RADIUS + (OUTER_RADIUS - INNER_RADIUS) * ring / cells
                points += [(float(radius * cosine), float(radius * sine)) for cosine, sine in directions]
        quads = []
        for ring in range(cells):
            for i in range(around):
                here, after = ring * around + i, ring * around + (i + 1) % around
                quads.append((here, here + around, after + around, after))
        return points, quads

    def draw(self, gmsh, size):
        kernel = gmsh.model.geo
        centre = kernel.addPoint(0, 0, 0, size)
        loops = []
        for radius in (float(OUTER_RADIUS), float(INNER_RADIUS)):
            ends = [(radius, 0), (0, radius), (-radius, 0), (0, -radius)]
            tags = [kernel.addPoint(x, y, 0, size) for x, y in ends]
            arcs = [kernel.addCircleArc(tags[i], centre, tags[(i + 1) % 4]) for i in range(4)]
            loops.append(kernel.addCurveLoop(arcs))
        kernel.addPlaneSurface(loops)

    def edge_length(self, cells):
        return float(OUTER_RADIUS - INNER_RADIUS) / cells


def _direction(turns):
    """Cosine and sine of an angle in turns, to 40 digits: the same bytes come out on every machine, which
    the mathematics library's sine does not promise."""
    quarter, rest = divmod(turns * 4, 1)
    if quarter == 0 and rest == 0:
        return Decimal(1), Decimal(0)
    cosine, sine = Decimal(1), Decimal(0)
    angle = rest * PI / 2
    term, n = Decimal(1), 0
    while abs(term) > Decimal("1e-45") and angle:
        n += 1
        term = term * angle / n
        if n % 2:
            sine += term if n % 4 == 1 else -term
        else:
            cosine += term if n % 4 == 0 else -term
    for _ in range(int(quarter)):
        cosine, sine = -sine, cosine
    return cosine, sine


SHAPES = {
    # The moving wall comes last: the wizard's velocity boxes keep what was typed on the page before.
    "cavity": Rectangle(1, "bottom", "left", "right", "lid", ("bottom", "left", "right", "lid")),
    "heated-cavity": Rectangle(1, "bottom", "left", "right", "top", ("left", "right", "bottom", "top")),
    "melting-cavity": Rectangle(1, "bottom", "left", "right", "top", ("left", "right", "bottom", "top")),
    # Five heights long: adiabatic walls slow conduction along them, which a lower slab would show.
    "melting-slab": Rectangle(SLAB_LENGTH, "bottom", "left", "right", "top", ("left", "right", "bottom", "top")),
    "channel": Rectangle(CHANNEL_LENGTH, "bottom", "inlet", "outlet", "top", ("bottom", "top", "inlet", "outlet")),
    "annulus": Annulus(),
}


def structured_mesh(shape_name, cells):
    """Quadrilaterals, `cells` of them across the square, the channel's or slab's height or the annulus' gap."""
    shape = SHAPES[shape_name]
    points, quads = shape.quads(cells)
    return build_mesh(points, quads, shape.zone_of, shape.zone_order)


def triangle_mesh(shape_name, cells):
    """Free triangles by Gmsh, their edges about as long as those of the quadrilaterals would be."""
    shape = SHAPES[shape_name]
    with gmsh_session("a mesh of free triangles") as gmsh:
        gmsh.option.setNumber("Mesh.Algorithm", 6)  # frontal: the most regular triangles
        gmsh.option.setNumber("Mesh.Smoothing", 10)
        gmsh.model.add(shape_name)
        shape.draw(gmsh, shape.edge_length(cells))
        gmsh.model.geo.synchronize()
        gmsh.model.mesh.generate(2)
        points, triangles = _read_gmsh(gmsh)
    points, triangles = number_points_by_use(points, sort_along_curve(points, triangles))
    return build_mesh(points, triangles, shape.zone_of, shape.zone_order)


def _read_gmsh(gmsh):
    tags, coordinates, _ = gmsh.model.mesh.getNodes()
    # Gmsh leaves rounding noise such as 1e-17 on straight sides.
    points = [(round(float(coordinates[3 * i]), 12), round(float(coordinates[3 * i + 1]), 12)) for i in range(len(tags))]
    number = {int(tag): i for i, tag in enumerate(tags)}
    kinds, _, node_tags = gmsh.model.mesh.getElements(2)
    if [int(kind) for kind in kinds] != [2]:
        raise MeshError(f"Gmsh made other cells than triangles: types {list(kinds)}")
    nodes = [number[int(tag)] for tag in node_tags[0]]
    return points, [tuple(nodes[i : i + 3]) for i in range(0, len(nodes), 3)]
