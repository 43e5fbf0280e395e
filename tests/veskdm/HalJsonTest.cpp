// JSON forms of the interface's values: argument words, integers of every width, floats,
// strings, vectors, fixed arrays and every struct of the package.
#include <gtest/gtest.h>

#include <cfloat>
#include <fstream>
#include <regex>
#include <sstream>

#include "HalJson.h"

namespace veskdm {
namespace {

using ::android::hardware::hidl_array;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;

Json word(const std::string& text) {
    return readArgumentWord(text);
}

// The message of the ArgumentError that reading `text` as T raises ("" when none).
template <typename T>
std::string errorOf(const std::string& text) {
    try {
        T value{};
        fromJson(readArgumentWord(text), value);
    } catch (const ArgumentError& error) {
        return error.what();
    }
    return "";
}

template <typename T>
T read(const std::string& text) {
    T value{};
    fromJson(readArgumentWord(text), value);
    return value;
}

// ---- argument words ----

TEST(ArgumentWord, NumbersAreJson) {
    EXPECT_TRUE(word("3").is_number_unsigned());
    EXPECT_EQ(word("3"), Json(3));
    EXPECT_EQ(word("-17"), Json(-17));
    EXPECT_TRUE(word("2.5").is_number_float());
}

TEST(ArgumentWord, LiteralsAreJson) {
    EXPECT_EQ(word("true"), Json(true));
    EXPECT_EQ(word("false"), Json(false));
    EXPECT_TRUE(word("null").is_null());
}

TEST(ArgumentWord, QuotedStringIsJsonString) {
    EXPECT_EQ(word("\"123\""), Json("123"));
    EXPECT_EQ(word("\"a\\tb\""), Json("a\tb"));
}

TEST(ArgumentWord, BareWordIsString) {
    EXPECT_EQ(word("/dev/watchdog"), Json("/dev/watchdog"));
    EXPECT_EQ(word("D"), Json("D"));
    EXPECT_EQ(word("hello world"), Json("hello world"));
    EXPECT_EQ(word("nul"), Json("nul"));
    EXPECT_EQ(word("True"), Json("True"));
    EXPECT_EQ(word("+5"), Json("+5"));
}

TEST(ArgumentWord, EmptyWordIsEmptyString) {
    EXPECT_EQ(word(""), Json(""));
}

TEST(ArgumentWord, ArraysAndObjects) {
    EXPECT_EQ(word("[1, 2, 3]"), Json::array({1, 2, 3}));
    Json object = word("{\"b\": 1, \"a\": [true]}");
    ASSERT_TRUE(object.is_object());
    EXPECT_EQ(object.begin().key(), "b");  // order kept
    EXPECT_EQ(object["a"], Json::array({true}));
}

TEST(ArgumentWord, MalformedJsonIsAnError) {
    for (const char* text :
         {"[1, 2", "{\"a\": }", "\"open", "-", "-x", "1abc", "[1,]", "{a: 1}", "1 2", "01"}) {
        try {
            word(text);
            ADD_FAILURE() << text << " was read";
        } catch (const UnreadableJson& error) {
            std::string quoted = Json(text).dump();
            EXPECT_EQ(std::string(error.what()).rfind(quoted + ", which is not JSON: ", 0), 0u)
                    << error.what();
        }
    }
}

// Where a word stops being JSON, in the tool's words: the unexpected character and its place
// (counted from 1), or that the word ends first.
TEST(ArgumentWord, UnreadableJsonSaysWhereItStops) {
    const std::pair<const char*, const char*> kWords[] = {
            {"0x10", "\"0x10\", which is not JSON: 'x' at character 2 is not expected there"},
            {"01", "\"01\", which is not JSON: '1' at character 2 is not expected there"},
            {"1 2", "\"1 2\", which is not JSON: '2' at character 3 is not expected there"},
            {"[1,]", "\"[1,]\", which is not JSON: ']' at character 4 is not expected there"},
            {"[1, 2", "\"[1, 2\", which is not JSON: it ends before its value does"},
            {"-", "\"-\", which is not JSON: it ends before its value does"},
            {"\"open", "\"\\\"open\", which is not JSON: it ends before its value does"},
    };
    for (const auto& [text, message] : kWords) {
        try {
            word(text);
            ADD_FAILURE() << text << " was read";
        } catch (const UnreadableJson& error) {
            EXPECT_EQ(message, std::string(error.what()));
        }
    }
}

// Well-formed JSON whose number no type can hold (past a double's largest, about 1.8e308).
TEST(ArgumentWord, NumberPastAnyRangeIsAnError) {
    for (const char* text : {"1e400", "11e15201", "[1, -2e999]", "{\"a\": 1e309}"}) {
        try {
            word(text);
            ADD_FAILURE() << text << " was read";
        } catch (const UnreadableJson& error) {
            EXPECT_EQ(Json(text).dump() + ", which holds a number past any range",
                      std::string(error.what()));
        }
    }
}

TEST(ArgumentWord, RepeatedKeyIsAnError) {
    EXPECT_THROW(word("{\"a\": 1, \"a\": 2}"), ArgumentError);
    EXPECT_THROW(word("[{\"x\": {\"a\": 1, \"a\": 2}}]"), ArgumentError);
    // The same key in different objects is fine.
    EXPECT_NO_THROW(word("[{\"a\": 1}, {\"a\": 2}]"));
    EXPECT_NO_THROW(word("{\"a\": {\"a\": 1}}"));
}

TEST(ArgumentWord, MessageIsOneLine) {
    try {
        word("[1,\n");
        FAIL();
    } catch (const ArgumentError& error) {
        EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos) << error.what();
    }
}

// ---- integers: the limits of each width, and one past ----

TEST(Integers, Int8Range) {
    EXPECT_EQ(read<int8_t>("-128"), -128);
    EXPECT_EQ(read<int8_t>("127"), 127);
    EXPECT_EQ(errorOf<int8_t>("128"),
              "expected an integer from -128 to 127 (int8_t), got 128 (out of range)");
    EXPECT_EQ(errorOf<int8_t>("-129"),
              "expected an integer from -128 to 127 (int8_t), got -129 (out of range)");
}

TEST(Integers, Uint8Range) {
    EXPECT_EQ(read<uint8_t>("0"), 0);
    EXPECT_EQ(read<uint8_t>("255"), 255);
    EXPECT_EQ(errorOf<uint8_t>("256"),
              "expected an integer from 0 to 255 (uint8_t), got 256 (out of range)");
    EXPECT_EQ(errorOf<uint8_t>("-1"),
              "expected an integer from 0 to 255 (uint8_t), got -1 (out of range)");
}

TEST(Integers, Int16Range) {
    EXPECT_EQ(read<int16_t>("-32768"), -32768);
    EXPECT_EQ(read<int16_t>("32767"), 32767);
    EXPECT_EQ(errorOf<int16_t>("32768"),
              "expected an integer from -32768 to 32767 (int16_t), got 32768 (out of range)");
    EXPECT_EQ(errorOf<int16_t>("-32769"),
              "expected an integer from -32768 to 32767 (int16_t), got -32769 (out of range)");
}

TEST(Integers, Uint16Range) {
    EXPECT_EQ(read<uint16_t>("65535"), 65535);
    EXPECT_EQ(errorOf<uint16_t>("65536"),
              "expected an integer from 0 to 65535 (uint16_t), got 65536 (out of range)");
    EXPECT_NE(errorOf<uint16_t>("-1"), "");
}

TEST(Integers, Int32Range) {
    EXPECT_EQ(read<int32_t>("-2147483648"), INT32_MIN);
    EXPECT_EQ(read<int32_t>("2147483647"), INT32_MAX);
    EXPECT_EQ(errorOf<int32_t>("2147483648"),
              "expected an integer from -2147483648 to 2147483647 (int32_t), got 2147483648 (out "
              "of range)");
    EXPECT_NE(errorOf<int32_t>("-2147483649"), "");
}

TEST(Integers, Uint32Range) {
    EXPECT_EQ(read<uint32_t>("4294967295"), UINT32_MAX);
    EXPECT_EQ(errorOf<uint32_t>("4294967296"),
              "expected an integer from 0 to 4294967295 (uint32_t), got 4294967296 (out of range)");
    EXPECT_EQ(errorOf<uint32_t>("-1"),
              "expected an integer from 0 to 4294967295 (uint32_t), got -1 (out of range)");
}

TEST(Integers, SixtyFourBitRange) {
    EXPECT_EQ(read<uint64_t>("18446744073709551615"), UINT64_MAX);
    EXPECT_EQ(read<int64_t>("-9223372036854775808"), INT64_MIN);
    EXPECT_NE(errorOf<int64_t>("9223372036854775808"), "");
    // Past 64 bits the parser only has a floating-point value: still out of range.
    std::string error = errorOf<uint64_t>("18446744073709551616");
    EXPECT_NE(error.find("(out of range)"), std::string::npos) << error;
}

// A limit's neighbours written as floating point: 2^31 is past int32_t, 2^31 - 1 is in range
// but not written as an integer.
TEST(Integers, FloatingPointAtTheLimits) {
    EXPECT_EQ(errorOf<int32_t>("2147483648.0"),
              "expected an integer from -2147483648 to 2147483647 (int32_t), got 2147483648.0 "
              "(out of range)");
    EXPECT_EQ(errorOf<int32_t>("2147483647.0"),
              "expected an integer from -2147483648 to 2147483647 (int32_t), got 2147483647.0 "
              "(written with a fraction or an exponent)");
    EXPECT_EQ(errorOf<int32_t>("-2147483649.0"),
              "expected an integer from -2147483648 to 2147483647 (int32_t), got -2147483649.0 "
              "(out of range)");
    EXPECT_NE(errorOf<uint64_t>("1.8446744073709552e19").find("(out of range)"), std::string::npos);
}

TEST(Integers, NonIntegralNumberIsAnError) {
    EXPECT_EQ(errorOf<int32_t>("1.5"),
              "expected an integer from -2147483648 to 2147483647 (int32_t), got 1.5 (not an "
              "integer)");
    EXPECT_EQ(errorOf<uint8_t>("3.0"),
              "expected an integer from 0 to 255 (uint8_t), got 3.0 (written with a fraction or "
              "an exponent)");
    EXPECT_NE(errorOf<uint32_t>("1e3"), "");
    EXPECT_NE(errorOf<uint8_t>("1e3").find("(out of range)"), std::string::npos);
}

TEST(Integers, OtherTypesAreErrors) {
    EXPECT_EQ(errorOf<int32_t>("abc"),
              "expected an integer from -2147483648 to 2147483647 (int32_t), got \"abc\"");
    EXPECT_NE(errorOf<int32_t>("\"3\""), "");
    EXPECT_NE(errorOf<int32_t>("true"), "");
    EXPECT_NE(errorOf<int32_t>("null"), "");
    EXPECT_NE(errorOf<int32_t>("[3]"), "");
    EXPECT_NE(errorOf<int32_t>("{}"), "");
}

TEST(Integers, ToJson) {
    EXPECT_EQ(dumpJson(toJson(int32_t{-5})), "-5");
    EXPECT_EQ(dumpJson(toJson(uint8_t{200})), "200");
    EXPECT_EQ(dumpJson(toJson(int8_t{-128})), "-128");
    EXPECT_EQ(dumpJson(toJson(uint64_t{UINT64_MAX})), "18446744073709551615");
}

// ---- bool ----

TEST(Bool, Literals) {
    EXPECT_TRUE(read<bool>("true"));
    EXPECT_FALSE(read<bool>("false"));
    EXPECT_EQ(errorOf<bool>("1"), "expected true or false, got 1");
    EXPECT_NE(errorOf<bool>("yes"), "");
    EXPECT_EQ(dumpJson(toJson(true)), "true");
}

// ---- floats ----

TEST(Floats, ShortestRoundTripText) {
    EXPECT_EQ(formatFloat(12.15f), "12.15");
    EXPECT_EQ(formatFloat(0.1f), "0.1");
    EXPECT_EQ(formatFloat(1.0f / 3.0f), "0.33333334");
    EXPECT_EQ(formatFloat(16777217.0f), "16777216");
    EXPECT_EQ(formatFloat(FLT_MAX), "3.4028235e+38");
    EXPECT_EQ(formatFloat(FLT_MIN), "1.1754944e-38");
    EXPECT_EQ(formatFloat(1.401298464324817e-45f), "1e-45");
    EXPECT_EQ(formatFloat(-0.5f), "-0.5");
}

TEST(Floats, JsonNumberIsTheShortestDecimal) {
    EXPECT_EQ(dumpJson(toJson(12.15f)), "12.15");
    EXPECT_EQ(dumpJson(toJson(0.1f)), "0.1");
    EXPECT_EQ(dumpJson(toJson(1.0f / 3.0f)), "0.33333334");
    EXPECT_EQ(dumpJson(toJson(3.3f)), "3.3");
    EXPECT_EQ(dumpJson(toJson(FLT_MAX)), "3.4028235e+38");
    EXPECT_EQ(dumpJson(toJson(80.0f)), "80.0");
    EXPECT_EQ(dumpJson(toJson(-0.5f)), "-0.5");
}

TEST(Floats, NotFiniteIsNull) {
    EXPECT_EQ(dumpJson(toJson(std::numeric_limits<float>::quiet_NaN())), "null");
    EXPECT_EQ(dumpJson(toJson(std::numeric_limits<float>::infinity())), "null");
    EXPECT_EQ(dumpJson(toJson(-std::numeric_limits<double>::infinity())), "null");
}

TEST(Floats, ReadFromAnyNumber) {
    EXPECT_EQ(read<float>("60"), 60.0f);
    EXPECT_EQ(read<float>("-2"), -2.0f);
    EXPECT_EQ(read<float>("59.94"), 59.94f);
    EXPECT_EQ(read<float>("1e-3"), 0.001f);
}

TEST(Floats, PrintedValuesReadBack) {
    for (float value : {12.15f, FLT_MAX, -FLT_MAX, FLT_MIN, 1.0f / 3.0f}) {
        EXPECT_EQ(read<float>(dumpJson(toJson(value))), value) << value;
    }
}

TEST(Floats, OutOfRange) {
    EXPECT_EQ(errorOf<float>("1e39"), "expected a float, got 1e+39 (out of range)");
    EXPECT_NE(errorOf<float>("-3.5e38"), "");
    // Just above FLT_MAX but nearer to it than to the next power of two: rounds to FLT_MAX.
    EXPECT_EQ(read<float>("3.40282356e38"), FLT_MAX);
    EXPECT_NE(errorOf<float>("3.4028236e38"), "");
}

TEST(Floats, OtherTypesAreErrors) {
    EXPECT_EQ(errorOf<float>("fast"), "expected a number, got \"fast\"");
    EXPECT_NE(errorOf<float>("[1]"), "");
    EXPECT_NE(errorOf<float>("null"), "");
}

TEST(Doubles, ReadAndWrite) {
    EXPECT_EQ(read<double>("0.1"), 0.1);
    EXPECT_EQ(dumpJson(toJson(0.1)), "0.1");
    EXPECT_EQ(dumpJson(toJson(2.5)), "2.5");
    EXPECT_NE(errorOf<double>("\"0.1\""), "");
}

// ---- strings ----

TEST(Strings, ReadAndWrite) {
    EXPECT_EQ(std::string(read<hidl_string>("/dev/watchdog")), "/dev/watchdog");
    EXPECT_EQ(std::string(read<hidl_string>("\"42\"")), "42");
    EXPECT_EQ(dumpJson(toJson(hidl_string("a\"b"))), "\"a\\\"b\"");
    EXPECT_EQ(errorOf<hidl_string>("42"), "expected a string, got 42");
    EXPECT_NE(errorOf<hidl_string>("null"), "");
}

TEST(Strings, EmbeddedNulKeepsItsLength) {
    hidl_string text = read<hidl_string>("\"a\\u0000b\"");
    EXPECT_EQ(text.size(), 3u);
    EXPECT_EQ(dumpJson(toJson(text)), "\"a\\u0000b\"");
}

TEST(Strings, InvalidUtf8IsReplacedOnOutput) {
    hidl_string text(
            "\xff"
            "ok");
    EXPECT_EQ(dumpJson(toJson(text)), "\"\xEF\xBF\xBDok\"");
}

// ---- vectors and arrays ----

TEST(Vectors, Bytes) {
    hidl_vec<uint8_t> bytes = read<hidl_vec<uint8_t>>("[0, 127, 255]");
    ASSERT_EQ(bytes.size(), 3u);
    EXPECT_EQ(bytes[0], 0);
    EXPECT_EQ(bytes[1], 127);
    EXPECT_EQ(bytes[2], 255);
    EXPECT_EQ(dumpJson(toJson(bytes)), "[0,127,255]");
    EXPECT_EQ(read<hidl_vec<uint8_t>>("[]").size(), 0u);
}

TEST(Vectors, ElementErrorsNameTheIndex) {
    EXPECT_EQ(errorOf<hidl_vec<uint8_t>>("[1, 2, 256]"),
              "element 2: expected an integer from 0 to 255 (uint8_t), got 256 (out of range)");
    EXPECT_EQ(errorOf<hidl_vec<uint32_t>>("[-1]"),
              "element 0: expected an integer from 0 to 4294967295 (uint32_t), got -1 (out of "
              "range)");
    EXPECT_NE(errorOf<hidl_vec<uint8_t>>("[1, \"2\"]"), "");
}

TEST(Vectors, NotAnArray) {
    EXPECT_EQ(errorOf<hidl_vec<uint8_t>>("\"abc\""), "expected an array, got \"abc\"");
    EXPECT_EQ(errorOf<hidl_vec<uint8_t>>("5"), "expected an array, got 5");
    EXPECT_NE(errorOf<hidl_vec<uint8_t>>("{}"), "");
}

TEST(Vectors, Words) {
    hidl_vec<uint32_t> time = read<hidl_vec<uint32_t>>("[2024, 12, 31, 23, 59, 4294967295]");
    ASSERT_EQ(time.size(), 6u);
    EXPECT_EQ(time[5], UINT32_MAX);
    EXPECT_EQ(dumpJson(toJson(time)), "[2024,12,31,23,59,4294967295]");
}

TEST(Vectors, OfStructs) {
    hidl_vec<hal::UsbList> list = read<hidl_vec<hal::UsbList>>(
            "[{\"vid\": 4660, \"pid\": 22136}, {\"vid\": 1, \"pid\": 2}]");
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0].vid, 0x1234u);
    EXPECT_EQ(list[0].pid, 0x5678u);
    EXPECT_EQ(dumpJson(toJson(list)), "[{\"vid\":4660,\"pid\":22136},{\"vid\":1,\"pid\":2}]");
    EXPECT_EQ(errorOf<hidl_vec<hal::UsbList>>("[{\"vid\": 1, \"pid\": 2}, {\"vid\": 1}]"),
              "element 1: missing field \"pid\"");
}

