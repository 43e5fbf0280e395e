// Eight HIDL threads calling a mix of methods on one service object while another process
// changes the boot loader's environment with `veskdm env set`: every call gives its own
// result, and afterwards both copies of the partition carry a valid CRC (checked with zlib
// and with U-Boot's fw_printenv).
#include <spawn.h>
#include <sys/wait.h>

#include <atomic>
#include <set>
#include <thread>

#include "BuiltProgram.h"
#include "ResolutionTest.h"

extern char** environ;

namespace vesk::test {
namespace {

using ::vesk::hardware::veskdevicemanager::V1_0::ProductInfo;

constexpr int kThreads = 8;
constexpr int kCallsPerThread = 48;
constexpr int kEnvSets = 12;

// Runs `veskdm --root ROOT env set stress_marker VALUE` and waits for it: its exit status.
int veskdmEnvSet(const std::string& root, const std::string& value) {
    std::vector<std::string> words = builtProgramArgv(VESK_BINARY_DIR "/bin/veskdm");
    const std::string program = words.front();
    words.insert(words.end(), {"--root", root, "env", "set", "stress_marker", value});
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    pid_t pid;
    if (posix_spawnp(&pid, program.c_str(), nullptr, nullptr, argv.data(), environ) != 0) return -1;
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class ServiceStressTest : public ResolutionTest {
  protected:
    ProductInfo productInfo() {
        ProductInfo info;
        service->getProductInfo([&](const ProductInfo& i) { info = i; });
        return info;
    }
};

TEST_F(ServiceStressTest, EightThreadsAndAnEnvironmentWriterLeaveTwoValidCopies) {
    const ProductInfo product = productInfo();
    const Resolution before = current();
    std::atomic<int> wrong{0};
    std::atomic<int> writerFailures{0};
    std::atomic<bool> threadsDone{false};

    // The other process: keeps setting a variable of its own until the threads are done.
    std::set<std::string> markers;
    std::thread writer([&] {
        for (int i = 0; i < kEnvSets || !threadsDone; ++i) {
            std::string value = "v" + std::to_string(i);
            markers.insert(value);
            if (veskdmEnvSet(root.path(), value) != 0) ++writerFailures;
        }
    });

    auto work = [&](int thread) {
        // Each thread keeps to its own part of the defined block area and its own serial data.
        const uint32_t offset = 64 * static_cast<uint32_t>(thread);
        for (int i = 0; i < kCallsPerThread; ++i) {
            switch ((thread + i) % 6) {
                case 0: {
                    bool fullHd = (thread + i) % 4 < 2;
                    Resolution r = fullHd ? calculate(1920, 1080, 60) : calculate(1280, 720, 60);
                    if (r != (fullHd ? Resolution{1920, 1080, 59, 1} : Resolution{1280, 720, 59, 1}))
                        ++wrong;
                    break;
                }
                case 1: {
                    Resolution r = current();
                    bool known = r == Resolution{1920, 1080, 59, 1} ||
                                 r == Resolution{1280, 720, 59, 1} || r == before;
                    if (!known) ++wrong;
                    break;
                }
                case 2:
                    if (!(productInfo() == product)) ++wrong;
                    break;
                case 3: {
                    hidl_vec<uint8_t> data(16);
                    for (size_t b = 0; b < data.size(); ++b) data[b] = uint8_t(thread * 16 + i + b);
                    if (int32_t(service->writeBlockDataDefined(data, offset)) < 0) ++wrong;
                    hidl_vec<uint8_t> back;
                    service->readBlockDataDefined(16, offset,
                                                  [&](const hidl_vec<uint8_t>& d) { back = d; });
                    if (back != data) ++wrong;
                    break;
                }
                case 4: {
                    int calls = 0;
                    service->writeSerialPortTTL(hidl_vec<uint8_t>{uint8_t(thread), uint8_t(i)});
                    service->readNonBlockingSerialPortTTL(
                            8, [&](const hidl_vec<uint8_t>&, uint32_t) { ++calls; });
                    if (calls != 1) ++wrong;
                    break;
                }
                default: {
                    int calls = 0;
                    service->getCpuStatus([&](const auto&) { ++calls; });
                    service->getResolutionParametersList([&](const auto&) { ++calls; });
                    if (calls != 2) ++wrong;
                    break;
                }
            }
        }
    };
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) threads.emplace_back(work, t);
    for (std::thread& t : threads) t.join();
    threadsDone = true;
    writer.join();

    EXPECT_EQ(0, wrong);
    EXPECT_EQ(0, writerFailures);
    // Both copies are whole and carry their CRC; each save writes both with the same image.
    std::string image = partitionBytes(root);
    EXPECT_TRUE(copyValid(image, 0));
    EXPECT_TRUE(copyValid(image, 65536));
    EXPECT_EQ(0, image.compare(0, 65536, image, 65536, 65536));
    // U-Boot's own reader agrees on each copy: the last mode applied, and the marker of the
    // other process unless a later save of the service (loaded before it) replaced the list.
    for (int copy = 0; copy < 2; ++copy) {
        std::string mode = printenv(root, copy, "custom_mode");
        EXPECT_TRUE(mode == kMode1920x1080 || mode == kMode1280x720) << mode;
        std::string marker = printenv(root, copy, "stress_marker");
        EXPECT_TRUE(marker == "<absent>" || markers.count(marker) == 1) << marker;
    }
}

}  // namespace
}  // namespace vesk::test
