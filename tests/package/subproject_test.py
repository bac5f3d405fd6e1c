"""A project that uses the libraries through add_subdirectory installs and packages nothing of Fluvane."""

import os
import pathlib
import tempfile
import unittest

from installed_tree import SOURCE, run, tree_of

PROJECT = """cmake_minimum_required(VERSION 3.25)
project(user LANGUAGES CXX)
add_subdirectory("{source}" fluvane)
install(FILES CMakeLists.txt DESTINATION share/user)
"""


class SubprojectTest(unittest.TestCase):
    def test_only_the_users_own_files_are_installed(self):
        with tempfile.TemporaryDirectory() as folder:
            top = pathlib.Path(folder)
            (top / "CMakeLists.txt").write_text(PROJECT.format(source=SOURCE))
            cmake = os.environ["FLUVANE_CMAKE"]
            run(cmake, "-S", top, "-B", top / "build", "-G", os.environ["FLUVANE_GENERATOR"])
            run(cmake, "--install", top / "build", "--prefix", top / "installed")
            self.assertEqual(tree_of(top / "installed"), ["share/user/CMakeLists.txt"])
            self.assertFalse((top / "build/CPackConfig.cmake").exists())