TEST(Arrays, ExactlySixteenBytes) {
    using Block = hidl_array<uint8_t, 16>;
    Block block = read<Block>("[0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,255]");
    EXPECT_EQ(block[0], 0);
    EXPECT_EQ(block[15], 255);
    EXPECT_EQ(dumpJson(toJson(block)), "[0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,255]");
    EXPECT_EQ(errorOf<Block>("[1,2,3]"), "expected an array of 16 elements, got 3");
    EXPECT_NE(errorOf<Block>("[0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16]"), "");
    EXPECT_EQ(errorOf<Block>("[0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,256]"),
              "element 15: expected an integer from 0 to 255 (uint8_t), got 256 (out of range)");
    EXPECT_EQ(errorOf<Block>("7"), "expected an array, got 7");
}

// ---- structs ----

// The field names of a struct in types.hal, in order.
std::vector<std::string> halFields(const std::string& structName) {
    std::ifstream in(VESK_SOURCE_DIR "/interface/veskdevicemanager/1.0/types.hal");
    std::stringstream text;
    text << in.rdbuf();
    std::string all = text.str();
    size_t start = all.find("struct " + structName + " {");
    EXPECT_NE(start, std::string::npos) << structName;
    size_t end = all.find("};", start);
    std::string body = all.substr(start, end - start);
    std::vector<std::string> fields;
    std::regex field(R"(\n\s+[A-Za-z0-9_<>\[\]]+ ([A-Za-z0-9_]+);)");
    for (auto it = std::sregex_iterator(body.begin(), body.end(), field);
         it != std::sregex_iterator(); ++it) {
        fields.push_back((*it)[1]);
    }
    return fields;
}

