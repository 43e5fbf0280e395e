"""The platform-tests gate runs the tree's sepolicy_tests.py on the compiled board policy: the
repository's policy passes, and a copy of its file_contexts with a path labelled against the
platform's type rules fails it, naming the project's line.

    VESK_ANDROID_TREE=../shared/android13 python3 -m unittest discover -s scripts/boardcheck/tests -t scripts

Without $VESK_ANDROID_TREE the cases are skipped. The board policy is compiled (once per test run,
with the policy gates' tests) and libsepolwrap.so built once for all cases.
"""
import shutil
import tempfile
import unittest
from pathlib import Path

from boardcheck import platform_tests
from boardcheck.common import Context, GateFailure
from boardcheck.tests.support import REPO, TREE, compiled_policies

FILE_CONTEXTS = "sepolicy/vendor/file_contexts"


@unittest.skipUnless(TREE, "needs an Android tree ($VESK_ANDROID_TREE)")
class PlatformTestsGateTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = Path(tempfile.mkdtemp(prefix="vesk-platform-tests-"))
        cls.repo = cls.scratch / "repo"
        shutil.copytree(REPO / "sepolicy", cls.repo / "sepolicy")
        # The compiled board policy over this class's own copy of the folders.
        cls.context = Context(repo=cls.repo, tree=Path(TREE).resolve(), work=cls.scratch / "work",
                              policy=compiled_policies().policy)
        cls.context.work.mkdir()
        cls.tests = platform_tests.build_tests(cls.context)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.scratch)

    def setUp(self):
        path = self.repo / FILE_CONTEXTS
        original = path.read_text()
        self.addCleanup(path.write_text, original)

    def relabel(self, path, context):
        """Gives path (a file_contexts entry of the vendor folder) another context; its line."""
        file = self.repo / FILE_CONTEXTS
        lines = file.read_text().splitlines()
        for number, text in enumerate(lines, 1):
            if text.split()[:1] == [path]:
                lines[number - 1] = f"{path}    {context}"
                file.write_text("\n".join(lines) + "\n")
                return number
        raise AssertionError(f"{FILE_CONTEXTS} has no {path}")

    def failure(self):
        with self.assertRaises(GateFailure) as caught:
            platform_tests.run_tests(self.context, self.context.policy)
        self.assertEqual(("platform-tests", FILE_CONTEXTS),
                         (caught.exception.gate, caught.exception.file))
        return caught.exception.violation

    def test_the_repository_passes_the_platform_s_tests(self):
        platform_tests.run_tests(self.context, self.context.policy)

    def test_a_vendor_path_whose_type_is_not_a_vendor_file_type_fails(self):
        line = self.relabel(r"/vendor/bin/hdmimode", "u:object_r:system_file:s0")
        self.assertEqual(f"line {line}: /vendor/bin/hdmimode u:object_r:system_file:s0: The "
                         "following types on /odm/ /vendor/ must be associated with the "
                         '"vendor_file_type" attribute: system_file', self.failure())

    def test_the_library_is_built_in_the_scratch_folder_only(self):
        self.assertEqual(self.context.work / "sepolicy-tests", self.tests)
        self.assertTrue((self.tests / platform_tests.LIBRARY).is_file())
        self.assertFalse((Path(TREE) / platform_tests.TESTS / platform_tests.LIBRARY).exists())
        self.assertEqual([], list(REPO.rglob(platform_tests.LIBRARY)))


if __name__ == "__main__":
    unittest.main()
