// Every value the board keeps is set by one process and read by another on the same root, and
// a value outside the board's range is refused there and changes nothing.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "SimTestFiles.h"
#include "TestRoot.h"
#include "vesksdk.h"
#include "vesksdk_records.h"

namespace vesk::test {
namespace {

class PersistenceTest : public ::testing::Test {
  protected:
    TempRoot root;
};

struct IntState {
    const char* name;
    int (*set)(int);
    int (*get)();
    int accepted;  // differs from the factory value
    std::vector<int> refused;
};

// LEDs take 0 off, 1 on, 2 blinking; switches 0 and 1; the screen mode 0 to 3.
const IntState kIntStates[] = {
        {"sysled", bi_sysled_set_state, bi_sysled_get_state, 2, {3, -1}},
        {"netled", bi_netled_set_state, bi_netled_get_state, 2, {3, -1}},
        {"4gled", bi_4gled_set_state, bi_4gled_get_state, 1, {3, -1}},
        {"position_led", bi_position_led_set_state, bi_position_led_get_state, 2, {3}},
        {"switchled", bi_switchled_set_state, bi_switchled_get_state, 2, {3}},
        {"runningled", bi_runningled_set_state, bi_runningled_get_state, 2, {3}},
        {"cloudled", bi_cloudled_set_state, bi_cloudled_get_state, 2, {3}},
        {"relay", bi_relay_set_state, bi_relay_get_state, 1, {2, -1}},
        {"pc_ctrl", bi_pc_ctrl_enable, bi_pc_ctrl_get_status, 1, {2, -1}},
        {"usb_sub_card_led", bi_usb_sub_card_led_enable, bi_usb_sub_card_led_get_status, 1, {2}},
        {"factory_tools", bi_factory_tools_enable, bi_factory_tools_get_status, 1, {2}},
        {"ops_usb_port", bi_ops_set_usb_port, bi_ops_get_usb_port, 1, {2, -1}},
        {"ops_switch", bi_ops_switch_control, bi_ops_get_switch_state, 1, {5}},
        {"ops_on", bi_ops_on_set_state, bi_ops_on_get_state, 1, {2}},
        {"ops_control", bi_ops_control_set_state, bi_ops_control_get_state, 1, {2}},
        {"screen_mode",
         bi_resolution_screen_mode_set_state,
         bi_resolution_screen_mode_get_state,
         3,
         {4, -1}},
        {"4g_module", bi_4g_module_set_state, bi_4g_module_get_state, 1, {2}},
        {"4g_power", bi_4g_power_set_state, bi_4g_power_get_state, 1, {2}},
        {"headphone_power", bi_headphone_power_set_state, bi_headphone_power_get_state, 1, {2}},
        {"power_amplifier", bi_power_amplifier_set_state, bi_power_amplifier_get_state, 1, {2}},
        {"pq", bi_set_pq_state, bi_get_pq_state, 1, {2, -1}},
};

TEST_F(PersistenceTest, IntStatesSetInOneProcessReadInAnother) {
    for (const IntState& state : kIntStates) {
        EXPECT_EQ(0, inOtherProcess([&] { return state.set(state.accepted); })) << state.name;
        EXPECT_EQ(state.accepted, state.get()) << state.name;
        for (int value : state.refused) {
            EXPECT_EQ(-1, inOtherProcess([&] { return state.set(value); })) << state.name;
            EXPECT_EQ(state.accepted, state.get()) << state.name << " after " << value;
        }
        // And back: set here, read there.
        EXPECT_EQ(0, state.set(0)) << state.name;
        EXPECT_EQ(0, inOtherProcess(state.get)) << state.name;
    }
}

struct UnsignedState {
    const char* name;
    int (*set)(unsigned int);
    int (*get)();
    unsigned int accepted;
};

TEST_F(PersistenceTest, UnsignedStatesSetInOneProcessReadInAnother) {
    // The OTG mode starts as device (1); the others start off.
    const UnsignedState states[] = {
            {"otg", bi_otg_set_mode, bi_otg_get_mode, 0},
            {"usb_switch", bi_usb_set_switch_enable, bi_usb_get_switch_enable, 1},
            {"ap_insulation", bi_network_set_ap_insulation, bi_network_get_ap_insulation, 1},
    };
    for (const UnsignedState& state : states) {
        EXPECT_EQ(0, inOtherProcess([&] { return state.set(state.accepted); })) << state.name;
        EXPECT_EQ(static_cast<int>(state.accepted), state.get()) << state.name;
        for (unsigned int value : {2u, 4294967295u}) {
            EXPECT_EQ(-1, inOtherProcess([&] { return state.set(value); })) << state.name;
            EXPECT_EQ(static_cast<int>(state.accepted), state.get()) << state.name;
        }
    }
}

TEST_F(PersistenceTest, IndexedStatesKeepEachIndexAcrossProcesses) {
    // Four peripheral relays, four USB ports, four audio channels, four video sources.
    EXPECT_EQ(0, inOtherProcess([] { return bi_peripheral_relay_enable(3, 1); }));
    EXPECT_EQ(1, bi_peripheral_relay_get_status(3));
    EXPECT_EQ(0, bi_peripheral_relay_get_status(2));
    EXPECT_EQ(-1, inOtherProcess([] { return bi_peripheral_relay_enable(4, 1); }));
    EXPECT_EQ(-1, bi_peripheral_relay_get_status(4));
    EXPECT_EQ(-1, bi_peripheral_relay_enable(0, 2));

    EXPECT_EQ(0, inOtherProcess([] { return bi_set_usb_state(0, 1); }));
    EXPECT_EQ(1, bi_get_usb_state(0));
    EXPECT_EQ(-1, bi_set_usb_state(4, 0));
    EXPECT_EQ(-1, bi_set_usb_state(1, 2));
    EXPECT_EQ(-1, inOtherProcess([] { return bi_get_usb_state(4294967295u); }));

    EXPECT_EQ(0, inOtherProcess([] { return bi_i2c_set_audio_enable(2, 1); }));
    EXPECT_EQ(1, bi_i2c_get_audio_enable(2));
    EXPECT_EQ(-1, bi_i2c_set_audio_enable(4, 1));
    EXPECT_EQ(-1, bi_i2c_set_audio_enable(1, 2));

    EXPECT_EQ(0, inOtherProcess([] { return bi_i2c_set_video_inputsrc_volume(1, 100); }));
    EXPECT_EQ(100, bi_i2c_get_video_inputsrc_volume(1));
    EXPECT_EQ(-1, inOtherProcess([] { return bi_i2c_set_video_inputsrc_volume(1, 101); }));
    EXPECT_EQ(100, bi_i2c_get_video_inputsrc_volume(1));
    EXPECT_EQ(-1, bi_i2c_set_video_inputsrc_volume(4, 10));
}

TEST_F(PersistenceTest, ColorLedAcrossProcesses) {
    EXPECT_EQ(0, inOtherProcess([] { return bi_triled_set_state(10, 20, 30); }));
    EXPECT_EQ(10 * 65536 + 20 * 256 + 30, bi_triled_get_state());
    EXPECT_EQ(-1, inOtherProcess([] { return bi_triled_set_state(256, 0, 0); }));
    EXPECT_EQ(-1, bi_triled_set_state(0, -1, 0));
    EXPECT_EQ(10 * 65536 + 20 * 256 + 30, bi_triled_get_state());
}

// The RTC enables and the power mode have no getter: the state file shows them.
TEST_F(PersistenceTest, EnablesAndPowerModeAreKept) {
    EXPECT_EQ(0, inOtherProcess([] { return bi_rtc_set_boot_enable(1); }));
    EXPECT_EQ(0, inOtherProcess([] { return bi_rtc_set_wake_enable(1); }));
    EXPECT_EQ(-1, bi_rtc_set_wake_enable(2));
    EXPECT_EQ(0, inOtherProcess([] { return bi_power_low_power_mode(); }));
    nlohmann::json values = stateFile()["values"];
    EXPECT_EQ(1, values["rtc_boot_enable"]);
    EXPECT_EQ(1, values["rtc_wake_enable"]);
    EXPECT_EQ(1, values["power_mode"]);
    EXPECT_EQ(0, bi_power_normal_mode());
    EXPECT_EQ(0, stateFile()["values"]["power_mode"]);
}

std::vector<unsigned int> timeOf(int (*get)(unsigned int*)) {
    std::vector<unsigned int> words(VESK_RTC_TIME_WORDS, 0xeeeeeeee);
    EXPECT_EQ(0, get(words.data()));
    return words;
}

TEST_F(PersistenceTest, RtcTimesAcrossProcesses) {
    static const unsigned int boot[] = {2028, 2, 29, 7, 0, 5};
    static const unsigned int wake[] = {1970, 1, 1, 0, 0, 0};
    EXPECT_EQ(0, inOtherProcess([] { return bi_rtc_set_boot_time(boot); }));
    EXPECT_EQ(0, inOtherProcess([] { return bi_rtc_set_wake_time(wake); }));
    std::vector<unsigned int> expected(VESK_RTC_TIME_WORDS, 0);
    std::copy_n(boot, 6, expected.begin());
    EXPECT_EQ(expected, timeOf(bi_rtc_get_boot_time));
    std::copy_n(wake, 6, expected.begin());
    EXPECT_EQ(expected, timeOf(bi_rtc_get_wake_time));
}

TEST_F(PersistenceTest, RtcRefusesTimesNoCalendarHas) {
    static const unsigned int kept[] = {2030, 6, 15, 12, 30, 0};
    ASSERT_EQ(0, bi_rtc_set_boot_time(kept));
    const std::vector<std::vector<unsigned int>> refused = {
            {2023, 2, 29, 0, 0, 0},  // not a leap year
            {2100, 1, 1, 0, 0, 0},   // past the RTC's century
            {1969, 12, 31, 23, 59, 59}, {2024, 13, 1, 0, 0, 0}, {2024, 4, 31, 0, 0, 0},
            {2024, 1, 0, 0, 0, 0},      {2024, 1, 1, 24, 0, 0}, {2024, 1, 1, 0, 60, 0},
            {2024, 1, 1, 0, 0, 60},
    };
    for (const auto& time : refused) {
        EXPECT_EQ(-1, inOtherProcess([&] { return bi_rtc_set_boot_time(time.data()); }))
                << time[0] << "-" << time[1] << "-" << time[2];
        EXPECT_EQ(-1, bi_rtc_set_wake_time(time.data()));
    }
    std::vector<unsigned int> expected(VESK_RTC_TIME_WORDS, 0);
    std::copy_n(kept, 6, expected.begin());
    EXPECT_EQ(expected, timeOf(bi_rtc_get_boot_time));
}

// Copies each text to the start of its field, without its end when it fills the field.
template <std::size_t N>
void put(char (&field)[N], const std::string& text) {
    memcpy(field, text.data(), std::min(N, text.size()));
}

vesk_log_record logRecord(const char* level, const char* base, const char* mode, const char* total,
                          const char* once) {
    vesk_log_record record{};
    put(record.level, level);
    put(record.base, base);
    put(record.mode, mode);
    put(record.total_size, total);
    put(record.once_size, once);
    return record;
}

TEST_F(PersistenceTest, LogConfigurationAcrossProcesses) {
    vesk_log_record set = logRecord("D", "/sdcard/log", "net", "1G", "8M");
    EXPECT_EQ(0, inOtherProcess([&] { return bi_vesk_logd_set_configure(&set); }));
    vesk_log_record back{};
    EXPECT_EQ(1, bi_vesk_logd_get_configure(&back));
    EXPECT_EQ(0, memcmp(&set, &back, sizeof(back)));
    // A level of eight characters has no room for its end.
    vesk_log_record unterminated = logRecord("VERBOSE!", "/b", "m", "1G", "8M");
    EXPECT_EQ(-1, inOtherProcess([&] { return bi_vesk_logd_set_configure(&unterminated); }));
    EXPECT_EQ(1, bi_vesk_logd_get_configure(&back));
    EXPECT_EQ(0, memcmp(&set, &back, sizeof(back)));
}

TEST_F(PersistenceTest, OutputModeAcrossProcesses) {
    vesk_resolution_record result{};
    EXPECT_EQ(0, inOtherProcess([&] {
                  return bi_resolution_calculate_parameters(1280, 720, 50, &result);
              }));
    vesk_resolution_record current{};
    EXPECT_EQ(0, bi_resolution_get_parameters(&current));
    EXPECT_EQ(1280u, current.width);
    EXPECT_EQ(720u, current.height);
    EXPECT_EQ(50u, current.fps);
}

TEST_F(PersistenceTest, DhcpSwitchAcrossProcesses) {
    EXPECT_EQ(0, inOtherProcess([] { return bi_info_set_product_info("false"); }));
    char record[VESK_PRODUCT_RECORD_SIZE] = {};
    EXPECT_EQ(0, bi_info_get_product_info(record));
    EXPECT_STREQ("false", record + 2016);
    EXPECT_EQ(-1, inOtherProcess([] { return bi_info_set_product_info("yes"); }));
    EXPECT_EQ(0, bi_info_get_product_info(record));
    EXPECT_STREQ("false", record + 2016);
}

TEST_F(PersistenceTest, ValuesOutliveTheProcessesThatSetThem) {
    EXPECT_EQ(0, inOtherProcess([] { return bi_sysled_set_state(1); }));
    EXPECT_EQ(1, inOtherProcess(bi_sysled_get_state));
    EXPECT_EQ(1, stateFile()["values"]["sysled"]);
}

// Two processes changing different states at once: the lock around each read-modify-write
// keeps either from losing the other's change.
TEST_F(PersistenceTest, ConcurrentProcessesLoseNoChange) {
    constexpr int kRounds = 40;
    OtherProcess child([] {
        for (int i = 0; i < kRounds; ++i) {
            if (bi_peripheral_relay_enable(0, i % 2) != 0) return -1;
            if (bi_set_usb_state(i % 4, 1) != 0) return -1;
        }
        return 0;
    });
    for (int i = 0; i < kRounds; ++i) ASSERT_EQ(0, bi_peripheral_relay_enable(1, (i + 1) % 2));
    EXPECT_EQ(0, child.result());
    // kRounds is even: the last child round set relay 0 to 1; the parent's last set relay 1 to 0.
    EXPECT_EQ(1, bi_peripheral_relay_get_status(0));
    EXPECT_EQ(0, bi_peripheral_relay_get_status(1));
    for (unsigned int port = 0; port < 4; ++port) EXPECT_EQ(1, bi_get_usb_state(port)) << port;
}

}  // namespace
}  // namespace vesk::test
