// Scripted results: every-call objects, per-call lists, "out" bytes and the process record.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <regex>

#include "SimTestFiles.h"
#include "vesksdk.h"
#include "vesksdk_records.h"
#include "vesksdk_sim_control.h"

namespace vesk::test {
namespace {

using nlohmann::json;

void script(const char* text) {
    std::string error;
    ASSERT_TRUE(vesk::sim::setScript(json::parse(text), &error)) << error;
}

// The reason a script is refused, or "accepted".
std::string refusal(const char* text) {
    std::string error;
    if (vesk::sim::setScript(json::parse(text), &error)) return "accepted";
    return error;
}

TEST(ScriptTest, HexTextHasTwoLowerCaseDigitsPerByte) {
    EXPECT_EQ("", vesk::sim::scriptHex(""));
    EXPECT_EQ("00017f80abff", vesk::sim::scriptHex(std::string("\x00\x01\x7f\x80\xab\xff", 6)));
}

TEST(ScriptTest, ObjectAppliesToEveryCall) {
    script(R"({"bi_sysled_get_state":{"return":7}})");
    EXPECT_EQ(7, bi_sysled_get_state());
    EXPECT_EQ(7, bi_sysled_get_state());
    bi_sysled_set_state(2);
    EXPECT_EQ(7, bi_sysled_get_state());
}

TEST(ScriptTest, ScriptedResultSkipsTheBoard) {
    script(R"({"bi_sysled_set_state":{"return":-5}})");
    EXPECT_EQ(-5, bi_sysled_set_state(2));
    vesk::sim::clearScript();
    EXPECT_EQ(0, bi_sysled_get_state());
}

TEST(ScriptTest, ListAppliesPerCallThenTheBoardResumes) {
    bi_relay_set_state(1);
    script(R"({"bi_relay_get_state":[{"return":7},{"return":-2}]})");
    EXPECT_EQ(7, bi_relay_get_state());
    EXPECT_EQ(-2, bi_relay_get_state());
    EXPECT_EQ(1, bi_relay_get_state());
    EXPECT_EQ(1, bi_relay_get_state());
}

TEST(ScriptTest, EmptyListEntryKeepsTheBoardsOwnResult) {
    script(R"({"bi_relay_set_state":[{}, {"return":3}]})");
    EXPECT_EQ(0, bi_relay_set_state(1));
    EXPECT_EQ(3, bi_relay_set_state(0));
    EXPECT_EQ(1, bi_relay_get_state());
}

TEST(ScriptTest, JournalShowsTheScriptedResult) {
    script(R"({"bi_network_detection":{"return":-5}})");
    vesk::sim::startJournal();
    bi_network_detection();
    std::vector<json> calls = vesk::sim::journal();
    ASSERT_EQ(1u, calls.size());
    EXPECT_EQ(json::parse(R"({"function":"bi_network_detection","args":[],"return":-5})"), calls[0]);
}

TEST(ScriptTest, OutIsCopiedToTheStartOfTheBuffer) {
    script(R"({"bi_serial_lora_nonblocking_read":{"return":3,"out":"0aFF10"}})");
    unsigned char buffer[6];
    memset(buffer, 0xee, sizeof(buffer));
    EXPECT_EQ(3, bi_serial_lora_nonblocking_read(buffer, 6));
    const unsigned char expected[] = {0x0a, 0xff, 0x10, 0xee, 0xee, 0xee};
    EXPECT_EQ(0, memcmp(expected, buffer, 6));
}

// An empty hex text writes nothing (and hands memcpy no null pointer: checked under UBSan).
TEST(ScriptTest, EmptyOutLeavesTheBufferAlone) {
    script(R"({"bi_serial_lora_nonblocking_read":{"return":0,"out":""}})");
    unsigned char buffer[4];
    memset(buffer, 0xee, sizeof(buffer));
    EXPECT_EQ(0, bi_serial_lora_nonblocking_read(buffer, 4));
    const unsigned char expected[] = {0xee, 0xee, 0xee, 0xee};
    EXPECT_EQ(0, memcmp(expected, buffer, 4));
}

TEST(ScriptTest, OutNeverPassesTheCapacity) {
    script(R"({"bi_serial_hdmi_blocking_read":{"return":8,"out":"0102030405060708"}})");
    unsigned char buffer[8];
    memset(buffer, 0xee, sizeof(buffer));
    EXPECT_EQ(8, bi_serial_hdmi_blocking_read(buffer, 3, 100));
    const unsigned char expected[] = {1, 2, 3, 0xee, 0xee, 0xee, 0xee, 0xee};
    EXPECT_EQ(0, memcmp(expected, buffer, 8));
}

TEST(ScriptTest, OutOfAnAreaReadStopsAtItsLength) {
    script(R"({"bi_block_read_screen":{"out":"aabbcc"}})");
    unsigned char buffer[4] = {1, 1, 1, 1};
    EXPECT_EQ(2, bi_block_read_screen(0, buffer, 2));
    const unsigned char expected[] = {0xaa, 0xbb, 1, 1};
    EXPECT_EQ(0, memcmp(expected, buffer, 4));
}

TEST(ScriptTest, OutOfSpiReadWithNegativeSizeWritesNothing) {
    script(R"({"bi_fpga_spi_read":{"return":-5,"out":"01"}})");
    unsigned char buffer[1] = {0xee};
    EXPECT_EQ(-5, bi_fpga_spi_read(buffer, -1));
    EXPECT_EQ(0xee, buffer[0]);
}

TEST(ScriptTest, OutWithoutReturnOverlaysTheBoardsOwnFill) {
    script(R"({"bi_watchdog_parse":{"out":"41"}})");
    vesk_watchdog_record record{};
    EXPECT_EQ(0, bi_watchdog_parse(&record));
    EXPECT_STREQ("Adev/watchdog", record.wdtDevice);
    EXPECT_EQ(60u, record.wdt_timeout);
}

TEST(ScriptTest, OutWithReturnLeavesTheRestOfTheRecordAlone) {
    script(R"({"bi_info_get_product_info":{"return":-1,"out":"38343731"}})");
    char record[VESK_PRODUCT_RECORD_SIZE] = {};
    EXPECT_EQ(-1, bi_info_get_product_info(record));
    EXPECT_EQ(std::string("8471", 4), std::string(record, 4));
    EXPECT_EQ('\0', record[4]);
    EXPECT_EQ('\0', record[64]);  // the model number's slot
}

TEST(ScriptTest, ProcessRecordStructuredOut) {
    script(R"({"bi_get_process_info_by_name":{"return":1,"out":{"name1":"mediaserver",
        "name2":"S","name3":"media","block":"00112233445566778899aabbccddeeff",
        "value64":18446744073709551615,"valueReal":2.5,"value32":4294967295}}})");
    vesk_process_record record{};
    EXPECT_EQ(1, bi_get_process_info_by_name("anything", &record));
    EXPECT_STREQ("mediaserver", record.name1);
    EXPECT_STREQ("S", record.name2);
    EXPECT_STREQ("media", record.name3);
    const uint8_t block[16] = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77,
                               0x88, 0x99, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff};
    EXPECT_EQ(0, memcmp(block, record.block, 16));
    EXPECT_EQ(18446744073709551615ull, record.value64);
    EXPECT_EQ(2.5, record.valueReal);
    EXPECT_EQ(4294967295u, record.value32);
}

