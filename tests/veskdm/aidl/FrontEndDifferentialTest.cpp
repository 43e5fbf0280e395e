// The two front ends driven by one table: every method of veskdm's method table, with arguments
// made from its signature, under each board script, through the HIDL facade in-process and
// through the AIDL service across processes (veskdm's client of it), each on a fresh root of its
// own. Answers, board calls and log lines (priority, tag, text) must be equal, except where the
// front ends differ by design: those are named in one table with their reason, and each side is
// checked on its own there.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "AidlFrontEnd.h"
#include "ArgumentSamples.h"
#include "BoardScripts.h"
#include "HidlFrontEnd.h"
#include "MethodTable.h"
#include "RunVeskdm.h"
#include "TestRoot.h"

namespace veskdm::test {
namespace {

using nlohmann::json;

// A log configuration whose once_size has one character more than its field in the board's
// record takes.
const char kNineCharacterOnceSize[] =
        R"({"level":"D","base":"/data/log","mode":"ring","total_size":"64M","once_size":"123456789"})";

json endedBySignal(int signal) {
    return json{{"ended by signal", signal}};
}

json refused(const std::string& message) {
    return json{{"refused", message}};
}

struct ByDesignDifference {
    std::string script;              // the board script it shows under
    std::vector<std::string> words;  // the call; the method alone: its generated arguments
    json hidl;                       // the HIDL facade's answer
    json aidl;                       // the AIDL service's answer
    std::string reason;
};

// Where the front ends differ by design.
const std::vector<ByDesignDifference>& byDesignDifferences() {
    static const std::vector<ByDesignDifference> table = {
            {"failure",
             {"getResolutionParametersList"},
             endedBySignal(SIGABRT),
             json::parse(R"({"method":"getResolutionParametersList","return":null,)"
                         R"("callbacks":[[[]]]})"),
             "a negative count of the board's resolution list: the HIDL facade ends its "
             "process (its vector cannot hold the count); the AIDL list is empty"},
            {"value",
             {"readSpiFpga", "-1"},
             endedBySignal(SIGABRT),
             refused("readSpiFpga: size is -1, outside its range 0 to 1040384"),
             "a negative SPI size: HIDL's vector cannot hold it and the facade ends its process; "
             "the service refuses any size a binder reply cannot carry"},
            {"value",
             {"setVeskLogConfigure", kNineCharacterOnceSize},
             endedBySignal(SIGABRT),
             refused("setVeskLogConfigure: info.once_size: 9 bytes, the record has room for 8"),
             "a log field past its room in the board's record: the C library's overflow check "
             "ends the HIDL process; the service checks the field before it copies"},
            {"value",
             {"readBlockingSerialPort485", "1040385", "10"},
             json::parse(R"({"method":"readBlockingSerialPort485","return":null,)"
                         R"("callbacks":[[[17,34,51,68],4]]})"),
             refused("readBlockingSerialPort485: data_size is 1040385, outside its range 0 to "
                     "1040384"),
             "a uint32_t size past the largest binder reply on a board: the passthrough HIDL "
             "service allocates it in the caller's process; over binder it could never come "
             "back, and the service refuses it"},
    };
    return table;
}

// The words of a table entry's call.
std::vector<std::string> callOf(const ByDesignDifference& difference) {
    if (difference.words.size() > 1) return difference.words;
    return sampleArguments(*findMethod(difference.words[0]));
}

const ByDesignDifference* differenceFor(const std::string& script,
                                        const std::vector<std::string>& words) {
    for (const ByDesignDifference& difference : byDesignDifferences()) {
        if (difference.script == script && callOf(difference) == words) return &difference;
    }
    return nullptr;
}

struct Compared {
    std::vector<std::string> words;
    json hidl;
    json aidl;
};

// The service's trace lines at debug level, on every root: the log has a line per call.
void logEverything(const std::string& root) {
    VeskdmRunner veskdm(root, root);
    veskdm.environment = {"VESK_IMPL_LIB=", "VESK_BOARD_SCRIPT="};
    Outcome set = veskdm.run({"prop", "set", "persist.vesk.device.log.level", "D"});
    ASSERT_EQ(set.status, 0) << set.err;
    unlink((root + "/veskdm.stdin").c_str());
    unlink((root + "/veskdm.stderr").c_str());
}

// Makes the calls in order through both front ends, under `script`, on two fresh roots. A call
// that ends the HIDL facade's process restarts both, as init restarts the service on a board.
std::vector<Compared> runBoth(const BoardScript& script,
                              const std::vector<std::vector<std::string>>& calls) {
    vesk::test::TempRoot hidlRoot;
    vesk::test::TempRoot aidlRoot;
    logEverything(hidlRoot.path());
    logEverything(aidlRoot.path());
    auto hidl = std::make_unique<HidlFrontEnd>(hidlRoot.path(), script.script);
    AidlFrontEnd aidl(aidlRoot.path(), script.script);
    std::vector<Compared> compared;
    if (!aidl.ready()) {
        ADD_FAILURE() << "the AIDL service did not start under the script \"" << script.name << "\"";
        return compared;
    }
    for (const std::vector<std::string>& words : calls) {
        if (hidl->ended()) {
            // No binder thread of this process lives while it forks.
            aidl.stop();
            hidl = std::make_unique<HidlFrontEnd>(hidlRoot.path(), script.script);
            aidl.start();
        }
        json fromHidl = hidl->call(words);
        json fromAidl = aidl.call(words);
        compared.push_back({words, fromHidl, fromAidl});
    }
    return compared;
}

std::string describe(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
    return text;
}

class FrontEndDifferentialTest : public ::testing::TestWithParam<std::string> {};

TEST_P(FrontEndDifferentialTest, EveryMethodAnswersAlikeThroughBothFrontEnds) {
    const BoardScript& script = boardScript(GetParam());
    std::vector<std::vector<std::string>> calls;
    for (const MethodBinder& method : methodTable()) calls.push_back(sampleArguments(method));
    ASSERT_EQ(calls.size(), 162u);

    std::vector<Compared> compared = runBoth(script, calls);
    ASSERT_EQ(compared.size(), calls.size());
    size_t boardCalls = 0;
    size_t logLines = 0;
    for (const Compared& call : compared) {
        SCOPED_TRACE("under \"" + script.name + "\": " + describe(call.words));
        if (const ByDesignDifference* difference = differenceFor(script.name, call.words)) {
            EXPECT_EQ(call.hidl.at("answer"), difference->hidl) << difference->reason;
            EXPECT_EQ(call.aidl.at("answer"), difference->aidl) << difference->reason;
            continue;
        }
        EXPECT_EQ(call.hidl.at("answer"), call.aidl.at("answer"));
        EXPECT_EQ(call.hidl.at("journal"), call.aidl.at("journal"));
        EXPECT_EQ(call.hidl.at("log"), call.aidl.at("log"));
        boardCalls += call.aidl.at("journal").size();
        logLines += call.aidl.at("log").size();
    }
    // The table reached the board and the log: most methods are one board call and a trace
    // line each.
    EXPECT_GE(boardCalls, 120u);
    EXPECT_GE(logLines, 162u);
}

INSTANTIATE_TEST_SUITE_P(BoardScripts, FrontEndDifferentialTest,
                         ::testing::Values("value", "failure", "short read", "over-long read"),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                             std::string name;
                             for (char c : info.param) name += isalnum(c) ? c : '_';
                             return name;
                         });

// Each by-design difference on fresh roots of its own, each side checked on its own.
TEST(FrontEndDifferences, EachSideAnswersAsTheTableSays) {
    for (const ByDesignDifference& difference : byDesignDifferences()) {
        SCOPED_TRACE(difference.reason);
        ASSERT_NE(findMethod(difference.words[0]), nullptr);
        EXPECT_NE(difference.hidl, difference.aidl) << "the table lists only differences";
        std::vector<Compared> compared =
                runBoth(boardScript(difference.script), {callOf(difference)});
        ASSERT_EQ(compared.size(), 1u);
        EXPECT_EQ(compared[0].hidl.at("answer"), difference.hidl);
        EXPECT_EQ(compared[0].aidl.at("answer"), difference.aidl);
        EXPECT_NE(compared[0].hidl.at("answer"), compared[0].aidl.at("answer"));
        // A refused call reaches neither the core nor the board.
        if (difference.aidl.contains("refused")) {
            EXPECT_EQ(compared[0].aidl.at("journal"), json::array());
        }
    }
}

// Values worked out from the script, not from either front end: under "value" every board
// function answers 4 and fills an output buffer with 11 22 33 44.
TEST(FrontEndAnchors, TheValueScriptAsTheBoardAnswersIt) {
    std::vector<Compared> compared = runBoth(
            boardScript("value"),
            {{"setSysLedState", "1"}, {"readNonBlockingSerialPort232", "4"}, {"getRelayState"}});
    ASSERT_EQ(compared.size(), 3u);
    EXPECT_EQ(compared[0].aidl.at("answer"),
              json::parse(R"({"method":"setSysLedState","return":4,"callbacks":[]})"));
    EXPECT_EQ(compared[0].aidl.at("journal"),
              json::parse(R"([{"function":"bi_sysled_set_state","args":[1],"return":4}])"));
    EXPECT_EQ(compared[1].aidl.at("answer"),
              json::parse(R"({"method":"readNonBlockingSerialPort232","return":null,)"
                          R"("callbacks":[[[17,34,51,68],4]]})"));
    EXPECT_EQ(compared[1].aidl.at("journal"),
              json::parse(R"([{"function":"bi_serial_232_nonblocking_read","args":[null,4],)"
                          R"("return":4}])"));
    EXPECT_EQ(compared[2].aidl.at("answer"),
              json::parse(R"({"method":"getRelayState","return":4,"callbacks":[]})"));
    for (const Compared& call : compared) EXPECT_EQ(call.hidl, call.aidl);
}

// A board text that is not UTF-8 (the watchdog's device name, script "text not UTF-8"): a HIDL
// string carries its bytes as they are and veskdm prints U+FFFD for each ill-formed part; an AIDL
// String is UTF-16, so the service makes the same substitution before the text leaves it. Both
// answer the text worked out by hand: a byte that starts no sequence, a lead byte without its
// continuation, an overlong form, a surrogate, a code point past U+10FFFF, a lone continuation
// and a sequence cut short each become U+FFFD per maximal part; é, € and U+1F600 pass.
TEST(FrontEndAnchors, ABoardTextThatIsNotUtf8ReadsAlikeThroughBothFrontEnds) {
    std::vector<Compared> compared = runBoth(boardScript("text not UTF-8"), {{"getWatchDogCfg"}});
    ASSERT_EQ(compared.size(), 1u);
    const json expected = json::parse(
            R"({"method":"getWatchDogCfg","return":null,"callbacks":[[{"wdtDevice":)"
            R"("A\ufffdB\ufffdC\ufffd\ufffdD\ufffd\ufffd\ufffdE\ufffd\ufffd\ufffd\ufffdF)"
            R"(\u00e9\u20ac\ud83d\ude00G\ufffdH\ufffdI","wdt_timeout":0,"wdt_interval":0}]]})");
    EXPECT_EQ(compared[0].hidl.at("answer"), expected);
    EXPECT_EQ(compared[0].aidl.at("answer"), expected);
    EXPECT_EQ(compared[0].hidl.at("journal"), compared[0].aidl.at("journal"));
    EXPECT_EQ(compared[0].hidl.at("log"), compared[0].aidl.at("log"));
}

}  // namespace
}  // namespace veskdm::test
