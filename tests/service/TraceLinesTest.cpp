// The table of trace points that the service writes its lines from and its tests read: the
// numbers the interface's documentation gives, one entry per point, in the order of the lines.
#include <set>
#include <string>
#include <utility>

#include "ServiceTest.h"

namespace vesk::test {
namespace {

using vesk::hardware::veskdevicemanager::implementation::kTracePoints;
using vesk::hardware::veskdevicemanager::implementation::TracePoint;

TEST(TraceLinesTest, DocumentedLinesOfTheEntryAndTheFirstMethods) {
    EXPECT_EQ(30, traceLine("VeskDeviceManager"));
    EXPECT_EQ(36, traceLine("hwInvoke"));
    EXPECT_EQ(42, traceLine("hwRegistCallback"));
    EXPECT_EQ(48, traceLine("setSysLedState"));
    EXPECT_EQ(54, traceLine("getSysLedState"));
    EXPECT_EQ(60, traceLine("setNetLedState"));
    EXPECT_EQ(146, traceLine("getProductInfo"));
    EXPECT_EQ(221, traceLine("getProtocolType"));
}

TEST(TraceLinesTest, UnknownPointsHaveNoLine) {
    EXPECT_EQ(0, traceLine("setSysLedStat"));
    EXPECT_EQ(0, traceLine("setSysLedState", "count"));
    EXPECT_EQ(0, traceLine(""));
}

TEST(TraceLinesTest, EachPointOnceInTheOrderOfItsLine) {
    std::set<std::pair<std::string, std::string>> seen;
    std::set<int> lines;
    int previous = 0;
    for (const TracePoint& point : kTracePoints) {
        SCOPED_TRACE(std::string(point.method) + " " + point.where);
        EXPECT_TRUE(seen.insert({point.method, point.where}).second);
        EXPECT_TRUE(lines.insert(point.line).second);
        EXPECT_LT(previous, point.line);
        previous = point.line;
    }
}

}  // namespace
}  // namespace vesk::test
