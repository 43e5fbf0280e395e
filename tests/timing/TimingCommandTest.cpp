// veskdm timing, run in-process: text, JSON and modeline output, the searches, bad input.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "TestRoot.h"
#include "TimingTestSupport.h"
#include "Veskdm.h"

namespace vesk::test {
namespace {

struct ToolRun {
    int status;
    std::string out;
    std::string err;
};

class TimingCommandTest : public RootTest {
  protected:
    // veskdm --root ROOT ARGUMENTS, run in this process; the words are separated by blanks, and
    // a word in single quotes loses them.
    ToolRun veskdm(const std::string& arguments) {
        std::vector<std::string> args = {"--root", root.path()};
        std::istringstream words(arguments);
        for (std::string word; words >> word;) {
            if (word.size() >= 2 && word.front() == '\'' && word.back() == '\'') {
                word = word.substr(1, word.size() - 2);
            }
            args.push_back(word);
        }
        std::istringstream in;
        std::ostringstream out;
        std::ostringstream err;
        ToolRun run;
        run.status = veskdm::runVeskdm(args, {in, out, err}, veskdm::rootFromEnvironment());
        run.out = out.str();
        run.err = err.str();
        return run;
    }
    std::string logPath() const { return root.path() + "/log.json"; }
    std::vector<nlohmann::json> logLines() {
        std::vector<nlohmann::json> lines;
        std::string content = readFile(logPath());
        size_t start = 0, end;
        while ((end = content.find('\n', start)) != std::string::npos) {
            lines.push_back(nlohmann::json::parse(content.substr(start, end - start)));
            start = end + 1;
        }
        return lines;
    }
};

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) text += line;
    return text;
}

TEST_F(TimingCommandTest, TextPrintsTheDumpLines) {
    ToolRun run = veskdm("timing 1920 1080 60 --format text");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(joined(kDump1080pReducedBlanking), run.out);
    EXPECT_EQ("", run.err);
}

TEST_F(TimingCommandTest, DefaultsAreReducedBlankingAt60HzAsText) {
    ToolRun run = veskdm("timing 1920 1080");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(joined(kDump1080pReducedBlanking), run.out);
}

TEST_F(TimingCommandTest, JsonHasEveryFieldUnderItsOwnName) {
    ToolRun run = veskdm("timing 1920 1080 --format json");
    ASSERT_EQ(0, run.status) << run.err;
    EXPECT_EQ('\n', run.out.back());
    auto json = nlohmann::ordered_json::parse(run.out);
    nlohmann::ordered_json expected = {
            {"name", "cvt_rb"},     {"pix_clock", 138.5}, {"h_total", 2080},
            {"h_active", 1920},     {"h_blank", 160},     {"h_front_porch", 48},
            {"h_sync", 32},         {"h_back_porch", 80}, {"h_sync_polarity", 1},
            {"h_freq", 66.587},     {"h_period", 15.018}, {"v_total", 1111},
            {"v_active", 1080},     {"v_blank", 31},      {"vblank_duration", 466},
            {"v_front_porch", 3},   {"v_sync", 5},        {"v_back_porch", 23},
            {"v_sync_polarity", 0}, {"v_freq", 59.934},   {"v_period", 16.685},
            {"peak_bw", 3324},      {"line_bw", 3068},    {"active_bw", 2983},
            {"aspect", ""}};
    EXPECT_EQ(expected, json);  // ordered: the record's field order
}

// Values from the reference table (cvt_reference.py).
TEST_F(TimingCommandTest, OptionsReachTheCalculator) {
    ToolRun run = veskdm("timing 640 480 85 --mode cvt --margins --interlaced --format json");
    ASSERT_EQ(0, run.status) << run.err;
    auto json = nlohmann::json::parse(run.out);
    EXPECT_EQ("cvt", json["name"]);
    EXPECT_EQ(39.75, json["pix_clock"]);
    EXPECT_EQ(656, json["h_active"]);
    EXPECT_EQ(848, json["h_total"]);
    EXPECT_EQ(240, json["v_active"]);
    EXPECT_EQ(277, json["v_total"]);
    EXPECT_EQ(169.224, json["v_freq"]);

    run = veskdm("timing 1920 1080 --mode cvt --bits 12 --components 2.0 --format json");
    ASSERT_EQ(0, run.status) << run.err;
    json = nlohmann::json::parse(run.out);
    EXPECT_EQ(4152, json["peak_bw"]);
    EXPECT_EQ(3095, json["line_bw"]);
    EXPECT_EQ(2984, json["active_bw"]);

    run = veskdm("timing 1920 1080 120 --bits 10 --format json");
    ASSERT_EQ(0, run.status) << run.err;
    json = nlohmann::json::parse(run.out);
    EXPECT_EQ(285.5, json["pix_clock"]);
    EXPECT_EQ(8565, json["peak_bw"]);
}

