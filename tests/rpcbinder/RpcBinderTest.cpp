// The platform's binder across processes through the host's registration seam: IPing served by
// ping_server (another process) or by this process, called through the generated NDK proxy.
#include <android/log.h>
#include <gtest/gtest.h>
#include <stdint.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <climits>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ChildProcess.h"
#include "PingServer.h"
#include "PingService.h"  // first: <assert.h> before the binder headers
#include "RpcConnection.h"
#include "TestRoot.h"
#include "vesk/rpc_binder_host.h"

namespace vesk::test {
namespace {

using aidl::vesk::tests::IPing;

// The largest payload of byteCount() that RPC binder carries: a transaction's body may hold
// 100,000 bytes (kMaxTransactionAllocation), and byteCount's body is the wire transaction
// header (40 bytes), the interface token over RPC (the descriptor as a String16: a length of 4
// bytes, then 17 UTF-16 units for "vesk.tests.IPing" and its terminator, padded from 34 to 36),
// the array's length (4) and its bytes padded to a multiple of 4: 84 bytes and the payload.
constexpr int32_t kLargestPayload = 100000 - 84;

// A session with a server and its IPing proxy.
using Connection = RpcConnection<IPing>;

// IPing served by this process on a thread of its own.
struct ServerHere {
    explicit ServerHere(const std::string& path, uint32_t maxThreads = 4)
        : service(ndk::SharedRefBase::make<PingService>()) {
        result = vesk_rpc_server_create(service->asBinder().get(), path.c_str(), maxThreads,
                                        &server);
        message = vesk_rpc_last_error();
        if (result == VESK_RPC_OK) {
            thread = std::thread([this] { joined = vesk_rpc_server_join(server); });
        }
    }
    ~ServerHere() {
        if (result != VESK_RPC_OK) return;
        vesk_rpc_server_shutdown(server);
        thread.join();
        vesk_rpc_server_destroy(server);
    }

    std::shared_ptr<PingService> service;
    VeskRpcServer* server = nullptr;
    VeskRpcResult result;
    VeskRpcResult joined = VESK_RPC_BAD_ARGUMENT;
    std::string message;
    std::thread thread;
};

// A Unix socket listening at path that speaks no RPC binder.
class Listener {
  public:
    explicit Listener(const std::string& path) {
        mFd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        EXPECT_EQ(0, bind(mFd, reinterpret_cast<sockaddr*>(&address), sizeof(address)));
        EXPECT_EQ(0, listen(mFd, 8));
    }
    ~Listener() {
        if (mAcceptor.joinable()) mAcceptor.join();
        for (int fd : mAccepted) close(fd);
        close(mFd);
    }
    // Accepts the next connection and closes it at once.
    void acceptAndClose() {
        mAcceptor = std::thread([this] { close(accept(mFd, nullptr, nullptr)); });
    }
    // Accepts the next connection and keeps it open, saying nothing.
    void acceptAndSayNothing() {
        mAcceptor = std::thread([this] { mAccepted.push_back(accept(mFd, nullptr, nullptr)); });
    }

