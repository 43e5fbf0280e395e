// Persistent data blocks and the FPGA's SPI link. The defined, screen and FPGA-program areas are
// files of kBlockAreaSize bytes in ROOT/data/vesksdk/blocks; a named block is the file its
// device path names below the device root, reached without following any symbolic link and
// never through "..". An access that would pass an area's end is refused whole.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "SimMacros.h"
#include "vesk/host/DeviceRoot.h"
#include "vesk/host/RootFiles.h"
#include "vesk/sim/StateFile.h"
#include "vesksdk.h"

namespace vesk::sim {
namespace {

constexpr int kRefused = -1;

bool fits(unsigned int offset, unsigned int count) {
    // Never offset + count: on a 32-bit board that sum wraps past the end of the area.
    return offset <= kBlockAreaSize && count <= kBlockAreaSize - offset;
}

// Closes a descriptor at the end of a scope.
class Fd {
  public:
    explicit Fd(int fd) : mFd(fd) {}
    ~Fd() {
        if (mFd >= 0) close(mFd);
    }
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    int get() const { return mFd; }

  private:
    int mFd;
};

// Writes return the bytes written; the file is locked against other writers meanwhile.
int writeAt(int fd, unsigned int offset, const unsigned char* bytes, unsigned int count) {
    if (fd < 0) return kRefused;
    flock(fd, LOCK_EX);
    std::size_t done = 0;
    while (done < count) {
        ssize_t n = pwrite(fd, bytes + done, count - done, static_cast<off_t>(offset + done));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        done += static_cast<std::size_t>(n);
    }
    flock(fd, LOCK_UN);
    return done == count ? static_cast<int>(count) : kRefused;
}

// Reads return the bytes asked for; what lies past the file's end reads as zeros.
int readAt(int fd, unsigned int offset, unsigned char* buffer, unsigned int length) {
    if (fd < 0) return kRefused;
    // A zero-length read may come with a null buffer (an empty vector's data).
    if (length > 0) memset(buffer, 0, length);
    flock(fd, LOCK_SH);
    std::size_t done = 0;
    while (done < length) {
        ssize_t n = pread(fd, buffer + done, length - done, static_cast<off_t>(offset + done));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        done += static_cast<std::size_t>(n);
    }
    flock(fd, LOCK_UN);
    return static_cast<int>(length);
}

// A fixed area's file, made (zero-filled to its size) on first use.
int openArea(const char* name) {
    int fd = openBoardFile(std::string(host::kBoardStateDir) + "/blocks/" + name, O_RDWR | O_CREAT);
    if (fd < 0) {
        fprintf(stderr, "vesksdk: cannot open block area %s: %s\n", name, strerror(errno));
        return -1;
    }
    struct stat info {};
    if (fstat(fd, &info) == 0 && info.st_size < static_cast<off_t>(kBlockAreaSize)) {
        if (ftruncate(fd, kBlockAreaSize) != 0) {
            close(fd);
            return -1;
        }
    }
    return fd;
}

int writeArea(const char* name, unsigned int offset, const unsigned char* bytes,
              unsigned int count) {
    if ((!bytes && count > 0) || !fits(offset, count)) return kRefused;
    Fd fd(openArea(name));
    return writeAt(fd.get(), offset, bytes, count);
}

int readArea(const char* name, unsigned int offset, unsigned char* buffer, unsigned int length) {
    if ((!buffer && length > 0) || !fits(offset, length)) return kRefused;
    Fd fd(openArea(name));
    return readAt(fd.get(), offset, buffer, length);
}

// The components of an absolute device path; false for a relative path, one that names the
// root itself or one with a ".." component.
bool splitBlockPath(const char* path, std::vector<std::string>& parts) {
    if (!path || path[0] != '/') return false;
    std::string text(path);
    std::size_t pos = 0;
    while (pos <= text.size()) {
        std::size_t slash = text.find('/', pos);
        if (slash == std::string::npos) slash = text.size();
        std::string part = text.substr(pos, slash - pos);
        if (part == "..") return false;
        if (!part.empty() && part != ".") parts.push_back(part);
        pos = slash + 1;
    }
    return !parts.empty();
}

// Opens a named block below the root through the root's jail, so that no symbolic link (planted
// anywhere on the way) can lead outside the root and no hard-linked file is written. `create`
// opens for writing and makes a missing block in an existing directory; without it the block is
// only read. -1 when refused.
int openNamedBlock(const char* path, bool create) {
    std::vector<std::string> parts;
    if (!splitBlockPath(path, parts)) return -1;
    int flags = create ? O_RDWR | O_CREAT : O_RDONLY | O_NONBLOCK;
    int fd = host::openBelowRoot(host::deviceRoot(), path, flags, 0644);
    struct stat info {};
    if (fd >= 0 && (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode))) {
        close(fd);
        return -1;
    }
    return fd;
}

}  // namespace
}  // namespace vesk::sim

