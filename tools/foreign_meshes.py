"""Reads mesh files of any format: Fluent's by our own parser, Gmsh's by Gmsh, all others by meshio."""

import contextlib
import io
import itertools
import pathlib
import re
import subprocess
import sys
import tempfile

import numpy as np

from fluent_mesh import MeshError
from fluent_sections import read_fluent
from mesh_table import MOST_ZONES, CellSource, FaceSource, check_numbers, listed, place

# Type names of the library, with middle points or without: dimension and corners.
CORNERS = {
    "line": (1, 2), "line3": (1, 2), "triangle": (2, 3), "triangle6": (2, 3), "triangle7": (2, 3),
    "polygon3": (2, 3), "quad": (2, 4), "quad8": (2, 4), "quad9": (2, 4), "pixel": (2, 4), "polygon4": (2, 4),
    "tetra": (3, 4), "tetra10": (3, 4),
}
BY_CORNERS = {(2, 3): "triangles", (2, 4): "quadrilaterals", (3, 4): "tetrahedra", (3, 5): "pyramids",
              (3, 6): "prisms", (3, 8): "hexahedra", "pyramid": "pyramids", "wedge": "prisms",
              "hexahedron": "hexahedra", "voxel": "hexahedra"}
VOLUMES = re.compile("tetra|hexa|wedge|pyramid|voxel|polyhedron|prism")
TAGS = ("gmsh:physical", "medit:ref", "su2:tag", "CellEntityIds", "boundary", "zone")
TAGS_FOR_SURE = TAGS[:3]
ZERO_IS_NONE = ("gmsh:physical", "medit:ref")
FEW_ELEMENTS = 10  # of them, each may be a zone of its own
MARKER = re.compile(rb"^[ \t]*MARKER_TAG[ \t]*=([^%\r\n]*)[^\r\n]*", re.MULTILINE)
BYTE_ORDER_MARK = b"\xef\xbb\xbf"
# Endings of the formats that meshio reads though they are HDF5 or compressed.
HDF5_READ, GZIP_READ = (".cgns", ".med", ".h5m", ".hmf", ".e", ".exo", ".ex2"), (".vol.gz", ".post.gz", ".dato.gz")
MOST_NEAR = 1000  # points in a box as large as the distance at which points are merged
PAIRS_AT_ONCE = 1 << 20
IN_ONE_PLANE = 1e-9  # of the mesh's extent


class _Content:
    """What a file holds: points (n, 3), {(dimension, corners) or type name: nodes}, [(name, dimension, nodes)]."""

    def __init__(self, points):
        self.points = points
        self.cells = {}
        self.groups = []
        self.notes = []

    def add(self, key, nodes):
        self.cells[key] = np.concatenate([self.cells[key], nodes]) if key in self.cells else nodes


def read_mesh(path, dimension=None, tags=None):
    """A FaceSource or a CellSource. dimension: 2, 3, or None for the highest in the file; tags: the cell data that
    names the boundary, None for what is usual. Raises MeshError and OSError."""
    data = pathlib.Path(path).read_bytes().removeprefix(BYTE_ORDER_MARK)
    start = data[:4096].lstrip()
    if not start:
        raise MeshError("is empty")
    ending = str(path).lower()
    if start.startswith(b"\x89HDF") and not ending.endswith(HDF5_READ):
        raise MeshError("is an HDF5 file; expected a mesh in text or in Fluent's binary sections")
    if start.startswith(b"\x1f\x8b") and not ending.endswith(GZIP_READ):
        raise MeshError("is compressed by gzip; unpack it first")
    if start.startswith(b"("):
        source = read_fluent(data)
        own = source.points.shape[1]
        if dimension not in (None, own):
            raise MeshError(f"is a {own}D mesh")
        return source
    if start.startswith((b"$MeshFormat", b"$NOD", b"$Comments", b"$PhysicalNames")):
        return _cell_source(_read_by_gmsh(path), dimension)
    if ending.endswith(".su2"):
        return _cell_source(_read_markers(data, tags), dimension)
    del data
    return _cell_source(_read_by_meshio(path, tags), dimension)


