#!/usr/bin/env python3
"""The Android.bp/CMake check finds what it is there to find: each case changes one module of
the tree as read (a source, a library, a module) and expects the check to name the difference;
the tree itself passes."""
import copy
import sys
import tempfile
import unittest
from pathlib import Path

REPO = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(REPO / "scripts"))
import check_bp_parity as parity  # noqa: E402

IMPL = "vesk.hardware.veskdevicemanager@1.0-impl"
DISPLAY = "vesk.hardware.veskdevicemanager@1.0-displaymode"


class ParityTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory() as scratch:
            cls.targets = parity.host_targets(scratch, sys.argv[1] if len(sys.argv) > 1 else "cmake")
        cls.modules = parity.device_modules()

    def changed(self, name, key, change):
        modules = copy.deepcopy(self.modules)
        change(modules[name][2].setdefault(key, []))
        return parity.check(self.targets, modules)

    def test_the_tree_passes(self):
        self.assertEqual([], parity.check(self.targets, self.modules))

    def test_a_source_missing_on_the_device_is_named(self):
        problems = self.changed(IMPL, "srcs", lambda srcs: srcs.remove("VeskDeviceManagerDebug.cpp"))
        self.assertIn(f"{IMPL}: default/VeskDeviceManagerDebug.cpp is built by "
                      "['veskdevicemanager_objects'] but not on the device", problems)

    def test_a_source_missing_on_the_host_is_named(self):
        problems = self.changed(DISPLAY, "srcs", lambda srcs: srcs.append("Extra.cpp"))
        self.assertIn(f"{DISPLAY}: default/DisplayModeControl/Extra.cpp is built on the device "
                      "but not by ['vesk_displaymode']", problems)

    def test_a_library_missing_on_the_device_is_named(self):
        problems = self.changed(DISPLAY, "static_libs", lambda libs: libs.clear())
        self.assertIn(f"{DISPLAY}: uses vesk_log on the host, not on the device", problems)

    def test_an_include_folder_the_host_lacks_is_named(self):
        problems = self.changed(DISPLAY, "export_include_dirs", lambda dirs: dirs.append("gone"))
        self.assertTrue(any(p.startswith(f"{DISPLAY}: include folder ") for p in problems),
                        problems)

    def test_a_program_a_host_test_starts_is_no_library_of_it_only_when_declared(self):
        vts = "VtsHalVeskDeviceManagerTargetTest"
        runs = parity.PAIRS[vts].pop("runs")
        try:
            problems = parity.check(self.targets, self.modules)
        finally:
            parity.PAIRS[vts]["runs"] = runs
        self.assertIn(f"{vts}: uses veskdevicemanager_aidl_service on the host, not on the device",
                      problems)

    def test_the_pairs_of_a_tree_are_left_alone_in_a_build_without_one(self):
        tree_targets = {parity.TREE_TARGET} | {
            target for pair in parity.PAIRS.values() if pair.get("android_tree")
            for target in pair["targets"]}
        without = {name: target for name, target in self.targets.items()
                   if name not in tree_targets}
        self.assertEqual([], parity.check(without, self.modules))
        self.assertIn("vesk.hardware.veskdevicemanager-service-impl: CMake has no target "
                      "veskdevicemanager_aidl_impl",
                      parity.check({**without, parity.TREE_TARGET: {}}, self.modules))

    def test_an_unpaired_module_is_named(self):
        modules = copy.deepcopy(self.modules)
        modules["libnew"] = (Path("default"), "cc_library", {"name": "libnew"})
        self.assertIn("libnew (default/Android.bp) has no CMake counterpart in PAIRS and is not "
                      "listed as device-only", parity.check(self.targets, modules))

    def test_blueprint_syntax(self):
        modules = parity.blueprint_modules(
            'cc_library { // a comment\n name: "x", srcs: ["a.cpp", "b.cpp",], vendor: true,\n'
            ' arch: { arm: { cflags: ["-DARM"] } }, }\ncc_test { name: "y" }')
        self.assertEqual([("cc_library", {"name": "x", "srcs": ["a.cpp", "b.cpp"], "vendor": True,
                                          "arch": {"arm": {"cflags": ["-DARM"]}}}),
                          ("cc_test", {"name": "y"})], modules)

    def test_blueprint_variables_and_concatenation(self):
        modules = parity.blueprint_modules(
            'files = ["a.cpp"]\nfiles += ["b.cpp"]\nflags = {cflags: ["-DA"]}\n'
            'cc_library { name: "x", srcs: files + ["c.cpp"], arch: flags + {ldflags: ["-s"]},'
            ' version: 3 }')
        self.assertEqual([("cc_library", {"name": "x", "srcs": ["a.cpp", "b.cpp", "c.cpp"],
                                          "arch": {"cflags": ["-DA"], "ldflags": ["-s"]},
                                          "version": 3})], modules)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
