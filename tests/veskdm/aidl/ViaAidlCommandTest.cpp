// veskdm over the AIDL service: `serve` starts, finds and stops the service program on the root,
// and `call`, `shell` and `debug` with --via aidl print what the in-process service prints, each
// failure as one line. Run as the built programs on the simulated board.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include "RunVeskdm.h"

namespace veskdm::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

// The run's standard error without the line the ThreadSanitizer runtime writes when it symbolizes
// a suppressed report of the platform's library (android/tsan-suppressions.txt) and meets a
// frame on the stack; in other builds, the whole of it.
std::string errorsOf(const Outcome& outcome) {
    std::string kept;
    for (const std::string& line : outcome.errLines()) {
        if (line.rfind("LLVMSymbolizer: ", 0) != 0) kept += line + "\n";
    }
    return kept;
}

class ViaAidlCommandTest : public ::testing::Test {
  protected:
    ViaAidlCommandTest() { veskdm.environment = {"VESK_IMPL_LIB=", "VESK_BOARD_SCRIPT="}; }

    // Whatever a test left running ends with it.
    ~ViaAidlCommandTest() override {
        if (servicePid > 0 && kill(servicePid, 0) == 0) {
            veskdm.run({"serve", "--stop"});
            kill(servicePid, SIGKILL);
        }
    }

    std::string socketPath() const { return root.path() + "/dev/socket/veskdevicemanager"; }

    // Starts the service with `veskdm serve`; its pid from the line it printed.
    void serve() {
        Outcome started = veskdm.run({"serve"});
        ASSERT_EQ(started.status, 0) << started.err;
        const std::string listening = "listening on " + socketPath() + ", pid ";
        ASSERT_THAT(started.out, StartsWith(listening));
        servicePid = atoi(started.out.substr(listening.size()).c_str());
        ASSERT_GT(servicePid, 0);
        EXPECT_EQ(started.out, listening + std::to_string(servicePid) + "\n");
        EXPECT_EQ(started.err, "");
    }

    // Waits until the service's standard error holds `text` (at most 30 s).
    bool serviceErrorsShow(const std::string& text) const {
        auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (vesk::test::readFile(socketPath() + ".log").find(text) == std::string::npos) {
            if (std::chrono::steady_clock::now() > end) return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return true;
    }

    vesk::test::TempRoot root;
    VeskdmRunner veskdm{root};
    pid_t servicePid = 0;
};

TEST_F(ViaAidlCommandTest, ServeStartsFindsAndStopsTheService) {
    Outcome none = veskdm.run({"serve", "--status"});
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.out, "not running\n");

    serve();
    Outcome running = veskdm.run({"serve", "--status"});
    EXPECT_EQ(running.status, 0);
    EXPECT_EQ(running.out,
              "running on " + socketPath() + ", pid " + std::to_string(servicePid) + "\n");

    // One service per root: a second start touches nothing of the first.
    Outcome second = veskdm.run({"serve"});
    EXPECT_EQ(second.status, 1);
    EXPECT_THAT(second.errLines(), ElementsAre("veskdm: a service already runs on " + socketPath() +
                                               ", pid " + std::to_string(servicePid)));
    EXPECT_EQ(second.out, "");

    Outcome stopped = veskdm.run({"serve", "--stop"});
    EXPECT_EQ(stopped.status, 0);
    EXPECT_EQ(stopped.out, "stopped pid " + std::to_string(servicePid) + "\n");
    EXPECT_EQ(veskdm.run({"serve", "--status"}).out, "not running\n");
    struct stat status {};
    EXPECT_NE(lstat(socketPath().c_str(), &status), 0) << "the service removes its socket";

    Outcome again = veskdm.run({"serve", "--stop"});
    EXPECT_EQ(again.status, 1);
    EXPECT_THAT(again.errLines(), ElementsAre("veskdm: no service runs on " + socketPath()));
}

