// A calculation allocates nothing: the mode is compared in place, the record's name reuses its
// storage, the other texts are literals.
#include <gtest/gtest.h>

#include <memory>

#include "CountingAllocator.h"
#include "TestRoot.h"
#include "TimingTestSupport.h"

namespace vesk::test {
namespace {

using CvtAllocationTest = RootTest;

TEST_F(CvtAllocationTest, CalculationsAllocateNothing) {
    VideoTimingCaculator calculator;
    const std::string modes[] = {"cvt", "cvt_rb", "cvt_rb2", "dmt"};
    const std::string longMode(40, 'm');  // beyond any short-string buffer
    calculator.calculateCvt(1920, 1080, 60, 8, 3.0, longMode, false, false, false);

    long before = allocationCount();
    for (const auto& mode : modes) {
        for (uint32_t width : {640u, 1920u, 4096u}) {
            calculator.calculateCvt(width, 1080, 60, 8, 3.0, mode, true, true, false);
            calculator.calculateCvt(width, 2160, 144, 10, 2.0, mode, false, false, true);
        }
    }
    calculator.calculateCvt(1920, 1080, 60, 8, 3.0, longMode, false, false, false);
    calculator.calculateCvt(1920, 1080, 60, 8, 3.0, "cvt_rb", false, false, false);
    EXPECT_EQ(before, allocationCount());

    // The counter does see an allocation.
    auto text = std::make_unique<std::string>(100, 'x');
    EXPECT_LT(before, allocationCount());
    EXPECT_EQ("cvt_rb", calculator.getCvtTiming().name);
}

}  // namespace
}  // namespace vesk::test
