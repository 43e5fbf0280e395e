"""The policy, treble and contexts gates find what they are there to find: each case breaks one
thing in a copy of the repository's sepolicy folder and expects the gate's failure (gate, file,
violation); the repository's own policy passes all three.

    VESK_ANDROID_TREE=../shared/android13 python3 -m unittest discover -s scripts/boardcheck/tests -t scripts

Without $VESK_ANDROID_TREE the cases are skipped; with it, a tree that lacks the platform's
policy is an error. The good policies are compiled once per test run (support.compiled_policies).
"""
import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from boardcheck import policy
from boardcheck.common import Context, GateFailure
from boardcheck.tests.support import compiled_policies

REPO = Path(__file__).resolve().parents[3]
TREE = os.environ.get("VESK_ANDROID_TREE")
AIDL_INSTANCE = re.escape("vesk.hardware.veskdevicemanager.IVeskDeviceManager/default")


def android_tree():
    if not TREE:
        raise unittest.SkipTest("no Android tree: set VESK_ANDROID_TREE")
    tree = Path(TREE).resolve()
    for folder in policy.TREE_FOLDERS:
        if not (tree / folder).is_dir():
            raise AssertionError(f"VESK_ANDROID_TREE={TREE} lacks {folder}")
    return tree


class PolicyGatesTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.tree = android_tree()
        cls.scratch = Path(tempfile.mkdtemp(prefix="vesk-policy-gates-"))
        cls.good = compiled_policies()
        policy.check_treble(cls.good)
        policy.check_contexts(cls.good)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.scratch)

    @classmethod
    def context(cls, name):
        """A context over a fresh copy of the repository's sepolicy folder."""
        repo = cls.scratch / name
        shutil.copytree(REPO / "sepolicy", repo / "sepolicy",
                        ignore=shutil.ignore_patterns("*.py", "__pycache__"))
        work = cls.scratch / f"{name}-work"
        work.mkdir()
        return Context(repo=repo, tree=cls.tree, work=work)

    def edit(self, ctx, name, old, new):
        path = ctx.repo / "sepolicy" / name
        text = path.read_text()
        self.assertIn(old, text)
        path.write_text(text.replace(old, new, 1))

    def append(self, ctx, name, text):
        path = ctx.repo / "sepolicy" / name
        lines = path.read_text().count("\n") if path.exists() else 0
        with open(path, "a") as out:
            out.write(text + "\n")
        return lines + 1

    def failure(self, gate, ctx):
        with self.assertRaises(GateFailure) as caught:
            gate(ctx)
        return caught.exception

    def assertFailure(self, failure, gate, file, violation):
        self.assertEqual((gate, file), (failure.gate, failure.file), failure.violation)
        self.assertRegex(failure.violation, violation)

    def sesearch(self, *query):
        done = subprocess.run(["sesearch", "-A", *query, str(self.good.policy)],
                              capture_output=True, text=True, check=True)
        return done.stdout.strip()

    # The repository's policy.

    def test_the_repository_passes_every_policy_gate(self):
        self.assertTrue(self.good.policy.is_file())

    def test_the_service_runs_no_program_in_its_own_domain(self):
        self.assertEqual("", self.sesearch("-s", "hal_veskdevicemanager_default", "-c", "file",
                                           "-p", "execute_no_trans"))
        self.assertEqual("", self.sesearch("-s", "vesk_hal_shell", "-t", "system_file",
                                           "-c", "file", "-p", "execute"))

    def test_system_apps_reach_the_service_and_it_calls_them_back(self):
        for app in ("system_app", "platform_app"):
            self.assertIn("find", self.sesearch("-s", app, "-t", "hal_veskdevicemanager_hwservice",
                                                "-c", "hwservice_manager", "-p", "find"))
            self.assertIn("call", self.sesearch("-s", app, "-t", "hal_veskdevicemanager_default",
                                                "-c", "binder", "-p", "call"))
            self.assertIn("call", self.sesearch("-s", "hal_veskdevicemanager_default", "-t", app,
                                                "-c", "binder", "-p", "call"))
        self.assertEqual("", self.sesearch("-s", "untrusted_app", "-t",
                                           "hal_veskdevicemanager_hwservice"))

    def test_adb_shell_may_not_look_the_service_up(self):
        self.assertEqual("", self.sesearch("-s", "shell", "-t",
                                           "hal_veskdevicemanager_hwservice"))

    def test_system_apps_reach_the_aidl_service_and_untrusted_apps_do_not(self):
        for app in ("system_app", "platform_app"):
            self.assertEqual(f"allow {app} hal_veskdevicemanager_service:service_manager find;",
                             self.sesearch("-s", app, "-t", "hal_veskdevicemanager_service",
                                           "-c", "service_manager"))
            self.assertIn("call", self.sesearch("-s", app, "-t", "hal_veskdevicemanager_default",
                                                "-c", "binder", "-p", "call"))
        self.assertEqual("", self.sesearch("-s", "untrusted_app", "-t",
                                           "hal_veskdevicemanager_service"))
        self.assertEqual("", self.sesearch("-s", "untrusted_app", "-t",
                                           "hal_veskdevicemanager_default", "-c", "binder"))

    def test_only_the_server_registers_the_aidl_service(self):
        self.assertEqual("allow hal_veskdevicemanager_server hal_veskdevicemanager_service:"
                         "service_manager { add find };",
                         self.sesearch("-t", "hal_veskdevicemanager_service", "-c",
                                       "service_manager", "-p", "add"))
        self.assertIn("hal_veskdevicemanager_server servicemanager:binder { call transfer }",
                      self.sesearch("-s", "hal_veskdevicemanager_default", "-t",
                                    "servicemanager", "-c", "binder"))

    def test_adb_shell_finds_the_aidl_service_but_may_not_call_it(self):
        # The platform lets the shell find nearly every service (public/shell.te), not call it.
        self.assertEqual("allow shell hal_veskdevicemanager_service:service_manager find;",
                         self.sesearch("-s", "shell", "-t", "hal_veskdevicemanager_service"))
        self.assertEqual("", self.sesearch("-s", "shell", "-t", "hal_veskdevicemanager_default",
                                           "-c", "binder", "-p", "call"))

    def test_the_example_client_reaches_the_service_and_adb_shell_does_not(self):
        examples = str(policy.binary_of(self.good, policy.EXAMPLES))
        done = subprocess.run(["sesearch", "-A", "-s", "vesk_panel_client", "-t",
                               "hal_veskdevicemanager_hwservice", "-c", "hwservice_manager",
                               "-p", "find", examples], capture_output=True, text=True,
                              check=True)
        self.assertIn("find", done.stdout)
        done = subprocess.run(["sesearch", "-A", "-s", "vesk_panel_client", "-t",
                               "hal_veskdevicemanager_service", "-c", "service_manager",
                               "-p", "find", examples], capture_output=True, text=True,
                              check=True)
        self.assertIn("find", done.stdout)
        done = subprocess.run(["sesearch", "-T", "-s", "shell", "-t", "vesk_panel_client_exec",
                               examples], capture_output=True, text=True, check=True)
        self.assertEqual("", done.stdout.strip())

    # The policy gate.

    def test_a_neverallow_violation_names_the_project_rule(self):
        ctx = self.context("neverallow")
        line = self.append(ctx, "vendor/hal_veskdevicemanager.te",
                           "allow hal_veskdevicemanager_default vendor_shell_exec:file "
                           "execute_no_trans;")
        self.assertFailure(
            self.failure(policy.check_policy, ctx), "policy",
            "sepolicy/vendor/hal_veskdevicemanager.te",
            rf"^line {line}: allow hal_veskdevicemanager_default vendor_shell_exec:file "
            r"\{ execute_no_trans \} breaks the neverallow of "
            r"system/sepolicy/public/hal_neverallows\.te:\d+ \(the full-Treble board policy\)$")

    # The gate's two other compiles, each run alone to save time: their failures reach the gate
    # as the board compile's does.

    def test_the_system_side_compiles_without_the_vendor_folder(self):
        ctx = self.context("system-side")
        line = self.append(ctx, "system_ext/public/hal_veskdevicemanager.te",
                           "allow hal_veskdevicemanager_server vesk_serial_device:chr_file "
                           "getattr;")
        self.assertFailure(
            self.failure(lambda c: policy.compile_policy(c, policy.SYSTEM_SIDE), ctx), "policy",
            "sepolicy/system_ext/public/hal_veskdevicemanager.te",
            rf"^line {line}: unknown type vesk_serial_device \(the system side alone")

    def test_the_policy_without_full_treble_compiles(self):
        ctx = self.context("without-full-treble")
        line = self.append(ctx, "without-full-treble/vesk_hal_shell.te",
                           "allow vesk_hal_shell vesk_no_such_exec:file execute;")
        failure = self.failure(lambda c: policy.compile_policy(c, policy.NOT_FULL_TREBLE), ctx)
        self.assertFailure(failure, "policy", "sepolicy/without-full-treble/vesk_hal_shell.te",
                           rf"^line {line}: unknown type vesk_no_such_exec "
                           r"\(a board without full Treble\)$")

    def test_no_vendor_domain_may_run_reboot_on_a_full_treble_board(self):
        # What setSystemShutDown's command needs, given to the shell helper on a full-Treble
        # board: the platform keeps every vendor domain from /system's files.
        ctx = self.context("reboot")
        line = self.append(ctx, "vendor/vesk_hal_shell.te",
                           "allow vesk_hal_shell system_file:file rx_file_perms;")
        failure = self.failure(lambda c: policy.compile_policy(c, policy.BOARD), ctx)
        self.assertFailure(
            failure, "policy", "sepolicy/vendor/vesk_hal_shell.te",
            rf"^line {line}: allow vesk_hal_shell system_file:file \{{ .*execute.* \}} breaks "
            r"the neverallow of system/sepolicy/public/domain\.te:\d+ \(the full-Treble board "
            r"policy(; \d+ more)?\)$")
        # That neverallow (its block starts a few lines above the rule) is the one that keeps
        # vendor components from /system's files.
        rule_line = int(re.search(r"domain\.te:(\d+)", failure.violation).group(1))
        domain_te = (self.tree / "system/sepolicy/public/domain.te").read_text().splitlines()
        self.assertIn("# Do not allow vendor components access to /system files except for the",
                      "\n".join(domain_te[rule_line - 1:rule_line + 4]))

    # The treble gate.

    def test_a_violator_attribute_fails_the_treble_gate(self):
        # The policy of a board without full Treble (compiled by the policy gate) gives the
        # shell helper the violator attribute, which a full-Treble board may not have.
        ctx = Context(repo=self.good.repo, tree=self.tree, work=self.good.work,
                      policy=policy.binary_of(self.good, policy.NOT_FULL_TREBLE))
        self.assertFailure(self.failure(policy.check_treble, ctx), "treble",
                           "sepolicy/without-full-treble/vesk_hal_shell.te",
                           "^type vesk_hal_shell has the attribute "
                           "vendor_executes_system_violators, ")

    # The contexts gate.

    def contexts_failure(self, name, file, old, new):
        # The good policies (the board's, the examples') over a copy of the folders.
        ctx = Context(repo=self.context(name).repo, tree=self.tree, work=self.good.work,
                      policy=self.good.policy)
        self.edit(ctx, file, old, new)
        return ctx, self.failure(policy.check_contexts, ctx)

    def test_an_unknown_type_in_file_contexts_is_named(self):
        _, failure = self.contexts_failure("file-contexts", "vendor/file_contexts",
                                           "u:object_r:vesk_serial_device:s0",
                                           "u:object_r:vesk_serial_devices:s0")
        self.assertFailure(failure, "contexts", "sepolicy/vendor/file_contexts",
                           r"^line \d+: /dev/ttyVESK\S+ +u:object_r:vesk_serial_devices:s0: "
                           "invalid context$")

    def test_a_property_context_that_is_not_a_property_type_is_named(self):
        _, failure = self.contexts_failure("property-contexts", "vendor/property_contexts",
                                           "persist.vendor.sc.log.level     "
                                           "u:object_r:vendor_vesk_prop",
                                           "persist.vendor.sc.log.level     "
                                           "u:object_r:sysfs_vesk_display")
        self.assertFailure(failure, "contexts", "sepolicy/vendor/property_contexts",
                           r"^line 2: persist\.vendor\.sc\.log\.level .*: sysfs_vesk_display is "
                           "not a property_type$")

    def test_an_example_s_file_contexts_is_checked_against_the_examples_policy(self):
        _, failure = self.contexts_failure("example-file-contexts", "native-client/file_contexts",
                                           "vesk_panel_client_exec", "vesk_panel_client_bin")
        self.assertFailure(failure, "contexts", "sepolicy/native-client/file_contexts",
                           r"^line 3: /\(system_ext\|system/system_ext\)/bin/vesk_panel_client "
                           r"+u:object_r:vesk_panel_client_bin:s0: invalid context$")

    def test_an_hwservice_context_without_its_type_is_named(self):
        _, failure = self.contexts_failure("hwservice-contexts", "vendor/hwservice_contexts",
                                           "hal_veskdevicemanager_hwservice",
                                           "hal_veskdevicemanager_hidl")
        self.assertFailure(failure, "contexts", "sepolicy/vendor/hwservice_contexts",
                           "^line 1: vesk.hardware.veskdevicemanager::IVeskDeviceManager +"
                           "u:object_r:hal_veskdevicemanager_hidl:s0: invalid context$")

    def test_an_hwservice_context_of_the_aidl_service_type_is_named(self):
        _, failure = self.contexts_failure("hwservice-type", "vendor/hwservice_contexts",
                                           "hal_veskdevicemanager_hwservice",
                                           "hal_veskdevicemanager_service")
        self.assertFailure(failure, "contexts", "sepolicy/vendor/hwservice_contexts",
                           "^line 1: vesk.hardware.veskdevicemanager::IVeskDeviceManager .*: "
                           "hal_veskdevicemanager_service is not a hwservice_manager_type$")

    # The service managers' contexts files, as checkfc checks them.

    def test_an_unknown_type_in_service_contexts_is_named(self):
        _, failure = self.contexts_failure("service-contexts", "vendor/service_contexts",
                                           "hal_veskdevicemanager_service",
                                           "hal_veskdevicemanager_services")
        self.assertFailure(failure, "contexts", "sepolicy/vendor/service_contexts",
                           rf"^line 1: {AIDL_INSTANCE} +u:object_r:"
                           r"hal_veskdevicemanager_services:s0: invalid context$")

    def test_a_service_context_with_a_wrong_role_is_named(self):
        _, failure = self.contexts_failure("service-role", "vendor/service_contexts",
                                           "u:object_r:hal_veskdevicemanager_service",
                                           "u:r:hal_veskdevicemanager_service")
        self.assertFailure(failure, "contexts", "sepolicy/vendor/service_contexts",
                           r"^line 1: .* +u:r:hal_veskdevicemanager_service:s0: invalid context$")

    def test_a_service_context_that_is_not_a_service_type_is_named(self):
        _, failure = self.contexts_failure("service-type", "vendor/service_contexts",
                                           "hal_veskdevicemanager_service",
                                           "hal_veskdevicemanager_hwservice")
        self.assertFailure(failure, "contexts", "sepolicy/vendor/service_contexts",
                           rf"^line 1: {AIDL_INSTANCE} .*: hal_veskdevicemanager_hwservice is "
                           r"not a service_manager_type$")

    def test_a_service_named_twice_is_named(self):
        line = "vesk.hardware.veskdevicemanager.IVeskDeviceManager/default    " \
               "u:object_r:hal_veskdevicemanager_service:s0\n"
        _, failure = self.contexts_failure("service-twice", "vendor/service_contexts", line,
                                           line + "# again\n" + line)
        self.assertFailure(failure, "contexts", "sepolicy/vendor/service_contexts",
                           rf"^line 3: {AIDL_INSTANCE} again \(line 1\): one context per name$")

    def test_a_service_line_without_a_context_is_named(self):
        _, failure = self.contexts_failure("service-fields", "vendor/hwservice_contexts",
                                           "    u:object_r:", " extra u:object_r:")
        self.assertFailure(failure, "contexts", "sepolicy/vendor/hwservice_contexts",
                           r"^line 1: vesk\.hardware\.veskdevicemanager::IVeskDeviceManager extra "
                           r"u:object_r:hal_veskdevicemanager_hwservice:s0: not NAME CONTEXT$")


if __name__ == "__main__":
    unittest.main()