// The board journal, the board script and the log reach the service as they reach the in-process
// service of a call.
TEST_F(ViaAidlCommandTest, TheRunsJournalScriptAndLogReachTheService) {
    const std::string script = root.path() + "/script.json";
    const std::string journal = root.path() + "/journal.jsonl";
    const std::string log = root.path() + "/log.jsonl";
    vesk::test::writeFile(script, R"({"bi_sysled_get_state": {"return": 7}})");
    ASSERT_EQ(veskdm.run({"prop", "set", "persist.vesk.device.log.level", "D"}).status, 0);
    Outcome started = veskdm.run(
            {"--board-script", script, "--board-journal", journal, "--log", log, "serve"});
    ASSERT_EQ(started.status, 0) << started.err;
    servicePid = atoi(started.out.substr(started.out.rfind(' ') + 1).c_str());

    Outcome call = veskdm.run({"call", "--via", "aidl", "getSysLedState"});
    EXPECT_THAT(call.outLines(),
                ElementsAre(R"({"method":"getSysLedState","return":7,"callbacks":[]})"));
    ASSERT_EQ(veskdm.run({"serve", "--stop"}).status, 0);
    EXPECT_THAT(splitLines(vesk::test::readFile(journal)),
                ElementsAre(R"({"function":"bi_init_product_config","args":[],"return":0})",
                            R"({"function":"bi_sysled_get_state","args":[],"return":7})"));
    // The service's trace line of the call, as the in-process service writes it.
    const std::string inProcessLog = root.path() + "/in-process.jsonl";
    veskdm.run({"--board-script", script, "--log", inProcessLog, "call", "getSysLedState"});
    std::vector<std::string> inProcess = splitLines(vesk::test::readFile(inProcessLog));
    ASSERT_FALSE(inProcess.empty());
    EXPECT_THAT(splitLines(vesk::test::readFile(log)), ::testing::Contains(inProcess.back()));
    EXPECT_THAT(inProcess.back(), HasSubstr(R"("message":"getSysLedState )"));
}

// A link planted where the service's standard error goes (a symbolic link out of the root, or a
// second name of a file elsewhere): one line, status 1, no service started, and the file the
// link names keeps its content.
TEST_F(ViaAidlCommandTest, ALinkPlantedAtTheServicesErrorFileIsRefused) {
    vesk::test::TempRoot outside;
    const std::string victim = outside.path() + "/victim";
    const std::string errors = socketPath() + ".log";
    ASSERT_TRUE(mkdir((root.path() + "/dev").c_str(), 0755) == 0 || errno == EEXIST);
    ASSERT_TRUE(mkdir((root.path() + "/dev/socket").c_str(), 0755) == 0 || errno == EEXIST);
    for (const std::string kind : {"symbolic", "hard"}) {
        SCOPED_TRACE(kind);
        vesk::test::writeFile(victim, "kept\n");
        unlink(errors.c_str());
        ASSERT_EQ(kind == "symbolic" ? symlink(victim.c_str(), errors.c_str())
                                     : link(victim.c_str(), errors.c_str()),
                  0);
        Outcome outcome = veskdm.run({"serve"});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.out, "");
        ASSERT_EQ(outcome.errLines().size(), 1u) << outcome.err;
        EXPECT_THAT(outcome.errLines()[0], StartsWith("veskdm: cannot open " + errors + ": "));
        EXPECT_EQ(vesk::test::readFile(victim), "kept\n");
        EXPECT_EQ(veskdm.run({"serve", "--status"}).out, "not running\n");
    }
}