def _read_by_gmsh(path):
    with tempfile.TemporaryDirectory() as folder:
        # Gmsh goes by the ending of the name.
        link, out = pathlib.Path(folder, "mesh.msh"), pathlib.Path(folder, "mesh.npz")
        link.symlink_to(pathlib.Path(path).resolve())
        script = pathlib.Path(__file__).with_name("gmsh_reader.py")
        done = subprocess.run([sys.executable, str(script), str(link), str(out)], capture_output=True, text=True)
        if done.returncode or not out.exists():
            lines = done.stderr.strip().splitlines()
            said = lines[-1] if done.returncode == 1 and lines else "Gmsh broke off"
            raise MeshError(said.replace(str(link), "the file"))
        with np.load(out) as arrays:
            arrays = dict(arrays)
    content = _Content(arrays["points"])
    for key, nodes in arrays.items():
        if key.startswith("cells_"):
            content.add(tuple(map(int, key.split("_")[1:])), nodes)
    for k, (name, dimension) in enumerate(zip(arrays["names"], arrays["dimensions"])):
        content.groups.append((str(name), int(dimension), arrays[f"group_{k}"]))
    if arrays["quadratic"]:
        content.notes.append(f"{int(arrays['quadratic'])} curved elements lost the points between their corners")
    if arrays["repeated"]:
        content.notes.append(f"{int(arrays['repeated'])} elements stood in the file once more and were kept once")
    return content


def _read_markers(data, tags):
    """A file with markers. The library replaces names of theirs by numbers that others may have: it gets our own."""
    names = {}

    def numbered(marker):
        name = marker[1].decode("utf-8", errors="replace").strip()
        name = f"zone-{int(name)}" if re.fullmatch(r"[+-]?\d+", name) else name
        return b"MARKER_TAG= %d" % names.setdefault(name, len(names) + 1)

    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder, "mesh.su2")
        path.write_bytes(MARKER.sub(numbered, data))
        return _read_by_meshio(path, tags, {(None, number): name for name, number in names.items()})


def _read_by_meshio(path, tags, names=None):
    try:
        import meshio
    except ImportError as error:
        raise MeshError("reading this format needs meshio: install Debian's package python3-meshio") from error
    said = io.StringIO()
    try:
        # It talks about what it meets, and ends the program over files that it does not know.
        with contextlib.redirect_stderr(said), contextlib.redirect_stdout(said):
            mesh = meshio.read(path)
    except (Exception, SystemExit) as error:
        text = str(error) if isinstance(error, Exception) else said.getvalue()
        if isinstance(error, ModuleNotFoundError):
            name = error.name
            raise MeshError(f"this format needs the Python module {name}, Debian's python3-{name}") from error
        reason = " ".join(text.split()) or type(error).__name__
        raise MeshError(f"is no mesh that meshio reads ({reason})") from error
    content = _Content(np.asarray(mesh.points, dtype=float))
    if content.points.ndim != 2 or not len(content.points):
        raise MeshError("holds no points")
    blocks = []
    for block in mesh.cells:
        kind = block.type + str(len(block.data[0])) if block.type == "polygon" and len(block.data) else block.type
        if kind not in CORNERS:
            content.add(kind, np.zeros((len(block.data), 0), dtype=np.int64))
            blocks.append(None)
            continue
        nodes = np.asarray(block.data, dtype=np.int64)
        nodes = nodes[:, [0, 1, 3, 2]] if kind == "pixel" else nodes[:, : CORNERS[kind][1]]
        if len(block.data) and np.shape(block.data)[1] > CORNERS[kind][1]:
            content.notes.append(f"{len(nodes)} curved elements lost the points between their corners")
        content.add(CORNERS[kind], nodes)
        blocks.append((CORNERS[kind][0], nodes))
    content.groups = _sets(mesh, blocks) + _tagged(mesh, blocks, tags, names or {}, content.notes)
    return content


