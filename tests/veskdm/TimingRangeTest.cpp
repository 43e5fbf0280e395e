// veskdm timing at the edges of what it takes (sizes 1 to 40960, rates 1 to 1000 Hz, 500
// interlaced, 16 bits, 4 components): every timing printed is whole (totals no smaller than
// their active part, every count within a signed 32-bit number, bandwidths below the 32-bit
// field's saturation, a finite clock and periods), or it is refused for having no clock; and the
// searches' answers outside the range are a failure naming the cause.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>

#include "InProcessRunner.h"

namespace veskdm::test {
namespace {

using nlohmann::json;

class TimingRangeTest : public vesk::test::RootTest {
  protected:
    InProcessRunner veskdm{root};
};

TEST_F(TimingRangeTest, EveryTimingAtTheEdgesIsWholeOrRefused) {
    int printed = 0;
    for (const char* mode : {"cvt", "cvt_rb", "cvt_rb2"}) {
        for (bool interlaced : {false, true}) {
            for (bool margins : {false, true}) {
                for (const char* width : {"1", "1366", "40960"}) {
                    for (const char* height : {"1", "1080", "40960"}) {
                        for (const char* rate : {"1", "60", interlaced ? "500" : "1000"}) {
                            std::vector<std::string> args = {
                                    "timing", width, height,         rate, "--mode",   mode,
                                    "--bits", "16",  "--components", "4",  "--format", "json"};
                            if (interlaced) args.push_back("--interlaced");
                            if (margins) args.push_back("--margins");
                            std::string what = std::string(mode) + " " + width + "x" + height +
                                               "@" + rate + (interlaced ? "i" : "") +
                                               (margins ? " margins" : "");
                            Outcome outcome = veskdm.run(args);
                            if (outcome.status == 2) {
                                EXPECT_THAT(outcome.err, ::testing::HasSubstr("has no pixel clock"))
                                        << what;
                                continue;
                            }
                            ASSERT_EQ(outcome.status, 0) << what << ": " << outcome.err;
                            ++printed;
                            json t = json::parse(outcome.out);
                            for (const char* field :
                                 {"h_total", "h_active", "h_blank", "h_front_porch", "h_sync",
                                  "h_back_porch", "v_total", "v_active", "v_blank",
                                  "vblank_duration", "v_front_porch", "v_sync", "v_back_porch"}) {
                                EXPECT_LE(t[field].get<uint64_t>(), uint64_t{INT32_MAX})
                                        << what << " " << field;
                            }
                            for (const char* field : {"peak_bw", "line_bw", "active_bw"}) {
                                EXPECT_LT(t[field].get<uint64_t>(), uint64_t{UINT32_MAX})
                                        << what << " " << field;
                            }
                            EXPECT_GE(t["h_total"], t["h_active"]) << what;
                            EXPECT_GE(t["v_total"], t["v_active"]) << what;
                            EXPECT_GT(t["pix_clock"].get<double>(), 0) << what;
                            for (const char* field : {"h_freq", "h_period", "v_freq", "v_period"}) {
                                ASSERT_TRUE(t[field].is_number()) << what << " " << field;
                            }
                        }
                    }
                }
            }
        }
    }
    EXPECT_GT(printed, 200);
}

// Each search's answer past its quantity's range is no answer: the cause in one line.
TEST_F(TimingRangeTest, SearchesWithoutAnAnswerAreFailures) {
    const std::pair<std::vector<std::string>, std::string> kSearches[] = {
            {{"timing", "1920", "1080", "--max-refresh", "0.1"},
             "timing: no refresh rate of 1920x1080 fits under 0.1 MHz (the search keeps 5 Hz "
             "below the first one over it)"},
            {{"timing", "1920", "1080", "--max-refresh", "1e9"},
             "timing: every refresh rate of 1920x1080 up to 1000 Hz stays under 1e+09 MHz: the "
             "search has no answer"},
            {{"timing", "1920", "1080", "--max-refresh", "1e9", "--interlaced"},
             "timing: every refresh rate of 1920x1080 up to 500 Hz stays under 1e+09 MHz: the "
             "search has no answer"},
            {{"timing", "1", "1080", "--max-width", "0.001"},
             "timing: no width of 1080 lines at 60 Hz fits under 0.001 MHz (the search keeps 12 "
             "pixels below the first one over it)"},
            {{"timing", "1", "1080", "--max-width", "1e9"},
             "timing: every width of 1080 lines at 60 Hz up to 40960 pixels stays under 1e+09 "
             "MHz: the search has no answer"},
            {{"timing", "1920", "1", "--max-height", "1e9"},
             "timing: every height of 1920 pixels at 60 Hz up to 40960 lines stays under 1e+09 "
             "MHz: the search has no answer"},
    };
    for (const auto& [args, line] : kSearches) {
        Outcome outcome = veskdm.run(args);
        EXPECT_EQ(outcome.status, 1) << line;
        EXPECT_EQ(outcome.err, "veskdm: " + line + "\n");
        EXPECT_EQ(outcome.out, "");
    }
}

}  // namespace
}  // namespace veskdm::test
