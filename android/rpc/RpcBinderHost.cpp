// The host side of service registration over the platform's RPC binder (rpc_binder_host.h).
// glibc's <assert.h> first: on glibc, binder_status.h defines an __assert of its own that breaks
// <assert.h> when that comes later.
#include <android-base/unique_fd.h>
#include <android/binder_ibinder.h>
#include <android/binder_libbinder.h>
#include <android/log.h>
#include <assert.h>
#include <binder/RpcServer.h>
#include <binder/RpcSession.h>
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <utils/Errors.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "vesk/rpc_binder_host.h"

using android::OK;
using android::RpcServer;
using android::RpcSession;
using android::sp;
using android::status_t;
using android::statusToString;
using android::base::unique_fd;

namespace {

constexpr uint32_t kDefaultTimeoutMs = 5000;
// A dump request is a few words (dumpsys's arguments).
constexpr size_t kLargestDumpRequest = 64 * 1024;

thread_local std::string lastError;

VeskRpcResult fail(VeskRpcResult result, const char* format, ...)
        __attribute__((format(printf, 2, 3)));

VeskRpcResult fail(VeskRpcResult result, const char* format, ...) {
    char line[512];
    va_list args;
    va_start(args, format);
    vsnprintf(line, sizeof(line), format, args);
    va_end(args);
    lastError = line;
    return result;
}

VeskRpcResult succeed() {
    lastError.clear();
    return VESK_RPC_OK;
}

// The socket address of path, or false when it does not fit.
bool unixAddress(const char* path, sockaddr_un* address) {
    *address = {};
    address->sun_family = AF_UNIX;
    if (path == nullptr || path[0] == '\0' || strlen(path) >= sizeof(address->sun_path)) {
        return false;
    }
    strcpy(address->sun_path, path);
    return true;
}

// What is at path, for a client that cannot connect there.
VeskRpcResult whyNoConnection(const char* path, int connectErrno) {
    struct stat status {};
    if (lstat(path, &status) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) {
            return fail(VESK_RPC_NO_SUCH_SOCKET, "no socket at %s", path);
        }
        return fail(VESK_RPC_SYSTEM_ERROR, "cannot look at %s: %s", path, strerror(errno));
    }
    if (!S_ISSOCK(status.st_mode)) {
        return fail(VESK_RPC_NOT_A_SOCKET, "%s is not a socket", path);
    }
    if (connectErrno == ECONNREFUSED) {
        return fail(VESK_RPC_NO_SERVICE, "no service listens on %s (its server is gone)", path);
    }
    if (connectErrno == EAGAIN || connectErrno == EINPROGRESS || connectErrno == ETIMEDOUT) {
        return fail(VESK_RPC_TIMEOUT, "%s accepts no connection in time", path);
    }
    return fail(VESK_RPC_SYSTEM_ERROR, "cannot connect to %s: %s", path, strerror(connectErrno));
}

// A connected socket, or an invalid one with errno set. The connect waits at most timeout for
// a server whose backlog is full.
unique_fd connectTo(const sockaddr_un& address, std::chrono::milliseconds timeout) {
    unique_fd fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!fd.ok()) return fd;
    timeval limit{};
    limit.tv_sec = timeout.count() / 1000;
    limit.tv_usec = (timeout.count() % 1000) * 1000;
    if (limit.tv_sec == 0 && limit.tv_usec == 0) limit.tv_usec = 1000;
    setsockopt(fd.get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit));
    if (TEMP_FAILURE_RETRY(connect(fd.get(), reinterpret_cast<const sockaddr*>(&address),
                                   sizeof(address))) != 0) {
        int saved = errno;
        fd.reset();
        errno = saved;
    }
    return fd;
}

// Shuts down the sockets handed to it when the deadline passes before finish(): a server that
// accepts and never answers then gives the session's reads an end of file instead of a wait
// without end. Each socket is held as a duplicate of its own, so the session may close its copy
// at any time.
class Deadline {
  public:
    explicit Deadline(std::chrono::milliseconds timeout)
        : mEnd(std::chrono::steady_clock::now() + timeout), mWatcher([this] { watch(); }) {}
    ~Deadline() { finish(); }