def _sets(mesh, blocks):
    """Named sets of cells."""
    groups = []
    for name, own in mesh.cell_sets.items():
        for block, rows in zip(blocks, own):
            if block is not None and rows is not None and len(rows):
                groups.append((name, block[0], block[1][np.asarray(rows, dtype=np.int64)]))
    return groups


def _tagged(mesh, blocks, tags, names, notes):
    """One group for each number that the cell data gives to faces. names: (dimension or None, number) -> name."""
    whole = [name for name, data in mesh.cell_data.items()
             if all(np.ndim(own) == 1 and (np.equal(np.mod(own, 1), 0)).all() for own in data)]
    if tags is not None and tags not in whole:
        raise MeshError(f"has no cell data {tags} of whole numbers (it has: {', '.join(mesh.cell_data) or 'none'})")
    usual = [tags] if tags else [name for name in TAGS if name in whole] or (whole if len(whole) == 1 else [])
    if not usual or not blocks:
        return []
    array, data = usual[0], [np.asarray(own) for own in mesh.cell_data[usual[0]]]
    if array != tags and array not in TAGS_FOR_SURE and _numbers_elements(data):
        notes.append(f"{array} seems to number the elements and was not taken for zones; --tags {array} takes it")
        return []
    names = {(int(own[1]), int(own[0])): name for name, own in mesh.field_data.items() if np.size(own) == 2} | names
    groups = []
    for block, own in zip(blocks, data):
        if block is None or not len(own):
            continue
        order = np.argsort(own, kind="stable")
        values, first = np.unique(own[order], return_index=True)
        for value, rows in zip(values, np.split(order, first[1:])):
            if value or array not in ZERO_IS_NONE:
                name = names.get((block[0], int(value))) or names.get((None, int(value))) or f"zone-{int(value)}"
                groups.append((name, block[0], block[1][rows]))
    return groups


def _numbers_elements(data):
    """Whether cell data has more numbers than zones can be, or another one for each element."""
    values = np.concatenate(data)
    count = len(np.unique(values))
    return count > MOST_ZONES or count == len(values) > FEW_ELEMENTS


def _cell_source(content, dimension):
    """The cells of the dimension asked for, or of the highest, with the groups of their faces."""
    volumes = [key for key, nodes in content.cells.items() if len(nodes) and _is_volume(key)]
    if dimension is None:
        dimension = 3 if volumes else 2
    if dimension == 3 and not volumes:
        raise MeshError("holds a surface at most and no tetrahedra")
    odd = [key for key in volumes if key != (3, 4)] if dimension == 3 else _odd_faces(content)
    if odd:
        found = ", ".join(f"{len(content.cells[key])} {BY_CORNERS.get(key, key)}" for key in odd)
        wanted = "tetrahedra" if dimension == 3 else "triangles and quadrilaterals"
        raise MeshError(f"holds {found}; the program needs {wanted} only")
    cells = {key[1]: nodes for key, nodes in content.cells.items() if isinstance(key, tuple) and key[0] == dimension}
    merged = {}
    for name, own, faces in content.groups:
        if own == dimension - 1 and len(faces) and faces.shape[1] == dimension:
            merged.setdefault(name, []).append(faces)
    groups = [(name, np.concatenate(faces)) for name, faces in merged.items()]
    regions = list(dict.fromkeys(name for name, own, faces in content.groups if own == dimension and len(faces)))
    notes = content.notes + ([f"the regions {listed(regions)} become one"] if len(regions) > 1 else [])
    points = np.pad(content.points, ((0, 0), (0, 3 - content.points.shape[1])))
    check_numbers(CellSource(points, cells, groups))
    if dimension == 2 and cells:
        used = np.unique(np.concatenate([nodes.ravel() for nodes in cells.values()]))
        if not np.isfinite(points[used]).all():
            raise MeshError("a cell has a point whose coordinates are no numbers")
        points = points[:, _plane(points[used], notes)]
    return CellSource(points, cells, groups, notes)


