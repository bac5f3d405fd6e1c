"""Menu entry, software-centre entry, icons and manual pages of an installation are valid and fit together."""

import configparser
import functools
import gzip
import re
import shutil
import struct
import unittest
import xml.etree.ElementTree as ElementTree

from installed_tree import COMPANIONS, VERSION, InstalledTree, bare_environment, run, tree_of

ID = "org.fluvane.Fluvane"


# Headings under which a page tells options that more than one command has.
SHARED = ("Of several commands", "Of picture and animate")


def setUpModule():
    global share, bin_folder
    tree = InstalledTree()
    unittest.addModuleCleanup(tree.remove)
    share = tree.prefix / "share"
    bin_folder = tree.prefix / "bin"


def png_size(path):
    """(width, height) from the first chunk of a PNG file."""
    head = path.read_bytes()[:24]
    if head[:8] != b"\x89PNG\r\n\x1a\n" or head[12:16] != b"IHDR":
        raise AssertionError(f"{path} is no PNG file")
    return struct.unpack(">II", head[16:24])


def page_text(path):
    return gzip.decompress(path.read_bytes()).decode() if path.suffix == ".gz" else path.read_text()


@functools.cache
def help_of(companion, command):
    return run(bin_folder / companion, *command, "--help", env=bare_environment(share)).stdout


def commands_of(companion, command=()):
    """Every command that has no further ones below it, as a tuple of words."""
    below = re.findall(r"^ {4}([a-z][a-z-]*)(?: |$)", help_of(companion, command), re.MULTILINE)
    if not below:
        return [command]
    return [leaf for name in below for leaf in commands_of(companion, (*command, name))]


def options_in_help(text):
    return set(re.findall(r"^  (?:-\w[^,\n]*, )?(--[\w-]+)", text, re.MULTILINE)) - {"--help"}


def options_by_heading(page):
    """The options that each .SS section of a manual page names."""
    sections = re.split(r"^\.S[SH] ", page.replace("\\-", "-"), flags=re.MULTILINE)
    return {head: set(re.findall(r"--[A-Za-z][\w-]*", body)) for head, _, body in (s.partition("\n") for s in sections)}


class MenuEntryTest(unittest.TestCase):
    def entry(self):
        parser = configparser.ConfigParser(interpolation=None, delimiters="=")
        parser.optionxform = str
        parser.read(share / f"applications/{ID}.desktop", encoding="utf-8")
        return parser["Desktop Entry"]

    def test_menu_entry_starts_an_installed_program(self):
        self.assertTrue((bin_folder / self.entry()["Exec"].split()[0]).is_file())

    def test_menu_entry_names_an_installed_icon(self):
        self.assertTrue((share / f"icons/hicolor/scalable/apps/{self.entry()['Icon']}.svg").is_file())

    @unittest.skipUnless(shutil.which("desktop-file-validate"), "desktop-file-validate is not installed")
    def test_menu_entry_is_valid(self):
        self.assertEqual(run("desktop-file-validate", share / f"applications/{ID}.desktop").stdout, "")


class SoftwareCentreTest(unittest.TestCase):
    def component(self):
        return ElementTree.parse(share / f"metainfo/{ID}.metainfo.xml").getroot()

    def test_entry_names_the_installed_menu_entry_and_program(self):
        self.assertEqual(self.component().findtext("id"), ID)
        self.assertTrue((share / "applications" / self.component().findtext("launchable")).is_file())
        self.assertTrue((bin_folder / self.component().findtext("provides/binary")).is_file())

    def test_newest_release_is_this_version(self):
        self.assertEqual(self.component().find("releases/release").get("version"), VERSION)

    @unittest.skipUnless(shutil.which("appstreamcli"), "appstreamcli is not installed")
    def test_entry_is_valid(self):
        run("appstreamcli", "validate", "--no-net", share / f"metainfo/{ID}.metainfo.xml")


class IconTest(unittest.TestCase):
    def test_every_size_is_there_and_as_large_as_its_folder_says(self):
        for size in (16, 22, 24, 32, 48, 64, 128, 256, 512):
            with self.subTest(size):
                self.assertEqual(png_size(share / f"icons/hicolor/{size}x{size}/apps/{ID}.png"), (size, size))


class ManualPageTest(unittest.TestCase):
    def pages(self):
        return sorted((share / "man/man1").iterdir())

    def test_every_program_has_a_page_and_every_page_a_program(self):
        documented = sorted(page.name.split(".")[0] for page in self.pages())
        self.assertEqual(documented, tree_of(bin_folder))

    def test_pages_name_program_and_version(self):
        for page in self.pages():
            with self.subTest(page.name):
                title = next(line for line in page_text(page).splitlines() if line.startswith(".TH"))
                self.assertIn(page.name.split(".")[0].upper(), title.replace("\\-", "-"))
                self.assertIn(f'"Fluvane {VERSION}"', title)

    @unittest.skipUnless(shutil.which("groff"), "groff is not installed")
    def test_pages_are_laid_out_without_a_warning(self):
        for page in self.pages():
            with self.subTest(page.name):
                done = run("groff", "-man", "-ww", "-z", "-Tutf8", "-Kutf8", input=page_text(page))
                self.assertEqual(done.stderr, "")

    @unittest.skipUnless(shutil.which("mandoc"), "mandoc is not installed")
    def test_pages_hold_no_doubtful_markup(self):
        for page in self.pages():
            with self.subTest(page.name):
                done = run("mandoc", "-T", "lint", "-W", "warning", input=page_text(page))
                self.assertEqual(done.stdout, "")

    def test_pages_of_companions_tell_every_command_and_option_and_no_other(self):
        for companion in COMPANIONS:
            told = options_by_heading(page_text(next((share / "man/man1").glob(f"{companion}.1*"))))
            shared = set().union(*(told.get(heading, set()) for heading in SHARED))
            offered = set()
            for command in commands_of(companion):
                with self.subTest(companion, command=command):
                    self.assertIn(" ".join(command), told)
                    options = options_in_help(help_of(companion, command))
                    self.assertEqual(options - told[" ".join(command)] - shared, set())
                    self.assertEqual(told[" ".join(command)] - options, set())
                    offered |= options
            with self.subTest(companion):
                self.assertEqual(shared - offered, set())
