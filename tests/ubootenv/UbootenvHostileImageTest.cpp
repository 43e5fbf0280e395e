// Corrupt and hostile partitions: no crash, nothing read past the end (the asan preset checks
// that), and an error line that says what was wrong.
#include <gtest/gtest.h>

#include <random>

#include "EnvFixture.h"

namespace vesk::test {
namespace {

using UbootenvHostileImageTest = EnvTest;

EnvLogs around(const EnvLogs& middle) {
    return EnvLogs{loadedLog()[0]} + middle + EnvLogs{loadedLog()[1]};
}

const EnvLog kFirstEnvError = {kInfo, "readPartitionData", "first env error, try second....\n"};
const EnvLog kNeedEquals = {kError, "parseAttribute", "[ubootenv] error need '=' skip this value\n"};

TEST_F(UbootenvHostileImageTest, EmptyFile) {
    writeDevice(kEnvDevice, "");
    Ubootenv env;
    EXPECT_TRUE(env.initDone);  // copy B is taken as read: nothing
    EXPECT_EQ((Variables{{"", ""}}), attributeList(env));
    EXPECT_EQ(around({{kError, "readPartitionData", "[ubootenv] read error 0x0 \n"},
                      kFirstEnvError,
                      kNeedEquals}),
              takeEnvLog());
}

TEST_F(UbootenvHostileImageTest, FileCutInsideAString) {
    // 100 bytes: the CRC word and 96 bytes of data, the fourth string cut after 46 characters.
    writeDevice(kEnvDevice, envImage(factoryVariables()).substr(0, 100));
    Ubootenv env;
    Variables expected = factoryVariables();
    expected.resize(4);
    expected[3].second = expected[3].second.substr(0, 46 - 10);
    EXPECT_EQ(expected, attributeList(env));
    EXPECT_EQ(
            around({{kError, "readPartitionData", "[ubootenv] read error 0x64 \n"}, kFirstEnvError}),
            takeEnvLog());
}

TEST_F(UbootenvHostileImageTest, BadCopyAAndCopyBCutShort) {
    std::string good = envCopy(dataArea({"hdmimode=720p60hz"}));
    std::string bad = good;
    bad[0] ^= 1;
    // Copy B's first 30 bytes only: read over the start of copy A's bytes in the buffer.
    writeDevice(kEnvDevice, twoCopies(bad, envCopy(dataArea({"b=1", "c=2"})).substr(0, 30)));
    Ubootenv env;
    EXPECT_TRUE(env.initDone);
    EXPECT_EQ((Variables{{"b", "1"}, {"c", "2"}}), attributeList(env));
    EXPECT_EQ(around({{kError, "readPartitionData",
                       "[ubootenv] CRC Check SYS_LOGE save_crc=" + hex8(storedCrc(bad, 0)) +
                               ", crcCalc = " + hex8(crcOf(bad.substr(4))) + " \n"},
                      kFirstEnvError}),
              takeEnvLog());
}

TEST_F(UbootenvHostileImageTest, NoTerminatingEmptyString) {
    // 15 strings of 4095 characters and one of 4091 fill the 65532 bytes exactly.
    std::vector<std::string> strings;
    for (int i = 0; i < 16; ++i) {
        std::string key = "k" + std::to_string(10 + i);
        strings.push_back(key + "=" + std::string((i < 15 ? 4095 : 4091) - 4, 'a' + i));
    }
    std::string data = dataArea(strings);
    ASSERT_EQ('\0', data[65531]);
    ASSERT_NE('\0', data[65530]);
    std::string copy = envCopy(data);
    writeDevice(kEnvDevice, copy + copy);
    Ubootenv env;
    EXPECT_TRUE(env.initDone);
    Variables list = attributeList(env);
    ASSERT_EQ(16u, list.size());
    EXPECT_EQ(std::string(4087, 'p'), list[15].second);
    EXPECT_EQ(around({{kError, "parseAttribute",
                       "[ubootenv] env data has no end mark within 65532 bytes\n"}}),
              takeEnvLog());
}

TEST_F(UbootenvHostileImageTest, NoNulAtAllInTheDataArea) {
    std::string copy = envCopy("a=" + std::string(65530, 'x'));
    writeDevice(kEnvDevice, copy + copy);
    Ubootenv env;
    EXPECT_TRUE(env.initDone);
    EXPECT_EQ((Variables{{"a", std::string(4095, 'x')}}), attributeList(env));
    EXPECT_EQ(around({{kError, "parseAttribute",
                       "[ubootenv] value of a (65530 characters) cut to 4095\n"},
                      {kError, "parseAttribute",
                       "[ubootenv] env data has no end mark within 65532 bytes\n"}}),
              takeEnvLog());
}

TEST_F(UbootenvHostileImageTest, KeyOf300Characters) {
    std::string key(300, 'k');
    writeDevice(kEnvDevice, envImage({{"a", "1"}, {key, "v"}, {"b", "2"}}));
    Ubootenv env;
    EXPECT_EQ((Variables{{"a", "1"}, {key.substr(0, 255), "v"}, {"b", "2"}}), attributeList(env));
    EXPECT_EQ(around({{kError, "parseAttribute", "[ubootenv] key of 300 characters cut to 255\n"}}),
              takeEnvLog());
}

TEST_F(UbootenvHostileImageTest, ValueOf5000Characters) {
    writeDevice(kEnvDevice, envImage({{"big", std::string(5000, 'v')}, {"b", "2"}}));
    Ubootenv env;
    EXPECT_EQ((Variables{{"big", std::string(4095, 'v')}, {"b", "2"}}), attributeList(env));
    EXPECT_EQ(around({{kError, "parseAttribute",
                       "[ubootenv] value of big (5000 characters) cut to 4095\n"}}),
              takeEnvLog());
}

TEST_F(UbootenvHostileImageTest, KeyAndValueBothTooLong) {
    std::string key(400, 'k');
    writeDevice(kEnvDevice, envImage({{key, std::string(6000, 'v')}}));
    Ubootenv env;
    EXPECT_EQ((Variables{{key.substr(0, 255), std::string(4095, 'v')}}), attributeList(env));
    EXPECT_EQ(around({{kError, "parseAttribute", "[ubootenv] key of 400 characters cut to 255\n"},
                      {kError, "parseAttribute",
                       "[ubootenv] value of " + key.substr(0, 255) +
                               " (6000 characters) cut to 4095\n"}}),
              takeEnvLog());
}

TEST_F(UbootenvHostileImageTest, ErasedFlashEverywhere) {
    std::string erased(131072, '\xff');
    writeDevice(kEnvDevice, erased);
    Ubootenv env;
    EXPECT_FALSE(env.initDone);
    std::string crc = hex8(crcOf(std::string(65532, '\xff')));
    EnvLogs attempt = {
            {kError, "readPartitionData",
             "[ubootenv] CRC Check SYS_LOGE save_crc=ffffffff, crcCalc = " + crc + " \n"},
            kFirstEnvError,
            {kError, "readPartitionData",
             "[ubootenv] CRC2 Check SYS_LOGE save_crc=ffffffff, crcCalc = " + crc + " \n"},
            {kError, "init", "[ubootenv] Cannot read /dev/block/env: -3.\n"}};
    EXPECT_EQ((EnvLogs{loadedLog()[0]} + repeated(attempt, 5) +
               EnvLogs{{kError, "init", "[ubootenv] read /dev/block/env failed \n"}}),
              takeEnvLog());
}

TEST_F(UbootenvHostileImageTest, ErasedDataAreaWithItsCrc) {
    std::string copy = envCopy(std::string(65532, '\xff'));
    writeDevice(kEnvDevice, copy + copy);
    Ubootenv env;
    EXPECT_TRUE(env.initDone);
    EXPECT_EQ((Variables{{"", ""}}), attributeList(env));
    EXPECT_EQ(around({kNeedEquals,
                      {kError, "parseAttribute",
                       "[ubootenv] env data has no end mark within 65532 bytes\n"}}),
              takeEnvLog());
}

// Random partitions, each checked for sanity: strings of random lengths over a small alphabet
// rich in '=' and NUL, a valid or broken CRC, and a random length of file.
TEST_F(UbootenvHostileImageTest, RandomPartitionsLoadAndSaveSafely) {
    std::mt19937 random(20240611);
    const char alphabet[] = {'\0', '\0', '=', '=', 'a', 'b', '\xff', ' '};
    for (int round = 0; round < 150; ++round) {
        std::string data(65532, '\0');
        size_t filled = std::uniform_int_distribution<size_t>(0, 65532)(random);
        std::uniform_int_distribution<int> pick(0, sizeof(alphabet) - 1);
        for (size_t i = 0; i < filled; ++i) {
            // Long runs without NUL now and then, to make long keys and values.
            data[i] = (round % 3 == 0 && i % 5000 != 0) ? 'v' : alphabet[pick(random)];
            if (round % 5 == 1 && i == 300) data[i] = '=';
        }
        std::string copy = envCopy(data);
        if (round % 4 == 3) copy[1] ^= 0x40;
        std::string image = copy + (round % 2 == 0 ? copy : envCopy(dataArea({"x=1"})));
        size_t length = std::uniform_int_distribution<size_t>(0, 131072)(random);
        image.resize(round % 2 == 1 ? 131072 : length);
        writeDevice(kEnvDevice, image);

        Ubootenv env;
        for (const EnvAttribute* node = &env.attributes; node != nullptr; node = node->next) {
            ASSERT_LT(strnlen(node->key, sizeof(node->key)), sizeof(node->key)) << round;
            ASSERT_LT(strnlen(node->value, sizeof(node->value)), sizeof(node->value)) << round;
        }
        if (env.initDone) {
            int result = env.updateValue("ubootenv.var.hdmimode", "720p60hz");
            EXPECT_TRUE(result == 0 || result == -8) << round << ": " << result;
            if (result == 0) {
                std::string saved = readDevice(kEnvDevice);
                EXPECT_TRUE(copyValid(saved, 0)) << round;
                EXPECT_TRUE(copyValid(saved, 65536)) << round;
                Ubootenv reloaded;
                EXPECT_TRUE(reloaded.initDone) << round;
                EXPECT_STREQ("720p60hz", reloaded.get("hdmimode")) << round;
            }
        }
        takeEnvLog();
    }
}

}  // namespace
}  // namespace vesk::test