// The calculator gives video-optimised cvt_rb2 no clock, and a mode of another name none either:
// neither is a timing.
TEST_F(TimingCommandTest, VideoOptimizedReducedBlanking2IsRefusedWithTheReason) {
    ToolRun run = veskdm("timing 1920 1080 --mode cvt_rb2 --video-optimized --format json");
    EXPECT_EQ(2, run.status);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(
            "veskdm: timing: --video-optimized cvt_rb2 has no pixel clock in this calculator (its "
            "clock multiplier is 0): no timing\n",
            run.err);
}

TEST_F(TimingCommandTest, UnknownModeIsRefusedWithTheModesNamed) {
    for (const char* mode : {"dmt", "bogus", "CVT", ""}) {
        ToolRun run = veskdm(std::string("timing 1920 1080 --mode '") + mode + "'");
        EXPECT_EQ(2, run.status) << mode;
        EXPECT_EQ("", run.out);
        EXPECT_EQ(std::string("veskdm: timing: --mode must be cvt, cvt_rb or cvt_rb2, not '") +
                          mode + "'\n",
                  run.err);
    }
}

TEST_F(TimingCommandTest, ModelineForReducedBlanking) {
    ToolRun run = veskdm("timing 1920 1080 --format modeline");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(
            "Modeline \"1920x1080_60\" 138.500 1920 1968 2000 2080 1080 1083 1088 1111 "
            "+hsync -vsync\n",
            run.out);
}

// The same numbers as libxcvt's modeline for 1920 x 1080 at 60 (cvt 1920 1080).
TEST_F(TimingCommandTest, ModelineForStandardBlanking) {
    ToolRun run = veskdm("timing 1920 1080 60 --mode cvt --format modeline");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(
            "Modeline \"1920x1080_60\" 173.000 1920 2048 2248 2576 1080 1083 1088 1120 "
            "-hsync +vsync\n",
            run.out);
}

TEST_F(TimingCommandTest, ModelineForReducedBlanking2KeepsTheKilohertz) {
    ToolRun run = veskdm("timing 4096 2160 60 --mode cvt_rb2 --format modeline");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(
            "Modeline \"4096x2160_60\" 556.744 4096 4104 4136 4176 2160 2208 2216 2222 "
            "+hsync -vsync\n",
            run.out);
}

// Interlaced: a field of 540 lines, 3 front porch, 5 sync, 582.5 in all (truncated to 582 in
// the record); the modeline counts frame lines: 1080, 1086, 1096, 1165.
TEST_F(TimingCommandTest, InterlacedModelineCountsFrameLines) {
    ToolRun run = veskdm("timing 1920 1080 --mode cvt --interlaced --format modeline");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(
            "Modeline \"1920x1080_60\" 179.750 1920 2048 2248 2576 1080 1086 1096 1165 "
            "-hsync +vsync Interlace\n",
            run.out);
}

// Margins: 32 pixels and 19 lines on each side are part of the addressable area.
TEST_F(TimingCommandTest, ModelineWithMarginsShowsTheAddressableArea) {
    ToolRun run = veskdm("timing 1920 1080 --margins --format modeline");
    EXPECT_EQ(0, run.status);
    EXPECT_EQ(
            "Modeline \"1920x1080_60\" 147.750 1984 2032 2064 2144 1118 1121 1126 1150 "
            "+hsync -vsync\n",
            run.out);
}

TEST_F(TimingCommandTest, MaxRefreshPrintsTheSearchAnswer) {
    ToolRun run = veskdm("timing 1920 1080 --max-refresh 148.5");
    EXPECT_EQ(0, run.status) << run.err;
    EXPECT_EQ("60\n", run.out);
}

