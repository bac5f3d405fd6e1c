"""An installation in a temporary folder, and ways to start what is in it."""

import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time

SOURCE = pathlib.Path(os.environ["FLUVANE_SOURCE"])
BUILD = pathlib.Path(os.environ["FLUVANE_BUILD"])
VERSION = os.environ["FLUVANE_VERSION"]
COMPANIONS = sorted(p.name for p in (SOURCE / "tools").glob("fluvane-*") if p.suffix == "")


def run(*command, **options):
    """The finished command; a failure's output is in the exception's text."""
    if "input" not in options:
        options["stdin"] = subprocess.DEVNULL
    done = subprocess.run([str(part) for part in command], capture_output=True, text=True, timeout=400, **options)
    if done.returncode:
        raise AssertionError(f"{command} gave {done.returncode}:\n{done.stdout}\n{done.stderr}")
    return done


class InstalledTree:
    """What `cmake --install` lays down, moved afterwards: nothing in it may rest on where it was laid."""

    def __init__(self, *options):
        self._folder = tempfile.TemporaryDirectory()
        top = pathlib.Path(self._folder.name)
        run(os.environ["FLUVANE_CMAKE"], "--install", BUILD, "--prefix", top / "first", *options)
        self.prefix = top / "a place"
        shutil.move(top / "first", self.prefix)

    def remove(self):
        self._folder.cleanup()


def tree_of(prefix):
    """Paths of all files below a prefix."""
    return sorted(str(p.relative_to(prefix)) for p in prefix.rglob("*") if p.is_symlink() or not p.is_dir())


def bare_environment(home):
    """What a program started from a menu may count on; nothing of the developer's own settings."""
    return {
        "PATH": "/usr/bin:/bin",
        "HOME": str(home),
        "XDG_RUNTIME_DIR": str(home),
        "LANG": "C.UTF-8",
        "QT_QPA_PLATFORM": "offscreen",
    }


def _waits_for_events(pid):
    """True once the platform plugin is loaded and the first thread sleeps."""
    maps = pathlib.Path(f"/proc/{pid}/maps").read_text()
    state = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()[0]
    return "libqoffscreen" in maps and state == "S"


class StartReport:
    """What a started window program did: whether it came up, its file, what it said, how it ended."""

    def __init__(self, program):
        with tempfile.TemporaryDirectory() as home:
            process = subprocess.Popen([str(program)], cwd=home, env=bare_environment(home), stdin=subprocess.DEVNULL,
                                       stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
            self.came_up = self._settled(process)
            self.file = os.path.realpath(f"/proc/{process.pid}/exe") if process.poll() is None else ""
            process.send_signal(signal.SIGTERM)
            try:
                self.said, _ = process.communicate(timeout=10)
            except subprocess.TimeoutExpired:
                process.kill()
                self.said, _ = process.communicate()
            self.code = process.returncode
            self.left_behind = sorted(os.listdir(home))

    @staticmethod
    def _settled(process):
        """Waits for the event loop, and for another second to see that nothing ends it."""
        deadline = time.monotonic() + 20
        while process.poll() is None and time.monotonic() < deadline:
            if _waits_for_events(process.pid):
                time.sleep(1)
                return process.poll() is None
            time.sleep(0.05)
        return False


def check_program(test, program):
    """The program of an installation starts in an empty home, complains of nothing and goes when told to."""
    report = StartReport(program)
    test.assertTrue(report.came_up, report.said)
    test.assertEqual(report.file, os.path.realpath(program))
    test.assertEqual(report.said, "")
    test.assertEqual(report.code, -signal.SIGTERM)
    test.assertEqual(report.left_behind, [])


def check_companion_help(test, launcher):
    """A companion says what it is for when it stands alone, outside the developers' tree."""
    with tempfile.TemporaryDirectory() as home:
        done = run(launcher, "--help", cwd=home, env=bare_environment(home))
        test.assertIn("usage", done.stdout.lower())
        test.assertIn(launcher.name, done.stdout)
