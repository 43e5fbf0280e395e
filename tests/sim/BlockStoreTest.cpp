// The block stores: fixed-size area files in the root, named blocks below the root that no path
// or link can lead out of.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

#include "ChildProcess.h"
#include "SimTestFiles.h"
#include "TestRoot.h"
#include "vesksdk.h"

namespace vesk::test {
namespace {

class BlockStoreTest : public ::testing::Test {
  protected:
    TempRoot root;
};

struct Area {
    const char* file;
    int (*write)(unsigned int, const unsigned char*, unsigned int);
    int (*read)(unsigned int, unsigned char*, unsigned int);
};

const Area kAreas[] = {
        {"defined.bin", bi_block_write_defined, bi_block_read_defined},
        {"screen.bin", bi_block_write_screen, bi_block_read_screen},
        {"fpga_program.bin", bi_block_write_fpga_program, bi_block_read_fpga_program},
};

std::string fileContent(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

off_t fileSize(const std::string& path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 ? info.st_size : -1;
}

// Each area is a file of 64 KiB; what one process writes, another reads, and the file holds it
// at the offset written.
TEST_F(BlockStoreTest, AreasAreFilesSharedByProcesses) {
    for (const Area& area : kAreas) {
        static const unsigned char data[] = {0xde, 0xad, 0xbe, 0xef};
        EXPECT_EQ(4, inOtherProcess([&] { return area.write(65532, data, 4); })) << area.file;
        unsigned char back[4] = {};
        EXPECT_EQ(4, area.read(65532, back, 4)) << area.file;
        EXPECT_EQ(0, memcmp(data, back, 4)) << area.file;
        std::string path = root / (std::string("/data/vesksdk/blocks/") + area.file);
        EXPECT_EQ(65536, fileSize(path)) << area.file;
        std::string content = fileContent(path);
        ASSERT_EQ(65536u, content.size());
        EXPECT_EQ(std::string("\xde\xad\xbe\xef"), content.substr(65532)) << area.file;
        EXPECT_EQ(std::string(65532, '\0'), content.substr(0, 65532)) << area.file;
    }
}

// The service passes an empty vector's data, which may be null, for a read of 0 bytes (checked
// under UBSan: no null pointer reaches memset).
TEST_F(BlockStoreTest, ZeroLengthReadWithoutABuffer) {
    for (const Area& area : kAreas) EXPECT_EQ(0, area.read(16, nullptr, 0)) << area.file;
}

TEST_F(BlockStoreTest, AccessBeyondTheEndIsRefusedAndWritesNothing) {
    for (const Area& area : kAreas) {
        const unsigned char data[2] = {1, 2};
        unsigned char buffer[2] = {};
        EXPECT_EQ(-1, area.write(65535, data, 2)) << area.file;
        EXPECT_EQ(-1, area.write(65536, data, 1)) << area.file;
        EXPECT_EQ(-1, area.write(4294967295u, data, 2)) << area.file;
        // Offset and size whose sum wraps in 32 bits (to 1, and to 65535).
        EXPECT_EQ(-1, area.read(4294967295u, buffer, 2)) << area.file;
        EXPECT_EQ(-1, area.read(2, buffer, 4294967293u)) << area.file;
        EXPECT_EQ(-1, area.read(4294967295u, buffer, 4294967295u)) << area.file;
        EXPECT_EQ(-1, bi_block_read_data("/data/param.bin", 4294967295u, buffer, 2)) << area.file;
        EXPECT_EQ(-1, area.read(65535, buffer, 2)) << area.file;
        EXPECT_EQ(-1, area.read(0, buffer, 65537)) << area.file;
        EXPECT_EQ(0, area.read(65536, buffer, 0)) << area.file;
        EXPECT_EQ(std::string(65536, '\0'),
                  fileContent(root / (std::string("/data/vesksdk/blocks/") + area.file)))
                << area.file;
    }
}

TEST_F(BlockStoreTest, NamedBlockIsTheFileBelowTheRoot) {
    const unsigned char data[] = {7, 8, 9};
    EXPECT_EQ(3, inOtherProcess([&] { return bi_block_write_data("/data/param.bin", 5, data, 3); }));
    EXPECT_EQ(std::string("\0\0\0\0\0\x07\x08\x09", 8), fileContent(root / "/data/param.bin"));
    EXPECT_EQ(0, bi_block_check("/data/param.bin"));
    unsigned char back[4] = {};
    EXPECT_EQ(4, bi_block_read_data("/data/param.bin", 4, back, 4));
    const unsigned char expected[] = {0, 7, 8, 9};
    EXPECT_EQ(0, memcmp(expected, back, 4));
    // The same 64 KiB bound as the areas.
    EXPECT_EQ(-1, bi_block_write_data("/data/param.bin", 65534, data, 3));
    EXPECT_EQ(-1, bi_block_read_data("/data/param.bin", 65535, back, 2));
    // A block is made only in a directory that exists.
    EXPECT_EQ(-1, bi_block_write_data("/no/such/dir/block", 0, data, 3));
    EXPECT_EQ(-1, bi_block_check("/data"));  // a directory is no block
}

TEST_F(BlockStoreTest, PathsThatLeaveTheRootAreRefused) {
    const unsigned char data[] = {1};
    unsigned char back[1];
    // A host file beside the root, which a path with ".." would reach.
    std::string outside = temporaryPath("outside.bin");
    writeFile(outside, "host");
    std::string name = outside.substr(outside.rfind('/') + 1);
    for (const std::string& path :
         {"../" + name, "/../" + name, "/data/../../" + name, "/data/vesksdk/../../../" + name,
          std::string("data/param.bin"), std::string(""), std::string("/")}) {
        EXPECT_EQ(-1, bi_block_write_data(path.c_str(), 0, data, 1)) << path;
        EXPECT_EQ(-1, bi_block_read_data(path.c_str(), 0, back, 1)) << path;
        EXPECT_EQ(-1, bi_block_check(path.c_str())) << path;
    }
    // A host path is a device path too: it names a file below the root, not the host's.
    EXPECT_EQ(-1, bi_block_write_data(outside.c_str(), 0, data, 1));
    EXPECT_EQ(-1, bi_block_check(outside.c_str()));
    EXPECT_EQ("host", readFile(outside));
    unlink(outside.c_str());
}

TEST_F(BlockStoreTest, SymbolicLinksAreNeverFollowed) {
    std::string outsideDir = temporaryPath("outside-dir");
    ASSERT_EQ(0, mkdir(outsideDir.c_str(), 0755));
    std::string outsideFile = outsideDir + "/target.bin";
    writeFile(outsideFile, "host");
    // A link to a file, a link to a directory, and a link inside the root to a file inside it.
    ASSERT_EQ(0, symlink(outsideFile.c_str(), (root / "/data/file-link").c_str()));
    ASSERT_EQ(0, symlink(outsideDir.c_str(), (root / "/data/dir-link").c_str()));
    writeFile(root / "/data/inside.bin", "in");
    ASSERT_EQ(0, symlink((root / "/data/inside.bin").c_str(), (root / "/data/inside-link").c_str()));

    const unsigned char data[] = {'X'};
    unsigned char back[1];
    for (const char* path : {"/data/file-link", "/data/dir-link/target.bin",
                             "/data/dir-link/new.bin", "/data/inside-link"}) {
        EXPECT_EQ(-1, bi_block_write_data(path, 0, data, 1)) << path;
        EXPECT_EQ(-1, bi_block_read_data(path, 0, back, 1)) << path;
        EXPECT_EQ(-1, bi_block_check(path)) << path;
    }
    EXPECT_EQ("host", readFile(outsideFile));
    EXPECT_NE(0, access((outsideDir + "/new.bin").c_str(), F_OK));
    EXPECT_EQ("in", readFile(root / "/data/inside.bin"));
    unlink(outsideFile.c_str());
    rmdir(outsideDir.c_str());
}

}  // namespace
}  // namespace vesk::test
