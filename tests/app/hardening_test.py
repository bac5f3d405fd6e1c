"""Checks the built program for what a release is hardened with: hardening_test.py READELF PROGRAM."""

import re
import subprocess
import sys
import unittest

READELF, PROGRAM = sys.argv[1:3]


def readelf(*options):
    return subprocess.run(
        [READELF, "--wide", *options, PROGRAM], check=True, capture_output=True, text=True, env={"LC_ALL": "C"}
    ).stdout


class HardeningTest(unittest.TestCase):
    def expect(self, pattern, *options):
        self.assertTrue(re.search(pattern, readelf(*options)), f"readelf {' '.join(options)} shows no {pattern}")

    def test_the_program_is_loaded_at_an_address_of_its_own_every_time(self):
        self.expect(r"Type:\s+DYN", "--file-header")
        self.expect(r"\(FLAGS_1\).*\bPIE\b", "--dynamic")

    def test_what_the_linker_fills_in_cannot_be_written_afterwards(self):
        self.expect("GNU_RELRO", "--program-headers")
        self.expect(r"\(FLAGS\).*\bBIND_NOW\b", "--dynamic")

    def test_no_segment_can_be_both_written_and_run(self):
        headers = readelf("--program-headers").splitlines()
        self.assertTrue(any("GNU_STACK" in line for line in headers))
        self.assertEqual([line for line in headers if " RWE " in line], [])

    def test_stacks_have_canaries(self):
        self.expect(r"UND __stack_chk_fail\b", "--dyn-syms")

    def test_library_calls_check_the_room_they_write_to(self):
        self.expect(r"UND __\w+_chk\b", "--dyn-syms")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
