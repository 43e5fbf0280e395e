// IVeskDeviceCallback across the boundary: a client process registers a receiver of its own, the
// service answers 0 and keeps no reference to it (no notification is ever sent, so none is
// needed), and that client killed with SIGKILL costs the service and its other clients nothing.
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

#include "CountingReceiver.h"
#include "ServiceProcessFixture.h"

namespace vesk::test {
namespace {

// What the registering client tells the test, one byte, before it waits to be killed.
enum Outcome : char {
    kReleased = 'r',   // 0 back, and the service let go of the receiver
    kNoSession = 's',  // no session with the service
    kRefused = 'f',    // the call failed or answered another value
    kStillHeld = 'h',  // the service still held the receiver after the deadline
    kNotified = 'n',   // the receiver was called
};

// Registers a receiver with one thread of its own to take the service's calls into it, and
// watches its strong references: the one the session takes while the service holds the
// receiver's proxy goes when the service lets go of it.
Outcome registerAndWatch(const std::string& socketPath) {
    Session session(socketPath, 1);
    if (session.result != VESK_RPC_OK) return kNoSession;
    auto receiver = ndk::SharedRefBase::make<CountingReceiver>();
    ndk::SpAIBinder binder = receiver->asBinder();
    const int32_t before = AIBinder_debugGetRefCount(binder.get());
    int32_t ret = -1;
    if (!session.proxy->hwRegistCallback(receiver, &ret).isOk() || ret != 0) return kRefused;
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (AIBinder_debugGetRefCount(binder.get()) != before) {
        if (std::chrono::steady_clock::now() > deadline) return kStillHeld;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return receiver->notifications == 0 ? kReleased : kNotified;
}

TEST_F(ServiceProcessTest, ACallbackFromAnotherProcessIsAnsweredZeroAndNotKept) {
    ASSERT_TRUE(start()) << service->firstLine();
    Session other(socketPath());
    ASSERT_EQ(VESK_RPC_OK, other.result) << other.message;
    int32_t ret = -1;
    ASSERT_TRUE(other.proxy->setCloudLedState(2, &ret).isOk());

    int told[2];
    ASSERT_EQ(0, pipe(told));
    Child registering([&] {
        close(told[0]);
        char outcome = registerAndWatch(socketPath());
        if (write(told[1], &outcome, 1) != 1) return 1;
        pause();  // killed here
        return 0;
    });
    close(told[1]);
    char outcome = 0;
    ASSERT_EQ(1, read(told[0], &outcome, 1));
    close(told[0]);
    EXPECT_EQ(kReleased, outcome);

    registering.kill();
    EXPECT_EQ(SIGKILL, registering.wait().signal);

    // The other client's session and a new one are served as before.
    ASSERT_TRUE(other.proxy->getCloudLedState(&ret).isOk());
    EXPECT_EQ(2, ret);
    Session next(socketPath());
    ASSERT_EQ(VESK_RPC_OK, next.result) << next.message;
    ASSERT_TRUE(next.proxy->hwRegistCallback(nullptr, &ret).isOk());
    EXPECT_EQ(0, ret);
    EXPECT_FALSE(service->hasEnded());
}

}  // namespace
}  // namespace vesk::test
