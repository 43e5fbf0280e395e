// Every kind of bad input to veskdm, for every kind of argument the interface has, run against
// the real implementation library on the simulated board: exit status 2, exactly one line on
// stderr, nothing on stdout, no board call (the journal is never created), no log file and the
// device root left byte for byte as it was.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <map>

#include "InProcessRunner.h"
#include "TreeSnapshot.h"

namespace veskdm::test {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

struct BadInput {
    const char* name;
    // "{root}", "{journal}", "{log}", "{file}" and "{dir}" are replaced by the test's paths.
    // Without a --root of their own, the words follow
    // --root {root} --board-journal {journal} --log {log}.
    std::vector<std::string> args;
    const char* message;  // part of the one line on stderr
    const char* input = "";
};

void PrintTo(const BadInput& bad, std::ostream* os) {
    *os << bad.name;
}

class BadInputTest : public ::testing::TestWithParam<BadInput> {
  protected:
    BadInputTest() {
        // The program's input, error and the test's files live outside the root.
        char pattern[] = "/tmp/veskdm-bad-XXXXXX";
        work = mkdtemp(pattern);
        vesk::test::writeFile(work + "/file", "not a directory\n");
        mkdir((work + "/dir").c_str(), 0755);
    }
    ~BadInputTest() override { vesk::test::runCommand("rm -rf " + shellQuote(work)); }

    std::string expand(const std::string& word) const {
        std::string out = word;
        const std::pair<std::string, std::string> names[] = {{"{root}", root.path()},
                                                             {"{journal}", work + "/journal.jsonl"},
                                                             {"{log}", work + "/log.jsonl"},
                                                             {"{file}", work + "/file"},
                                                             {"{dir}", work + "/dir"}};
        for (const auto& [key, value] : names) {
            for (size_t at; (at = out.find(key)) != std::string::npos;)
                out.replace(at, key.size(), value);
        }
        return out;
    }

    Outcome run(const BadInput& bad) const {
        std::vector<std::string> args = bad.args;
        bool ownRoot = std::find(args.begin(), args.end(), "--root") != args.end();
        if (!ownRoot)
            args.insert(args.begin(),
                        {"--root", "{root}", "--board-journal", "{journal}", "--log", "{log}"});
        for (std::string& arg : args) arg = expand(arg);
        EnvironmentScope environment(
                {{"VESK_IMPL_LIB", ""}, {"VESK_BOARD_SCRIPT", ""}, {"VESK_BOARD_JOURNAL", ""}});
        Outcome outcome = runInProcess(args, bad.input);
        return outcome;
    }

