"""Pictures and animations: the colours at places where the value is known, and what is drawn over them."""

import unittest

import matplotlib
import numpy
import view_data
from fluvane_view.look import Look, completed, parameter_text
from fluvane_view.pictures import Scene, View, pyplot
from fluvane_view.result_file import read_result
from matplotlib import collections, quiver
from PIL import Image


def near(look, name, places, view=View()):
    """For places of the single plot of a picture: (colours found, scene); as 0 to 255."""
    scene = Scene(look, view)
    scene.load(view_data.DATA / name)
    figure = scene.draw("")
    try:
        figure.canvas.draw()
        pixels = numpy.asarray(figure.canvas.buffer_rgba())
        x, y = figure.axes[0].transData.transform(places).T
        return pixels[pixels.shape[0] - 1 - y.astype(int), x.astype(int), :3].astype(int), scene
    finally:
        pyplot.close(figure)


class Colours(unittest.TestCase):
    def expected(self, values, low, high, name="RdYlBu_r"):
        scaled = (numpy.array(values) - low) / (high - low)
        return (matplotlib.colormaps[name](scaled)[:, :3] * 255.0).round().astype(int)

    def centres(self, name):
        points, cells, fields = view_data.plain_reading(view_data.DATA / name)
        return numpy.array([numpy.mean([points[i] for i in cell], axis=0) for cell in cells]), fields

    def test_cells_have_the_colours_of_their_values(self):
        places, fields = self.centres("mixed_600.dat")
        found, _ = near(Look(show="T", style="cells"), "mixed_600.dat", places)
        expected = self.expected(fields["T"], min(fields["T"]), max(fields["T"]))
        self.assertLessEqual(numpy.abs(found - expected).max(), 2)

    def test_smooth_picture_has_the_cells_values_at_their_centres(self):
        places, fields = self.centres("mixed_600.dat")
        look = Look(show="T", levels=256)
        found, scene = near(look, "mixed_600.dat", places)
        expected = self.expected(fields["T"], *scene.limits())
        self.assertLessEqual(numpy.abs(found - expected).max(), 12)

    def test_highest_value_is_filled_too(self):
        places, fields = self.centres("melt_0.677596.dat")
        molten = numpy.array(fields["fl"]) == 1.0
        self.assertGreater(molten.sum(), 5)
        found, _ = near(Look(show="fl"), "melt_0.677596.dat", places[molten])
        expected = self.expected([1.0], 0.0, 1.0, "Blues")
        self.assertLessEqual(numpy.abs(found - expected).max(), 8)

    def test_range_cuts_the_colours(self):
        places, fields = self.centres("mixed_600.dat")
        found, _ = near(Look(show="T", style="cells", range=(0.0, 0.1)), "mixed_600.dat", places)
        expected = self.expected(numpy.clip(fields["T"], 0.0, 0.1), 0.0, 0.1)
        self.assertLessEqual(numpy.abs(found - expected).max(), 2)

    def test_slice_shows_the_cells_that_it_cuts(self):
        places = numpy.array([[0.4, 0.7], [1.3, 0.45], [1.72, 1.6]])
        found, scene = near(Look(show="T", style="cells"), "cube_60.dat", places, View(slice=(1, 0.6)))
        solid = scene._mesh
        values = [
            solid.on_line(["T"], numpy.array([x, 0.6, z]), numpy.array([x, 0.61, z]), 2, own_values=True)[0][0]
            for x, z in places
        ]
        expected = self.expected(values, *scene.limits())
        self.assertLessEqual(numpy.abs(found - expected).max(), 2)

    def test_uniform_field_and_field_at_rest_can_be_drawn(self):
        for name in ("mixed_0.dat", "cube_0.dat", "melt_0.dat"):
            for look in (Look(), Look(show="rho", streamlines=True, vectors=True, isolines="u"), Look(show="speed")):
                scene = Scene(look, View())
                scene.load(view_data.DATA / name)
                scene._mesh.result.fields["u"][:] = 0.0
                scene._mesh.result.fields["v"][:] = 0.0
                pyplot.close(scene.draw(""))


