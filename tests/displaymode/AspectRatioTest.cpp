// gcd() by Euclid with C's signed remainder (no normalisation) and getAspectRadio() built on it.
// Expected values are what a C program computing a % b gives.
#include <climits>

#include "DisplayModeFixture.h"

namespace vesk::test {
namespace {

class AspectRatioTest : public DisplayModeTest {
  protected:
    AspectRatioTest() {
        setLevel("I");
        vesk::host::clearCapturedLog();
    }
    // num:den of width:height, or "refused" with num and den untouched.
    std::string ratio(int width, int height) {
        int num = -77;
        int den = -88;
        int result = control.getAspectRadio(width, height, num, den);
        if (result != 0) {
            EXPECT_EQ(-1, result);
            EXPECT_EQ(-77, num);
            EXPECT_EQ(-88, den);
            return "refused";
        }
        return std::to_string(num) + ":" + std::to_string(den);
    }
    DisplayModeControl control;
};

TEST_F(AspectRatioTest, GcdWithZeroSecondIsTheFirst) {
    EXPECT_EQ(12, control.gcd(12, 0));
    EXPECT_EQ(-12, control.gcd(-12, 0));
    EXPECT_EQ(INT_MIN, control.gcd(INT_MIN, 0));
}

TEST_F(AspectRatioTest, GcdWithZeroFirstIsTheSecond) {
    EXPECT_EQ(5, control.gcd(0, 5));
    EXPECT_EQ(-5, control.gcd(0, -5));
    EXPECT_EQ(0, control.gcd(0, 0));
}

TEST_F(AspectRatioTest, GcdOfPositiveSizes) {
    EXPECT_EQ(120, control.gcd(1920, 1080));
    EXPECT_EQ(120, control.gcd(1080, 1920));
    EXPECT_EQ(40, control.gcd(2560, 1080));
    EXPECT_EQ(1, control.gcd(7, 13));
    EXPECT_EQ(2, control.gcd(1366, 768));
}

TEST_F(AspectRatioTest, GcdKeepsTheSignsTheRemaindersGive) {
    EXPECT_EQ(-4, control.gcd(-12, 8));  // -12 % 8 = -4, 8 % -4 = 0
    EXPECT_EQ(4, control.gcd(12, -8));   // 12 % -8 = 4, -8 % 4 = 0
    EXPECT_EQ(-4, control.gcd(-12, -8));
    EXPECT_EQ(-4, control.gcd(8, -12));
    EXPECT_EQ(-120, control.gcd(-1920, 1080));
    EXPECT_EQ(2, control.gcd(INT_MIN, 2));
}

TEST_F(AspectRatioTest, GcdByMinusOneIsMinusOneEvenForTheSmallestInt) {
    EXPECT_EQ(-1, control.gcd(7, -1));
    EXPECT_EQ(-1, control.gcd(INT_MIN, -1));  // INT_MIN % -1 is 0, never a trap
}

TEST_F(AspectRatioTest, CommonRatios) {
    EXPECT_EQ("16:9", ratio(1920, 1080));
    EXPECT_EQ("64:27", ratio(2560, 1080));
    EXPECT_EQ("4:3", ratio(800, 600));
    EXPECT_EQ("9:16", ratio(1080, 1920));
    EXPECT_EQ("683:384", ratio(1366, 768));
    EXPECT_EQ(LogLines{}, capturedLog());
}

TEST_F(AspectRatioTest, ZeroHeightGivesOneToZero) {
    EXPECT_EQ("1:0", ratio(1280, 0));
}

TEST_F(AspectRatioTest, ZeroWidthGivesZeroToOne) {
    EXPECT_EQ("0:1", ratio(0, 720));
}

TEST_F(AspectRatioTest, BothZeroIsRefused) {
    setLevel("E");
    vesk::host::clearCapturedLog();
    EXPECT_EQ("refused", ratio(0, 0));
    EXPECT_EQ(LogLines{controlError("getAspectRadio error\n")}, capturedLog());
}

TEST_F(AspectRatioTest, NegativeSidesDivideBySignedDivisor) {
    EXPECT_EQ("16:-9", ratio(-1920, 1080));  // gcd -120
    EXPECT_EQ("3:-2", ratio(12, -8));        // gcd 4
    EXPECT_EQ("3:-2", ratio(-12, 8));        // gcd -4
    EXPECT_EQ("3:2", ratio(-12, -8));
}

TEST_F(AspectRatioTest, SmallestIntOverMinusOneWraps) {
    EXPECT_EQ(std::to_string(INT_MIN) + ":1", ratio(INT_MIN, -1));
}

}  // namespace
}  // namespace vesk::test
