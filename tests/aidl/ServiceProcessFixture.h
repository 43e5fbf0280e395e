/*
 * The stable-AIDL service program as its clients meet it: a process of its own on a fresh device
 * root (it takes the root from $VESK_ROOT, as every host program does), its board calls in a
 * journal file and its standard error in a file of the root, reached over the platform's binder
 * from this process or from others.
 */
#pragma once

#include <aidl/vesk/hardware/veskdevicemanager/IVeskDeviceManager.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "RpcConnection.h"
#include "ServerProcess.h"
#include "TestRoot.h"

namespace vesk::test {

using ::aidl::vesk::hardware::veskdevicemanager::IVeskDeviceManager;
using Session = RpcConnection<IVeskDeviceManager>;

class ServiceProcessTest : public RootTest {
  protected:
    // A service still running stops as SIGTERM stops it: at once, with status 0 (a sanitizer
    // that found something in it ends it with another, and its report is in its errors).
    void TearDown() override {
        if (service == nullptr || service->hasEnded()) return;
        ChildEnd end = service->stop();
        EXPECT_TRUE(end.exited && end.code == 0) << readFile(errorPath());
    }
    ~ServiceProcessTest() override { service.reset(); }

    // Where the service listens: below the device root, as README says.
    std::string socketPath() const { return root.path() + "/dev/socket/veskdevicemanager"; }
    std::string journalPath() const { return root.path() + "/journal.jsonl"; }
    std::string errorPath() const { return root.path() + "/service.err"; }

    // Starts the service (again, after one ended); false when it did not say it listens.
    bool start() {
        service.reset();
        service = std::make_unique<ServerProcess>(
                VESK_BINARY_DIR "/bin/vesk.hardware.veskdevicemanager-service",
                std::vector<std::string>{}, "listening on " + socketPath(), errorPath(),
                ServerProcess::Environment{{"VESK_BOARD_JOURNAL", journalPath()}});
        return service->listening();
    }

    // The board calls the service made, one JSON object each, in order.
    std::vector<nlohmann::json> boardCalls() const {
        std::vector<nlohmann::json> calls;
        std::string text = readFile(journalPath());
        size_t start = 0;
        while (start < text.size()) {
            size_t end = text.find('\n', start);
            if (end == std::string::npos) break;
            calls.push_back(nlohmann::json::parse(text.substr(start, end - start)));
            start = end + 1;
        }
        return calls;
    }

    // Waits until the service's standard error holds `text`, at most `deadline`.
    bool errorsShow(const std::string& text,
                    std::chrono::milliseconds deadline = std::chrono::seconds(30)) const {
        auto end = std::chrono::steady_clock::now() + deadline;
        while (readFile(errorPath()).find(text) == std::string::npos) {
            if (std::chrono::steady_clock::now() > end) return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return true;
    }

    std::unique_ptr<ServerProcess> service;
};

}  // namespace vesk::test
