"""The headers gate finds what it is there to find, in a copy of the parts of the repository it
reads with one thing broken, and the driver's answers without a usable tree.

    VESK_ANDROID_TREE=../shared/android13 python3 -m unittest discover -s scripts/boardcheck/tests -t scripts

The headers cases need the tree and are skipped without it.
"""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from boardcheck import headers, vintf
from boardcheck.common import GateFailure
from boardcheck.tests.support import REPO, TREE, VINTF_PARTS, Copy

DRIVER = REPO / "scripts" / "board_check.py"

# Called from a source of the -impl: a host stand-in's function, whose header is in the copy too.
HOST_ONLY_CALL = """
#include <vesk/host/DeviceRoot.h>

std::string boardRoot() {
    return vesk::host::deviceRoot();
}
"""


@unittest.skipUnless(TREE, "needs an Android tree ($VESK_ANDROID_TREE)")
class HeadersGateTest(unittest.TestCase):
    SOURCE = "default/core/BoardText.cpp"

    def setUp(self):
        self.copy = Copy(self, "default", "interface", "vesksdk/include", "vesksdk/Android.bp",
                         "host/platform/include")

    def test_device_sources_compile(self):
        # The second includes the interface's generated headers and with them the tree's.
        headers.check_headers(self.copy.context,
                              sources=[self.SOURCE, "default/VeskDeviceCallback.cpp"])

    def test_a_host_only_function_called_from_a_device_source_fails(self):
        with open(self.copy.repo / self.SOURCE, "a") as source:
            source.write(HOST_ONLY_CALL)
        with self.assertRaises(GateFailure) as failure:
            headers.check_headers(self.copy.context, sources=[self.SOURCE])
        self.assertEqual("headers", failure.exception.gate)
        self.assertEqual(self.SOURCE, failure.exception.file)
        self.assertRegex(failure.exception.violation,
                         r"^default/core/BoardText\.cpp:\d+:\d+: fatal error: "
                         r"'vesk/host/DeviceRoot\.h' file not found$")

    def test_an_unknown_source_is_refused(self):
        with self.assertRaises(ValueError):
            headers.check_headers(self.copy.context, sources=["host/platform/src/DeviceRoot.cpp"])


# A vendor module of the test's own, as a stable-AIDL HAL's service is one: it serves an
# IVeskDeviceCallback, linking the NDK library of version 1, libbinder_ndk and libbase.
VENDOR_SERVICE_BP = """cc_binary {
    name: "vesk_test_callback_service",
    vendor: true,
    srcs: ["main.cpp"],
    cflags: ["-Wall", "-Wextra", "-Werror"],
    shared_libs: [
        "libbase",
        "libbinder_ndk",
        "vesk.hardware.veskdevicemanager-V1-ndk",
    ],
}
"""
VENDOR_SERVICE = """#include <aidl/vesk/hardware/veskdevicemanager/BnVeskDeviceCallback.h>
#include <android-base/logging.h>
#include <android/binder_manager.h>
#include <android/binder_process.h>
#include <android/binder_stability.h>

#include <string>

using ::aidl::vesk::hardware::veskdevicemanager::BnVeskDeviceCallback;
using ::aidl::vesk::hardware::veskdevicemanager::MessageParcel;

namespace {
class Callback : public BnVeskDeviceCallback {
    ndk::ScopedAStatus hwNotify(const MessageParcel&) override {
        return ndk::ScopedAStatus::ok();
    }
};
}  // namespace

int main() {
    ABinderProcess_setThreadPoolMaxThreadCount(0);
    auto callback = ndk::SharedRefBase::make<Callback>();
    // Declared for vendor code only (__ANDROID_VENDOR__).
    AIBinder_forceDowngradeToVendorStability(callback->asBinder().get());
    const std::string instance = std::string(Callback::descriptor) + "/default";
    CHECK_EQ(STATUS_OK, AServiceManager_addService(callback->asBinder().get(), instance.c_str()));
    ABinderProcess_joinThreadPool();
    return 1;
}
"""
VENDOR_SOURCE = "vesk-test-service/main.cpp"
EXAMPLE = "examples/native-client-aidl/main.cpp"
NDK = "aidl-ndk/vesk.hardware.veskdevicemanager-V1-ndk"
GENERATED = "src/vesk/hardware/veskdevicemanager/IVeskDeviceCallback.cpp"


