"""Draws a plane sheet: filled colours, mesh, isolines, streamlines, vectors, front and outline."""

import matplotlib
import numpy
from matplotlib import collections, tri

from .errors import ViewError
from .look import apart, colours_of

_VECTORS_ACROSS = 26
_STREAM_GRID = 240


def draw_sheet(axes, sheet, look, limits):
    """Draws on `axes`, whose extent it sets; returns what a colour bar is made for, or None."""
    low, high = _extent(sheet, look)
    axes.set_xlim(low[0], high[0])
    axes.set_ylim(low[1], high[1])
    axes.set_aspect("equal")
    axes.set_xlabel(sheet.axes[0])
    axes.set_ylabel(sheet.axes[1])
    axes.set_facecolor("0.93")
    mapped = _draw_filled(axes, sheet, look, limits)
    if look.mesh:
        edges, _ = sheet.edges()
        _draw_edges(axes, sheet, edges, "black" if look.style == "none" else "0.25", 0.3)
    if look.isolines:
        _draw_isolines(axes, sheet, look)
    if look.streamlines:
        _draw_streamlines(axes, sheet, look, low, high)
    if look.vectors:
        _draw_vectors(axes, sheet, look, low, high)
    if look.front:
        _draw_front(axes, sheet, look)
    edges, at_rim = sheet.edges()
    _draw_edges(axes, sheet, edges[at_rim], "black", 1.0)
    return mapped


def _extent(sheet, look):
    low, high = sheet.bounds()
    if look.zoom is None:
        margin = 0.015 * (high - low).max()
        return low - margin, high + margin
    return numpy.array(look.zoom[:2]), numpy.array(look.zoom[2:])


def _draw_edges(axes, sheet, edges, colour, width):
    axes.add_collection(collections.LineCollection(sheet.points[edges], colors=colour, linewidths=width))


def _triangulation(sheet, values):
    """The fans as matplotlib takes them; triangles with a value that is not finite are left out."""
    vertices, triangles, _ = sheet.fans()
    finite = numpy.isfinite(values)[triangles].all(axis=1)
    if not finite.any():
        return None
    return tri.Triangulation(vertices[:, 0], vertices[:, 1], triangles[finite])


def _draw_filled(axes, sheet, look, limits):
    if look.style == "none":
        return None
    colours, (low, high) = matplotlib.colormaps[colours_of(look)], limits
    scale = matplotlib.colors.Normalize(low, high)
    if look.style == "cells":
        cells = collections.PolyCollection(
            sheet.points[sheet.polygons],
            array=numpy.ma.masked_invalid(sheet.cell_values(look.show)),
            cmap=colours,
            norm=scale,
            # Lines of the cells' own colour close the seams between them.
            edgecolors="face",
            linewidths=0.2,
        )
        return axes.add_collection(cells)
    values = sheet.vertex_values(look.show)
    triangulation = _triangulation(sheet, values)
    if triangulation is not None:
        shown = numpy.clip(numpy.nan_to_num(values), low, high)
        levels = numpy.linspace(low, high, look.levels + 1)
        # What lies just on the highest level would be left white.
        levels[-1] += 1e-6 * (high - low)
        axes.tricontourf(triangulation, shown, levels=levels, cmap=colours, norm=scale)
    return matplotlib.cm.ScalarMappable(norm=scale, cmap=colours)


def _draw_contour(axes, sheet, name, levels, **how):
    values = sheet.vertex_values(name)
    triangulation = _triangulation(sheet, values)
    values = numpy.nan_to_num(values)
    levels = [level for level in levels if values.min() < level < values.max()]
    if triangulation is not None and levels:
        return axes.tricontour(triangulation, values, levels=levels, **how)
    return None


def _draw_isolines(axes, sheet, look):
    values = sheet.vertex_values(look.isolines)
    values = values[numpy.isfinite(values)]
    if not len(values):
        return
    levels = numpy.linspace(values.min(), values.max(), look.isoline_count + 2)[1:-1]
    lines = _draw_contour(axes, sheet, look.isolines, levels, colors=_ink(look), linewidths=0.7, linestyles="solid")
    if lines is not None and look.isolines != look.show:
        axes.clabel(lines, fontsize=6, fmt="%.3g")


def _ink(look):
    """A colour that stands out from the filled ones."""
    dark = look.style != "none" and colours_of(look) in ("inferno", "viridis", "cividis", "magma", "plasma")
    return "white" if dark else "0.15"


def _velocity_on_grid(sheet, low, high, across):
    """(xs, ys, u, v) at the middles of square boxes, `across` of them over the longer side; nan outside."""
    sheet_low, sheet_high = sheet.bounds()
    low, high = numpy.maximum(low, sheet_low), numpy.minimum(high, sheet_high)
    # Of less than rounding leaves there is no grid.
    if not all(map(apart, low, high)):
        raise ViewError("expected --zoom to show a part of the mesh, found none of it there")
    counts = numpy.maximum(2, numpy.rint(across * (high - low) / (high - low).max())).astype(int)
    xs, ys = (low[i] + (numpy.arange(counts[i]) + 0.5) * (high[i] - low[i]) / counts[i] for i in (0, 1))
    u, v = sheet.on_grid(sheet.in_plane(), xs, ys)
    return xs, ys, u, v


def _moves(u, v):
    return bool((numpy.nan_to_num(numpy.hypot(u, v)) > 0.0).any())


def _draw_streamlines(axes, sheet, look, low, high):
    xs, ys, u, v = _velocity_on_grid(sheet, low, high, _STREAM_GRID)
    if not _moves(u, v):
        return
    span = high - low
    density = numpy.clip(1.6 * span / span.max(), 0.35, None)
    speed = numpy.hypot(u, v)
    # Fluid at rest, solid for one, gets no lines.
    still = speed < 1e-4 * numpy.nanmax(speed)
    u, v = numpy.where(still, numpy.nan, u), numpy.where(still, numpy.nan, v)
    lines = axes.streamplot(
        xs,
        ys,
        numpy.ma.masked_invalid(u),
        numpy.ma.masked_invalid(v),
        density=density,
        color=_ink(look),
        linewidth=0.6,
        arrowsize=0.7,
    )
    lines.lines.set_alpha(0.75)


def _draw_vectors(axes, sheet, look, low, high):
    xs, ys, u, v = _velocity_on_grid(sheet, low, high, _VECTORS_ACROSS)
    if not _moves(u, v):
        return
    x, y = numpy.meshgrid(xs, ys)
    inside = numpy.isfinite(u) & numpy.isfinite(v)
    # The longest arrow is three boxes long; the slow ones stay visible as short strokes.
    box = max(xs[1] - xs[0], ys[1] - ys[0])
    longest = numpy.hypot(u[inside], v[inside]).max()
    axes.quiver(
        x[inside],
        y[inside],
        u[inside],
        v[inside],
        angles="xy",
        scale_units="xy",
        scale=longest / (3.0 * box),
        color=_ink(look),
        width=0.0022,
        headwidth=3.2,
        headlength=4.2,
        minlength=0.3,
        zorder=3,
    )


def _draw_front(axes, sheet, look):
    dark = colours_of(look) == "Blues" or look.style == "none"
    _draw_contour(axes, sheet, "fl", [0.5], colors="red" if dark else "cyan", linewidths=1.8)
