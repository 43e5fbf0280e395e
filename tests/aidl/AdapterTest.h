/*
 * Fixture of the stable-AIDL front end's own tests, in this process: a fresh device root, the log
 * captured at the debug level (so that a call that reached the core would write its trace), the
 * board's journal kept in memory and no script; the front end's object made as the service
 * program makes it. The board's and the core's process-wide state is put back as a fresh process
 * has it, before and after each test.
 */
#pragma once

#include <android/binder_status.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vesksdk_sim_control.h>

#include <memory>
#include <string>
#include <vector>

#include "AidlVeskDeviceManager.h"
#include "BoardReset.h"
#include "ProductRecordCache.h"
#include "TestRoot.h"

namespace vesk::test {

using ::aidl::vesk::hardware::veskdevicemanager::VeskDeviceManager;
using json = nlohmann::json;

class AdapterTest : public RootTest {
  protected:
    AdapterTest() {
        resetSimulatedBoard();
        vesk::hardware::veskdevicemanager::implementation::forgetProductRecord();
        setProperty("persist.vesk.device.log.level", "D");
        vesk::sim::startJournal();
        service = ndk::SharedRefBase::make<VeskDeviceManager>();
        vesk::sim::clearJournal();
        vesk::host::clearCapturedLog();
    }
    ~AdapterTest() override {
        service.reset();
        resetSimulatedBoard();
        vesk::hardware::veskdevicemanager::implementation::forgetProductRecord();
    }

    void script(const json& s) {
        std::string error;
        ASSERT_TRUE(vesk::sim::setScript(s, &error)) << error;
    }
    std::vector<json> callsOf(const std::string& function) {
        return vesk::sim::journalOf(function);
    }

    // The call was refused with EX_ILLEGAL_ARGUMENT and exactly `message`, and nothing of it
    // reached the core (no trace line) or the board (no call).
    void expectRefused(const ::ndk::ScopedAStatus& status, const std::string& message) {
        EXPECT_EQ(EX_ILLEGAL_ARGUMENT, status.getExceptionCode()) << status.getDescription();
        EXPECT_EQ(message, status.getMessage() == nullptr ? "" : status.getMessage());
        EXPECT_THAT(vesk::sim::journal(), ::testing::IsEmpty());
        EXPECT_THAT(capturedLog(), ::testing::IsEmpty());
    }

    std::shared_ptr<VeskDeviceManager> service;
};

}  // namespace vesk::test
