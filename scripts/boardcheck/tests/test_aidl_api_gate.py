"""The aidl-api gate finds what it is there to find, each case in a copy of the stable-AIDL package
with one thing broken: a method added to the sources, a current API that differs from the frozen
one, an edited frozen file, a wrong or missing hash, a frozen version incompatible with the one
before; the repository's package passes.

    VESK_ANDROID_TREE=../shared/android13 python3 -m unittest discover -s scripts/boardcheck/tests -t scripts

The cases need the tree (its aidl, built once into the folder the host builds share, and its
hash_gen.sh) and are skipped without it.
"""
import shutil
import subprocess
import tempfile
import unittest
import unittest.mock
from pathlib import Path

from boardcheck import aidl_api, aidl_tool
from boardcheck.common import GateFailure
from boardcheck.tests.support import TREE, Copy

PACKAGE = "interface/veskdevicemanager/aidl"
SOURCES = f"{PACKAGE}/vesk/hardware/veskdevicemanager"
API = f"{PACKAGE}/aidl_api/vesk.hardware.veskdevicemanager"
MANAGER = "vesk/hardware/veskdevicemanager/IVeskDeviceManager.aidl"
LAST_METHOD = "int getPowerAmplifierState();"


@unittest.skipUnless(TREE, "needs an Android tree ($VESK_ANDROID_TREE)")
class AidlApiGateTest(unittest.TestCase):
    def setUp(self):
        self.copy = Copy(self, PACKAGE)

    def failure(self, file):
        with self.assertRaises(GateFailure) as failure:
            aidl_api.check_aidl_api(self.copy.context)
        self.assertEqual(("aidl-api", file), (failure.exception.gate, failure.exception.file),
                         failure.exception.violation)
        return failure.exception.violation

    def add_method(self, path, indent):
        self.copy.edit(path, LAST_METHOD, f"{LAST_METHOD}\n{indent}int addedMethod();")

    def hash_of(self, version, previous):
        """hash_gen.sh's hash of a version folder of the copy, run here as aidl_api.go runs it."""
        out = Path(tempfile.mkdtemp()) / "hash"
        self.addCleanup(shutil.rmtree, out.parent)
        subprocess.run(["bash", str(Path(TREE) / "system/tools/aidl/build/hash_gen.sh"),
                        str(self.copy.repo / API / version), previous, str(out)], check=True)
        return out.read_text().strip()

    def test_the_repository_passes(self):
        aidl_api.check_aidl_api(self.copy.context)
        self.assertRegex(self.copy.context.notes[-1],
                         r"^aidl-api: 1 interface\(s\), 1 frozen version\(s\) checked in ")

    def test_a_method_added_to_the_sources_fails(self):
        self.add_method(f"{SOURCES}/IVeskDeviceManager.aidl", "    ")
        self.assertEqual(f"differs from {API}/current: + int addedMethod();",
                         self.failure(f"{PACKAGE}/{MANAGER}"))

    def test_a_current_api_that_is_not_frozen_fails(self):
        self.add_method(f"{SOURCES}/IVeskDeviceManager.aidl", "    ")
        self.add_method(f"{API}/current/{MANAGER}", "  ")
        self.assertEqual("differs from frozen version 1: + int addedMethod();",
                         self.failure(f"{API}/current/{MANAGER}"))

    def test_an_edited_frozen_file_fails(self):
        self.copy.edit(f"{API}/1/{MANAGER}", "int getSysLedState();",
                       "int getSysLedState(int led);")
        edited = self.hash_of("1", "latest-version")
        recorded = (self.copy.repo / API / "1/.hash").read_text().strip()
        self.assertNotEqual(recorded, edited)
        self.assertEqual(f"version 1's files hash to {edited} (hash_gen.sh), its .hash ends "
                         f"with {recorded}: a frozen version is never edited",
                         self.failure(f"{API}/1/.hash"))

    def test_a_wrong_hash_fails(self):
        right = (self.copy.repo / API / "1/.hash").read_text().strip()
        (self.copy.repo / API / "1/.hash").write_text(f"{right}\n{'0' * 40}\n")
        self.assertEqual(f"version 1's files hash to {right} (hash_gen.sh), its .hash ends "
                         f"with {'0' * 40}: a frozen version is never edited",
                         self.failure(f"{API}/1/.hash"))

    def test_a_missing_hash_fails(self):
        (self.copy.repo / API / "1/.hash").unlink()
        self.assertEqual("frozen version 1 has no .hash", self.failure(f"{API}/1"))

    def freeze_version_2(self, change):
        """Version 2 frozen as aidl_interface freezes it (a copy of current, hashed with the
        number of the version before), with `change` made to it, current and the sources."""
        shutil.copytree(self.copy.repo / API / "current", self.copy.repo / API / "2")
        for path in (f"{SOURCES}/IVeskDeviceManager.aidl", f"{API}/current/{MANAGER}",
                     f"{API}/2/{MANAGER}"):
            self.copy.edit(path, *change)
        (self.copy.repo / API / "2/.hash").write_text(self.hash_of("2", "1") + "\n")
        self.copy.edit(f"{PACKAGE}/Android.bp", '            imports: [],\n        },\n',
                       '            imports: [],\n        },\n        {\n'
                       '            version: "2",\n            imports: [],\n        },\n')

    def test_a_compatible_version_2_passes(self):
        self.freeze_version_2((LAST_METHOD, f"{LAST_METHOD}\n  int addedMethod();"))
        aidl_api.check_aidl_api(self.copy.context)
        self.assertRegex(self.copy.context.notes[-1], r"1 interface\(s\), 2 frozen version")

    def test_a_version_2_that_removes_a_method_fails(self):
        self.freeze_version_2((LAST_METHOD, ""))
        violation = self.failure(f"{API}/1/{MANAGER}")
        self.assertRegex(violation, r"^not compatible with version 1: Removed or changed method: "
                         r"vesk\.hardware\.veskdevicemanager\.IVeskDeviceManager\."
                         r"getPowerAmplifierState\(\)$")


class AidlToolTest(unittest.TestCase):
    def test_a_configured_folder_keeps_the_name_of_its_tree(self):
        folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, folder)
        self.assertIsNone(aidl_tool.configured_tree(folder))
        (folder / "CMakeCache.txt").write_text("CMAKE_GENERATOR:INTERNAL=Ninja\n"
                                               "VESK_ANDROID_TREE:PATH=/work/x/../shared/tree\n")
        self.assertEqual("/work/x/../shared/tree", aidl_tool.configured_tree(folder))

    def test_the_folder_is_the_one_the_host_builds_share(self):
        with unittest.mock.patch.dict("os.environ", {"VESK_PLATFORM_TOOLS_DIR": "/b/tools"}):
            self.assertEqual(Path("/b/tools/host"), aidl_tool.tools_folder())
        with unittest.mock.patch.dict("os.environ", {}, clear=True):
            self.assertEqual(aidl_tool.CHECKOUT / "build/android-tree/host",
                             aidl_tool.tools_folder())


if __name__ == "__main__":
    unittest.main()
