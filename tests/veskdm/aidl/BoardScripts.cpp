#include "BoardScripts.h"

#include <stdexcept>

#include "ArgumentSamples.h"
#include "vesk/sim/ScriptCheck.h"

namespace veskdm::test {

using nlohmann::json;

namespace {

bool boardTakes(const std::string& function, const json& entry) {
    std::string error;
    return vesk::sim::checkScript(json{{function, entry}}, &error);
}

// `count` bytes 0x11, 0x22, ... 0x77, 0x11, ... as the hex of an "out": texts of them are
// UTF-8 (texts that are not have a script of their own, "text not UTF-8").
std::string hexBytes(int count) {
    static const char digits[] = "0123456789abcdef";
    std::string hex;
    for (int i = 0; i < count; ++i) {
        int byte = 0x11 * (i % 7 + 1);
        hex += digits[byte >> 4];
        hex += digits[byte & 0xf];
    }
    return hex;
}

// More than any record of the board holds.
constexpr int kLargerThanAnyRecord = 8192;

// The bytes of the function's fixed-size output record, 0 when the caller gives its size (any
// "out" is taken then) or it has none.
int recordSize(const std::string& function) {
    auto takes = [&](int bytes) {
        return boardTakes(function, json{{"return", 0}, {"out", hexBytes(bytes)}});
    };
    if (!takes(1) || takes(kLargerThanAnyRecord)) return 0;
    int low = 1;                      // taken
    int high = kLargerThanAnyRecord;  // refused
    while (high - low > 1) {
        int middle = (low + high) / 2;
        (takes(middle) ? low : high) = middle;
    }
    return low;
}

// Every function answers `returned`; a function with an output buffer also gets bytes: `outBytes`
// where the caller gives the size, its whole record (`recordShare` of it) otherwise, so that
// every field of a record is seen (the process record gets a record of its own).
json everyFunction(int returned, int outBytes, double recordShare = 1.0) {
    json script = json::object();
    for (const std::string& function : boardFunctions()) {
        json entry{{"return", returned}};
        int record = recordSize(function);
        int bytes = record > 0 ? static_cast<int>(record * recordShare) : outBytes;
        json withBytes{{"return", returned}, {"out", hexBytes(bytes)}};
        json withRecord{{"return", returned},
                        {"out",
                         {{"name1", "vesk"},
                          {"name2", "player"},
                          {"name3", "board"},
                          {"block", hexBytes(16)},
                          {"value64", 4294967297ULL},
                          {"valueReal", 2.5},
                          {"value32", 4294967295ULL}}}};
        if (outBytes > 0 && boardTakes(function, withBytes)) {
            script[function] = withBytes;
        } else if (outBytes > 0 && boardTakes(function, withRecord)) {
            script[function] = withRecord;
        } else {
            script[function] = entry;
        }
    }
    return script;
}

}  // namespace

std::vector<std::string> boardFunctions() {
    return vesk::sim::scriptableFunctions();
}

const std::vector<BoardScript>& boardScripts() {
    static const std::vector<BoardScript> scripts = {
            {"value", everyFunction(kSampleReadSize, kSampleReadSize)},
            {"failure", everyFunction(-1, 0)},
            {"short read", everyFunction(kSampleReadSize / 2, kSampleReadSize / 2, 0.5)},
            {"over-long read", everyFunction(100000, 64)},
    };
    return scripts;
}

const std::vector<BoardScript>& otherBoardScripts() {
    static const std::vector<BoardScript> scripts = {
            // The watchdog's device name: ASCII letters between sequences that are not UTF-8
            // (FF; C3 before a letter; C0 AF; ED A0 80; F4 90 80 80; 80; E2 82 before a letter)
            // and some that are (C3 A9, E2 82 AC, F0 9F 98 80).
            {"text not UTF-8",
             {{"bi_watchdog_parse",
               {{"return", 0},
                {"out",
                 "41ff42c343c0af44eda08045f490808046c3a9e282acf09f98804780"
                 "48e28249"}}}}},
    };
    return scripts;
}

const BoardScript& boardScript(const std::string& name) {
    for (const BoardScript& script : boardScripts()) {
        if (script.name == name) return script;
    }
    for (const BoardScript& script : otherBoardScripts()) {
        if (script.name == name) return script;
    }
    throw std::logic_error("no board script " + name);
}

}  // namespace veskdm::test
