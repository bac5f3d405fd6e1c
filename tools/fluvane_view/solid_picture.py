"""Draws the boundary of a 3D result in perspective."""

import matplotlib
import numpy
from matplotlib import ticker
from mpl_toolkits.mplot3d import art3d

from .look import colours_of
from .solid import AXES


def draw_boundary(axes, solid, look, limits):
    """Draws the boundary's faces on 3D `axes`; returns what a colour bar is made for."""
    scale = matplotlib.colors.Normalize(*limits)
    mapped = matplotlib.cm.ScalarMappable(norm=scale, cmap=colours_of(look))
    axes.view_init(elev=24.0, azim=-58.0)
    faces = solid.points[solid.boundary]
    values = boundary_values(solid, look)
    seen = _towards_viewer(axes, faces)
    colours = (
        mapped.to_rgba(values[seen]) if look.style != "none" else numpy.tile([0.9, 0.9, 0.9, 1.0], (seen.sum(), 1))
    )
    colours[:, :3] *= _light(faces[seen])[:, None]
    lines = "0.2" if look.mesh else colours
    axes.add_collection3d(art3d.Poly3DCollection(faces[seen], facecolors=colours, edgecolors=lines, linewidths=0.25))
    low, high = solid.bounds()
    for name, a, b in zip(AXES, low, high):
        getattr(axes, f"set_{name}lim")(a, b)
        getattr(axes, f"set_{name}label")(name)
        getattr(axes, f"{name}axis").set_major_locator(ticker.MaxNLocator(4))
    axes.tick_params(labelsize=8, pad=1)
    # The box's sides as long as the mesh's; a sliver keeps some width.
    axes.set_box_aspect(numpy.maximum(high - low, 0.05 * (high - low).max()), zoom=0.95)
    return mapped


def boundary_values(solid, look):
    """One value a face: that of its cell, or the mean of its nodes' values."""
    if look.style == "smooth":
        return solid.node_values(look.show)[solid.boundary].mean(axis=1)
    return solid.cell_values(look.show)[solid.boundary_owners]


def _normals(faces):
    """Outward, as the corners run."""
    normals = numpy.cross(faces[:, 1] - faces[:, 0], faces[:, 2] - faces[:, 0])
    return normals / numpy.maximum(numpy.linalg.norm(normals, axis=1), 1e-300)[:, None]


def _view(axes):
    elevation, azimuth = numpy.radians([axes.elev, axes.azim])
    return numpy.array(
        [numpy.cos(elevation) * numpy.cos(azimuth), numpy.cos(elevation) * numpy.sin(azimuth), numpy.sin(elevation)]
    )


def _towards_viewer(axes, faces):
    # A little beyond the right angle, since the picture is in perspective.
    return _normals(faces) @ _view(axes) > -0.25


def _light(faces):
    return 0.82 + 0.18 * numpy.abs(_normals(faces) @ numpy.array([0.3, -0.5, 0.81]))
