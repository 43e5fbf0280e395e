#include "ServiceProcess.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ext/stdio_filebuf.h>
#include <ostream>
#include <sstream>
#include <string>

#include "Errors.h"
#include "NotificationOutput.h"
#include "RunLog.h"

namespace veskdm {
namespace {

// The step line a child sends once `body` has returned: what follows is its own exit.
constexpr char kBodyReturned[] = "\x01returned";
// The most of the child's raw standard error kept for the report: its last lines.
constexpr size_t kLastWordsKept = 4096;

class Pipe {
  public:
    Pipe() {
        int fds[2];
        if (pipe2(fds, O_CLOEXEC) != 0) {
            throw CommandError(std::string("no pipe for the service's process: ") + strerror(errno));
        }
        readEnd = fds[0];
        writeEnd = fds[1];
    }
    ~Pipe() {
        closeRead();
        closeWrite();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    void closeRead() {
        if (readEnd >= 0) close(readEnd);
        readEnd = -1;
    }
    void closeWrite() {
        if (writeEnd >= 0) close(writeEnd);
        writeEnd = -1;
    }

    int readEnd = -1;
    int writeEnd = -1;
};

struct Pipes {
    Pipe out;        // the child's context.out
    Pipe err;        // the child's context.err
    Pipe steps;      // Context::markStep lines
    Pipe lastWords;  // the child's standard error: what the C library and liblog write as the
                     // process ends
};

// The child: runs `body` and exits with its status; never returns.
[[noreturn]] void runChild(Context& context, const std::function<void(Context&)>& body,
                           Pipes& pipes) {
    // The C library writes its fatal messages to the terminal unless told otherwise; a process
    // that aborts leaves no core behind (the abort is the service's answer, not a crash to study).
    setenv("LIBC_FATAL_STDERR_", "1", 1);
    rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    dup2(pipes.lastWords.writeEnd, STDERR_FILENO);
    __gnu_cxx::stdio_filebuf<char> outBuffer(pipes.out.writeEnd, std::ios::out);
    __gnu_cxx::stdio_filebuf<char> errBuffer(pipes.err.writeEnd, std::ios::out);
    std::ostream out(&outBuffer);
    std::ostream err(&errBuffer);
    err << std::unitbuf;
    Context child(context, Streams{context.in, out, err});
    child.stepFd = pipes.steps.writeEnd;
    RunLog log(err);
    log.setVerbose(context.options.verbose);
    if (!context.options.log.empty()) log.recordTo(context.options.log);
    child.log = &log;
    NotificationOutput notifications(out);
    int status = statusOf([&] { body(child); }, err);
    if (status == 0) {
        log.release();
    } else {
        log.drop();
    }
    out.flush();
    err.flush();
    child.markStep(kBodyReturned);
    // The process ends as a service's process does: what it registered to run at exit runs (the
    // simulated board removes the links of the serial channels it opened).
    exit(status);
}

// The last line of `text` that the process wrote itself; the C library's fatal message
// "*** WHAT ***: terminated" as WHAT. An emulator running the process (qemu-user, for the ARM
// builds) adds a line of its own about the signal after it: that one is passed over.
std::string lastLine(const std::string& text) {
    const std::string emulator = "qemu: uncaught target signal ";
    std::istringstream lines(text);
    std::string line;
    for (std::string next; std::getline(lines, next);) {
        if (!next.empty() && next.compare(0, emulator.size(), emulator) != 0) line = next;
    }
    const std::string head = "*** ";
    const std::string tail = " ***: terminated";
    if (line.size() > head.size() + tail.size() && line.compare(0, head.size(), head) == 0 &&
        line.compare(line.size() - tail.size(), tail.size(), tail) == 0) {
        return line.substr(head.size(), line.size() - head.size() - tail.size());
    }
    return line;
}

// How a child that did not return from its body ended, as one line.
std::string describeEnd(int waitStatus, const std::string& lastWords) {
    std::string message = lastLine(lastWords);
    std::string how;
    if (WIFSIGNALED(waitStatus) && WTERMSIG(waitStatus) == SIGABRT) {
        how = "the service aborted";
    } else if (WIFSIGNALED(waitStatus)) {
        int signal = WTERMSIG(waitStatus);
        how = "the service was ended by signal " + std::to_string(signal) + " (" +
              strsignal(signal) + ")";
    } else {
        how = "the service ended its process with status " + std::to_string(WEXITSTATUS(waitStatus));
    }
    return message.empty() ? how : how + ": " + message;
}

// What the parent learns from the child's pipes besides its output.
struct Relayed {
    std::string step;  // the last step it marked
    bool bodyReturned = false;
    std::string lastWords;  // the end of its standard error
    std::string stepText;   // step lines not yet complete

