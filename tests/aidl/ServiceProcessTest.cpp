// The service program as a process of its own: where it listens, clients in other processes
// served side by side, a client that goes away, the service killed in the middle of a call and
// started again, its socket's folder planted with a link, a second service on the same root, a
// clean stop.
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "SerialPeer.h"
#include "ServiceProcessFixture.h"

namespace vesk::test {
namespace {

using ::aidl::vesk::hardware::veskdevicemanager::ReadResult;

constexpr char kProgram[] = "vesk.hardware.veskdevicemanager-service";

bool exists(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

// Opens the RS-485 channel and waits in a blocking read of up to ten minutes.
int readForTenMinutes(const std::string& socketPath) {
    Session session(socketPath);
    if (session.result != VESK_RPC_OK) return 1;
    int32_t opened = -1;
    if (!session.proxy->openSerialPort485(115200, 8, 1, 0, &opened).isOk() || opened != 0) {
        return 2;
    }
    ReadResult read;
    return session.proxy->readBlockingSerialPort485(16, 600000, &read).isOk() ? 0 : 3;
}

TEST_F(ServiceProcessTest, ItListensBelowTheDeviceRootAndAnswers) {
    ASSERT_TRUE(start()) << service->firstLine();
    EXPECT_EQ("listening on " + root.path() + "/dev/socket/veskdevicemanager", service->firstLine());
    Session client(socketPath());
    ASSERT_EQ(VESK_RPC_OK, client.result) << client.message;
    int32_t ret = -1;
    ASSERT_TRUE(client.proxy->setSysLedState(1, &ret).isOk());
    EXPECT_EQ(0, ret);
    ASSERT_TRUE(client.proxy->getSysLedState(&ret).isOk());
    EXPECT_EQ(1, ret);
    std::vector<nlohmann::json> calls = boardCalls();
    ASSERT_EQ(3u, calls.size());  // the core's construction first
    EXPECT_EQ("bi_init_product_config", calls[0]["function"]);
    EXPECT_EQ((nlohmann::json{{"function", "bi_sysled_set_state"}, {"args", {1}}, {"return", 0}}),
              calls[1]);
    EXPECT_EQ("bi_sysled_get_state", calls[2]["function"]);
}

TEST_F(ServiceProcessTest, ItReportsItsVersionAndTheFrozenHash) {
    ASSERT_TRUE(start()) << service->firstLine();
    Session client(socketPath());
    ASSERT_EQ(VESK_RPC_OK, client.result) << client.message;
    int32_t version = 0;
    ASSERT_TRUE(client.proxy->getInterfaceVersion(&version).isOk());
    EXPECT_EQ(1, version);
    std::string hash;
    ASSERT_TRUE(client.proxy->getInterfaceHash(&hash).isOk());
    // The last line of the frozen version's .hash.
    std::string frozen = readFile(VESK_SOURCE_DIR
                                  "/interface/veskdevicemanager/aidl/aidl_api/"
                                  "vesk.hardware.veskdevicemanager/1/.hash");
    while (!frozen.empty() && frozen.back() == '\n') frozen.pop_back();
    EXPECT_EQ(frozen.substr(frozen.rfind('\n') + 1), hash);
}

// A client waits inside the service in a blocking read while a client of another process comes
// and goes; then the waiting client is killed, its read ended from the channel's far end, and
// the service serves on and still stops cleanly.
TEST_F(ServiceProcessTest, ClientsAreServedSideBySideAndOneThatDiesCostsNothing) {
    setProperty("persist.vesk.device.log.level", "D");
    ASSERT_TRUE(start()) << service->firstLine();
    Child waiting([this] { return readForTenMinutes(socketPath()); });
    ASSERT_TRUE(errorsShow("data_size:16 timeout_ms:600000"));

    int other = inOtherProcess([this] {
        Session client(socketPath());
        int32_t ret = -1;
        if (client.result != VESK_RPC_OK || !client.proxy->setRelayState(1, &ret).isOk()) return -1;
        if (!client.proxy->getRelayState(&ret).isOk()) return -1;
        return ret;
    });
    EXPECT_EQ(1, other);
    EXPECT_FALSE(waiting.ended());

    waiting.kill();
    EXPECT_EQ(SIGKILL, waiting.wait().signal);
    SerialPeer peer(root / "/dev/ttyVESK485");
    ASSERT_TRUE(peer.isOpen());
    ASSERT_TRUE(peer.send({'e', 'n', 'd'}));
    ASSERT_TRUE(errorsShow("readBlockingSerialPort485 bytes_read = 3"));

    Session next(socketPath());
    ASSERT_EQ(VESK_RPC_OK, next.result) << next.message;
    int32_t ret = -1;
    ASSERT_TRUE(next.proxy->getRelayState(&ret).isOk());
    EXPECT_EQ(1, ret);
    ChildEnd end = service->stop();
    EXPECT_TRUE(end.exited);
    EXPECT_EQ(0, end.code);
    EXPECT_FALSE(exists(socketPath()));
}

TEST_F(ServiceProcessTest, KilledInTheMiddleOfACallItGivesDeadObjectAndAfterARestartServesAgain) {
    setProperty("persist.vesk.device.log.level", "D");
    ASSERT_TRUE(start()) << service->firstLine();
    Session client(socketPath());
    ASSERT_EQ(VESK_RPC_OK, client.result) << client.message;
    int32_t opened = -1;
    ASSERT_TRUE(client.proxy->openSerialPort485(115200, 8, 1, 0, &opened).isOk());
    ASSERT_EQ(0, opened);
    binder_status_t inFlight = STATUS_OK;
    std::thread call([&] {
        ReadResult read;
        inFlight = client.proxy->readBlockingSerialPort485(16, 600000, &read).getStatus();
    });
    bool reading = errorsShow("data_size:16 timeout_ms:600000");
    service->kill();
    call.join();
    ASSERT_TRUE(reading);
    EXPECT_EQ(SIGKILL, service->wait().signal);
    EXPECT_EQ(STATUS_DEAD_OBJECT, inFlight);
    int32_t ret = 0;
    EXPECT_EQ(STATUS_DEAD_OBJECT, client.proxy->getSysLedState(&ret).getStatus());
    EXPECT_FALSE(AIBinder_isAlive(client.binder.get()));

    // The dead service's socket is still there; the next one takes its place.
    ASSERT_TRUE(exists(socketPath()));
    ASSERT_TRUE(start()) << service->firstLine();
    Session next(socketPath());
    ASSERT_EQ(VESK_RPC_OK, next.result) << next.message;
    ASSERT_TRUE(next.proxy->setSysLedState(0, &ret).isOk());
    EXPECT_EQ(0, ret);
}

TEST_F(ServiceProcessTest, SigintStopsItAsSigtermDoes) {
    ASSERT_TRUE(start()) << service->firstLine();
    Session client(socketPath());
    ASSERT_EQ(VESK_RPC_OK, client.result) << client.message;
    ChildEnd end = service->stop(SIGINT);
    EXPECT_TRUE(end.exited);
    EXPECT_EQ(0, end.code);
    EXPECT_FALSE(exists(socketPath()));
    int32_t ret = 0;
    EXPECT_EQ(STATUS_DEAD_OBJECT, client.proxy->getSysLedState(&ret).getStatus());
}

TEST_F(ServiceProcessTest, ASecondServiceOnTheSameRootIsRefused) {
    ASSERT_TRUE(start()) << service->firstLine();
    ServerProcess second(VESK_BINARY_DIR "/bin/vesk.hardware.veskdevicemanager-service", {},
                         "listening on " + socketPath(), root.path() + "/second.err");
    EXPECT_FALSE(second.listening());
    ChildEnd end = second.wait();
    EXPECT_TRUE(end.exited);
    EXPECT_EQ(1, end.code);
    EXPECT_EQ(std::string(kProgram) + ": another server serves " + socketPath() + "\n",
              readFile(root.path() + "/second.err"));
    Session client(socketPath());
    ASSERT_EQ(VESK_RPC_OK, client.result) << client.message;
}

// The socket's folder is below the root, reached through no link: a link planted there leads
// nowhere, and the service says so and ends.
TEST_F(ServiceProcessTest, ALinkPlantedAsTheSocketsFolderIsRefused) {
    char outsideName[] = "/tmp/vesk-outside-XXXXXX";
    ASSERT_NE(nullptr, mkdtemp(outsideName));
    const std::string outside = outsideName;
    std::filesystem::create_directories(root.path() + "/dev");
    ASSERT_EQ(0, symlink(outside.c_str(), (root.path() + "/dev/socket").c_str()));
    EXPECT_FALSE(start());
    ChildEnd end = service->wait();
    EXPECT_TRUE(end.exited);
    EXPECT_EQ(1, end.code);
    // ELOOP where the kernel resolves the path beneath the root, ENOTDIR where the jail walks it
    // name by name.
    const std::string said =
            std::string(kProgram) + ": cannot make " + root.path() + "/dev/socket: ";
    EXPECT_THAT(readFile(errorPath()),
                ::testing::AnyOf(said + strerror(ELOOP) + "\n", said + strerror(ENOTDIR) + "\n"));
    EXPECT_TRUE(std::filesystem::is_empty(outside));
    std::filesystem::remove_all(outside);
}

// A Unix socket's address holds 107 bytes of path: a root too deep for its socket is one line.
TEST_F(ServiceProcessTest, ARootTooDeepForItsSocketIsRefused) {
    const std::string deep = root.path() + "/" + std::string(100, 'd');
    ASSERT_TRUE(std::filesystem::create_directories(deep));
    const std::string socket = deep + "/dev/socket/veskdevicemanager";
    ServerProcess refused(VESK_BINARY_DIR "/bin/vesk.hardware.veskdevicemanager-service", {},
                          "listening on " + socket, errorPath(), {{"VESK_ROOT", deep}});
    EXPECT_FALSE(refused.listening());
    ChildEnd end = refused.wait();
    EXPECT_TRUE(end.exited);
    EXPECT_EQ(1, end.code);
    EXPECT_EQ(std::string(kProgram) + ": not a Unix socket path: \"" + socket + "\"\n",
              readFile(errorPath()));
}

}  // namespace
}  // namespace vesk::test
