// veskdm driving the real implementation library on the simulated board, each run on a fresh
// device root, with the board's call journal as the witness of what reached the board.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "RunVeskdm.h"

namespace veskdm::test {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::StartsWith;

class EndToEndTest : public ::testing::Test {
  protected:
    EndToEndTest() {
        // The library beside the program: the build tree's lib/.
        veskdm.environment = {"VESK_IMPL_LIB=", "VESK_BOARD_SCRIPT="};
    }

    Outcome run(std::vector<std::string> args, const std::string& input = "") {
        args.insert(args.begin(), {"--board-journal", journalFile});
        return veskdm.run(args, input);
    }

    // The board calls of the runs so far, as {"function","args","return"} objects.
    std::vector<json> journal() const {
        std::vector<json> calls;
        for (const std::string& line : splitLines(vesk::test::readFile(journalFile))) {
            calls.push_back(json::parse(line));
        }
        return calls;
    }
    std::vector<std::string> journalFunctions() const {
        std::vector<std::string> names;
        for (const json& call : journal()) names.push_back(call.at("function"));
        return names;
    }

    // A bad command line: status 2, one line on stderr, nothing printed, no board call at all
    // (not even the initialisation of a fetched service object).
    void expectRefused(const std::vector<std::string>& args, const std::string& message) {
        Outcome outcome = run(args);
        EXPECT_EQ(outcome.status, 2) << args[1];
        EXPECT_THAT(outcome.errLines(), ElementsAre("veskdm: " + message));
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(vesk::test::readFile(journalFile), "");
    }

