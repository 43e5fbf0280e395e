// veskdm methods, call and shell as a user runs them, against the stand-in implementation
// library (which records each factory and method call in a file).
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <string.h>

#include "InProcessRunner.h"
#include "InterfaceSlots.h"

namespace veskdm::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;
using ::testing::StartsWith;

class CommandLineTest : public ::testing::Test {
  protected:
    CommandLineTest() {
        veskdm.environment = {{"VESK_IMPL_LIB", VESKDM_FAKE_IMPL}, {"VESK_FAKE_CALLS", callsFile}};
    }

    // What the stand-in library saw, one line per factory or method call.
    std::vector<std::string> calls() const { return splitLines(vesk::test::readFile(callsFile)); }

    // A bad command line: status 2, one line on stderr, nothing loaded or called.
    void expectRefused(const std::vector<std::string>& args, const std::string& message) {
        Outcome outcome = veskdm.run(args);
        EXPECT_EQ(outcome.status, 2) << args[1];
        EXPECT_THAT(outcome.errLines(), ElementsAre("veskdm: " + message));
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(calls(), ElementsAre());
    }

    vesk::test::TempRoot root;
    std::string callsFile = root.path() + "/fake-calls";
    InProcessRunner veskdm{root};
};

TEST_F(CommandLineTest, MethodsListsEverySlotInOrder) {
    Outcome outcome = veskdm.run({"methods"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    std::vector<std::string> lines = outcome.outLines();
    ASSERT_EQ(lines.size(), std::size(kSlots));
    for (size_t i = 0; i < lines.size(); ++i) {
        EXPECT_THAT(lines[i],
                    StartsWith(std::to_string(kSlots[i].slot) + " " + kSlots[i].name + "("));
    }
    EXPECT_EQ(lines[2], "3 setSysLedState(int32_t state) -> int32_t");
    EXPECT_EQ(lines[92], "93 getCpuStatus() -> void, callback(CpuStatus status)");
    EXPECT_THAT(calls(), ElementsAre());  // listing loads nothing
}

TEST_F(CommandLineTest, CallSetterThenGetterInOneShell) {
    Outcome outcome = veskdm.run({"shell"}, "setSysLedState 3\ngetSysLedState\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.outLines(),
                ElementsAre(R"({"method":"setSysLedState","return":0,"callbacks":[]})",
                            R"({"method":"getSysLedState","return":3,"callbacks":[]})"));
    EXPECT_THAT(calls(), ElementsAre("fetch default", "setSysLedState 3", "getSysLedState"));
}

TEST_F(CommandLineTest, CallPrintsOneJsonLine) {
    Outcome outcome = veskdm.run({"call", "setSysLedState", "3"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "{\"method\":\"setSysLedState\",\"return\":0,\"callbacks\":[]}\n");
    EXPECT_THAT(calls(), ElementsAre("fetch default", "setSysLedState 3"));
}

TEST_F(CommandLineTest, CallTakesNegativeNumbers) {
    Outcome outcome = veskdm.run({"call", "setSysLedState", "-1"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(calls(), ElementsAre("fetch default", "setSysLedState -1"));
}

TEST_F(CommandLineTest, CallFloatResult) {
    Outcome outcome = veskdm.run({"call", "getBoardVoltage"});
    EXPECT_EQ(outcome.out, "{\"method\":\"getBoardVoltage\",\"return\":12.15,\"callbacks\":[]}\n");
}

TEST_F(CommandLineTest, CallStructThroughTheCallback) {
    Outcome outcome = veskdm.run({"call", "getCpuStatus"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out,
              "{\"method\":\"getCpuStatus\",\"return\":null,\"callbacks\":[[{\"usr\":12.5,"
              "\"nic\":0.1,\"sys\":3.3,\"idle\":80.0,\"iowait\":0.33333334,\"irq\":0.0,"
              "\"softirq\":2.75,\"temperature\":47}]]}\n");
}

TEST_F(CommandLineTest, CallKeepsEveryCallbackInvocation) {
    Outcome outcome = veskdm.run({"call", "readSpiFpga", "3"});
    EXPECT_EQ(outcome.out,
              "{\"method\":\"readSpiFpga\",\"return\":null,\"callbacks\":[[3,[160,161,162]],"
              "[-1,[]]]}\n");
}

TEST_F(CommandLineTest, CallWithByteVectorAndStruct) {
    EXPECT_EQ(veskdm.run({"call", "writeSerialPort232", "[1, 2, 255]"}).status, 0);
    EXPECT_EQ(veskdm.run({"call", "setVeskLogConfigure",
                          R"({"level": "D", "base": "/data/log", "mode": "ring",)"
                          R"( "total_size": "64M", "once_size": "4M"})"})
                      .status,
              0);
    EXPECT_THAT(calls(), ElementsAre("fetch default", "writeSerialPort232 1 2 255", "fetch default",
                                     "setVeskLogConfigure D|/data/log|ring|64M|4M"));
}

TEST_F(CommandLineTest, CallWithBareWordString) {
    EXPECT_EQ(veskdm.run({"call", "startWatchDog", "/dev/watchdog", "30"}).status, 0);
    EXPECT_THAT(calls(), ElementsAre("fetch default", "startWatchDog /dev/watchdog 30"));
}

TEST_F(CommandLineTest, LocalCallbackObject) {
    Outcome outcome = veskdm.run({"call", "hwRegistCallback", "callback"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.outLines(),
                ElementsAre(R"({"notification":{"what":7,"message":"hello","payload":[1,2]}})",
                            R"({"method":"hwRegistCallback","return":0,"callbacks":[]})"));
    EXPECT_EQ(veskdm.run({"call", "hwRegistCallback", "null"}).status, 0);
    EXPECT_THAT(calls(), ElementsAre("fetch default", "hwRegistCallback object", "fetch default",
                                     "hwRegistCallback null"));
}

TEST_F(CommandLineTest, ShellRunsManyLinesOnOneObject) {
    Outcome outcome = veskdm.run({"shell"},
                                 "# a comment\n"
                                 "\n"
                                 "   \n"
                                 "setSysLedState 7\n"
                                 "writeSerialPort232 [1, 2, 3]   # three bytes\n"
                                 "setVeskLogConfigure {\"level\": \"I\", \"base\": \"a b\", "
                                 "\"mode\": \"m\", \"total_size\": \"1\", \"once_size\": \"2\"}\n"
                                 "startWatchDog '/dev/watch dog' 5\n"
                                 "getSysLedState");  // last line without a line end
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(outcome.outLines(),
                ElementsAre(R"({"method":"setSysLedState","return":0,"callbacks":[]})",
                            R"({"method":"writeSerialPort232","return":3,"callbacks":[]})",
                            R"({"method":"setVeskLogConfigure","return":0,"callbacks":[]})",
                            R"({"method":"startWatchDog","return":0,"callbacks":[]})",
                            R"({"method":"getSysLedState","return":7,"callbacks":[]})"));
    EXPECT_THAT(calls(), ElementsAre("fetch default", "setSysLedState 7",
                                     "writeSerialPort232 1 2 3", "setVeskLogConfigure I|a b|m|1|2",
                                     "startWatchDog /dev/watch dog 5", "getSysLedState"));
}

TEST_F(CommandLineTest, ShellBadLineIsSkippedAndTheStatusIs2) {
    Outcome outcome = veskdm.run({"shell"},
                                 "setSysLedState 4\n"
                                 "setSysLedState 2147483648\n"
                                 "noSuchMethod\n"
                                 "writeSerialPort232 [1, 2\n"
                                 "getSysLedState\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errLines(),
                ElementsAre("veskdm: line 2: setSysLedState: argument 1 (int32_t state): expected "
                            "an integer from -2147483648 to 2147483647 (int32_t), got 2147483648 "
                            "(out of range)",
                            "veskdm: line 3: unknown method \"noSuchMethod\" (veskdm methods lists "
                            "them)",
                            "veskdm: line 4: '[' is not closed"));
    EXPECT_THAT(outcome.outLines(),
                ElementsAre(R"({"method":"setSysLedState","return":0,"callbacks":[]})",
                            R"({"method":"getSysLedState","return":4,"callbacks":[]})"));
    EXPECT_THAT(calls(), ElementsAre("fetch default", "setSysLedState 4", "getSysLedState"));
}

TEST_F(CommandLineTest, ShellOfOnlyBadLinesLoadsNothing) {
    Outcome outcome = veskdm.run({"shell"}, "setSysLedState x\nsetAudioEnable 1 256\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errLines().size(), 2u);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(calls(), ElementsAre());
}

TEST_F(CommandLineTest, EmptyShell) {
    Outcome outcome = veskdm.run({"shell"}, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(calls(), ElementsAre());
}

TEST_F(CommandLineTest, MissingLibraryIsAFailureNotBadInput) {
    veskdm.environment = {{"VESK_IMPL_LIB", root.path() + "/none.so"}};
    Outcome outcome = veskdm.run({"call", "getSysLedState"});
    EXPECT_EQ(outcome.status, 1);
    ASSERT_EQ(outcome.errLines().size(), 1u);
    EXPECT_THAT(outcome.err, StartsWith("veskdm: cannot load " + root.path() + "/none.so: "));
    EXPECT_EQ(outcome.out, "");
}

// ---- bad input: status 2, one line, nothing loaded ----

TEST_F(CommandLineTest, RefusesUnknownMethod) {
    expectRefused({"call", "setSysLed", "3"},
                  "unknown method \"setSysLed\" (veskdm methods lists them)");
}

TEST_F(CommandLineTest, RefusesWrongArgumentCount) {
    expectRefused({"call", "setSysLedState"},
                  "setSysLedState takes 1 argument (int32_t state), got 0");
    expectRefused({"call", "getSysLedState", "1"}, "getSysLedState takes no arguments, got 1");
}

TEST_F(CommandLineTest, RefusesUint8OutOfRange) {
    expectRefused({"call", "setAudioEnable", "256", "1"},
                  "setAudioEnable: argument 1 (uint8_t channel): expected an integer from 0 to "
                  "255 (uint8_t), got 256 (out of range)");
}

TEST_F(CommandLineTest, RefusesNegativeUint32) {
    expectRefused({"call", "setOtgMode", "-1"},
                  "setOtgMode: argument 1 (uint32_t mode): expected an integer from 0 to "
                  "4294967295 (uint32_t), got -1 (out of range)");
}

TEST_F(CommandLineTest, RefusesInt32OutOfRange) {
    expectRefused({"call", "setSysLedState", "2147483648"},
                  "setSysLedState: argument 1 (int32_t state): expected an integer from "
                  "-2147483648 to 2147483647 (int32_t), got 2147483648 (out of range)");
}

TEST_F(CommandLineTest, RefusesNonIntegralNumber) {
    expectRefused({"call", "setSysLedState", "1.5"},
                  "setSysLedState: argument 1 (int32_t state): expected an integer from "
                  "-2147483648 to 2147483647 (int32_t), got 1.5 (not an integer)");
}

TEST_F(CommandLineTest, RefusesWrongType) {
    expectRefused({"call", "feedWatchDog", "12"},
                  "feedWatchDog: argument 1 (string device): expected a string, got 12");
}

TEST_F(CommandLineTest, RefusesStructWithMissingField) {
    expectRefused({"call", "setVeskLogConfigure", R"({"level": "D"})"},
                  "setVeskLogConfigure: argument 1 (VeskLogInfo info): missing field \"base\"");
}

TEST_F(CommandLineTest, RefusesStructWithUnknownField) {
    expectRefused({"call", "setVeskLogConfigure",
                   R"({"level":"D","base":"b","mode":"m","total_size":"1","once_size":"2","x":0})"},
                  "setVeskLogConfigure: argument 1 (VeskLogInfo info): unknown field \"x\"");
}

TEST_F(CommandLineTest, RefusesUnreadableJson) {
    Outcome outcome = veskdm.run({"call", "writeSerialPort232", "[1, 2"});
    EXPECT_EQ(outcome.status, 2);
    ASSERT_EQ(outcome.errLines().size(), 1u);
    EXPECT_EQ(outcome.err,
              "veskdm: writeSerialPort232: argument 1 (vec<uint8_t> data): expected an array "
              "(vec<uint8_t>), each element an integer from 0 to 255 (uint8_t), got \"[1, 2\", "
              "which is not JSON: it ends before its value does\n");
    EXPECT_THAT(calls(), ElementsAre());
}

TEST_F(CommandLineTest, RefusesMissingMethod) {
    Outcome outcome = veskdm.run({"call"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errLines().size(), 1u);
    EXPECT_THAT(calls(), ElementsAre());
}

// ---- hostile input ----

std::string nested(size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

TEST_F(CommandLineTest, JsonNestedDeeperThan64IsBadInput) {
    // 100000 levels would overflow the stack of a recursive printer: refused before parsing.
    for (size_t depth : {65u, 100000u}) {
        expectRefused({"call", "writeSerialPort232", nested(depth)},
                      "writeSerialPort232: argument 1 (vec<uint8_t> data): JSON nested deeper "
                      "than 64 levels");
    }
}

TEST_F(CommandLineTest, JsonNestedExactly64IsReadAsJson) {
    // 64 levels are read; the value is then no byte vector (the type check speaks).
    Outcome outcome = veskdm.run({"call", "writeSerialPort232", nested(64)});
    EXPECT_EQ(outcome.status, 2);
    ASSERT_EQ(outcome.errLines().size(), 1u);
    EXPECT_THAT(outcome.err, ::testing::Not(::testing::HasSubstr("nested deeper")));
    EXPECT_THAT(outcome.err, StartsWith("veskdm: writeSerialPort232: argument 1"));
}

TEST_F(CommandLineTest, BracketsInsideAStringDoNotCount) {
    Outcome outcome = veskdm.run({"call", "feedWatchDog", "\"" + std::string(100, '[') + "\""});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_THAT(calls(), ElementsAre("fetch default", "feedWatchDog"));
}

TEST_F(CommandLineTest, DeepJsonInAShellLineIsThatLineOnly) {
    Outcome outcome =
            veskdm.run({"shell"}, "writeSerialPort232 " + nested(100000) + "\nsetSysLedState 4\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errLines(),
                ElementsAre("veskdm: line 1: writeSerialPort232: argument 1 (vec<uint8_t> data): "
                            "JSON nested deeper than 64 levels"));
    EXPECT_THAT(outcome.outLines(),
                ElementsAre(R"({"method":"setSysLedState","return":0,"callbacks":[]})"));
    EXPECT_THAT(calls(), ElementsAre("fetch default", "setSysLedState 4"));
}

TEST_F(CommandLineTest, ControlBytesInAShellLineAreBadInputForThatLine) {
    std::string input = std::string("setSysLedState 1") + '\0' + " 2\n" + "setSysLedState 5\x01\n" +
                        "setSysLedState\t6\n" + "setSysLedState 7\x7f\n" + "setSysLedState 8\r\n";
    Outcome outcome = veskdm.run({"shell"}, input);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errLines(), ElementsAre("veskdm: line 1: control byte 0x00 at column 17",
                                                "veskdm: line 2: control byte 0x01 at column 17",
                                                "veskdm: line 4: control byte 0x7f at column 17"));
    // A tab separates words; a carriage return that ends the line is its CRLF line end.
    EXPECT_THAT(calls(), ElementsAre("fetch default", "setSysLedState 6", "setSysLedState 8"));
}

TEST_F(CommandLineTest, AnAllocationThatFailsIsStatusOneAndOneLine) {
    // The stand-in fails to allocate for sizes past 1 GiB, as an allocator out of memory does.
    Outcome outcome = veskdm.run({"call", "readSpiFpga", "2147483647"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errLines(),
                ElementsAre("veskdm: out of memory: a size in the command cannot be allocated"));
    EXPECT_EQ(outcome.out, "");
}

TEST_F(CommandLineTest, ABufferLongerThanAVectorHoldsIsStatusOneAndOneLine) {
    // The stand-in refuses lengths a 32-bit ABI's std::vector cannot hold, as its length_error.
    Outcome outcome = veskdm.run({"call", "readBlockDataDefined", "2147483648", "0"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errLines(),
                ElementsAre("veskdm: out of memory: a size in the command cannot be allocated"));
    EXPECT_EQ(outcome.out, "");
    outcome = veskdm.run({"shell"}, "readBlockDataDefined 2147483648 0\nsetSysLedState 9\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errLines(),
                ElementsAre("veskdm: line 1: readBlockDataDefined: out of memory: a size in the "
                            "line cannot be allocated"));
    EXPECT_THAT(outcome.outLines(),
                ElementsAre(R"({"method":"setSysLedState","return":0,"callbacks":[]})"));
}

TEST_F(CommandLineTest, AResultTooLongToPrintIsStatusOneAndOneLine) {
    // 2^24 + 1 bytes: the service has them, their printing is past the tool's bound.
    Outcome outcome = veskdm.run({"call", "readSpiFpga", "16777217"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errLines(),
                ElementsAre("veskdm: out of memory: a size in the command cannot be allocated"));
    EXPECT_EQ(outcome.out, "");
}

TEST_F(CommandLineTest, AnAllocationThatFailsInAShellEndsOnlyThatLine) {
    Outcome outcome = veskdm.run({"shell"}, "readSpiFpga 2147483647\nsetSysLedState 9\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errLines(),
                ElementsAre("veskdm: line 1: readSpiFpga: out of memory: a size in the line "
                            "cannot be allocated"));
    EXPECT_THAT(outcome.outLines(),
                ElementsAre(R"({"method":"setSysLedState","return":0,"callbacks":[]})"));
}

// ---- a service that ends its process ----

TEST_F(CommandLineTest, AServiceEndedBySignalIsOneLineWithItsLastWords) {
    Outcome outcome = veskdm.run({"call", "setPQEnable", "-15"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, std::string("veskdm: the service was ended by signal 15 (") +
                                   strsignal(SIGTERM) + "): fake: ending on a signal\n");
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(calls(), ElementsAre("fetch default", "setPQEnable -15"));
}

// The last line the process wrote itself, not an emulator's line about the signal.
TEST_F(CommandLineTest, AnAbortIsReportedWithTheProcesssLastWords) {
    Outcome outcome = veskdm.run({"call", "setPQEnable", "-6"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "veskdm: the service aborted: fake: last words\n");
    EXPECT_EQ(outcome.out, "");
}

TEST_F(CommandLineTest, AServiceThatEndsItsProcessIsOneLine) {
    Outcome outcome = veskdm.run({"call", "setPQEnable", "-3"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "veskdm: the service ended its process with status 3\n");
    EXPECT_EQ(outcome.out, "");
}

// The shell stops at the line that ended the service and names it; earlier answers stand.
TEST_F(CommandLineTest, AShellStopsWhereTheServiceEnded) {
    Outcome outcome = veskdm.run({"shell"}, "setSysLedState 5\nsetPQEnable -3\ngetSysLedState\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "veskdm: line 2: the service ended its process with status 3\n");
    EXPECT_THAT(outcome.outLines(),
                ElementsAre(R"({"method":"setSysLedState","return":0,"callbacks":[]})"));
    EXPECT_THAT(calls(), ElementsAre("fetch default", "setSysLedState 5", "setPQEnable -3"));
}

// The service's process is the run's child: what it changes in its own process is gone after
// the run, so that every run (and every test) starts from the same state.
TEST_F(CommandLineTest, EachRunHasAServiceProcessOfItsOwn) {
    EXPECT_EQ(veskdm.run({"call", "setSysLedState", "6"}).status, 0);
    EXPECT_EQ(veskdm.run({"call", "getSysLedState"}).out,
              "{\"method\":\"getSysLedState\",\"return\":0,\"callbacks\":[]}\n");
}

}  // namespace
}  // namespace veskdm::test
