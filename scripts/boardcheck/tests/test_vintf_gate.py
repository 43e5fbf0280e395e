"""The vintf gate finds what it is there to find, in a copy of each front end's folder and the
makefiles with one thing broken: fragments that disagree, an .rc that declares another interface,
a makefile that adds the other front end's matrix or installs the other front end's service.

    python3 -m unittest discover -s scripts/boardcheck/tests -t scripts

It needs no Android tree (GNU make reads the makefiles).
"""
import unittest

from boardcheck import vintf
from boardcheck.common import GateFailure
from boardcheck.tests.support import VINTF_PARTS, Copy

HIDL, AIDL = vintf.FRONT_ENDS
# The stable-AIDL service's module, as its Android.bp declares it (written into a copy that has
# none): the gate follows its init_rc and vintf_fragments.
AIDL_SERVICE_BP = """cc_binary {
    name: "vesk.hardware.veskdevicemanager-service",
    vendor: true,
    relative_install_path: "hw",
    srcs: ["main.cpp"],
    init_rc: ["vesk.hardware.veskdevicemanager-service.rc"],
    vintf_fragments: ["vesk.hardware.veskdevicemanager-service.xml"],
}
"""


class VintfGateTest(unittest.TestCase):
    def setUp(self):
        self.copy = Copy(self, *VINTF_PARTS)

    def failure(self, file):
        with self.assertRaises(GateFailure) as failure:
            vintf.check_vintf(self.copy.context)
        self.assertEqual(("vintf", file), (failure.exception.gate, failure.exception.file),
                         failure.exception.violation)
        return failure.exception.violation

    def with_aidl_service_module(self):
        bp = self.copy.repo / vintf.AIDL_DEFAULT / "Android.bp"
        if not bp.is_file():
            bp.write_text(AIDL_SERVICE_BP)

    def test_the_fragments_agree_and_the_makefiles_choose_one_front_end(self):
        vintf.check_vintf(self.copy.context)
        self.with_aidl_service_module()
        self.copy.context.notes.clear()
        vintf.check_vintf(self.copy.context)
        self.assertEqual([], self.copy.context.notes)

    # HIDL.

    def test_a_hidl_matrix_that_names_another_instance_fails(self):
        self.copy.edit(HIDL.matrix, "<instance>default</instance>", "<instance>vesk</instance>")
        self.assertEqual("vesk.hardware.veskdevicemanager: names IVeskDeviceManager/vesk, "
                         f"{HIDL.manifest} serves IVeskDeviceManager/default",
                         self.failure(HIDL.matrix))

    def test_a_version_outside_the_hidl_matrix_range_fails(self):
        self.copy.edit(HIDL.matrix, "<version>1.0</version>", "<version>1.1-3</version>")
        self.assertEqual("vesk.hardware.veskdevicemanager: version 1.1-3 does not hold 1.0, the "
                         f"version {HIDL.manifest} serves", self.failure(HIDL.matrix))

    def test_a_hidl_matrix_without_the_hal_fails(self):
        self.copy.edit(HIDL.matrix, "<name>vesk.hardware.veskdevicemanager</name>",
                       "<name>vesk.hardware.other</name>")
        self.assertEqual(f"names no hidl HAL vesk.hardware.veskdevicemanager, which "
                         f"{HIDL.manifest} serves", self.failure(HIDL.matrix))

    def test_a_hidl_rc_that_declares_another_version_fails(self):
        self.copy.edit(HIDL.rc, "veskdevicemanager@1.0::", "veskdevicemanager@1.1::")
        self.assertEqual("declares vesk.hardware.veskdevicemanager@1.1::IVeskDeviceManager/"
                         f"default, {HIDL.manifest} serves vesk.hardware.veskdevicemanager@1.0::"
                         "IVeskDeviceManager/default", self.failure(HIDL.rc))

    # Stable AIDL.

    def test_an_aidl_matrix_that_names_another_instance_fails(self):
        self.copy.edit(AIDL.matrix, "<instance>default</instance>", "<instance>vesk</instance>")
        self.assertEqual("vesk.hardware.veskdevicemanager: names IVeskDeviceManager/vesk, "
                         f"{AIDL.manifest} serves IVeskDeviceManager/default",
                         self.failure(AIDL.matrix))

    def test_an_aidl_manifest_fqname_for_another_interface_fails(self):
        self.copy.edit(AIDL.manifest, "<fqname>IVeskDeviceManager/default</fqname>",
                       "<fqname>IVeskDeviceCallback/default</fqname>")
        self.assertEqual("vesk.hardware.veskdevicemanager: names IVeskDeviceManager/default, "
                         f"{AIDL.manifest} serves IVeskDeviceCallback/default",
                         self.failure(AIDL.matrix))

    def test_a_version_outside_the_aidl_matrix_range_fails(self):
        self.copy.edit(AIDL.manifest, "<version>1</version>", "<version>2</version>")
        self.assertEqual("vesk.hardware.veskdevicemanager: version 1 does not hold 2, the "
                         f"version {AIDL.manifest} serves", self.failure(AIDL.matrix))

    def test_an_aidl_matrix_that_asks_for_the_hidl_hal_fails(self):
        self.copy.edit(AIDL.matrix, '<hal format="aidl"', '<hal format="hidl"')
        self.assertEqual(f"names no aidl HAL vesk.hardware.veskdevicemanager, which "
                         f"{AIDL.manifest} serves", self.failure(AIDL.matrix))

    def test_an_aidl_rc_that_declares_another_instance_fails(self):
        self.copy.edit(AIDL.rc, "IVeskDeviceManager/default", "IVeskDeviceManager/vesk")
        self.assertEqual("declares vesk.hardware.veskdevicemanager.IVeskDeviceManager/vesk, "
                         f"{AIDL.manifest} serves vesk.hardware.veskdevicemanager."
                         "IVeskDeviceManager/default", self.failure(AIDL.rc))

    def test_an_aidl_rc_with_a_hidl_interface_line_fails(self):
        self.copy.edit(AIDL.rc, "interface aidl vesk.hardware.veskdevicemanager.IVeskDeviceManager"
                       "/default", "interface vesk.hardware.veskdevicemanager.IVeskDeviceManager "
                       "default")
        self.assertEqual("declares vesk.hardware.veskdevicemanager.IVeskDeviceManager/default, "
                         f"{AIDL.manifest} serves vesk.hardware.veskdevicemanager."
                         "IVeskDeviceManager/default", self.failure(AIDL.rc))

    # The makefiles' choice.

    def test_the_board_fragment_adds_only_the_chosen_front_end_s_matrix(self):
        with open(self.copy.repo / vintf.BOARD, "a") as board:
            board.write("DEVICE_FRAMEWORK_COMPATIBILITY_MATRIX_FILE += "
                        f"$(VESK_VESKDM_DIR)/{AIDL.matrix}\n")
        self.assertEqual(f"with VESK_VESKDM_FRONT_END unset it adds {HIDL.matrix}, {AIDL.matrix}"
                         f", not {HIDL.matrix}", self.failure(vintf.BOARD))

    def test_the_board_fragment_follows_the_product_s_choice(self):
        self.copy.edit(vintf.BOARD, "VESK_VESKDM_FRONT_END ?= hidl",
                       "VESK_VESKDM_FRONT_END := hidl")
        self.assertEqual(f"with VESK_VESKDM_FRONT_END=aidl it adds {HIDL.matrix}, not "
                         f"{AIDL.matrix}", self.failure(vintf.BOARD))

    def test_an_unknown_choice_stops_the_makefiles(self):
        self.copy.edit(vintf.PRODUCT, "VESK_VESKDM_FRONT_END ?= hidl",
                       "VESK_VESKDM_FRONT_END ?= aidl-and-hidl")
        self.assertEqual('VESK_VESKDM_FRONT_END is "aidl-and-hidl": hidl or aidl',
                         self.failure(vintf.PRODUCT))

    def test_the_aidl_choice_installs_no_hidl_service(self):
        self.copy.edit(vintf.PRODUCT, "    vesk.hardware.veskdevicemanager-service \\\n",
                       "    vesk.hardware.veskdevicemanager-service \\\n"
                       "    vesk.hardware.veskdevicemanager@1.0-service \\\n")
        self.assertEqual(f"with VESK_VESKDM_FRONT_END=aidl a package installs {HIDL.manifest}, "
                         "the hidl front end's: one front end per board",
                         self.failure(vintf.PRODUCT))

    def test_the_aidl_choice_installs_the_aidl_service(self):
        self.with_aidl_service_module()
        self.copy.edit(vintf.PRODUCT, "    vesk.hardware.veskdevicemanager-service \\\n", "")
        self.assertEqual(f"with VESK_VESKDM_FRONT_END=aidl no package installs {AIDL.manifest}",
                         self.failure(vintf.PRODUCT))

    def test_the_hidl_choice_installs_no_aidl_service(self):
        self.with_aidl_service_module()
        self.copy.edit(vintf.PRODUCT, "    vesk.hardware.veskdevicemanager@1.0-service \\\n",
                       "    vesk.hardware.veskdevicemanager@1.0-service \\\n"
                       "    vesk.hardware.veskdevicemanager-service \\\n")
        self.assertEqual(f"with VESK_VESKDM_FRONT_END unset a package installs {AIDL.manifest}, "
                         "the aidl front end's: one front end per board",
                         self.failure(vintf.PRODUCT))

    def test_a_fragment_named_through_a_filegroup_is_installed(self):
        bp = self.copy.repo / vintf.AIDL_DEFAULT / "Android.bp"
        bp.write_text(AIDL_SERVICE_BP.replace('["vesk.hardware.veskdevicemanager-service.xml"]',
                                              '[":vesk.hardware.veskdevicemanager-service.xml"]') +
                      'filegroup {\n    name: "vesk.hardware.veskdevicemanager-service.xml",\n'
                      '    srcs: ["vesk.hardware.veskdevicemanager-service.xml"],\n}\n')
        vintf.check_vintf(self.copy.context)
        self.assertEqual([], self.copy.context.notes)
        self.copy.edit(vintf.PRODUCT, "    vesk.hardware.veskdevicemanager-service \\\n", "")
        self.assertEqual(f"with VESK_VESKDM_FRONT_END=aidl no package installs {AIDL.manifest}",
                         self.failure(vintf.PRODUCT))

    def test_an_rc_that_no_package_installs_is_named(self):
        bp = self.copy.repo / "default/Android.bp"
        bp.write_text(bp.read_text().replace(
            'init_rc: ["vesk.hardware.veskdevicemanager@1.0-service.rc"],\n', ""))
        vintf.check_vintf(self.copy.context)
        self.assertIn(f"vintf: no module of the Android.bp files installs {HIDL.rc} (init_rc)",
                      self.copy.context.notes)

    def test_version_ranges(self):
        self.assertTrue(vintf.contains("1.0", "1.0"))
        self.assertTrue(vintf.contains("1.0-2", "1.1"))
        self.assertFalse(vintf.contains("1.0", "1.1"))
        self.assertFalse(vintf.contains("1.0-2", "2.0"))
        self.assertFalse(vintf.contains("1.1-2", "1.0"))
        self.assertTrue(vintf.contains("1", "1", "aidl"))
        self.assertTrue(vintf.contains("1-2", "2", "aidl"))
        self.assertFalse(vintf.contains("1", "2", "aidl"))
        self.assertFalse(vintf.contains("2-3", "1", "aidl"))
        self.assertFalse(vintf.contains("1", "1.0", "aidl"))
        self.assertFalse(vintf.contains("1.0", "1", "hidl"))


if __name__ == "__main__":
    unittest.main()
