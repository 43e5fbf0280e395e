"""The properties gate runs the tree's check_prop_prefix.py as Soong does: each case changes the
board fragment or the vendor property_contexts in a copy and expects the gate's answer.

    VESK_ANDROID_TREE=../shared/android13 python3 -m unittest discover -s scripts/boardcheck/tests -t scripts

Without $VESK_ANDROID_TREE the cases are skipped.
"""
import shutil
import tempfile
import unittest
from pathlib import Path

from boardcheck import properties
from boardcheck.common import Context, GateFailure
from boardcheck.tests.support import TREE, Copy

CONTEXTS = "sepolicy/vendor/property_contexts"
FLAG_LINE = "BUILD_BROKEN_VENDOR_PROPERTY_NAMESPACE := true"
NAMESPACE_FAILURE = ("line 1: persist.vesk. u:object_r:vendor_vesk_prop:s0 prefix: not in the "
                     "vendor property namespace (BUILD_BROKEN_VENDOR_PROPERTY_NAMESPACE is not "
                     "set in BoardConfigVeskdevicemanager.mk)")

# The vendor namespaces of a board shipping with API 29 or later, as the platform documents them
# (vts_treble_sys_prop_test's list), and the context prefixes required from API 30 on.
VENDOR_NAMESPACES = {"vendor.", "persist.vendor.", "ro.vendor.", "ro.boot.", "ro.hardware.",
                     "odm.", "persist.odm.", "ro.odm.", "ctl.vendor.", "ctl.odm.",
                     "ctl.start$vendor.", "ctl.start$odm.", "ctl.stop$vendor.", "ctl.stop$odm.",
                     "init.svc.vendor.", "init.svc.odm."}


@unittest.skipUnless(TREE, "needs an Android tree ($VESK_ANDROID_TREE)")
class PropertiesGateTest(unittest.TestCase):
    def setUp(self):
        self.copy = Copy(self, "sepolicy/vendor", properties.BOARD_CONFIG)

    def failure(self):
        with self.assertRaises(GateFailure) as caught:
            properties.check_properties(self.copy.context)
        self.assertEqual(("properties", CONTEXTS), (caught.exception.gate, caught.exception.file))
        return caught.exception.violation

    def test_the_names_are_reported_and_the_contexts_pass(self):
        properties.check_properties(self.copy.context)
        self.assertEqual(["properties: sepolicy/vendor/property_contexts: line 1: persist.vesk. "
                          "u:object_r:vendor_vesk_prop:s0 prefix: outside the vendor property "
                          "namespace, reported only (BUILD_BROKEN_VENDOR_PROPERTY_NAMESPACE := "
                          "true in BoardConfigVeskdevicemanager.mk)"], self.copy.context.notes)

    def test_without_the_flag_the_names_fail_the_build(self):
        self.copy.edit(properties.BOARD_CONFIG, FLAG_LINE, "")
        self.assertEqual(NAMESPACE_FAILURE, self.failure())

    def test_a_flag_that_is_not_true_is_not_set(self):
        self.copy.edit(properties.BOARD_CONFIG, FLAG_LINE,
                       "BUILD_BROKEN_VENDOR_PROPERTY_NAMESPACE := false")
        self.assertEqual(NAMESPACE_FAILURE, self.failure())

    def test_a_commented_flag_is_not_set(self):
        self.copy.edit(properties.BOARD_CONFIG, FLAG_LINE, f"# {FLAG_LINE}")
        self.assertEqual(NAMESPACE_FAILURE, self.failure())

    def test_a_context_outside_the_vendor_namespace_fails_even_with_the_flag(self):
        self.copy.edit(CONTEXTS, "persist.vendor.sc.log.level     u:object_r:vendor_vesk_prop",
                       "persist.vendor.sc.log.level     u:object_r:vesk_prop")
        self.assertEqual("line 2: persist.vendor.sc.log.level u:object_r:vesk_prop:s0 exact "
                         "string: the context does not start with vendor_ or odm_",
                         self.failure())

    def test_every_violation_is_counted(self):
        self.copy.edit(CONTEXTS, "u:object_r:vendor_vesk_prop", "u:object_r:vesk_prop")
        self.assertEqual("line 1: persist.vesk. u:object_r:vesk_prop:s0 prefix: the context does "
                         "not start with vendor_ or odm_; 1 more", self.failure())

    def test_a_malformed_entry_is_the_script_s_own_error(self):
        with open(self.copy.repo / CONTEXTS, "a") as contexts:
            contexts.write("persist.vendor.vesk.broken\n")
        self.assertEqual('ValueError: malformed entry "persist.vendor.vesk.broken" in '
                         "property_contexts", self.failure())

    def test_soong_s_prefixes_are_read_from_the_tree(self):
        prefixes = properties.soong_prefixes(self.copy.context)
        self.assertEqual(VENDOR_NAMESPACES, set(prefixes.properties))
        self.assertEqual(16, len(prefixes.properties))
        self.assertEqual(["persist.camera."], prefixes.up_to_r)
        self.assertEqual(["vendor_", "odm_"], prefixes.contexts)

    def test_soong_s_arguments_follow_the_board_s_first_api_level(self):
        prefixes = properties.Prefixes(["vendor."], ["persist.camera."], ["vendor_"])
        self.assertEqual(["--allowed-property-prefix", "vendor.",
                          "--allowed-context-prefix", "vendor_"], prefixes.arguments(33))
        self.assertEqual(["--allowed-property-prefix", "vendor.",
                          "--allowed-property-prefix", "persist.camera.",
                          "--allowed-context-prefix", "vendor_"], prefixes.arguments(30))
        self.assertEqual(["--allowed-property-prefix", "vendor.",
                          "--allowed-property-prefix", "persist.camera."],
                         prefixes.arguments(29))

    def test_a_tree_without_soong_s_lists_fails_by_name(self):
        tree = Path(tempfile.mkdtemp(prefix="vesk-tree-"))
        self.addCleanup(shutil.rmtree, tree)
        go = tree / properties.SOONG
        go.parent.mkdir(parents=True)
        go.write_text("package selinux\n")
        context = Context(repo=self.copy.repo, tree=tree, work=self.copy.context.work)
        with self.assertRaises(GateFailure) as caught:
            properties.check_properties(context)
        self.assertEqual(("properties", properties.SOONG,
                          "no prefix lists in checkVendorPropertyNamespace, which the gate reads"),
                         (caught.exception.gate, caught.exception.file,
                          caught.exception.violation))


if __name__ == "__main__":
    unittest.main()
