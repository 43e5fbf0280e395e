// Product information: the record's conversion, the per-process cache and the DHCP switch.
#include "ServiceTest.h"

namespace vesk::test {
namespace {

using vesk::hardware::veskdevicemanager::V1_0::ProductInfo;

// Slot offsets of the board's 2048-byte product record, in ProductInfo's string order.
struct Slot {
    size_t offset;
    const char* text;
};
const Slot kTextSlots[] = {
        {0, "VESK"},       {64, "8470"},      {96, "RZ8K"},          {128, "SN-0001-ABC"},
        {256, "fw 3.2.1"}, {320, "hw rev B"}, {384, "2026-11-01"},   {448, "00:11:22:33:44:55"},
        {480, "eth0"},     {512, "wlan0"},    {544, "long notes"},   {1600, "t12"},
        {1632, "t13"},     {1664, "t14"},     {1696, "t15"},         {1728, "t16"},
        {1760, "t17"},     {1792, "t18"},     {1856, "t19-64-wide"}, {1952, "t20"},
        {1984, "t21"}};

std::string productRecord(const std::string& flag1, const std::string& flag2,
                          const std::string& flag3, const std::string& useDhcp) {
    std::string record(2048, '\0');
    for (const auto& slot : kTextSlots) putText(record, slot.offset, slot.text);
    putText(record, 1568, flag1);
    putText(record, 1824, flag2);
    putText(record, 1920, flag3);
    putText(record, 2016, useDhcp);
    return record;
}

std::vector<std::string> textsOf(const ProductInfo& info) {
    return {info.text01, info.modelId, info.text03, info.text04, info.text05, info.text06,
            info.text07, info.text08,  info.text09, info.text10, info.text11, info.text12,
            info.text13, info.text14,  info.text15, info.text16, info.text17, info.text18,
            info.text19, info.text20,  info.text21};
}

class ProductInfoTest : public ServiceTest {
  protected:
    ProductInfo fetch() {
        ProductInfo result;
        int called = 0;
        service->getProductInfo([&](const ProductInfo& info) {
            result = info;
            ++called;
        });
        EXPECT_EQ(1, called);
        return result;
    }
    void scriptRecord(const std::string& record, int ret = 0) {
        script({{"bi_info_get_product_info", {{"return", ret}, {"out", hexOf(record)}}}});
    }
};

TEST_F(ProductInfoTest, ConvertsEverySlotFieldByField) {
    scriptRecord(productRecord("1", "0", "7", "true"));
    ProductInfo info = fetch();
    std::vector<std::string> expected;
    for (const auto& slot : kTextSlots) expected.push_back(slot.text);
    EXPECT_EQ(expected, textsOf(info));
    EXPECT_TRUE(info.flag1);
    EXPECT_FALSE(info.flag2);
    EXPECT_TRUE(info.flag3);
    EXPECT_TRUE(info.useDHCP);
}

TEST_F(ProductInfoTest, FirstCallLogsAllocationAndDhcpLines) {
    setLevel("D");
    scriptRecord(productRecord("", "", "", "true"));
    fetch();
    EXPECT_EQ((LogLines{debugLine(traced("getProductInfo") + "\n"),
                        debugLine("getProductInfo: productPtr malloc ok\n"),
                        debugLine("productPtr->useDHCP:true\n"), debugLine("info.useDHCP:1\n")}),
              capturedLogWithTag(kServiceTag));
}

TEST_F(ProductInfoTest, SecondCallAnswersFromTheCacheWithoutTheBoard) {
    scriptRecord(productRecord("1", "1", "0", "false"));
    ProductInfo first = fetch();
    setLevel("D");
    vesk::host::clearCapturedLog();
    ProductInfo second = fetch();
    EXPECT_TRUE(first == second);
    EXPECT_EQ(1u, callsOf("bi_info_get_product_info").size());
    EXPECT_EQ((LogLines{debugLine(traced("getProductInfo") + "\n"),
                        debugLine("getProductInfo: productPtr is not NULL\n"),
                        debugLine("productPtr->useDHCP:false\n"), debugLine("info.useDHCP:0\n")}),
              capturedLogWithTag(kServiceTag));
}

TEST_F(ProductInfoTest, UseDhcpInUpperCaseIsFalse) {
    scriptRecord(productRecord("", "", "", "TRUE"));
    EXPECT_FALSE(fetch().useDHCP);
}

TEST_F(ProductInfoTest, UseDhcpWithTrailingBlankIsFalse) {
    scriptRecord(productRecord("", "", "", "true "));
    EXPECT_FALSE(fetch().useDHCP);
}

TEST_F(ProductInfoTest, SwitchWithDigitsThenLettersIsTrue) {
    scriptRecord(productRecord("12abc", "abc", "", "true"));
    ProductInfo info = fetch();
    EXPECT_TRUE(info.flag1);
    EXPECT_FALSE(info.flag2);
    EXPECT_FALSE(info.flag3);
}

TEST_F(ProductInfoTest, BoardFailureAnswersEmptyAndIsNotRetried) {
    setLevel("D");
    script({{"bi_info_get_product_info",
             {{"return", -2}, {"out", hexOf(productRecord("1", "1", "1", "true"))}}}});
    ProductInfo first = fetch();
    EXPECT_TRUE(first == ProductInfo{});
    EXPECT_EQ((LogLines{debugLine(traced("getProductInfo") + "\n"),
                        debugLine("getProductInfo: productPtr malloc ok\n"),
                        errorLine("getProductInfo: bi_info_get_product_info failed\n")}),
              capturedLogWithTag(kServiceTag));
    vesk::host::clearCapturedLog();
    ProductInfo second = fetch();
    EXPECT_TRUE(second == ProductInfo{});
    EXPECT_EQ(1u, callsOf("bi_info_get_product_info").size());
    EXPECT_EQ((LogLines{debugLine(traced("getProductInfo") + "\n"),
                        debugLine("getProductInfo: productPtr is not NULL\n")}),
              capturedLogWithTag(kServiceTag));
}

TEST_F(ProductInfoTest, FailureLineIsWrittenAtEveryLevel) {
    script({{"bi_info_get_product_info", {{"return", -1}}}});
    fetch();
    EXPECT_EQ(LogLines{errorLine("getProductInfo: bi_info_get_product_info failed\n")},
              capturedLogWithTag(kServiceTag));
}

TEST_F(ProductInfoTest, SetProductInfoPassesTheWordAndNeverTraces) {
    setLevel("D");
    script({{"bi_info_set_product_info", {{"return", -9}}}});
    EXPECT_EQ(-9, int32_t(service->setProductInfo(1)));
    EXPECT_EQ(-9, int32_t(service->setProductInfo(0)));
    EXPECT_TRUE(capturedLogWithTag(kServiceTag).empty());
    auto board = callsOf("bi_info_set_product_info");
    ASSERT_EQ(2u, board.size());
    EXPECT_EQ(json::array({"true"}), board[0]["args"]);
    EXPECT_EQ(json::array({"false"}), board[1]["args"]);
}

TEST_F(ProductInfoTest, SetProductInfoWithOtherValuePassesEmptyWordAfterError) {
    script({{"bi_info_set_product_info", {{"return", 4}}}});
    EXPECT_EQ(4, int32_t(service->setProductInfo(2)));
    EXPECT_EQ(LogLines{errorLine("setProductInfo, input error,please input 1 or 0\n")},
              capturedLogWithTag(kServiceTag));
    EXPECT_EQ(json::array({""}), callsOf("bi_info_set_product_info")[0]["args"]);
}

TEST_F(ProductInfoTest, CacheKeepsTheOldDhcpSwitchAfterSetProductInfo) {
    scriptRecord(productRecord("", "", "", "true"));
    EXPECT_TRUE(fetch().useDHCP);
    service->setProductInfo(0);
    EXPECT_TRUE(fetch().useDHCP);
}

TEST_F(ProductInfoTest, ProtocolTypeTracesAndForwards) {
    setLevel("D");
    script({{"bi_info_get_protocol_type", {{"return", -3}}}});
    EXPECT_EQ(-3, int32_t(service->getProtocolType()));
    EXPECT_EQ(LogLines{debugLine(traced("getProtocolType") + "\n")},
              capturedLogWithTag(kServiceTag));
}

TEST_F(ProductInfoTest, SlotFillingItsWidthRunsIntoTheNextButNotPastTheRecord) {
    std::string record = productRecord("", "", "", "");
    putText(record, 1984, std::string(32, 'x'));
    putText(record, 2016, std::string(32, 'y'));  // the last slot ends the record unterminated
    scriptRecord(record);
    ProductInfo info = fetch();
    EXPECT_EQ(std::string(32, 'x') + std::string(32, 'y'), std::string(info.text21));
    EXPECT_FALSE(info.useDHCP);
}

}  // namespace
}  // namespace vesk::test
