"""Gmsh, quiet and the same each time."""

import contextlib


class GmshMissing(RuntimeError):
    """Something needs Gmsh's Python module and it is not installed."""


@contextlib.contextmanager
def gmsh_session(purpose):
    """Gmsh's module, started; it is ended with the block."""
    try:
        import gmsh
    except ImportError as error:
        raise GmshMissing(
            f"{purpose} needs Gmsh's Python module: install Debian's package python3-gmsh and start this script with "
            "the system's own python3"
        ) from error
    gmsh.initialize(readConfigFiles=False)
    try:
        gmsh.option.setNumber("General.Terminal", 0)
        gmsh.option.setNumber("General.NumThreads", 1)
        gmsh.option.setNumber("Mesh.RandomSeed", 1)
        yield gmsh
    finally:
        gmsh.finalize()
