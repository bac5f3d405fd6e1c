"""The mesh that Gmsh holds, as arrays."""

import numpy as np

from fluent_mesh import MeshError


def gmsh_arrays(gmsh):
    """The present model as a dictionary of arrays:

    points (n, 3); cells_D_N with the elements of dimension D and N corners; group_K with the faces of group K in
    the order of names; names, dimensions; quadratic, the number of elements that lost their middle points; repeated,
    the number of triangles and more that stood in the file once more.
    """
    tags, coordinates, _ = gmsh.model.mesh.getNodes()
    if not len(tags):
        raise MeshError("holds no points")
    number = np.full(int(tags.max()) + 1, -1)
    number[tags.astype(np.int64)] = np.arange(len(tags))
    arrays = {"points": coordinates.reshape(-1, 3)}
    quadratic = repeated = 0
    for dimension in (1, 2, 3):
        for corners, nodes, middle in _elements(gmsh, dimension, -1):
            if dimension > 1:
                # Version 2 writes an element once for each group that it is in.
                once = np.sort(np.unique(np.sort(nodes, axis=1), axis=0, return_index=True)[1])
                repeated += len(nodes) - len(once)
                nodes = nodes[once]
            quadratic += len(nodes) if middle else 0
            key = f"cells_{dimension}_{corners}"
            arrays[key] = np.concatenate([arrays.get(key, np.empty((0, corners), dtype=np.int64)), number[nodes]])
    names, dimensions = [], []
    for dimension, tag in gmsh.model.getPhysicalGroups():
        faces = [
            number[nodes]
            for entity in gmsh.model.getEntitiesForPhysicalGroup(dimension, tag)
            for corners, nodes, _ in _elements(gmsh, dimension, entity)
            if corners == dimension + 1
        ]
        arrays[f"group_{len(names)}"] = np.concatenate(faces) if faces else np.empty((0, dimension + 1), dtype=np.int64)
        names.append(gmsh.model.getPhysicalName(dimension, tag) or f"zone-{tag}")
        dimensions.append(dimension)
    return {**arrays, "names": np.array(names, dtype=str), "dimensions": np.array(dimensions, dtype=np.int64),
            "quadratic": np.array(quadratic), "repeated": np.array(repeated)}


def _elements(gmsh, dimension, entity):
    """(corners, point tags of the corners, whether there are points between them) for each kind of element."""
    kinds, _, nodes = gmsh.model.mesh.getElements(dimension, entity)
    for kind, own in zip(kinds, nodes):
        _, _, _, every, _, corners = gmsh.model.mesh.getElementProperties(kind)
        yield corners, own.reshape(-1, every)[:, :corners].astype(np.int64), every > corners
