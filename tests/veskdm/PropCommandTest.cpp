// veskdm prop set when the store cannot take the value: a failure (status 1) that names its
// cause, one line, and nothing set. Bad names are bad input (BadInputTest).
#include <errno.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string.h>
#include <unistd.h>

#include <filesystem>

#include "InProcessRunner.h"
#include "vesk/host/Properties.h"

namespace veskdm::test {
namespace {

class PropCommandTest : public vesk::test::RootTest {
  protected:
    void expectFailure(const Outcome& outcome, const std::string& line) {
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err, line + "\n");
        EXPECT_EQ(outcome.out, "");
    }
    std::string store() const { return root / "/data/property/store"; }

    InProcessRunner veskdm{root};
};

// The store has 2048 slots: a new name past them is refused, a name it holds is still set.
TEST_F(PropCommandTest, AFullStoreIsAFailureNamingItsSize) {
    for (int i = 0; i < 2048; ++i) {
        ASSERT_EQ("", vesk::host::setProperty("persist.vesk.fill" + std::to_string(i), "1"));
    }
    expectFailure(veskdm.run({"prop", "set", "persist.vesk.one.more", "1"}),
                  "veskdm: cannot set property persist.vesk.one.more: property store full: 2048 "
                  "entries");
    Outcome get = veskdm.run({"prop", "get", "persist.vesk.one.more"});
    EXPECT_EQ(get.out, "\n");
    EXPECT_EQ(veskdm.run({"prop", "set", "persist.vesk.fill7", "2"}).status, 0);
    EXPECT_EQ(veskdm.run({"prop", "get", "persist.vesk.fill7"}).out, "2\n");
}

TEST_F(PropCommandTest, AStoreBehindALinkIsAFailureNamingTheLink) {
    std::string outside = root.path() + "/outside";
    std::filesystem::create_directory(outside);
    std::filesystem::remove_all(root / "/data/property");
    ASSERT_EQ(0, symlink(outside.c_str(), (root / "/data/property").c_str()));
    // The jail refuses the link with ELOOP (openat2), or, where it walks the path name by name
    // (an emulator without openat2), with ENOTDIR for the link that is no folder.
    Outcome outcome = veskdm.run({"prop", "set", "persist.vesk.x", "1"});
    std::string line = "veskdm: cannot set property persist.vesk.x: property store " + store() +
                       " cannot be opened: ";
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err,
                ::testing::AnyOf(line + strerror(ELOOP) + "\n", line + strerror(ENOTDIR) + "\n"));
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(std::filesystem::is_empty(outside));
}

TEST_F(PropCommandTest, AStoreFolderThatIsAFileIsAFailure) {
    std::filesystem::remove_all(root / "/data/property");
    vesk::test::writeFile(root / "/data/property", "a file\n");
    expectFailure(veskdm.run({"prop", "set", "persist.vesk.x", "1"}),
                  "veskdm: cannot set property persist.vesk.x: property store " + store() +
                          " cannot be opened: " + strerror(ENOTDIR));
    EXPECT_EQ("a file\n", vesk::test::readFile(root / "/data/property"));
}

// What a board's init takes is taken here: each character it allows, at the store's longest.
TEST_F(PropCommandTest, NamesABoardAccepts) {
    std::string longest = "persist.vesk." + std::string(255 - 13, 'x');
    for (const std::string& name : {std::string("vendor.a-b@c:d_e.9"), longest}) {
        Outcome set = veskdm.run({"prop", "set", name, "v"});
        EXPECT_EQ(set.status, 0) << set.err;
        EXPECT_EQ(veskdm.run({"prop", "get", name}).out, "v\n");
    }
    Outcome list = veskdm.run({"prop", "list"});
    EXPECT_THAT(list.outLines(), ::testing::Contains("vendor.a-b@c:d_e.9=v"));
}

}  // namespace
}  // namespace veskdm::test
