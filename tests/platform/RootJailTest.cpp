// The device root is a jail: a link planted at any file or folder the service, the tool or the
// simulated board writes gives an error and writes nothing outside the root, whether the kernel
// resolves the path beneath the root (openat2) or the platform walks it component by component.
#include <cutils/properties.h>
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <map>
#include <string>

#include "BuiltProgram.h"
#include "ChildProcess.h"
#include "TestRoot.h"
#include "Ubootenv.h"
#include "VeskPlatform.h"
#include "vesk/host/DeviceRoot.h"
#include "vesk/host/RootFiles.h"
#include "vesksdk.h"

namespace vesk::test {
namespace {

namespace fs = std::filesystem;

// A directory outside the root, with a file and a folder a planted link can point at.
class Outside {
  public:
    Outside() {
        std::string pattern = fs::temp_directory_path().string() + "/vesk-outside-XXXXXX";
        mPath = mkdtemp(pattern.data());
        fs::create_directory(mPath + "/dir");
    }
    ~Outside() { fs::remove_all(mPath); }
    const std::string& path() const { return mPath; }

    // Every name below the directory with its content ("<dir>", "<link>" for those).
    std::map<std::string, std::string> snapshot() const {
        std::map<std::string, std::string> entries;
        for (const auto& entry : fs::recursive_directory_iterator(mPath)) {
            std::string name = entry.path().string().substr(mPath.size());
            if (entry.is_symlink()) {
                entries[name] = "<link>";
            } else if (entry.is_directory()) {
                entries[name] = "<dir>";
            } else {
                entries[name] = readFile(entry.path().string());
            }
        }
        return entries;
    }

