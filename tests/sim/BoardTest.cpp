// The simulated board's own behaviour: what is set reads back, per area; many threads at once.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

#include "SimTestFiles.h"
#include "TestRoot.h"
#include "vesksdk.h"
#include "vesksdk_records.h"
#include "vesksdk_sim_control.h"

namespace vesk::test {
namespace {

// Every test on a fresh device root: the board keeps its state there.
class BoardTest : public ::testing::Test {
  protected:
    TempRoot root;
};

struct StatePair {
    const char* name;
    int (*set)(int);
    int (*get)();
};

const StatePair kIntStates[] = {
        {"sysled", bi_sysled_set_state, bi_sysled_get_state},
        {"netled", bi_netled_set_state, bi_netled_get_state},
        {"4gled", bi_4gled_set_state, bi_4gled_get_state},
        {"position_led", bi_position_led_set_state, bi_position_led_get_state},
        {"switchled", bi_switchled_set_state, bi_switchled_get_state},
        {"runningled", bi_runningled_set_state, bi_runningled_get_state},
        {"cloudled", bi_cloudled_set_state, bi_cloudled_get_state},
        {"relay", bi_relay_set_state, bi_relay_get_state},
        {"pc_ctrl", bi_pc_ctrl_enable, bi_pc_ctrl_get_status},
        {"usb_sub_card_led", bi_usb_sub_card_led_enable, bi_usb_sub_card_led_get_status},
        {"factory_tools", bi_factory_tools_enable, bi_factory_tools_get_status},
        {"ops_usb_port", bi_ops_set_usb_port, bi_ops_get_usb_port},
        {"ops_switch", bi_ops_switch_control, bi_ops_get_switch_state},
        {"ops_on", bi_ops_on_set_state, bi_ops_on_get_state},
        {"ops_control", bi_ops_control_set_state, bi_ops_control_get_state},
        {"screen_mode", bi_resolution_screen_mode_set_state, bi_resolution_screen_mode_get_state},
        {"4g_module", bi_4g_module_set_state, bi_4g_module_get_state},
        {"4g_power", bi_4g_power_set_state, bi_4g_power_get_state},
        {"headphone_power", bi_headphone_power_set_state, bi_headphone_power_get_state},
        {"power_amplifier", bi_power_amplifier_set_state, bi_power_amplifier_get_state},
        {"pq", bi_set_pq_state, bi_get_pq_state},
};

struct UnsignedStatePair {
    const char* name;
    int (*set)(unsigned int);
    int (*get)();
    int initial;
};

const UnsignedStatePair kUnsignedStates[] = {
        {"otg", bi_otg_set_mode, bi_otg_get_mode, 1},
        {"usb_switch", bi_usb_set_switch_enable, bi_usb_get_switch_enable, 0},
        {"ap_insulation", bi_network_set_ap_insulation, bi_network_get_ap_insulation, 0},
};

TEST_F(BoardTest, IntStatesStartAtZeroAndReadBack) {
    for (const StatePair& state : kIntStates) {
        EXPECT_EQ(0, state.get()) << state.name;
        EXPECT_EQ(0, state.set(1)) << state.name;
        EXPECT_EQ(1, state.get()) << state.name;
        EXPECT_EQ(-1, state.set(-2)) << state.name;
        EXPECT_EQ(1, state.get()) << state.name;
    }
}

TEST_F(BoardTest, StatesAreIndependent) {
    bi_sysled_set_state(1);
    bi_netled_set_state(2);
    EXPECT_EQ(1, bi_sysled_get_state());
    EXPECT_EQ(2, bi_netled_get_state());
    EXPECT_EQ(0, bi_cloudled_get_state());
}

TEST_F(BoardTest, UnsignedStatesReadBack) {
    for (const UnsignedStatePair& state : kUnsignedStates) {
        EXPECT_EQ(state.initial, state.get()) << state.name;
        EXPECT_EQ(0, state.set(1 - state.initial)) << state.name;
        EXPECT_EQ(1 - state.initial, state.get()) << state.name;
        EXPECT_EQ(-1, state.set(2)) << state.name;
        EXPECT_EQ(1 - state.initial, state.get()) << state.name;
    }
}

TEST_F(BoardTest, ColorLedReadsBackAsOneWord) {
    EXPECT_EQ(0, bi_triled_get_state());
    EXPECT_EQ(0, bi_triled_set_state(1, 0, 1));
    EXPECT_EQ(0x010001, bi_triled_get_state());
    bi_triled_set_state(255, 128, 2);
    EXPECT_EQ(0xff8002, bi_triled_get_state());
}

TEST_F(BoardTest, IndexedStatesKeepOneValuePerIndex) {
    EXPECT_EQ(0, bi_peripheral_relay_enable(2, 1));
    EXPECT_EQ(1, bi_peripheral_relay_get_status(2));
    EXPECT_EQ(0, bi_peripheral_relay_get_status(3));
    EXPECT_EQ(0, bi_set_usb_state(1, 1));
    EXPECT_EQ(1, bi_get_usb_state(1));
    EXPECT_EQ(0, bi_get_usb_state(0));
    EXPECT_EQ(0, bi_i2c_set_audio_enable(0, 1));
    EXPECT_EQ(0, bi_i2c_set_audio_enable(1, 0));
    EXPECT_EQ(1, bi_i2c_get_audio_enable(0));
    EXPECT_EQ(0, bi_i2c_get_audio_enable(1));
    EXPECT_EQ(0, bi_i2c_set_video_inputsrc_volume(3, 80));
    EXPECT_EQ(80, bi_i2c_get_video_inputsrc_volume(3));
    EXPECT_EQ(0, bi_i2c_get_video_inputsrc_volume(2));
}

TEST_F(BoardTest, FixedReadingsAndActions) {
    EXPECT_EQ(0, bi_init_product_config());
    EXPECT_EQ(3, bi_adc_get_board_id());
    EXPECT_EQ(1, bi_info_get_protocol_type());
    EXPECT_EQ(6, bi_network_get_ap_channel());
    EXPECT_EQ(0, bi_ops_detect_get_state());
    EXPECT_EQ(0, bi_lora_get_state());
    EXPECT_EQ(0, bi_infrared_write());
    EXPECT_EQ(0, bi_restore_factory_setting(1));
    EXPECT_EQ(0, bi_power_low_power_mode());
    EXPECT_EQ(0, bi_power_normal_mode());
    EXPECT_EQ(0, bi_fpga_load_program());
    EXPECT_EQ(0, bi_fpga_load_parameter());
    EXPECT_EQ(0, bi_fpga_firmware_update("/data/fpga.bin"));
    EXPECT_EQ(-1, bi_fpga_firmware_update(""));
    EXPECT_EQ(1, bi_display_get_hdmi_out_state(0));
    EXPECT_EQ(0, bi_display_get_hdmi_in_state(0));
}

TEST_F(BoardTest, SensorsAreNotWholeNumbers) {
    EXPECT_EQ(12.15f, bi_adc_get_board_voltage());
    EXPECT_EQ(41.5f, bi_adc_get_board_temperature());
}

TEST_F(BoardTest, ProductRecordNamesModel8470AndUsesDhcp) {
    char record[VESK_PRODUCT_RECORD_SIZE];
    memset(record, 0x55, sizeof(record));
    EXPECT_EQ(0, bi_info_get_product_info(record));
    EXPECT_STREQ("8470", record + 64);
    EXPECT_EQ(8470, atoi(record + 64));
    EXPECT_STREQ("true", record + 2016);
    EXPECT_STRNE("", record);
    EXPECT_EQ('\0', record[2047]);
    EXPECT_EQ(-1, bi_info_get_product_info(nullptr));
}

TEST_F(BoardTest, SetProductInfoStoresTheDhcpWord) {
    EXPECT_EQ(0, bi_info_set_product_info("false"));
    char record[VESK_PRODUCT_RECORD_SIZE] = {};
    bi_info_get_product_info(record);
    EXPECT_STREQ("false", record + 2016);
    EXPECT_STREQ("8470", record + 64);
    // Only the two words are taken; anything else leaves the switch as it was.
    EXPECT_EQ(-1, bi_info_set_product_info(""));
    EXPECT_EQ(-1, bi_info_set_product_info("TRUE"));
    bi_info_get_product_info(record);
    EXPECT_STREQ("false", record + 2016);
    EXPECT_EQ(-1, bi_info_set_product_info(nullptr));
}

// The library keeps what it made of the product file's text; any other text is read afresh,
// whoever wrote it and however (here in place, as a person editing it would).
TEST_F(BoardTest, ProductFileRewrittenBehindTheLibraryIsReadAgain) {
    char record[VESK_PRODUCT_RECORD_SIZE] = {};
    const std::string file = root / "/data/vesksdk/product.json";
    writeFile(file, "{\"model_id\": \"8470\"}\n");
    ASSERT_EQ(0, bi_info_get_product_info(record));
    ASSERT_STREQ("8470", record + 64);
    std::string text = readFile(file);
    size_t model = text.find("\"8470\"");
    ASSERT_NE(std::string::npos, model);
    text.replace(model, 6, "\"8471\"");
    writeFile(file, text);
    ASSERT_EQ(0, bi_info_get_product_info(record));
    EXPECT_STREQ("8471", record + 64);
    EXPECT_STREQ("true", record + 2016);
}

// A text without every key reads the keys it lacks at their factory values each time it is
// read, even one read before, and reading it writes nothing back.
TEST_F(BoardTest, ProductFileMissingAKeyReadsItsFactoryValueEachTime) {
    char record[VESK_PRODUCT_RECORD_SIZE] = {};
    ASSERT_EQ(0, bi_info_get_product_info(record));
    const std::string file = root / "/data/vesksdk/product.json";
    const std::string partial = "{\"model_id\": \"8471\"}\n";
    for (int round = 0; round < 2; ++round) {
        writeFile(file, partial);
        ASSERT_EQ(0, bi_info_get_product_info(record));
        EXPECT_STREQ("8471", record + 64);
        EXPECT_STREQ("true", record + 2016);
        EXPECT_EQ(partial, readFile(file));
    }
}

// Without a product file the record is the factory one; a file written later, and its removal,
// are seen at the next read, in either order.
TEST_F(BoardTest, ProductFileAppearingAndGoingIsReadEachTime) {
    char record[VESK_PRODUCT_RECORD_SIZE] = {};
    const std::string file = root / "/data/vesksdk/product.json";
    ASSERT_FALSE(std::filesystem::exists(file));
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(0, bi_info_get_product_info(record));
        EXPECT_STREQ("8470", record + 64);
        EXPECT_STREQ("VESK", record);
        writeFile(file, "{\"model_id\": \"8471\", \"vendor\": \"ACME\"}\n");
        ASSERT_EQ(0, bi_info_get_product_info(record));
        EXPECT_STREQ("8471", record + 64);
        EXPECT_STREQ("ACME", record);
        EXPECT_STREQ("true", record + 2016);
        ASSERT_TRUE(std::filesystem::remove(file));
    }
    EXPECT_EQ(0, bi_info_get_product_info(record));
    EXPECT_STREQ("8470", record + 64);
    EXPECT_STREQ("VESK", record);
    EXPECT_FALSE(std::filesystem::exists(file));  // a reader writes nothing
}

TEST_F(BoardTest, WatchdogConfigurationAndDevice) {
    vesk_watchdog_record record{};
    EXPECT_EQ(0, bi_watchdog_parse(&record));
    EXPECT_STREQ("/dev/watchdog", record.wdtDevice);
    EXPECT_EQ(60u, record.wdt_timeout);
    EXPECT_EQ(10u, record.wdt_interval);
    EXPECT_EQ(-1, bi_watchdog_feed("/dev/watchdog"));
    EXPECT_EQ(0, bi_watchdog_open("/dev/watchdog", 60));
    EXPECT_EQ(0, bi_watchdog_feed("/dev/watchdog"));
    EXPECT_EQ(-1, bi_watchdog_feed("/dev/watchdog1"));
    EXPECT_EQ(0, bi_watchdog_close("/dev/watchdog"));
    EXPECT_EQ(-1, bi_watchdog_close("/dev/watchdog"));
    EXPECT_EQ(-1, bi_watchdog_open(nullptr, 60));
}

struct AreaFunctions {
    const char* name;
    int (*write)(unsigned int, const unsigned char*, unsigned int);
    int (*read)(unsigned int, unsigned char*, unsigned int);
};

const AreaFunctions kAreas[] = {
        {"defined", bi_block_write_defined, bi_block_read_defined},
        {"screen", bi_block_write_screen, bi_block_read_screen},
        {"fpga_program", bi_block_write_fpga_program, bi_block_read_fpga_program},
};

TEST_F(BoardTest, AreaWritesReadBack) {
    for (const AreaFunctions& area : kAreas) {
        unsigned char buffer[6];
        memset(buffer, 0xee, sizeof(buffer));
        EXPECT_EQ(6, area.read(98, buffer, 6)) << area.name;
        EXPECT_EQ(std::vector<unsigned char>(6, 0), std::vector<unsigned char>(buffer, buffer + 6));
        const unsigned char data[] = {'x', 'y', 'z'};
        EXPECT_EQ(3, area.write(100, data, 3)) << area.name;
        EXPECT_EQ(6, area.read(98, buffer, 6)) << area.name;
        const unsigned char expected[] = {0, 0, 'x', 'y', 'z', 0};
        EXPECT_EQ(0, memcmp(expected, buffer, 6)) << area.name;
    }
}

TEST_F(BoardTest, AreasAreSeparate) {
    const unsigned char data[] = {1};
    bi_block_write_defined(0, data, 1);
    unsigned char buffer[1] = {0xee};
    bi_block_read_screen(0, buffer, 1);
    EXPECT_EQ(0, buffer[0]);
    bi_block_read_fpga_program(0, buffer, 1);
    EXPECT_EQ(0, buffer[0]);
}

TEST_F(BoardTest, AreaAccessPastTheEndIsRefused) {
    for (const AreaFunctions& area : kAreas) {
        const unsigned char data[] = {1, 2};
        unsigned char buffer[2];
        EXPECT_EQ(2, area.write(65534, data, 2)) << area.name;
        EXPECT_GT(0, area.write(65535, data, 2)) << area.name;
        EXPECT_GT(0, area.write(4294967295u, data, 2)) << area.name;
        EXPECT_EQ(2, area.read(65534, buffer, 2)) << area.name;
        EXPECT_EQ(0, memcmp(data, buffer, 2)) << area.name;
        EXPECT_GT(0, area.read(65535, buffer, 2)) << area.name;
        EXPECT_GT(0, area.read(4294967295u, buffer, 2)) << area.name;
        EXPECT_EQ(0, area.read(65536, buffer, 0)) << area.name;
    }
}

TEST_F(BoardTest, NamedBlocksAreKeyedByPath) {
    EXPECT_EQ(-1, bi_block_check("/dev/block/a"));
    const unsigned char data[] = {4, 5};
    EXPECT_EQ(2, bi_block_write_data("/dev/block/a", 10, data, 2));
    EXPECT_EQ(0, bi_block_check("/dev/block/a"));
    unsigned char buffer[3] = {};
    EXPECT_EQ(3, bi_block_read_data("/dev/block/a", 9, buffer, 3));
    const unsigned char expected[] = {0, 4, 5};
    EXPECT_EQ(0, memcmp(expected, buffer, 3));
    // A block never made does not exist; one made reads zeros where nothing was written.
    EXPECT_EQ(-1, bi_block_read_data("/dev/block/b", 10, buffer, 3));
    memset(buffer, 0xee, 3);
    EXPECT_EQ(3, bi_block_read_data("/dev/block/a", 1000, buffer, 3));
    EXPECT_EQ(0, memcmp("\0\0\0", buffer, 3));
    EXPECT_GT(0, bi_block_write_data("/dev/block/a", 65535, data, 2));
    EXPECT_GT(0, bi_block_read_data("/dev/block/a", 65535, buffer, 2));
    EXPECT_EQ(-1, bi_block_write_data(nullptr, 0, data, 2));
}

TEST_F(BoardTest, SpiExchangeEchoesAndReadGivesZeros) {
    const unsigned char sent[] = {1, 2, 3};
    EXPECT_EQ(3, bi_fpga_spi_write(sent, 3));
    unsigned char exchange[] = {9, 8, 7};
    EXPECT_EQ(3, bi_fpga_spi_write_read(exchange, 3));
    const unsigned char echoed[] = {9, 8, 7};
    EXPECT_EQ(0, memcmp(echoed, exchange, 3));
    unsigned char buffer[4];
    memset(buffer, 0xee, 4);
    EXPECT_EQ(4, bi_fpga_spi_read(buffer, 4));
    EXPECT_EQ(0, memcmp("\0\0\0\0", buffer, 4));
    EXPECT_EQ(-1, bi_fpga_spi_read(buffer, -1));
    EXPECT_EQ(0, bi_fpga_spi_write_read(nullptr, 0));
}

TEST_F(BoardTest, OwnProcessIsKnown) {
    vesk_process_record record{};
    EXPECT_EQ(1, bi_get_process_info_by_name(program_invocation_short_name, &record));
    EXPECT_STREQ(program_invocation_short_name, record.name1);
    EXPECT_LE(1, bi_kill_get_process_num(program_invocation_short_name, 0));
}

TEST_F(BoardTest, UnknownProcessIsNotFound) {
    vesk_process_record record{};
    EXPECT_EQ(0, bi_get_process_info_by_name("no-such-process", &record));
    EXPECT_EQ(nullptr, record.name1);
    EXPECT_EQ(0, bi_get_process_info_by_name(nullptr, &record));
    EXPECT_EQ(0, bi_kill_get_process_num("no-such-process", 0));
}

TEST_F(BoardTest, ProcessAndSchedulerActions) {
    EXPECT_EQ(-1, bi_kill_process_num(getpid()));
    EXPECT_EQ(-1, bi_kill_process_num(0));
    EXPECT_EQ(0, bi_sched_bind_pid_to_main_core(getpid()));
    EXPECT_EQ(0, bi_sched_unbind_pid_from_main_core(getpid()));
    EXPECT_EQ(-1, bi_sched_bind_pid_to_main_core(-1));
    EXPECT_EQ(0, bi_sched_adjust_cpu_freq("performance"));
    EXPECT_EQ(-1, bi_sched_adjust_cpu_freq("turbo"));
    EXPECT_EQ(-1, bi_sched_adjust_cpu_freq(nullptr));
}

TEST_F(BoardTest, LogConfigurationReadsBackWhatWasSet) {
    vesk_log_record record{};
    EXPECT_EQ(1, bi_vesk_logd_get_configure(&record));
    EXPECT_STREQ("I", record.level);
    EXPECT_STREQ("/data/vesk/log", record.base);
    vesk_log_record changed{};
    strcpy(changed.level, "D");
    strcpy(changed.base, "/sdcard/log");
    strcpy(changed.mode, "net");
    strcpy(changed.total_size, "1G");
    strcpy(changed.once_size, "8M");
    EXPECT_EQ(0, bi_vesk_logd_set_configure(&changed));
    vesk_log_record back{};
    EXPECT_EQ(1, bi_vesk_logd_get_configure(&back));
    EXPECT_EQ(0, memcmp(&changed, &back, sizeof(back)));
    EXPECT_EQ(-1, bi_vesk_logd_set_configure(nullptr));
    EXPECT_EQ(0, bi_vesk_logd_compress("/data/log", "/data/log.gz"));
    EXPECT_EQ(-1, bi_vesk_logd_compress(nullptr, "/data/log.gz"));
    EXPECT_EQ(0, bi_vesk_logd_clear("/data/log"));
}

TEST_F(BoardTest, RtcTimesRoundTrip) {
    unsigned int boot[VESK_RTC_TIME_WORDS], wake[VESK_RTC_TIME_WORDS];
    for (unsigned i = 0; i < VESK_RTC_TIME_WORDS; ++i) {
        boot[i] = 4294967295u - i;  // only the first six words are read
        wake[i] = i * 3 + 1;
    }
    const unsigned int bootTime[] = {2024, 2, 29, 6, 30, 0},
                       wakeTime[] = {2099, 12, 31, 23, 59, 59};
    std::copy_n(bootTime, 6, boot);
    std::copy_n(wakeTime, 6, wake);
    unsigned int back[VESK_RTC_TIME_WORDS];
    memset(back, 0xee, sizeof(back));
    EXPECT_EQ(0, bi_rtc_get_boot_time(back));
    EXPECT_EQ(std::vector<unsigned>(VESK_RTC_TIME_WORDS, 0),
              std::vector<unsigned>(back, back + VESK_RTC_TIME_WORDS));
    EXPECT_EQ(0, bi_rtc_set_boot_time(boot));
    EXPECT_EQ(0, bi_rtc_set_wake_time(wake));
    // The board keeps the six words of a time (year to second); the rest of the buffer is zero.
    std::vector<unsigned> expectedBoot(VESK_RTC_TIME_WORDS, 0), expectedWake(VESK_RTC_TIME_WORDS, 0);
    std::copy_n(boot, 6, expectedBoot.begin());
    std::copy_n(wake, 6, expectedWake.begin());
    EXPECT_EQ(0, bi_rtc_get_boot_time(back));
    EXPECT_EQ(expectedBoot, std::vector<unsigned>(back, back + VESK_RTC_TIME_WORDS));
    EXPECT_EQ(0, bi_rtc_get_wake_time(back));
    EXPECT_EQ(expectedWake, std::vector<unsigned>(back, back + VESK_RTC_TIME_WORDS));
    EXPECT_EQ(-1, bi_rtc_set_boot_time(nullptr));
    EXPECT_EQ(-1, bi_rtc_get_wake_time(nullptr));
    EXPECT_EQ(0, bi_rtc_set_boot_enable(1));
    EXPECT_EQ(0, bi_rtc_set_wake_enable(0));
}

TEST_F(BoardTest, ResolutionList) {
    vesk_resolution_record records[64];
    memset(records, 0xee, sizeof(records));
    ASSERT_EQ(21, bi_resolution_get_parameters_list(records));
    EXPECT_EQ(3840u, records[0].width);
    EXPECT_EQ(2160u, records[0].height);
    EXPECT_EQ(60u, records[0].fps);
    EXPECT_EQ(1920u, records[5].width);
    EXPECT_EQ(1080u, records[5].height);
    EXPECT_EQ(60u, records[5].fps);
    EXPECT_EQ(640u, records[20].width);
    EXPECT_EQ(480u, records[20].height);
    for (int i = 0; i < 21; ++i) EXPECT_EQ(1, records[i].status) << i;
    EXPECT_EQ(0xeeeeeeeeu, records[21].width);
}

TEST_F(BoardTest, CalculatedResolutionBecomesCurrent) {
    vesk_resolution_record current{};
    EXPECT_EQ(0, bi_resolution_get_parameters(&current));
    EXPECT_EQ(1920u, current.width);
    EXPECT_EQ(1080u, current.height);
    EXPECT_EQ(60u, current.fps);
    EXPECT_EQ(1, current.status);
    vesk_resolution_record result{};
    EXPECT_EQ(0, bi_resolution_calculate_parameters(1280, 720, 50, &result));
    EXPECT_EQ(1280u, result.width);
    EXPECT_EQ(720u, result.height);
    EXPECT_EQ(50u, result.fps);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(0, bi_resolution_get_parameters(&current));
    EXPECT_EQ(0, memcmp(&result, &current, sizeof(result)));
}

TEST_F(BoardTest, CalculateRefusesAZeroSize) {
    vesk_resolution_record result{};
    EXPECT_EQ(-1, bi_resolution_calculate_parameters(0, 720, 60, &result));
    EXPECT_EQ(0u, result.width);
    EXPECT_EQ(720u, result.height);
    EXPECT_EQ(-1, result.status);
    vesk_resolution_record current{};
    bi_resolution_get_parameters(&current);
    EXPECT_EQ(1920u, current.width);
}

int blockSum(const unsigned char* block) {
    int sum = 0;
    for (int i = 0; i < 128; ++i) sum += block[i];
    return sum % 256;
}

TEST_F(BoardTest, EdidByModelHasValidBlocksAndItsTiming) {
    unsigned char edid[VESK_EDID_SIZE];
    ASSERT_EQ(0, bi_resolution_get_edid_by_model(1920, 1080, edid, 60.0f));
    const unsigned char header[] = {0, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0};
    EXPECT_EQ(0, memcmp(header, edid, 8));
    EXPECT_EQ(0, blockSum(edid));
    EXPECT_EQ(0, blockSum(edid + 128));
    EXPECT_EQ(1, edid[126]);
    EXPECT_EQ(2, edid[128]);
    // CVT reduced blanking 1920 x 1080 at 60 Hz: 138.50 MHz, in units of 10 kHz 13850 = 0x361a.
    EXPECT_EQ(0x1a, edid[54]);
    EXPECT_EQ(0x36, edid[55]);
    vesk_resolution_record timing{};
    EXPECT_EQ(0, bi_resolution_get_prefferred_timing_by_edid(edid, &timing));
    EXPECT_EQ(1920u, timing.width);
    EXPECT_EQ(1080u, timing.height);
    EXPECT_EQ(60u, timing.fps);
    EXPECT_EQ(1, timing.status);
}

TEST_F(BoardTest, EdidFromDefinedCarriesTheIndex) {
    unsigned char edid[VESK_EDID_SIZE];
    ASSERT_EQ(0, bi_resolution_get_edid_from_defined(7, 3840, 2160, edid, 30.0f));
    EXPECT_EQ(7, edid[10]);
    vesk_resolution_record timing{};
    EXPECT_EQ(0, bi_resolution_get_prefferred_timing_by_edid(edid, &timing));
    EXPECT_EQ(3840u, timing.width);
    EXPECT_EQ(2160u, timing.height);
    EXPECT_EQ(30u, timing.fps);
}

TEST_F(BoardTest, EdidsPassEdidDecode) {
    struct Mode {
        unsigned short width, height;
        float refresh;
        const char* shown;
    };
    for (const Mode& mode :
         {Mode{1280, 720, 60.0f, "1280x720"}, Mode{1920, 1080, 50.0f, "1920x1080"},
          Mode{3840, 2160, 60.0f, "3840x2160"}}) {
        unsigned char edid[VESK_EDID_SIZE];
        ASSERT_EQ(0, bi_resolution_get_edid_by_model(mode.width, mode.height, edid, mode.refresh));
        std::string path = temporaryPath("edid.bin");
        {
            std::ofstream file(path, std::ios::binary);
            file.write(reinterpret_cast<const char*>(edid), sizeof(edid));
        }
        std::string report = runCommand("edid-decode --check " + path + " 2>&1");
        unlink(path.c_str());
        EXPECT_NE(std::string::npos, report.find(mode.shown)) << report;
        EXPECT_NE(std::string::npos, report.find("EDID conformity: PASS")) << report;
    }
}

TEST_F(BoardTest, EdidRefusesImpossibleModes) {
    unsigned char edid[VESK_EDID_SIZE];
    EXPECT_EQ(-1, bi_resolution_get_edid_by_model(0, 1080, edid, 60.0f));
    EXPECT_EQ(-1, bi_resolution_get_edid_by_model(1920, 1080, edid, 0.0f));
    EXPECT_EQ(-1, bi_resolution_get_edid_by_model(1920, 1080, nullptr, 60.0f));
    EXPECT_EQ(-1, bi_resolution_get_edid_from_defined(0, 4096, 2160, edid, 60.0f));
    EXPECT_EQ(-1, bi_resolution_get_edid_from_defined(0, 4000, 4000, edid, 60.0f));
}

TEST_F(BoardTest, PreferredTimingRefusesAnInvalidEdid) {
    unsigned char edid[VESK_EDID_SIZE] = {};
    vesk_resolution_record timing{};
    EXPECT_EQ(-1, bi_resolution_get_prefferred_timing_by_edid(edid, &timing));
    EXPECT_EQ(0u, timing.width);
    EXPECT_EQ(0, timing.status);
}

TEST_F(BoardTest, ManyThreadsAtOnce) {
    std::string path = temporaryPath("threads");
    ASSERT_TRUE(vesk::sim::setJournalFile(path));
    vesk::sim::startJournal();
    constexpr int kThreads = 8, kCalls = 200;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t] {
            unsigned char buffer[64] = {};
            for (int i = 0; i < kCalls / 4; ++i) {
                bi_sysled_set_state(t % 3);
                bi_block_write_defined(t * 64, buffer, sizeof(buffer));
                bi_block_read_defined(t * 64, buffer, sizeof(buffer));
                bi_info_get_cpu_state(buffer);
            }
        });
    }
    std::thread scripter([] {
        for (int i = 0; i < 50; ++i) {
            vesk::sim::setScript(nlohmann::json::parse(R"({"bi_sysled_set_state":[{},{}]})"));
        }
    });
    for (std::thread& thread : threads) thread.join();
    scripter.join();
    std::vector<std::string> lines = readLines(path);
    unlink(path.c_str());
    ASSERT_EQ(static_cast<size_t>(kThreads * kCalls), lines.size());
    for (const std::string& line : lines) {
        nlohmann::json call = nlohmann::json::parse(line, nullptr, false);
        ASSERT_FALSE(call.is_discarded()) << line;
        EXPECT_EQ(0u, line.find("{\"function\":\"bi_")) << line;
    }
    EXPECT_EQ(static_cast<size_t>(kThreads * kCalls), vesk::sim::journal().size());
    int state = bi_sysled_get_state();
    EXPECT_TRUE(state >= 0 && state < 3);
}

}  // namespace
}  // namespace vesk::test
