/*
 * veskdm serve [--status | --stop]: the stable-AIDL service program as a process of its own on
 * the device root, which `--via aidl` calls reach. It is found by the lock it holds on its
 * socket (SOCKET.lock): the holder's pid is the kernel's record of that lock.
 */
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>

#include "Commands.h"
#include "ImplLoader.h"
#include "vesk/host/DeviceRoot.h"
#include "vesk/host/RootFiles.h"

namespace veskdm {
namespace {

constexpr char kServiceProgram[] = "vesk.hardware.veskdevicemanager-service";
constexpr char kServiceProgramVariable[] = "VESK_SERVICE_PROGRAM";
// What the service's registration prints once clients can connect.
constexpr char kListening[] = "listening on ";
// The service's standard error, beside its socket.
constexpr char kServiceErrors[] = "/dev/socket/veskdevicemanager.log";
// How long a service may take to start listening, and to end after SIGTERM.
constexpr auto kStartLimit = std::chrono::seconds(30);
constexpr auto kStopLimit = std::chrono::seconds(30);

std::string serviceProgram() {
    const char* chosen = getenv(kServiceProgramVariable);
    if (chosen != nullptr && chosen[0] != '\0') return chosen;
    return besideProgram(kServiceProgram);
}

// The pid of the process holding the lock of the service's socket, 0 when none does.
pid_t servingPid(const std::string& socketPath) {
    struct stat lock {};
    if (stat((socketPath + ".lock").c_str(), &lock) != 0) return 0;
    char file[64];
    snprintf(file, sizeof(file), "%02x:%02x:%llu", major(lock.st_dev), minor(lock.st_dev),
             static_cast<unsigned long long>(lock.st_ino));
    // "1: FLOCK  ADVISORY  WRITE 1234 fd:01:5678 0 EOF"; a waiter's line has "->" after the
    // number.
    std::ifstream locks("/proc/locks");
    for (std::string line; std::getline(locks, line);) {
        std::istringstream words(line);
        std::string number, type, mode, access, pid, where;
        if (!(words >> number >> type >> mode >> access >> pid >> where)) continue;
        if (type == "FLOCK" && where == file) return static_cast<pid_t>(atoi(pid.c_str()));
    }
    return 0;
}

// The last line of the file below the root ("" when there is none).
std::string lastLineOf(const std::string& root, const std::string& path) {
    std::string text;
    if (!vesk::host::readFileBelowRoot(root, path, text)) return "";
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text.substr(text.rfind('\n') == std::string::npos ? 0 : text.rfind('\n') + 1);
}

// The child: the service program in a session of its own, its standard output the pipe its
// first line is read from, its standard error the file beside its socket.
[[noreturn]] void execService(const std::string& program, const std::string& root,
                              const std::string& jsonLog, int output, int errors) {
    setsid();
    int nothing = open("/dev/null", O_RDONLY);
    dup2(nothing, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    setenv("VESK_ROOT", root.c_str(), 1);
    if (!jsonLog.empty()) setenv("VESK_LOG_FILE", jsonLog.c_str(), 1);
    execl(program.c_str(), program.c_str(), static_cast<char*>(nullptr));
    fprintf(stderr, "cannot run %s: %s\n", program.c_str(), strerror(errno));
    _exit(127);
}

// Reads the service's first line, within the limit; "" when it ended or said nothing.
std::string firstLine(int output) {
    std::string line;
    auto end = std::chrono::steady_clock::now() + kStartLimit;
    while (line.find('\n') == std::string::npos) {
        auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                end - std::chrono::steady_clock::now());
        if (left.count() <= 0) return "";
        pollfd ready{output, POLLIN, 0};
        int polled = poll(&ready, 1, static_cast<int>(left.count()));
        if (polled < 0 && errno == EINTR) continue;
        if (polled <= 0) return "";
        char buffer[512];
        ssize_t n = read(output, buffer, sizeof(buffer));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return "";
        line.append(buffer, static_cast<size_t>(n));
    }
    return line.substr(0, line.find('\n'));
}

void start(Context& context) {
    std::string root = context.useRoot();
    std::string socket = vesk::host::pathBelowRoot(root, vesk::host::kServiceSocket);
    // Before anything is touched: the running one's error file is not cut short.
    if (pid_t running = servingPid(socket); running != 0) {
        throw CommandError("a service already runs on " + socket + ", pid " +
                           std::to_string(running));
    }
    if (!vesk::host::makeDirectoriesBelowRoot(root, vesk::host::kServiceSocketFolder)) {
        throw CommandError("cannot make " +
                           vesk::host::pathBelowRoot(root, vesk::host::kServiceSocketFolder) +
                           ": " + strerror(errno));
    }
    int errors = vesk::host::openBelowRoot(root, kServiceErrors,
                                           O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (errors < 0) {
        throw CommandError("cannot open " + vesk::host::pathBelowRoot(root, kServiceErrors) + ": " +
                           strerror(errno));
    }
    int output[2];
    if (pipe2(output, O_CLOEXEC) != 0) {
        close(errors);
        throw CommandError(std::string("no pipe for the service: ") + strerror(errno));
    }
    std::string program = serviceProgram();
    context.out.flush();
    fflush(nullptr);
    pid_t pid = fork();
    if (pid == 0) execService(program, root, context.options.log, output[1], errors);
    int forkErrno = errno;
    close(output[1]);
    close(errors);
    if (pid < 0) {
        close(output[0]);
        throw CommandError(std::string("cannot start the service: ") + strerror(forkErrno));
    }
    std::string line = firstLine(output[0]);
    close(output[0]);
    if (line == kListening + socket) {
        context.out << line << ", pid " << pid << "\n";
        return;
    }
    // It ended, or never said it listens: what it wrote last says why.
    kill(pid, SIGKILL);
    while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
    std::string why = lastLineOf(root, kServiceErrors);
    throw CommandError("the service did not start" + (why.empty() ? "" : ": " + why));
}

void status(Context& context) {
    std::string socket = vesk::host::pathBelowRoot(context.rootPath(), vesk::host::kServiceSocket);
    pid_t pid = servingPid(socket);
    if (pid == 0) {
        context.out << "not running\n";
    } else {
        context.out << "running on " << socket << ", pid " << pid << "\n";
    }
}

void stop(Context& context) {
    std::string socket = vesk::host::pathBelowRoot(context.rootPath(), vesk::host::kServiceSocket);
    pid_t pid = servingPid(socket);
    if (pid == 0) throw CommandError("no service runs on " + socket);
    if (kill(pid, SIGTERM) != 0) {
        throw CommandError("cannot stop the service (pid " + std::to_string(pid) +
                           "): " + strerror(errno));
    }
    // It has ended when its lock is gone.
    auto end = std::chrono::steady_clock::now() + kStopLimit;
    while (servingPid(socket) == pid) {
        if (std::chrono::steady_clock::now() > end) {
            throw CommandError("the service (pid " + std::to_string(pid) + ") did not stop within " +
                               std::to_string(kStopLimit.count()) + " s of SIGTERM");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    context.out << "stopped pid " << pid << "\n";
}

}  // namespace

void addServeCommand(CLI::App& app, Context& context) {
    auto askStatus = std::make_shared<bool>(false);
    auto askStop = std::make_shared<bool>(false);
    auto* serve = app.add_subcommand("serve", "start the AIDL service on the device root");
    serve->footer(
            "Starts the stable-AIDL service program on the device root and returns once it "
            "listens,\nprinting \"listening on SOCKET, pid PID\"; call, shell and debug reach it "
            "with --via aidl.\nIts standard error goes to ROOT" +
            std::string(kServiceErrors) + " (with --log, its log lines to that file).\n" +
            "The program is $" + kServiceProgramVariable + ", else " + kServiceProgram +
            " beside veskdm.");
    auto* statusFlag = serve->add_flag("--status", *askStatus,
                                       "say whether a service runs on the root, and its pid");
    serve->add_flag("--stop", *askStop, "stop the service running on the root (SIGTERM)")
            ->excludes(statusFlag);
    serve->callback([askStatus, askStop, &context] {
        if (*askStatus) {
            status(context);
        } else if (*askStop) {
            stop(context);
        } else {
            start(context);
        }
    });
}

}  // namespace veskdm
