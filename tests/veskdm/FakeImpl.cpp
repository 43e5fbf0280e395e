/*
 * A stand-in implementation library for the tool's own tests: exports
 * HIDL_FETCH_IVeskDeviceManager like the real one, answers with fixed values worked out for the
 * tests, and appends one line per factory call and per method call ("fetch NAME",
 * "setSysLedState 3", "getSysLedState") to the file named by $VESK_FAKE_CALLS.
 */
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>
#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceManager.h>

#include <new>
#include <stdexcept>
#include <string>

namespace {

using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::android::hardware::Void;
using namespace ::vesk::hardware::veskdevicemanager::V1_0;

void recordLine(const std::string& line) {
    const char* path = getenv("VESK_FAKE_CALLS");
    if (path == nullptr || path[0] == '\0') return;
    FILE* file = fopen(path, "a");
    if (file == nullptr) return;
    fprintf(file, "%s\n", line.c_str());
    fclose(file);
}

template <typename R>
struct Zero;
template <typename T>
struct Zero<Return<T>> {
    static Return<T> get() { return T{}; }
};
template <>
struct Zero<Return<void>> {
    static Return<void> get() { return Void(); }
};

// Every method: records its name and returns zero (its callback is not called).
class RecordingDeviceManager : public IVeskDeviceManager {
  protected:
    static void record(const std::string& line) { recordLine(line); }
    template <typename R>
    static R zeroResult() {
        return Zero<R>::get();
    }

  public:
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-parameter"
#include "RecordingDeviceManagerMethods.inc"
#pragma GCC diagnostic pop
};

// The LED state lives for the process, like the board's.
int32_t gSysLedState = 0;

class FakeDeviceManager : public RecordingDeviceManager {
  public:
    Return<int32_t> setSysLedState(int32_t state) override {
        record("setSysLedState " + std::to_string(state));
        gSysLedState = state;
        return 0;
    }
    Return<int32_t> getSysLedState() override {
        record("getSysLedState");
        return gSysLedState;
    }
    Return<float> getBoardVoltage() override {
        record("getBoardVoltage");
        return 12.15f;
    }
    Return<void> getCpuStatus(getCpuStatus_cb cb) override {
        record("getCpuStatus");
        CpuStatus status{};
        status.usr = 12.5f;
        status.nic = 0.1f;
        status.sys = 3.3f;
        status.idle = 80.0f;
        status.iowait = 1.0f / 3.0f;
        status.irq = 0.0f;
        status.softirq = 2.75f;
        status.temperature = 47;
        cb(status);
        return Void();
    }
    // Delivers its result twice, to show that every invocation is kept. Past 1 GiB it fails
    // to allocate, as an allocator out of memory would.
    Return<void> readSpiFpga(int32_t size, readSpiFpga_cb cb) override {
        record("readSpiFpga " + std::to_string(size));
        if (size > (1 << 30)) throw std::bad_alloc();
        hidl_vec<uint8_t> data(static_cast<size_t>(size));
        for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<uint8_t>(0xA0 + i);
        cb(size, data);
        cb(-1, hidl_vec<uint8_t>());
        return Void();
    }
    // Past 2^31 - 1 bytes a std::vector of a 32-bit ABI cannot hold the buffer, and says so with
    // std::length_error, as the service's own buffers do there.
    Return<void> readBlockDataDefined(uint32_t length, uint32_t offset,
                                      readBlockDataDefined_cb cb) override {
        record("readBlockDataDefined " + std::to_string(length) + " " + std::to_string(offset));
        if (length > 2147483647u) {
            throw std::length_error("cannot create std::vector larger than max_size()");
        }
        cb(hidl_vec<uint8_t>(length));
        return Void();
    }
    Return<int32_t> writeSerialPort232(const hidl_vec<uint8_t>& data) override {
        std::string line = "writeSerialPort232";
        for (uint8_t byte : data) line += " " + std::to_string(byte);
        record(line);
        return static_cast<int32_t>(data.size());
    }
    Return<int32_t> startWatchDog(const hidl_string& device, uint32_t timeout) override {
        record("startWatchDog " + std::string(device) + " " + std::to_string(timeout));
        return 0;
    }
    Return<int32_t> setVeskLogConfigure(const VeskLogInfo& info) override {
        record("setVeskLogConfigure " + std::string(info.level) + "|" + std::string(info.base) +
               "|" + std::string(info.mode) + "|" + std::string(info.total_size) + "|" +
               std::string(info.once_size));
        return 0;
    }
    // Ends the process the way a crash does (-15: SIGTERM after a line on standard error), an
    // abort under an emulator does (-6: the emulator's own line after the process's last words)
    // or a call of _exit does (-3: status 3), so that the tool's report of each can be seen.
    Return<int32_t> setPQEnable(int32_t enable) override {
        record("setPQEnable " + std::to_string(enable));
        if (enable == -15) {
            fputs("fake: ending on a signal\n", stderr);
            fflush(stderr);
            raise(SIGTERM);
        }
        if (enable == -6) {
            fputs("fake: last words\n\nqemu: uncaught target signal 6 (Aborted) - core dumped\n",
                  stderr);
            fflush(stderr);
            abort();
        }
        if (enable == -3) _exit(3);
        return 0;
    }
    Return<int32_t> hwRegistCallback(const ::android::sp<IVeskDeviceCallback>& callback) override {
        record(std::string("hwRegistCallback ") + (callback == nullptr ? "null" : "object"));
        if (callback != nullptr) {
            MessageParcel parcel;
            parcel.what = 7;
            parcel.message = "hello";
            parcel.payload = hidl_vec<uint8_t>{1, 2};
            callback->hwNotify(parcel);
        }
        return 0;
    }
};

}  // namespace

extern "C" IVeskDeviceManager* HIDL_FETCH_IVeskDeviceManager(const char* name) {
    recordLine(std::string("fetch ") + name);
    if (getenv("VESK_FAKE_NO_OBJECT") != nullptr) return nullptr;
    return new FakeDeviceManager();
}
