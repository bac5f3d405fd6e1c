#!/usr/bin/python3
"""Runs the validation cases, checks their bands and, at report size, writes docs/validation.md with its plots."""

import argparse
import concurrent.futures
import json
import os
import pathlib
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent


def list_cases(program, size):
    """(name, rough seconds) of every case of this size, in the order of the report."""
    text = subprocess.run([program], capture_output=True, text=True, check=True).stdout
    rows = [line.split("\t") for line in text.splitlines()]
    return [(name, int(seconds)) for name, seconds, least, _ in rows if size == "report" or least == "quick"]


def run_case(program, name, size, out):
    """Run one case on one core; its JSON, or None when the program failed."""
    folder = out / name
    folder.mkdir(parents=True, exist_ok=True)
    made = folder / f"{name}.json"
    made.unlink(missing_ok=True)
    start = time.monotonic()
    command = [program, "--case", name, "--size", size, "--out", folder, "--threads", "1"]
    environment = dict(os.environ, OMP_NUM_THREADS="1", QT_QPA_PLATFORM="offscreen")
    with open(folder / "log.txt", "w") as log:
        code = subprocess.run(command, env=environment, stdout=log, stderr=subprocess.STDOUT).returncode
    print(f"{name}: {time.monotonic() - start:.0f} s" + ("" if code == 0 else f", exit code {code}"), flush=True)
    return json.loads(made.read_text()) if code == 0 and made.exists() else None


def run_all(program, names, size, out, jobs):
    """Run the cases, longest first; {name: JSON or None}."""
    longest_first = sorted(names, key=lambda item: -item[1])
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        waiting = {pool.submit(run_case, program, name, size, out): name for name, _ in longest_first}
        return {waiting[done]: done.result() for done in concurrent.futures.as_completed(waiting)}


def last_result(name, out):
    """What the case's last run left, or None."""
    made = out / name / f"{name}.json"
    return json.loads(made.read_text()) if made.exists() else None


def complaints(name, result):
    """What is wrong with a case, one line each."""
    if result is None:
        return [f"{name}: has not run to its end"]
    lines = [f"{name}: run {run['name']} broke off" for run in result["runs"] if not run["ended"]]
    for band in result["bands"]:
        if not band["inside"]:
            lines.append(f"{name}: {band['what']} is {band['value']}, outside {band['low']:g} to {band['high']:g}")
    return lines


def arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--quick", action="store_true", help="the short form, two minutes; writes no report")
    parser.add_argument("--program", type=pathlib.Path, default=ROOT / "build/release/validation/fluvane_validation")
    parser.add_argument("--out", type=pathlib.Path, help="for result files; default build/validation/SIZE")
    parser.add_argument("--only", nargs="+", metavar="CASE", help="run these cases; the report keeps the others' last run")
    parser.add_argument("--jobs", type=int, default=2, help="cases at the same time, one core each; default 2")
    parser.add_argument("--no-run", action="store_true", help="make the report from the last runs")
    return parser.parse_args()


def main():
    options = arguments()
    size = "quick" if options.quick else "report"
    out = (options.out or ROOT / "build/validation" / size).resolve()
    program = options.program.resolve()
    cases = list_cases(program, size)
    unknown = set(options.only or ()) - {name for name, _ in cases}
    if unknown:
        sys.exit(f"there is no case {', '.join(sorted(unknown))}; the cases: {', '.join(name for name, _ in cases)}")
    wanted = [] if options.no_run else [c for c in cases if not options.only or c[0] in options.only]
    start = time.monotonic()
    results = run_all(program, wanted, size, out, options.jobs)
    print(f"{len(wanted)} cases in {time.monotonic() - start:.0f} s")
    for name, _ in cases:
        results.setdefault(name, last_result(name, out))
    wrong = [line for name, _ in cases for line in complaints(name, results[name])]
    print("\n".join(wrong) or "every figure lies in its band")
    if not options.quick:
        from report import write_report

        write_report(ROOT, out, [name for name, _ in cases])
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