  private:
    std::string mPath;
};

enum class Plant {
    SymlinkToFile,         // the name is a symbolic link to a file outside
    SymlinkToMissingFile,  // ... to a name outside that does not exist yet
    SymlinkToDirectory,    // ... to a folder outside
    SymlinkOnTheWay,       // the folder holding the name is a symbolic link to a folder outside
    HardLink,              // the name is a second hard link of a file outside
};

const char* plantName(Plant plant) {
    switch (plant) {
        case Plant::SymlinkToFile:
            return "symlink to a file outside";
        case Plant::SymlinkToMissingFile:
            return "symlink to a missing file outside";
        case Plant::SymlinkToDirectory:
            return "symlink to a folder outside";
        case Plant::SymlinkOnTheWay:
            return "symlink in a folder on the way";
        case Plant::HardLink:
            return "hard link to a file outside";
    }
    return "";
}

struct Target {
    const char* path;  // the device path a link is planted at
    bool isFolder;
    // For a folder: the file inside it that a hard link replaces.
    const char* fileInFolder;
    // Writes through the path; true when the write was refused as it must be.
    std::function<bool()> write;
};

bool failsWithMessage(const std::function<void()>& body, const std::string& text) {
    testing::internal::CaptureStderr();
    body();
    std::string err = testing::internal::GetCapturedStderr();
    return err.find(text) != std::string::npos;
}

const Target kTargets[] = {
        {"/dev/block/env", false, nullptr,
         [] {
             Ubootenv env;
             return env.updateValue("ubootenv.var.hdmimode", "720p60hz") != 0;
         }},
        {"/data/property/store", false, nullptr,
         [] { return property_set("persist.vesk.jail", "inside") != 0; }},
        {"/sys/class/display/mode", false, nullptr,
         [] { return vesk::platform::runCommand("/vendor/bin/hdmimode 999p60hz") != 0; }},
        {"/data/shell/invocations.log", false, nullptr,
         [] { return vesk::platform::runCommand("/system/bin/reboot -p") != 0; }},
        {"/data/vesksdk/blocks", true, "defined.bin",
         [] {
             const unsigned char bytes[4] = {1, 2, 3, 4};
             return bi_block_write_defined(0, bytes, 4) < 0;
         }},
        {"/data/vesksdk/state.lock", false, nullptr,
         [] { return failsWithMessage([] { bi_relay_set_state(1); }, "state.lock"); }},
};

std::string parentOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

std::string lastOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

// Plants `plant` at the target in `root`; the outside file holds what the root's own file held
// (a valid environment image for the partition), so that a write through the link would succeed.
void plantLink(const TempRoot& root, const Outside& outside, const Target& target, Plant plant) {
    std::string inside = root / target.path;
    std::string original = target.isFolder ? "outside\n" : readFile(inside);
    if (original.empty()) original = "outside\n";
    writeFile(outside.path() + "/file", original);
    if (target.isFolder) {
        fs::create_directory(outside.path() + "/dir/" + lastOf(target.path));
    } else {
        writeFile(outside.path() + "/dir/" + lastOf(target.path), original);
    }
    switch (plant) {
        case Plant::SymlinkToFile:
            fs::remove_all(inside);
            ASSERT_EQ(0, symlink((outside.path() + "/file").c_str(), inside.c_str()));
            break;
        case Plant::SymlinkToMissingFile:
            fs::remove_all(inside);
            ASSERT_EQ(0, symlink((outside.path() + "/missing").c_str(), inside.c_str()));
            break;
        case Plant::SymlinkToDirectory:
            fs::remove_all(inside);
            ASSERT_EQ(0, symlink((outside.path() + "/dir").c_str(), inside.c_str()));
            break;
        case Plant::SymlinkOnTheWay:
            fs::remove_all(parentOf(inside));
            ASSERT_EQ(0, symlink((outside.path() + "/dir").c_str(), parentOf(inside).c_str()));
            break;
        case Plant::HardLink: {
            std::string name = target.isFolder ? inside + "/" + target.fileInFolder : inside;
            fs::create_directories(parentOf(name));
            fs::remove_all(name);
            ASSERT_EQ(0, link((outside.path() + "/file").c_str(), name.c_str()));
            break;
        }
    }
}

class RootJailTest : public RootTest, public testing::WithParamInterface<bool> {
  protected:
    RootJailTest() { vesk::host::setComponentWalkForTesting(GetParam()); }
    ~RootJailTest() override { vesk::host::setComponentWalkForTesting(false); }
};

TEST_P(RootJailTest, PlantedLinksAreRefusedAndNothingOutsideChanges) {
    for (const Target& target : kTargets) {
        for (Plant plant : {Plant::SymlinkToFile, Plant::SymlinkToMissingFile,
                            Plant::SymlinkToDirectory, Plant::SymlinkOnTheWay, Plant::HardLink}) {
            SCOPED_TRACE(std::string(target.path) + ": " + plantName(plant));
            TempRoot fresh;  // every case in a root of its own
            Outside outside;
            plantLink(fresh, outside, target, plant);
            if (HasFatalFailure()) return;
            auto before = outside.snapshot();
            EXPECT_TRUE(target.write()) << "the write was not refused";
            EXPECT_EQ(before, outside.snapshot());
        }
    }
}

TEST_P(RootJailTest, OpenDeviceSeamRefusesLinksWithTheirOwnError) {
    Outside outside;
    writeFile(outside.path() + "/file", "outside\n");
    std::string env = root / "/dev/block/env";
    ASSERT_EQ(0, unlink(env.c_str()));
    ASSERT_EQ(0, symlink((outside.path() + "/file").c_str(), env.c_str()));
    errno = 0;
    EXPECT_EQ(-1, vesk::platform::openDevice("/dev/block/env", O_RDWR));
    EXPECT_EQ(EXDEV, errno);

    ASSERT_EQ(0, unlink(env.c_str()));
    ASSERT_EQ(0, link((outside.path() + "/file").c_str(), env.c_str()));
    errno = 0;
    EXPECT_EQ(-1, vesk::platform::openDevice("/dev/block/env", O_RDWR | O_TRUNC));
    EXPECT_EQ(EMLINK, errno);
    EXPECT_EQ("outside\n", readFile(outside.path() + "/file"));
    // Reading a hard-linked file writes nothing and is allowed.
    int fd = vesk::platform::openDevice("/dev/block/env", O_RDONLY);
    EXPECT_GE(fd, 0);
    if (fd >= 0) close(fd);
}

// Device nodes are reached through relative links, as /dev/block/by-name on the device; a link
// that stays below the root is followed by the device-path seam, one that leaves it is not.
TEST_P(RootJailTest, OpenDeviceFollowsLinksThatStayBelowTheRootOnly) {
    Outside outside;
    writeFile(outside.path() + "/file", "outside\n");
    ASSERT_EQ(0, mkdir((root / "/dev/block/by-name").c_str(), 0755));
    ASSERT_EQ(0, symlink("../env", (root / "/dev/block/by-name/env").c_str()));
    ASSERT_EQ(0, symlink("by-name/env", (root / "/dev/block/alias").c_str()));
    int fd = vesk::platform::openDevice("/dev/block/alias", O_RDWR);
    ASSERT_GE(fd, 0) << strerror(errno);
    struct stat opened {};
    struct stat env {};
    fstat(fd, &opened);
    close(fd);
    ASSERT_EQ(0, stat((root / "/dev/block/env").c_str(), &env));
    EXPECT_EQ(env.st_ino, opened.st_ino);

    std::string climbing = "../../..";
    for (size_t i = 0; i < 8; ++i) climbing += "/..";
    ASSERT_EQ(0, symlink((climbing + outside.path() + "/file").c_str(),
                         (root / "/dev/block/by-name/escape").c_str()));
    errno = 0;
    EXPECT_EQ(-1, vesk::platform::openDevice("/dev/block/by-name/escape", O_RDWR | O_TRUNC));
    EXPECT_EQ(EXDEV, errno);
    EXPECT_EQ("outside\n", readFile(outside.path() + "/file"));
    // The platform's own files follow no link at all.
    EXPECT_EQ(-1, vesk::host::openBelowRoot(root.path(), "/dev/block/alias", O_RDONLY));
    EXPECT_EQ(ELOOP, errno);
}

TEST_P(RootJailTest, PathsWithDotDotStayBelowTheRoot) {
    Outside outside;
    int fd = vesk::host::openBelowRoot(root.path(), "/../../../../../../" + outside.path() + "/new",
                                       O_WRONLY | O_CREAT, 0644);
    // ".." never climbs above the root: the name is made inside it, if at all.
    if (fd >= 0) close(fd);
    EXPECT_EQ((std::map<std::string, std::string>{{"/dir", "<dir>"}}), outside.snapshot());
}

TEST_P(RootJailTest, LinkedStandInToolIsNotRun) {
    Outside outside;
    std::string marker = outside.path() + "/ran";
    writeFile(outside.path() + "/tool", "#!/bin/sh\ntouch '" + marker + "'\n");
    ASSERT_EQ(0, chmod((outside.path() + "/tool").c_str(), 0755));
    std::string tool = root / "/system/bin/reboot";
    ASSERT_EQ(0, unlink(tool.c_str()));
    ASSERT_EQ(0, symlink((outside.path() + "/tool").c_str(), tool.c_str()));
    EXPECT_NE(0, vesk::platform::runCommand("/system/bin/reboot -p"));
    EXPECT_NE(0, access(marker.c_str(), F_OK));
}

// A serial channel's link is the one name the board makes a symbolic link of: whatever was
// planted at the name is replaced (never followed), and a link on the way to it is refused.
TEST_P(RootJailTest, SerialLinkIsMadeBelowTheRootOnly) {
    for (Plant plant : {Plant::SymlinkToFile, Plant::SymlinkToMissingFile,
                        Plant::SymlinkToDirectory, Plant::SymlinkOnTheWay, Plant::HardLink}) {
        SCOPED_TRACE(plantName(plant));
        TempRoot fresh;
        Outside outside;
        const std::string link = fresh / "/dev/ttyVESK485";
        writeFile(link, "planted\n");  // a hard link replaces this
        plantLink(fresh, outside, {"/dev/ttyVESK485", false, nullptr, nullptr}, plant);
        if (HasFatalFailure()) return;
        auto before = outside.snapshot();
        int opened = bi_serial_485_open(9600, 8, 1, 0);
        if (plant == Plant::SymlinkOnTheWay) {
            EXPECT_EQ(-1, opened);
        } else {
            ASSERT_EQ(0, opened);
            std::error_code error;
            EXPECT_TRUE(fs::is_symlink(link));
            EXPECT_EQ(0u, fs::read_symlink(link, error).string().rfind("/dev/pts/", 0));
            EXPECT_EQ(0, bi_serial_485_close());
            EXPECT_FALSE(fs::exists(fs::symlink_status(link)));
        }
        EXPECT_EQ(before, outside.snapshot());
    }
}

// The board reads its state through the jail as well: a planted link is not followed, and the
// board starts from its defaults with one line saying why.
TEST_P(RootJailTest, BoardStateBehindAPlantedLinkIsNeitherReadNorWritten) {
    ASSERT_EQ(0, bi_relay_set_state(1));
    ASSERT_EQ(1, bi_relay_get_state());
    Outside outside;
    const std::string state = root / "/data/vesksdk/state.json";
    writeFile(outside.path() + "/file", readFile(state));
    ASSERT_EQ(0, unlink(state.c_str()));
    ASSERT_EQ(0, symlink((outside.path() + "/file").c_str(), state.c_str()));
    auto before = outside.snapshot();

    testing::internal::CaptureStderr();
    EXPECT_EQ(0, bi_relay_get_state());
    std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ("vesksdk: cannot read " + state + ": " + strerror(ELOOP) + "; read as empty\n", err);

    testing::internal::CaptureStderr();
    EXPECT_EQ(-1, bi_relay_set_state(1));
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(before, outside.snapshot());
}

INSTANTIATE_TEST_SUITE_P(Resolution, RootJailTest, testing::Values(false, true),
                         [](const testing::TestParamInfo<bool>& info) {
                             return info.param ? std::string("ComponentWalk")
                                               : std::string("Openat2");
                         });

// Temporaries of killed writers.
using RootTemporaryTest = RootTest;

std::vector<std::string> temporariesIn(const std::string& dir) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir)) {
        std::string name = entry.path().filename().string();
        if (name.find(".tmp.") != std::string::npos) names.push_back(name);
    }
    return names;
}

