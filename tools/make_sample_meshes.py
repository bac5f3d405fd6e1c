#!/usr/bin/env python3
"""Writes the meshes of the sample cases, or one of them in any size."""

import argparse
import pathlib
import sys

from fluent_mesh import MeshError, mesh_bytes
from gmsh_session import GmshMissing
from sample_boxes import BOXES, box_mesh
from sample_shapes import SHAPES, structured_mesh, triangle_mesh

CASES = pathlib.Path(__file__).resolve().parent.parent / "cases"

# The meshes in the cases' folders: file, shape, cells across, free triangles?
SHIPPED = [
    ("cavity/cavity_32.msh", "cavity", 32, False),
    ("cavity/cavity_64.msh", "cavity", 64, False),
    ("cavity/cavity_128.msh", "cavity", 128, False),
    ("cavity/cavity_tri.msh", "cavity", 32, True),
    ("annulus/annulus_16.msh", "annulus", 16, False),
    ("annulus/annulus_32.msh", "annulus", 32, False),
    ("annulus/annulus_64.msh", "annulus", 64, False),
    ("annulus/annulus_tri_8.msh", "annulus", 8, True),
    ("annulus/annulus_tri_16.msh", "annulus", 16, True),
    ("annulus/annulus_tri_32.msh", "annulus", 32, True),
    ("channel/channel_16.msh", "channel", 16, False),
    ("channel/channel_32.msh", "channel", 32, False),
    ("heated-cavity/heated_cavity_32.msh", "heated-cavity", 32, False),
    ("heated-cavity/heated_cavity_64.msh", "heated-cavity", 64, False),
    ("heated-cavity/heated_cavity_128.msh", "heated-cavity", 128, False),
    ("heated-cavity/heated_cavity_tri.msh", "heated-cavity", 32, True),
    ("melting-slab/melting_slab_5.msh", "melting-slab", 5, False),
    ("melting-slab/melting_slab_10.msh", "melting-slab", 10, False),
    ("melting-slab/melting_slab_20.msh", "melting-slab", 20, False),
    ("melting-cavity/melting_cavity_24.msh", "melting-cavity", 24, False),
    ("melting-cavity/melting_cavity_48.msh", "melting-cavity", 48, False),
    ("cavity-3d/cavity_3d_10.msh", "cavity-3d", 10, False),
    ("cavity-3d/cavity_3d_20.msh", "cavity-3d", 20, False),
    ("heated-cube/heated_cube_10.msh", "heated-cube", 10, False),
    ("heated-cube/heated_cube_20.msh", "heated-cube", 20, False),
    ("duct-3d/duct_3d_8.msh", "duct-3d", 8, False),
]


def mesh_file(shape, cells, triangles=False, spacing=(1.0, 1.0, 1.0), jitter=0.0):
    """The bytes of one mesh file; boxes alone heed the spacing and the jitter."""
    if shape in BOXES:
        mesh = box_mesh(shape, cells, spacing, jitter)
        return mesh_bytes(mesh, f"Fluvane sample: {shape}, tetrahedra, {cells} cubes across")
    mesh = triangle_mesh(shape, cells) if triangles else structured_mesh(shape, cells)
    kind = "free triangles" if triangles else "quadrilaterals"
    return mesh_bytes(mesh, f"Fluvane sample: {shape}, {kind}, {cells} cells across")


def write_shipped(folder):
    for name, shape, cells, triangles in SHIPPED:
        path = folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(mesh_file(shape, cells, triangles))
        print(f"{path}: {path.stat().st_size} bytes")


def parse(arguments):
    parser = argparse.ArgumentParser(description=__doc__)
    choices = ["all", *SHAPES, *BOXES]
    parser.add_argument("shape", choices=choices, help="'all' writes every mesh the cases ship with")
    parser.add_argument(
        "--cells",
        type=int,
        help="cells across the square, the channel's or slab's height or the gap; in 3D, cubes of five tetrahedra "
        "across the box or the duct's height",
    )
    parser.add_argument("--triangles", action="store_true", help="free triangles, made by Gmsh; 2D only")
    parser.add_argument(
        "--spacing", type=float, nargs=3, metavar=("X", "Y", "Z"), help="3D only: the cubes' edges (default: 1 1 1)"
    )
    parser.add_argument(
        "--jitter",
        type=float,
        help="3D only: moves the points inside at random by at most this share of the spacing, below 1/6 (default: 0)",
    )
    parser.add_argument("--out", type=pathlib.Path, help="the file to write; with 'all', the folder (default: cases/)")
    options = parser.parse_args(arguments)
    if options.shape == "all":
        if options.cells is not None or options.triangles or options.spacing or options.jitter is not None:
            parser.error("'all' writes fixed sizes; the options about cells go with one shape")
    elif options.cells is None or options.out is None:
        parser.error("one shape needs --cells and --out")
    elif options.cells < 2:
        parser.error("--cells must be at least 2")
    elif options.shape in BOXES and options.triangles:
        parser.error("--triangles goes with 2D shapes")
    elif options.shape not in BOXES and (options.spacing or options.jitter is not None):
        parser.error("--spacing and --jitter go with 3D shapes")
    return options


def main(arguments):
    options = parse(arguments)
    try:
        if options.shape == "all":
            write_shipped(options.out or CASES)
        else:
            spacing, jitter = options.spacing or (1.0, 1.0, 1.0), options.jitter or 0.0
            options.out.write_bytes(mesh_file(options.shape, options.cells, options.triangles, spacing, jitter))
    except (GmshMissing, MeshError, OSError) as error:
        print(f"make_sample_meshes: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
