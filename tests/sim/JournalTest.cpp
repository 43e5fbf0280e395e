// The call journal: one line per board call, each kind of argument in its journal form.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "SimTestFiles.h"
#include "vesksdk.h"
#include "vesksdk_records.h"
#include "vesksdk_sim_control.h"

namespace vesk::test {
namespace {

using nlohmann::json;

// The one call kept in memory, as its journal line would read.
std::string onlyCall() {
    std::vector<json> calls = vesk::sim::journal();
    EXPECT_EQ(1u, calls.size());
    if (calls.empty()) return "";
    const json& call = calls.front();
    return "{\"function\":" + call["function"].dump() + ",\"args\":" + call["args"].dump() +
           ",\"return\":" + call["return"].dump() + "}";
}

TEST(JournalTest, IntArgument) {
    vesk::sim::startJournal();
    bi_relay_set_state(1);
    EXPECT_EQ(R"({"function":"bi_relay_set_state","args":[1],"return":0})", onlyCall());
}

TEST(JournalTest, NegativeIntArgument) {
    vesk::sim::startJournal();
    bi_sysled_set_state(-7);  // no LED state: the board refuses it
    EXPECT_EQ(R"({"function":"bi_sysled_set_state","args":[-7],"return":-1})", onlyCall());
}

TEST(JournalTest, UnsignedArgument) {
    vesk::sim::startJournal();
    bi_otg_set_mode(4294967295u);  // no OTG mode: the board refuses it
    EXPECT_EQ(R"({"function":"bi_otg_set_mode","args":[4294967295],"return":-1})", onlyCall());
}

TEST(JournalTest, UnsignedAndSignedCharArguments) {
    vesk::sim::startJournal();
    bi_serial_485_open(115200, 255, 2, -1);  // 255 data bits and parity -1: refused
    EXPECT_EQ(R"({"function":"bi_serial_485_open","args":[115200,255,2,-1],"return":-1})",
              onlyCall());
}

TEST(JournalTest, FloatArgumentIsTheDoubleItConvertsTo) {
    unsigned char edid[VESK_EDID_SIZE];
    vesk::sim::startJournal();
    bi_resolution_get_edid_by_model(640, 480, edid, 59.94f);
    EXPECT_EQ(
            R"({"function":"bi_resolution_get_edid_by_model","args":[640,480,null,59.939998626708984],"return":0})",
            onlyCall());
}

TEST(JournalTest, FloatResult) {
    vesk::sim::startJournal();
    bi_adc_get_board_voltage();
    EXPECT_EQ(R"({"function":"bi_adc_get_board_voltage","args":[],"return":12.149999618530273})",
              onlyCall());
}

TEST(JournalTest, StringArgument) {
    vesk::sim::startJournal();
    bi_watchdog_open("/dev/watchdog", 30);
    EXPECT_EQ(R"({"function":"bi_watchdog_open","args":["/dev/watchdog",30],"return":0})",
              onlyCall());
}

TEST(JournalTest, NullStringArgument) {
    vesk::sim::startJournal();
    bi_watchdog_feed(nullptr);
    EXPECT_EQ(R"({"function":"bi_watchdog_feed","args":[null],"return":-1})", onlyCall());
}

TEST(JournalTest, InputBytes) {
    const unsigned char data[] = {0, 1, 128, 255};
    bi_serial_232_open(9600, 8, 1, 0);
    vesk::sim::startJournal();
    bi_serial_232_write(data, 4);
    EXPECT_EQ(R"({"function":"bi_serial_232_write","args":[[0,1,128,255],4],"return":4})",
              onlyCall());
}

TEST(JournalTest, EmptyInputBytes) {
    vesk::sim::startJournal();
    bi_fpga_spi_write(nullptr, 0);
    EXPECT_EQ(R"({"function":"bi_fpga_spi_write","args":[[],0],"return":0})", onlyCall());
}

TEST(JournalTest, ExchangedBytesAreTheBytesSent) {
    unsigned char buffer[] = {9, 8, 7};
    vesk::sim::startJournal();
    bi_fpga_spi_write_read(buffer, 3);
    EXPECT_EQ(R"({"function":"bi_fpga_spi_write_read","args":[[9,8,7],3],"return":3})", onlyCall());
}

TEST(JournalTest, RtcTimeWords) {
    // The board reads the six words of a time, year to second, and nothing beyond them.
    unsigned int words[6] = {4294967295u, 17, 0, 0, 0, 99};
    vesk::sim::startJournal();
    bi_rtc_set_boot_time(words);
    std::string expected = "[[4294967295,17,0,0,0,99]]";
    std::vector<json> calls = vesk::sim::journal();
    ASSERT_EQ(1u, calls.size());
    EXPECT_EQ(expected, calls[0]["args"].dump());
    EXPECT_EQ(-1, calls[0]["return"]);  // no calendar time
}

TEST(JournalTest, NullRtcTimeWords) {
    vesk::sim::startJournal();
    bi_rtc_set_wake_time(nullptr);
    EXPECT_EQ(R"({"function":"bi_rtc_set_wake_time","args":[null],"return":-1})", onlyCall());
}

TEST(JournalTest, OutputBufferIsNull) {
    unsigned char buffer[4];
    vesk::sim::startJournal();
    bi_block_read_defined(16, buffer, 4);
    EXPECT_EQ(R"({"function":"bi_block_read_defined","args":[16,null,4],"return":4})", onlyCall());
}

TEST(JournalTest, LogRecordIsItsBytes) {
    vesk_log_record record{};
    record.level[0] = 'D';
    record.once_size[7] = '9';
    vesk::sim::startJournal();
    bi_vesk_logd_set_configure(&record);
    std::vector<json> calls = vesk::sim::journal();
    ASSERT_EQ(1u, calls.size());
    std::vector<int> expected(216, 0);
    expected[0] = 'D';
    expected[215] = '9';
    EXPECT_EQ(json::array({expected}), calls[0]["args"]);
}

TEST(JournalTest, NothingKeptBeforeStart) {
    bi_relay_set_state(1);
    EXPECT_TRUE(vesk::sim::journal().empty());
    vesk::sim::startJournal();
    bi_relay_get_state();
    EXPECT_EQ(R"({"function":"bi_relay_get_state","args":[],"return":1})", onlyCall());
}

TEST(JournalTest, JournalOfOneFunctionAndClear) {
    vesk::sim::startJournal();
    bi_relay_set_state(1);
    bi_sysled_set_state(2);
    bi_relay_set_state(3);
    std::vector<json> relay = vesk::sim::journalOf("bi_relay_set_state");
    ASSERT_EQ(2u, relay.size());
    EXPECT_EQ(json::array({1}), relay[0]["args"]);
    EXPECT_EQ(json::array({3}), relay[1]["args"]);
    vesk::sim::clearJournal();
    EXPECT_TRUE(vesk::sim::journal().empty());
    bi_relay_get_state();
    EXPECT_EQ(1u, vesk::sim::journal().size());
}

// Run in a fresh process: the environment is read at the first board call of a process.
bool fileFromEnvironmentHasExactLines() {
    std::string path = temporaryPath("journal");
    {
        std::ofstream existing(path);
        existing << "earlier\n";
    }
    setenv("VESK_BOARD_JOURNAL", path.c_str(), 1);
    unsigned char edid[VESK_EDID_SIZE];
    const unsigned char bytes[] = {1, 2};
    bi_relay_set_state(1);
    bi_watchdog_feed(nullptr);
    bi_resolution_get_edid_by_model(640, 480, edid, 59.94f);
    bi_adc_get_board_voltage();
    bi_serial_ttl_write(bytes, 2);
    bi_i2c_set_audio_enable(200, 1);
    std::vector<std::string> lines = readLines(path);
    unlink(path.c_str());
    std::vector<std::string> expected = {
            "earlier",
            R"({"function":"bi_relay_set_state","args":[1],"return":0})",
            R"({"function":"bi_watchdog_feed","args":[null],"return":-1})",
            R"({"function":"bi_resolution_get_edid_by_model","args":[640,480,null,59.939998626708984],"return":0})",
            R"({"function":"bi_adc_get_board_voltage","args":[],"return":12.149999618530273})",
            R"({"function":"bi_serial_ttl_write","args":[[1,2],2],"return":-1})",
            R"({"function":"bi_i2c_set_audio_enable","args":[200,1],"return":-1})",
    };
    for (const std::string& line : lines) fprintf(stderr, "journal: %s\n", line.c_str());
    return lines == expected;
}

TEST(JournalTest, FileFromEnvironmentHasExactLines) {
    FreshProcessStyle fresh;
    EXPECT_EXIT(exit(fileFromEnvironmentHasExactLines() ? 0 : 1), ::testing::ExitedWithCode(0), "");
}

bool fileAndMemoryTogether() {
    std::string path = temporaryPath("both");
    setenv("VESK_BOARD_JOURNAL", path.c_str(), 1);
    vesk::sim::startJournal();
    bi_netled_set_state(2);
    std::vector<std::string> lines = readLines(path);
    unlink(path.c_str());
    const std::string expected = R"({"function":"bi_netled_set_state","args":[2],"return":0})";
    const bool fileHoldsIt = lines == std::vector<std::string>{expected};
    const bool memoryHoldsIt = onlyCall() == expected;
    fprintf(stderr, "file %d, memory %d\n", fileHoldsIt, memoryHoldsIt);
    return fileHoldsIt && memoryHoldsIt;
}

TEST(JournalTest, FileAndMemoryTogether) {
    FreshProcessStyle fresh;
    EXPECT_EXIT(exit(fileAndMemoryTogether() ? 0 : 1), ::testing::ExitedWithCode(0), "");
}

TEST(JournalTest, SetJournalFile) {
    std::string path = temporaryPath("set");
    ASSERT_TRUE(vesk::sim::setJournalFile(path));
    bi_cloudled_get_state();
    std::vector<std::string> lines = readLines(path);
    unlink(path.c_str());
    EXPECT_EQ(
            std::vector<std::string>{R"({"function":"bi_cloudled_get_state","args":[],"return":0})"},
            lines);
}

// A path is any bytes; the journal line stays valid JSON, with U+FFFD for the bytes that are not
// UTF-8, and the call goes on.
TEST(JournalTest, StringArgumentThatIsNotUtf8) {
    std::string path = temporaryPath("utf8");
    ASSERT_TRUE(vesk::sim::setJournalFile(path));
    bi_block_check("/data/\xff\xfe.bin");
    std::vector<std::string> lines = readLines(path);
    unlink(path.c_str());
    ASSERT_EQ(1u, lines.size());
    json line = json::parse(lines[0]);
    EXPECT_EQ("bi_block_check", line["function"]);
    EXPECT_EQ(json::array({"/data/\xef\xbf\xbd\xef\xbf\xbd.bin"}), line["args"]);
}

TEST(JournalTest, SetJournalFileRefusesAnUnwritablePath) {
    std::string error;
    EXPECT_FALSE(vesk::sim::setJournalFile("/nonexistent-dir/journal", &error));
    EXPECT_NE(std::string::npos, error.find("/nonexistent-dir/journal")) << error;
}

TEST(JournalDeathTest, UnwritableJournalFileFromEnvironmentAborts) {
    FreshProcessStyle fresh;
    EXPECT_DEATH(
            {
                setenv("VESK_BOARD_JOURNAL", "/nonexistent-dir/journal", 1);
                bi_relay_get_state();
            },
            "vesksdk: VESK_BOARD_JOURNAL: /nonexistent-dir/journal");
}

}  // namespace
}  // namespace vesk::test
