#!/usr/bin/env python3
"""The host runs a genrule of an Android.bp as the board's build does: $(in), $(out) and $$ take
Soong's meanings, and a missing module, a failing command or an empty output is one error line and
status 1. The released-hash rule of the interface gives the hash current.txt records."""
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

REPO = Path(__file__).resolve().parents[2]
SCRIPT = REPO / "scripts/run_genrule.py"
RELEASED = "vesk.hardware.veskdevicemanager@1.0-released-hash"


def run(bp, name, out_dir):
    return subprocess.run([sys.executable, str(SCRIPT), str(bp), name, str(out_dir)],
                          capture_output=True, text=True)


class RunGenruleTest(unittest.TestCase):
    def setUp(self):
        self.scratch = tempfile.TemporaryDirectory()
        self.dir = Path(self.scratch.name)

    def tearDown(self):
        self.scratch.cleanup()

    def genrule(self, cmd, srcs=("in.txt",)):
        quoted = ", ".join(f'"{s}"' for s in srcs)
        escaped = cmd.replace("\\", "\\\\").replace('"', '\\"')
        bp = self.dir / "Android.bp"
        bp.write_text(f'genrule {{\n    name: "rule",\n    srcs: [{quoted}],\n'
                      f'    out: ["out.h"],\n    cmd: "{escaped}",\n}}\n')
        return bp

    def test_the_released_hash_is_the_one_current_txt_records(self):
        recorded = re.search(r"^([0-9a-f]{64}) vesk\.hardware\.veskdevicemanager@1\.0::"
                             r"IVeskDeviceManager$", (REPO / "interface/current.txt").read_text(),
                             re.M).group(1)
        result = run(REPO / "interface/Android.bp", RELEASED, self.dir)
        self.assertEqual(0, result.returncode, result.stderr)
        self.assertEqual(f'#define VESK_RELEASED_HASH_IVESKDEVICEMANAGER "{recorded}"\n',
                         (self.dir / "ReleasedInterfaceHash.h").read_text())

    def test_in_out_and_the_dollar_take_soongs_meanings(self):
        (self.dir / "in.txt").write_text("x\n")
        bp = self.genrule("cat $(in) > $(out); echo '$$HOME' >> $(out)")
        result = run(bp, "rule", self.dir / "gen")
        self.assertEqual(0, result.returncode, result.stderr)
        self.assertEqual("x\n$HOME\n", (self.dir / "gen/out.h").read_text())

    def test_a_missing_module_is_one_line(self):
        result = run(self.genrule("true"), "other", self.dir / "gen")
        self.assertEqual(1, result.returncode)
        self.assertEqual(f"run_genrule: {self.dir}/Android.bp has no genrule other\n",
                         result.stderr)

    def test_an_empty_output_is_one_line(self):
        (self.dir / "in.txt").write_text("no hash here\n")
        result = run(self.genrule("sed -n 's/^zzz$$//p' $(in) > $(out)"), "rule",
                     self.dir / "gen")
        self.assertEqual(1, result.returncode)
        self.assertEqual(f"run_genrule: rule made no {self.dir}/gen/out.h\n", result.stderr)

    def test_a_failing_command_is_one_line(self):
        result = run(self.genrule("echo made > $(out); exit 3"), "rule", self.dir / "gen")
        self.assertEqual(1, result.returncode)
        self.assertEqual(f"run_genrule: rule made no {self.dir}/gen/out.h\n", result.stderr)


if __name__ == "__main__":
    unittest.main()