template <typename S>
std::vector<std::string> jsonFields() {
    std::vector<std::string> keys;
    Json json = toJson(S{});
    for (const auto& item : json.items()) keys.push_back(item.key());
    return keys;
}

TEST(Structs, FieldNamesFollowTypesHal) {
    EXPECT_EQ(jsonFields<hal::ProductInfo>(), halFields("ProductInfo"));
    EXPECT_EQ(jsonFields<hal::WatchDogCfg>(), halFields("WatchDogCfg"));
    EXPECT_EQ(jsonFields<hal::ProcessInfo>(), halFields("ProcessInfo"));
    EXPECT_EQ(jsonFields<hal::UsbList>(), halFields("UsbList"));
    EXPECT_EQ(jsonFields<hal::CpuStatus>(), halFields("CpuStatus"));
    EXPECT_EQ(jsonFields<hal::VeskLogInfo>(), halFields("VeskLogInfo"));
    EXPECT_EQ(jsonFields<hal::VeskEffeResolution>(), halFields("VeskEffeResolution"));
    EXPECT_EQ(jsonFields<hal::MessageParcel>(), halFields("MessageParcel"));
    EXPECT_EQ(halFields("ProductInfo").size(), 25u);
}

TEST(Structs, ProductInfo) {
    hal::ProductInfo info{};
    info.text01 = "VESK";
    info.modelId = "3588";
    info.text21 = "last";
    info.flag2 = true;
    info.useDHCP = true;
    Json json = toJson(info);
    EXPECT_EQ(json["text01"], "VESK");
    EXPECT_EQ(json["modelId"], "3588");
    EXPECT_FALSE(json.contains("text02"));  // the second text is the model
    EXPECT_EQ(json["text21"], "last");
    EXPECT_EQ(json["flag1"], false);
    EXPECT_EQ(json["flag2"], true);
    EXPECT_EQ(json["useDHCP"], true);
    hal::ProductInfo back{};
    fromJson(toJson(info), back);
    EXPECT_EQ(back, info);
}

