#!/usr/bin/env python3
"""Reads a file in Gmsh's own format into an array file, as a process of its own: what is wrong with a file can then
end no more than this process, whatever the library does."""

import sys

import numpy as np

from fluent_mesh import MeshError
from gmsh_arrays import gmsh_arrays
from gmsh_session import GmshMissing, gmsh_session


def main(path, out):
    try:
        with gmsh_session("reading Gmsh's format") as gmsh:
            gmsh.option.setNumber("General.AbortOnError", 2)
            gmsh.merge(path)
            np.savez(out, **gmsh_arrays(gmsh))
    except (GmshMissing, MeshError) as error:
        print(error, file=sys.stderr)
        return 1
    except Exception as error:  # Gmsh raises plain exceptions
        print("Gmsh cannot read it:", " ".join(str(error).split()), file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