    std::chrono::milliseconds remaining() const {
        auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                mEnd - std::chrono::steady_clock::now());
        return std::max(left, std::chrono::milliseconds(0));
    }

    void watch(int fd) {
        std::lock_guard<std::mutex> lock(mMutex);
        mSockets.emplace_back(fcntl(fd, F_DUPFD_CLOEXEC, 0));
        if (mExpired) shutdown(fd, SHUT_RDWR);
    }

    // Stops watching; true if the deadline had passed by then.
    bool finish() {
        {
            std::lock_guard<std::mutex> lock(mMutex);
            mFinished = true;
        }
        mChanged.notify_all();
        if (mWatcher.joinable()) mWatcher.join();
        mSockets.clear();
        return mExpired;
    }

  private:
    void watch() {
        std::unique_lock<std::mutex> lock(mMutex);
        if (mChanged.wait_until(lock, mEnd, [this] { return mFinished; })) return;
        mExpired = true;
        for (const unique_fd& fd : mSockets) {
            if (fd.ok()) shutdown(fd.get(), SHUT_RDWR);
        }
    }

    const std::chrono::steady_clock::time_point mEnd;
    std::mutex mMutex;
    std::condition_variable mChanged;
    std::vector<unique_fd> mSockets;
    bool mFinished = false;
    bool mExpired = false;
    std::thread mWatcher;
};

// Sends all of data; false with errno set when the peer is gone or does not read in time. Never
// raises SIGPIPE.
bool sendAll(int fd, const char* data, size_t size) {
    while (size > 0) {
        ssize_t sent = TEMP_FAILURE_RETRY(send(fd, data, size, MSG_NOSIGNAL));
        if (sent <= 0) return false;
        data += sent;
        size -= static_cast<size_t>(sent);
    }
    return true;
}

// A client's dump request: its arguments, each ended by a NUL, up to the client's end of file.
// False for a request too large or one that does not come within the default time.
bool readDumpRequest(int fd, std::vector<std::string>& args) {
    std::string request;
    char buffer[4096];
    for (;;) {
        pollfd ready{fd, POLLIN, 0};
        if (TEMP_FAILURE_RETRY(poll(&ready, 1, kDefaultTimeoutMs)) != 1) return false;
        ssize_t count = TEMP_FAILURE_RETRY(read(fd, buffer, sizeof(buffer)));
        if (count < 0) return false;
        if (count == 0) break;
        request.append(buffer, static_cast<size_t>(count));
        if (request.size() > kLargestDumpRequest) return false;
    }
    for (size_t start = 0; start < request.size();) {
        size_t end = request.find('\0', start);
        if (end == std::string::npos) end = request.size();
        args.push_back(request.substr(start, end - start));
        start = end + 1;
    }
    return true;
}

// Answers one dump request: the root's dump() written into a memory file first, so that a client
// that goes away costs the server a failed send, never a SIGPIPE from inside the service's dump.
void answerDump(AIBinder* root, int client) {
    std::vector<std::string> words;
    if (!readDumpRequest(client, words)) return;
    std::vector<const char*> args;
    for (const std::string& word : words) args.push_back(word.c_str());
    unique_fd text(memfd_create("vesk-rpc-dump", MFD_CLOEXEC));
    if (!text.ok()) return;
    (void)AIBinder_dump(root, text.get(), args.data(), static_cast<uint32_t>(args.size()));
    char buffer[65536];
    off_t offset = 0;
    ssize_t count;
    while ((count = TEMP_FAILURE_RETRY(pread(text.get(), buffer, sizeof(buffer), offset))) > 0) {
        if (!sendAll(client, buffer, static_cast<size_t>(count))) return;
        offset += count;
    }
}

