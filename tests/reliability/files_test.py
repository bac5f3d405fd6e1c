#!/usr/bin/env python3
"""Runs where files cannot be written: the run and the window go on, say nothing new, and standard error names it.

A full disk (a small file system where this user may mount one, and a limit on the size of files), a folder that
takes no files and one that vanishes during the run.
"""

import os
import pathlib
import resource
import shutil
import subprocess
import tempfile
import time

import reliability
from reliability import CASES, require

MESH = CASES / "cavity" / "cavity_32.msh"
NOBODY = 65534
WINDOW = ("window_process", "run", MESH)
TRANSIENT = ("case_process", "run", 10, 2)


def terminal(lines):
    """The lines of the pane but for the clock's."""
    return [line for line in lines if not line.startswith("time=") or line.removeprefix("time=").isdigit()
            and int(line.removeprefix("time=")) <= 400]


def run_to_the_end(programs, command, file, **options):
    code, lines, err = reliability.run(programs, *command, *last_arguments(command, file), timeout=120,
                                       **options)
    require(code == 0, f"{command[0]} ended with {code}: {err}")
    require("Compute done" in lines, f"the run of {command[0]} did not come to its end: {lines}")
    return terminal(lines), err


def last_arguments(command, file):
    return (file, 40, 10) if command[0] == WINDOW[0] else (400, 100, file)


def require_complaint(err, file):
    require(str(file.parent / "run") in err and "could not be written" in err,
            f"standard error does not name the file: {err!r}")


def limited_size(most):
    return lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (most, most))


def file_size_limit(programs, folder, command, usual):
    file = folder / "run.dat"
    old = {path.name: path.read_bytes() for path in folder.glob("*.dat")}
    said, err = run_to_the_end(programs, command, file, preexec_fn=limited_size(3000))
    require(said == usual, f"the terminal differs: {said}")
    require_complaint(err, file)
    for name, content in old.items():
        require((folder / name).read_bytes() == content, f"{name} was damaged")


def full_disk(programs, folder, command, usual):
    """False where this user may mount nothing."""
    mount = folder / "disk"
    mount.mkdir()
    if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=64k", "none", mount], capture_output=True).returncode:
        return False
    try:
        said, err = run_to_the_end(programs, command, mount / "run.dat")
        if command is TRANSIENT:  # its files are small: fill what is left
            (mount / "filler").write_bytes(b"x" * (os.statvfs(mount).f_bavail * os.statvfs(mount).f_bsize))
            kept = {path.name: path.read_bytes() for path in mount.glob("*.dat")}
            said, err = run_to_the_end(programs, command, mount / "run.dat")
            for name, content in kept.items():
                require((mount / name).read_bytes() == content, f"{name} was damaged")
        require(said == usual, f"the terminal differs: {said}")
        require_complaint(err, mount / "run.dat")
        reliability.require_whole_results(mount)
        require(not list(mount.glob("*.dat.*")), "part of a file was left behind")
    finally:
        subprocess.run(["umount", mount], check=True)
    return True


def reachable_by_nobody(program):
    """May somebody who owns nothing start the program? Not below a home that is closed, such as root's."""
    return os.geteuid() != 0 or subprocess.run(["test", "-x", program], preexec_fn=lambda: os.setuid(NOBODY),
                                               check=False).returncode == 0


def read_only(programs, folder, usual):
    closed = folder / "closed"
    closed.mkdir()
    closed.chmod(0o555)
    folder.chmod(0o755)
    # Deliberate: a mesh file that may not be written counts as one that cannot be opened.
    mesh = pathlib.Path(shutil.copy(MESH, folder))
    mesh.chmod(0o666)
    drop = (lambda: os.setuid(NOBODY)) if os.geteuid() == 0 else None
    said, err = run_to_the_end(programs, (*WINDOW[:2], mesh), closed / "run.dat", preexec_fn=drop, cwd="/")
    require(said == usual, f"the terminal differs: {said}")
    require_complaint(err, closed / "run.dat")
    require(not list(closed.iterdir()), "something was written")


def missing(programs, folder, command, usual):
    said, err = run_to_the_end(programs, command, folder / "missing" / "run.dat")
    require(said == usual, f"the terminal differs: {said}")
    require_complaint(err, folder / "missing" / "run.dat")
    require(not (folder / "missing").exists(), "the folder was made")


def vanishing(programs, folder):
    """The folder goes while the run is on; a run of many steps goes on and ends."""
    gone = folder / "gone"
    gone.mkdir()
    process = reliability.start(programs, "case_process", "run", 10, 2, 4000, 100,
                                gone / "run.dat")
    deadline = time.monotonic() + 60
    while len(list(gone.glob("*.dat"))) < 3:
        require(time.monotonic() < deadline and process.poll() is None, "the run wrote nothing")
        time.sleep(0.01)
    moved = folder / "moved"
    gone.rename(moved)
    shutil.rmtree(moved)
    out, err = process.communicate(timeout=120)
    require(process.returncode == 0 and "Compute done" in out, f"ended with {process.returncode}: {err}")
    require_complaint(err, gone / "run.dat")


def run(programs):
    mounted = True
    closed = reachable_by_nobody(pathlib.Path(programs) / WINDOW[0])
    for command in (WINDOW, TRANSIENT):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            usual, err = run_to_the_end(programs, command, folder / "run.dat")
            require("could not be written" not in err, f"a usual run complains: {err}")
            file_size_limit(programs, folder, command, usual)
            mounted = full_disk(programs, folder, command, usual) and mounted
            missing(programs, folder, command, usual)
            if command is WINDOW and closed:
                read_only(programs, folder, usual)
            elif command is TRANSIENT:
                vanishing(programs, folder)
    print("file size limit, " + ("full disk, " if mounted else "(no full disk: nothing may be mounted), ") +
          "missing, " + ("closed " if closed else "(not closed: nobody else may start the program) ") +
          "and vanishing folder: run and window went on, standard error named the files")


if __name__ == "__main__":
    reliability.main(__doc__, run)