TEST(ScriptTest, ProcessRecordMissingMembersAreEmpty) {
    script(R"({"bi_get_process_info_by_name":[{"return":2,"out":{"name2":"x","block":"01"}}]})");
    vesk_process_record record{};
    memset(record.block, 0xee, sizeof(record.block));
    record.value32 = 7;
    EXPECT_EQ(2, bi_get_process_info_by_name("init", &record));
    EXPECT_STREQ("", record.name1);
    EXPECT_STREQ("x", record.name2);
    EXPECT_STREQ("", record.name3);
    const uint8_t block[16] = {1};
    EXPECT_EQ(0, memcmp(block, record.block, 16));
    EXPECT_EQ(0u, record.value64);
    EXPECT_EQ(0.0, record.valueReal);
    EXPECT_EQ(0u, record.value32);
}

TEST(ScriptTest, ProcessNamesOutliveTheScript) {
    script(R"({"bi_get_process_info_by_name":{"return":1,"out":{"name1":"kept"}}})");
    vesk_process_record record{};
    bi_get_process_info_by_name("x", &record);
    vesk::sim::clearScript();
    script(R"({"bi_get_process_info_by_name":{"return":1,"out":{"name1":"other"}}})");
    vesk_process_record second{};
    bi_get_process_info_by_name("x", &second);
    EXPECT_STREQ("kept", record.name1);
    EXPECT_STREQ("other", second.name1);
}

