// getResolutionParameters: on the computed models the stored custom mode read back (status
// always 1, the rate in whole Hz from the stored thousandths); elsewhere the board's answer.
#include "BuiltProgram.h"
#include "ResolutionTest.h"
#include "Ubootenv.h"

namespace vesk::test {
namespace {

class ResolutionReadBackTest : public ResolutionTest {
  protected:
    ResolutionReadBackTest() { setLevel("I"); }

    // Stores the custom mode through the environment store, as the service does.
    void storeMode(const std::string& value) {
        Ubootenv env;
        ASSERT_EQ(0, env.updateValue("ubootenv.var.custom_mode", value.c_str()));
    }
    Resolution readBack() {
        vesk::host::clearCapturedLog();
        vesk::sim::clearJournal();
        return current();
    }
    static vesk::host::LogLine caseLine() {
        return infoLine(traced("getResolutionParameters", "computed model") +
                        " RZ30Max or RZ8K or RZ8KMAX case\n");
    }
    static vesk::host::LogLine timingLine(int h, int v, const std::string& rate) {
        return infoLine(traced("getResolutionParameters", "timing") +
                        " timing.h_active:" + std::to_string(h) +
                        " timing.v_active:" + std::to_string(v) + " timing.v_freq:" + rate + " \n");
    }
};

TEST_F(ResolutionReadBackTest, StoredZeroReports3840x2160AtRateZero) {
    EXPECT_EQ((Resolution{3840, 2160, 0, 1}), readBack());  // the factory stores "0"
    EXPECT_EQ((LogLines{controlInfo("DisplayModeControl construct\n"), caseLine(),
                        controlInfo("getHDMIOutputMode \n"),
                        controlWarn("getHDMIOutputMode custom_mode is null \n"),
                        timingLine(3840, 2160, "60.000000")}),
              capturedLogWithTags({kServiceTag, kControlTag}));
    EXPECT_EQ(
            (std::vector<json>{
                    {{"function", "bi_info_get_product_info"}, {"args", {nullptr}}, {"return", 0}}}),
            calls());
}

TEST_F(ResolutionReadBackTest, TwentyTwoFieldsWithRate59934Report59) {
    storeMode(kMode1920x1080);
    EXPECT_EQ((Resolution{1920, 1080, 59, 1}), readBack());
    EXPECT_EQ((LogLines{caseLine(), timingLine(1920, 1080, "59934.000000")}),
              capturedLogWithTag(kServiceTag));
}

TEST_F(ResolutionReadBackTest, TwentyOneFieldsReportZeros) {
    // Stored with the host tool, as a client developer would.
    int status = -1;
    std::string output =
            runCommand("VESK_ROOT='" + root.path() + "' " + veskdmCommand() +
                               " env set custom_mode "
                               "1,2,3,4,5,6,7,8,1920,10,11,12,13,14,1080,16,17,18,19,20,21 2>&1",
                       &status);
    ASSERT_EQ(0, status) << output;
    EXPECT_EQ((Resolution{0, 0, 0, 1}), readBack());
    EXPECT_EQ((LogLines{caseLine(), timingLine(0, 0, "0.000000")}), capturedLogWithTag(kServiceTag));
}

TEST_F(ResolutionReadBackTest, AnEmptyFieldReportsZeros) {
    std::string mode = kMode1920x1080;
    mode.replace(mode.find(",16,9,"), 6, ",16,,");  // field 20 empty: 21 tokens
    ASSERT_EQ(22u, fieldsOf(mode).size());
    storeMode(mode);
    EXPECT_EQ((Resolution{0, 0, 0, 1}), readBack());
}

TEST_F(ResolutionReadBackTest, AbsentModeIsAnErrorAndReportsZeros) {
    writeEnvironment(root, {{"hdmimode", "1080p60hz"}, {"is.bestmode", "true"}});
    EXPECT_EQ((Resolution{0, 0, 0, 1}), readBack());
    EXPECT_EQ((LogLines{controlInfo("DisplayModeControl construct\n"), caseLine(),
                        controlInfo("getHDMIOutputMode \n"),
                        controlError("getHDMIOutputMode error\n"), timingLine(0, 0, "0.000000")}),
              capturedLogWithTags({kServiceTag, kControlTag}));
}

TEST_F(ResolutionReadBackTest, MissingEnvironmentReportsZerosWithStatusOne) {
    ASSERT_EQ(0, unlink((root / kEnvPartition).c_str()));
    EXPECT_EQ((Resolution{0, 0, 0, 1}), readBack());
}

TEST_F(ResolutionReadBackTest, HasNoTraceLineAtEntry) {
    setLevel("D");
    storeMode(kMode1280x720);
    EXPECT_EQ((Resolution{1280, 720, 59, 1}), readBack());
    EXPECT_EQ((LogLines{caseLine(), timingLine(1280, 720, "59979.000000")}),
              capturedLogWithTag(kServiceTag));
}

TEST_F(ResolutionReadBackTest, WritesNothing) {
    setProperty(kModeProperty, "1280x720@59.979000");
    std::string before = partitionBytes(root);
    readBack();
    EXPECT_EQ(before, partitionBytes(root));
    EXPECT_EQ("1280x720@59.979000", getProperty(kModeProperty));
    EXPECT_EQ("", getProperty(kEnableProperty));
    EXPECT_TRUE(commands.empty());
}

TEST_F(ResolutionReadBackTest, OtherModelsAskTheBoard) {
    for (const char* model : {"8471", "", "RZ8K"}) {
        script({{"bi_info_get_product_info", productScript(model)},
                {"bi_resolution_get_parameters",
                 {{"return", -3}, {"out", resolutionRecordHex(2560, 1440, 144, -9)}}}});
        EXPECT_EQ((Resolution{2560, 1440, 144, -9}), readBack()) << model;
        EXPECT_EQ((std::vector<json>{{{"function", "bi_info_get_product_info"},
                                      {"args", {nullptr}},
                                      {"return", 0}},
                                     {{"function", "bi_resolution_get_parameters"},
                                      {"args", {nullptr}},
                                      {"return", -3}}}),
                  calls());
        EXPECT_EQ(LogLines{}, capturedLogWithTag(kServiceTag)) << model;
    }
}

}  // namespace
}  // namespace vesk::test