using vesk::sim::inputBytes;
using vesk::sim::outputBuffer;
using vesk::sim::SimCall;
using vesk::sim::text;

#define VESK_SIM_BLOCK_AREA(write, read, file)                                                \
    int write(unsigned int offset, const unsigned char* data, unsigned int count) {           \
        return SimCall(#write, {offset, inputBytes(data, count), count}).run([&] {            \
            return vesk::sim::writeArea(file, offset, data, count);                           \
        });                                                                                   \
    }                                                                                         \
    int read(unsigned int offset, unsigned char* buffer, unsigned int length) {               \
        return SimCall(#read, {offset, outputBuffer(), length}).out(buffer, length).run([&] { \
            return vesk::sim::readArea(file, offset, buffer, length);                         \
        });                                                                                   \
    }

VESK_SIM_BLOCK_AREA(bi_block_write_defined, bi_block_read_defined, "defined.bin")
VESK_SIM_BLOCK_AREA(bi_block_write_screen, bi_block_read_screen, "screen.bin")
VESK_SIM_BLOCK_AREA(bi_block_write_fpga_program, bi_block_read_fpga_program, "fpga_program.bin")

// Writes into the named block, making it in an existing directory if it is missing.
int bi_block_write_data(const char* path, unsigned int offset, const unsigned char* data,
                        unsigned int count) {
    return SimCall("bi_block_write_data", {text(path), offset, inputBytes(data, count), count})
            .run([&] {
                if ((!data && count > 0) || !vesk::sim::fits(offset, count)) return -1;
                vesk::sim::Fd fd(vesk::sim::openNamedBlock(path, true));
                return vesk::sim::writeAt(fd.get(), offset, data, count);
            });
}

// Reads an existing named block; what was never written reads as zeros.
int bi_block_read_data(const char* path, unsigned int offset, unsigned char* buffer,
                       unsigned int length) {
    return SimCall("bi_block_read_data", {text(path), offset, outputBuffer(), length})
            .out(buffer, length)
            .run([&] {
                if ((!buffer && length > 0) || !vesk::sim::fits(offset, length)) return -1;
                vesk::sim::Fd fd(vesk::sim::openNamedBlock(path, false));
                return vesk::sim::readAt(fd.get(), offset, buffer, length);
            });
}

// 0 for a named block that exists (a regular file reached without links), -1 otherwise.
int bi_block_check(const char* path) {
    return SimCall("bi_block_check", {text(path)}).run([&] {
        vesk::sim::Fd fd(vesk::sim::openNamedBlock(path, false));
        return fd.get() >= 0 ? 0 : -1;
    });
}

VESK_SIM_ACTION(bi_fpga_load_program, 0)
VESK_SIM_ACTION(bi_fpga_load_parameter, 0)

int bi_fpga_spi_write(const unsigned char* data, unsigned int count) {
    return SimCall("bi_fpga_spi_write", {inputBytes(data, count), count}).run([&] {
        return !data && count > 0 ? -1 : static_cast<int>(count);
    });
}

// The FPGA echoes what it is sent: the buffer keeps its bytes and the whole count comes back.
int bi_fpga_spi_write_read(unsigned char* buffer, unsigned int count) {
    return SimCall("bi_fpga_spi_write_read", {inputBytes(buffer, count), count})
            .out(buffer, count)
            .run([&] { return !buffer && count > 0 ? -1 : static_cast<int>(count); });
}

// Idle FPGA: reads zeros.
int bi_fpga_spi_read(unsigned char* buffer, int size) {
    std::size_t capacity = size > 0 ? static_cast<std::size_t>(size) : 0;
    return SimCall("bi_fpga_spi_read", {outputBuffer(), size}).out(buffer, capacity).run([&] {
        if (size < 0 || (!buffer && size > 0)) return -1;
        if (capacity > 0) memset(buffer, 0, capacity);
        return size;
    });
}

int bi_fpga_firmware_update(const char* path) {
    return SimCall("bi_fpga_firmware_update", {text(path)}).run([&] {
        return path && *path ? 0 : -1;
    });
}
