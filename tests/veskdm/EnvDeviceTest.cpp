// veskdm env on images that hold no environment, or a damaged one: one line naming what is
// wrong, status 1, and the file as it was; an image named with --device that does not exist
// yet is made whole by env set; a copy A that fails its CRC is said, and copy B used. Images are
// built from the format's rules (EnvImage.h), not by the code under test.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/stat.h>

#include <random>

#include "EnvImage.h"
#include "InProcessRunner.h"

namespace veskdm::test {
namespace {

std::string hex(uint32_t value) {
    char text[16];
    snprintf(text, sizeof(text), "0x%08x", value);
    return text;
}

const vesk::test::Variables kListB = {{"hdmimode", "2160p60hz"}, {"custom_mode", "0"}};

class EnvDeviceTest : public vesk::test::RootTest {
  protected:
    EnvDeviceTest() { mkdir(images.c_str(), 0755); }

    std::string image(const std::string& name, const std::string& content) {
        std::string path = images + "/" + name;
        vesk::test::writeFile(path, content);
        return path;
    }
    static timespec modified(const std::string& path) {
        struct stat st {};
        EXPECT_EQ(0, stat(path.c_str(), &st)) << path;
        return st.st_mtim;
    }
    void expectOneLine(const Outcome& outcome, const std::string& line) {
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err, line + "\n");
        EXPECT_EQ(outcome.out, "");
    }
    static std::string cannotRead(const std::string& path, const std::string& why) {
        return "veskdm: cannot read the boot loader's environment from " + path + ": " + why;
    }

    // 100 bytes from a fixed seed: the same "random" image in every run.
    static std::string randomBytes() {
        std::mt19937 generator(28);
        std::string bytes(100, '\0');
        for (char& byte : bytes) byte = static_cast<char>(generator() & 0xff);
        return bytes;
    }

    // Copy A with a CRC off by one, copy B holding kListB.
    static std::string imageWithABadCopyA() {
        std::string copyA = vesk::test::envCopy(
                vesk::test::dataArea(vesk::test::envStrings({{"hdmimode", "1080p60hz"}})));
        copyA[0] = static_cast<char>(copyA[0] + 1);
        std::string copyB =
                vesk::test::envCopy(vesk::test::dataArea(vesk::test::envStrings(kListB)));
        return vesk::test::twoCopies(copyA, copyB);
    }
    static std::string copyALine(const std::string& path, const std::string& imageBytes) {
        return "veskdm: " + path + ": copy A fails its CRC (stored " +
               hex(vesk::test::storedCrc(imageBytes, 0)) + ", computed " +
               hex(vesk::test::crcOf(imageBytes.substr(4, 65532))) + "); copy B is used\n";
    }

    std::string images = root.path() + "/images";
    InProcessRunner veskdm{root};
};

TEST_F(EnvDeviceTest, SetOnRandomBytesWritesNothing) {
    std::string random = randomBytes();
    std::string path = image("random.img", random);
    timespec before = modified(path);
    expectOneLine(veskdm.run({"env", "set", "a", "1", "--device", path}),
                  cannotRead(path,
                             "no valid copy: copy A holds 100 of 65536 bytes, copy B is "
                             "missing"));
    EXPECT_EQ(random, vesk::test::readFile(path));
    timespec after = modified(path);
    EXPECT_EQ(before.tv_sec, after.tv_sec);
    EXPECT_EQ(before.tv_nsec, after.tv_nsec);
}

TEST_F(EnvDeviceTest, PrintOfWhatHoldsNoEnvironmentIsOneLine) {
    std::string random = image("random.img", randomBytes());
    expectOneLine(veskdm.run({"env", "print", "--device", random}),
                  cannotRead(random,
                             "no valid copy: copy A holds 100 of 65536 bytes, copy B is "
                             "missing"));
    std::string empty = image("empty.img", "");
    expectOneLine(veskdm.run({"env", "print", "--device", empty}),
                  cannotRead(empty, "it is empty"));
    expectOneLine(veskdm.run({"env", "get", "hdmimode", "--device", images}),
                  cannotRead(images, "it is a directory"));
    // Copy A whole, copy B cut short: copy A would do, but it fails its CRC too.
    std::string good = vesk::test::envImage(kListB);
    std::string cutB = good.substr(0, 65536 + 1000);
    cutB[5] = static_cast<char>(cutB[5] ^ 1);
    std::string cut = image("cut.img", cutB);
    expectOneLine(veskdm.run({"env", "print", "--device", cut}),
                  cannotRead(cut, "no valid copy: copy A fails its CRC (stored " +
                                          hex(vesk::test::storedCrc(cutB, 0)) + ", computed " +
                                          hex(vesk::test::crcOf(cutB.substr(4, 65532))) +
                                          "), copy B holds 1000 of 65536 bytes"));
    EXPECT_EQ("", vesk::test::readFile(empty));
}

TEST_F(EnvDeviceTest, SetMakesAnImageThatDoesNotExistYet) {
    std::string path = images + "/new.img";
    Outcome set = veskdm.run({"env", "set", "a", "1", "--device", path});
    EXPECT_EQ(set.status, 0) << set.err;
    EXPECT_EQ(set.err, "");
    // Both 64 KiB copies, each with its CRC, holding the one variable.
    EXPECT_EQ(vesk::test::envImage({{"a", "1"}}), vesk::test::readFile(path));
    Outcome print = veskdm.run({"env", "print", "--device", path});
    EXPECT_EQ(print.status, 0);
    EXPECT_EQ(print.out, "a=1\n");
    EXPECT_EQ(print.err, "");
}

TEST_F(EnvDeviceTest, SetWhereNoImageCanBeMadeIsOneLine) {
    std::string path = images + "/missing/new.img";
    expectOneLine(veskdm.run({"env", "set", "a", "1", "--device", path}),
                  "veskdm: cannot make " + path + ": No such file or directory");
}

TEST_F(EnvDeviceTest, PrintSaysWhenItShowsCopyB) {
    std::string bytes = imageWithABadCopyA();
    std::string path = image("copy-b.img", bytes);
    Outcome outcome = veskdm.run({"env", "print", "--device", path});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "hdmimode=2160p60hz\ncustom_mode=0\n");
    EXPECT_EQ(outcome.err, copyALine(path, bytes));
    EXPECT_EQ(bytes, vesk::test::readFile(path));
}

// Copy B loaded, the save writes both copies anew.
TEST_F(EnvDeviceTest, SetOnAnImageWithABadCopyAWritesBothCopies) {
    std::string bytes = imageWithABadCopyA();
    std::string path = image("copy-b.img", bytes);
    Outcome outcome = veskdm.run({"env", "set", "a", "1", "--device", path});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, copyALine(path, bytes));
    vesk::test::Variables expected = kListB;
    expected.emplace_back("a", "1");
    EXPECT_EQ(vesk::test::envImage(expected), vesk::test::readFile(path));
}

// The device root's own partition is judged the same way.
TEST_F(EnvDeviceTest, TheRootsPartitionWithABadCopyA) {
    std::string bytes = imageWithABadCopyA();
    vesk::test::writeFile(root / "/dev/block/env", bytes);
    Outcome outcome = veskdm.run({"env", "get", "hdmimode"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "2160p60hz\n");
    EXPECT_EQ(outcome.err, copyALine("/dev/block/env", bytes));
}

}  // namespace
}  // namespace veskdm::test