@unittest.skipUnless(TREE, "needs an Android tree ($VESK_ANDROID_TREE)")
class NdkHeadersGateTest(unittest.TestCase):
    """The NDK code of version 1 and the modules that link it: the example (a core module) and
    a vendor module of the test's own."""

    def setUp(self):
        self.copy = Copy(self, "interface/veskdevicemanager/aidl", "examples/native-client-aidl")
        (self.copy.repo / VENDOR_SOURCE).parent.mkdir()
        (self.copy.repo / VENDOR_SOURCE).write_text(VENDOR_SERVICE)
        (self.copy.repo / VENDOR_SOURCE).with_name("Android.bp").write_text(VENDOR_SERVICE_BP)

    def compile(self, *sources):
        headers.check_headers(self.copy.context, sources=sources)

    def failure(self, *sources):
        with self.assertRaises(GateFailure) as failure:
            self.compile(*sources)
        self.assertEqual("headers", failure.exception.gate)
        return failure.exception

    def test_the_ndk_code_of_each_variant_and_its_users_compile(self):
        self.compile(VENDOR_SOURCE, EXAMPLE, f"{NDK}/vendor/{GENERATED}", f"{NDK}/core/{GENERATED}")
        self.assertRegex(self.copy.context.notes[-1], r"^headers: 4 sources compiled in ")

    def test_a_core_module_is_not_compiled_as_vendor_code(self):
        with open(self.copy.repo / EXAMPLE, "a") as source:
            source.write("void downgrade(AIBinder* binder) {\n"
                         "    AIBinder_forceDowngradeToVendorStability(binder);\n}\n")
        failure = self.failure(EXAMPLE)
        self.assertEqual(EXAMPLE, failure.file)
        self.assertRegex(failure.violation, r"error: use of undeclared identifier "
                         r"'AIBinder_forceDowngradeToVendorStability'")

    def test_the_ndk_code_is_the_frozen_version_s(self):
        # A method of version 1 taken out of the sources (not frozen): the example still calls it.
        self.copy.edit("interface/veskdevicemanager/aidl/vesk/hardware/veskdevicemanager/"
                       "IVeskDeviceManager.aidl", "int getSysLedState();", "")
        self.compile(EXAMPLE)
        # A method version 1 lacks.
        self.copy.edit(EXAMPLE, "getSysLedState(&state)", "getSysLedStates(&state)")
        failure = self.failure(EXAMPLE)
        self.assertEqual(EXAMPLE, failure.file)
        self.assertRegex(failure.violation, r"error: no member named 'getSysLedStates' in "
                         r"'aidl::vesk::hardware::veskdevicemanager::IVeskDeviceManager'")

    def test_a_version_that_is_not_frozen_is_named(self):
        self.copy.edit("vesk-test-service/Android.bp", "veskdevicemanager-V1-ndk",
                       "veskdevicemanager-V2-ndk")
        failure = self.failure(VENDOR_SOURCE)
        self.assertEqual(("vesk-test-service/Android.bp", "vesk_test_callback_service: "
                          "vesk.hardware.veskdevicemanager-V2-ndk is no frozen version's NDK "
                          "library of vesk.hardware.veskdevicemanager"),
                         (failure.file, failure.violation))


class DriverTest(unittest.TestCase):
    def run_driver(self, *args):
        environment = {k: v for k, v in os.environ.items() if k != "VESK_ANDROID_TREE"}
        return subprocess.run([sys.executable, str(DRIVER), *args], capture_output=True,
                              text=True, env=environment)

    def test_no_tree_is_one_line_and_success(self):
        result = self.run_driver()
        self.assertEqual((0, ""), (result.returncode, result.stderr))
        self.assertEqual(1, len(result.stdout.splitlines()), result.stdout)

    def test_a_missing_tree_is_one_line_and_status_2(self):
        scratch = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, scratch)
        result = self.run_driver(str(scratch / "absent"))
        self.assertEqual((2, ""), (result.returncode, result.stdout))
        self.assertEqual([f"board check: no Android tree at {scratch / 'absent'}"],
                         result.stderr.splitlines())

    def test_a_tree_lacking_a_folder_is_one_line_and_status_2(self):
        scratch = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, scratch)
        for folder in headers.TREE_FOLDERS:
            if folder != "system/libfmq/base":
                (scratch / folder).mkdir(parents=True, exist_ok=True)
        result = self.run_driver(str(scratch), "--gate", "headers")
        self.assertEqual((2, ""), (result.returncode, result.stdout))
        self.assertEqual([f"board check: {scratch} lacks system/libfmq/base (needed by the "
                          "headers gate)"], result.stderr.splitlines())

    def test_a_failed_gate_names_the_gate_the_file_and_the_violation(self):
        copy = Copy(self, *VINTF_PARTS)
        hidl = vintf.FRONT_ENDS[0]
        copy.edit(hidl.matrix, "<instance>default</instance>", "<instance>vesk</instance>")
        result = self.run_driver(str(copy.context.tree), "--repo", str(copy.repo),
                                 "--gate", "vintf")
        self.assertEqual(1, result.returncode)
        self.assertEqual(["board check: gate vintf failed", f"board check: file {hidl.matrix}",
                          "board check: vesk.hardware.veskdevicemanager: names "
                          f"IVeskDeviceManager/vesk, {hidl.manifest} serves "
                          "IVeskDeviceManager/default"], result.stderr.splitlines())


if __name__ == "__main__":
    unittest.main()