TEST_F(TimingCommandTest, MaxWidthIgnoresTheWidth) {
    ToolRun run = veskdm("timing 1 1080 --max-width 148.3 --mode cvt_rb2 --margins");
    EXPECT_EQ(0, run.status) << run.err;
    EXPECT_EQ("1990\n", run.out);
}

TEST_F(TimingCommandTest, MaxHeightIgnoresTheHeight) {
    ToolRun run = veskdm("timing 1920 7 60 --max-height 246.8404 --mode cvt_rb2");
    EXPECT_EQ(0, run.status) << run.err;
    EXPECT_EQ("1990\n", run.out);
}

// The search runs to its bound and logs its exit; that is no refresh rate: one line, status 1.
TEST_F(TimingCommandTest, UnreachableRefreshCeilingIsAFailureAndTheExitIsLogged) {
    ToolRun run = veskdm("--log '" + logPath() + "' timing 1920 1080 --max-refresh 1e9");
    EXPECT_EQ(1, run.status);
    EXPECT_EQ("", run.out);
    EXPECT_EQ(
            "veskdm: timing: every refresh rate of 1920x1080 up to 1000 Hz stays under 1e+09 MHz: "
            "the search has no answer\n",
            run.err);
    auto lines = logLines();
    ASSERT_EQ(1u, lines.size());
    EXPECT_EQ(nlohmann::json({{"priority", 6},
                              {"tag", kTimingTag},
                              {"message", "getMaxVFreq to max freq 40960 exit!\n"}}),
              lines[0]);
}

TEST_F(TimingCommandTest, WidthOutsideWholeCellsWarnsAtLevelW) {
    setProperty(kLevelProperty, "W");
    ToolRun run = veskdm("--log '" + logPath() + "' timing 1366 768 --format json");
    EXPECT_EQ(0, run.status) << run.err;
    EXPECT_EQ(1366, nlohmann::json::parse(run.out)["h_active"]);
    auto lines = logLines();
    ASSERT_EQ(1u, lines.size());
    EXPECT_EQ(5, lines[0]["priority"]);
    EXPECT_EQ(kTimingTag, lines[0]["tag"]);
    EXPECT_EQ(
            "WARNING! Aspect Ratio Not CVT Standar!Horizontal Pixel Not Divisible by 8, Count "
            "Rounded to Nearest Character Cell\n",
            lines[0]["message"]);
}

class TimingCommandBadInputTest : public TimingCommandTest,
                                  public ::testing::WithParamInterface<const char*> {};

TEST_P(TimingCommandBadInputTest, OneLineOnStderrAndStatus2) {
    ToolRun run = veskdm(GetParam());
    EXPECT_EQ(2, run.status);
    EXPECT_EQ("", run.out);
    ASSERT_FALSE(run.err.empty());
    EXPECT_EQ(0u, run.err.rfind("veskdm: ", 0)) << run.err;
    EXPECT_EQ(run.err.size() - 1, run.err.find('\n')) << run.err;
}

INSTANTIATE_TEST_SUITE_P(
        Arguments, TimingCommandBadInputTest,
        ::testing::Values("timing 0 1080", "timing 1920 0", "timing -1920 1080", "timing 1920 -1080",
                          "timing abc 1080", "timing 1920 1080 0", "timing 1920 1080 -60",
                          "timing 1920 1080 6x", "timing 1920.5 1080", "timing 4294967296 1080",
                          "timing ''  1080", "timing 1920", "timing 1920 1080 60 70",
                          "timing 1920 1080 --format xml", "timing 1920 1080 --format",
                          "timing 1920 1080 --bits abc", "timing 1920 1080 --bits 0",
                          "timing 1920 1080 --bits -8", "timing 1920 1080 --components 0",
                          "timing 1920 1080 --components inf", "timing 1920 1080 --components -1",
                          "timing 1920 1080 --components x", "timing 1920 1080 --max-refresh abc",
                          "timing 1920 1080 --max-refresh 100 --max-width 100",
                          "timing 1920 1080 --no-such-option"),
        [](const auto& info) { return "case" + std::to_string(info.index); });

}  // namespace
}  // namespace vesk::test
