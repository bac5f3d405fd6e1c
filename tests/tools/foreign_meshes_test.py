"""Files of Gmsh and of what meshio reads, made by these libraries, converted and opened."""

import contextlib
import io
import math
import time
import types
import unittest

import gmsh
import meshio
import numpy as np

import foreign_meshes
import mesh_support
from gmsh_session import gmsh_session
from mesh_support import POINTS, QUADS, TRIANGLES
from mesh_table import CellSource
from mesh_zones import linked

SQUARE = ((0, 0), (1, 0), (1, 1), (0, 1))
GMSH_FORMATS = ((1.0, 0), (2.2, 0), (2.2, 1), (4.0, 0), (4.1, 0), (4.1, 1))


def names_of(parsed):
    return [name for name, _ in parsed.zones]


def area(parsed):
    return sum(mesh_support.strict_reader.area(parsed, cell)
               for cell in mesh_support.strict_reader.cell_polygons(parsed))


def draw_square(size=0.3, kernel=gmsh.model.geo):
    """A square; returns its sides, bottom, right, top, left, and its surface."""
    corners = [kernel.addPoint(x, y, 0, size) for x, y in SQUARE]
    lines = [kernel.addLine(corners[i], corners[(i + 1) % 4]) for i in range(4)]
    surface = kernel.addPlaneSurface([kernel.addCurveLoop(lines)])
    kernel.synchronize()
    return lines, surface


def name(dimension, tags, text):
    gmsh.model.setPhysicalName(dimension, gmsh.model.addPhysicalGroup(dimension, tags), text)


