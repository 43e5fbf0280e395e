// One synchronous call of the stable-AIDL service over the platform's RPC binder, from another
// process, against the floor measured in the same run (a call of IPing, a minimal interface, over
// the same libbinder) and against the same call on the HIDL facade in this process. What this
// project adds to a call over binder is the AIDL call less the in-process call; it is compared
// with the floor (scripts/bench_table.py).
//
// The program and its servers run on one CPU. Across CPUs, a call's wall time is mostly the time
// an idle CPU takes to wake for the other side (15 to 60 us per call on a virtual machine,
// depending on how long it idled and on the order of the calls), which would swamp the work
// compared here; on one CPU a call is the work of both sides and two switches between them.
#include <aidl/vesk/hardware/veskdevicemanager/IVeskDeviceManager.h>
#include <aidl/vesk/tests/IPing.h>
#include <benchmark/benchmark.h>
#include <cutils/properties.h>
#include <sched.h>
#include <stdio.h>
#include <stdlib.h>

#include <memory>
#include <string>
#include <vector>

#include "ServerProgram.h"
#include "SyncSamples.h"
#include "VeskDeviceManager.h"
#include "vesk/host/DeviceRoot.h"
#include "vesk/rpc_binder_host.h"

namespace {

using ::aidl::vesk::hardware::veskdevicemanager::IVeskDeviceManager;
using ::aidl::vesk::tests::IPing;
using HidlDeviceManager = vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager;
using vesk::hardware::veskdevicemanager::implementation::HIDL_FETCH_IVeskDeviceManager;

// A session's root object as `Interface`; aborts the run when the server cannot be reached.
template <typename Interface>
std::shared_ptr<Interface> connect(const std::string& socket) {
    VeskRpcSession* session = nullptr;
    if (vesk_rpc_session_connect(socket.c_str(), 0, 10000, &session) != VESK_RPC_OK) {
        fprintf(stderr, "%s: %s\n", socket.c_str(), vesk_rpc_last_error());
        abort();
    }
    // The session lives as long as the program: its servers are stopped at exit.
    return Interface::fromBinder(ndk::SpAIBinder(vesk_rpc_session_root(session)));
}

// The service process on a device root of its own, ping_server beside it, and the HIDL facade in
// this process on another root; tracing off in both roots; all on the CPU this program started
// on (the servers inherit it). Removed at exit.
struct Peers {
    Peers() {
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(sched_getcpu(), &one);
        if (sched_setaffinity(0, sizeof(one), &one) != 0) perror("sched_setaffinity");
        char pattern[] = "/tmp/vesk-binder-bench-XXXXXX";
        if (mkdtemp(pattern) == nullptr) {
            perror("mkdtemp");
            abort();
        }
        folder = pattern;
        vesk::host::setDeviceRoot(folder + "/service");
        property_set("persist.vesk.device.log.level", "E");
        service = std::make_unique<ServerProgram>(VESK_AIDL_SERVICE_PROGRAM,
                                                  std::vector<std::string>{});
        ping = std::make_unique<ServerProgram>(VESK_PING_SERVER_PROGRAM,
                                               std::vector<std::string>{folder + "/ping.socket"});
        if (service->firstLine().rfind("listening on ", 0) != 0 ||
            ping->firstLine().rfind("listening on ", 0) != 0) {
            fprintf(stderr, "a server did not start\n");
            abort();
        }
        aidl = connect<IVeskDeviceManager>(folder + "/service" + vesk::host::kServiceSocket);
        floor = connect<IPing>(folder + "/ping.socket");
        vesk::host::setDeviceRoot(folder + "/in-process");
        property_set("persist.vesk.device.log.level", "E");
        hidl = HIDL_FETCH_IVeskDeviceManager("default");
    }
    ~Peers() {
        service.reset();
        ping.reset();
        if (system(("rm -rf '" + folder + "'").c_str()) != 0)
            fprintf(stderr, "kept %s\n", folder.c_str());
    }

    std::string folder;
    std::unique_ptr<ServerProgram> service;
    std::unique_ptr<ServerProgram> ping;
    std::shared_ptr<IVeskDeviceManager> aidl;
    std::shared_ptr<IPing> floor;
    ::android::sp<HidlDeviceManager> hidl;
};

Peers& peers() {
    static Peers instance;
    return instance;
}

// The three timed in turns, run by run: the board saves its state on each change, so the LED's
// state alternates and both services wait for the disk alike (SyncSamples.h).
void BM_AidlSetSysLedStateAgainstFloor(benchmark::State& state) {
    Peers& p = peers();
    SyncSamples aidl("aidl");
    SyncSamples floor("floor");
    SyncSamples inProcess("hidl");
    int32_t led = 0;
    for (auto _ : state) {
        led ^= 1;
        benchmark::DoNotOptimize(aidl.time([&] {
            int32_t result = 0;
            return p.aidl->setSysLedState(led, &result).isOk() ? result : -1000;
        }));
        benchmark::DoNotOptimize(floor.time([&] { return p.floor->pingEmpty().isOk(); }));
        benchmark::DoNotOptimize(
                inProcess.time([&] { return int32_t(p.hidl->setSysLedState(led)); }));
    }
    aidl.report(state);
    floor.report(state);
    inProcess.report(state);
}
BENCHMARK(BM_AidlSetSysLedStateAgainstFloor)->Iterations(2000)->Repetitions(1);

// A board call that writes nothing: the same comparison without the disk.
void BM_AidlGetSysLedStateAgainstFloor(benchmark::State& state) {
    Peers& p = peers();
    SyncSamples aidl("aidl");
    SyncSamples floor("floor");
    SyncSamples inProcess("hidl");
    for (auto _ : state) {
        benchmark::DoNotOptimize(aidl.time([&] {
            int32_t result = 0;
            return p.aidl->getSysLedState(&result).isOk() ? result : -1000;
        }));
        benchmark::DoNotOptimize(floor.time([&] { return p.floor->pingEmpty().isOk(); }));
        benchmark::DoNotOptimize(inProcess.time([&] { return int32_t(p.hidl->getSysLedState()); }));
    }
    aidl.report(state);
    floor.report(state);
    inProcess.report(state);
}
BENCHMARK(BM_AidlGetSysLedStateAgainstFloor)->Iterations(5000)->Repetitions(1);

}  // namespace

BENCHMARK_MAIN();