  private:
    int mFd = -1;
    std::vector<int> mAccepted;
    std::thread mAcceptor;
};

class RpcBinderTest : public RootTest {
  protected:
    std::string socketPath = root.path() + "/ping.sock";
};

bool exists(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

TEST_F(RpcBinderTest, PingReturnsItsValueFromAnotherProcess) {
    PingServer server(socketPath);
    ASSERT_TRUE(server.listening()) << server.firstLine();
    Connection client(socketPath);
    ASSERT_EQ(VESK_RPC_OK, client.result) << client.message;
    for (int32_t value : {0, 1, -1, 42, INT32_MAX, INT32_MIN}) {
        int32_t result = 0;
        ndk::ScopedAStatus status = client.proxy->ping(value, &result);
        ASSERT_TRUE(status.isOk()) << status.getDescription();
        EXPECT_EQ(value, result);
    }
    EXPECT_TRUE(client.proxy->pingEmpty().isOk());
}

TEST_F(RpcBinderTest, ClientsInOtherProcessesAreServedAtOnce) {
    PingServer server(socketPath, 1);
    ASSERT_TRUE(server.listening()) << server.firstLine();
    // Each client waits inside the server until all three are there: a server that served one
    // client at a time would let each go after its timeout alone, with 1.
    std::vector<std::unique_ptr<OtherProcess>> clients;
    for (int i = 0; i < 3; ++i) {
        clients.push_back(std::make_unique<OtherProcess>([this] {
            Connection client(socketPath);
            int32_t met = -1;
            if (client.result != VESK_RPC_OK || !client.proxy->meet(3, 60000, &met).isOk()) {
                return -1;
            }
            return met;
        }));
    }
    for (auto& client : clients) EXPECT_EQ(3, client->result());
}

TEST_F(RpcBinderTest, OneClientsThreadsAreServedAtOnceUpToTheServersThreads) {
    PingServer server(socketPath, 3);
    ASSERT_TRUE(server.listening()) << server.firstLine();
    Connection client(socketPath);
    ASSERT_EQ(VESK_RPC_OK, client.result) << client.message;
    std::vector<int32_t> met(3, -1);
    std::vector<std::thread> threads;
    for (int32_t& result : met) {
        threads.emplace_back([&client, &result] { (void)client.proxy->meet(3, 60000, &result); });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(std::vector<int32_t>(3, 3), met);
}

TEST_F(RpcBinderTest, AServerKilledMidCallGivesDeadObject) {
    PingServer server(socketPath);
    ASSERT_TRUE(server.listening()) << server.firstLine();
    Connection client(socketPath);
    ASSERT_EQ(VESK_RPC_OK, client.result) << client.message;
    binder_status_t inFlight = STATUS_OK;
    std::thread call([&] { inFlight = client.proxy->waitFor(600000).getStatus(); });
    ASSERT_EQ("waiting", server.nextLine());
    server.kill();
    call.join();
    EXPECT_EQ(STATUS_DEAD_OBJECT, inFlight);
    int32_t result = 0;
    EXPECT_EQ(STATUS_DEAD_OBJECT, client.proxy->ping(1, &result).getStatus());
    EXPECT_FALSE(AIBinder_isAlive(client.proxy->asBinder().get()));
}

TEST_F(RpcBinderTest, AServerKilledBetweenCallsGivesDeadObject) {
    PingServer server(socketPath);
    ASSERT_TRUE(server.listening()) << server.firstLine();
    Connection client(socketPath);
    ASSERT_EQ(VESK_RPC_OK, client.result) << client.message;
    ASSERT_TRUE(client.proxy->pingEmpty().isOk());
    server.kill();
    EXPECT_EQ(STATUS_DEAD_OBJECT, client.proxy->pingEmpty().getStatus());
}

TEST_F(RpcBinderTest, NoSocketAtThePathIsNamed) {
    Connection client(socketPath);
    EXPECT_EQ(VESK_RPC_NO_SUCH_SOCKET, client.result);
    EXPECT_EQ("no socket at " + socketPath, client.message);
    EXPECT_EQ(nullptr, client.session);
}

TEST_F(RpcBinderTest, APlainFileAtThePathIsNamed) {
    std::ofstream(socketPath) << "not a socket\n";
    Connection client(socketPath);
    EXPECT_EQ(VESK_RPC_NOT_A_SOCKET, client.result);
    EXPECT_EQ(socketPath + " is not a socket", client.message);
}

TEST_F(RpcBinderTest, TheSocketOfAKilledServerIsNamedAndANewServerTakesIt) {
    {
        PingServer dead(socketPath);
        ASSERT_TRUE(dead.listening()) << dead.firstLine();
        dead.kill();
    }
    ASSERT_TRUE(exists(socketPath));
    Connection stale(socketPath);
    EXPECT_EQ(VESK_RPC_NO_SERVICE, stale.result);
    EXPECT_EQ("no service listens on " + socketPath + " (its server is gone)", stale.message);

    PingServer server(socketPath);
    ASSERT_TRUE(server.listening()) << server.firstLine();
    Connection client(socketPath);
    ASSERT_EQ(VESK_RPC_OK, client.result) << client.message;
    EXPECT_TRUE(client.proxy->pingEmpty().isOk());
}

TEST_F(RpcBinderTest, ASocketThatNeverAcceptsTimesOut) {
    Listener listener(socketPath);
    Connection client(socketPath, 0, 300);
    EXPECT_EQ(VESK_RPC_TIMEOUT, client.result);
    EXPECT_EQ("no answer from " + socketPath + " within 300 ms", client.message);
}

TEST_F(RpcBinderTest, ASocketThatAcceptsAndSaysNothingTimesOut) {
    Listener listener(socketPath);
    listener.acceptAndSayNothing();
    Connection client(socketPath, 0, 300);
    EXPECT_EQ(VESK_RPC_TIMEOUT, client.result);
    EXPECT_EQ("no answer from " + socketPath + " within 300 ms", client.message);
}

TEST_F(RpcBinderTest, ASocketThatHangsUpIsNoService) {
    Listener listener(socketPath);
    listener.acceptAndClose();
    Connection client(socketPath);
    EXPECT_EQ(VESK_RPC_NOT_A_SERVICE, client.result);
    EXPECT_EQ(0u, client.message.find(socketPath + " does not answer as an RPC binder server ("))
            << client.message;
}

TEST_F(RpcBinderTest, APayloadAtTheLimitIsCarriedAndOnePastItEndsOnlyThatSession) {
    PingServer server(socketPath);
    ASSERT_TRUE(server.listening()) << server.firstLine();
    Connection client(socketPath);
    ASSERT_EQ(VESK_RPC_OK, client.result) << client.message;
    int32_t count = 0;
    ndk::ScopedAStatus status =
            client.proxy->byteCount(std::vector<uint8_t>(kLargestPayload, 0x5a), &count);
    ASSERT_TRUE(status.isOk()) << status.getDescription();
    EXPECT_EQ(kLargestPayload, count);

    // One byte more is four on the wire (padding): past the limit.
    status = client.proxy->byteCount(std::vector<uint8_t>(kLargestPayload + 1, 0x5a), &count);
    EXPECT_FALSE(status.isOk());
    EXPECT_EQ(STATUS_DEAD_OBJECT, client.proxy->pingEmpty().getStatus());

    Connection next(socketPath);
    ASSERT_EQ(VESK_RPC_OK, next.result) << next.message;
    EXPECT_TRUE(next.proxy->pingEmpty().isOk());
}

TEST_F(RpcBinderTest, AClientKilledMidCallCostsTheServerNothing) {
    PingServer server(socketPath);
    ASSERT_TRUE(server.listening()) << server.firstLine();
    Child client([this] {
        Connection connection(socketPath);
        if (connection.result != VESK_RPC_OK) return 1;
        (void)connection.proxy->waitFor(600000);
        return 0;
    });
    ASSERT_EQ("waiting", server.nextLine());
    client.kill();
    EXPECT_EQ(SIGKILL, client.wait().signal);

    Connection next(socketPath);
    ASSERT_EQ(VESK_RPC_OK, next.result) << next.message;
    int32_t result = 0;
    EXPECT_TRUE(next.proxy->ping(7, &result).isOk());
    EXPECT_EQ(7, result);
}

TEST_F(RpcBinderTest, AStoppedServerEndsCleanlyAndRemovesItsSocket) {
    PingServer server(socketPath);
    ASSERT_TRUE(server.listening()) << server.firstLine();
    {
        Connection client(socketPath);
        ASSERT_EQ(VESK_RPC_OK, client.result) << client.message;
        EXPECT_TRUE(client.proxy->pingEmpty().isOk());
    }
    Connection stillOpen(socketPath);
    ASSERT_EQ(VESK_RPC_OK, stillOpen.result) << stillOpen.message;
    ChildEnd end = server.stop();
    EXPECT_TRUE(end.exited);
    EXPECT_EQ(0, end.code);
    EXPECT_FALSE(exists(socketPath));
    EXPECT_EQ(STATUS_DEAD_OBJECT, stillOpen.proxy->pingEmpty().getStatus());
}

// What the server's root writes when dumped, by vesk_rpc_dump into a file of this process.
std::string dumpOf(const std::string& path, const std::vector<const char*>& args,
                   VeskRpcResult* result) {
    FILE* file = tmpfile();
    *result = vesk_rpc_dump(path.c_str(), args.data(), static_cast<uint32_t>(args.size()),
                            fileno(file), 0);
    std::string text;
    rewind(file);
    for (int c; (c = fgetc(file)) != EOF;) text += static_cast<char>(c);
    fclose(file);
    return text;
}

// The dump runs in the server's process (RPC binder carries no file descriptor), with the
// client's arguments, empty ones included, and its text comes back whole.
TEST_F(RpcBinderTest, ADumpRunsInTheServersProcessWithTheClientsArguments) {
    PingServer server(socketPath);
    ASSERT_TRUE(server.listening()) << server.firstLine();
    ASSERT_TRUE(exists(socketPath + ".dump"));
    VeskRpcResult result;
    EXPECT_EQ("dump pid " + std::to_string(server.pid()) + ": [mode] [a b] []\n",
              dumpOf(socketPath, {"mode", "a b", ""}, &result));
    EXPECT_EQ(VESK_RPC_OK, result) << vesk_rpc_last_error();
    EXPECT_EQ("dump pid " + std::to_string(server.pid()) + ":\n", dumpOf(socketPath, {}, &result));

    // A client that goes away before it reads costs the server nothing.
    {
        int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        (socketPath + ".dump").copy(address.sun_path, sizeof(address.sun_path) - 1);
        ASSERT_EQ(0, connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)));
        ASSERT_EQ(1, write(fd, "x", 1));
        shutdown(fd, SHUT_WR);
        close(fd);
    }
    EXPECT_EQ("dump pid " + std::to_string(server.pid()) + ": [env]\n",
              dumpOf(socketPath, {"env"}, &result));

    ChildEnd end = server.stop();
    EXPECT_TRUE(end.exited);
    EXPECT_FALSE(exists(socketPath + ".dump"));
    EXPECT_EQ("", dumpOf(socketPath, {}, &result));
    EXPECT_EQ(VESK_RPC_NO_SUCH_SOCKET, result);
    EXPECT_EQ("no socket at " + socketPath + ".dump", std::string(vesk_rpc_last_error()));
}

TEST_F(RpcBinderTest, ASecondServerOnThePathIsRefused) {
    PingServer first(socketPath);
    ASSERT_TRUE(first.listening()) << first.firstLine();
    ServerHere second(socketPath);
    EXPECT_EQ(VESK_RPC_IN_USE, second.result);
    EXPECT_EQ("another server serves " + socketPath, second.message);
    Connection client(socketPath);
    ASSERT_EQ(VESK_RPC_OK, client.result) << client.message;
    EXPECT_TRUE(client.proxy->pingEmpty().isOk());
}

TEST_F(RpcBinderTest, AServerLeavesAFileAtItsPathAlone) {
    std::ofstream(socketPath) << "kept\n";
    ServerHere server(socketPath);
    EXPECT_EQ(VESK_RPC_NOT_A_SOCKET, server.result);
    EXPECT_EQ(socketPath + " is there and is not a socket", server.message);
    std::ifstream kept(socketPath);
    std::string line;
    std::getline(kept, line);
    EXPECT_EQ("kept", line);
}

TEST_F(RpcBinderTest, BadArgumentsAreRefused) {
    auto service = ndk::SharedRefBase::make<PingService>();
    VeskRpcServer* server = nullptr;
    EXPECT_EQ(VESK_RPC_BAD_ARGUMENT,
              vesk_rpc_server_create(nullptr, socketPath.c_str(), 1, &server));
    std::string tooLong = root.path() + "/" + std::string(108, 's');
    EXPECT_EQ(VESK_RPC_BAD_ARGUMENT,
              vesk_rpc_server_create(service->asBinder().get(), tooLong.c_str(), 1, &server));
    EXPECT_EQ("not a Unix socket path: \"" + tooLong + "\"", std::string(vesk_rpc_last_error()));
    EXPECT_EQ(VESK_RPC_BAD_ARGUMENT,
              vesk_rpc_server_create(service->asBinder().get(), "", 1, &server));
    EXPECT_EQ(nullptr, server);
    VeskRpcSession* session = nullptr;
    EXPECT_EQ(VESK_RPC_BAD_ARGUMENT, vesk_rpc_session_connect(nullptr, 0, 0, &session));
    EXPECT_EQ(VESK_RPC_BAD_ARGUMENT, vesk_rpc_session_connect(socketPath.c_str(), 0, 0, nullptr));
    EXPECT_EQ(VESK_RPC_BAD_ARGUMENT, vesk_rpc_server_join(nullptr));
    EXPECT_EQ(nullptr, vesk_rpc_session_root(nullptr));
    vesk_rpc_server_shutdown(nullptr);
    vesk_rpc_server_destroy(nullptr);
    vesk_rpc_session_close(nullptr);
}

TEST_F(RpcBinderTest, AServerAskedToStopBeforeItIsJoinedStopsWhenJoined) {
    auto service = ndk::SharedRefBase::make<PingService>();
    VeskRpcServer* server = nullptr;
    ASSERT_EQ(VESK_RPC_OK,
              vesk_rpc_server_create(service->asBinder().get(), socketPath.c_str(), 1, &server))
            << vesk_rpc_last_error();
    vesk_rpc_server_shutdown(server);
    EXPECT_EQ(VESK_RPC_OK, vesk_rpc_server_join(server));
    vesk_rpc_server_destroy(server);
    EXPECT_FALSE(exists(socketPath));
    EXPECT_TRUE(exists(socketPath + ".lock"));
}

// The platform's own log lines, caught by the logger the seam installs.
std::mutex platformLogMutex;
std::vector<std::string> platformLog;

void catchPlatformLog(int priority, const char* tag, const char* message) {
    std::lock_guard<std::mutex> lock(platformLogMutex);
    platformLog.push_back(std::to_string(priority) + " " + tag + ": " + message);
}

TEST_F(RpcBinderTest, ThePlatformsLogGoesToTheLoggerGiven) {
    {
        std::lock_guard<std::mutex> lock(platformLogMutex);
        platformLog.clear();
    }
    vesk_rpc_set_platform_logger(catchPlatformLog);
    {
        ServerHere server(socketPath);
        ASSERT_EQ(VESK_RPC_OK, server.result) << server.message;
        Connection client(socketPath);
        ASSERT_EQ(VESK_RPC_OK, client.result) << client.message;
        int32_t count = 0;
        (void)client.proxy->byteCount(std::vector<uint8_t>(kLargestPayload + 1), &count);
    }
    vesk_rpc_set_platform_logger(nullptr);
    std::lock_guard<std::mutex> lock(platformLogMutex);
    // The server's refusal, with the body's size worked out above: 84 + 99,920.
    EXPECT_NE(platformLog.end(),
              std::find(platformLog.begin(), platformLog.end(),
                        std::to_string(ANDROID_LOG_WARN) +
                                " RpcState: Transaction requested too much data allocation 100004"))
            << ::testing::PrintToString(platformLog);
}

}  // namespace
}  // namespace vesk::test
