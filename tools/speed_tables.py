"""Tables of the performance report, made from the JSON that the benchmarks write."""

import math
import re


class TableError(Exception):
    """What the report is made from does not fit together."""


def parts(name):
    """The arguments in a benchmark's name: "a/n:64/physics:0" gives {"n": "64", "physics": "0"}."""
    return dict(part.split(":", 1) for part in name.split("/") if ":" in part)


def rounded(value, digits=3):
    """So many leading digits, without an exponent: 1234.5 gives 1230, 0.01234 gives 0.0123."""
    if value == 0:
        return "0"
    decimals = digits - 1 - math.floor(math.log10(abs(value)))
    text = f"{round(value, decimals):.{max(decimals, 0)}f}"
    # 9.996 has become 10.00.
    return text[:-1].rstrip(".") if decimals > 0 and len(text.replace(".", "").lstrip("-0")) > digits else text


def percent(value):
    return f"{value * 100.0:.0f} %"


def thousands(count):
    """Numbers of cells as people say them."""
    if count >= 1e6:
        return f"{rounded(count / 1e6)} million"
    return f"{count:,.0f}".replace(",", " ")


def table(head, rows):
    if not rows:
        return "Not measured."
    lines = ["| " + " | ".join(cells) + " |" for cells in [head, ["---"] * len(head), *rows]]
    return "\n".join(lines)


def entries(results, program, family=""):
    """The benchmarks of a program whose names begin with `family`; none when it was not run."""
    found = [b for b in results.get(program, []) if b["name"].startswith(family)]
    for entry in found:
        if entry.get("error_occurred"):
            raise TableError(f"{program}: {entry['name']}: {entry.get('error_message', 'failed')}")
    return found


def bandwidth(results):
    rows = []
    for b in entries(results, "machine_benchmark", "bandwidth"):
        keys = ["read_GB/s", "copy_GB/s", "triad_GB/s", "streamed_copy_GB/s", "streamed_triad_GB/s"]
        values = [rounded(b[key]) if b[key] else "–" for key in keys]
        rows.append([b["label"], f"{rounded(b['MiB'])} MiB", f"{b['processors']:.0f}", *values])
    head = ["Arrays in", "Size", "Threads", "read", "copy", "triad", "copy, streamed", "triad, streamed"]
    return table(head, rows)


def multiply_add(results):
    rows = []
    for b in entries(results, "machine_benchmark", "multiplyAdd"):
        fused = rounded(b["fused_Gop/s"]) if b["fused_Gop/s"] else "–"
        rows.append([b["label"], f"{b['processors']:.0f}", rounded(b["separate_Gop/s"]), fused])
    return table(["Instruction set", "Threads", "Multiply, then add", "Fused"], rows)


def _step_rows(found, first):
    """Rates in million cell-steps a second."""
    rows = []
    for b in found:
        rates = [rounded(1e3 / b[key]) for key in ("one_ns/cell", "all_ns/cell", "proposed_ns/cell")]
        ratios = [rounded(b["ratio_one"], 2), rounded(b["ratio_all"], 2)]
        # The ratio of times, turned into one of rates: above 1, 40 threads are the faster ones.
        gains = [rounded(b["speedup"]), rounded(b["plain_one_ns/cell"] / b["plain_all_ns/cell"])]
        rows.append([*first(b), *rates, rounded(1.0 / b["proposed/all"]), *gains, *ratios])
    return rows


def _step_head(first, found):
    count = f"{found[0]['processors']:.0f}" if found else "all"
    return [*first, "1 thread", f"{count} threads", "40 threads", f"40 : {count}", f"{count} : 1", f"plain, {count} : 1",
            "Ratio to plain, 1", f"Ratio to plain, {count}"]


def steps_2d(results):
    found = entries(results, "step_2d_benchmark", "stepBesidePlainReference")
    rows = _step_rows(found, lambda b: [thousands(b["cells"]), b["label"]])
    return table(_step_head(["Cells", "Case"], found), rows)


def steps_3d(results):
    found = entries(results, "step_3d_benchmark", "stepBesidePlainReference")
    rows = _step_rows(found, lambda b: [thousands(b["cells"]), parts(b["name"])["velocities"], b["label"]])
    return table(_step_head(["Cells", "Velocities", "Case"], found), rows)


def orders(results):
    found = entries(results, "step_2d_benchmark", "stepOnShuffledMesh") + entries(
        results, "step_3d_benchmark", "stepOnShuffledMesh"
    )
    rows = []
    for b in found:
        velocities = parts(b["name"]).get("velocities")
        case = f"tetrahedra, {velocities} velocities, {b['label']}" if velocities else b["label"]
        row = [thousands(b["cells"]), case]
        for count in ("one", "all"):
            row += [rounded(b[f"{count}_ns/cell"]), rounded(b[f"shuffled_{count}_ns/cell"])]
            row.append(rounded(b[f"ratio_{count}"]))
        rows.append(row)
    count = f"{found[0]['processors']:.0f}" if found else "all"
    head = ["Cells", "Case", "in order, 1 thread", "at random", "Ratio", f"in order, {count} threads", "at random",
            "Ratio"]
    return table(head, rows)


def loop_cases(results):
    """Mesh and physics → threads → loop → its benchmark, in the order they were run."""
    cases = {}
    for b in entries(results, "loop_benchmark"):
        mesh, n, physics, threads, loop = b["name"].split("/")[:5]
        count = int(threads.removeprefix("threads:"))
        cases.setdefault((mesh, n, physics), {}).setdefault(count, {})[loop] = b
    return cases


BYTES_HEAD = ["Bytes a cell", "of these to write only"]


def _bytes_columns(b):
    return [f"{b['bytes/cell']:.0f}", f"{b['allocated_bytes/cell']:.0f}"]