TEST(Structs, WatchDogCfg) {
    EXPECT_EQ(
            dumpJson(toJson(read<hal::WatchDogCfg>("{\"wdtDevice\": \"/dev/watchdog\", "
                                                   "\"wdt_timeout\": 30, \"wdt_interval\": 10}"))),
            "{\"wdtDevice\":\"/dev/watchdog\",\"wdt_timeout\":30,\"wdt_interval\":10}");
}

TEST(Structs, ProcessInfo) {
    hal::ProcessInfo info{};
    info.name1 = "a";
    info.name2 = "b";
    info.name3 = "c";
    for (size_t i = 0; i < 16; ++i) info.block[i] = static_cast<uint8_t>(i * 16);
    info.value64 = 0x123456789ABCDEF0ull;
    info.valueReal = 0.25;
    info.value32 = 7;
    EXPECT_EQ(dumpJson(toJson(info)),
              "{\"name1\":\"a\",\"name2\":\"b\",\"name3\":\"c\",\"block\":[0,16,32,48,64,80,96,"
              "112,128,144,160,176,192,208,224,240],\"value64\":1311768467463790320,"
              "\"valueReal\":0.25,\"value32\":7}");
    hal::ProcessInfo back{};
    fromJson(toJson(info), back);
    EXPECT_EQ(back, info);
}