TEST(ScriptTest, FloatReturn) {
    script(R"({"bi_adc_get_board_voltage":{"return":3.3},"bi_adc_get_board_temperature":[{"return":-4}]})");
    vesk::sim::startJournal();
    EXPECT_EQ(3.3f, bi_adc_get_board_voltage());
    EXPECT_EQ(-4.0f, bi_adc_get_board_temperature());
    EXPECT_EQ(41.5f, bi_adc_get_board_temperature());
    std::vector<json> calls = vesk::sim::journal();
    ASSERT_EQ(3u, calls.size());
    EXPECT_EQ("3.299999952316284", calls[0]["return"].dump());
}

TEST(ScriptTest, NotAnObjectIsRefused) {
    EXPECT_EQ("the script must be a JSON object", refusal("[]"));
    EXPECT_EQ("the script must be a JSON object", refusal("3"));
}

TEST(ScriptTest, UnknownFunctionIsRefused) {
    EXPECT_EQ("bi_sysled_toggle: no such board function",
              refusal(R"({"bi_sysled_toggle":{"return":0}})"));
}

TEST(ScriptTest, ValueNeitherObjectNorListIsRefused) {
    EXPECT_EQ("bi_sysled_get_state must be an object or a list of objects",
              refusal(R"({"bi_sysled_get_state":1})"));
}

TEST(ScriptTest, ListEntryNotAnObjectIsRefused) {
    EXPECT_EQ("bi_sysled_get_state[1] must be an object",
              refusal(R"({"bi_sysled_get_state":[{},5]})"));
}

TEST(ScriptTest, WrongReturnTypesAreRefused) {
    EXPECT_EQ("bi_relay_get_state.return must be a number",
              refusal(R"({"bi_relay_get_state":{"return":"1"}})"));
    EXPECT_EQ("bi_relay_get_state.return must be an int",
              refusal(R"({"bi_relay_get_state":{"return":1.5}})"));
    EXPECT_EQ("bi_relay_get_state.return must be an int",
              refusal(R"({"bi_relay_get_state":{"return":2147483648}})"));
    EXPECT_EQ("accepted", refusal(R"({"bi_relay_get_state":{"return":-2147483648}})"));
}

TEST(ScriptTest, BadHexIsRefused) {
    EXPECT_EQ("bi_watchdog_parse.out has an odd number of hex digits",
              refusal(R"({"bi_watchdog_parse":{"out":"123"}})"));
    EXPECT_EQ("bi_watchdog_parse.out is not hex: \"0g\"",
              refusal(R"({"bi_watchdog_parse":{"out":"0g"}})"));
    EXPECT_EQ("bi_watchdog_parse.out must be a string of hex bytes",
              refusal(R"({"bi_watchdog_parse":{"out":[1]}})"));
}

