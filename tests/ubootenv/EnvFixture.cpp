#include "EnvFixture.h"

#include <unistd.h>

namespace vesk::test {

void EnvTest::writeDevice(const std::string& device, const std::string& content) {
    std::string path = root / device;
    std::string command = "mkdir -p '" + path.substr(0, path.rfind('/')) + "'";
    ASSERT_EQ(0, system(command.c_str()));
    writeFile(path, content);
    ASSERT_EQ(content, readFile(path));
}

void EnvTest::removeDevice(const std::string& device) {
    ASSERT_EQ(0, unlink((root / device).c_str())) << device;
}

EnvLogs loadedLog(const std::string& device) {
    return {{kInfo, "init", "[ubootenv] using " + device + " with size(65536) (65532)"},
            {kInfo, "propertyLoad", "[ubootenv] set property count: 0\n"}};
}

}  // namespace vesk::test