class Gmsh(mesh_support.MeshTest):
    @contextlib.contextmanager
    def file(self, dimension=2, version=4.1, binary=0, every=0):
        """The block draws, Gmsh meshes and writes; the file is `self.path`."""
        self.path = self.folder / "in.msh"
        with gmsh_session("a test"):
            gmsh.model.add("test")
            yield
            gmsh.model.mesh.generate(dimension)
            for option, value in (("MshFileVersion", version), ("Binary", binary), ("SaveAll", every)):
                gmsh.option.setNumber("Mesh." + option, value)
            gmsh.write(str(self.path))
            self.kinds = gmsh.model.mesh.getElementTypes(dimension)

    def test_all_versions_in_the_plane_and_groups_keep_their_names(self):
        for version, binary in GMSH_FORMATS:
            with self.subTest(version=version, binary=binary):
                with self.file(version=version, binary=binary):
                    lines, surface = draw_square()
                    name(1, lines[3:], "inlet")
                    name(1, lines[1:2], "outlet")
                    name(1, [lines[0], lines[2]], "solid walls")
                    name(2, [surface], "fluid")
                parsed, _ = self.convert(self.path)
                # Version 1 has numbers only.
                named = ["inlet", "outlet", "solid_walls"] if version > 1.0 else ["zone-1", "zone-2", "zone-3"]
                self.assertEqual(sorted(names_of(parsed)), sorted(named))
                self.assertAlmostEqual(area(parsed), 1.0)
                sides = dict(mesh_support.shapes_of(parsed)[1])
                self.assertTrue(all(x == 0.0 for face in sides[named[0]] for x, _ in face))
                self.assertTrue(all(x == 1.0 for face in sides[named[1]] for x, _ in face))

    def test_all_versions_of_tetrahedra(self):
        for version, binary in GMSH_FORMATS:
            with self.subTest(version=version, binary=binary):
                with self.file(3, version, binary):
                    gmsh.model.occ.addBox(0, 0, 0, 1, 1, 1)
                    gmsh.model.occ.synchronize()
                    gmsh.option.setNumber("Mesh.MeshSizeMax", 0.5)
                    gmsh.model.addPhysicalGroup(2, [1], 7)
                    gmsh.model.addPhysicalGroup(2, [2, 3, 4, 5, 6], 8)
                    gmsh.model.addPhysicalGroup(3, [1], 9)
                parsed, _ = self.convert(self.path)
                self.assertEqual(sorted(names_of(parsed)), ["zone-7", "zone-8"])
                self.assertTrue(all(x == 0.0 for f in mesh_support.shapes_of(parsed)[1]["zone-7"] for x, _, _ in f))
                self.assertAlmostEqual(mesh_support.Opened(3, self.out).measure, 1.0)

    def test_quadrilaterals_among_triangles(self):
        with self.file():
            _, surface = draw_square(0.1)
            gmsh.option.setNumber("Mesh.RecombinationAlgorithm", 0)
            gmsh.model.mesh.setRecombine(2, surface)
        parsed, said = self.convert(self.path)
        self.assertEqual(set(parsed.cell_codes), {1, 3})
        self.assertRegex(said, r"cells +\d+ triangles, \d+ quadrilaterals")

    def test_boundary_without_groups_goes_by_the_sides_of_the_box(self):
        with self.file():
            draw_square()
        parsed, said = self.convert(self.path)
        self.assertEqual(names_of(parsed), ["left", "right", "bottom", "top"])
        self.assertIn("16 boundary faces had no name; their zones: left, right, bottom, top", said)

    def test_named_and_unnamed_boundaries_live_side_by_side(self):
        with self.file(every=1):
            lines, _ = draw_square()
            name(1, lines[2:3], "lid")
        self.assertEqual(names_of(self.convert(self.path)[0]), ["lid", "left", "right", "bottom"])

    def test_round_boundaries_without_groups_are_walls_one_each(self):
        with self.file():
            disk = gmsh.model.occ.addDisk(0, 0, 0, 1, 1)
            hole = gmsh.model.occ.addDisk(0, 0, 0, 0.4, 0.4)
            gmsh.model.occ.cut([(2, disk)], [(2, hole)])
            gmsh.model.occ.synchronize()
            gmsh.option.setNumber("Mesh.MeshSizeMax", 0.2)
        parsed, _ = self.convert(self.path)
        zones = {name: {round(math.hypot(*p), 6) for face in faces for p in face}
                 for name, faces in mesh_support.shapes_of(parsed)[1].items()}
        self.assertEqual(sorted(map(sorted, zones.values())), [[0.4], [1.0]])
        self.assertEqual(list(zones), ["wall", "wall-2"])

    def two_halves(self):
        """A square of two surfaces whose common side is the group "between"."""
        kernel = gmsh.model.occ
        left, right = ((2, kernel.addRectangle(x, 0, 0, 1, 1)) for x in (0, 1))
        surfaces, _ = kernel.fragment([left], [right])
        kernel.synchronize()
        gmsh.option.setNumber("Mesh.MeshSizeMax", 0.25)
        at = [tag for _, tag in gmsh.model.getEntitiesInBoundingBox(0.9, -1, -1, 1.1, 2, 1, 1)]
        rest = [tag for _, tag in gmsh.model.getEntities(1) if tag not in at]
        name(1, at, "between")
        name(1, rest, "outside")
        for k, (_, tag) in enumerate(surfaces):
            name(2, [tag], f"half{k}")

    def test_group_between_cells_becomes_interior_and_this_is_said(self):
        with self.file():
            self.two_halves()
        parsed, said = self.convert(self.path)
        self.assertEqual(names_of(parsed), ["outside"])
        self.assertIn("between: 5 faces between cells, now interior faces", said)
        self.assertIn("the regions half0, half1 become one", said)

    def test_group_between_cells_becomes_a_wall_of_two_sides_if_asked(self):
        with self.file():
            self.two_halves()
        parsed, said = self.convert(self.path, "--wall", "between")
        self.assertEqual(names_of(parsed), ["between", "outside", "between-shadow"])
        _, zones = mesh_support.shapes_of(parsed)
        self.assertEqual(zones["between"], zones["between-shadow"])
        self.assertIn("the cells make 2 parts", said)
        self.refuse_after_cleaning("has no group betwen", "--wall", "betwen")

    def refuse_after_cleaning(self, text, *options):
        self.out.unlink()
        self.refuse(self.path, text, *options)

    def test_curved_elements_keep_their_corners(self):
        with self.file():
            draw_square()
            gmsh.option.setNumber("Mesh.ElementOrder", 2)
        parsed, said = self.convert(self.path)
        self.assertNotIn(2, self.kinds)
        self.assertAlmostEqual(area(parsed), 1.0)
        self.assertIn("lost the points between their corners", said)

    def test_elements_written_once_for_each_of_their_groups_are_kept_once(self):
        for dimension, cells in ((2, "triangles"), (3, "tetrahedra")):
            with self.file(dimension, 2.2):
                lines, surface = draw_square()
                if dimension == 3:
                    gmsh.model.geo.extrude([(2, surface)], 0, 0, 1)
                    gmsh.model.geo.synchronize()
                for text in ("fluid", "everything"):
                    name(dimension, [1], text)
                name(dimension - 1, lines[:1], "floor")
            parsed, said = self.convert(self.path)
            self.assertAlmostEqual(mesh_support.Opened(dimension, self.out).measure, 1.0)
            self.assertRegex(said, rf"cells +{len(parsed.cell_codes)} {cells}\n")
            self.assertIn(f"{len(parsed.cell_codes)} elements stood in the file once more and were kept once", said)

    def test_sides_are_named_though_no_cell_uses_the_centre_of_an_arc(self):
        with self.file():
            # The top is an arc around a point far below, which Gmsh writes as a point of the mesh.
            kernel = gmsh.model.geo
            corners = [kernel.addPoint(x, y, 0, 0.1) for x, y in SQUARE]
            lines = [kernel.addLine(corners[i], corners[i + 1]) for i in (0, 1)]
            lines.append(kernel.addCircleArc(corners[2], kernel.addPoint(0.5, -2.0, 0), corners[3]))
            lines.append(kernel.addLine(corners[3], corners[0]))
            kernel.addPlaneSurface([kernel.addCurveLoop(lines)])
            kernel.mesh.setTransfiniteCurve(lines[2], 9)
            kernel.synchronize()
        self.assertIn("\n0.5 -2 0\n", self.path.read_text())
        self.assertEqual(names_of(self.convert(self.path)[0]), ["left", "right", "bottom", "wall"])

    def test_other_planes_are_turned_into_x_and_y(self):
        with self.file():
            draw_square()
            gmsh.model.geo.rotate([(2, 1)], 0, 0, 0, 1, 0, 0, math.pi / 2)
            gmsh.model.geo.synchronize()
        parsed, said = self.convert(self.path)
        self.assertIn("x and z of the file become x and y", said)
        self.assertAlmostEqual(area(parsed), 1.0)

    def test_plane_part_of_a_file_with_tetrahedra_if_asked(self):
        with self.file(3):
            lines, surface = draw_square()
            gmsh.model.geo.extrude([(2, surface)], 0, 0, 1)
            gmsh.model.geo.synchronize()
        self.convert(self.path)
        self.refuse_after_cleaning("lies in no plane", "--dimension", "2")

    def test_hexahedra_and_prisms_are_refused_by_name(self):
        for recombine, found in ((True, r"\d+ hexahedra"), (False, r"\d+ prisms")):
            with self.file(3):
                _, surface = draw_square()
                gmsh.model.geo.mesh.setTransfiniteSurface(surface)
                if recombine:
                    gmsh.model.geo.mesh.setRecombine(2, surface)
                gmsh.model.geo.extrude([(2, surface)], 0, 0, 1, [2], recombine=True)
                gmsh.model.geo.synchronize()
            self.refuse(self.path, f"holds {found}; the program needs tetrahedra only")

    def test_surfaces_in_space_are_refused(self):
        with self.file():
            gmsh.model.occ.addSphere(0, 0, 0, 1)
            gmsh.model.occ.synchronize()
        self.refuse(self.path, "surface in space, .* lies in no plane")
        self.refuse(self.path, "holds a surface at most and no tetrahedra", "--dimension", "3")

    def test_damaged_files_are_refused_in_one_line(self):
        with self.file(binary=1):
            draw_square()
        data = self.path.read_bytes()
        for share in (0.1, 0.4, 0.7):
            self.refuse(self.write("cut.msh", data[: int(share * len(data))]), "Gmsh|holds no|names a point")