TEST(Structs, CpuStatusFloatsAreShortest) {
    hal::CpuStatus status{};
    status.usr = 12.15f;
    status.nic = 0.1f;
    status.sys = 3.3f;
    status.idle = 80.0f;
    status.iowait = 1.0f / 3.0f;
    status.irq = 0.0f;
    status.softirq = 2.75f;
    status.temperature = 47;
    EXPECT_EQ(dumpJson(toJson(status)),
              "{\"usr\":12.15,\"nic\":0.1,\"sys\":3.3,\"idle\":80.0,\"iowait\":0.33333334,"
              "\"irq\":0.0,\"softirq\":2.75,\"temperature\":47}");
    hal::CpuStatus back{};
    fromJson(toJson(status), back);
    EXPECT_EQ(back, status);
}

TEST(Structs, VeskLogInfo) {
    hal::VeskLogInfo info = read<hal::VeskLogInfo>(
            "{\"level\": \"D\", \"base\": \"/data/log\", \"mode\": \"ring\", \"total_size\": "
            "\"64M\", \"once_size\": \"4M\"}");
    EXPECT_EQ(std::string(info.level), "D");
    EXPECT_EQ(std::string(info.base), "/data/log");
    EXPECT_EQ(std::string(info.mode), "ring");
    EXPECT_EQ(std::string(info.total_size), "64M");
    EXPECT_EQ(std::string(info.once_size), "4M");
}

