#!/usr/bin/env python3
"""The policy check finds what it is there to find: each case breaks one thing in a copy of the
tree's policy (or of its .rc) and expects the check to name it; the tree itself passes."""
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
        self.policy = self.work / "vendor"
        shutil.copytree(REPO / "sepolicy/vendor", self.policy)

    def tearDown(self):
        shutil.rmtree(self.work)

    def edit(self, name, old, new=""):
        path = self.policy / name
        text = path.read_text()
        self.assertIn(old, text)
        path.write_text(text.replace(old, new))

    def problems(self, repo=REPO):
        return check_policy.check(repo, self.policy)

    def test_the_tree_passes(self):
        self.assertEqual([], self.problems())

    def test_a_device_path_without_a_line_is_named(self):
        self.edit("file_contexts", "/dev/block/env  ")
        self.assertIn("/dev/block/env (kEnvDevices) has no file_contexts line", self.problems())

    def test_a_serial_channel_without_a_line_is_named(self):
        self.edit("file_contexts", "|HDMI|", "|")
        self.assertIn("/dev/ttyVESKHDMI (serial channel) has no file_contexts line",
                      self.problems())

    def test_platform_programs_need_the_grant_to_run_them(self):
        self.edit("hal_veskdevicemanager.te",
                  "allow hal_veskdevicemanager_default system_file:file rx_file_perms;\n")
        found = self.problems()
        self.assertIn("/system/bin/reboot (program of kPowerOffCommand) has no file_contexts line",
                      found)

    def test_an_unlabelled_service_binary_is_named(self):
        self.edit("file_contexts", "u:object_r:hal_veskdevicemanager_default_exec:s0",
                  "u:object_r:vendor_file:s0")
        self.assertIn("/vendor/bin/hw/vesk.hardware.veskdevicemanager@1.0-service (the service) "
                      "is not labelled hal_veskdevicemanager_default_exec", self.problems())

    def test_a_missing_interface_is_named(self):
        (self.policy / "hwservice_contexts").write_text("")
        self.assertIn("hwservice_contexts does not name "
                      "vesk.hardware.veskdevicemanager::IVeskDeviceManager", self.problems())

    def test_a_property_without_a_line_is_named(self):
        self.edit("property_contexts", "persist.vendor.sc.log.level", "persist.vendor.other")
        self.assertIn("property persist.vendor.sc.log.level has no property_contexts line",
                      self.problems())

    def test_groups_of_the_rc_and_the_policy_agree(self):
        repo = self.work / "repo"
        for part in ["default", "vesksdk/sim/include/vesk/sim"]:
            shutil.copytree(REPO / part, repo / part)
        rc = next((repo / "default").glob("*.rc"))
        rc.write_text(rc.read_text().replace("group system", "group system dialout"))
        self.assertIn("the .rc gives group dialout, which the policy does not assume",
                      self.problems(repo))
        rc.write_text(rc.read_text().replace("user system", "user root"))
        self.assertIn("the .rc runs the service as root, the policy assumes system",
                      self.problems(repo))


if __name__ == "__main__":
    unittest.main()
