"""The Debian package holds what an installation holds, says what it needs, and works once it is unpacked."""

import os
import pathlib
import shutil
import tempfile
import unittest

from installed_tree import (BUILD, COMPANIONS, VERSION, InstalledTree, check_companion_help, check_program, run,
                            tree_of)


def setUpModule():
    global package, unpacked
    for program in ("dpkg-deb", "dpkg-shlibdeps", "file"):
        if not shutil.which(program):
            raise unittest.SkipTest(f"{program} is not installed")
    folder = tempfile.TemporaryDirectory()
    unittest.addModuleCleanup(folder.cleanup)
    top = pathlib.Path(folder.name)
    run(os.environ["FLUVANE_CPACK"], "-G", "DEB", "-B", top, cwd=BUILD, umask=0o077)
    (package,) = top.glob("*.deb")
    unpacked = top / "root"
    run("dpkg-deb", "-x", package, unpacked)


def field(name):
    return run("dpkg-deb", "-f", package, name).stdout.strip()


def names_in(text):
    """Names of packages in a field, without versions and alternatives."""
    return {entry.split("|")[0].split()[0].split(":")[0] for entry in text.split(",")}


class DebianPackageTest(unittest.TestCase):
    def test_program_starts_from_the_unpacked_package(self):
        check_program(self, unpacked / "usr/bin/fluvane")

    def test_companions_start_from_the_unpacked_package(self):
        for name in COMPANIONS:
            with self.subTest(name):
                check_companion_help(self, unpacked / "usr/bin" / name)

    def test_package_holds_what_an_installation_holds(self):
        tree = InstalledTree()
        self.addCleanup(tree.remove)
        self.assertEqual(tree_of(unpacked / "usr"), tree_of(tree.prefix))
        self.assertEqual(os.listdir(unpacked), ["usr"])

    def test_package_says_name_and_version(self):
        self.assertEqual(field("Package"), "fluvane")
        self.assertEqual(field("Version"), VERSION)

    def test_package_depends_on_the_libraries_that_the_program_loads(self):
        needed = names_in(field("Depends"))
        for name in ("libc6", "libgomp1", "libqt5core5a", "libqt5gui5", "libqt5widgets5", "python3"):
            self.assertIn(name, needed)

    def test_package_recommends_fonts_and_the_companions_libraries(self):
        wanted = names_in(field("Recommends"))
        for name in ("fonts-liberation", "fonts-wqy-zenhei", "python3-numpy", "python3-matplotlib", "python3-gmsh"):
            self.assertIn(name, wanted)

    def test_folders_are_open_to_everybody_whatever_the_builders_mask(self):
        listing = run("dpkg-deb", "-c", package).stdout.splitlines()
        folders = [line for line in listing if line.startswith("d")]
        self.assertGreater(len(folders), 20)
        self.assertEqual([line for line in folders if not line.startswith("drwxr-xr-x root/root")], [])

    def test_program_carries_no_debugging_symbols(self):
        sections = run("readelf", "--section-headers", "--wide", unpacked / "usr/bin/fluvane").stdout
        self.assertIn(".text", sections)
        self.assertNotIn(".symtab", sections)
        self.assertNotIn(".debug_info", sections)