// Serves dump requests one at a time until `stop` becomes readable.
void serveDumps(AIBinder* root, int listening, int stop) {
    pollfd fds[] = {{listening, POLLIN, 0}, {stop, POLLIN, 0}};
    for (;;) {
        if (TEMP_FAILURE_RETRY(poll(fds, 2, -1)) < 0 || fds[1].revents != 0) return;
        if ((fds[0].revents & POLLIN) == 0) continue;
        unique_fd client(TEMP_FAILURE_RETRY(accept4(listening, nullptr, nullptr, SOCK_CLOEXEC)));
        if (!client.ok()) continue;
        // A client that stops reading holds the server no longer than this.
        timeval limit{kDefaultTimeoutMs / 1000, 0};
        setsockopt(client.get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit));
        answerDump(root, client.get());
    }
}

// Holding the server's lock, a socket file at path is a dead server's: replaced. Any other file
// is refused.
VeskRpcResult clearStaleSocket(const char* path, const sockaddr_un& address) {
    struct stat status {};
    if (lstat(path, &status) != 0) return VESK_RPC_OK;
    if (!S_ISSOCK(status.st_mode)) {
        return fail(VESK_RPC_NOT_A_SOCKET, "%s is there and is not a socket", path);
    }
    if (connectTo(address, std::chrono::milliseconds(100)).ok()) {
        return fail(VESK_RPC_IN_USE, "another server listens on %s", path);
    }
    if (unlink(path) != 0 && errno != ENOENT) {
        return fail(VESK_RPC_SYSTEM_ERROR, "cannot remove the stale socket %s: %s", path,
                    strerror(errno));
    }
    return VESK_RPC_OK;
}

}  // namespace

struct VeskRpcServer {
    sp<RpcServer> server;
    std::string path;
    unique_fd lock;
    dev_t device = 0;
    ino_t inode = 0;
    // vesk_rpc_server_shutdown writes here: write(2) is what a signal handler may call.
    unique_fd stopRead;
    unique_fd stopWrite;
    // The root, for dump requests on dumpPath, served by dumpThread while the server is joined.
    AIBinder* root = nullptr;
    std::string dumpPath;
    unique_fd dumpListening;
    dev_t dumpDevice = 0;
    ino_t dumpInode = 0;
    std::thread dumpThread;
};

struct VeskRpcSession {
    sp<RpcSession> session;
    AIBinder* root = nullptr;
};

