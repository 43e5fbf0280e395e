// The front end's argument checks, each kind at its limits and one past them: what is taken
// reaches the board as the HIDL interface would have carried it; what is refused gets
// EX_ILLEGAL_ARGUMENT with its exact message, and neither the core nor the board hears of it.
#include <climits>
#include <functional>
#include <string>
#include <vector>

#include "AdapterTest.h"

namespace vesk::test {
namespace {

using ::aidl::vesk::hardware::veskdevicemanager::ReadResult;
using ::aidl::vesk::hardware::veskdevicemanager::TransferResult;
using ::aidl::vesk::hardware::veskdevicemanager::VeskLogInfo;
using ::ndk::ScopedAStatus;

// The largest reply of a binder transaction on the board: 1 MiB less two 4 KiB pages.
constexpr int32_t kLargestBuffer = 1048576 - 8192;

// A call with one argument under test; the others are valid.
using Call = std::function<ScopedAStatus(VeskDeviceManager&, int32_t)>;

struct Argument {
    std::string method;
    std::string name;
    Call call;
};

using BlockingRead = ScopedAStatus (VeskDeviceManager::*)(int32_t, int32_t, ReadResult*);
using NonBlockingRead = ScopedAStatus (VeskDeviceManager::*)(int32_t, ReadResult*);
using Open = ScopedAStatus (VeskDeviceManager::*)(int32_t, int32_t, int32_t, int32_t, int32_t*);

struct Channel {
    std::string suffix;
    std::string board;  // the board's name of the channel
    BlockingRead blockingRead;
    NonBlockingRead nonBlockingRead;
    Open open;
};

#define VESK_CHANNEL(suffix, board)                                         \
    Channel {                                                               \
#suffix, board, &VeskDeviceManager::readBlockingSerialPort##suffix, \
                &VeskDeviceManager::readNonBlockingSerialPort##suffix,      \
                &VeskDeviceManager::openSerialPort##suffix                  \
    }
const std::vector<Channel> kChannels = {
        VESK_CHANNEL(485, "485"),     VESK_CHANNEL(485_2, "485_2"), VESK_CHANNEL(232, "232"),
        VESK_CHANNEL(Lora, "lora"),   VESK_CHANNEL(HDMI, "hdmi"),   VESK_CHANNEL(TTL, "ttl"),
        VESK_CHANNEL(TTL_2, "ttl_2"),
};
#undef VESK_CHANNEL

// Every argument that sizes a buffer the service makes: uint32_t data_size, length and the
// int32_t size in HIDL.
std::vector<Argument> sizes() {
    std::vector<Argument> found;
    for (const Channel& channel : kChannels) {
        found.push_back({"readBlockingSerialPort" + channel.suffix, "data_size",
                         [read = channel.blockingRead](VeskDeviceManager& m, int32_t v) {
                             ReadResult out;
                             return (m.*read)(v, 0, &out);
                         }});
        found.push_back({"readNonBlockingSerialPort" + channel.suffix, "data_size",
                         [read = channel.nonBlockingRead](VeskDeviceManager& m, int32_t v) {
                             ReadResult out;
                             return (m.*read)(v, &out);
                         }});
    }
    found.push_back({"readBlockDataDefined", "length", [](VeskDeviceManager& m, int32_t v) {
                         std::vector<uint8_t> out;
                         return m.readBlockDataDefined(v, 0, &out);
                     }});
    found.push_back({"readBlockDataScreen", "length", [](VeskDeviceManager& m, int32_t v) {
                         std::vector<uint8_t> out;
                         return m.readBlockDataScreen(v, 0, &out);
                     }});
    found.push_back({"setFPGAProgramBlockData", "length", [](VeskDeviceManager& m, int32_t v) {
                         int32_t out = 0;
                         return m.setFPGAProgramBlockData({1, 2, 3}, v, 0, &out);
                     }});
    found.push_back({"getFPGAProgramBlockData", "length", [](VeskDeviceManager& m, int32_t v) {
                         std::vector<uint8_t> out;
                         return m.getFPGAProgramBlockData(v, 0, &out);
                     }});
    found.push_back({"readBlockData", "length", [](VeskDeviceManager& m, int32_t v) {
                         std::vector<uint8_t> out;
                         return m.readBlockData("/dev/block/env", 0, v, &out);
                     }});
    found.push_back({"readSpiFpga", "size", [](VeskDeviceManager& m, int32_t v) {
                         TransferResult out;
                         return m.readSpiFpga(v, &out);
                     }});
    return found;
}

TEST_F(AdapterTest, EverySizeFromZeroToTheLargestBufferIsTaken) {
    for (const Argument& size : sizes()) {
        for (int32_t value : {0, kLargestBuffer}) {
            SCOPED_TRACE(size.method + " " + std::to_string(value));
            ScopedAStatus status = size.call(*service, value);
            EXPECT_TRUE(status.isOk()) << status.getDescription();
        }
    }
}

TEST_F(AdapterTest, ASizeAtTheLargestBufferReachesTheBoard) {
    ReadResult read;
    ASSERT_TRUE(service->readNonBlockingSerialPort232(kLargestBuffer, &read).isOk());
    std::vector<json> reads = callsOf("bi_serial_232_nonblocking_read");
    ASSERT_EQ(1u, reads.size());
    EXPECT_EQ(json::array({nullptr, kLargestBuffer}), reads[0]["args"]);

    std::vector<uint8_t> block;
    ASSERT_TRUE(service->readBlockDataDefined(kLargestBuffer, 7, &block).isOk());
    std::vector<json> blocks = callsOf("bi_block_read_defined");
    ASSERT_EQ(1u, blocks.size());
    EXPECT_EQ(json::array({7, nullptr, kLargestBuffer}), blocks[0]["args"]);
}

TEST_F(AdapterTest, ANegativeSizeIsRefused) {
    for (const Argument& size : sizes()) {
        for (int32_t value : {-1, INT32_MIN}) {
            SCOPED_TRACE(size.method + " " + std::to_string(value));
            expectRefused(size.call(*service, value), size.method + ": " + size.name + " is " +
                                                              std::to_string(value) +
                                                              ", outside its range 0 to 1040384");
        }
    }
}

TEST_F(AdapterTest, ASizePastTheLargestBufferIsRefused) {
    for (const Argument& size : sizes()) {
        for (int32_t value : {kLargestBuffer + 1, INT32_MAX}) {
            SCOPED_TRACE(size.method + " " + std::to_string(value));
            expectRefused(size.call(*service, value), size.method + ": " + size.name + " is " +
                                                              std::to_string(value) +
                                                              ", outside its range 0 to 1040384");
        }
    }
}

// An argument of a narrower HIDL type, with its range there and the board call that takes it.
struct Narrow {
    Argument argument;
    int32_t low;
    int32_t high;
    std::string board;  // the board function
    size_t position;    // the argument's place in its call
};

std::vector<Narrow> narrowArguments() {
    std::vector<Narrow> found;
    for (const Channel& channel : kChannels) {
        std::string method = "openSerialPort" + channel.suffix;
        std::string board = "bi_serial_" + channel.board + "_open";
        Open open = channel.open;
        found.push_back({{method, "databits",
                          [open](VeskDeviceManager& m, int32_t v) {
                              int32_t out = 0;
                              return (m.*open)(9600, v, 1, 0, &out);
                          }},
                         0,
                         255,
                         board,
                         1});
        found.push_back({{method, "stopbits",
                          [open](VeskDeviceManager& m, int32_t v) {
                              int32_t out = 0;
                              return (m.*open)(9600, 8, v, 0, &out);
                          }},
                         0,
                         255,
                         board,
                         2});
        found.push_back({{method, "parity",
                          [open](VeskDeviceManager& m, int32_t v) {
                              int32_t out = 0;
                              return (m.*open)(9600, 8, 1, v, &out);
                          }},
                         -128,
                         127,
                         board,
                         3});
    }
    found.push_back({{"setAudioEnable", "channel",
                      [](VeskDeviceManager& m, int32_t v) {
                          int32_t out = 0;
                          return m.setAudioEnable(v, 1, &out);
                      }},
                     0,
                     255,
                     "bi_i2c_set_audio_enable",
                     0});
    found.push_back({{"setAudioEnable", "enable",
                      [](VeskDeviceManager& m, int32_t v) {
                          int32_t out = 0;
                          return m.setAudioEnable(1, v, &out);
                      }},
                     0,
                     255,
                     "bi_i2c_set_audio_enable",
                     1});
    found.push_back({{"getAudioEnable", "channel",
                      [](VeskDeviceManager& m, int32_t v) {
                          int32_t out = 0;
                          return m.getAudioEnable(v, &out);
                      }},
                     0,
                     255,
                     "bi_i2c_get_audio_enable",
                     0});
    found.push_back({{"setVideoInputSrcVolume", "source",
                      [](VeskDeviceManager& m, int32_t v) {
                          int32_t out = 0;
                          return m.setVideoInputSrcVolume(v, 1, &out);
                      }},
                     0,
                     255,
                     "bi_i2c_set_video_inputsrc_volume",
                     0});
    found.push_back({{"setVideoInputSrcVolume", "volume",
                      [](VeskDeviceManager& m, int32_t v) {
                          int32_t out = 0;
                          return m.setVideoInputSrcVolume(1, v, &out);
                      }},
                     0,
                     255,
                     "bi_i2c_set_video_inputsrc_volume",
                     1});
    found.push_back({{"getVideoInputSrcVolume", "source",
                      [](VeskDeviceManager& m, int32_t v) {
                          int32_t out = 0;
                          return m.getVideoInputSrcVolume(v, &out);
                      }},
                     0,
                     255,
                     "bi_i2c_get_video_inputsrc_volume",
                     0});
    found.push_back({{"getEdidFromDefined", "index",
                      [](VeskDeviceManager& m, int32_t v) {
                          std::vector<uint8_t> out;
                          return m.getEdidFromDefined(v, 1920, 1080, 60.0f, &out);
                      }},
                     0,
                     255,
                     "bi_resolution_get_edid_from_defined",
                     0});
    found.push_back({{"getEdidFromDefined", "width",
                      [](VeskDeviceManager& m, int32_t v) {
                          std::vector<uint8_t> out;
                          return m.getEdidFromDefined(0, v, 1080, 60.0f, &out);
                      }},
                     0,
                     65535,
                     "bi_resolution_get_edid_from_defined",
                     1});
    found.push_back({{"getEdidFromDefined", "height",
                      [](VeskDeviceManager& m, int32_t v) {
                          std::vector<uint8_t> out;
                          return m.getEdidFromDefined(0, 1920, v, 60.0f, &out);
                      }},
                     0,
                     65535,
                     "bi_resolution_get_edid_from_defined",
                     2});
    found.push_back({{"getEdidByModel", "width",
                      [](VeskDeviceManager& m, int32_t v) {
                          std::vector<uint8_t> out;
                          return m.getEdidByModel(v, 1080, 60.0f, &out);
                      }},
                     0,
                     65535,
                     "bi_resolution_get_edid_by_model",
                     0});
    found.push_back({{"getEdidByModel", "height",
                      [](VeskDeviceManager& m, int32_t v) {
                          std::vector<uint8_t> out;
                          return m.getEdidByModel(1920, v, 60.0f, &out);
                      }},
                     0,
                     65535,
                     "bi_resolution_get_edid_by_model",
                     1});
    return found;
}

TEST_F(AdapterTest, ANarrowIntegerAtEachEndOfItsRangeReachesTheBoard) {
    for (const Narrow& narrow : narrowArguments()) {
        for (int32_t value : {narrow.low, narrow.high}) {
            SCOPED_TRACE(narrow.argument.method + " " + narrow.argument.name + " " +
                         std::to_string(value));
            vesk::sim::clearJournal();
            ScopedAStatus status = narrow.argument.call(*service, value);
            ASSERT_TRUE(status.isOk()) << status.getDescription();
            std::vector<json> calls = callsOf(narrow.board);
            ASSERT_EQ(1u, calls.size());
            EXPECT_EQ(json(value), calls[0]["args"][narrow.position]);
            resetSimulatedBoard();
            vesk::sim::startJournal();
        }
    }
}

TEST_F(AdapterTest, ANarrowIntegerOnePastEitherEndIsRefused) {
    for (const Narrow& narrow : narrowArguments()) {
        for (int32_t value : {narrow.low - 1, narrow.high + 1}) {
            SCOPED_TRACE(narrow.argument.method + " " + narrow.argument.name + " " +
                         std::to_string(value));
            expectRefused(narrow.argument.call(*service, value),
                          narrow.argument.method + ": " + narrow.argument.name + " is " +
                                  std::to_string(value) + ", outside its range " +
                                  std::to_string(narrow.low) + " to " + std::to_string(narrow.high));
        }
    }
}

TEST_F(AdapterTest, TheFirstArgumentRefusedIsTheOneNamed) {
    int32_t ret = 0;
    expectRefused(service->openSerialPort485(9600, 300, -1, 200, &ret),
                  "openSerialPort485: databits is 300, outside its range 0 to 255");
    expectRefused(service->openSerialPort485(9600, 8, -1, 200, &ret),
                  "openSerialPort485: stopbits is -1, outside its range 0 to 255");
    std::vector<uint8_t> edid;
    expectRefused(service->getEdidFromDefined(0, 70000, -5, 60.0f, &edid),
                  "getEdidFromDefined: width is 70000, outside its range 0 to 65535");
    std::vector<uint8_t> block;
    expectRefused(service->readBlockData("/dev/block/env", -1, -1, &block),
                  "readBlockData: length is -1, outside its range 0 to 1040384");
}

// A uint32_t of HIDL is an int of the same bits: every value is taken, and the board gets the
// unsigned value those bits make.
TEST_F(AdapterTest, AnUnsignedIntegerKeepsItsBits) {
    int32_t ret = 0;
    ASSERT_TRUE(service->setOtgMode(-1, &ret).isOk());
    ASSERT_TRUE(service->setUsbState(INT32_MIN, INT32_MAX, &ret).isOk());
    ASSERT_TRUE(service->startWatchDog("/dev/watchdog", -2, &ret).isOk());
    ASSERT_TRUE(service->writeBlockDataScreen({9}, -16, &ret).isOk());
    ReadResult read;
    ASSERT_TRUE(service->readBlockingSerialPortTTL(4, -1, &read).isOk());
    EXPECT_EQ(json::array({4294967295u}), callsOf("bi_otg_set_mode").at(0)["args"]);
    EXPECT_EQ(json::array({2147483648u, 2147483647}), callsOf("bi_set_usb_state").at(0)["args"]);
    EXPECT_EQ(json::array({"/dev/watchdog", 4294967294u}),
              callsOf("bi_watchdog_open").at(0)["args"]);
    EXPECT_EQ(json::array({4294967280u, json::array({9}), 1}),
              callsOf("bi_block_write_screen").at(0)["args"]);
    EXPECT_EQ(json::array({nullptr, 4, 4294967295u}),
              callsOf("bi_serial_ttl_blocking_read").at(0)["args"]);
}

// The RTC's words are ints of the same bits: the board reads them as the uint32_t they were.
TEST_F(AdapterTest, TimeWordsKeepTheirBits) {
    int32_t ret = 0;
    ASSERT_TRUE(service->setRtcBootTime({-1, INT32_MIN, 2024, 12, 31, 23}, &ret).isOk());
    std::vector<json> calls = callsOf("bi_rtc_set_boot_time");
    ASSERT_EQ(1u, calls.size());
    json words = calls[0]["args"][0];
    ASSERT_LE(6u, words.size());
    EXPECT_EQ(json::array({4294967295u, 2147483648u, 2024, 12, 31, 23}),
              json(std::vector<json>(words.begin(), words.begin() + 6)));
}

// The log record's fields run on to the record's end (216 bytes: level 8, base 128, mode 64,
// total_size 8, once_size 8): a text fits as far as the room left from its field's start.
struct LogField {
    const char* name;
    std::string VeskLogInfo::*text;
    size_t room;
};
const LogField kLogFields[] = {
        {"level", &VeskLogInfo::level, 216},       {"base", &VeskLogInfo::base, 208},
        {"mode", &VeskLogInfo::mode, 80},          {"total_size", &VeskLogInfo::total_size, 16},
        {"once_size", &VeskLogInfo::once_size, 8},
};

TEST_F(AdapterTest, ALogFieldAsLongAsItsRoomReachesTheBoard) {
    for (const LogField& field : kLogFields) {
        SCOPED_TRACE(field.name);
        vesk::sim::clearJournal();
        VeskLogInfo info;
        info.*field.text = std::string(field.room, 'x');
        int32_t ret = 0;
        ASSERT_TRUE(service->setVeskLogConfigure(info, &ret).isOk());
        EXPECT_EQ(1u, callsOf("bi_vesk_logd_set_configure").size());
    }
}

TEST_F(AdapterTest, ALogFieldOneBytePastItsRoomIsRefused) {
    for (const LogField& field : kLogFields) {
        SCOPED_TRACE(field.name);
        VeskLogInfo info;
        info.*field.text = std::string(field.room + 1, 'x');
        int32_t ret = 0;
        expectRefused(service->setVeskLogConfigure(info, &ret),
                      std::string("setVeskLogConfigure: info.") + field.name + ": " +
                              std::to_string(field.room + 1) + " bytes, the record has room for " +
                              std::to_string(field.room));
    }
}

}  // namespace
}  // namespace vesk::test
