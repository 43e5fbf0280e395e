#!/usr/bin/env python3
"""The core's isolation check finds what it is there to find: the tree passes; an include of an
interface header planted in a copy of the core, an interface library named in the copy's
Android.bp, and an include folder of the HIDL runtime added to the core's compile command are
each named.

Usage: check_core_isolation_test.py BUILD/compile_commands.json"""
import json
import shlex
import shutil
import sys
import tempfile
import unittest
from pathlib import Path

REPO = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(REPO / "scripts"))
import check_core_isolation as isolation  # noqa: E402

if len(sys.argv) != 2:
    sys.exit(__doc__.splitlines()[-1])
COMPILE_COMMANDS = Path(sys.argv[1])


class IsolationTest(unittest.TestCase):
    def setUp(self):
        scratch = Path(tempfile.mkdtemp(prefix="vesk-core-isolation-"))
        self.addCleanup(shutil.rmtree, scratch)
        self.scratch = scratch
        self.core = scratch / "default" / "core"
        shutil.copytree(isolation.CORE, self.core)

    def edit(self, name, old, new):
        path = self.core / name
        text = path.read_text()
        self.assertIn(old, text)
        path.write_text(text.replace(old, new, 1))

    def plant(self, name, after, line):
        """Puts `line` below the line `after` of the copy's file; its line number."""
        self.edit(name, after + "\n", after + "\n" + line + "\n")
        return (self.core / name).read_text().splitlines().index(line) + 1

    def test_the_tree_passes(self):
        self.assertEqual([], isolation.check(COMPILE_COMMANDS, isolation.CORE))

    def test_an_interface_include_is_named_with_its_line(self):
        hidl = self.plant("Leds.cpp", "#include <vesksdk.h>", "#include <hidl/HidlSupport.h>")
        binder = self.plant("CoreTypes.h", "#include <vector>",
                            "#include <android/binder_parcel.h>")
        generated = self.plant("Log.cpp", '#include "DeviceManagerCore.h"',
                               '#include "vesk/hardware/veskdevicemanager/1.0/types.h"')
        self.assertEqual(
                sorted([f"includes: default/core/Leds.cpp:{hidl} includes hidl/HidlSupport.h",
                        f"includes: default/core/CoreTypes.h:{binder} includes "
                        "android/binder_parcel.h",
                        f"includes: default/core/Log.cpp:{generated} includes "
                        "vesk/hardware/veskdevicemanager/1.0/types.h"]),
                sorted(isolation.check(None, self.core)))

    def test_an_interface_library_in_the_blueprint_is_named(self):
        self.edit("Android.bp", '"libz",\n', '"libz",\n        "libhidlbase",\n'
                  '        "vesk.hardware.veskdevicemanager@1.0",\n')
        self.edit("Android.bp", '    vendor: true,\n',
                  '    vendor: true,\n    defaults: ["hidl_defaults"],\n')
        problems = isolation.check(None, self.core)
        self.assertEqual(sorted(["blueprint: core/Android.bp names hidl_defaults (defaults)",
                                 "blueprint: core/Android.bp names libhidlbase (shared_libs)",
                                 "blueprint: core/Android.bp names "
                                 "vesk.hardware.veskdevicemanager@1.0 (shared_libs)"]),
                         sorted(problems))

    def test_the_projects_own_libraries_are_not_interface_libraries(self):
        for name in ("vesk.hardware.veskdevicemanager@1.0-displaymode",
                     "vesk.hardware.veskdevicemanager@1.0-log", "libvesksdk", "libcutils"):
            self.assertIsNone(isolation.INTERFACE_LIBRARY.search(name), name)
        for name in ("vesk.hardware.veskdevicemanager-V1-ndk", "libbinder_ndk"):
            self.assertIsNotNone(isolation.INTERFACE_LIBRARY.search(name), name)

    def test_an_include_folder_reaching_the_hidl_runtime_is_named(self):
        entries = json.loads(COMPILE_COMMANDS.read_text())
        for entry in entries:
            words = entry.get("arguments") or shlex.split(entry["command"])
            if any(isolation.TARGET_FOLDER in word for word in words):
                entry.pop("command", None)
                entry["arguments"] = words[:-1] + [f"-I{REPO}/host/hidl/include", words[-1]]
        widened = self.scratch / "compile_commands.json"
        widened.write_text(json.dumps(entries))
        problems = isolation.check(widened, isolation.CORE)
        self.assertEqual(["compile: the core's include folders reach <hidl/HidlSupport.h>"],
                         problems)

    def test_a_build_without_the_core_is_named(self):
        empty = self.scratch / "compile_commands.json"
        empty.write_text("[]")
        self.assertEqual([f"compile: {empty} has no source of vesk_service_core"],
                         isolation.check(empty, isolation.CORE))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
