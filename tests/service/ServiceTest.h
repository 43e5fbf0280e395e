/*
 * Fixture for the service's tests: a fresh device root, the log captured, the board's journal
 * kept in memory and no script; the service fetched as a passthrough host fetches it. The
 * board's and the service's process-wide state is put back as a fresh process has it, before
 * and after each test.
 */
#pragma once

#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vesksdk_sim_control.h>

#include "BoardRecordBytes.h"
#include "BoardReset.h"
#include "ProductRecordCache.h"
#include "TestRoot.h"
#include "TraceLines.h"
#include "VeskDeviceManager.h"

namespace vesk::test {

using ::android::sp;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager;
using json = nlohmann::json;

using ::vesk::hardware::veskdevicemanager::implementation::traceLine;

// "METHOD LINE", how the method's trace lines begin (its own, or the further one named by
// `where`), the line taken from the service's one table of trace points.
inline std::string traced(const char* method, const char* where = "") {
    return std::string(method) + " " + std::to_string(traceLine(method, where));
}

inline constexpr char kServiceTag[] = "vesk_system_hidl_device";
inline constexpr char kLevel[] = "persist.vesk.device.log.level";

class ServiceTest : public RootTest {
  protected:
    ServiceTest() {
        resetSimulatedBoard();
        vesk::hardware::veskdevicemanager::implementation::forgetProductRecord();
        vesk::sim::startJournal();
        service = vesk::hardware::veskdevicemanager::implementation::HIDL_FETCH_IVeskDeviceManager(
                "default");
        vesk::sim::clearJournal();
        vesk::host::clearCapturedLog();
    }
    // Leaves no board state, journal, script or product record to the next test.
    ~ServiceTest() override {
        service.clear();
        resetSimulatedBoard();
        vesk::hardware::veskdevicemanager::implementation::forgetProductRecord();
    }

    void setLevel(const std::string& level) { setProperty(kLevel, level); }
    void script(const json& s) {
        std::string error;
        ASSERT_TRUE(vesk::sim::setScript(s, &error)) << error;
    }
    // Every board call since the fixture was made (constructor excluded).
    std::vector<json> calls() { return vesk::sim::journal(); }
    std::vector<json> callsOf(const std::string& function) {
        return vesk::sim::journalOf(function);
    }

    static vesk::host::LogLine debugLine(const std::string& text) {
        return {ANDROID_LOG_DEBUG, kServiceTag, text};
    }
    static vesk::host::LogLine infoLine(const std::string& text) {
        return {ANDROID_LOG_INFO, kServiceTag, text};
    }
    static vesk::host::LogLine errorLine(const std::string& text) {
        return {ANDROID_LOG_ERROR, kServiceTag, text};
    }

    sp<IVeskDeviceManager> service;
};

}  // namespace vesk::test
