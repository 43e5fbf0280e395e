/*
 * The environment tests' fixture: a fresh device root (with its factory partition at
 * /dev/block/env) and the log captured; helpers to lay out devices below the root.
 */
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "EnvTestSupport.h"
#include "TestRoot.h"

namespace vesk::test {

class EnvTest : public RootTest {
  protected:
    EnvTest() { vesk::host::clearCapturedLog(); }

    // The host location of a device path.
    std::string hostPath(const std::string& device) const { return root / device; }
    // Writes `content` to the device (creating its directories).
    void writeDevice(const std::string& device, const std::string& content);
    std::string readDevice(const std::string& device) const { return readFile(root / device); }
    void removeDevice(const std::string& device);
};

// The two lines of a load that succeeded on `device` with the default sizes.
EnvLogs loadedLog(const std::string& device = kEnvDevice);

}  // namespace vesk::test
