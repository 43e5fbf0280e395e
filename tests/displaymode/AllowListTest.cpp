// isAllowDevice(): the four rows of the allow list, copied whole, and nothing for other models.
#include "DisplayModeFixture.h"

namespace vesk::test {
namespace {

std::vector<uint32_t> fieldsOfRow(const allow_list_t& row) {
    return {row.modid,       row.h_pixel_min, row.h_pixel_max,  row.v_pixel_min,
            row.v_pixel_max, row.max_pixels,  row.max_pix_clock};
}

class AllowListTest : public DisplayModeTest {
  protected:
    AllowListTest() {
        setLevel("I");
        vesk::host::clearCapturedLog();
    }
    DisplayModeControl control;
};

TEST_F(AllowListTest, ModelRZ8KMAXRowIsCopiedWhole) {
    vesk::host::clearCapturedLog();
    allow_list_t row{1, 2, 3, 4, 5, 6, 7};
    EXPECT_TRUE(control.isAllowDevice(8478, row));
    EXPECT_EQ((std::vector<uint32_t>{8478, 800, 4096, 600, 4096, 8847360, 594000}),
              fieldsOfRow(row));
    EXPECT_EQ(LogLines{controlInfo("find device in allow list\n")}, capturedLog());
}

TEST_F(AllowListTest, OtherModelLeavesTheRowAsItWas) {
    vesk::host::clearCapturedLog();
    allow_list_t row{1, 2, 3, 4, 5, 6, 7};
    EXPECT_FALSE(control.isAllowDevice(8471, row));
    EXPECT_EQ((std::vector<uint32_t>{1, 2, 3, 4, 5, 6, 7}), fieldsOfRow(row));
    EXPECT_EQ(LogLines{}, capturedLog());
}

TEST_F(AllowListTest, EachOfTheFourModelsHasTheSameLimits) {
    for (uint32_t model : {8470u, 8476u, 8475u, 8478u}) {
        allow_list_t row{};
        EXPECT_TRUE(control.isAllowDevice(model, row)) << model;
        EXPECT_EQ((std::vector<uint32_t>{model, 800, 4096, 600, 4096, 8847360, 594000}),
                  fieldsOfRow(row));
    }
    for (uint32_t model : {0u, 8469u, 8472u, 8473u, 8474u, 8477u, 8479u, 84700u}) {
        allow_list_t row{};
        EXPECT_FALSE(control.isAllowDevice(model, row)) << model;
    }
}

TEST_F(AllowListTest, FoundLineFollowsTheLevel) {
    allow_list_t row{};
    setLevel("W");
    vesk::host::clearCapturedLog();
    EXPECT_TRUE(control.isAllowDevice(8470, row));
    EXPECT_EQ(LogLines{}, capturedLog());
    setLevel("D");
    EXPECT_TRUE(control.isAllowDevice(8470, row));
    EXPECT_EQ(LogLines{controlInfo("find device in allow list\n")}, capturedLog());
}

}  // namespace
}  // namespace vesk::test
