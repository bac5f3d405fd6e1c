#!/usr/bin/env python3
"""Runs the benchmarks and writes their tables into docs/performance.md, between its markers.

Build them first (cmake --preset release && cmake --build --preset release). Nothing else should run meanwhile.
"""

import argparse
import datetime
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

import speed_tables

ROOT = pathlib.Path(__file__).resolve().parent.parent
REPORT = ROOT / "docs" / "performance.md"

# The programs, and which of their benchmarks the quick form runs.
PROGRAMS = {
    "machine_benchmark": ".",
    "step_2d_benchmark": "/n:64/",
    "step_3d_benchmark": "/n:10/velocities:19/",
    "loop_benchmark": "(squares/n:64|tetrahedra/n:10)/flow/",
    "read_mesh_benchmark": "/(n:256|n:20/velocities:19/shuffled:0)/",
    "write_result_benchmark": "resultFile/n:256/",
    "memory_benchmark": "n:(256|10)/",
}


class Failure(Exception):
    """No benchmark is there, or one did not end well."""


def run_benchmarks(build, quick):
    """Program → its benchmarks' JSON. Threads are pinned, one a core before any shares one."""
    environment = {**os.environ, "OMP_PROC_BIND": "spread"}
    results = {}
    with tempfile.TemporaryDirectory() as folder:
        out = pathlib.Path(folder) / "out.json"
        for name, quick_filter in PROGRAMS.items():
            program = build / "bench" / name
            if not program.exists():
                print(f"{name} is not built: it is left out", file=sys.stderr)
                continue
            print(f"{name} ...", file=sys.stderr, flush=True)
            command = [str(program), f"--benchmark_out={out}", "--benchmark_out_format=json"]
            if quick:
                command.append(f"--benchmark_filter={quick_filter}")
            if subprocess.run(command, env=environment, stdout=sys.stderr).returncode != 0:
                raise Failure(f"{name} failed")
            results[name] = json.loads(out.read_text())["benchmarks"]
            out.unlink()
    if not results:
        raise Failure(f"no benchmark is built in {build}")
    return results


def first_line(*command):
    done = subprocess.run(command, capture_output=True, text=True, env={**os.environ, "LC_ALL": "C"})
    return done.stdout.splitlines()[0].strip() if done.returncode == 0 and done.stdout else "unknown"


def lscpu():
    done = subprocess.run(["lscpu"], capture_output=True, text=True, env={**os.environ, "LC_ALL": "C"})
    pairs = (line.split(":", 1) for line in done.stdout.splitlines() if ":" in line)
    return {key.strip(): value.strip() for key, value in pairs}


def compiler(build):
    """The compiler's own words, without where it lies, and its flags."""
    cache = (build / "CMakeCache.txt").read_text()
    path = re.search(r"^CMAKE_CXX_COMPILER:\w+=(.*)$", cache, re.MULTILINE)
    kind = re.search(r"^CMAKE_BUILD_TYPE:\w+=(.*)$", cache, re.MULTILINE)
    return f"{first_line(path[1], '--version') if path else 'unknown'}, {kind[1] if kind else 'unknown'} build"


def machine_facts(cpu, memory_kib, system, compiler_text, load, date):
    """What the figures depend on. `cpu` is lscpu's table; names of hosts and folders stay out."""
    instructions = [name for name in ("avx2", "avx512f", "fma") if name in cpu.get("Flags", "").split()]
    cores = f"{cpu.get('CPU(s)', '?')} processors, {cpu.get('Thread(s) per core', '?')} thread a core"
    caches = ", ".join(f"{key.removesuffix(' cache')} {cpu[key]}" for key in cpu if re.fullmatch(r"L\d\w? cache", key))
    virtual = f", virtual ({cpu['Hypervisor vendor']})" if "Hypervisor vendor" in cpu else ""
    return {
        "Processor": f"{cpu.get('Model name', 'unknown')}{virtual}; {cores}; {', '.join(instructions) or 'no AVX'}",
        "Caches": caches,
        "Memory": f"{memory_kib / 2**20:.0f} GiB",
        "System and compiler": f"{system}; {compiler_text}",
        "Measured": f"{date}, load average at the start {load:.1f}",
    }


def describe_machine(build):
    memory = re.search(r"^MemTotal:\s+(\d+)", pathlib.Path("/proc/meminfo").read_text(), re.MULTILINE)
    release = pathlib.Path("/etc/os-release")
    name = re.search(r'^PRETTY_NAME="?([^"\n]*)', release.read_text() if release.exists() else "", re.MULTILINE)
    return machine_facts(
        lscpu(),
        int(memory[1]),
        name[1] if name else "unknown",
        compiler(build),
        os.getloadavg()[0],
        datetime.date.today().isoformat(),
    )


def arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build" / "release", help="the build's folder")
    parser.add_argument("--quick", action="store_true", help="small sizes only; shows the tables, changes no report")
    parser.add_argument("--save", type=pathlib.Path, metavar="FILE", help="keep what was measured")
    parser.add_argument("--load", type=pathlib.Path, metavar="FILE", help="take what was kept, measure nothing")
    parser.add_argument("--report", type=pathlib.Path, default=REPORT, help="the report to write into")
    return parser.parse_args()


def main():
    options = arguments()
    try:
        if options.load:
            measured = json.loads(options.load.read_text())
        else:
            measured = {"machine": describe_machine(options.build)}
            measured["programs"] = run_benchmarks(options.build, options.quick)
        if options.save:
            options.save.write_text(json.dumps(measured, indent=1) + "\n")
        texts = speed_tables.rendered(measured)
        if options.quick:
            print("\n\n".join(f"{name}\n\n{text}" for name, text in texts.items()))
        else:
            options.report.write_text(speed_tables.replaced(options.report.read_text(), texts))
    except (Failure, speed_tables.TableError, OSError, KeyError, json.JSONDecodeError) as error:
        print(f"measure_speed.py: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