TEST(Structs, VeskEffeResolution) {
    hal::VeskEffeResolution resolution{1920, 1080, 60, -3};
    EXPECT_EQ(dumpJson(toJson(resolution)),
              "{\"width\":1920,\"height\":1080,\"fps\":60,\"status\":-3}");
    EXPECT_EQ(errorOf<hal::VeskEffeResolution>(
                      "{\"width\": -1, \"height\": 1080, \"fps\": 60, \"status\": 1}"),
              "field \"width\": expected an integer from 0 to 4294967295 (uint32_t), got -1 (out "
              "of range)");
}

TEST(Structs, MessageParcel) {
    hal::MessageParcel parcel =
            read<hal::MessageParcel>("{\"what\": 7, \"message\": \"hi\", \"payload\": [1, 2]}");
    EXPECT_EQ(parcel.what, 7);
    EXPECT_EQ(std::string(parcel.message), "hi");
    EXPECT_EQ(dumpJson(toJson(parcel)), "{\"what\":7,\"message\":\"hi\",\"payload\":[1,2]}");
}

TEST(Structs, MissingField) {
    EXPECT_EQ(errorOf<hal::UsbList>("{\"vid\": 1}"), "missing field \"pid\"");
    EXPECT_EQ(errorOf<hal::VeskLogInfo>("{}"), "missing field \"level\"");
}