extern "C" {

const char* vesk_rpc_last_error(void) {
    return lastError.c_str();
}

const char* vesk_rpc_result_name(VeskRpcResult result) {
    switch (result) {
        case VESK_RPC_OK:
            return "VESK_RPC_OK";
        case VESK_RPC_BAD_ARGUMENT:
            return "VESK_RPC_BAD_ARGUMENT";
        case VESK_RPC_NO_SUCH_SOCKET:
            return "VESK_RPC_NO_SUCH_SOCKET";
        case VESK_RPC_NOT_A_SOCKET:
            return "VESK_RPC_NOT_A_SOCKET";
        case VESK_RPC_NO_SERVICE:
            return "VESK_RPC_NO_SERVICE";
        case VESK_RPC_NOT_A_SERVICE:
            return "VESK_RPC_NOT_A_SERVICE";
        case VESK_RPC_TIMEOUT:
            return "VESK_RPC_TIMEOUT";
        case VESK_RPC_IN_USE:
            return "VESK_RPC_IN_USE";
        case VESK_RPC_SYSTEM_ERROR:
            return "VESK_RPC_SYSTEM_ERROR";
    }
    return "unknown VeskRpcResult";
}

VeskRpcResult vesk_rpc_server_create(AIBinder* root, const char* socketPath, uint32_t maxThreads,
                                     VeskRpcServer** server) {
    sockaddr_un address;
    if (root == nullptr || server == nullptr) {
        return fail(VESK_RPC_BAD_ARGUMENT, "no root binder or no place for the server");
    }
    if (!unixAddress(socketPath, &address)) {
        return fail(VESK_RPC_BAD_ARGUMENT, "not a Unix socket path: \"%s\"",
                    socketPath == nullptr ? "" : socketPath);
    }
    auto made = std::make_unique<VeskRpcServer>();
    made->path = socketPath;

    std::string lockPath = made->path + ".lock";
    made->lock.reset(open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!made->lock.ok()) {
        return fail(VESK_RPC_SYSTEM_ERROR, "cannot open %s: %s", lockPath.c_str(), strerror(errno));
    }
    if (flock(made->lock.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) {
            return fail(VESK_RPC_IN_USE, "another server serves %s", socketPath);
        }
        return fail(VESK_RPC_SYSTEM_ERROR, "cannot lock %s: %s", lockPath.c_str(), strerror(errno));
    }

    made->dumpPath = made->path + ".dump";
    sockaddr_un dumpAddress;
    if (!unixAddress(made->dumpPath.c_str(), &dumpAddress)) {
        return fail(VESK_RPC_BAD_ARGUMENT, "not a Unix socket path: \"%s\"", made->dumpPath.c_str());
    }
    // Holding the lock, a socket file here is a dead server's, unless a program that takes no
    // lock listens on it.
    if (VeskRpcResult stale = clearStaleSocket(socketPath, address); stale != VESK_RPC_OK) {
        return stale;
    }
    if (VeskRpcResult stale = clearStaleSocket(made->dumpPath.c_str(), dumpAddress);
        stale != VESK_RPC_OK) {
        return stale;
    }
    struct stat status {};
    made->dumpListening.reset(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!made->dumpListening.ok()) {
        return fail(VESK_RPC_SYSTEM_ERROR, "socket: %s", strerror(errno));
    }
    if (bind(made->dumpListening.get(), reinterpret_cast<const sockaddr*>(&dumpAddress),
             sizeof(dumpAddress)) != 0) {
        return fail(VESK_RPC_SYSTEM_ERROR, "cannot bind %s: %s", made->dumpPath.c_str(),
                    strerror(errno));
    }
    if (lstat(made->dumpPath.c_str(), &status) == 0) {
        made->dumpDevice = status.st_dev;
        made->dumpInode = status.st_ino;
    }
    if (listen(made->dumpListening.get(), 8) != 0) {
        unlink(made->dumpPath.c_str());
        return fail(VESK_RPC_SYSTEM_ERROR, "cannot listen on %s: %s", made->dumpPath.c_str(),
                    strerror(errno));
    }

    unique_fd listening(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!listening.ok()) {
        unlink(made->dumpPath.c_str());
        return fail(VESK_RPC_SYSTEM_ERROR, "socket: %s", strerror(errno));
    }
    if (bind(listening.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        unlink(made->dumpPath.c_str());
        return fail(VESK_RPC_SYSTEM_ERROR, "cannot bind %s: %s", socketPath, strerror(errno));
    }
    if (lstat(socketPath, &status) == 0) {
        made->device = status.st_dev;
        made->inode = status.st_ino;
    }
    // RpcServer's own backlog: a client opens all its connections at once.
    if (listen(listening.get(), 50) != 0) {
        unlink(socketPath);
        unlink(made->dumpPath.c_str());
        return fail(VESK_RPC_SYSTEM_ERROR, "cannot listen on %s: %s", socketPath, strerror(errno));
    }

    int stop[2];
    if (pipe2(stop, O_CLOEXEC | O_NONBLOCK) != 0) {
        unlink(socketPath);
        unlink(made->dumpPath.c_str());
        return fail(VESK_RPC_SYSTEM_ERROR, "pipe: %s", strerror(errno));
    }
    made->stopRead.reset(stop[0]);
    made->stopWrite.reset(stop[1]);

    made->server = RpcServer::make();
    made->server->setMaxThreads(maxThreads == 0 ? 1 : maxThreads);
    made->server->setRootObject(AIBinder_toPlatformBinder(root));
    if (status_t status = made->server->setupExternalServer(std::move(listening)); status != OK) {
        unlink(socketPath);
        unlink(made->dumpPath.c_str());
        return fail(VESK_RPC_SYSTEM_ERROR, "cannot serve %s: %s", socketPath,
                    statusToString(status).c_str());
    }
    AIBinder_incStrong(root);
    made->root = root;
    *server = made.release();
    return succeed();
}

VeskRpcResult vesk_rpc_server_join(VeskRpcServer* server) {
    if (server == nullptr) return fail(VESK_RPC_BAD_ARGUMENT, "no server");
    server->server->start();
    server->dumpThread = std::thread(serveDumps, server->root, server->dumpListening.get(),
                                     server->stopRead.get());
    pollfd stop{server->stopRead.get(), POLLIN, 0};
    while (TEMP_FAILURE_RETRY(poll(&stop, 1, -1)) != 1) {
    }
    // The stop stays in the pipe: the dump thread sees it too.
    server->dumpThread.join();
    // start() runs join() on a thread of the server's, which installs the trigger that
    // shutdown() pulls: until it has, shutdown() has nothing to stop and says so.
    while (!server->server->shutdown()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return succeed();
}

void vesk_rpc_server_shutdown(VeskRpcServer* server) {
    if (server == nullptr) return;
    const char stop = 's';
    // Full pipe: a stop is already pending.
    (void)!write(server->stopWrite.get(), &stop, 1);
}

void vesk_rpc_server_destroy(VeskRpcServer* server) {
    if (server == nullptr) return;
    // Only this server's socket: after a shutdown another server may already serve the path.
    struct stat status {};
    if (lstat(server->path.c_str(), &status) == 0 && status.st_dev == server->device &&
        status.st_ino == server->inode) {
        unlink(server->path.c_str());
    }
    if (lstat(server->dumpPath.c_str(), &status) == 0 && status.st_dev == server->dumpDevice &&
        status.st_ino == server->dumpInode) {
        unlink(server->dumpPath.c_str());
    }
    if (server->root != nullptr) AIBinder_decStrong(server->root);
    delete server;
}

VeskRpcResult vesk_rpc_session_connect(const char* socketPath, uint32_t incomingThreads,
                                       uint32_t timeoutMs, VeskRpcSession** session) {
    sockaddr_un address;
    if (session == nullptr) return fail(VESK_RPC_BAD_ARGUMENT, "no place for the session");
    if (!unixAddress(socketPath, &address)) {
        return fail(VESK_RPC_BAD_ARGUMENT, "not a Unix socket path: \"%s\"",
                    socketPath == nullptr ? "" : socketPath);
    }
    Deadline deadline(std::chrono::milliseconds(timeoutMs == 0 ? kDefaultTimeoutMs : timeoutMs));

    // The first connection is made here, so that a missing or dead server is named as such;
    // the session makes the others (one per server thread, one per incoming thread) itself.
    unique_fd first = connectTo(address, deadline.remaining());
    if (!first.ok()) return whyNoConnection(socketPath, errno);
    deadline.watch(first.get());

    auto made = std::make_unique<VeskRpcSession>();
    made->session = RpcSession::make();
    made->session->setMaxIncomingThreads(incomingThreads);
    int laterErrno = 0;
    // Every connection through the request function: Android 13's setupPreconnectedClient takes
    // the fd it is given again for each further connection it makes.
    status_t status = made->session->setupPreconnectedClient(unique_fd(), [&] {
        if (first.ok()) return std::move(first);
        unique_fd next = connectTo(address, deadline.remaining());
        if (next.ok()) {
            deadline.watch(next.get());
        } else {
            laterErrno = errno;
        }
        return next;
    });
    sp<android::IBinder> root;
    if (status == OK) root = made->session->getRootObject();
    bool expired = deadline.finish();

    if (status == OK && root != nullptr && !expired) {
        made->root = AIBinder_fromPlatformBinder(root);
        *session = made.release();
        return succeed();
    }
    // Always true: it aborts when it cannot.
    if (status == OK) (void)made->session->shutdownAndWait(true);
    if (expired) {
        return fail(VESK_RPC_TIMEOUT, "no answer from %s within %u ms", socketPath,
                    timeoutMs == 0 ? kDefaultTimeoutMs : timeoutMs);
    }
    if (laterErrno != 0) return whyNoConnection(socketPath, laterErrno);
    if (status != OK) {
        return fail(VESK_RPC_NOT_A_SERVICE, "%s does not answer as an RPC binder server (%s)",
                    socketPath, statusToString(status).c_str());
    }
    return fail(VESK_RPC_NOT_A_SERVICE, "%s serves no root binder", socketPath);
}

VeskRpcResult vesk_rpc_dump(const char* socketPath, const char* const* args, uint32_t argCount,
                            int outFd, uint32_t timeoutMs) {
    if (socketPath == nullptr || (args == nullptr && argCount > 0)) {
        return fail(VESK_RPC_BAD_ARGUMENT, "no socket path or no arguments");
    }
    const std::string path = std::string(socketPath) + ".dump";
    sockaddr_un address;
    if (!unixAddress(path.c_str(), &address)) {
        return fail(VESK_RPC_BAD_ARGUMENT, "not a Unix socket path: \"%s\"", path.c_str());
    }
    const uint32_t limit = timeoutMs == 0 ? kDefaultTimeoutMs : timeoutMs;
    unique_fd fd = connectTo(address, std::chrono::milliseconds(limit));
    if (!fd.ok()) return whyNoConnection(path.c_str(), errno);
    std::string request;
    for (uint32_t i = 0; i < argCount; ++i) {
        request += args[i] == nullptr ? "" : args[i];
        request += '\0';
    }
    if (!sendAll(fd.get(), request.data(), request.size()) || shutdown(fd.get(), SHUT_WR) != 0) {
        return fail(VESK_RPC_NO_SERVICE, "%s takes no dump request: %s", path.c_str(),
                    strerror(errno));
    }
    char buffer[65536];
    for (;;) {
        pollfd ready{fd.get(), POLLIN, 0};
        int polled = TEMP_FAILURE_RETRY(poll(&ready, 1, static_cast<int>(limit)));
        if (polled == 0) {
            return fail(VESK_RPC_TIMEOUT, "no answer from %s within %u ms", path.c_str(), limit);
        }
        ssize_t count = polled < 0 ? -1 : TEMP_FAILURE_RETRY(read(fd.get(), buffer, sizeof(buffer)));
        if (count < 0) {
            return fail(VESK_RPC_SYSTEM_ERROR, "cannot read from %s: %s", path.c_str(),
                        strerror(errno));
        }
        if (count == 0) return succeed();
        for (ssize_t written = 0; written < count;) {
            ssize_t n = TEMP_FAILURE_RETRY(
                    write(outFd, buffer + written, static_cast<size_t>(count - written)));
            if (n <= 0) {
                return fail(VESK_RPC_SYSTEM_ERROR, "cannot write the dump: %s", strerror(errno));
            }
            written += n;
        }
    }
}

AIBinder* vesk_rpc_session_root(VeskRpcSession* session) {
    if (session == nullptr || session->root == nullptr) return nullptr;
    AIBinder_incStrong(session->root);
    return session->root;
}

void vesk_rpc_session_close(VeskRpcSession* session) {
    if (session == nullptr) return;
    // The server hears of the last reference while the session still runs.
    if (session->root != nullptr) AIBinder_decStrong(session->root);
    (void)session->session->shutdownAndWait(true);
    delete session;
}

}  // extern "C"

namespace {

std::atomic<VeskRpcLogger> platformLogger{nullptr};

void toPlatformLogger(const __android_log_message* message) {
    VeskRpcLogger logger = platformLogger.load();
    if (logger == nullptr) {
        __android_log_stderr_logger(message);
        return;
    }
    logger(message->priority, message->tag == nullptr ? "" : message->tag, message->message);
}

}  // namespace

extern "C" void vesk_rpc_set_platform_logger(VeskRpcLogger logger) {
    platformLogger.store(logger);
    __android_log_set_logger(logger == nullptr ? __android_log_stderr_logger : toPlatformLogger);
}