pid_t deadPid() {
    Child child([] { return 0; });
    pid_t pid = child.pid();
    child.wait();
    return pid;
}

TEST_F(RootTemporaryTest, NextWriterRemovesTemporariesOfDeadWritersOnly) {
    std::string dir = root / "/data/vesksdk";
    std::string dead = "state.json.tmp." + std::to_string(deadPid());
    std::string live = "state.json.tmp." + std::to_string(getppid());     // alive: our parent
    std::string other = "product.json.tmp." + std::to_string(deadPid());  // another file's
    for (const auto& name : {dead, live, other}) writeFile(dir + "/" + name, "partial");
    ASSERT_TRUE(vesk::host::replaceFileBelowRoot(root.path(), "/data/vesksdk/state.json", "{}\n",
                                                 0644));
    EXPECT_EQ("{}\n", readFile(dir + "/state.json"));
    auto left = temporariesIn(dir);
    std::sort(left.begin(), left.end());
    std::vector<std::string> expected = {other, live};
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(expected, left);
}

TEST_F(RootTemporaryTest, BoardStateWriterKilledMidWriteLeavesNoTemporaryAfterTheNext) {
    std::string dir = root / "/data/vesksdk";
    bi_relay_set_state(0);
    for (int round = 0; round < 10; ++round) {
        Child writer([] {
            for (int i = 0;; ++i) bi_relay_set_state(i % 2);
            return 0;
        });
        usleep(2000 + 1000 * round);
        writer.kill();
        writer.wait();
    }
    // The next writer changes the state, so that it writes the file.
    int next = 1 - bi_relay_get_state();
    ASSERT_EQ(0, bi_relay_set_state(next));
    EXPECT_EQ(std::vector<std::string>{}, temporariesIn(dir));
    EXPECT_EQ(next, bi_relay_get_state());
}

