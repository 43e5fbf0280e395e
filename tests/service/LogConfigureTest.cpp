// The log daemon's configuration: the 216-byte record and the two result conventions.
#include "ServiceTest.h"

namespace vesk::test {
namespace {

using vesk::hardware::veskdevicemanager::V1_0::VeskLogInfo;

// level at 0 (8 bytes), base at 8 (128), mode at 136 (64), total_size at 200 (8),
// once_size at 208 (8): 216 bytes.
std::string logRecord(const std::string& level, const std::string& base, const std::string& mode,
                      const std::string& total, const std::string& once) {
    std::string record(216, '\0');
    putText(record, 0, level);
    putText(record, 8, base);
    putText(record, 136, mode);
    putText(record, 200, total);
    putText(record, 208, once);
    return record;
}

json bytesOf(const std::string& record) {
    json bytes = json::array();
    for (unsigned char c : record) bytes.push_back(c);
    return bytes;
}

VeskLogInfo info(const char* level, const char* base, const char* mode, const char* total,
                 const char* once) {
    VeskLogInfo i;
    i.level = level;
    i.base = base;
    i.mode = mode;
    i.total_size = total;
    i.once_size = once;
    return i;
}

using LogConfigureTest = ServiceTest;

TEST_F(LogConfigureTest, SetterLaysOutTheRecordAndLogsTwoLines) {
    setLevel("D");
    script({{"bi_vesk_logd_set_configure", {{"return", 0}}}});
    EXPECT_EQ(0, int32_t(service->setVeskLogConfigure(
                         info("debug", "/data/vesk/log", "ring", "64M", "4M"))));
    auto board = callsOf("bi_vesk_logd_set_configure");
    ASSERT_EQ(1u, board.size());
    EXPECT_EQ(json::array({bytesOf(logRecord("debug", "/data/vesk/log", "ring", "64M", "4M"))}),
              board[0]["args"]);
    EXPECT_EQ((LogLines{debugLine(traced("setVeskLogConfigure") + "\n"),
                        debugLine("hidl  -----loginfo level:debug, base:/data/vesk/log, "
                                  "mode:ring, total_size:64M, once_size:4M, \n"),
                        debugLine("debug /data/vesk/log 0")}),
              capturedLogWithTag(kServiceTag));
}

TEST_F(LogConfigureTest, SetterFailureWritesTheErrorLineOnly) {
    setLevel("D");
    script({{"bi_vesk_logd_set_configure", {{"return", -7}}}});
    EXPECT_EQ(-7, int32_t(service->setVeskLogConfigure(info("i", "b", "m", "t", "o"))));
    EXPECT_EQ((LogLines{debugLine(traced("setVeskLogConfigure") + "\n"),
                        errorLine("bi_vesk_logd_set_configure failed, ret:-7\n")}),
              capturedLogWithTag(kServiceTag));
}

TEST_F(LogConfigureTest, NineCharacterLevelRunsIntoBaseWhichOverwritesIt) {
    service->setVeskLogConfigure(info("verbose99", "/b", "", "", ""));
    EXPECT_EQ(json::array({bytesOf(logRecord("verbose9", "/b", "", "", ""))}),
              callsOf("bi_vesk_logd_set_configure")[0]["args"]);
}

TEST_F(LogConfigureTest, NineCharacterLevelKeepsItsNinthCharacterWhenBaseIsEmpty) {
    service->setVeskLogConfigure(info("verbose99", "", "", "", ""));
    EXPECT_EQ(json::array({bytesOf(logRecord("verbose99", "", "", "", ""))}),
              callsOf("bi_vesk_logd_set_configure")[0]["args"]);
}

TEST_F(LogConfigureTest, OnceSizeOfEightCharactersFillsTheRecordsEnd) {
    service->setVeskLogConfigure(info("", "", "", "", "12345678"));
    EXPECT_EQ(json::array({bytesOf(logRecord("", "", "", "", "12345678"))}),
              callsOf("bi_vesk_logd_set_configure")[0]["args"]);
}

using LogConfigureDeathTest = LogConfigureTest;

TEST_F(LogConfigureDeathTest, OnceSizeOfNineCharactersEndsTheProcess) {
    EXPECT_DEATH(service->setVeskLogConfigure(info("", "", "", "", "123456789")),
                 "buffer overflow detected");
}

TEST_F(LogConfigureTest, GetterZeroIsAFailureWithAnEmptyRecord) {
    setLevel("D");
    script({{"bi_vesk_logd_get_configure",
             {{"return", 0}, {"out", hexOf(logRecord("d", "b", "m", "t", "o"))}}}});
    int32_t ret = 99;
    VeskLogInfo got = info("x", "x", "x", "x", "x");
    service->getVeskLogConfigure([&](int32_t r, const VeskLogInfo& i) {
        ret = r;
        got = i;
    });
    EXPECT_EQ(0, ret);
    EXPECT_TRUE(got == VeskLogInfo{});
    EXPECT_EQ((LogLines{debugLine(traced("getVeskLogConfigure") + "\n"),
                        errorLine("bi_vesk_logd_get_configure failed, ret:0\n")}),
              capturedLogWithTag(kServiceTag));
}

TEST_F(LogConfigureTest, GetterNegativeLogsTheRecordButAnswersEmpty) {
    setLevel("D");
    script({{"bi_vesk_logd_get_configure",
             {{"return", -3}, {"out", hexOf(logRecord("d", "b", "m", "t", "o"))}}}});
    int32_t ret = 0;
    VeskLogInfo got = info("x", "x", "x", "x", "x");
    service->getVeskLogConfigure([&](int32_t r, const VeskLogInfo& i) {
        ret = r;
        got = i;
    });
    EXPECT_EQ(-3, ret);
    EXPECT_TRUE(got == VeskLogInfo{});
    EXPECT_EQ((LogLines{debugLine(traced("getVeskLogConfigure") + "\n"),
                        debugLine("hidl -----loginfo level:d, base:b, mode:m, total_size:t, "
                                  "once_size:o, \n")}),
              capturedLogWithTag(kServiceTag));
}

TEST_F(LogConfigureTest, GetterOneAnswersTheFilledRecord) {
    script({{"bi_vesk_logd_get_configure",
             {{"return", 1}, {"out", hexOf(logRecord("info", "/data/log", "file", "32M", "1M"))}}}});
    int32_t ret = 0;
    VeskLogInfo got;
    service->getVeskLogConfigure([&](int32_t r, const VeskLogInfo& i) {
        ret = r;
        got = i;
    });
    EXPECT_EQ(1, ret);
    EXPECT_TRUE(got == info("info", "/data/log", "file", "32M", "1M"));
    EXPECT_TRUE(capturedLogWithTag(kServiceTag).empty());
}

}  // namespace
}  // namespace vesk::test