    void addStepText(const std::string& chunk) {
        stepText += chunk;
        for (size_t end; (end = stepText.find('\n')) != std::string::npos;
             stepText.erase(0, end + 1)) {
            std::string line = stepText.substr(0, end);
            if (line == kBodyReturned) {
                bodyReturned = true;
            } else {
                step = line;
            }
        }
    }
};

void keepTail(std::string& text) {
    if (text.size() > 2 * kLastWordsKept) text.erase(0, text.size() - kLastWordsKept);
}

// Relays what the child writes until its pipes close.
Relayed relay(Context& context, Pipes& pipes) {
    Relayed relayed;
    pollfd fds[] = {{pipes.out.readEnd, POLLIN, 0},
                    {pipes.err.readEnd, POLLIN, 0},
                    {pipes.steps.readEnd, POLLIN, 0},
                    {pipes.lastWords.readEnd, POLLIN, 0}};
    // The first three close when the child ends; its standard error may live on in the
    // programs it started, so it is not waited for.
    int open = 3;
    char buffer[65536];
    while (open > 0) {
        if (poll(fds, 4, -1) < 0) {
            if (errno == EINTR) continue;
            throw CommandError(std::string("cannot follow the service's process: ") +
                               strerror(errno));
        }
        for (size_t i = 0; i < 4; ++i) {
            if (fds[i].fd < 0 || fds[i].revents == 0) continue;
            ssize_t n = read(fds[i].fd, buffer, sizeof(buffer));
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) {
                fds[i].fd = -1;
                if (i < 3) --open;
                continue;
            }
            std::string chunk(buffer, static_cast<size_t>(n));
            if (i == 0) {
                context.out << chunk;
                context.out.flush();
            } else if (i == 1) {
                context.err << chunk;
                context.err.flush();
            } else if (i == 2) {
                relayed.addStepText(chunk);
            } else {
                relayed.lastWords += chunk;
                keepTail(relayed.lastWords);
            }
        }
    }
    return relayed;
}

// What is left on the child's standard error, without waiting for programs it started.
void drainLastWords(int fd, std::string& lastWords) {
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
    char buffer[4096];
    ssize_t n;
    while ((n = read(fd, buffer, sizeof(buffer))) > 0) {
        lastWords.append(buffer, static_cast<size_t>(n));
        keepTail(lastWords);
    }
}

}  // namespace

void runInServiceProcess(Context& context, const std::function<void(Context& child)>& body) {
    Pipes pipes;
    context.out.flush();
    context.err.flush();
    fflush(nullptr);
    pid_t pid = fork();
    if (pid < 0) {
        throw CommandError(std::string("cannot start the service's process: ") + strerror(errno));
    }
    if (pid == 0) runChild(context, body, pipes);

    pipes.out.closeWrite();
    pipes.err.closeWrite();
    pipes.steps.closeWrite();
    pipes.lastWords.closeWrite();
    Relayed relayed = relay(context, pipes);
    int waitStatus = 0;
    while (waitpid(pid, &waitStatus, 0) < 0 && errno == EINTR) {
    }
    drainLastWords(pipes.lastWords.readEnd, relayed.lastWords);

    if (relayed.bodyReturned && WIFEXITED(waitStatus)) {
        int status = WEXITSTATUS(waitStatus);
        // What the service wrote to standard error itself, shown as its log's warnings are: for
        // a command that succeeded.
        if (status == 0) {
            context.err << relayed.lastWords;
            context.err.flush();
        }
        if (status != 0) throw ExitStatus(status);
        return;
    }
    std::string where = relayed.step.empty() ? "" : relayed.step + ": ";
    throw CommandError(where + describeEnd(waitStatus, relayed.lastWords));
}

}  // namespace veskdm