class Layers(unittest.TestCase):
    def draw(self, look, name="melt_0.677596.dat", change=None):
        scene = Scene(look, View())
        result = scene.load(view_data.DATA / name)
        if change:
            change(result)
        figure = scene.draw("label")
        self.addCleanup(pyplot.close, figure)
        return figure

    def test_front_lies_between_the_cells_that_are_molten_and_those_that_are_not(self):
        with_front = self.draw(Look(show="T", front=True)).axes[0].collections
        without = self.draw(Look(show="T")).axes[0].collections
        self.assertEqual(len(with_front), len(without) + 1)
        front = [
            c
            for c in with_front
            if numpy.allclose(c.get_edgecolor()[:, :3], matplotlib.colors.to_rgb("cyan"))
            if len(c.get_edgecolor())
        ]
        x, y = numpy.concatenate([path.vertices for path in front[0].get_paths()]).T
        points, cells, fields = view_data.plain_reading(view_data.DATA / "melt_0.677596.dat")
        places = numpy.array([numpy.mean([points[i] for i in cell], axis=0) for cell in cells])
        fl = numpy.array(fields["fl"])
        for px, py in zip(x, y):
            row = numpy.abs(places[:, 1] - py) < 0.17
            self.assertGreater(px, places[row & (fl == 1.0), 0].min())
            self.assertLess(px, places[row & (fl == 0.0), 0].max())

    def test_mesh_has_every_edge_once(self):
        figure = self.draw(Look(style="none", mesh=True), "mixed_600.dat")
        lines = [len(c.get_segments()) for c in figure.axes[0].collections if isinstance(c, collections.LineCollection)]
        # Six by six boxes have 84 edges, the 24 cut ones a diagonal each; the outline has 24.
        self.assertEqual(lines, [108, 24])

    def test_vectors_point_with_the_velocity(self):
        def turn(result):
            result.fields["u"][:], result.fields["v"][:] = 3.0, -4.0

        figure = self.draw(Look(show="rho", vectors=True), "mixed_600.dat", turn)
        (arrows,) = [c for c in figure.axes[0].collections if isinstance(c, quiver.Quiver)]
        self.assertGreater(arrows.N, 500)
        numpy.testing.assert_allclose(arrows.V / arrows.U, -4.0 / 3.0, rtol=1e-12)

    def test_axes_are_labelled_and_equal_and_the_title_tells_the_case(self):
        figure = self.draw(Look())
        axes = figure.axes[0]
        self.assertEqual((axes.get_xlabel(), axes.get_ylabel(), axes.get_aspect()), ("x", "y", 1.0))
        self.assertEqual(figure.axes[1].get_ylabel(), "temperature T")
        self.assertEqual(figure._suptitle.get_text(), "melt_0.677596\nRa = 25000, Pr = 0.02, label")

    def test_picture_of_a_solid_shows_three_slices_and_the_boundary(self):
        figure = self.draw(Look(), "cube_60.dat")
        self.assertEqual([axes.get_title() for axes in figure.axes[:4]], ["x = 1", "y = 1", "z = 1", "boundary"])


class Choices(unittest.TestCase):
    def test_temperature_is_shown_where_it_varies_and_else_the_speed(self):
        result = read_result(view_data.DATA / "mixed_600.dat")
        self.assertEqual(completed(Look(), result).show, "T")
        result.fields["T"][:] = 0.0
        self.assertEqual(completed(Look(), result).show, "speed")

    def test_front_is_drawn_where_there_is_one(self):
        self.assertTrue(completed(Look(), read_result(view_data.DATA / "melt_0.677596.dat")).front)
        self.assertFalse(completed(Look(), read_result(view_data.DATA / "mixed_600.dat")).front)

    def test_parameters_in_the_title_are_those_that_count(self):
        self.assertEqual(
            parameter_text({"Isnatural": 1.0, "Isflow": 1.0, "Ra": 1e4, "Pr": 0.71, "Re": 5.0}), "Ra = 10000, Pr = 0.71"
        )
        self.assertEqual(parameter_text({"Isflow": 1.0, "Isheat": 0.0, "Re": 100.0, "Pr": 1.0, "Ra": 0.0}), "Re = 100")
        self.assertEqual(parameter_text({"Isflow": 0.0, "Isheat": 1.0, "alpha": 0.003}), "alpha = 0.003")
        self.assertEqual(parameter_text({}), "")


class Animation(unittest.TestCase):
    def test_frames_are_in_order_of_time_of_one_size_and_pace(self):
        names = ("melt_0.677596.dat", "melt_0.dat", "melt_0.271039.dat")
        folder = view_data.folder_with(self, *names)
        done = view_data.run(
            "animate", folder / names[0], "--show", "fl", "--style", "cells", "--per-second", 4, "--dpi", 60
        )
        self.assertEqual((done.returncode, done.stderr, done.stdout), (0, "", f"{folder / 'melt.gif'}\n"))
        blue = []
        with Image.open(folder / "melt.gif") as gif:
            self.assertEqual(gif.n_frames, 3)
            for i in range(3):
                gif.seek(i)
                self.assertEqual(gif.info["duration"], 250)
                pixels = numpy.asarray(gif.convert("RGB")).astype(int)
                blue.append((numpy.abs(pixels - [8, 48, 107]).max(axis=2) < 20).sum())
        # More and more is molten; the colour bar alone is blue at first.
        self.assertLess(blue[0] + 1000, blue[1])
        self.assertLess(blue[1] + 1000, blue[2])


if __name__ == "__main__":
    unittest.main()
