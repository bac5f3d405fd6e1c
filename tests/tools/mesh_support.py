"""What the tests of the mesh companion share: running it, reading its files a second way, odd Fluent files."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import numpy as np

import strict_reader

TOOL = pathlib.Path(__file__).resolve().parents[2] / "tools" / "fluvane-mesh"

# A square on the left, two triangles on the right, as in the tests of the face table.
POINTS = [(0.0, 0.0), (1.0, 0.0), (1.0, 1.0), (0.0, 1.0), (2.0, 0.0), (2.0, 1.0)]
QUADS, TRIANGLES = [(0, 1, 2, 3)], [(1, 4, 2), (4, 5, 2)]


def run(*arguments, **environment):
    command = [sys.executable, str(TOOL), *map(str, arguments)]
    return subprocess.run(command, capture_output=True, text=True, env={**os.environ, **environment})


class Opened:
    """A mesh as the program's own reader and geometry take it."""

    def __init__(self, dimension, path):
        command = [os.environ["FLUVANE_MESH_PROBE"], str(dimension), str(path)]
        done = subprocess.run(command, capture_output=True, text=True)
        if done.returncode:
            raise AssertionError(f"the program does not open it: {done.stderr}")
        lines = [line.split(" ", 1) for line in done.stdout.splitlines()]
        self.zones = [(own.split(" ", 1)[1], int(own.split()[0])) for key, own in lines if key == "zone"]
        numbers = {key: float(own) for key, own in lines if key != "zone"}
        self.cells, self.faces, self.interior = (int(numbers[key]) for key in ("cells", "faces", "interior"))
        self.dx, self.measure = numbers["dx"], numbers["measure"]


def shapes_of(parsed):
    """The mesh without its numbers: cells and each zone's faces as sets of points. On the way each cell's faces
    are checked to close around it and to turn to it."""
    if parsed.dimension == 2:
        cells = strict_reader.cell_polygons(parsed)
        if min(strict_reader.area(parsed, polygon) for polygon in cells) <= 0.0:
            raise AssertionError("a cell does not lie to the left of its faces")
    else:
        cells = [{n for face in faces for n in face} for faces in strict_reader.tetrahedra(parsed)]

    def places(nodes):
        return frozenset(parsed.points[n - 1] for n in nodes)

    if any(face[-2] <= face[-1] for face in parsed.interior):
        raise AssertionError("an interior face names the cell with the lower number first")
    zones = {name: {places(face[:-2]) for face in faces} for name, faces in parsed.zones}
    return {places(cell) for cell in cells}, zones


class MeshTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.out = self.folder / "out.msh"

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path

    def convert(self, path, *options):
        """Converts a file; returns what came out, read to the letter, and what was said. The program opens it."""
        done = run("convert", path, self.out, *options)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        parsed = strict_reader.parse(self.out.read_bytes())
        opened = Opened(parsed.dimension, self.out)
        self.assertEqual(opened.cells, len(parsed.cell_codes))
        self.assertEqual(opened.faces, len(parsed.faces))
        self.assertEqual(opened.zones, [(name, len(faces)) for name, faces in parsed.zones])
        return parsed, done.stdout

    def refuse(self, path, text, *options):
        """One line that names the file and the reason, exit code 1, and no file."""
        done = run("convert", path, self.out, *options)
        self.assertEqual(done.returncode, 1, done.stdout)
        self.assertRegex(done.stderr, text)
        self.assertEqual(done.stderr.count("\n"), 1, done.stderr)
        self.assertTrue(done.stderr.startswith(f"fluvane-mesh: {path}: "), done.stderr)
        self.assertEqual([p.name for p in self.folder.iterdir() if p.name.startswith(("out", "tmp"))], [])


class OddFluent:
    """Writes a mesh in layouts other than the program's.

    mesh: an object with points, interior, zones as tools/fluent_mesh.py has them. comments: whether comments stand
    before the sections; upper: upper-case numbers; mixed: type 0 and a leading node count; binary: sections 3010
    and 3013; interior_at: the place of the interior zone among the others; parts: number of interior zones; turn:
    whether every second face is written the other way round, with its cells swapped on the boundary.
    """

    def __init__(self, mesh, *, comments=False, upper=False, mixed=False, binary=False, interior_at=0, parts=1,
                 turn=False, names=True):
        self.mesh = mesh
        self.comments, self.upper, self.mixed, self.binary = comments, upper, mixed, binary
        self.interior_at, self.parts, self.turn, self.names = interior_at, parts, turn, names

    def number(self, value):
        return f"{value:X}" if self.upper else f"{value:x}"

    def content(self):
        mesh, dimension = self.mesh, self.mesh.dimension
        out = [b'(0 GAMBIT to Fluent File)\n(0 "Dimension:")\n' if self.comments else b"", b"(2 %d)\n" % dimension]
        out.append(self.section("10", (0, 1, len(mesh.points), 1, dimension), None))
        half = len(mesh.points) // 2
        for zone, (first, points) in enumerate(((1, mesh.points[:half]), (half + 1, mesh.points[half:])), 1):
            body = np.array(points, dtype="<f8").tobytes() if self.binary else self.lines(points, repr)
            out.append(self.section("10", (zone, first, first + len(points) - 1, 1, dimension), body))
        out.append(self.section("12", (0, 1, len(mesh.cells), 0), None))
        total = len(mesh.interior) + sum(len(faces) for _, faces in mesh.zones)
        out.append(self.section("13", (0, 1, total, 0), None))
        cut = -(-len(mesh.interior) // self.parts)
        zones = [(name, 3, faces) for name, faces in mesh.zones]
        zones[self.interior_at : self.interior_at] = [
            (f"inside{k}", 2, mesh.interior[k * cut : (k + 1) * cut]) for k in range(self.parts)
        ]
        first = 1
        for zone, (_, kind, faces) in enumerate(zones, 9):
            shape = 0 if self.mixed else dimension
            body = self.face_body([self.turned(k, face) for k, face in enumerate(faces)], dimension)
            out.append(self.section("13", (zone, first, first + len(faces) - 1, kind, shape), body))
            first += len(faces)
        if self.names:
            out.append(b"(39 (2 fluid water 1)(\n(material . water)\n))\n")
            for zone, (name, kind, _) in enumerate(zones, 9):
                out.append(f"(39 ({zone} {'interior' if kind == 2 else 'wall'} {name} 1)())\n".encode())
        return b"".join(out)

    def turned(self, k, face):
        if not self.turn or k % 2:
            return face
        nodes, (c0, c1) = list(face[:-2]), face[-2:]
        nodes[:2] = nodes[1::-1]
        # On the boundary turning alone would be an error of the file; the cell goes to the other side.
        return (*nodes, c1, c0)

    def face_body(self, faces, dimension):
        rows = [([dimension] if self.mixed else []) + [n + 1 for n in face] for face in faces]
        return np.array(rows, dtype="<i4").tobytes() if self.binary else self.lines(rows, self.number)

    @staticmethod
    def lines(rows, write):
        return ("\n".join(" ".join(map(write, row)) for row in rows) + "\n").encode()

    def section(self, index, header, body):
        words = " ".join(self.number(n) for n in header)
        comment = b'(0 "Some section:")\n' if self.comments else b""
        if body is None:
            return comment + f"({index} ({words}))\n".encode()
        if self.binary:
            end = f")\nEnd of Binary Section   30{index})\n"
            return comment + f"(30{index} ({words})(".encode() + body + end.encode()
        return comment + f"({index}({words})\n(\n".encode() + body + b"))\n"
