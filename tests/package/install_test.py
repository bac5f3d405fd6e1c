"""An installation is whole, starts from where it lies, and rests on nothing outside it."""

import filecmp
import os
import pathlib
import re
import stat
import tempfile
import unittest

from installed_tree import (BUILD, COMPANIONS, SOURCE, InstalledTree, bare_environment, check_companion_help,
                            check_program, run, tree_of)

LINK = re.compile(r"\]\(([^)#\s]+)")


def setUpModule():
    global tree
    tree = InstalledTree()
    unittest.addModuleCleanup(tree.remove)


class InstallTest(unittest.TestCase):
    def test_program_starts_from_where_it_was_moved_to(self):
        check_program(self, tree.prefix / "bin/fluvane")

    def test_every_library_of_the_program_is_found(self):
        self.assertNotIn("not found", run("ldd", tree.prefix / "bin/fluvane").stdout)

    def test_all_sample_cases_and_velocity_sets_are_there_unchanged(self):
        wanted = tree_of(SOURCE / "cases")
        self.assertEqual(tree_of(tree.prefix / "share/fluvane/cases"), wanted)
        _, differing, missing = filecmp.cmpfiles(
            SOURCE / "cases", tree.prefix / "share/fluvane/cases", wanted, shallow=False)
        self.assertEqual((differing, missing), ([], []))

    def test_companions_start_without_the_source_tree(self):
        for name in COMPANIONS:
            with self.subTest(name):
                check_companion_help(self, tree.prefix / "bin" / name)

    def test_companions_start_through_a_link_from_elsewhere(self):
        for name in COMPANIONS:
            with self.subTest(name), tempfile.TemporaryDirectory() as folder:
                link = pathlib.Path(folder) / name
                link.symlink_to(tree.prefix / "bin" / name)
                check_companion_help(self, link)

    def test_bin_holds_the_program_and_the_companions_alone(self):
        self.assertEqual(tree_of(tree.prefix / "bin"), ["fluvane", *COMPANIONS])

    def test_mesh_generator_finds_its_modules_and_repeats_a_shipped_mesh(self):
        with tempfile.TemporaryDirectory() as folder:
            made = pathlib.Path(folder) / "mesh.msh"
            run(tree.prefix / "share/fluvane/tools/make_sample_meshes.py", "cavity", "--cells", "32", "--out", made,
                env=bare_environment(folder))
            shipped = tree.prefix / "share/fluvane/cases/cavity/cavity_32.msh"
            self.assertEqual(made.read_bytes(), shipped.read_bytes())

    def test_starting_companions_leaves_nothing_in_the_installation(self):
        untouched = InstalledTree()
        self.addCleanup(untouched.remove)
        before = tree_of(untouched.prefix)
        for name in COMPANIONS:
            check_companion_help(self, untouched.prefix / "bin" / name)
        self.assertEqual(tree_of(untouched.prefix), before)

    def test_links_of_the_documents_lead_to_installed_files(self):
        lost = []
        pages = [*(tree.prefix / "share/doc/fluvane").rglob("*.md"), *(tree.prefix / "share/fluvane").rglob("*.md")]
        for page in pages:
            for target in LINK.findall(page.read_text()):
                if "://" not in target and not (page.parent / target).exists():
                    lost.append(f"{page.relative_to(tree.prefix)}: {target}")
        self.assertGreater(len(pages), 10)
        self.assertEqual(lost, [])

    def test_no_file_names_the_folder_it_was_built_from(self):
        # Debugging symbols of a debug build do name it; no package has them.
        stripped = InstalledTree("--strip")
        self.addCleanup(stripped.remove)
        # A folder at the root, such as /src, is a word that files hold for other reasons.
        folders = [os.fsencode(folder) for folder in (SOURCE, BUILD) if len(pathlib.Path(folder).parts) > 2]
        naming = []
        for path in (stripped.prefix / name for name in tree_of(stripped.prefix)):
            if path.is_file() and any(folder in path.read_bytes() for folder in folders):
                naming.append(path)
        self.assertEqual(naming, [])

    def test_files_can_be_read_by_all_and_written_by_their_owner_and_programs_be_run(self):
        started = {"bin/fluvane", "share/fluvane/tools/make_sample_meshes.py"}
        for name in COMPANIONS:
            started |= {f"bin/{name}", f"share/fluvane/tools/{name}"}
        for name in tree_of(tree.prefix):
            path = tree.prefix / name
            if not path.is_symlink():
                with self.subTest(name):
                    self.assertEqual(stat.S_IMODE(path.stat().st_mode), 0o755 if name in started else 0o644)
