"""The headers and vintf gates find what they are there to find, each in a copy of the parts of
the repository it reads with one thing broken, and the driver's answers without a usable tree.

    VESK_ANDROID_TREE=../shared/android13 python3 -m unittest discover -s scripts/boardcheck/tests -t scripts

The headers cases need the tree and are skipped without it.
"""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from boardcheck import headers, vintf
from boardcheck.common import Context, GateFailure

REPO = Path(__file__).resolve().parents[3]
DRIVER = REPO / "scripts" / "board_check.py"
TREE = os.environ.get("VESK_ANDROID_TREE")

# Called from a source of the -impl: a host stand-in's function, whose header is in the copy too.
HOST_ONLY_CALL = """
#include <vesk/host/DeviceRoot.h>

std::string boardRoot() {
    return vesk::host::deviceRoot();
}
"""


class Copy:
    """The given folders of the repository in a scratch folder, with a Context over it."""

    def __init__(self, test, *folders):
        scratch = Path(tempfile.mkdtemp(prefix="vesk-gate-test-"))
        test.addCleanup(shutil.rmtree, scratch)
        self.repo = scratch / "repo"
        for folder in folders:
            shutil.copytree(REPO / folder, self.repo / folder)
        (scratch / "work").mkdir()
        self.context = Context(repo=self.repo, tree=Path(TREE or scratch).resolve(),
                               work=scratch / "work")

    def edit(self, path, old, new):
        file = self.repo / path
        text = file.read_text()
        if old not in text:
            raise AssertionError(f"{path} has no {old!r}")
        file.write_text(text.replace(old, new))


@unittest.skipUnless(TREE, "needs an Android tree ($VESK_ANDROID_TREE)")
class HeadersGateTest(unittest.TestCase):
    SOURCE = "default/core/BoardText.cpp"

    def setUp(self):
        self.copy = Copy(self, "default", "interface", "vesksdk/include", "host/platform/include")

    def test_device_sources_compile(self):
        # The second includes the interface's generated headers and with them the tree's.
        headers.check_headers(self.copy.context,
                              sources=[self.SOURCE, "default/VeskDeviceCallback.cpp"])

    def test_a_host_only_function_called_from_a_device_source_fails(self):
        with open(self.copy.repo / self.SOURCE, "a") as source:
            source.write(HOST_ONLY_CALL)
        with self.assertRaises(GateFailure) as failure:
            headers.check_headers(self.copy.context, sources=[self.SOURCE])
        self.assertEqual("headers", failure.exception.gate)
        self.assertEqual(self.SOURCE, failure.exception.file)
        self.assertRegex(failure.exception.violation,
                         r"^default/core/BoardText\.cpp:\d+:\d+: fatal error: "
                         r"'vesk/host/DeviceRoot\.h' file not found$")

    def test_an_unknown_source_is_refused(self):
        with self.assertRaises(ValueError):
            headers.check_headers(self.copy.context, sources=["host/platform/src/DeviceRoot.cpp"])


class VintfGateTest(unittest.TestCase):
    def setUp(self):
        self.copy = Copy(self, "default")

    def failure(self):
        with self.assertRaises(GateFailure) as failure:
            vintf.check_vintf(self.copy.context)
        self.assertEqual(("vintf", vintf.MATRIX), (failure.exception.gate, failure.exception.file))
        return failure.exception.violation

    def test_the_fragments_agree(self):
        vintf.check_vintf(self.copy.context)

    def test_a_matrix_that_names_another_instance_fails(self):
        self.copy.edit(vintf.MATRIX, "<instance>default</instance>", "<instance>vesk</instance>")
        self.assertEqual("vesk.hardware.veskdevicemanager: names IVeskDeviceManager/vesk, "
                         f"{vintf.MANIFEST} serves IVeskDeviceManager/default", self.failure())

    def test_a_version_outside_the_matrix_range_fails(self):
        self.copy.edit(vintf.MATRIX, "<version>1.0</version>", "<version>1.1-3</version>")
        self.assertEqual("vesk.hardware.veskdevicemanager: version 1.1-3 does not hold 1.0, the "
                         f"version {vintf.MANIFEST} serves", self.failure())

    def test_a_matrix_without_the_hal_fails(self):
        self.copy.edit(vintf.MATRIX, "<name>vesk.hardware.veskdevicemanager</name>",
                       "<name>vesk.hardware.other</name>")
        self.assertEqual(f"names no hidl HAL vesk.hardware.veskdevicemanager, which "
                         f"{vintf.MANIFEST} serves", self.failure())

    def test_version_ranges(self):
        self.assertTrue(vintf.contains("1.0", "1.0"))
        self.assertTrue(vintf.contains("1.0-2", "1.1"))
        self.assertFalse(vintf.contains("1.0", "1.1"))
        self.assertFalse(vintf.contains("1.0-2", "2.0"))
        self.assertFalse(vintf.contains("1.1-2", "1.0"))


class DriverTest(unittest.TestCase):
    def run_driver(self, *args):
        environment = {k: v for k, v in os.environ.items() if k != "VESK_ANDROID_TREE"}
        return subprocess.run([sys.executable, str(DRIVER), *args], capture_output=True,
                              text=True, env=environment)

    def test_no_tree_is_one_line_and_success(self):
        result = self.run_driver()
        self.assertEqual((0, ""), (result.returncode, result.stderr))
        self.assertEqual(1, len(result.stdout.splitlines()), result.stdout)

    def test_a_missing_tree_is_one_line_and_status_2(self):
        scratch = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, scratch)
        result = self.run_driver(str(scratch / "absent"))
        self.assertEqual((2, ""), (result.returncode, result.stdout))
        self.assertEqual([f"board check: no Android tree at {scratch / 'absent'}"],
                         result.stderr.splitlines())

    def test_a_tree_lacking_a_folder_is_one_line_and_status_2(self):
        scratch = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, scratch)
        for folder in headers.TREE_FOLDERS:
            if folder != "system/libfmq/base":
                (scratch / folder).mkdir(parents=True, exist_ok=True)
        result = self.run_driver(str(scratch), "--gate", "headers")
        self.assertEqual((2, ""), (result.returncode, result.stdout))
        self.assertEqual([f"board check: {scratch} lacks system/libfmq/base (needed by the "
                          "headers gate)"], result.stderr.splitlines())

    def test_a_failed_gate_names_the_gate_the_file_and_the_violation(self):
        copy = Copy(self, "default")
        copy.edit(vintf.MATRIX, "<instance>default</instance>", "<instance>vesk</instance>")
        result = self.run_driver(str(copy.context.tree), "--repo", str(copy.repo),
                                 "--gate", "vintf")
        self.assertEqual(1, result.returncode)
        self.assertEqual(["board check: gate vintf failed", f"board check: file {vintf.MATRIX}",
                          "board check: vesk.hardware.veskdevicemanager: names "
                          f"IVeskDeviceManager/vesk, {vintf.MANIFEST} serves "
                          "IVeskDeviceManager/default"], result.stderr.splitlines())


if __name__ == "__main__":
    unittest.main()