TEST_F(ViaAidlCommandTest, AServiceThatCannotStartIsOneLine) {
    veskdm.environment.push_back("VESK_SERVICE_PROGRAM=/nonexistent/service");
    Outcome outcome = veskdm.run({"serve"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errLines(),
                ElementsAre("veskdm: the service did not start: cannot run /nonexistent/service: "
                            "No such file or directory"));
    EXPECT_EQ(outcome.out, "");
}

TEST_F(ViaAidlCommandTest, CallPrintsWhatTheInProcessCallPrints) {
    serve();
    const std::string expected = R"({"method":"setSysLedState","return":0,"callbacks":[]})";
    // The option of the command, as the option of the run below.
    Outcome viaAidl = veskdm.run({"call", "--via", "aidl", "setSysLedState", "1"});
    EXPECT_EQ(viaAidl.status, 0) << viaAidl.err;
    EXPECT_THAT(viaAidl.outLines(), ElementsAre(expected));
    EXPECT_EQ(errorsOf(viaAidl), "");
    Outcome inProcess = veskdm.run({"call", "setSysLedState", "1"});
    EXPECT_EQ(inProcess.out, viaAidl.out);

    // The LED the service set is the board's: the in-process service reads it back.
    EXPECT_THAT(veskdm.run({"call", "getSysLedState"}).outLines(),
                ElementsAre(R"({"method":"getSysLedState","return":1,"callbacks":[]})"));
    // A result callback's arguments, from a parcelable of two values.
    Outcome spi = veskdm.run({"--via", "aidl", "call", "readSpiFpga", "3"});
    EXPECT_THAT(spi.outLines(),
                ElementsAre(R"({"method":"readSpiFpga","return":null,"callbacks":[[3,[0,0,0]]]})"));
    EXPECT_EQ(spi.out, veskdm.run({"call", "readSpiFpga", "3"}).out);
}

TEST_F(ViaAidlCommandTest, ARefusedArgumentIsBadInputWithTheServicesMessage) {
    serve();
    Outcome outcome =
            veskdm.run({"--via", "aidl", "call", "readBlockingSerialPort485", "4294967295", "5"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errLines(),
                ElementsAre("veskdm: readBlockingSerialPort485: data_size is -1, outside its range "
                            "0 to 1040384"));
    EXPECT_EQ(outcome.out, "");
}

TEST_F(ViaAidlCommandTest, NoServiceRunning) {
    Outcome outcome = veskdm.run({"--via", "aidl", "call", "getSysLedState"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errLines(),
                ElementsAre("veskdm: cannot reach the service: no socket at " + socketPath()));
    EXPECT_EQ(outcome.out, "");
}

TEST_F(ViaAidlCommandTest, ASocketThatIsNoService) {
    // Something that listens and hangs up on every connection.
    ASSERT_EQ(mkdir((root.path() + "/dev/socket").c_str(), 0755), 0);
    int listening = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    snprintf(address.sun_path, sizeof(address.sun_path), "%s", socketPath().c_str());
    ASSERT_EQ(bind(listening, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    ASSERT_EQ(listen(listening, 8), 0);
    std::atomic<bool> done{false};
    std::thread hangUp([&] {
        while (!done) {
            int client = accept(listening, nullptr, nullptr);
            if (client >= 0) close(client);
        }
    });
    veskdm.deadlineSeconds = 60;
    Outcome outcome = veskdm.run({"--via", "aidl", "call", "getSysLedState"});
    done = true;
    shutdown(listening, SHUT_RDWR);
    hangUp.join();
    close(listening);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errLines(),
                ElementsAre(StartsWith("veskdm: cannot reach the service: " + socketPath() +
                                       " does not answer as an RPC binder server (")));
    EXPECT_EQ(outcome.out, "");
}

TEST_F(ViaAidlCommandTest, AServiceThatDiesMidCall) {
    serve();
    ASSERT_EQ(veskdm.run({"prop", "set", "persist.vesk.device.log.level", "D"}).status, 0);
    ASSERT_EQ(veskdm.run({"--via", "aidl", "call", "openSerialPort485", "115200", "8", "1", "0"})
                      .status,
              0);
    veskdm.deadlineSeconds = 120;
    Outcome outcome;
    std::thread call([&] {
        outcome = veskdm.run({"--via", "aidl", "call", "readBlockingSerialPort485", "16", "100000"});
    });
    // The service's trace line says the read has begun.
    EXPECT_TRUE(serviceErrorsShow("readBlockingSerialPort485 "));
    kill(servicePid, SIGKILL);
    call.join();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errLines(),
                ElementsAre("veskdm: readBlockingSerialPort485: transport error: the service is "
                            "gone (DEAD_OBJECT)"));

    // Its socket is left behind: a dead service's.
    Outcome after = veskdm.run({"--via", "aidl", "call", "getSysLedState"});
    EXPECT_EQ(after.status, 1);
    EXPECT_THAT(after.errLines(),
                ElementsAre("veskdm: cannot reach the service: no service listens on " +
                            socketPath() + " (its server is gone)"));
    // The next one takes its place.
    serve();
    EXPECT_EQ(veskdm.run({"--via", "aidl", "call", "getSysLedState"}).status, 0);
}

TEST_F(ViaAidlCommandTest, ShellThroughTheService) {
    serve();
    Outcome outcome = veskdm.run({"shell", "--via", "aidl"},
                                 "setSysLedState 1\n"
                                 "readSpiFpga -1\n"
                                 "getSysLedState\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.outLines(),
                ElementsAre(R"({"method":"setSysLedState","return":0,"callbacks":[]})",
                            R"({"method":"getSysLedState","return":1,"callbacks":[]})"));
    // Where the in-process service ends its process, the service refuses the line.
    EXPECT_THAT(outcome.errLines(),
                ElementsAre("veskdm: line 2: readSpiFpga: size is -1, outside its range 0 to "
                            "1040384"));
}

TEST_F(ViaAidlCommandTest, DebugPrintsWhatTheInProcessServicePrints) {
    serve();
    ASSERT_EQ(veskdm.run({"--via", "aidl", "call", "setSysLedState", "1"}).status, 0);
    Outcome all = veskdm.run({"--via", "aidl", "debug"});
    EXPECT_EQ(all.status, 0) << all.err;
    EXPECT_THAT(all.out, StartsWith("[product]\n"));
    EXPECT_EQ(all.out, veskdm.run({"debug"}).out);
    Outcome mode = veskdm.run({"debug", "--via", "aidl", "mode", "env"});
    EXPECT_EQ(mode.status, 0);
    EXPECT_THAT(mode.out, StartsWith("[mode]\n"));
    EXPECT_THAT(mode.out, HasSubstr("\n[env]\n"));
    EXPECT_EQ(mode.out, veskdm.run({"debug", "mode", "env"}).out);

    veskdm.run({"serve", "--stop"});
    Outcome gone = veskdm.run({"--via", "aidl", "debug"});
    EXPECT_EQ(gone.status, 1);
    EXPECT_THAT(gone.errLines(),
                ElementsAre("veskdm: cannot reach the service: no socket at " + socketPath()));
}

}  // namespace
}  // namespace veskdm::test
