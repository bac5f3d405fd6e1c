#!/usr/bin/env python3
"""Writes the meshes of the sample cases, or one of them in any size."""

import argparse
import pathlib
import sys

from fluent_mesh import MeshError, mesh_bytes
from sample_shapes import SHAPES, GmshMissing, structured_mesh, triangle_mesh

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
]


def mesh_file(shape, cells, triangles):
    """The bytes of one mesh file."""
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
    parser.add_argument("shape", choices=["all", *SHAPES], help="'all' writes every mesh the cases ship with")
    parser.add_argument("--cells", type=int, help="cells across the square, the channel's or slab's height or the gap")
    parser.add_argument("--triangles", action="store_true", help="free triangles, made by Gmsh")
    parser.add_argument("--out", type=pathlib.Path, help="the file to write; with 'all', the folder (default: cases/)")
    options = parser.parse_args(arguments)
    if options.shape == "all":
        if options.cells is not None or options.triangles:
            parser.error("'all' writes fixed sizes; --cells and --triangles go with one shape")
    elif options.cells is None or options.out is None:
        parser.error("one shape needs --cells and --out")
    elif options.cells < 2:
        parser.error("--cells must be at least 2")
    return options


def main(arguments):
    options = parse(arguments)
    try:
        if options.shape == "all":
            write_shipped(options.out or CASES)
        else:
            options.out.write_bytes(mesh_file(options.shape, options.cells, options.triangles))
    except (GmshMissing, MeshError, OSError) as error:
        print(f"make_sample_meshes: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
