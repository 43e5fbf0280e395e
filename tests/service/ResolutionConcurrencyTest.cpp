// Two HIDL threads applying different sizes through one service object at the same time:
// nothing serialises them, so the last writer wins, but the partition stays valid.
#include <condition_variable>
#include <thread>

#include "ResolutionTest.h"

namespace vesk::test {
namespace {

// Lets two threads start each round together and the checker look between rounds.
class Rounds {
  public:
    // Waits until both threads have arrived; the last one in runs `between` first.
    void arrive(const std::function<void()>& between) {
        std::unique_lock<std::mutex> lock(mMutex);
        int round = mRound;
        if (++mArrived == 2) {
            between();
            mArrived = 0;
            ++mRound;
            mChanged.notify_all();
        } else {
            mChanged.wait(lock, [&] { return mRound != round; });
        }
    }

  private:
    std::mutex mMutex;
    std::condition_variable mChanged;
    int mArrived = 0;
    int mRound = 0;
};

using ResolutionConcurrencyTest = ResolutionTest;

TEST_F(ResolutionConcurrencyTest, TwoThreadsApplyingAtOnceLeaveAValidPartition) {
    constexpr int kRounds = 50;
    setLevel("I");  // the log level is read on every line, from both threads
    Rounds rounds;
    std::vector<Resolution> fullHdResults;
    std::vector<Resolution> hdResults;
    int invalid = 0;
    int different = 0;
    // Between rounds: both copies carry their CRC, and (saves being exclusive) the same image.
    auto checkPartition = [&] {
        std::string image = partitionBytes(root);
        if (!copyValid(image, 0) || !copyValid(image, 65536)) ++invalid;
        if (image.compare(0, 65536, image, 65536, 65536) != 0) ++different;
    };
    auto apply = [&](uint32_t width, uint32_t height, std::vector<Resolution>* results) {
        for (int i = 0; i < kRounds; ++i) {
            rounds.arrive([] {});
            results->push_back(calculate(width, height, 60));
            rounds.arrive(checkPartition);
        }
    };
    std::thread fullHd(apply, 1920, 1080, &fullHdResults);
    std::thread hd(apply, 1280, 720, &hdResults);
    fullHd.join();
    hd.join();

    EXPECT_EQ(0, invalid);
    EXPECT_EQ(0, different);
    // Loads share the device and a save has it alone, so no load meets a half-written copy:
    // every call finds the environment and applies its own mode.
    EXPECT_EQ(std::vector<Resolution>(kRounds, Resolution{1920, 1080, 59, 1}), fullHdResults);
    EXPECT_EQ(std::vector<Resolution>(kRounds, Resolution{1280, 720, 59, 1}), hdResults);
    EXPECT_EQ(2u * kRounds, commands.size());

    std::string copy0 = printenv(root, 0, "custom_mode");
    EXPECT_TRUE(copy0 == kMode1920x1080 || copy0 == kMode1280x720) << copy0;
    EXPECT_EQ(copy0, printenv(root, 1, "custom_mode"));
    std::string property = getProperty(kModeProperty);
    EXPECT_TRUE(property == "1920x1080@59.934000" || property == "1280x720@59.979000") << property;
    EXPECT_EQ(current()[0], copy0 == kMode1920x1080 ? 1920 : 1280);
}

}  // namespace
}  // namespace vesk::test
