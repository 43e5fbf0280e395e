#!/usr/bin/env python3
"""The policy check finds what it is there to find: each case breaks one thing in a copy of the
tree's policy folders (or of its .rc) and expects the check to name it; the tree itself passes."""
import shutil
import sys
import tempfile
import unittest
from pathlib import Path

REPO = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(REPO / "sepolicy"))
import check_policy  # noqa: E402


class PolicyCheckTest(unittest.TestCase):
    def setUp(self):
        self.work = Path(tempfile.mkdtemp())
        self.policy = self.work / "sepolicy"
        shutil.copytree(REPO / "sepolicy", self.policy, ignore=shutil.ignore_patterns("*.py"))

    def tearDown(self):
        shutil.rmtree(self.work)

    def edit(self, name, old, new=""):
        """Replaces old (which must be there) in the policy file name (e.g. vendor/file.te)."""
        path = self.policy / name
        text = path.read_text()
        self.assertIn(old, text)
        path.write_text(text.replace(old, new))

    def problems(self, repo=REPO):
        return check_policy.check(repo, self.policy)

    def test_the_tree_passes(self):
        self.assertEqual([], self.problems())

    def test_a_device_path_without_a_line_is_named(self):
        self.edit("vendor/file_contexts", "/dev/block/env  ")
        self.assertIn("/dev/block/env (kEnvDevices) has no file_contexts line", self.problems())

    def test_a_serial_channel_without_a_line_is_named(self):
        self.edit("vendor/file_contexts", "|HDMI|", "|")
        self.assertIn("/dev/ttyVESKHDMI (serial channel) has no file_contexts line",
                      self.problems())

    def test_platform_programs_need_the_grant_to_run_them(self):
        self.edit("without-full-treble/vesk_hal_shell.te",
                  "allow vesk_hal_shell system_file:file rx_file_perms;\n")
        found = self.problems()
        self.assertIn("/system/bin/reboot (program of kPowerOffCommand) has no file_contexts line",
                      found)

    def test_a_full_treble_board_runs_no_platform_program(self):
        rule = "allow vesk_hal_shell system_file:file rx_file_perms"
        self.edit("vendor/vesk_hal_shell.te", "type vesk_hal_shell, domain;",
                  f"type vesk_hal_shell, domain;\n{rule};")
        self.assertIn(f"a full-Treble board's policy runs programs of /system: {rule}",
                      self.problems())

    def test_the_service_runs_nothing_in_its_own_domain(self):
        rule = "allow hal_veskdevicemanager_default vesk_hdmimode_exec:file rx_file_perms"
        self.edit("vendor/hal_veskdevicemanager.te", "# The serial channels.",
                  f"{rule};\n# The serial channels.")
        self.assertIn(f"the service runs a program in its own domain: {rule}", self.problems())

    def test_the_shell_runs_in_the_helper_domain(self):
        self.edit("vendor/hal_veskdevicemanager.te",
                  "domain_auto_trans(hal_veskdevicemanager_default, vendor_shell_exec, "
                  "vesk_hal_shell)")
        self.assertIn("the service's shell does not run in vesk_hal_shell", self.problems())

    def test_the_mode_tool_runs_and_writes_in_its_own_domain(self):
        self.edit("vendor/vesk_hal_shell.te",
                  "domain_auto_trans(vesk_hal_shell, vesk_hdmimode_exec, vesk_hdmimode)")
        self.edit("vendor/vesk_hdmimode.te",
                  "allow vesk_hdmimode sysfs_vesk_display:file rw_file_perms;",
                  "allow hal_veskdevicemanager_default sysfs_vesk_display:file rw_file_perms;")
        found = self.problems()
        self.assertIn("/vendor/bin/hdmimode (the mode tool) does not run in vesk_hdmimode", found)
        self.assertIn("/sys/class/display/mode (the display mode node) is not written by "
                      "vesk_hdmimode", found)
        self.assertIn("the service itself has the display mode node: allow "
                      "hal_veskdevicemanager_default sysfs_vesk_display:file rw_file_perms",
                      found)

    def test_violators_stay_in_the_folder_without_full_treble(self):
        rule = "typeattribute hal_veskdevicemanager_default vendor_executes_system_violators"
        self.edit("vendor/hal_veskdevicemanager.te", "# The serial channels.",
                  f"{rule};\n# The serial channels.")
        self.assertIn(f"a Treble violator outside without-full-treble's shell helper: {rule}",
                      self.problems())

    def test_an_unlabelled_service_binary_is_named(self):
        self.edit("vendor/file_contexts", "@1\\.0-service    u:object_r:"
                  "hal_veskdevicemanager_default_exec:s0", "@1\\.0-service    u:object_r:"
                  "vendor_file:s0")
        self.assertEqual(["/vendor/bin/hw/vesk.hardware.veskdevicemanager@1.0-service (the "
                          "service) is not labelled hal_veskdevicemanager_default_exec"],
                         self.problems())

    def test_the_aidl_service_binary_is_labelled_too(self):
        self.edit("vendor/file_contexts", "veskdevicemanager-service        u:object_r:"
                  "hal_veskdevicemanager_default_exec:s0", "veskdevicemanager-service        "
                  "u:object_r:vendor_file:s0")
        self.assertEqual(["/vendor/bin/hw/vesk.hardware.veskdevicemanager-service (the service) "
                          "is not labelled hal_veskdevicemanager_default_exec"], self.problems())

    def test_a_missing_interface_is_named(self):
        (self.policy / "vendor/hwservice_contexts").write_text("")
        self.assertIn("hwservice_contexts does not name "
                      "vesk.hardware.veskdevicemanager::IVeskDeviceManager", self.problems())

    def test_a_missing_aidl_instance_is_named(self):
        (self.policy / "vendor/service_contexts").write_text("")
        self.assertEqual(["service_contexts does not name "
                          "vesk.hardware.veskdevicemanager.IVeskDeviceManager/default"],
                         self.problems())

    def test_a_property_without_a_line_is_named(self):
        self.edit("vendor/property_contexts", "persist.vendor.sc.log.level", "persist.vendor.other")
        self.assertIn("property persist.vendor.sc.log.level has no property_contexts line",
                      self.problems())

    def test_groups_of_the_rc_and_the_policy_agree(self):
        for name in check_policy.SERVICE_RCS:
            with self.subTest(name):
                repo = self.copy_repo()
                rc = repo / name
                rc.write_text(rc.read_text().replace("group system", "group system dialout"))
                self.assertEqual([f"{name} gives group dialout, which the policy does not "
                                  "assume"], self.problems(repo))
                rc.write_text(rc.read_text().replace("user system", "user root"))
                self.assertIn(f"{name} runs the service as root, the policy assumes system",
                              self.problems(repo))
                shutil.rmtree(repo)

    def test_the_rc_starts_the_program_its_android_bp_names(self):
        repo = self.copy_repo()
        rc = repo / check_policy.SERVICE_RCS[0]
        rc.write_text(rc.read_text().replace("@1.0-service\n", "@1.0-service-lazy\n"))
        found = self.problems(repo)
        self.assertIn(f"{check_policy.SERVICE_RCS[0]} starts /vendor/bin/hw/"
                      "vesk.hardware.veskdevicemanager@1.0-service-lazy, not /vendor/bin/hw/"
                      "vesk.hardware.veskdevicemanager@1.0-service", found)

    def test_a_missing_rc_is_named(self):
        repo = self.copy_repo()
        (repo / check_policy.SERVICE_RCS[1]).unlink()
        self.assertEqual([f"{check_policy.SERVICE_RCS[1]} is missing"], self.problems(repo))

    def copy_repo(self):
        repo = self.work / "repo"
        for part in ["default", "interface/veskdevicemanager/aidl/default",
                     "vesksdk/sim/include/vesk/sim"]:
            shutil.copytree(REPO / part, repo / part)
        return repo

    def edit_ueventd(self, repo, old, new):
        path = repo / check_policy.UEVENTD
        text = path.read_text()
        self.assertIn(old, text)
        path.write_text(text.replace(old, new))

    def test_a_device_node_without_a_ueventd_line_is_named(self):
        repo = self.copy_repo()
        self.edit_ueventd(repo, "/dev/ttyVESK*                   0660   system   system\n", "")
        found = self.problems(repo)
        self.assertIn("/dev/ttyVESK485_2 (serial channel) has no line in default/ueventd.rc",
                      found)
        self.assertEqual(7, sum("(serial channel) has no line" in p for p in found), found)

    def test_a_ueventd_star_does_not_cross_a_slash(self):
        repo = self.copy_repo()
        self.edit_ueventd(repo, "/dev/block/env  ", "/dev/*/env  ")
        self.assertEqual([], self.problems(repo))
        self.edit_ueventd(repo, "/dev/block/by-name/env  ", "/dev/block/*  ")
        self.assertIn("/dev/block/by-name/env (kEnvDevices) has no line in default/ueventd.rc",
                      self.problems(repo))

    def test_a_node_given_to_another_user_or_to_others_is_named(self):
        repo = self.copy_repo()
        self.edit_ueventd(repo, "/dev/block/env                  0660   system   system",
                          "/dev/block/env                  0660   root     system")
        self.edit_ueventd(repo, "/dev/nand_env                   0660",
                          "/dev/nand_env                   0666")
        found = self.problems(repo)
        self.assertIn("default/ueventd.rc gives /dev/block/env (kEnvDevices) to root with mode "
                      "0660; the service runs as system: owner system, read and write, nothing "
                      "for others", found)
        self.assertIn("default/ueventd.rc gives /dev/nand_env (kEnvDevices) to system with mode "
                      "0666; the service runs as system: owner system, read and write, nothing "
                      "for others", found)

    def test_the_last_matching_ueventd_line_counts(self):
        repo = self.copy_repo()
        with open(repo / check_policy.UEVENTD, "a") as ueventd:
            ueventd.write("/dev/ttyVESKLORA 0440 system system\n")
        self.assertEqual(["default/ueventd.rc gives /dev/ttyVESKLORA (serial channel) to system "
                          "with mode 0440; the service runs as system: owner system, read and "
                          "write, nothing for others"], self.problems(repo))


if __name__ == "__main__":
    unittest.main()