TEST(Structs, UnknownField) {
    EXPECT_EQ(errorOf<hal::UsbList>("{\"vid\": 1, \"pid\": 2, \"extra\": 3}"),
              "unknown field \"extra\"");
    // Field names are case-sensitive.
    EXPECT_EQ(errorOf<hal::UsbList>("{\"VID\": 1, \"pid\": 2}"), "unknown field \"VID\"");
}

TEST(Structs, RepeatedField) {
    EXPECT_EQ(errorOf<hal::UsbList>("{\"vid\": 1, \"pid\": 2, \"vid\": 3}"),
              "repeated field \"vid\"");
}

TEST(Structs, WrongFieldType) {
    EXPECT_EQ(errorOf<hal::UsbList>("{\"vid\": \"1\", \"pid\": 2}"),
              "field \"vid\": expected an integer from 0 to 4294967295 (uint32_t), got \"1\"");
    EXPECT_EQ(errorOf<hal::ProductInfo>("{\"flag1\": 1}"), "missing field \"text01\"");
    Json info = toJson(hal::ProductInfo{});
    info["flag1"] = 1;
    EXPECT_EQ(errorOf<hal::ProductInfo>(dumpJson(info)),
              "field \"flag1\": expected true or false, got 1");
}

TEST(Structs, NotAnObject) {
    EXPECT_EQ(errorOf<hal::VeskLogInfo>("[1]"), "expected a VeskLogInfo object, got [1]");
    EXPECT_EQ(errorOf<hal::UsbList>("x"), "expected a UsbList object, got \"x\"");
}

