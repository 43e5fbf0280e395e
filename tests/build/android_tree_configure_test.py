#!/usr/bin/env python3
"""How configure takes an Android tree: without one it says in one line that the AIDL parts are
skipped and why, and goes on; a tree that lacks a folder the platform's aidl and binder are built
from is an error naming the folder. Usage: android_tree_configure_test.py [CMAKE]"""
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

REPO = Path(__file__).resolve().parents[2]
CMAKE = sys.argv[1] if len(sys.argv) > 1 else "cmake"
# What the aidl compiler and the binder library are built from.
NEEDED = ("system/tools/aidl", "system/libbase", "system/logging/liblog", "system/core/libcutils",
          "system/core/libutils", "system/core/libsystem/include",
          "system/core/libprocessgroup/include", "frameworks/native/libs/binder",
          "frameworks/native/libs/binder/ndk", "bionic/libc/kernel/uapi",
          "libnativehelper/include_jni")


def configure(tree):
    with tempfile.TemporaryDirectory() as build:
        env = {k: v for k, v in os.environ.items() if k != "VESK_ANDROID_TREE"}
        return subprocess.run(
            [CMAKE, "-S", str(REPO), "-B", build, "-G", "Ninja", f"-DVESK_ANDROID_TREE={tree}",
             "-DVESK_BUILD_TESTS=OFF", "-DVESK_BUILD_BENCHMARKS=OFF"],
            capture_output=True, text=True, env=env)


class AndroidTreeConfigureTest(unittest.TestCase):
    def test_no_tree_skips_the_aidl_parts_in_one_line(self):
        result = configure("")
        self.assertEqual(0, result.returncode, result.stderr)
        lines = [line for line in result.stdout.splitlines() if "AIDL" in line or "aidl" in line]
        self.assertEqual(["-- AIDL parts skipped: no Android tree (set VESK_ANDROID_TREE, or put "
                          "one at ../shared/android13 beside the source folder)"], lines)

    def test_a_tree_without_a_folder_it_needs_is_an_error_naming_it(self):
        with tempfile.TemporaryDirectory() as partial:
            # Every folder the builds read, but libbinder_ndk's.
            for folder in NEEDED:
                (Path(partial) / folder).mkdir(parents=True, exist_ok=True)
            (Path(partial) / "frameworks/native/libs/binder/ndk").rmdir()
            result = configure(partial)
            self.assertNotEqual(0, result.returncode)
            self.assertIn(f"The Android tree {partial} has no frameworks/native/libs/binder/ndk,",
                          " ".join(result.stderr.split()))

    def test_a_path_that_is_no_tree_is_an_error_naming_the_first_folder(self):
        with tempfile.TemporaryDirectory() as empty:
            result = configure(empty)
            self.assertNotEqual(0, result.returncode)
            self.assertIn(f"The Android tree {empty} has no system/tools/aidl,",
                          " ".join(result.stderr.split()))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
