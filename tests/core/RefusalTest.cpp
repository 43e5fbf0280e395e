// The checks a front end asks before a call that would end the process: nothing for an input
// the call takes, the reason for one it cannot, at each limit and one past it; and the call
// itself agrees with its check. The core is called directly here: everything else it does is
// tested through the HIDL facade (tests/service).
#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vesksdk_sim_control.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "BoardReset.h"
#include "DeviceManagerCore.h"
#include "TestRoot.h"

namespace vesk::test {
namespace {

using ::vesk::hardware::veskdevicemanager::core::DeviceManagerCore;
using ::vesk::hardware::veskdevicemanager::core::VeskLogInfo;

// The log record as the board library declares it: level[8], base[128], mode[64],
// total_size[8], once_size[8], 216 bytes; a field's copy may run on to the record's end.
struct Field {
    const char* name;
    std::string VeskLogInfo::*text;
    size_t room;  // 216 less the field's offset (0, 8, 136, 200, 208)
};
const Field kFields[] = {
        {"level", &VeskLogInfo::level, 216},       {"base", &VeskLogInfo::base, 208},
        {"mode", &VeskLogInfo::mode, 80},          {"total_size", &VeskLogInfo::total_size, 16},
        {"once_size", &VeskLogInfo::once_size, 8},
};

VeskLogInfo withField(const Field& field, size_t length) {
    VeskLogInfo info;
    info.*field.text = std::string(length, 'x');
    return info;
}

class RefusalTest : public RootTest {
  protected:
    RefusalTest() {
        resetSimulatedBoard();
        vesk::sim::startJournal();
        vesk::sim::clearJournal();
        vesk::host::clearCapturedLog();
        setProperty("persist.vesk.device.log.level", "D");  // every line the core might write
    }
    ~RefusalTest() override { resetSimulatedBoard(); }

    // A check is asked with no trace line and no board call.
    void expectNothingHappened() {
        EXPECT_THAT(vesk::sim::journal(), ::testing::IsEmpty());
        EXPECT_THAT(capturedLog(), ::testing::IsEmpty());
    }

    DeviceManagerCore core;
};

TEST_F(RefusalTest, LogInfoTakesEachFieldAsLongAsItsRoom) {
    for (const Field& field : kFields) {
        SCOPED_TRACE(field.name);
        EXPECT_EQ(std::nullopt, core.logInfoRefusal(withField(field, field.room)));
        EXPECT_EQ(std::nullopt, core.logInfoRefusal(withField(field, 0)));
    }
    expectNothingHappened();
}

TEST_F(RefusalTest, LogInfoRefusesAFieldOneByteLongerThanItsRoom) {
    EXPECT_EQ("level: 217 bytes, the record has room for 216",
              core.logInfoRefusal(withField(kFields[0], 217)));
    EXPECT_EQ("base: 209 bytes, the record has room for 208",
              core.logInfoRefusal(withField(kFields[1], 209)));
    EXPECT_EQ("mode: 81 bytes, the record has room for 80",
              core.logInfoRefusal(withField(kFields[2], 81)));
    EXPECT_EQ("total_size: 17 bytes, the record has room for 16",
              core.logInfoRefusal(withField(kFields[3], 17)));
    EXPECT_EQ("once_size: 9 bytes, the record has room for 8",
              core.logInfoRefusal(withField(kFields[4], 9)));
    expectNothingHappened();
}

TEST_F(RefusalTest, LogInfoNamesTheFirstFieldTheCallWouldStopAt) {
    VeskLogInfo info;
    info.mode = std::string(81, 'm');
    info.once_size = std::string(100, 'o');
    EXPECT_EQ("mode: 81 bytes, the record has room for 80", core.logInfoRefusal(info));
}

TEST_F(RefusalTest, LogInfoTakenIsAConfigurationTheBoardReceives) {
    for (const Field& field : kFields) {
        SCOPED_TRACE(field.name);
        vesk::sim::clearJournal();
        ASSERT_EQ(std::nullopt, core.logInfoRefusal(withField(field, field.room)));
        core.setVeskLogConfigure(withField(field, field.room));
        EXPECT_EQ(1u, vesk::sim::journalOf("bi_vesk_logd_set_configure").size());
    }
}

using RefusalDeathTest = RefusalTest;

TEST_F(RefusalDeathTest, LogInfoRefusedEndsTheProcessWhenCalledAnyway) {
    for (const Field& field : kFields) {
        SCOPED_TRACE(field.name);
        ASSERT_NE(std::nullopt, core.logInfoRefusal(withField(field, field.room + 1)));
        EXPECT_DEATH(core.setVeskLogConfigure(withField(field, field.room + 1)),
                     "buffer overflow detected");
    }
}

TEST_F(RefusalTest, SpiReadTakesAnySizeFromZero) {
    EXPECT_EQ(std::nullopt, core.spiReadSizeRefusal(0));
    EXPECT_EQ(std::nullopt, core.spiReadSizeRefusal(1));
    EXPECT_EQ(std::nullopt, core.spiReadSizeRefusal(std::numeric_limits<int32_t>::max()));
    expectNothingHappened();
}

TEST_F(RefusalTest, SpiReadRefusesANegativeSize) {
    EXPECT_EQ("size: -1, a size cannot be negative", core.spiReadSizeRefusal(-1));
    EXPECT_EQ("size: -2147483648, a size cannot be negative",
              core.spiReadSizeRefusal(std::numeric_limits<int32_t>::min()));
    expectNothingHappened();
}

TEST_F(RefusalTest, SpiReadTakenAtTheLimitCallsTheBoard) {
    ASSERT_EQ(std::nullopt, core.spiReadSizeRefusal(0));
    EXPECT_TRUE(core.readSpiFpga(0).data.empty());
    EXPECT_EQ(1u, vesk::sim::journalOf("bi_fpga_spi_read").size());
}

TEST_F(RefusalDeathTest, SpiReadRefusedEndsTheProcessWhenCalledAnyway) {
    ASSERT_NE(std::nullopt, core.spiReadSizeRefusal(-1));
    EXPECT_DEATH(
            {
                vesk::host::logToStderr();  // the fatal line goes where the death test sees it
                core.readSpiFpga(-1);
            },
            "readSpiFpga: the size -1 is negative");
}

}  // namespace
}  // namespace vesk::test