class Others(mesh_support.MeshTest):
    def small(self, points=POINTS, lines=True, **data):
        """The square and the two triangles, with the lower sides tagged 5 and the upper ones 6."""
        points = np.pad(np.array(points), ((0, 0), (0, 3 - len(points[0]))))
        blocks = [("quad", np.array(QUADS)), ("triangle", np.array(TRIANGLES))]
        if not lines:
            return meshio.Mesh(points, blocks)
        tags = [np.zeros(1, int), np.zeros(2, int), np.array([5, 5, 6, 6])]
        return meshio.Mesh(points, [*blocks, ("line", np.array([(0, 1), (1, 4), (5, 2), (2, 3)]))],
                           cell_data={"zone": tags, **data})

    def file(self, name, mesh, **options):
        path = self.folder / name
        with contextlib.redirect_stderr(io.StringIO()):
            meshio.write(path, mesh, **options)
        return path

    def test_vtu_and_vtk_with_numbered_zones(self):
        for ending, options in ((".vtu", {}), (".vtu", {"binary": False}), (".vtk", {}), (".vtk", {"binary": False})):
            with self.subTest(ending=ending, **options):
                parsed, _ = self.convert(self.file("in" + ending, self.small(), **options))
                self.assertEqual(parsed.cell_codes, [3, 1, 1])
                zones = [(name, len(faces)) for name, faces in parsed.zones]
                self.assertEqual(zones, [("zone-5", 2), ("zone-6", 2), ("left", 1), ("right", 1)])

    def test_vtk_without_any_lines(self):
        parsed, said = self.convert(self.file("in.vtu", self.small(lines=False)))
        self.assertEqual(names_of(parsed), ["left", "right", "bottom", "top"])
        self.assertIn("no name", said)

    def test_cell_data_by_name(self):
        other = [np.zeros(1, int), np.zeros(2, int), np.array([1, 2, 3, 4])]
        path = self.file("in.vtu", self.small(other=other))
        parsed, _ = self.convert(path, "--tags", "other")
        self.assertEqual(names_of(parsed), ["zone-1", "zone-2", "zone-3", "zone-4", "left", "right"])
        self.out.unlink()
        self.refuse(path, "has no cell data another .*it has: .*zone", "--tags", "another")

    def test_su2_markers_keep_their_names(self):
        text = "NDIME= 2\nNELEM= 3\n9 0 1 2 3 0\n5 1 4 2 1\n5 4 5 2 2\nNPOIN= 6\n"
        text += "".join(f"{x} {y} {k}\n" for k, (x, y) in enumerate(POINTS))
        text += "NMARK= 3\nMARKER_TAG= lower\nMARKER_ELEMS= 2\n3 0 1\n3 1 4\n"
        text += "MARKER_TAG= 9\nMARKER_ELEMS= 2\n3 5 2\n3 2 3\n"
        text += "MARKER_TAG= ends\nMARKER_ELEMS= 2\n3 3 0\n3 4 5\n"
        for number in ("1", "2", "9"):
            parsed, _ = self.convert(self.write("in.su2", text.replace("TAG= 9", f"TAG= {number}")))
            self.assertEqual(sorted(names_of(parsed)), ["ends", "lower", f"zone-{number}"])
        # A mark of the bytes' order, line ends of DOS, blanks and remarks.
        text = text.replace("TAG= lower", "TAG = lower  % hot").replace("\n", "\r\n")
        parsed, _ = self.convert(self.write("in.su2", "\ufeff" + text))
        self.assertEqual(sorted(names_of(parsed)), ["ends", "lower", "zone-9"])
        self.assertEqual(len(parsed.interior), 2)
        self.assertEqual(mesh_support.shapes_of(parsed)[1]["ends"],
                         {frozenset([POINTS[0], POINTS[3]]), frozenset([POINTS[4], POINTS[5]])})

    def test_numbers_of_the_elements_are_no_zones(self):
        triangles = [(k, k + 1, 200 + k) for k in range(150)] + [(k + 1, 201 + k, 200 + k) for k in range(149)]
        points = [(k, y, 0.0) for y in (0.0, 1.0) for k in range(200)]
        lines = [(k, k + 1) for k in range(150)]
        for values in (np.arange(1, 450), np.append(np.zeros(299, int), np.arange(150))):
            data = [values[:299], values[299:]]
            mesh = meshio.Mesh(points, [("triangle", triangles), ("line", lines)], cell_data={"GlobalId": data})
            path = self.file("in.vtu", mesh)
            parsed, said = self.convert(path)
            self.assertEqual(names_of(parsed), ["left", "bottom", "top", "wall"])
            self.assertIn("GlobalId seems to number the elements and was not taken for zones", said)
            self.out.unlink()
            self.refuse(path, "has 15. boundary zones", "--tags", "GlobalId")

    def test_numbers_of_few_elements_are_zones(self):
        mesh = self.small()
        mesh.cell_data = {"GlobalId": [np.array([1]), np.array([2, 3]), np.array([4, 5, 6, 7])]}
        self.assertEqual(names_of(self.convert(self.file("in.vtu", mesh))[0])[:4], [f"zone-{k}" for k in range(4, 8)])

    def test_many_groups_take_no_time_each(self):
        count = 100000
        block, data = (2, np.arange(3 * count).reshape(-1, 3)), {"id": [np.arange(count)[::-1]]}
        mesh = types.SimpleNamespace(cell_data=data, field_data={})
        start = time.process_time()
        groups = foreign_meshes._tagged(mesh, [block], "id", {}, [])
        self.assertLess(time.process_time() - start, 5.0)
        self.assertEqual((len(groups), groups[1][0]), (count, "zone-1"))
        self.assertEqual(groups[1][2].tolist(), [[299994, 299995, 299996]])

    def test_long_lists_of_regions_are_cut_short(self):
        mesh = meshio.Mesh([(k, y, 0.0) for y in (0.0, 1.0, 2.0) for k in range(21)],
                           [("quad", [(k, k + 1, k + 22, k + 21) for row in (0, 21) for k in range(row, row + 20)])],
                           cell_data={"zone": [np.arange(40) // 2]})
        _, said = self.convert(self.file("in.vtu", mesh))
        self.assertIn("the regions zone-0, zone-1, zone-2, zone-3, zone-4 and 15 more become one", said)

    def test_named_sets_of_cells(self):
        mesh = self.small()
        mesh.cell_data = {}
        mesh.cell_sets = {"floor": [np.array([], int), np.array([], int), np.array([0, 1])]}
        path = self.file("in.inp", mesh)
        self.assertEqual(names_of(self.convert(path)[0])[0], "floor")

    def test_cells_of_both_directions_are_turned(self):
        mesh = self.small()
        mesh.cells[1].data[:] = mesh.cells[1].data[:, ::-1]
        parsed, said = self.convert(self.file("in.vtu", mesh))
        self.assertAlmostEqual(area(parsed), 2.0)
        self.assertIn("2 of 3 cells ran the other way round", said)

    def test_scale(self):
        self.assertAlmostEqual(area(self.convert(self.file("in.vtu", self.small()), "--scale", "0.001")[0]), 2e-6)

    def test_unused_points_are_left_out(self):
        parsed, said = self.convert(self.file("in.vtu", self.small([*POINTS, (9.0, 9.0)])))
        self.assertEqual(len(parsed.points), 6)
        self.assertIn("left out: 1", said)

    def doubled(self, gap):
        """The triangles on points of their own, `gap` away from those of the square."""
        points = [*POINTS, (1.0 + gap, 0.0), (1.0 + gap, 1.0), (0.5, 0.5)]
        # Two triangles and two more in place of the square: no cell without a neighbour.
        triangles = [(6, 4, 7), (4, 5, 7), (0, 1, 8), (1, 2, 8), (2, 3, 8), (3, 0, 8)]
        return meshio.Mesh(np.pad(np.array(points), ((0, 0), (0, 1))), [("triangle", np.array(triangles))])

    def test_points_at_one_place_are_merged_if_asked(self):
        for gap, distance in ((0.0, "0"), (1e-7, "1e-6")):
            path = self.file("in.vtu", self.doubled(gap))
            done = mesh_support.run("convert", path, self.out)
            self.assertIn("the cells make 2 parts", done.stdout)
            parsed, said = self.convert(path, "--merge", distance)
            self.assertNotIn("parts", said)
            self.assertEqual((len(parsed.points), len(parsed.interior)), (7, 6))

    def strips(self, gap):
        """Two strips of two rows, the upper one on points of its own and `gap` above the lower one."""
        points = [(0.1 * k, y, 0.0) for low in (0.0, 0.2 + gap) for y in (low, low + 0.1, low + 0.2) for k in range(11)]
        quads = [(k, k + 1, k + 12, k + 11) for row in (0, 11, 33, 44) for k in range(row, row + 10)]
        return meshio.Mesh(points, [("quad", quads)])

    def test_points_further_apart_than_the_distance_stay_apart(self):
        for gap, parted in ((0.005, False), (0.015, True)):
            _, said = self.convert(self.file("in.vtu", self.strips(gap)), "--merge", "0.01")
            self.assertEqual("the cells make 2 parts" in said, parted, gap)
            self.assertIn(f"{0 if parted else 11} points merged", said)

    def test_distance_that_reaches_over_the_whole_mesh_is_refused(self):
        columns = np.arange(40.0)
        points = np.array([(x, y, 0.0) for y in columns for x in columns])
        quads = [(k, k + 1, k + 41, k + 40) for row in range(39) for k in range(40 * row, 40 * row + 39)]
        path = self.file("in.vtu", meshio.Mesh(points, [("quad", quads)]))
        self.refuse(path, "--merge 100 reaches over 1600 points and more; choose a smaller distance", "--merge", "100")

    def test_refusals(self):
        def spoil(change):
            mesh = self.small(lines=False)
            change(mesh)
            return self.file("in.vtu", mesh)

        def flat(mesh):
            mesh.points[5] = (2.0, -1.0, 0.0)
            mesh.points[2] = (2.0, 1.0, 0.0)

        def crossed(mesh):
            mesh.cells[0].data[:] = [(0, 1, 3, 2)]

        def folded(mesh):
            mesh.points[5] = (1.2, 0.1, 0.0)
            mesh.points[4] = (1.9, 1.0, 0.0)

        def thrice(mesh):
            mesh.cells[1].data[:] = [(1, 4, 2), (1, 5, 2)]

        def dented(mesh):
            mesh.points[0] = (0.9, 0.8, 0.0)

        def nowhere(mesh):
            mesh.cells[0].data[:] = [(0, 1, 2, 77)]

        for change, reason in (
            (flat, r"1 cell has no area, the first is cell \d"),
            (crossed, "1 cell has no area"),
            (folded, "overlap"),
            (thrice, "three or more share the face"),
            (dented, "1 cell has sides that cross or bend in past the centre"),
            (nowhere, "names a point that the file does not hold"),
            (lambda mesh: mesh.points.__setitem__((0, 0), math.nan), "has a point whose coordinates are no numbers"),
            (lambda mesh: setattr(mesh, "cells", mesh.cells[:1]), "holds a single cell"),
        ):
            with self.subTest(change=change.__name__, reason=reason):
                self.refuse(spoil(change), reason)

    def test_cell_without_a_neighbour_is_refused(self):
        mesh = self.doubled(0.1)
        mesh.cells[0].data = mesh.cells[0].data[1:]
        self.refuse(self.file("in.vtu", mesh), "1 cell has no neighbour")

    def test_flat_tetrahedra_are_refused(self):
        points = np.array([(0.0, 0, 0), (1, 0, 0), (0, 1, 0), (1, 1, 0), (0, 0, 1)])
        mesh = meshio.Mesh(points, [("tetra", np.array([(0, 1, 2, 4), (0, 1, 2, 3)]))])
        self.refuse(self.file("in.vtu", mesh), "1 cell has no volume, the first is cell 2")

    def test_files_that_are_no_meshes(self):
        for name, content, reason in (
            ("in.vtu", "hello", "no mesh that meshio reads"),
            ("in.xyz", "hello", "no mesh that meshio reads"),
            ("in.msh", "", "is empty"),
            ("in.su2", "NDIME= 2\nNELEM= 1\n5 0 1 2 0\n", "no mesh that meshio reads"),
            ("in.cas", b"\x89HDF\r\n\x1a\n", "is an HDF5 file; expected a mesh in text or in Fluent's binary sections"),
            ("in.msh.gz", b"\x1f\x8b\x08", "is compressed by gzip; unpack it first"),
        ):
            self.refuse(self.write(name, content), reason)
        self.refuse(self.folder / "missing.msh", "No such file")


class NearPoints(unittest.TestCase):
    def numbers(self, points, distance):
        """The number that each of the points has then."""
        rows = np.repeat(np.arange(len(points)), 3).reshape(-1, 3)
        return foreign_meshes.merge_points(CellSource(np.array(points), {3: rows}), distance).cells[3][:, 0].tolist()

    def test_points_on_either_side_of_the_border_of_a_box(self):
        for border in (0.0, 3.0, -7.0):
            for step in ((0.8, 0.0), (0.0, 0.8), (0.6, 0.6), (0.6, -0.6), (0.0, 0.0)):
                points = [(border - 0.5 * s, border + 0.5 * t) for s, t in (step, (-step[0], -step[1]))]
                for pair in (points, points[::-1]):
                    self.assertEqual(self.numbers(pair, 1.0), [0, 0], points)
                    self.assertEqual(self.numbers(pair, 0.75), [0, 0 if step == (0.0, 0.0) else 1], points)

    def test_all_pairs_within_the_distance_and_no_others_are_joined(self):
        random = np.random.default_rng(3)
        for axes, distance in ((2, 0.02), (3, 0.07)):
            points = random.random((400, axes)) - 0.5
            apart = np.linalg.norm(points[:, None] - points, axis=2)
            a, b = np.nonzero(apart <= distance)
            self.assertGreater(len(a), 440)
            self.assertEqual(self.numbers(points, distance), linked(400, a, b).tolist())

    def test_chains_are_joined(self):
        self.assertEqual(self.numbers([(0.0, 0.0), (0.9, 0.0), (5.0, 0.0), (1.8, 0.0)], 1.0), [0, 0, 2, 0])

    def test_points_without_numbers_stay_alone(self):
        points = [(np.nan, 0.0), (0.0, 0.0), (np.nan, 0.0), (0.0, 0.0)]
        for distance in (0.0, 1.0):
            self.assertEqual(self.numbers(points, distance), [0, 1, 2, 1])

    def test_many_points_take_little_time(self):
        points = np.random.default_rng(4).random((200000, 3))
        start = time.process_time()
        self.numbers(points, 0.002)
        self.assertLess(time.process_time() - start, 30.0)


if __name__ == "__main__":
    unittest.main()
