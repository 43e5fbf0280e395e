#!/usr/bin/env python3
"""What android_bp_sources.py reads for a module's host variant: a made-up Android.bp with each
rule Soong applies, and, given an Android tree, the counts of sources its README states for the
libraries the host build takes from it. Usage: android_bp_sources_test.py [TREE]"""
import sys
import tempfile
import unittest
from pathlib import Path

REPO = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(REPO / "scripts"))
import android_bp_sources as sources  # noqa: E402

TREE = Path(sys.argv[1]) if len(sys.argv) > 1 else None

BLUEPRINT = """
common = ["a.cpp"]
common += ["b.cpp"]
cc_defaults {
    name: "d",
    srcs: ["d.cpp"],
    cflags: ["-DD"],
    product_variables: { platform_sdk_version: { cflags: ["-DSDK=%d"] } },
}
filegroup { name: "idl", srcs: ["idl/p/I.aidl"], path: "idl" }
cc_library_static { name: "whole", srcs: ["w.cpp"], target: { linux: { srcs: ["wl.cpp"] } } }
cc_library {
    name: "lib",
    defaults: ["d"],
    srcs: common + ["c.cpp", ":idl"],
    cflags: ["-DLIB"],
    local_include_dirs: ["inc"],
    whole_static_libs: ["whole", "fmtlib"],
    target: {
        host: { srcs: ["host.cpp"], cflags: ["-DHOST"] },
        android: { srcs: ["device.cpp"] },
        not_windows: { srcs: ["posix.cpp"], exclude_srcs: ["c.cpp"] },
        windows: { srcs: ["win.cpp"] },
        vendor: { exclude_srcs: ["a.cpp"] },
    },
}
ndk_library { name: "lib", symbol_file: "lib.map.txt" }
"""


class SyntheticModuleTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.bp = Path(self.folder.name) / "Android.bp"
        self.bp.write_text(BLUEPRINT)

    def tearDown(self):
        self.folder.cleanup()

    def test_the_host_variant(self):
        variant = sources.host_variant(self.bp, "lib", 33)
        folder = self.bp.parent
        # defaults first, the module, its host blocks (host, not_windows), then whole libraries;
        # not android's, windows' or vendor's; c.cpp excluded by not_windows.
        self.assertEqual([str(folder / f) for f in ("d.cpp", "a.cpp", "b.cpp", "host.cpp",
                                                    "posix.cpp", "w.cpp", "wl.cpp")],
                         variant["SOURCES"])
        self.assertEqual(["-DD", "-DLIB", "-DHOST", "-DSDK=33"], variant["CFLAGS"])
        self.assertEqual([str(folder / "idl/p/I.aidl")], variant["AIDL"])
        self.assertEqual([str(folder / "idl")], variant["AIDL_ROOTS"])
        self.assertEqual([str(folder / "inc")], variant["INCLUDES"])

    def test_a_missing_module_is_none(self):
        self.assertIsNone(sources.host_variant(self.bp, "absent", 33))


class AndroidTreeCountsTest(unittest.TestCase):
    def count(self, folder, module):
        return len(sources.host_variant(TREE / folder / "Android.bp", module, 33)["SOURCES"])

    def test_the_readmes_counts(self):
        self.assertEqual(8, self.count("system/logging/liblog", "liblog"))
        self.assertEqual(17, self.count("system/libbase", "libbase"))
        self.assertEqual(22, self.count("system/core/libcutils", "libcutils"))
        self.assertEqual(20, self.count("system/core/libutils", "libutils"))
        self.assertEqual(8, self.count("frameworks/native/libs/binder/ndk", "libbinder_ndk"))
        binder = sources.host_variant(TREE / "frameworks/native/libs/binder/Android.bp",
                                      "libbinder", 33)
        names = [Path(s).name for s in binder["SOURCES"]]
        self.assertIn("ServiceManagerHost.cpp", names)
        self.assertIn("UtilsHost.cpp", names)
        self.assertNotIn("PermissionCache.cpp", names)  # the device's only
        self.assertEqual(["ConnectionInfo.aidl", "IClientCallback.aidl", "IServiceCallback.aidl",
                          "IServiceManager.aidl", "ServiceDebugInfo.aidl"],
                         [Path(s).name for s in binder["AIDL"]])
        aidl = sources.host_variant(TREE / "system/tools/aidl/Android.bp", "libaidl-common", 33)
        self.assertIn("-DPLATFORM_SDK_VERSION=33", aidl["CFLAGS"])


if TREE is None:  # a build without a tree has nothing to count
    del AndroidTreeCountsTest

if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
