// The host HIDL runtime: the generated headers compile against it with their layout checks,
// and the vector's size check ends the process as on the device.
#include <gtest/gtest.h>
#include <vesk/hardware/veskdevicemanager/1.0/IVeskDeviceManager.h>
#include <vesk/hardware/veskdevicemanager/1.0/types.h>

#include <cstddef>

namespace vesk::test {
namespace {

using ::android::hardware::hidl_array;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using namespace ::vesk::hardware::veskdevicemanager::V1_0;

// The device's layout: pointer first, 16 bytes, 8-aligned.
static_assert(sizeof(hidl_string) == 16 && alignof(hidl_string) == 8);
static_assert(sizeof(hidl_vec<uint8_t>) == 16 && alignof(hidl_vec<uint8_t>) == 8);
static_assert(sizeof(VeskEffeResolution) == 16);
static_assert(offsetof(ProcessInfo, block) == 48 && sizeof(ProcessInfo) == 88);
static_assert(sizeof(ProductInfo) == 21 * 16 + 8);

TEST(HidlRuntimeTest, StringOwnsACopy) {
    std::string source = "getVndkVersion:1.0";
    hidl_string copy = source;
    source[0] = 'X';
    EXPECT_STREQ("getVndkVersion:1.0", copy.c_str());
    EXPECT_EQ(18u, copy.size());
    hidl_string moved = std::move(copy);
    EXPECT_EQ(moved, "getVndkVersion:1.0");
    EXPECT_TRUE(hidl_string().empty());
    EXPECT_STREQ("", hidl_string().c_str());
}

TEST(HidlRuntimeTest, VectorResizeKeepsLeadingElementsAndZeroesNewOnes) {
    hidl_vec<uint8_t> v = {1, 2, 3};
    v.resize(5);
    EXPECT_EQ((hidl_vec<uint8_t>{1, 2, 3, 0, 0}), v);
    v.resize(2);
    EXPECT_EQ((hidl_vec<uint8_t>{1, 2}), v);
    v.resize(0);
    EXPECT_EQ(0u, v.size());
}

TEST(HidlRuntimeTest, GeneratedToStringAndEqualityWork) {
    VeskEffeResolution a{1920, 1080, 60, 1};
    VeskEffeResolution b = a;
    EXPECT_TRUE(a == b);
    b.status = -1;
    EXPECT_TRUE(a != b);
    EXPECT_EQ("{.width = 1920, .height = 1080, .fps = 60, .status = 1}", toString(a));
    ProcessInfo info;
    info.block[15] = 7;
    EXPECT_EQ(7, info.block[15]);
}

TEST(HidlRuntimeTest, ReturnCarriesValueAndOkStatus) {
    Return<int32_t> r = -5;
    EXPECT_TRUE(r.isOk());
    EXPECT_EQ(-5, int32_t(r));
    Return<float> f = 12.5f;
    EXPECT_EQ(12.5f, float(f));
}

using HidlRuntimeDeathTest = ::testing::Test;

// Sizes above 2^32 - 1 exist only where size_t has 64 bits (a negative int converted to such a
// size_t is one); with a 32-bit size_t every size fits the vector's 32-bit count.
TEST(HidlRuntimeDeathTest, SizesBeyond32BitsEndTheProcess) {
    if constexpr (sizeof(size_t) > sizeof(uint32_t)) {
        const uint64_t beyond = uint64_t{1} << 32;
        EXPECT_DEATH({ hidl_vec<uint8_t> v(static_cast<size_t>(beyond)); },
                     "hidl_vec can't hold more than 2\\^32 elements\\.");
        EXPECT_DEATH(
                {
                    hidl_vec<uint8_t> v;
                    int32_t size = -1;
                    v.resize(size);
                },
                "hidl_vec can't hold more than 2\\^32 elements\\.");
    } else {
        EXPECT_EQ(SIZE_MAX, size_t{UINT32_MAX});
    }
}

}  // namespace
}  // namespace vesk::test