    vesk::test::TempRoot root;
    std::string work;
};

TEST_P(BadInputTest, StatusTwoOneLineNothingCalledNothingWritten) {
    const BadInput& bad = GetParam();
    std::map<std::string, std::string> before = treeSnapshot(root.path());

    Outcome outcome = run(bad);

    EXPECT_EQ(2, outcome.status) << outcome.err;
    ASSERT_EQ(1u, outcome.errLines().size()) << outcome.err;
    EXPECT_THAT(outcome.err, StartsWith("veskdm: "));
    EXPECT_THAT(outcome.err, HasSubstr(expand(bad.message)));
    EXPECT_EQ("", outcome.out);
    // No board call: the journal was never opened, so it does not exist.
    struct stat st;
    EXPECT_NE(0, stat((work + "/journal.jsonl").c_str(), &st));
    // Nothing logged either: the log file is made at the first line.
    EXPECT_NE(0, stat((work + "/log.jsonl").c_str(), &st));
    EXPECT_EQ(before, treeSnapshot(root.path()));
}

const BadInput kBadInputs[] = {
        // ---- the method ----
        {"UnknownMethod", {"call", "getSysLed"}, "unknown method \"getSysLed\""},
        {"MissingMethod", {"call"}, "METHOD is required"},
        {"UnknownCommand",
         {"calls", "getSysLedState"},
         "unknown command \"calls\" (commands: prop, timing, env, methods, call, shell, board, "
         "debug, serve)"},
        {"UnknownGlobalOption",
         {"--bogus", "call", "getSysLedState"},
         "unknown option \"--bogus\" (options: -h/--help, --root, --log, --board-journal, "
         "--board-script, --via, -v/--verbose)"},
        {"UnknownWayToTheService",
         {"--via", "hidl", "call", "getSysLedState"},
         "--via: hidl not in {passthrough,aidl}"},
        {"UnknownSubcommand",
         {"prop", "bogus"},
         "prop: unknown command \"bogus\" (commands: get, set, list)"},
        {"MissingCommand",
         {},
         "a command is required: prop, timing, env, methods, call, shell, board, debug"},
        {"MissingSubcommand", {"env"}, "env: a command is required: print, get, set"},
        {"UnknownOptionOfACommand",
         {"env", "print", "--devise", "x"},
         "env print: unknown option \"--devise\" (options: -h/--help, --device)"},
        // ---- the number of arguments ----
        {"ArgumentToAMethodWithout", {"call", "getSysLedState", "1"}, "takes no arguments, got 1"},
        {"TooFewArguments", {"call", "setColorLedState", "1", "2"}, "takes 3 arguments"},
        {"TooManyArguments", {"call", "setColorLedState", "1", "2", "3", "4"}, "takes 3 arguments"},
        {"ArgumentToACallbackMethod", {"call", "getCpuStatus", "1"}, "takes no arguments, got 1"},
        {"MissingArgumentBeforeACallback", {"call", "readSpiFpga"}, "takes 1 argument"},
        // ---- int32_t ----
        {"Int32AboveRange", {"call", "setSysLedState", "2147483648"}, "(int32_t state)"},
        {"Int32BelowRange", {"call", "setSysLedState", "-2147483649"}, "(int32_t state)"},
        {"Int32FromAWord", {"call", "setSysLedState", "on"}, "(int32_t state)"},
        {"Int32FromTrue", {"call", "setSysLedState", "true"}, "(int32_t state)"},
        {"Int32FromNull", {"call", "setSysLedState", "null"}, "(int32_t state)"},
        {"Int32FromAnArray", {"call", "setSysLedState", "[1]"}, "(int32_t state)"},
        {"Int32FromAFraction", {"call", "setSysLedState", "1.5"}, "not an integer"},
        {"Int32FromAWholeFloat", {"call", "setSysLedState", "3.0"}, "written with a fraction"},
        // ---- uint32_t ----
        {"Uint32Negative", {"call", "setUsbState", "-1", "1"}, "(uint32_t index)"},
        {"Uint32AboveRange", {"call", "setUsbState", "0", "4294967296"}, "(uint32_t enable)"},
        // ---- uint8_t ----
        {"Uint8AboveRange", {"call", "setAudioEnable", "256", "1"}, "(uint8_t channel)"},
        {"Uint8Negative", {"call", "setAudioEnable", "1", "-1"}, "(uint8_t enable)"},
        // ---- int8_t ----
        {"Int8AboveRange",
         {"call", "openSerialPort485", "9600", "8", "1", "128"},
         "(int8_t parity)"},
        {"Int8BelowRange",
         {"call", "openSerialPort485", "9600", "8", "1", "-129"},
         "(int8_t parity)"},
        // ---- uint16_t ----
        {"Uint16AboveRange", {"call", "getEdidByModel", "65536", "1080", "60"}, "(uint16_t width)"},
        {"Uint16Negative", {"call", "getEdidByModel", "1920", "-1", "60"}, "(uint16_t height)"},
        // ---- float ----
        {"FloatAboveRange", {"call", "getEdidByModel", "1920", "1080", "1e39"}, "(float refresh)"},
        {"FloatBelowRange",
         {"call", "getEdidByModel", "1920", "1080", "-3.5e38"},
         "(float refresh)"},
        {"FloatFromAWord", {"call", "getEdidByModel", "1920", "1080", "sixty"}, "(float refresh)"},
        // ---- string ----
        {"StringFromANumber", {"call", "startWatchDog", "5", "30"}, "(string device)"},
        {"StringFromAnArray", {"call", "checkBlock", "[\"/dev/a\"]"}, "(string path)"},
        // ---- vec<uint8_t> ----
        {"BytesFromAWord", {"call", "writeSpiFpga", "data"}, "expected an array"},
        {"ByteAboveRange", {"call", "writeSpiFpga", "[1, 256]"}, "(vec<uint8_t> data)"},
        {"ByteNegative", {"call", "writeSpiFpga", "[-1]"}, "(vec<uint8_t> data)"},
        {"ByteFraction", {"call", "writeSerialPort232", "[1.5]"}, "(vec<uint8_t> data)"},
        {"BytesFromAnObject", {"call", "writeSerialPort232", "{\"a\": 1}"}, "expected an array"},
        // ---- vec<uint32_t> ----
        {"WordAboveRange", {"call", "setRtcBootTime", "[2024, 4294967296]"}, "(vec<uint32_t> time)"},
        // ---- struct ----
        {"StructMissingField",
         {"call", "setVeskLogConfigure",
          R"({"level": "D", "base": "b", "mode": "m", "total_size": "1"})"},
         "missing field \"once_size\""},
        {"StructUnknownField",
         {"call", "setVeskLogConfigure",
          R"({"level": "D", "base": "b", "mode": "m", "total_size": "1", "once_size": "2", "x": "3"})"},
         "unknown field \"x\""},
        {"StructRepeatedField",
         {"call", "setVeskLogConfigure",
          R"({"level": "D", "level": "E", "base": "b", "mode": "m", "total_size": "1", "once_size": "2"})"},
         "(VeskLogInfo info)"},
        {"StructFieldOfTheWrongType",
         {"call", "setVeskLogConfigure",
          R"({"level": 1, "base": "b", "mode": "m", "total_size": "1", "once_size": "2"})"},
         "field \"level\""},
        {"StructFromAnArray",
         {"call", "setVeskLogConfigure", "[1, 2, 3, 4, 5]"},
         "(VeskLogInfo info)"},
        // ---- the callback object ----
        {"CallbackFromAWord",
         {"call", "hwRegistCallback", "maybe"},
         "(IVeskDeviceCallback callback)"},
        {"CallbackFromANumber", {"call", "hwRegistCallback", "1"}, "(IVeskDeviceCallback callback)"},
        // ---- malformed JSON ----
        {"HexNumber",
         {"call", "setSysLedState", "0x10"},
         "setSysLedState: argument 1 (int32_t state): expected an integer from -2147483648 to "
         "2147483647 (int32_t), got \"0x10\", which is not JSON: 'x' at character 2 is not "
         "expected there"},
        {"LeadingZero", {"call", "setSysLedState", "01"}, "which is not JSON"},
        {"LoneMinus", {"call", "setSysLedState", "-"}, "which is not JSON"},
        {"ExponentWithoutDigits", {"call", "setSysLedState", "1e"}, "which is not JSON"},
        {"UnclosedArray", {"call", "writeSpiFpga", "[1,"}, "which is not JSON"},
        {"UnclosedObject", {"call", "setVeskLogConfigure", "{"}, "which is not JSON"},
        {"UnclosedString", {"call", "startWatchDog", "\"/dev/watchdog", "30"}, "which is not JSON"},
        {"TrailingText", {"call", "setSysLedState", "1 2"}, "which is not JSON"},
        // ---- shell: one bad line, one line on stderr ----
        {"ShellBadLine", {"shell"}, "line 1: ", "setSysLedState on\n"},
        // ---- hostile input ----
        {"JsonNestedTooDeep",
         {"call", "writeSerialPort232", std::string(100000, '[') + std::string(100000, ']')},
         "JSON nested deeper than 64 levels"},
        {"ShellControlByte",
         {"shell"},
         "line 1: control byte 0x1b at column 16",
         "setSysLedState \x1b[1m\n"},
        {"ShellUnbalancedBracket", {"shell"}, "line 1: ", "writeSpiFpga [1, 2\n"},
        // ---- the device root ----
        {"EmptyRoot", {"--root", "", "call", "getSysLedState"}, "--root"},
        {"RootIsAFile", {"--root", "{file}", "call", "getSysLedState"}, "is not a directory"},
        {"RootBelowAFile", {"--root", "{file}/root", "call", "getSysLedState"}, "no such directory"},
        // A root named with --root is never made.
        {"MissingRoot", {"--root", "{dir}/root", "prop", "set", "a", "b"}, "no such directory"},
        {"RootWithoutItsValue", {"--root"}, "--root"},
        // ---- the board script and journal ----
        {"MissingScript",
         {"--root", "{root}", "--board-script", "{dir}/missing.json", "call", "getSysLedState"},
         "board script {dir}/missing.json: cannot be read"},
        {"ScriptIsADirectory",
         {"--root", "{root}", "--board-script", "{dir}", "call", "getSysLedState"},
         "is a directory"},
        {"ScriptIsNotJson",
         {"--root", "{root}", "--board-script", "{file}", "call", "getSysLedState"},
         "unreadable JSON"},
        {"JournalInAMissingDirectory",
         {"--root", "{root}", "--board-journal", "{dir}/missing/journal", "call", "getSysLedState"},
         "is not a writable directory"},
        {"JournalIsADirectory",
         {"--root", "{root}", "--board-journal", "{dir}", "call", "getSysLedState"},
         "is a directory"},
        // ---- file options given as an empty word ----
        {"EmptyLogPath",
         {"--root", "{root}", "--log", "", "prop", "set", "persist.vesk.x", "1"},
         "--log: expected a file name, got an empty one"},
        {"EmptyJournalPath",
         {"--root", "{root}", "--board-journal", "", "call", "getSysLedState"},
         "--board-journal: expected a file name, got an empty one"},
        {"EmptyScriptPath",
         {"--root", "{root}", "--board-script", "", "call", "getSysLedState"},
         "--board-script: expected a file name, got an empty one"},
        // ---- the simulated board ----
        {"StartOfAnEmptyProgramName",
         {"board", "start", ""},
         "board start: expected a program to start, got an empty word"},
        {"ModelNumberPastAnInt",
         {"board", "set", "model_id", "99999999999999999999"},
         "model_id takes a decimal number from 0 to 2147483647"},
        {"ProductKeyOfAnotherSpelling",
         {"board", "set", "modelId", "1"},
         "unknown product key modelId (keys: vendor, model_id, hardware_version, "},
        {"UnknownDebugSection",
         {"debug", "nosuch"},
         "debug: unknown section \"nosuch\"; usage: veskdm debug [product] [mode] [env] [log]"},
        // ---- property names a board refuses ----
        {"PropertyNameWithEquals",
         {"prop", "set", "a=b", "1"},
         "expected a property name of letters, digits and . - @ : _ without an empty part between "
         "dots, got '=' at byte 2 of \"a=b\""},
        {"PropertyNameWithAControlByte",
         {"prop", "set", "a\x1b", "1"},
         "got 0x1b at byte 2 of \"a\\u001b\""},
        {"PropertyNameWithADoubleDot", {"prop", "set", "persist..vesk", "1"}, "got '.' at byte 9"},
        {"PropertyNameStartingWithADot", {"prop", "get", ".vesk"}, "got '.' at byte 1"},
        {"PropertyNameOfTheStoresLimit",
         {"prop", "set", std::string(256, 'p'), "1"},
         "property name of 256 bytes: the store takes at most 255"},
        {"PropertyValueNotUtf8",
         {"prop", "set", "persist.vesk.x", "\xff"},
         "expected a value in UTF-8, got other bytes"},
        // ---- timings the calculator cannot compute ----
        {"TimingWidthPastTheRange",
         {"timing", "2147483648", "1080", "60"},
         "timing: width must be a whole number from 1 to 40960, not '2147483648'"},
        {"TimingEveryArgumentAtItsTypesLimit",
         {"timing", "4294967295", "4294967295", "4294967295"},
         "timing: width must be a whole number from 1 to 40960, not '4294967295'"},
        {"TimingHeightPastTheRange",
         {"timing", "1920", "40961"},
         "timing: height must be a whole number from 1 to 40960, not '40961'"},
        {"TimingRatePastTheRange",
         {"timing", "1920", "1080", "1001"},
         "timing: rate must be a whole number from 1 to 1000, not '1001'"},
        {"TimingInterlacedRatePastTheRange",
         {"timing", "1920", "1080", "501", "--interlaced"},
         "timing: rate must be a whole number from 1 to 500 with --interlaced (two fields a "
         "frame), not '501'"},
        {"TimingWithoutAClock",
         {"timing", "1", "1", "1"},
         "timing: 1x1 at 1 Hz (cvt_rb) has no pixel clock: it is below the calculator's step of "
         "0.25 MHz"},
        {"TimingStandardBlankingWithoutAClock",
         {"timing", "1", "1", "1", "--mode", "cvt"},
         "timing: 1x1 at 1 Hz (cvt) has no pixel clock: it is below the calculator's step of "
         "0.25 MHz"},
        {"TimingVideoOptimizedReducedBlanking2",
         {"timing", "1920", "1080", "--mode", "cvt_rb2", "--video-optimized"},
         "timing: --video-optimized cvt_rb2 has no pixel clock in this calculator (its clock "
         "multiplier is 0): no timing"},
        {"TimingUnknownMode",
         {"timing", "1920", "1080", "60", "--mode", "bogus"},
         "timing: --mode must be cvt, cvt_rb or cvt_rb2, not 'bogus'"},
        {"TimingNegativeCeiling",
         {"timing", "1920", "1080", "--max-refresh", "-5"},
         "timing: --max-refresh must be a number above 0, not '-5'"},
        {"TimingCeilingNotANumber",
         {"timing", "1920", "1080", "--max-height", "nan"},
         "timing: --max-height must be a number above 0, not 'nan'"},
        {"TimingInfiniteCeiling",
         {"timing", "1920", "1080", "--max-width", "inf"},
         "timing: --max-width must be a number above 0, not 'inf'"},
        {"TimingBitsPastTheRange",
         {"timing", "1920", "1080", "--bits", "17"},
         "timing: --bits must be a whole number from 1 to 16, not '17'"},
        {"TimingComponentsPastTheRange",
         {"timing", "1920", "1080", "--components", "4.5"},
         "timing: --components must be a number above 0 and at most 4, not '4.5'"},
};

INSTANTIATE_TEST_SUITE_P(Veskdm, BadInputTest, ::testing::ValuesIn(kBadInputs),
                         [](const ::testing::TestParamInfo<BadInput>& info) {
                             return std::string(info.param.name);
                         });

// A script the board would refuse at its first call is refused before the library is loaded,
// with the board's own reason.
TEST_F(BadInputTest, ScriptWithBadHexOrAnUnknownFunction) {
    const std::pair<const char*, const char*> kScripts[] = {
            {R"({"bi_sysled_get_state": {"return": 1, "out": "zz"}})",
             "bi_sysled_get_state.out: bi_sysled_get_state has no output buffer"},
            {R"({"bi_info_get_product_info": {"out": "0g"}})",
             "bi_info_get_product_info.out is not hex: \"0g\""},
            {R"({"bi_no_such_function": {}})", "bi_no_such_function: no such board function"},
            {R"({"bi_sysled_get_state": [{"return": 1}, {"return": 1.5}]})",
             "bi_sysled_get_state[1].return must be an int"}};
    for (const auto& [script, reason] : kScripts) {
        vesk::test::writeFile(work + "/script.json", script);
        Outcome outcome = run({"Script",
                               {"--root", "{root}", "--board-script", "{dir}/../script.json",
                                "call", "getSysLedState"},
                               ""});
        EXPECT_EQ(2, outcome.status) << script;
        EXPECT_EQ(std::vector<std::string>{"veskdm: board script " + work +
                                           "/dir/../script.json: " + reason},
                  outcome.errLines());
        EXPECT_EQ("", outcome.out);
    }
}

// A script whose entries are not objects is refused before the library is loaded.
TEST_F(BadInputTest, ScriptWithAnEntryThatIsNotAnObject) {
    vesk::test::writeFile(work + "/script.json", R"({"bi_sysled_get_state": 5})");
    Outcome outcome = run({"ScriptEntry",
                           {"--root", "{root}", "--board-script", "{dir}/../script.json", "call",
                            "getSysLedState"},
                           ""});
    EXPECT_EQ(2, outcome.status);
    EXPECT_EQ(std::vector<std::string>{"veskdm: board script " + work +
                                       "/dir/../script.json: bi_sysled_get_state must be an "
                                       "object or a list of objects"},
              outcome.errLines());
    EXPECT_EQ("", outcome.out);
}

}  // namespace
}  // namespace veskdm::test
