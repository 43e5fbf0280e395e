// The watchdog across processes: open in one, feed and close in another; a feed that comes
// after the time-out is recorded as a reset the board would have made.
#include <gtest/gtest.h>
#include <unistd.h>

#include "ChildProcess.h"
#include "SimTestFiles.h"
#include "TestRoot.h"
#include "vesksdk.h"

namespace vesk::test {
namespace {

class WatchdogTest : public ::testing::Test {
  protected:
    TempRoot root;
};

// A device name is any bytes: the board keeps it, and its state file stays valid JSON with U+FFFD
// for the bytes that are not UTF-8.
TEST_F(WatchdogTest, ADeviceNameThatIsNotUtf8IsSaved) {
    EXPECT_EQ(0, inOtherProcess([] { return bi_watchdog_open("/dev/wd\xff", 60); }));
    EXPECT_EQ("/dev/wd\xef\xbf\xbd", stateFile()["watchdog"]["device"]);
}

TEST_F(WatchdogTest, OpenFeedCloseAcrossProcesses) {
    EXPECT_EQ(0, inOtherProcess([] { return bi_watchdog_open("/dev/watchdog", 60); }));
    EXPECT_EQ(0, bi_watchdog_feed("/dev/watchdog"));
    EXPECT_EQ(0, inOtherProcess([] { return bi_watchdog_feed("/dev/watchdog"); }));
    EXPECT_EQ(-1, bi_watchdog_feed("/dev/watchdog1"));
    nlohmann::json watchdog = stateFile()["watchdog"];
    EXPECT_EQ(true, watchdog["open"]);
    EXPECT_EQ("/dev/watchdog", watchdog["device"]);
    EXPECT_EQ(60, watchdog["timeout"]);
    EXPECT_EQ(2, watchdog["feeds"]);
    EXPECT_EQ(0, watchdog["missed_feeds"]);
    EXPECT_EQ(0, inOtherProcess([] { return bi_watchdog_close("/dev/watchdog"); }));
    EXPECT_EQ(-1, bi_watchdog_feed("/dev/watchdog"));
    EXPECT_EQ(false, stateFile()["watchdog"]["open"]);
    EXPECT_EQ(0, stateFile()["watchdog"]["missed_feeds"]);
}

TEST_F(WatchdogTest, TimeOutMustBeOneSecondToOneHour) {
    EXPECT_EQ(-1, bi_watchdog_open("/dev/watchdog", 0));
    EXPECT_EQ(-1, bi_watchdog_open("/dev/watchdog", 3601));
    EXPECT_EQ(-1, bi_watchdog_open("", 60));
    EXPECT_EQ(-1, bi_watchdog_feed("/dev/watchdog"));  // none of them opened it
    EXPECT_EQ(0, bi_watchdog_open("/dev/watchdog", 3600));
    EXPECT_EQ(0, bi_watchdog_open("/dev/watchdog", 1));
}

// Waits past a one-second time-out: the next feed and the close each count as missed.
TEST_F(WatchdogTest, LateFeedIsRecordedAsAReset) {
    ASSERT_EQ(0, inOtherProcess([] { return bi_watchdog_open("/dev/watchdog", 1); }));
    usleep(1300 * 1000);
    EXPECT_EQ(0, inOtherProcess([] { return bi_watchdog_feed("/dev/watchdog"); }));
    EXPECT_EQ(1, stateFile()["watchdog"]["missed_feeds"]);
    usleep(1300 * 1000);
    EXPECT_EQ(0, bi_watchdog_close("/dev/watchdog"));
    EXPECT_EQ(2, stateFile()["watchdog"]["missed_feeds"]);
    // A later opening keeps the count: it is the board's history.
    EXPECT_EQ(0, bi_watchdog_open("/dev/watchdog", 60));
    EXPECT_EQ(0, bi_watchdog_feed("/dev/watchdog"));
    EXPECT_EQ(2, stateFile()["watchdog"]["missed_feeds"]);
}

}  // namespace
}  // namespace vesk::test
