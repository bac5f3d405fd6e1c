"""Writes docs/validation.md and its pictures from the JSON of the cases."""

import json
import os
import subprocess
import sys

from plots import draw

_HEAD = """\
# Validation

What the program computes, held against exact solutions and published figures. Every case goes the way of the windows:
velocity file, mesh file, lattice, physics and boundary settings, driver, result file; the set-up says what to type. On finer
meshes the errors typed shrink with the spacing in most cases, so that the change per unit of time is the same. The
tables and plots below were written by `validation/run.py`; `validation/run.py --quick` is the short form that the tests
run.

Machine of these runs: {cores} cores shared with other work, each case on one core, so that times are upper bounds.
Together the runs took {minutes:.0f} minutes of one core.
"""

_READING = """\
## Reading the figures

- **The mesh** is what limits most figures: deviations of the cavity and of natural convection up to Ra 1e5 fall at about
  second order, and what is outside its band for the cavity at Re 1000 and for the heated cube at Ra 1e5 lies where that
  order puts it. Natural convection at Ra 1e6 and the cube at Re 1000 are not so far yet: their errors fall, but slower than that. The drag and the lift of
  the shedding cylinder hardly change with the mesh.
- **Mach number and time step.** Against what compressibility alone would suggest, a smaller Mach number makes the
  cavity at Re 100 on coarse meshes worse: in lattice units the viscosity shrinks with it, while the diffusion that the
  reconstruction adds does not. The time step acts either way: with a shorter one the cavity at Re 100 on coarse meshes
  gets better, at Re 1000 worse, and natural convection much worse: there CFL 0.5 instead of 0.4 nearly halves the error,
  but it breaks off at Mach number 0.1 and at Ra 1e3 on the finest squares, and 0.55 did not settle. See the cases on
  both; figures here that stand in none of them were tried once. In the cube CFL 0.35 instead of 0.25 is nearer at Re 100 (least u -0.2164 rather than -0.2186 on 16 x 16 x 16
  cubes) and farther off at Re 400 (-0.2257 rather than -0.2310). Where the mesh is fine enough that this no longer
  matters, the Mach number's own error is what remains: Couette flow shows it alone.
- **Relaxation time at walls.** Adiabatic walls slow conduction along them by the order of the relaxation time. At the
  lowest Rayleigh number it is longest against the mesh: there the largest and smallest Nusselt numbers, which sit in the
  corners, do not converge, and the mean by the scheme's fluxes keeps an offset. A smaller Mach number shortens it.
- **Outflow** takes what the cell beside it has and fixes no pressure. The profile of a channel that is long enough,
  as that at Re 20 is, comes out right, but what leaves differs from what enters while the density drifts; on
  triangles more than on squares. A profile typed at both ends keeps the balance better.
- **Cells drawn to the walls** are worth more than more cells where boundary layers are thin: natural convection at
  Ra 1e5 on 48 x 48 clustered cells is nearer to the published Nusselt number than on 96 x 96 squares, and the cube on
  12 x 12 x 12 bricks nearer than on 16 x 16 x 16 cubes. The cavity gains at Re 1000 and not at Re 100.
- **Symmetry** holds to the discretisation error, not to rounding.
"""


def _table(header, rows):
    lines = ["| " + " | ".join(header) + " |", "|" + " --- |" * len(header)]
    lines += ["| " + " | ".join(row) + " |" for row in rows]
    return lines + [""]


def _short(value):
    return f"{value:.4g}" if value is not None else "not a number"


def _run_rows(case):
    for run in case["runs"]:
        steps = f"{run['steps']:,}".replace(",", " ")
        yield [run["mesh"], f"{run['cells']:,}".replace(",", " "), f"{run['Ma']:g}", f"{run['CFL']:g}", steps,
               f"{run['seconds']:.1f}", f"{run['residual']:.1e}" if run["residual"] else "–"]


def _overview(cases):
    rows = []
    for case in cases:
        for band in case["bands"]:
            verdict = "" if band["inside"] else "**outside**"
            rows.append([case["title"], band["what"], _short(band["value"]),
                         f"{band['low']:g} to {band['high']:g}", verdict])
    return ["## Overview", ""] + _table(["Case", "Figure", "Value", "Band", ""], rows)


def _pictures(case, out, images, relative):
    lines = []
    for plot in case["plots"]:
        name = f"{case['name']}-{plot['name']}.png"
        draw(plot, images / name)
        lines += [f"![{plot['caption']}]({relative}/{name})", "", plot["caption"], ""]
    for picture in case["pictures"]:
        name = f"{case['name']}-{picture['name']}.png"
        viewer = images.parents[2] / "tools/fluvane-view"
        source = out / case["name"] / picture["result"]
        subprocess.run([viewer, "picture", source, *picture["arguments"], "-o", images / name],
                       check=True, stdout=subprocess.DEVNULL)
        lines += [f"![{picture['caption']}]({relative}/{name})", "", picture["caption"], ""]
    return lines


def _section(case, out, images):
    lines = [f"## {case['title']}", ""]
    lines += ["Sources:", ""] + [f"- {source}" for source in case["sources"]] + [""]
    lines += ["Set-up of the first mesh:", ""] + [f"- {line}" for line in case["setUp"]] + [""]
    lines += _table(["Mesh", "Cells", "Ma", "CFL", "Steps", "Seconds", "Last residual"], _run_rows(case))
    for table in case["tables"]:
        lines += [table["caption"], ""] + _table(table["header"], table["rows"])
    for remark in case["remarks"]:
        lines += [remark, ""]
    return lines + _pictures(case, out, images, f"images/{images.name}")


def write_report(root, out, names):
    """The report of the cases whose JSON lies in `out`; the others are named as not run."""
    cases, absent = [], []
    for name in names:
        path = out / name / f"{name}.json"
        if path.exists():
            cases.append(json.loads(path.read_text()))
        else:
            absent.append(name)
    images = root / "docs/images/validation"
    images.mkdir(parents=True, exist_ok=True)
    minutes = sum(run["seconds"] for case in cases for run in case["runs"]) / 60
    lines = _HEAD.format(cores=os.cpu_count(), minutes=minutes).splitlines() + [""]
    if absent:
        lines += ["Not run for this report: " + ", ".join(absent) + ".", ""]
    lines += _overview(cases) + _READING.splitlines() + [""]
    for case in cases:
        lines += _section(case, out, images)
    (root / "docs/validation.md").write_text("\n".join(lines).rstrip() + "\n")
    print(f"docs/validation.md: {len(cases)} cases", file=sys.stderr)
