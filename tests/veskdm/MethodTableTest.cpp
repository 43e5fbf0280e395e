// The method table: slot order, names and signatures.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <utility>

#include "InterfaceSlots.h"
#include "MethodTable.h"

namespace veskdm {
namespace {

TEST(MethodTable, HasEverySlotInOrder) {
    const std::vector<MethodBinder>& table = methodTable();
    ASSERT_EQ(table.size(), std::size(test::kSlots));
    ASSERT_EQ(table.size(), 162u);
    for (size_t i = 0; i < table.size(); ++i) {
        EXPECT_EQ(test::kSlots[i].slot, i + 1);
        EXPECT_EQ(table[i].name, test::kSlots[i].name) << "slot " << i + 1;
    }
}

// The table follows the generated class's vtable: each entry's method sits in the vtable
// right after the previous entry's.
TEST(MethodTable, FollowsTheVtable) {
    const std::vector<MethodBinder>& table = methodTable();
    for (size_t i = 1; i < table.size(); ++i) {
        EXPECT_EQ(table[i].vtableIndex, table[0].vtableIndex + i) << table[i].name;
    }
}

TEST(MethodTable, FindsByName) {
    ASSERT_NE(findMethod("getSimPleFanState"), nullptr);
    EXPECT_EQ(findMethod("getSimPleFanState")->name, "getSimPleFanState");
    EXPECT_EQ(findMethod("getSimpleFanState"), nullptr);  // names are exact
    EXPECT_EQ(findMethod(""), nullptr);
    EXPECT_EQ(findMethod("interfaceChain"), nullptr);  // IBase's operations are not listed
}

// "name(params) -> result" worked out from a declaration of IVeskDeviceManager.hal: a single
// scalar result is returned directly, any other result goes through the result callback.
std::vector<std::pair<std::string, std::string>> signaturesOfHal() {
    std::ifstream in(VESK_SOURCE_DIR "/interface/veskdevicemanager/1.0/IVeskDeviceManager.hal");
    std::regex declaration(R"(^\s+(\w+)\((.*)\) generates \((.*)\);\s*$)");
    std::regex scalar(R"(^(u?int(8|16|32|64)_t|float|double|bool) \w+$)");
    std::vector<std::pair<std::string, std::string>> signatures;
    std::string line;
    while (std::getline(in, line)) {
        std::smatch match;
        if (!std::regex_match(line, match, declaration)) continue;
        std::string results = match[3];
        std::string result = std::regex_match(results, scalar)
                                     ? results.substr(0, results.find(' '))
                                     : "void, callback(" + results + ")";
        signatures.emplace_back(
                match[1], std::string(match[1]) + "(" + std::string(match[2]) + ") -> " + result);
    }
    return signatures;
}

TEST(MethodTable, SignaturesFollowTheInterfaceDefinition) {
    auto expected = signaturesOfHal();
    const std::vector<MethodBinder>& table = methodTable();
    ASSERT_EQ(expected.size(), table.size());
    for (size_t i = 0; i < table.size(); ++i) {
        EXPECT_EQ(table[i].signature(), expected[i].second) << "slot " << i + 1;
    }
}

TEST(MethodTable, SignatureExamples) {
    EXPECT_EQ(findMethod("setSysLedState")->signature(),
              "setSysLedState(int32_t state) -> int32_t");
    EXPECT_EQ(findMethod("getBoardVoltage")->signature(), "getBoardVoltage() -> float");
    EXPECT_EQ(findMethod("getEdidFromDefined")->signature(),
              "getEdidFromDefined(uint8_t index, uint16_t width, uint16_t height, float refresh) "
              "-> void, callback(vec<uint8_t> edid)");
    EXPECT_EQ(findMethod("hwRegistCallback")->signature(),
              "hwRegistCallback(IVeskDeviceCallback callback) -> int32_t");
    EXPECT_EQ(findMethod("getUsbList")->signature(),
              "getUsbList() -> void, callback(vec<UsbList> list)");
    EXPECT_EQ(findMethod("getVeskLogConfigure")->signature(),
              "getVeskLogConfigure() -> void, callback(int32_t ret, VeskLogInfo info)");
}

}  // namespace
}  // namespace veskdm
