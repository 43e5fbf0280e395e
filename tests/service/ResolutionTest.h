/*
 * Fixture of the two resolution methods: the service on the simulated board (model 8470 unless
 * a test scripts another), a fresh device root with its factory environment, and the mode
 * tool's command lines recorded.
 */
#pragma once

#include <cstring>
#include <mutex>

#include "DisplayModeTestSupport.h"
#include "ServiceTest.h"
#include "vesk/host/Seams.h"

namespace vesk::test {

using ::vesk::hardware::veskdevicemanager::V1_0::VeskEffeResolution;

// width, height, fps, status
using Resolution = std::vector<int64_t>;

inline Resolution resolutionOf(const VeskEffeResolution& r) {
    return {r.width, r.height, r.fps, r.status};
}

// The board's 16-byte resolution record as the script's hex.
inline std::string resolutionRecordHex(uint32_t width, uint32_t height, uint32_t fps,
                                       int32_t status) {
    std::string bytes(16, '\0');
    uint32_t words[4] = {width, height, fps, static_cast<uint32_t>(status)};
    memcpy(bytes.data(), words, sizeof(words));
    return hexOf(bytes);
}

class ResolutionTest : public ServiceTest {
  protected:
    ResolutionTest() {
        vesk::host::setShellRecorder([this](const std::string& line) {
            std::lock_guard<std::mutex> lock(commandsMutex);
            commands.push_back(line);
            if (onCommand) onCommand();
            return 0;
        });
    }
    ~ResolutionTest() override { vesk::host::setShellRecorder(nullptr); }

    Resolution calculate(uint32_t width, uint32_t height, uint32_t fps) {
        Resolution result;
        int called = 0;
        service->calculateResolutionParameters(width, height, fps, [&](const VeskEffeResolution& r) {
            result = resolutionOf(r);
            ++called;
        });
        EXPECT_EQ(1, called);
        return result;
    }
    Resolution current() {
        Resolution result;
        int called = 0;
        service->getResolutionParameters([&](const VeskEffeResolution& r) {
            result = resolutionOf(r);
            ++called;
        });
        EXPECT_EQ(1, called);
        return result;
    }

    // The product record names `model` at byte 64; every other byte is zero.
    json productScript(const std::string& model) {
        std::string record(2048, '\0');
        putText(record, 64, model);
        return {{"return", 0}, {"out", hexOf(record)}};
    }
    void scriptModel(const std::string& model) {
        script({{"bi_info_get_product_info", productScript(model)}});
    }

    std::mutex commandsMutex;
    std::vector<std::string> commands;
    std::function<void()> onCommand;  // runs inside the recorded command
};

}  // namespace vesk::test
