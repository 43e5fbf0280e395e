#include "FuzzRoot.h"

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <vector>

#include "vesk/host/DeviceRoot.h"
#include "vesk/host/LogSink.h"

namespace vesk::fuzz {

namespace {

std::string makeTemporaryDirectory() {
    const char* tmp = getenv("TMPDIR");
    std::string base = access("/dev/shm", W_OK) == 0      ? "/dev/shm"
                       : tmp != nullptr && tmp[0] != '\0' ? tmp
                                                          : "/tmp";
    std::string pattern = base + "/veskdm-fuzz-XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    if (mkdtemp(buffer.data()) == nullptr) abort();
    return buffer.data();
}

std::string& rootPath() {
    static std::string path;
    return path;
}

void removeRoot() {
    std::error_code ignored;
    std::filesystem::remove_all(rootPath(), ignored);
}

}  // namespace

const std::string& freshRoot() {
    std::string& path = rootPath();
    if (path.empty()) {
        path = makeTemporaryDirectory();
        vesk::host::setDeviceRoot(path);
        vesk::host::discardLog();
        atexit(removeRoot);
    }
    return path;
}

}  // namespace vesk::fuzz
