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

// A FIFO standing in for a device that cannot seek; the test holds it open for reading and
// writing (without waiting), so that the object's opens never block, with room for 1 MiB.
class FifoDevice {
  public:
    explicit FifoDevice(const std::string& path);
    ~FifoDevice();
    FifoDevice(const FifoDevice&) = delete;
    FifoDevice& operator=(const FifoDevice&) = delete;

    void feed(const std::string& bytes);
    // Up to `count` of the bytes waiting.
    std::string drain(size_t count);
    // Bytes waiting in the FIFO.
    size_t pending() const;

  private:
    int mFd = -1;
};

}  // namespace vesk::test