def _loop_columns(by_threads, loop):
    columns = []
    for loops in by_threads.values():
        b = loops[loop]
        columns += [rounded(b["ns/cell"]), rounded(b["GB/s"]), percent(b["share_of_bound"]),
                    percent(b["fastest_share_of_bound"])]
    return columns


def _loop_head(first, by_threads):
    head = list(first)
    for count in by_threads:
        head += [f"ns a cell, {count} thread" + ("s" if count > 1 else ""), "GB/s", "of the bound",
                 "at best"]
    return head


def loops(results):
    """One table for the largest mesh of each kind and physics."""
    largest = {}
    for (mesh, _, physics), by_threads in loop_cases(results).items():
        cells = next(iter(by_threads.values()))["all"]["cells"]
        if cells >= largest.get((mesh, physics), (0, None))[0]:
            largest[(mesh, physics)] = (cells, by_threads)
    texts = []
    for (mesh, physics), (cells, by_threads) in largest.items():
        one = next(iter(by_threads.values()))
        bound = ", ".join(
            f"{rounded(each['all']['bandwidth_GB/s'])} GB/s on {count}" for count, each in by_threads.items()
        )
        reading = ", ".join(
            f"{rounded(each['all']['reading_GB/s'])} GB/s on {count}" for count, each in by_threads.items()
        )
        rows = [[loop, *_bytes_columns(one[loop]), *_loop_columns(by_threads, loop)] for loop in one]
        title = (f"{mesh.capitalize()}, {physics}, {thousands(cells)} cells; bandwidth {bound} "
                 f"(reading alone {reading}):")
        texts.append(title + "\n\n" + table(_loop_head(["Loop", *BYTES_HEAD], by_threads), rows))
    return "\n\n".join(texts) or "Not measured."


def loop_sums(results):
    """All loops of a step together, one row a case."""
    cases = loop_cases(results)
    rows = []
    for (mesh, _, physics), by_threads in cases.items():
        all_loops = next(iter(by_threads.values()))["all"]
        rows.append([thousands(all_loops["cells"]), f"{mesh}, {physics}", *_bytes_columns(all_loops),
                     *_loop_columns(by_threads, "all")])
    head = _loop_head(["Cells", "Case", *BYTES_HEAD], next(iter(cases.values()), {}))
    return table(head, rows)


def reading(results):
    rows = []
    for b in entries(results, "read_mesh_benchmark"):
        words = parts(b["name"])
        kind = b["name"].split("/")[0]
        if "velocities" in words:
            kind += f", {words['velocities']} velocities"
        if words.get("shuffled") == "1":
            kind += ", numbered at random"
        row = [thousands(b["cells"]), kind, f"{b['threads']:.0f}"]
        for phase in ("read", "geometry"):
            row += [f"{rounded(b[phase + key], 2)} s" for key in ("_s", "_fastest_s", "_system_s")]
        rows.append([*row, rounded(b["geometry_ns/cell"]), rounded(b["MB/s"])])
    head = ["Cells", "Mesh", "Threads", "Reading", "at best", "in the system", "Geometry", "at best", "in the system",
            "Geometry, ns a cell", "MB/s read"]
    return table(head, rows)


def writing(results):
    rows = []
    for b in entries(results, "write_result_benchmark", "resultFile"):
        rates = [rounded(b[key]) for key in ("MB/s", "wall_MB/s", "stream_MB/s")]
        rows.append([f"{parts(b['name'])['n']}²", f"{rounded(b['MB'])} MB", *rates, rounded(b["ratio"], 2)])
    return table(["Cells", "File", "MB/s", "MB/s by the clock on the wall", "Through a stream", "Ratio"], rows)


def memory(results):
    rows = []
    for b in entries(results, "memory_benchmark"):
        keys = ("arrays_bytes/cell", "resident_bytes/cell", "peak_bytes/cell")
        rows.append([thousands(b["cells"]), b["name"].split("/")[0], *(f"{b[key]:.0f}" for key in keys)])
    return table(["Cells", "Mesh", "Arrays", "Resident after a step", "Peak"], rows)


BLOCKS = {
    "bandwidth": bandwidth,
    "multiply-add": multiply_add,
    "steps-2d": steps_2d,
    "steps-3d": steps_3d,
    "orders": orders,
    "loop-sums": loop_sums,
    "loops": loops,
    "reading": reading,
    "writing": writing,
    "memory": memory,
}


def machine_text(machine):
    """The machine and the day, as a list."""
    return "\n".join(f"- {label}: {value}" for label, value in machine.items())


def rendered(measured):
    """Block name → text, of what `measure_speed.py` keeps: the machine and the benchmarks of each program."""
    texts = {name: make(measured["programs"]) for name, make in BLOCKS.items()}
    return {"machine": machine_text(measured["machine"]), **texts}


def replaced(document, texts):
    """The document with the text between each block's markers replaced; what stands outside is kept.

    Every block needs exactly one pair of markers, `<!-- begin NAME -->` and `<!-- end NAME -->`.
    """
    for name, text in texts.items():
        begin, end = f"<!-- begin {name} -->", f"<!-- end {name} -->"
        if document.count(begin) != 1 or document.count(end) != 1 or document.index(begin) > document.index(end):
            raise TableError(f"the report needs one pair of markers for the block {name}")
        before, rest = document.split(begin)
        document = f"{before}{begin}\n\n{text}\n\n{end}{rest.split(end)[1]}"
    unknown = set(re.findall(r"<!-- begin ([\w-]+) -->", document)) - set(texts)
    if unknown:
        raise TableError(f"the report has markers for unknown blocks: {', '.join(sorted(unknown))}")
    return document
