// setHDMIOutputMode(): the order of its steps, the three custom-mode writes, the read-back,
// the selection, the published property, and -2 at the first failure with nothing rolled back.
#include <unistd.h>

#include "DisplayModeFixture.h"

namespace vesk::test {
namespace {

const char* const kDump1920x1080[] = {
        "cvt_rb_pix_clock        138.500 MHz\n", "cvt_rb_h_total          2080 Pixels\n",
        "cvt_rb_h_active         1920 Pixels\n", "cvt_rb_h_blank          160 Pixels\n",
        "cvt_rb_h_front_porch    48 Pixels\n",   "cvt_rb_h_sync           32 Pixels\n",
        "cvt_rb_h_back_porch     80 Pixels\n",   "cvt_rb_h_sync_polarity  1 \n",
        "cvt_rb_h_freq           66.587 KHz\n",  "cvt_rb_h_period         15.018 us\n",
        "cvt_rb_v_total          1111 Pixels\n", "cvt_rb_v_active         1080 Pixels\n",
        "cvt_rb_v_blank          31 Pixels\n",   "cvt_rb_vblank_duration  466 us\n",
        "cvt_rb_v_front_porch    3 Pixels\n",    "cvt_rb_v_sync           5 Pixels\n",
        "cvt_rb_v_back_porch     23 Pixels\n",   "cvt_rb_v_sync_polarity  0 \n",
        "cvt_rb_v_freq           59.934 Hz\n",   "cvt_rb_v_period         16.685 us\n",
        "cvt_rb_peak_bw          3324 Mbit/s\n", "cvt_rb_line_bw          3068 Mbit/s\n",
        "cvt_rb_active_bw        2983 Mbit/s\n",
};

const char kReadBack1920x1080[] =
        "getHDMIOutputMode h_active:1920 Pixels v_active:1080 Pixels v_freq:59.934000 hz\n";
const char kCustomModeOk[] = "updateValue ubootenv.var.custom_mode successful\n";
const char kCustomModeError[] = "updateValue ubootenv.var.custom_mode error\n";
const char kPreviousMode[] = "1280x720@59.979000";

// The factory environment's selection, written by hand.
const Variables kSelection = {{"bootdelay", "1"},
                              {"hdmimode", "1080p60hz"},
                              {"is.bestmode", "true"},
                              {"custom_mode", "0"}};

class ApplyOutputModeTest : public DisplayModeTest {
  protected:
    // verify() and setHDMIOutputMode() on a fresh object; the log holds the second call alone.
    int apply(uint32_t width, uint32_t height) {
        DisplayModeControl control;
        EXPECT_EQ(1, control.verify(8470, width, height, 60));
        vesk::host::clearCapturedLog();
        return control.setHDMIOutputMode();
    }
    LogLines controlLog() { return capturedLogWithTag(kControlTag); }
    std::string stored(int copy, const std::string& name) { return printenv(root, copy, name); }
};

TEST_F(ApplyOutputModeTest, FullHdStringHasTheSizesTheRatioAndTheFlags) {
    ASSERT_EQ(1, apply(1920, 1080));
    for (int copy : {0, 1}) {
        std::vector<std::string> fields = fieldsOf(stored(copy, "custom_mode"));
        ASSERT_EQ(22u, fields.size()) << copy;
        EXPECT_EQ("1920", fields[8]);
        EXPECT_EQ("1080", fields[14]);
        EXPECT_EQ((std::vector<std::string>{"1", "0", "1"}),
                  std::vector<std::string>(fields.begin() + 15, fields.begin() + 18));
        EXPECT_EQ("16", fields[18]);
        EXPECT_EQ("9", fields[19]);
        EXPECT_EQ("1", fields[20]);
        EXPECT_EQ("1", fields[21]);
        EXPECT_EQ(kMode1920x1080, stored(copy, "custom_mode"));
    }
}

TEST_F(ApplyOutputModeTest, LogsEveryStepInOrder) {
    setLevel("I");
    ASSERT_EQ(1, apply(1920, 1080));
    LogLines expected = {controlInfo("setHDMIOutputMode 65\n")};
    for (const char* line : kDump1920x1080) {
        expected.push_back(lineOf(ANDROID_LOG_INFO, kCalculatorTag, line));
    }
    for (const char* line :
         {"", kCustomModeOk, kCustomModeOk, kCustomModeOk, "getHDMIOutputMode \n",
          kReadBack1920x1080, "updateValue ubootenv.var.is.bestmode successful\n",
          "updateValue ubootenv.var.hdmimode successful\n", "setHDMIOutputMode success\n"}) {
        expected.push_back(controlInfo(line[0] == '\0' ? std::string(kMode1920x1080) + "\n" : line));
    }
    EXPECT_EQ(expected, capturedLogWithTags({kControlTag, kCalculatorTag}));
}

TEST_F(ApplyOutputModeTest, CustomModeIsWrittenThreeTimesBeforeTheReadBack) {
    setLevel("I");
    ASSERT_EQ(1, apply(1920, 1080));
    const std::string update =
            std::string("update value name [ubootenv.var.custom_mode]: value [") + kMode1920x1080 +
            "]";
    EXPECT_EQ(3, countLines(kEnvTag, update));
    EXPECT_EQ(3, countLines(kControlTag, kCustomModeOk));
    int readBack = indexOfLine(kControlTag, "getHDMIOutputMode \n");
    ASSERT_GE(readBack, 0);
    LogLines log = capturedLog();
    int updates = 0;
    int successes = 0;
    for (int i = 0; i < readBack; ++i) {
        updates += log[i].tag == kEnvTag && log[i].message.find(update) != std::string::npos;
        successes += log[i].tag == kControlTag && log[i].message == kCustomModeOk;
    }
    EXPECT_EQ(3, updates);
    EXPECT_EQ(3, successes);
    // The first write changes the value and saves; the two others find it stored already.
    // The selection then saves twice (is.bestmode true -> false, hdmimode 1080p60hz -> 999p60hz).
    EXPECT_EQ(3, countLines(kEnvTag, "Save ubootenv to /dev/block/env succeed!"));
}

TEST_F(ApplyOutputModeTest, ModeToolRunsOnceBeforeTheNewModeIsStored) {
    setLevel("I");
    std::vector<std::string> seen;
    onCommand = [&] {
        seen = {stored(0, "custom_mode"), stored(1, "custom_mode"), getProperty(kEnableProperty)};
        seen.push_back(std::to_string(countLines(kControlTag, kMode1920x1080)));
        seen.push_back(std::to_string(countLines(kControlTag, "updateValue")));
    };
    ASSERT_EQ(1, apply(1920, 1080));
    EXPECT_EQ(std::vector<std::string>{kModeTool}, commands);
    // The old mode is still stored, the switch is on, the string is logged, nothing written yet.
    EXPECT_EQ((std::vector<std::string>{"0", "0", "1", "1", "0"}), seen);
}

TEST_F(ApplyOutputModeTest, ModeToolFailureIsIgnored) {
    commandStatus = 256;
    EXPECT_EQ(1, apply(1920, 1080));
    EXPECT_EQ(std::vector<std::string>{kModeTool}, commands);
    EXPECT_EQ("1920x1080@59.934000", getProperty(kModeProperty));
}

TEST_F(ApplyOutputModeTest, ExactSixtyHertzIsPublishedWithSixDecimals) {
    // 1920 x 606: 19 blanking lines (sync 10 + porch 3 + 6), 625 x 2080 in all, 60 x 625 x 2080
    // = 78 MHz exactly, so the field rate is exactly 60.
    ASSERT_EQ(1, apply(1920, 606));
    EXPECT_EQ("1920x606@60.000000", getProperty(kModeProperty));
    EXPECT_EQ("37500,60000,78000,2080,160,48,32,80,1920,625,19,3,10,6,606,1,0,1,320,101,1,1",
              stored(0, "custom_mode"));
}

TEST_F(ApplyOutputModeTest, SuccessStoresTheSelectionAndPublishesTheMode) {
    ASSERT_EQ(1, apply(1920, 1080));
    EXPECT_EQ("1", getProperty(kEnableProperty));
    EXPECT_EQ("1920x1080@59.934000", getProperty(kModeProperty));
    for (int copy : {0, 1}) {
        EXPECT_EQ("999p60hz", stored(copy, "hdmimode"));
        EXPECT_EQ("false", stored(copy, "is.bestmode"));
    }
    std::string image = partitionBytes(root);
    EXPECT_TRUE(copyValid(image, 0));
    EXPECT_TRUE(copyValid(image, 65536));
    EXPECT_EQ(image.substr(0, 65536), image.substr(65536));
}

TEST_F(ApplyOutputModeTest, SeveralTimingsAreStoredFieldByField) {
    // From custom_mode_reference.py.
    struct Case {
        uint32_t width, height;
        const char* mode;
        const char* property;
    };
    for (const Case& c : {
                 Case{800, 600,
                      "36979,59837,35500,960,160,48,32,80,800,618,18,3,4,11,600,1,0,1,4,3,1,1",
                      "800x600@59.837000"},
                 Case{1921, 1081,
                      "66763,59984,139000,2082,160,48,32,80,1922,1113,31,3,10,18,1082,1,0,1,961,"
                      "541,1,1",
                      "1922x1082@59.984000"},
                 Case{4096, 2160,
                      "133282,59983,567250,4256,160,48,32,80,4096,2222,62,3,10,49,2160,1,0,1,256,"
                      "135,1,"
                      "1",
                      "4096x2160@59.983000"},
                 Case{2160, 4096,
                      "252694,59980,586250,2320,160,48,32,80,2160,4213,117,3,10,104,4096,1,0,1,135,"
                      "256,"
                      "1,1",
                      "2160x4096@59.980000"},
                 Case{3840, 2160,
                      "133313,59997,533250,4000,160,48,32,80,3840,2222,62,3,5,54,2160,1,0,1,16,9,1,"
                      "1",
                      "3840x2160@59.997000"},
                 Case{1280, 720, kMode1280x720, "1280x720@59.979000"},
         }) {
        ASSERT_EQ(1, apply(c.width, c.height)) << c.width << "x" << c.height;
        EXPECT_EQ(c.mode, stored(0, "custom_mode"));
        EXPECT_EQ(c.mode, stored(1, "custom_mode"));
        EXPECT_EQ(c.property, getProperty(kModeProperty));
    }
}

TEST_F(ApplyOutputModeTest, EnvironmentThatCannotBeLoadedGivesMinusTwo) {
    setLevel("I");
    setProperty(kModeProperty, kPreviousMode);
    ASSERT_EQ(0, unlink((root / kEnvPartition).c_str()));
    EXPECT_EQ(-2, apply(1920, 1080));
    EXPECT_EQ((LogLines{controlInfo("setHDMIOutputMode 65\n"),
                        controlInfo(std::string(kMode1920x1080) + "\n"),
                        controlError(kCustomModeError), controlError(kCustomModeError),
                        controlError(kCustomModeError), controlInfo("getHDMIOutputMode \n"),
                        controlError("getHDMIOutputMode error\n")}),
              controlLog());
    EXPECT_EQ("1", getProperty(kEnableProperty));
    EXPECT_EQ(kPreviousMode, getProperty(kModeProperty));
    EXPECT_EQ(std::vector<std::string>{kModeTool}, commands);
    EXPECT_NE(0, access((root / kEnvPartition).c_str(), F_OK)) << "no device is made";
}

TEST_F(ApplyOutputModeTest, ReadOnlyImageGivesMinusTwoAtTheSelection) {
    setLevel("I");
    setProperty(kModeProperty, kPreviousMode);
    std::string before = partitionBytes(root);
    int result;
    {
        UnwritableFile readOnly(root / kEnvPartition);
        result = apply(1920, 1080);
    }
    EXPECT_EQ(-2, result);
    // The list in memory keeps the new mode after the failed save, so the second and third
    // writes find it stored already and the read-back matches; the next write that must reach
    // the device is the selection's.
    EXPECT_EQ((LogLines{controlInfo("setHDMIOutputMode 65\n"),
                        controlInfo(std::string(kMode1920x1080) + "\n"),
                        controlError(kCustomModeError), controlInfo(kCustomModeOk),
                        controlInfo(kCustomModeOk), controlInfo("getHDMIOutputMode \n"),
                        controlInfo(kReadBack1920x1080),
                        controlError("updateValue ubootenv.var.is.bestmode error\n")}),
              controlLog());
    EXPECT_EQ(0, countLines(kEnvTag, "[ubootenv.var.hdmimode]")) << "hdmimode is not attempted";
    EXPECT_EQ(before, partitionBytes(root));
    EXPECT_EQ("1", getProperty(kEnableProperty));
    EXPECT_EQ(kPreviousMode, getProperty(kModeProperty));
    EXPECT_EQ(std::vector<std::string>{kModeTool}, commands);
}

TEST_F(ApplyOutputModeTest, ReadBackMismatchGivesMinusTwoWithoutALineOfItsOwn) {
    // No room for the new mode: the three writes fail and "0" (3840 x 2160) reads back.
    writeEnvironment(root, filledUpTo(kSelection, 2));
    std::string before = partitionBytes(root);
    setLevel("I");
    setProperty(kModeProperty, kPreviousMode);
    EXPECT_EQ(-2, apply(1920, 1080));
    EXPECT_EQ((LogLines{controlInfo("setHDMIOutputMode 65\n"),
                        controlInfo(std::string(kMode1920x1080) + "\n"),
                        controlError(kCustomModeError), controlError(kCustomModeError),
                        controlError(kCustomModeError), controlInfo("getHDMIOutputMode \n"),
                        controlWarn("getHDMIOutputMode custom_mode is null \n")}),
              controlLog());
    EXPECT_EQ(0, countLines(kEnvTag, "[ubootenv.var.is.bestmode]"));
    EXPECT_EQ(before, partitionBytes(root));
    EXPECT_EQ("1", getProperty(kEnableProperty));
    EXPECT_EQ(kPreviousMode, getProperty(kModeProperty));
}

TEST_F(ApplyOutputModeTest, StoredZeroReadsBackAs3840x2160AndSoMatchesThatSize) {
    // The custom mode cannot be stored, but the selection fits (one byte more, one less).
    writeEnvironment(root, filledUpTo(kSelection, 2));
    setLevel("I");
    EXPECT_EQ(1, apply(3840, 2160));
    EXPECT_EQ(3, countLines(kControlTag, kCustomModeError));
    EXPECT_EQ(1, countLines(kControlTag, "setHDMIOutputMode success\n"));
    EXPECT_EQ("3840x2160@59.997000", getProperty(kModeProperty));
    for (int copy : {0, 1}) {
        EXPECT_EQ("0", stored(copy, "custom_mode"));
        EXPECT_EQ("false", stored(copy, "is.bestmode"));
        EXPECT_EQ("999p60hz", stored(copy, "hdmimode"));
    }
}

TEST_F(ApplyOutputModeTest, HdmiModeFailureGivesMinusTwoAfterTheBestModeWrite) {
    // Everything is stored already but a short hdmimode that has no room to grow.
    writeEnvironment(root, filledUpTo({{"hdmimode", "1080p"},
                                       {"is.bestmode", "false"},
                                       {"custom_mode", kMode1920x1080}},
                                      2));
    std::string before = partitionBytes(root);
    setLevel("I");
    setProperty(kModeProperty, kPreviousMode);
    EXPECT_EQ(-2, apply(1920, 1080));
    EXPECT_EQ((LogLines{controlInfo("setHDMIOutputMode 65\n"),
                        controlInfo(std::string(kMode1920x1080) + "\n"), controlInfo(kCustomModeOk),
                        controlInfo(kCustomModeOk), controlInfo(kCustomModeOk),
                        controlInfo("getHDMIOutputMode \n"), controlInfo(kReadBack1920x1080),
                        controlInfo("updateValue ubootenv.var.is.bestmode successful\n"),
                        controlError("updateValue ubootenv.var.hdmimode error\n")}),
              controlLog());
    EXPECT_EQ(before, partitionBytes(root));
    EXPECT_EQ(kPreviousMode, getProperty(kModeProperty));
}

TEST_F(ApplyOutputModeTest, ErrorLinesShowAtEveryLevel) {
    ASSERT_EQ(0, unlink((root / kEnvPartition).c_str()));
    EXPECT_EQ(-2, apply(1920, 1080));  // level unset: "E"
    EXPECT_EQ((LogLines{controlError(kCustomModeError), controlError(kCustomModeError),
                        controlError(kCustomModeError), controlError("getHDMIOutputMode error\n")}),
              controlLog());
    EXPECT_EQ(LogLines{}, capturedLogWithTag(kCalculatorTag)) << "the dump is information";
}

TEST_F(ApplyOutputModeTest, WithoutVerifyTheEmptyTimingIsApplied) {
    // Nothing checks that a timing was computed: the calculator's empty record goes out, its
    // ratio as 0:0.
    DisplayModeControl control;
    EXPECT_EQ(1, control.setHDMIOutputMode());
    EXPECT_EQ("0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,1,0,1,0,0,1,1", stored(0, "custom_mode"));
    EXPECT_EQ("0x0@0.000000", getProperty(kModeProperty));
}

TEST_F(ApplyOutputModeTest, CurrentTimingIsACopyOfTheCalculatorsRecord) {
    DisplayModeControl control;
    EXPECT_EQ(describe(timing_t{}), describe(control.getCurrentOutputModeTiming()));
    ASSERT_EQ(1, control.verify(8470, 1920, 1080, 60));
    timing_t verified = control.getCurrentOutputModeTiming();
    EXPECT_EQ("cvt_rb", verified.name);
    EXPECT_EQ(1, control.setHDMIOutputMode());
    EXPECT_EQ(describe(verified), describe(control.getCurrentOutputModeTiming()));
}

}  // namespace
}  // namespace vesk::test
