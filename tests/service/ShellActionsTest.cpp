// Power-off, picture quality and HDR switching through the platform's shell.
#include <unistd.h>

#include "ServiceTest.h"
#include "vesk/host/Seams.h"

namespace vesk::test {
namespace {

class ShellActionsTest : public ServiceTest {
  protected:
    ShellActionsTest() {
        vesk::host::setShellRecorder([this](const std::string& line) {
            commands.push_back(line);
            return status;
        });
    }
    ~ShellActionsTest() override { vesk::host::setShellRecorder(nullptr); }
    std::vector<std::string> commands;
    int status = 0;
};

TEST_F(ShellActionsTest, ShutDownRunsRebootAndAnswersZeroWhateverItsStatus) {
    setLevel("D");
    status = 256;
    EXPECT_EQ(0, int32_t(service->setSystemShutDown()));
    EXPECT_EQ(std::vector<std::string>{"/system/bin/reboot -p"}, commands);
    EXPECT_EQ(LogLines{debugLine(traced("setSystemShutDown") + "\n")},
              capturedLogWithTag(kServiceTag));
    EXPECT_TRUE(calls().empty());
}

TEST_F(ShellActionsTest, PictureQualityRunsItsCommandThenTheBoard) {
    setLevel("D");
    status = 512;
    script({{"bi_set_pq_state", json::array({{{"return", 0}}, {{"return", -2}}})}});
    EXPECT_EQ(0, int32_t(service->setPQEnable(1)));
    EXPECT_EQ(-2, int32_t(service->setPQEnable(0)));
    EXPECT_EQ(
            (std::vector<std::string>{"test-systemcontrol --p 1 1", "test-systemcontrol --p 0 1"}),
            commands);
    auto board = callsOf("bi_set_pq_state");
    ASSERT_EQ(2u, board.size());
    EXPECT_EQ(json::array({1}), board[0]["args"]);
    EXPECT_EQ(json::array({0}), board[1]["args"]);
    EXPECT_EQ(LogLines(2, debugLine(traced("setPQEnable") + "\n")), capturedLogWithTag(kServiceTag));
}

TEST_F(ShellActionsTest, PictureQualityOtherValueRunsNothingButStillCallsTheBoard) {
    script({{"bi_set_pq_state", {{"return", 7}}}});
    EXPECT_EQ(7, int32_t(service->setPQEnable(2)));
    EXPECT_TRUE(commands.empty());
    EXPECT_EQ(json::array({2}), callsOf("bi_set_pq_state")[0]["args"]);
}

TEST_F(ShellActionsTest, HdrCommandsSelect2160p60AndAnswerTheirStatus) {
    setLevel("D");
    EXPECT_EQ(0, int32_t(service->setHDREnable(0)));
    EXPECT_EQ(0, int32_t(service->setHDREnable(1)));
    EXPECT_EQ(
            (std::vector<std::string>{"/system/bin/test-systemcontrol -d sdr rgb,8bit 2160p60hz",
                                      "/system/bin/test-systemcontrol -d hdr 422,10bit 2160p60hz"}),
            commands);
    EXPECT_EQ(LogLines(2, debugLine(traced("setHDREnable") + "\n")),
              capturedLogWithTag(kServiceTag));
    EXPECT_TRUE(calls().empty());
}

TEST_F(ShellActionsTest, HdrCommandFailureIsLoggedAndItsRawStatusReturned) {
    status = 256;
    EXPECT_EQ(256, int32_t(service->setHDREnable(0)));
    EXPECT_EQ(256, int32_t(service->setHDREnable(1)));
    EXPECT_EQ((LogLines{errorLine("setHDREnable: set HDR Disable failed\n"),
                        errorLine("setHDREnable: set HDR Enable failed\n")}),
              capturedLogWithTag(kServiceTag));
}

TEST_F(ShellActionsTest, HdrOtherValueRunsNothingAndAnswersMinusOne) {
    EXPECT_EQ(-1, int32_t(service->setHDREnable(2)));
    EXPECT_TRUE(commands.empty());
}

TEST_F(ShellActionsTest, WithoutTheToolTheCommandFailsAndIsReported) {
    vesk::host::setShellRecorder(nullptr);
    ASSERT_EQ(0, unlink((root / "/system/bin/test-systemcontrol").c_str()));
    int32_t status = service->setHDREnable(1);
    EXPECT_NE(0, status);
    EXPECT_EQ(LogLines{errorLine("setHDREnable: set HDR Enable failed\n")},
              capturedLogWithTag(kServiceTag));
}

}  // namespace
}  // namespace vesk::test