    vesk::test::TempRoot root;
    std::string journalFile = root.path() + "/journal.jsonl";
    VeskdmRunner veskdm{root};
};

// Each call is its own process: the answers are the board's results, passed through unchanged.
// The board keeps its state in the root: a value set by one process is read by the next.
TEST_F(EndToEndTest, CallSetterThenGetter) {
    Outcome set = run({"call", "setSysLedState", "2"});
    EXPECT_EQ(set.status, 0) << set.err;
    Outcome get = run({"call", "getSysLedState"});
    EXPECT_EQ(get.status, 0) << get.err;

    std::vector<json> calls = journal();
    ASSERT_EQ(calls.size(), 4u);  // each process initialises the board once, then calls it
    EXPECT_EQ(calls[0].at("function"), "bi_init_product_config");
    EXPECT_EQ(calls[1].at("function"), "bi_sysled_set_state");
    EXPECT_EQ(calls[1].at("args"), json::array({2}));
    EXPECT_EQ(calls[1].at("return"), 0);
    EXPECT_EQ(calls[3].at("return"), 2);
    EXPECT_EQ(calls[2].at("function"), "bi_init_product_config");
    EXPECT_EQ(calls[3].at("function"), "bi_sysled_get_state");
    EXPECT_EQ(calls[3].at("args"), json::array());
    json expectedSet = {{"method", "setSysLedState"},
                        {"return", calls[1].at("return")},
                        {"callbacks", json::array()}};
    EXPECT_EQ(json::parse(set.out), expectedSet);
    json expectedGet = {{"method", "getSysLedState"},
                        {"return", calls[3].at("return")},
                        {"callbacks", json::array()}};
    EXPECT_EQ(json::parse(get.out), expectedGet);
}

// In one process the board keeps what was set.
TEST_F(EndToEndTest, SetterThenGetterInOneShell) {
    Outcome outcome = run({"shell"},
                          "setSysLedState 2\ngetSysLedState\nsetSysLedState 3\n"
                          "getSysLedState\n");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    // LED states are 0 to 2: the board refuses 3 and keeps 2.
    EXPECT_THAT(outcome.outLines(),
                ElementsAre("{\"method\":\"setSysLedState\",\"return\":0,\"callbacks\":[]}",
                            "{\"method\":\"getSysLedState\",\"return\":2,\"callbacks\":[]}",
                            "{\"method\":\"setSysLedState\",\"return\":-1,\"callbacks\":[]}",
                            "{\"method\":\"getSysLedState\",\"return\":2,\"callbacks\":[]}"));
}

TEST_F(EndToEndTest, GetCpuStatusShape) {
    Outcome outcome = run({"call", "getCpuStatus"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    ASSERT_EQ(outcome.outLines().size(), 1u);
    nlohmann::ordered_json line = nlohmann::ordered_json::parse(outcome.out);
    std::vector<std::string> keys;
    for (const auto& item : line.items()) keys.push_back(item.key());
    EXPECT_THAT(keys, ElementsAre("method", "return", "callbacks"));
    EXPECT_EQ(line["method"], "getCpuStatus");
    EXPECT_TRUE(line["return"].is_null());
    ASSERT_EQ(line["callbacks"].size(), 1u);     // one invocation
    ASSERT_EQ(line["callbacks"][0].size(), 1u);  // of one argument
    const auto& status = line["callbacks"][0][0];
    std::vector<std::string> fields;
    for (const auto& item : status.items()) {
        fields.push_back(item.key());
        EXPECT_TRUE(item.value().is_number()) << item.key();
    }
    EXPECT_THAT(fields, ElementsAre("usr", "nic", "sys", "idle", "iowait", "irq", "softirq",
                                    "temperature"));
    EXPECT_TRUE(status["temperature"].is_number_unsigned());
}

// The board's record scripted byte by byte: seven little-endian floats (12.15, 0.1, 3.3, 80,
// 1/3, 0, 2.75) and the temperature 47.
TEST_F(EndToEndTest, GetCpuStatusFloatsAsShortestDecimals) {
    std::string script = root.path() + "/script.json";
    vesk::test::writeFile(
            script, R"({"bi_info_get_cpu_state": {"return": 0, "out": )"
                    R"("66664241cdcccc3d333353400000a042abaaaa3e00000000000030402f000000"}})");
    Outcome outcome = run({"--board-script", script, "call", "getCpuStatus"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out,
              "{\"method\":\"getCpuStatus\",\"return\":null,\"callbacks\":[[{\"usr\":12.15,"
              "\"nic\":0.1,\"sys\":3.3,\"idle\":80.0,\"iowait\":0.33333334,\"irq\":0.0,"
              "\"softirq\":2.75,\"temperature\":47}]]}\n");
}

TEST_F(EndToEndTest, ShellRunsEveryLineOnOneObject) {
    Outcome outcome = run({"shell"},
                          "# LEDs first\n"
                          "setSysLedState 2\n"
                          "getSysLedState\n"
                          "\n"
                          "setColorLedState 1 2 3\n"
                          "getProductInfo\n"
                          "getProductInfo\n");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    std::vector<std::string> lines = outcome.outLines();
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[1], "{\"method\":\"getSysLedState\",\"return\":2,\"callbacks\":[]}");
    EXPECT_THAT(lines[2], StartsWith("{\"method\":\"setColorLedState\",\"return\":"));
    EXPECT_THAT(lines[3], StartsWith("{\"method\":\"getProductInfo\",\"return\":null,"
                                     "\"callbacks\":[[{\"text01\":"));
    EXPECT_EQ(lines[4], lines[3]);  // the second answer comes from the process's cache
    // One service object: one initialisation; the product record is read once per process.
    EXPECT_THAT(journalFunctions(),
                ElementsAre("bi_init_product_config", "bi_sysled_set_state", "bi_sysled_get_state",
                            "bi_triled_set_state", "bi_info_get_product_info"));
    EXPECT_EQ(journal()[3].at("args"), json::array({1, 2, 3}));
}

TEST_F(EndToEndTest, ProductCacheDoesNotOutliveTheProcess) {
    EXPECT_EQ(run({"call", "getProductInfo"}).status, 0);
    EXPECT_EQ(run({"call", "getProductInfo"}).status, 0);
    EXPECT_THAT(journalFunctions(),
                ElementsAre("bi_init_product_config", "bi_info_get_product_info",
                            "bi_init_product_config", "bi_info_get_product_info"));
}

TEST_F(EndToEndTest, BoardJournalOfOneCall) {
    Outcome outcome = run({"call", "setAudioEnable", "2", "1"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    std::vector<json> calls = journal();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[1].at("function"), "bi_i2c_set_audio_enable");
    EXPECT_EQ(calls[1].at("args"), json::array({2, 1}));
}

TEST_F(EndToEndTest, ShellBadLineCallsNothingForIt) {
    Outcome outcome = run({"shell"},
                          "setSysLedState 5\n"
                          "setSysLedState 5 6\n"
                          "getSysLedState\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errLines(),
                ElementsAre("veskdm: line 2: setSysLedState takes 1 argument (int32_t state), "
                            "got 2"));
    EXPECT_THAT(journalFunctions(), ElementsAre("bi_init_product_config", "bi_sysled_set_state",
                                                "bi_sysled_get_state"));
}

TEST_F(EndToEndTest, ShellOfOnlyBadLinesTouchesNoBoard) {
    Outcome outcome = run({"shell"}, "setSysLedState on\nnoSuchMethod 1\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errLines().size(), 2u);
    EXPECT_EQ(vesk::test::readFile(journalFile), "");
}

// ---- bad input: status 2, one line on stderr, the board untouched ----

TEST_F(EndToEndTest, RefusesUnknownMethod) {
    expectRefused({"call", "getSysLed"},
                  "unknown method \"getSysLed\" (veskdm methods lists them)");
}

TEST_F(EndToEndTest, RefusesWrongArgumentCount) {
    expectRefused({"call", "setColorLedState", "1", "2"},
                  "setColorLedState takes 3 arguments (int32_t red, int32_t green, int32_t blue), "
                  "got 2");
}

TEST_F(EndToEndTest, RefusesUint8OutOfRange) {
    expectRefused({"call", "setVideoInputSrcVolume", "1", "256"},
                  "setVideoInputSrcVolume: argument 2 (uint8_t volume): expected an integer from "
                  "0 to 255 (uint8_t), got 256 (out of range)");
}

TEST_F(EndToEndTest, RefusesNegativeUint32) {
    expectRefused({"call", "setUsbState", "-1", "1"},
                  "setUsbState: argument 1 (uint32_t index): expected an integer from 0 to "
                  "4294967295 (uint32_t), got -1 (out of range)");
}

TEST_F(EndToEndTest, RefusesInt32OutOfRange) {
    expectRefused({"call", "setRelayState", "-2147483649"},
                  "setRelayState: argument 1 (int32_t state): expected an integer from "
                  "-2147483648 to 2147483647 (int32_t), got -2147483649 (out of range)");
}

TEST_F(EndToEndTest, RefusesNonIntegralNumber) {
    expectRefused({"call", "calculateResolutionParameters", "1920", "1080", "59.94"},
                  "calculateResolutionParameters: argument 3 (uint32_t fps): expected an integer "
                  "from 0 to 4294967295 (uint32_t), got 59.94 (not an integer)");
}

TEST_F(EndToEndTest, RefusesWrongType) {
    expectRefused({"call", "writeSpiFpga", "data"},
                  "writeSpiFpga: argument 1 (vec<uint8_t> data): expected an array, got \"data\"");
}

TEST_F(EndToEndTest, RefusesStructWithMissingField) {
    expectRefused(
            {"call", "setVeskLogConfigure",
             R"({"level": "D", "base": "/data/log", "mode": "ring", "total_size": "64M"})"},
            "setVeskLogConfigure: argument 1 (VeskLogInfo info): missing field \"once_size\"");
}

TEST_F(EndToEndTest, RefusesStructWithUnknownField) {
    expectRefused({"call", "setVeskLogConfigure",
                   R"({"level": "D", "base": "/data/log", "mode": "ring", "total_size": "64M",)"
                   R"( "once_size": "4M", "onceSize": "4M"})"},
                  "setVeskLogConfigure: argument 1 (VeskLogInfo info): unknown field \"onceSize\"");
}

// A serial channel lives as long as the service's process: while a shell runs, its peer link is
// in the root; when the shell ends, the board removes it as a service's process ends.
TEST_F(EndToEndTest, AShellsSerialChannelIsGoneWithIt) {
    Outcome outcome = run({"shell"}, "openSerialPort232 9600 8 1 0\n");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "{\"method\":\"openSerialPort232\",\"return\":0,\"callbacks\":[]}\n");
    struct stat st;
    EXPECT_NE(0, lstat((root / "/dev/ttyVESK232").c_str(), &st));
    EXPECT_THAT(journalFunctions(), ElementsAre("bi_init_product_config", "bi_serial_232_open"));
}

TEST_F(EndToEndTest, RefusesUnreadableJson) {
    Outcome outcome = run({"call", "setRtcBootTime", "[2024, 1,"});
    EXPECT_EQ(outcome.status, 2);
    ASSERT_EQ(outcome.errLines().size(), 1u);
    EXPECT_EQ(outcome.err,
              "veskdm: setRtcBootTime: argument 1 (vec<uint32_t> time): expected an array "
              "(vec<uint32_t>), each element an integer from 0 to 4294967295 (uint32_t), got "
              "\"[2024, 1,\", which is not JSON: it ends before its value does\n");
    EXPECT_EQ(vesk::test::readFile(journalFile), "");
}

}  // namespace
}  // namespace veskdm::test
