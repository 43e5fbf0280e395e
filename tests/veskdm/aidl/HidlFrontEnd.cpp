#include "HidlFrontEnd.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <stdexcept>

#include "FrontEndCall.h"
#include "ImplLoader.h"
#include "vesk/host/DeviceRoot.h"
#include "vesk/host/LogSink.h"
#include "vesksdk_sim_control.h"

namespace veskdm::test {

using nlohmann::json;

namespace {

bool writeLine(int fd, const std::string& text) {
    std::string line = text + "\n";
    for (size_t done = 0; done < line.size();) {
        ssize_t n = write(fd, line.data() + done, line.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        done += static_cast<size_t>(n);
    }
    return true;
}

// The next line from fd (buffered in `pending`); false at its end.
bool readLine(int fd, std::string& pending, std::string& line) {
    char buffer[65536];
    size_t end;
    while ((end = pending.find('\n')) == std::string::npos) {
        ssize_t n = read(fd, buffer, sizeof(buffer));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        pending.append(buffer, static_cast<size_t>(n));
    }
    line = pending.substr(0, end);
    pending.erase(0, end + 1);
    return true;
}

// Text as the journal and log files hold it: bytes that are not UTF-8 as U+FFFD.
json asWritten(const json& value) {
    return json::parse(value.dump(-1, ' ', false, json::error_handler_t::replace));
}

// The facade on the root, one call per request line, one reply line each.
void serveCalls(const std::string& root, const json& script, int requests, int replies) {
    vesk::host::setDeviceRoot(root);
    std::string error;
    if (!vesk::sim::setScript(script, &error)) return;
    vesk::sim::startJournal();
    vesk::host::startLogCapture();
    ::android::sp<IVeskDeviceManager> service = fetchDeviceManager(VESK_IMPL_LIBRARY);
    std::string pending;
    for (std::string request; readLine(requests, pending, request);) {
        // What the object's construction logged and called is the front end's, not the call's.
        vesk::sim::clearJournal();
        vesk::host::clearCapturedLog();
        json reply;
        reply["answer"] = answerOf(json::parse(request).get<std::vector<std::string>>(), *service);
        reply["journal"] = vesk::sim::journal();
        json log = json::array();
        for (const vesk::host::LogLine& line : vesk::host::capturedLog()) {
            json written = json::parse(vesk::host::formatJsonLogLine(line));
            log.push_back({written.at("priority"), written.at("tag"), written.at("message")});
        }
        reply["log"] = log;
        if (!writeLine(replies, withoutRoot(asWritten(reply), root).dump())) break;
    }
}

// The child's whole life: it never returns into the test program.
[[noreturn]] void runChild(const std::string& root, const json& script, int requests, int replies) {
    int nothing = open("/dev/null", O_WRONLY);
    dup2(nothing, STDERR_FILENO);
    try {
        serveCalls(root, script, requests, replies);
    } catch (...) {
        _exit(4);
    }
    _exit(0);
}

}  // namespace

HidlFrontEnd::HidlFrontEnd(const std::string& root, const json& script) : mRoot(root) {
    int requests[2];
    int replies[2];
    if (pipe2(requests, O_CLOEXEC) != 0 || pipe2(replies, O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipes for the HIDL front end");
    }
    // A process that ended reads as the end of its replies, not as a signal here.
    signal(SIGPIPE, SIG_IGN);
    fflush(nullptr);
    mPid = fork();
    if (mPid == 0) {
        close(requests[1]);
        close(replies[0]);
        runChild(root, script, requests[0], replies[1]);
    }
    close(requests[0]);
    close(replies[1]);
    mRequests = requests[1];
    mReplies = replies[0];
}

HidlFrontEnd::~HidlFrontEnd() {
    if (mRequests >= 0) close(mRequests);
    if (mReplies >= 0) close(mReplies);
    if (mPid > 0) {
        int status = 0;
        while (waitpid(mPid, &status, 0) < 0 && errno == EINTR) {
        }
    }
}

json HidlFrontEnd::call(const std::vector<std::string>& words) {
    if (mPid < 0) throw std::logic_error("the HIDL front end's process has ended");
    std::string line;
    if (writeLine(mRequests, json(words).dump()) && readLine(mReplies, mBuffered, line)) {
        return json::parse(line);
    }
    int status = 0;
    while (waitpid(mPid, &status, 0) < 0 && errno == EINTR) {
    }
    mPid = -1;
    json ended = WIFSIGNALED(status) ? json{{"ended by signal", WTERMSIG(status)}}
                                     : json{{"ended with status", WEXITSTATUS(status)}};
    return json{{"answer", ended}, {"journal", json::array()}, {"log", json::array()}};
}

}  // namespace veskdm::test