TEST(ScriptTest, OutForAFunctionWithoutBufferIsRefused) {
    EXPECT_EQ("bi_relay_set_state.out: bi_relay_set_state has no output buffer",
              refusal(R"({"bi_relay_set_state":{"out":"00"}})"));
}

TEST(ScriptTest, OutLongerThanAFixedRecordIsRefused) {
    EXPECT_EQ(
            "bi_resolution_get_parameters[0].out has 17 bytes, more than the buffer's 16",
            refusal(R"({"bi_resolution_get_parameters":[{"out":"0000000000000000000000000000000000"}]})"));
}

TEST(ScriptTest, UnknownEntryMemberIsRefused) {
    EXPECT_EQ("bi_relay_get_state has an unknown member \"result\"",
              refusal(R"({"bi_relay_get_state":{"result":1}})"));
}

TEST(ScriptTest, BadProcessRecordIsRefused) {
    EXPECT_EQ("bi_get_process_info_by_name.out must be an object",
              refusal(R"({"bi_get_process_info_by_name":{"out":"00"}})"));
    EXPECT_EQ("bi_get_process_info_by_name.out.name1 must be a string",
              refusal(R"({"bi_get_process_info_by_name":{"out":{"name1":1}}})"));
    EXPECT_EQ(
            "bi_get_process_info_by_name.out.block is over 16 bytes",
            refusal(R"({"bi_get_process_info_by_name":{"out":{"block":"0000000000000000000000000000000000"}}})"));
    EXPECT_EQ("bi_get_process_info_by_name.out.value32 is out of range",
              refusal(R"({"bi_get_process_info_by_name":{"out":{"value32":4294967296}}})"));
    EXPECT_EQ("bi_get_process_info_by_name.out.value64 must be a non-negative integer",
              refusal(R"({"bi_get_process_info_by_name":{"out":{"value64":-1}}})"));
    EXPECT_EQ("bi_get_process_info_by_name.out.valueReal must be a number",
              refusal(R"({"bi_get_process_info_by_name":{"out":{"valueReal":"1"}}})"));
    EXPECT_EQ("bi_get_process_info_by_name.out has an unknown member \"pid\"",
              refusal(R"({"bi_get_process_info_by_name":{"out":{"pid":1}}})"));
}

TEST(ScriptTest, RefusedScriptChangesNothing) {
    script(R"({"bi_relay_get_state":[{"return":1},{"return":2}]})");
    EXPECT_EQ(1, bi_relay_get_state());
    EXPECT_NE("accepted", refusal(R"({"bi_relay_get_state":{"return":5},"bi_nothing":{}})"));
    EXPECT_EQ(2, bi_relay_get_state());
    EXPECT_EQ(0, bi_relay_get_state());
}

// Every function that vesksdk.h declares can be scripted.
TEST(ScriptTest, EveryDeclaredFunctionIsKnown) {
    std::ifstream header(VESK_SOURCE_DIR "/vesksdk/include/vesksdk.h");
    std::string source((std::istreambuf_iterator<char>(header)), std::istreambuf_iterator<char>());
    std::vector<std::string> names;
    std::regex plain(R"(\b(bi_[a-z0-9_]+)\()");
    for (std::sregex_iterator it(source.begin(), source.end(), plain), end; it != end; ++it) {
        names.push_back((*it)[1]);
    }
    std::regex serial(R"(VESKSDK_SERIAL_FUNCTIONS\(([a-z0-9_]+)\)\n)");
    for (std::sregex_iterator it(source.begin(), source.end(), serial), end; it != end; ++it) {
        for (const char* action : {"open", "close", "blocking_read", "nonblocking_read", "write"}) {
            names.push_back("bi_serial_" + (*it)[1].str() + "_" + action);
        }
    }
    EXPECT_EQ(118u + 35u, names.size());
    for (const std::string& name : names) {
        std::string error;
        EXPECT_TRUE(vesk::sim::setScript(json{{name, json::object()}}, &error)) << error;
    }
}

