// The root's directory is opened once and kept for the opens below it: a root removed and made
// again, another root, a root set anew and a kept descriptor that now names something else are
// each served from the directory the root names.
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "TestRoot.h"
#include "vesk/host/DeviceRoot.h"
#include "vesk/host/RootFiles.h"

namespace vesk::test {
namespace {

namespace fs = std::filesystem;

using RootDirectoryTest = RootTest;

// A directory of its own below $TMPDIR holding data/file with `content`, removed at the end.
class Directory {
  public:
    explicit Directory(const std::string& content) {
        std::string pattern = fs::temp_directory_path().string() + "/vesk-dir-XXXXXX";
        mPath = mkdtemp(pattern.data());
        fs::create_directory(mPath + "/data");
        writeFile(mPath + "/data/file", content);
    }
    ~Directory() { fs::remove_all(mPath); }
    const std::string& path() const { return mPath; }

  private:
    std::string mPath;
};

std::string readBelow(const std::string& root) {
    std::string content;
    if (!vesk::host::readFileBelowRoot(root, "/data/file", content))
        return "error " + std::to_string(errno);
    return content;
}

// The descriptor this process holds on `directory`, or -1.
int descriptorOf(const std::string& directory) {
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        if (fs::read_symlink(entry.path(), error).string() == directory) {
            return std::stoi(entry.path().filename().string());
        }
    }
    return -1;
}

TEST_F(RootDirectoryTest, RootRemovedAndMadeAgainServesItsNewFiles) {
    Directory root("first\n");
    EXPECT_EQ("first\n", readBelow(root.path()));
    fs::remove_all(root.path());
    fs::create_directories(root.path() + "/data");
    writeFile(root.path() + "/data/file", "second\n");
    EXPECT_EQ("second\n", readBelow(root.path()));
}

TEST_F(RootDirectoryTest, RootsUsedInTurnServeTheirOwnFiles) {
    Directory a("a\n");
    Directory b("b\n");
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ("a\n", readBelow(a.path()));
        EXPECT_EQ("b\n", readBelow(b.path()));
    }
}

TEST_F(RootDirectoryTest, RootSetAnewIsOpenedAgain) {
    Directory elsewhere("elsewhere\n");
    writeFile(root / "/data/file", "old\n");
    EXPECT_EQ("old\n", readBelow(root.path()));
    // Another directory takes the root's name; setting the root again serves it.
    fs::rename(root.path(), elsewhere.path() + "/old-root");
    fs::create_directories(root.path() + "/data");
    writeFile(root / "/data/file", "new\n");
    vesk::host::setDeviceRoot(root.path(), false);
    EXPECT_EQ("new\n", readBelow(root.path()));
}

// A descriptor number given up by mistake and taken by another directory is not used as the
// root: nothing outside the root is read.
TEST_F(RootDirectoryTest, KeptDescriptorNamingAnotherDirectoryIsNotUsed) {
    Directory inside("inside\n");
    Directory outside("outside\n");
    EXPECT_EQ("inside\n", readBelow(inside.path()));
    int kept = descriptorOf(inside.path());
    ASSERT_GE(kept, 0) << "the root's directory is kept open";
    int other = open(outside.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_GE(other, 0);
    ASSERT_EQ(kept, dup2(other, kept));
    close(other);
    EXPECT_EQ("inside\n", readBelow(inside.path()));
    // The number is left to whoever holds it now.
    EXPECT_EQ(outside.path(), fs::read_symlink("/proc/self/fd/" + std::to_string(kept)).string());
    close(kept);
}

}  // namespace
}  // namespace vesk::test