// Reading never creates the root; setting a property does.
using ExistingRootTest = RootTest;

TEST_F(ExistingRootTest, ReadersLeaveAMissingRootUnmade) {
    std::string missing = root.path() + "/not-yet";
    EXPECT_EQ(0, exitStatusInChild([&] {
                  vesk::host::setDeviceRoot(missing, false);
                  char value[PROPERTY_VALUE_MAX];
                  property_get("persist.vesk.device.log.level", value, "E");
                  bool ok = std::string(value) == "E" && vesk::host::existingDeviceRoot().empty() &&
                            access(missing.c_str(), F_OK) != 0;
                  ok = ok && property_set("persist.vesk.device.log.level", "D") == 0;
                  ok = ok && vesk::host::existingDeviceRoot() == missing;
                  property_get("persist.vesk.device.log.level", value, "E");
                  return ok && std::string(value) == "D" ? 0 : 1;
              }));
}

TEST_F(ExistingRootTest, ToolReadsWithoutMakingTheDefaultRoot) {
    std::string missing = root.path() + "/state-home";
    std::string image = root / "/dev/block/env";
    std::string env = "env -u VESK_ROOT XDG_STATE_HOME='" + missing + "' ";
    std::string tool = veskdmCommand();
    int status = -1;
    std::string printed =
            runCommand(env + tool + " env print --device '" + image + "' 2>/dev/null", &status);
    EXPECT_EQ(0, status);
    EXPECT_NE(std::string::npos, printed.find("hdmimode=1080p60hz"));
    // A missing root is one clear error (status 1; a --root that names none is bad input, 2).
    runCommand(env + tool + " prop get persist.vesk.device.log.level 2>/dev/null", &status);
    EXPECT_EQ(1, status);
    runCommand(env + tool + " --root '" + missing + "/given' prop get x 2>/dev/null", &status);
    EXPECT_EQ(2, status);
    EXPECT_NE(0, access(missing.c_str(), F_OK)) << "a root was made";
}

}  // namespace
}  // namespace vesk::test