// Run in a fresh process: the environment is read at the first board call of a process.
bool scriptFileFromEnvironment() {
    std::string path = temporaryPath("script.json");
    {
        std::ofstream file(path);
        file << R"({"bi_get_pq_state":[{"return":11}]})";
    }
    setenv("VESK_BOARD_SCRIPT", path.c_str(), 1);
    const int first = bi_get_pq_state();
    unlink(path.c_str());
    const int second = bi_get_pq_state();
    fprintf(stderr, "first %d, second %d\n", first, second);
    return first == 11 && second == 0;
}

TEST(ScriptTest, ScriptFileFromEnvironment) {
    FreshProcessStyle fresh;
    EXPECT_EXIT(exit(scriptFileFromEnvironment() ? 0 : 1), ::testing::ExitedWithCode(0), "");
}

bool scriptFromEnvironmentIsReplacedBySetScript() {
    std::string path = temporaryPath("replaced.json");
    {
        std::ofstream file(path);
        file << R"({"bi_get_pq_state":{"return":11}})";
    }
    setenv("VESK_BOARD_SCRIPT", path.c_str(), 1);
    const bool set = vesk::sim::setScript(json::parse(R"({"bi_get_pq_state":{"return":12}})"));
    unlink(path.c_str());
    const int state = bi_get_pq_state();
    fprintf(stderr, "set %d, state %d\n", set, state);
    return set && state == 12;
}

TEST(ScriptTest, ScriptFromEnvironmentIsReplacedBySetScript) {
    FreshProcessStyle fresh;
    EXPECT_EXIT(exit(scriptFromEnvironmentIsReplacedBySetScript() ? 0 : 1),
                ::testing::ExitedWithCode(0), "");
}

TEST(ScriptTest, LoadScriptFile) {
    std::string path = temporaryPath("load.json");
    {
        std::ofstream file(path);
        file << R"({"bi_lora_get_state":{"return":4}})";
    }
    std::string error;
    EXPECT_TRUE(vesk::sim::loadScriptFile(path, &error)) << error;
    unlink(path.c_str());
    EXPECT_EQ(4, bi_lora_get_state());
}

TEST(ScriptTest, LoadScriptFileRefusesUnreadableFile) {
    std::string error;
    EXPECT_FALSE(vesk::sim::loadScriptFile("/nonexistent/script.json", &error));
    EXPECT_EQ("/nonexistent/script.json: cannot be read", error);
}

TEST(ScriptTest, LoadScriptFileRefusesMalformedJson) {
    std::string path = temporaryPath("bad.json");
    {
        std::ofstream file(path);
        file << R"({"bi_lora_get_state":)";
    }
    std::string error;
    EXPECT_FALSE(vesk::sim::loadScriptFile(path, &error));
    unlink(path.c_str());
    EXPECT_EQ(path + ": not valid JSON", error);
}

TEST(ScriptTest, LoadScriptFileRefusesMalformedScript) {
    std::string path = temporaryPath("wrong.json");
    {
        std::ofstream file(path);
        file << R"({"bi_lora_get_state":{"return":true}})";
    }
    std::string error;
    EXPECT_FALSE(vesk::sim::loadScriptFile(path, &error));
    unlink(path.c_str());
    EXPECT_EQ(path + ": bi_lora_get_state.return must be a number", error);
}

TEST(ScriptDeathTest, MalformedScriptFileFromEnvironmentAborts) {
    FreshProcessStyle fresh;
    EXPECT_DEATH(
            {
                setenv("VESK_BOARD_SCRIPT", "/nonexistent/script.json", 1);
                bi_relay_get_state();
            },
            "vesksdk: VESK_BOARD_SCRIPT: /nonexistent/script.json: cannot be read");
}

}  // namespace
}  // namespace vesk::test