def _is_volume(key):
    return key[0] == 3 if isinstance(key, tuple) else VOLUMES.search(key) is not None


def _odd_faces(content):
    return [key for key, nodes in content.cells.items() if len(nodes) and str(key).startswith("polygon")]


def _plane(points, notes):
    """The two axes of the plane that the points lie in."""
    low, high = points.min(axis=0), points.max(axis=0)
    thin = high - low <= IN_ONE_PLANE * (high - low).max()
    if thin[2]:
        return [0, 1]
    if not thin.any():
        raise MeshError(f"is a surface in space, from {place(low)} to {place(high)}, that lies in no plane along the "
                        "axes")
    axes = [axis for axis in range(3) if axis != int(thin.argmax())]
    notes.append(f"{'xyz'[axes[0]]} and {'xyz'[axes[1]]} of the file become x and y")
    return axes


def merge_points(source, distance):
    """Makes one point of those at the same place, give or take the distance."""
    if isinstance(source, FaceSource):
        raise MeshError("--merge goes with files of cells; this one holds faces")
    from mesh_zones import linked

    points = source.points
    finite = np.flatnonzero(np.isfinite(points).all(axis=1))
    if distance:
        a, b = _near_pairs(points[finite], distance)
    else:
        _, first, place_of = np.unique(points[finite] + 0.0, axis=0, return_index=True, return_inverse=True)
        a, b = np.arange(len(finite)), first[place_of]
    number = linked(len(points), finite[a], finite[b])
    gone = int((number != np.arange(len(points))).sum())
    source.cells = {n: number[nodes] for n, nodes in source.cells.items()}
    source.groups = [(name, number[faces]) for name, faces in source.groups]
    source.notes.append(f"{gone} points merged into others")
    return source


def _near_pairs(points, distance):
    """All pairs of points that are no further apart: those of a box of that side, and of it and a neighbour."""
    key, strides = np.zeros(len(points), dtype=np.int64), []
    for axis in range(points.shape[1]):
        boxes = np.clip(np.floor(points[:, axis] / distance), -1e300, 1e300)
        values, own = np.unique(boxes, return_inverse=True)
        # Numbers from 1 without wide gaps; those of neighbours differ by 1, and only those.
        number = np.cumsum(np.append(1, np.minimum(np.diff(values), 2.0))).astype(np.int64)
        strides.append(1)
        strides[:-1] = [stride * (number[-1] + 2) for stride in strides[:-1]]
        key = key * (number[-1] + 2) + number[own]
    order = np.argsort(key, kind="stable")
    boxes, start, count = np.unique(key[order], return_index=True, return_counts=True)
    if count.max(initial=0) > MOST_NEAR:
        raise MeshError(f"--merge {distance:g} reaches over {count.max()} points and more; choose a smaller distance")
    pairs = []
    for steps in itertools.product((0, 1, -1), repeat=len(strides)):
        if steps < (0,) * len(strides):
            continue  # the same two boxes, seen from the other
        near = boxes + sum(step * stride for step, stride in zip(steps, strides))
        at = np.minimum(np.searchsorted(boxes, near), len(boxes) - 1)
        one = np.flatnonzero(boxes[at] == near)
        other = at[one]
        sizes = count[one] * count[other]
        for part in np.split(np.arange(len(one)), np.flatnonzero(np.diff(np.cumsum(sizes) // PAIRS_AT_ONCE)) + 1):
            size, wide = sizes[part], np.repeat(count[other[part]], sizes[part])
            k = np.arange(size.sum()) - np.repeat(np.cumsum(size) - size, size)
            a = order[np.repeat(start[one[part]], size) + k // wide]
            b = order[np.repeat(start[other[part]], size) + k % wide]
            close = (((points[a] - points[b]) / distance) ** 2).sum(axis=1) <= 1.0
            pairs.append((a[close], b[close]))
    return (np.concatenate(column) for column in zip(*pairs))
