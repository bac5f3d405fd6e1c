"""Draws a case's x-y plots: what the program gives as lines, published figures as symbols."""

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as pyplot

_SYMBOLS = "osD^vx+*"


def draw(plot, path):
    """Draw one plot of a case's JSON into a PNG file."""
    figure, axes = pyplot.subplots(figsize=(5.6, 4.0), layout="constrained")
    symbols = 0
    for series in plot["series"]:
        points = [p for p in series["points"] if None not in p]
        x, y = [p[0] for p in points], [p[1] for p in points]
        if series["published"]:
            axes.plot(x, y, _SYMBOLS[symbols % len(_SYMBOLS)], markerfacecolor="none", label=series["label"])
            symbols += 1
        else:
            axes.plot(x, y, "-" if len(x) > 12 else ".-", linewidth=1.2, label=series["label"])
    if plot["logX"]:
        axes.set_xscale("log")
    if plot["logY"]:
        axes.set_yscale("log")
    axes.set_xlabel(plot["xLabel"])
    axes.set_ylabel(plot["yLabel"])
    axes.grid(True, which="major", linewidth=0.4, alpha=0.6)
    axes.legend(fontsize=8)
    figure.savefig(path, dpi=110, metadata={"Software": None})
    pyplot.close(figure)
