"""Puts pictures of results together, one or the frames of an animation, and writes them."""

import dataclasses

import matplotlib
import numpy
from PIL import Image

matplotlib.use("Agg")

from matplotlib import pyplot  # noqa: E402  (after the choice of a backend without a display)

from . import look as looks  # noqa: E402
from .errors import ViewError  # noqa: E402
from .output import write_whole  # noqa: E402
from .plane_picture import draw_sheet  # noqa: E402
from .plane_sheet import PlaneResult  # noqa: E402
from .result_file import read_result  # noqa: E402
from .run_files import label_of  # noqa: E402
from .solid import AXES, Solid  # noqa: E402
from .solid_picture import boundary_values, draw_boundary  # noqa: E402

PICTURE_ENDINGS = (".png", ".pdf", ".svg")
_LONGER_SIDE = 6.4  # inches, of the plot itself


@dataclasses.dataclass
class View:
    """What of a 3D result is shown: one slice, the boundary, or with neither both at a glance."""

    slice: tuple = None  # (axis 0 to 2, position)
    boundary: bool = False


class Scene:
    """A result made ready to be drawn; keeps the mesh as long as the next result has the same."""

    def __init__(self, look, view):
        self._asked = look
        self._view = view
        self._mesh = None
        self._sheets = []

    def load(self, path):
        result = read_result(path)
        if self._mesh is not None and self._mesh.result.has_mesh_of(result):
            self._mesh.take(result)
        else:
            self._make(result)
        self.look = looks.completed(self._asked, result)
        looks.check(self.look, result)
        return result

    def keep_look(self):
        """Later results are shown like this one."""
        self._asked = self.look

    def _make(self, result):
        if result.dimension == 2:
            if self._view.slice or self._view.boundary:
                raise ViewError(f"{result.path}: expected a 3D result for --slice and --boundary, found a 2D one")
            self._mesh = PlaneResult(result)
            self._sheets = [self._mesh]
            return
        self._mesh = Solid(result)
        if self._view.slice:
            self._sheets = [self._mesh.slice(*self._view.slice)]
        elif self._view.boundary:
            self._sheets = []
        else:
            middle = sum(self._mesh.bounds()) / 2.0
            self._sheets = [self._mesh.slice(axis, middle[axis]) for axis in range(3)]

    def limits(self):
        """The colours' range for what is shown now."""
        shown = [self._shown(sheet) for sheet in self._sheets]
        if self._with_boundary():
            shown.append(boundary_values(self._mesh, self.look))
        return looks.range_of(self.look, numpy.concatenate(shown))

    def _shown(self, sheet):
        smooth = self.look.style == "smooth"
        return sheet.vertex_values(self.look.show) if smooth else sheet.cell_values(self.look.show)

    def _with_boundary(self):
        return isinstance(self._mesh, Solid) and not self._view.slice

    def draw(self, label, limits=None):
        """A figure of the result loaded last."""
        limits = limits or self.limits()
        result = self._mesh.result
        title = looks.title_of(self.look, result, label)
        name = looks.label_of(self.look.show, result.dimension)
        if len(self._sheets) == 1:
            sheet = self._sheets[0]
            if self._view.slice and self.look.title is None:
                title += ("\n" if "\n" not in title else ", ") + _slice_label(sheet)
            return _sheet_figure(sheet, self.look, limits, title, name)
        return self._solid_figure(limits, title, name)

    def _solid_figure(self, limits, title, name):
        overview = bool(self._sheets)
        figure = pyplot.figure(figsize=(9.6, 8.6) if overview else (7.6, 6.4), layout="constrained")
        axes = [figure.add_subplot(2, 2, i + 1) for i in range(3)] if overview else []
        for one, sheet in zip(axes, self._sheets):
            draw_sheet(one, sheet, self.look, limits)
            one.set_title(_slice_label(sheet), fontsize=10)
        around = figure.add_subplot(2, 2, 4, projection="3d") if overview else figure.add_subplot(projection="3d")
        mapped = draw_boundary(around, self._mesh, self.look, limits)
        if overview:
            around.set_title("boundary", fontsize=10)
        if self.look.style != "none":
            figure.colorbar(mapped, ax=axes + [around], label=name, shrink=0.8, pad=0.04 if overview else 0.1)
        figure.suptitle(title, fontsize=11)
        return figure


def _slice_label(sheet):
    return f"{AXES[sheet.axis]} = {sheet.position:g}"


def _sheet_figure(sheet, look, limits, title, name):
    """A figure that fits the mesh's proportions; the colour bar lies below what is much wider than tall."""
    low, high = (numpy.array(look.zoom[:2]), numpy.array(look.zoom[2:])) if look.zoom else sheet.bounds()
    span = numpy.maximum(high - low, 0.04 * (high - low).max())
    wide = span[0] > 1.8 * span[1]
    width, height = _LONGER_SIDE * span / span.max() * (1.5 if wide else 1.0)
    extra = (1.1, 1.9) if wide else (2.0, 1.3)
    figure = pyplot.figure(figsize=(max(width, 1.5) + extra[0], max(height, 1.0) + extra[1]), layout="constrained")
    axes = figure.add_subplot()
    mapped = draw_sheet(axes, sheet, look, limits)
    if mapped is not None:
        place = {"orientation": "horizontal", "aspect": 45, "shrink": 0.7} if wide else {"aspect": 28}
        figure.colorbar(mapped, ax=axes, label=name, pad=0.02, **place)
    figure.suptitle(title, fontsize=11)
    return figure


def check_ending(path):
    if path.suffix.lower() not in PICTURE_ENDINGS:
        raise ViewError(f"{path}: expected a name that ends in {', '.join(PICTURE_ENDINGS)}")


def save_figure(figure, path, dpi):
    check_ending(path)
    try:
        write_whole(path, lambda part: figure.savefig(part, dpi=dpi))
    finally:
        pyplot.close(figure)


def save_picture(path, out, look, view):
    scene = Scene(look, view)
    scene.load(path)
    save_figure(scene.draw(label_of(path)), out, scene.look.dpi)


def save_animation(moments, out, look, view, per_second):
    """A GIF with a frame a file; the colours mean the same in all of them."""
    if out.suffix.lower() != ".gif":
        raise ViewError(f"{out}: expected a name that ends in .gif")
    scene = Scene(look, view)
    # The last file decides what is shown: the first one is often at rest and uniform.
    scene.load(moments[-1].path)
    scene.keep_look()
    ranges = []
    for moment in moments:
        scene.load(moment.path)
        ranges.append(scene.limits())
    limits = min(low for low, _ in ranges), max(high for _, high in ranges)
    write_whole(out, lambda part: _write_frames(part, scene, moments, limits, per_second))


def _write_frames(part, scene, moments, limits, per_second):
    frames = []
    for moment in moments:
        scene.load(moment.path)
        figure = scene.draw(moment.label, limits)
        figure.set_dpi(scene.look.dpi)
        figure.canvas.draw()
        frame = Image.fromarray(numpy.asarray(figure.canvas.buffer_rgba())).convert("RGB")
        pyplot.close(figure)
        # A palette made for the frame: the format's 256 colours hold a colour map well enough.
        frames.append(frame.quantize(256, dither=Image.Dither.NONE))
    frames[0].save(part, save_all=True, append_images=frames[1:], duration=round(1000 / per_second), loop=0)
