// calculateResolutionParameters end to end: on the four computed models the size is checked,
// applied and stored for the boot loader; every other model is the board's business.
#include <unistd.h>

#include "ResolutionTest.h"

namespace vesk::test {
namespace {

const char kPreviousMode[] = "1280x720@59.979000";

class ResolutionCalculateTest : public ResolutionTest {
  protected:
    json productCall() {
        return {{"function", "bi_info_get_product_info"}, {"args", {nullptr}}, {"return", 0}};
    }
    // The partition is exactly as the factory made it.
    void expectEnvironmentUntouched(const std::string& before) {
        EXPECT_EQ(before, partitionBytes(root));
        EXPECT_TRUE(commands.empty());
        EXPECT_EQ("", getProperty(kEnableProperty));
        EXPECT_EQ("", getProperty(kModeProperty));
    }
    // Forwarded with the arguments unchanged, answered with the board's record.
    void expectForwarded(const std::string& model) {
        SCOPED_TRACE(model);
        script({{"bi_info_get_product_info", productScript(model)},
                {"bi_resolution_calculate_parameters",
                 {{"return", -5}, {"out", resolutionRecordHex(1234, 567, 89, -7)}}}});
        std::string before = partitionBytes(root);
        vesk::sim::clearJournal();
        vesk::host::clearCapturedLog();
        EXPECT_EQ((Resolution{1234, 567, 89, -7}), calculate(1920, 1080, 30));
        EXPECT_EQ((std::vector<json>{{{"function", "bi_info_get_product_info"},
                                      {"args", {nullptr}},
                                      {"return", 0}},
                                     {{"function", "bi_resolution_calculate_parameters"},
                                      {"args", {1920, 1080, 30, nullptr}},
                                      {"return", -5}}}),
                  calls());
        EXPECT_EQ((LogLines{infoLine(traced("calculateResolutionParameters") + "\n"),
                            infoLine("using default resolution case\n")}),
                  capturedLogWithTag(kServiceTag));
        expectEnvironmentUntouched(before);
    }
};

TEST_F(ResolutionCalculateTest, FullHdAtThirtyOnModel8470IsAppliedForSixty) {
    setLevel("I");
    std::vector<std::string> atCommand;
    onCommand = [&] {
        atCommand = {printenv(root, 0, "custom_mode"), printenv(root, 1, "custom_mode")};
    };

    EXPECT_EQ((Resolution{1920, 1080, 59, 1}), calculate(1920, 1080, 30));

    for (int copy : {0, 1}) {
        SCOPED_TRACE(copy);
        std::vector<std::string> fields = fieldsOf(printenv(root, copy, "custom_mode"));
        ASSERT_EQ(22u, fields.size());
        EXPECT_EQ("1920", fields[8]);
        EXPECT_EQ("1080", fields[14]);
        EXPECT_EQ("16", fields[18]);
        EXPECT_EQ("9", fields[19]);
        EXPECT_EQ(kMode1920x1080, printenv(root, copy, "custom_mode"));
        EXPECT_EQ("999p60hz", printenv(root, copy, "hdmimode"));
        EXPECT_EQ("false", printenv(root, copy, "is.bestmode"));
    }
    EXPECT_EQ("1920x1080@59.934000", getProperty(kModeProperty));
    EXPECT_EQ("1", getProperty(kEnableProperty));
    EXPECT_EQ(std::vector<std::string>{kModeTool}, commands);
    EXPECT_EQ((std::vector<std::string>{"0", "0"}), atCommand) << "the tool runs before the store";
    EXPECT_EQ(std::vector<json>{productCall()}, calls());
    EXPECT_EQ((LogLines{infoLine(traced("calculateResolutionParameters") + "\n"),
                        infoLine(traced("calculateResolutionParameters", "computed model") +
                                 " modid 8470 case\n")}),
              capturedLogWithTag(kServiceTag));
    EXPECT_EQ(1, countLines(kControlTag, "setHDMIOutputMode success\n"));
}

TEST_F(ResolutionCalculateTest, TheOtherThreeModelsAreComputedToo) {
    setLevel("I");
    for (const char* model : {"8475", "8476", "8478"}) {
        scriptModel(model);
        vesk::sim::clearJournal();
        vesk::host::clearCapturedLog();
        EXPECT_EQ((Resolution{1280, 720, 59, 1}), calculate(1280, 720, 50)) << model;
        EXPECT_EQ(std::vector<json>{productCall()}, calls());
        EXPECT_EQ((LogLines{infoLine(traced("calculateResolutionParameters") + "\n"),
                            infoLine(std::string(traced("calculateResolutionParameters",
                                                        "computed model") +
                                                 " modid ") +
                                     model + " case\n")}),
                  capturedLogWithTag(kServiceTag));
        EXPECT_EQ("1280x720@59.979000", getProperty(kModeProperty));
    }
}

TEST_F(ResolutionCalculateTest, OddSizeComesBackRoundedUpToEven) {
    EXPECT_EQ((Resolution{1922, 1082, 59, 1}), calculate(1921, 1081, 60));
    EXPECT_EQ("1922x1082@59.984000", getProperty(kModeProperty));
}

TEST_F(ResolutionCalculateTest, SizeBelowTheBoundsIsRefusedAndNothingIsWritten) {
    setLevel("I");
    std::string before = partitionBytes(root);
    EXPECT_EQ((Resolution{799, 600, 60, -1}), calculate(799, 600, 30));
    expectEnvironmentUntouched(before);
    EXPECT_EQ(LogLines{controlError("verify out of range 799x600 in line 55\n")},
              LogLines{capturedLogWithTag(kControlTag).back()});
}

TEST_F(ResolutionCalculateTest, AreaTooLargeIsRefusedAtLine38) {
    std::string before = partitionBytes(root);
    EXPECT_EQ((Resolution{4096, 4096, 60, -1}), calculate(4096, 4096, 24));
    EXPECT_EQ(LogLines{controlError("verify out of range 4096x4096 in line 38\n")},
              capturedLogWithTag(kControlTag));
    expectEnvironmentUntouched(before);
}

TEST_F(ResolutionCalculateTest, Model8471IsForwardedToTheBoard) {
    setLevel("I");
    expectForwarded("8471");
}

TEST_F(ResolutionCalculateTest, ModelZeroIsForwardedToTheBoard) {
    setLevel("I");
    expectForwarded("");
    expectForwarded("0");
}

TEST_F(ResolutionCalculateTest, NonNumericModelIsForwardedToTheBoard) {
    setLevel("I");
    expectForwarded("RZ8K");
}

TEST_F(ResolutionCalculateTest, ExtremeModelNumbersAreForwarded) {
    setLevel("I");
    expectForwarded("-2147483648");
    expectForwarded("2147483647");
    expectForwarded("-8470");
}

TEST_F(ResolutionCalculateTest, NeighbouringModelsAreForwarded) {
    for (const char* model : {"8469", "8472", "8473", "8474", "8477", "8479", "8501", "84700"}) {
        scriptModel(model);
        vesk::sim::clearJournal();
        // The simulated board answers with the request and status 1.
        EXPECT_EQ((Resolution{1024, 768, 75, 1}), calculate(1024, 768, 75)) << model;
        EXPECT_EQ(1u, callsOf("bi_resolution_calculate_parameters").size()) << model;
    }
    EXPECT_TRUE(commands.empty());
}

TEST_F(ResolutionCalculateTest, ModelTextIsReadAsAtoiReadsIt) {
    for (const char* model : {"8470abc", " 8478", "08475", "+8476"}) {
        scriptModel(model);
        vesk::sim::clearJournal();
        EXPECT_EQ((Resolution{1920, 1080, 59, 1}), calculate(1920, 1080, 60)) << model;
        EXPECT_EQ(std::vector<json>{productCall()}, calls()) << model;
    }
}

TEST_F(ResolutionCalculateTest, BoardThatWritesNothingGivesZeros) {
    script({{"bi_info_get_product_info", productScript("8471")},
            {"bi_resolution_calculate_parameters", {{"return", -1}}}});
    EXPECT_EQ((Resolution{0, 0, 0, 0}), calculate(1920, 1080, 60));
}

TEST_F(ResolutionCalculateTest, ReadOnlyEnvironmentGivesMinusTwo) {
    setProperty(kModeProperty, kPreviousMode);
    std::string before = partitionBytes(root);
    Resolution result;
    {
        UnwritableFile readOnly(root / kEnvPartition);
        result = calculate(1920, 1080, 30);
    }
    EXPECT_EQ((Resolution{1920, 1080, 59, -2}), result);
    EXPECT_EQ("1", getProperty(kEnableProperty));
    EXPECT_EQ(kPreviousMode, getProperty(kModeProperty));
    EXPECT_EQ(before, partitionBytes(root));
    EXPECT_EQ(std::vector<std::string>{kModeTool}, commands);
}

TEST_F(ResolutionCalculateTest, MissingEnvironmentDeviceGivesMinusTwo) {
    setProperty(kModeProperty, kPreviousMode);
    ASSERT_EQ(0, unlink((root / kEnvPartition).c_str()));
    EXPECT_EQ((Resolution{1920, 1080, 59, -2}), calculate(1920, 1080, 30));
    EXPECT_EQ("1", getProperty(kEnableProperty));
    EXPECT_EQ(kPreviousMode, getProperty(kModeProperty));
    EXPECT_EQ(3, countLines(kControlTag, "updateValue ubootenv.var.custom_mode error\n"));
}

TEST_F(ResolutionCalculateTest, TraceIsAnInformationLine) {
    for (const char* level : {"E", "W"}) {
        setLevel(level);
        vesk::host::clearCapturedLog();
        calculate(1920, 1080, 60);
        EXPECT_EQ(LogLines{}, capturedLogWithTag(kServiceTag)) << level;
    }
    setLevel("D");
    vesk::host::clearCapturedLog();
    calculate(1920, 1080, 60);
    EXPECT_EQ((LogLines{infoLine(traced("calculateResolutionParameters") + "\n"),
                        infoLine(traced("calculateResolutionParameters", "computed model") +
                                 " modid 8470 case\n")}),
              capturedLogWithTag(kServiceTag));
}

TEST_F(ResolutionCalculateTest, EmptyCallbackFailsAfterTheModeIsApplied) {
    EXPECT_THROW(service->calculateResolutionParameters(1920, 1080, 60, nullptr),
                 std::bad_function_call);
    EXPECT_EQ("1920x1080@59.934000", getProperty(kModeProperty));
}

TEST_F(ResolutionCalculateTest, AppliedModeIsWhatIsReadBack) {
    ASSERT_EQ((Resolution{1280, 720, 59, 1}), calculate(1280, 720, 60));
    EXPECT_EQ((Resolution{1280, 720, 59, 1}), current());
    ASSERT_EQ((Resolution{3840, 2160, 59, 1}), calculate(3840, 2160, 60));
    EXPECT_EQ((Resolution{3840, 2160, 59, 1}), current());
}

}  // namespace
}  // namespace vesk::test