TEST(Structs, LongValuesAreShortenedInMessages) {
    std::string text = "\"" + std::string(200, 'x') + "\"";
    std::string error = errorOf<int32_t>(text);
    EXPECT_LT(error.size(), 140u) << error;
    EXPECT_EQ(error.substr(error.size() - 3), "...");
}

// ---- callback objects ----

TEST(CallbackArgument, NullOrLocalObject) {
    ::android::sp<hal::IVeskDeviceCallback> callback;
    fromJson(readArgumentWord("null"), callback);
    EXPECT_EQ(callback, nullptr);
    fromJson(readArgumentWord("callback"), callback);
    EXPECT_NE(callback, nullptr);
    EXPECT_EQ(errorOf<::android::sp<hal::IVeskDeviceCallback>>("0"),
              "expected null or \"callback\", got 0");
    EXPECT_NE(errorOf<::android::sp<hal::IVeskDeviceCallback>>("cb"), "");
}

// ---- nesting ----

std::string nestedArrays(size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

std::string nestingError(const std::string& word) {
    try {
        readArgumentWord(word);
    } catch (const ArgumentError& error) {
        return error.what();
    }
    return "";
}

TEST(HalJsonNestingTest, SixtyFourLevelsAreRead) {
    Json value = readArgumentWord(nestedArrays(64));
    size_t depth = 0;
    for (const Json* at = &value; at->is_array(); at = at->empty() ? nullptr : &(*at)[0]) {
        ++depth;
        if (at->empty()) break;
    }
    EXPECT_EQ(depth, 64u);
}

TEST(HalJsonNestingTest, SixtyFiveLevelsAreRefused) {
    EXPECT_EQ(nestingError(nestedArrays(65)), "JSON nested deeper than 64 levels");
    // Objects and arrays count alike: 32 objects around 33 arrays.
    std::string mixed;
    for (int i = 0; i < 32; ++i) mixed += "{\"k\":";
    mixed += nestedArrays(33);
    for (int i = 0; i < 32; ++i) mixed += "}";
    EXPECT_EQ(nestingError(mixed), "JSON nested deeper than 64 levels");
}

TEST(HalJsonNestingTest, DepthIsTheDeepestNotTheSum) {
    // 40 levels twice side by side: 41 deep with the outer array.
    std::string word = "[" + nestedArrays(40) + "," + nestedArrays(40) + "]";
    EXPECT_EQ(nestingError(word), "");
}

TEST(HalJsonNestingTest, BracketsInStringsAndEscapedQuotesDoNotCount) {
    std::string inString = "[\"" + std::string(100, '[') + "\\\"" + std::string(100, '{') + "\"]";
    EXPECT_EQ(nestingError(inString), "");
    EXPECT_EQ(readArgumentWord(inString)[0].get<std::string>(),
              std::string(100, '[') + "\"" + std::string(100, '{'));
}

// A NUL byte (never in a shell word, but a word is any bytes) does not end the count.
TEST(HalJsonNestingTest, ANulByteDoesNotHideTheNestingAfterIt) {
    std::string word = "[" + std::string(1, '\0') + nestedArrays(64) + "]";
    EXPECT_EQ(nestingError(word), "JSON nested deeper than 64 levels");
    std::string inString = "[\"" + std::string(1, '\0') + "\"," + nestedArrays(64) + "]";
    EXPECT_EQ(nestingError(inString), "JSON nested deeper than 64 levels");
}

}  // namespace
}  // namespace veskdm
