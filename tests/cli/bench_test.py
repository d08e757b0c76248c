"""`zqv bench`. The speed itself is not tested."""

import json
import re
import unittest

import program
from program import SAMPLES, zqv


class BenchTest(program.TestCase):
    def test_prints_what_it_measured(self):
        sizes = [path.stat().st_size for path in SAMPLES.glob("*.eml")]
        out = self.expect(zqv("bench", "--rounds", "3", *sorted(SAMPLES.glob("*.eml")))).out
        self.assertRegex(out, rf"\A{len(sizes)} messages, {sum(sizes):,} bytes, 3 rounds\n"
                              r"slowest +\d+\.\d MB/s +\d+ messages/s\n"
                              r"median +\d+\.\d MB/s +\d+ messages/s\n"
                              r"fastest +\d+\.\d MB/s +\d+ messages/s\n\Z")

    def test_speeds_are_in_order(self):
        out = self.expect(zqv("bench", "--rounds", "9", "--json", SAMPLES / "nested.eml")).out
        bench = json.loads(out)["bench"]
        speeds = [bench[key]["megabytes_a_second"] for key in ("slowest", "median", "fastest")]
        self.assertEqual(speeds, sorted(speeds))
        self.assertGreater(speeds[0], 0)
        for key in ("slowest", "median", "fastest"):
            ratio = bench[key]["megabytes_a_second"] * 1e6 / bench[key]["messages_a_second"]
            self.assertAlmostEqual(ratio, (SAMPLES / "nested.eml").stat().st_size, 3)

    def test_messages_that_cannot_be_parsed_are_left_out(self):
        bad = self.write("bad.eml", b"\xFFx")
        result = self.expect(zqv("bench", bad, SAMPLES / "plain.eml"), 1, None, None)
        self.assertRegex(result.out, r"\A1 message, ")
        self.assertEqual(len(re.findall("\n", result.err)), 1)
        self.assertIn(f"zqv: {bad}: UnsupportedOperationException: ", result.err)

    def test_nothing_to_measure(self):
        self.expect(zqv("bench", "-r", self.folder), 1, "",
                    "zqv: there is no message to measure with\n")


if __name__ == "__main__":
    unittest.main()
