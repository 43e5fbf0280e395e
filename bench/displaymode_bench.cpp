// calculateResolutionParameters on model 8470 end to end (the mode tool recorded, the
// environment on a file in a temporary root) against its parts: one environment load, the saves
// the flow makes (each an updateValue of a changed value) and one CVT calculation. The flow and
// its parts are timed in turns within each round (SyncSamples.h), so that the disk's moods fall
// on both alike; scripts/bench.sh adds the parts up and prints the ratios.
#include <benchmark/benchmark.h>
#include <cutils/properties.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "SyncSamples.h"
#include "Ubootenv.h"
#include "VeskDeviceManager.h"
#include "VideoTimingCaculator.h"
#include "vesk/host/DeviceRoot.h"
#include "vesk/host/LogSink.h"
#include "vesk/host/Seams.h"

namespace {

using vesk::hardware::veskdevicemanager::implementation::HIDL_FETCH_IVeskDeviceManager;
using vesk::hardware::veskdevicemanager::implementation::VideoTimingCaculator;
using vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager;
using vesk::hardware::veskdevicemanager::V1_0::VeskEffeResolution;

// What the parts store: custom modes the flows never make (1920 x 1200 and 1280 x 800), so that
// every save of a part and of a flow changes the stored value.
constexpr char kPartModes[2][80] = {
        "74038,59950,154000,2080,160,48,32,80,1920,1235,35,3,6,26,1200,1,0,1,8,5,1,1",
        "49306,59910,71000,1440,160,48,32,80,1280,823,23,3,6,14,800,1,0,1,8,5,1,1"};
constexpr char kCustomModeVar[] = "ubootenv.var.custom_mode";

// A fresh device root of its own (factory environment), removed at exit. The service's lines
// and the environment store's are off, as on a board at its default levels for the service;
// the level properties are still read before every line that would be written.
struct BenchRoot;
const BenchRoot& benchRoot();

struct BenchRoot {
    BenchRoot() {
        char pattern[] = "/tmp/vesk-bench-XXXXXX";
        path = mkdtemp(pattern);
        vesk::host::setDeviceRoot(path);
        property_set("persist.vesk.device.log.level", "E");
        property_set("persist.vendor.sc.log.level", "7");
        envPath = vesk::host::pathBelowRoot(path, vesk::host::kEnvPartition);
        factoryImage = readAll(envPath);
    }
    ~BenchRoot() {
        if (system(("rm -rf '" + path + "'").c_str()) != 0)
            fprintf(stderr, "kept %s\n", path.c_str());
    }
    static std::string readAll(const std::string& file) {
        std::ifstream in(file, std::ios::binary);
        std::stringstream content;
        content << in.rdbuf();
        return content.str();
    }
    // Written over the old bytes and synced: the file keeps its blocks, and no timed save
    // pays for writing back the restored image.
    bool restoreFactoryEnvironment() const {
        int fd = open(envPath.c_str(), O_WRONLY | O_CLOEXEC);
        if (fd < 0) return false;
        bool done = pwrite(fd, factoryImage.data(), factoryImage.size(), 0) ==
                            static_cast<ssize_t>(factoryImage.size()) &&
                    fdatasync(fd) == 0;
        return close(fd) == 0 && done;
    }
    std::string path;
    std::string envPath;
    std::string factoryImage;
};

// Each timed piece starts as the flow does, just after a wait for the disk: whatever ran on the
// processor meanwhile has left its caches to others, and a piece measured straight after another
// one would find them warm. One page is written to a file of its own and synced, not timed.
void settle() {
    static const std::string scratch = vesk::host::pathBelowRoot(benchRoot().path, "/data/settle");
    static const std::string page(4096, 's');
    int fd = open(scratch.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) return;
    if (pwrite(fd, page.data(), page.size(), 0) == static_cast<ssize_t>(page.size())) fdatasync(fd);
    close(fd);
}

const BenchRoot& benchRoot() {
    static const BenchRoot root;
    return root;
}

int gCommands = 0;

void recordCommands() {
    vesk::host::setShellRecorder([](const std::string&) {
        ++gCommands;
        return 0;
    });
}

int32_t apply(IVeskDeviceManager& service, uint32_t width, uint32_t height) {
    int32_t status = 0;
    service.calculateResolutionParameters(width, height, 60,
                                          [&](const VeskEffeResolution& r) { status = r.status; });
    return status;
}

// How many saves one application makes: counted from the environment store's own lines.
int savesOf(const std::function<void()>& flow) {
    property_set("persist.vendor.sc.log.level", "4");
    vesk::host::startLogCapture();
    flow();
    int saves = 0;
    for (const auto& line : vesk::host::capturedLog()) {
        saves += line.message.find("Save ubootenv to") != std::string::npos;
    }
    vesk::host::logToStderr();
    property_set("persist.vendor.sc.log.level", "7");
    return saves;
}

// The load part: one object made and freed, as the flow's control makes and frees its own.
void loadOnce() {
    Ubootenv env;
    benchmark::DoNotOptimize(env.initDone);
}

// Every call changes the stored mode (two sizes in turn; the part in between stores a third);
// the selection is already stored. Parts: a load, and a save on a freshly loaded object (its
// load not timed), as the flow's one save is, and their sum per round.
void BM_FlowWithOneSaveAndItsParts(benchmark::State& state) {
    const BenchRoot& root = benchRoot();
    recordCommands();
    auto service = HIDL_FETCH_IVeskDeviceManager("default");
    if (!root.restoreFactoryEnvironment()) {
        state.SkipWithError("no factory environment");
        return;
    }
    apply(*service, 1280, 720);
    state.counters["saves"] = savesOf([&] { apply(*service, 1920, 1080); });
    SyncSamples flow("flow");
    SyncSamples load("load");
    SyncSamples save("save");
    SyncSamples parts("parts");
    bool fullHd = false;
    for (auto _ : state) {
        fullHd = !fullHd;
        settle();
        if (flow.time([&] { return apply(*service, fullHd ? 1920 : 1280, fullHd ? 1080 : 720); }) !=
            1) {
            state.SkipWithError("not applied");
            break;
        }
        settle();
        load.time(loadOnce);
        auto env = std::make_unique<Ubootenv>();
        settle();
        if (save.time([&] { return env->updateValue(kCustomModeVar, kPartModes[fullHd]); }) != 0) {
            state.SkipWithError("not saved");
            break;
        }
        parts.addSumOfLast({&load, &save});
    }
    for (const SyncSamples* samples : {&flow, &load, &save, &parts}) samples->report(state);
}
BENCHMARK(BM_FlowWithOneSaveAndItsParts)->Iterations(150)->Repetitions(1);

// The first application on a factory environment (restored before each round, not timed): the
// mode, the best-mode flag and hdmimode change. Parts: a load, a save on a freshly loaded object
// and two more saves on the same object, as the flow makes them, and their sum per round.
void BM_FactoryFlowAndItsParts(benchmark::State& state) {
    const BenchRoot& root = benchRoot();
    recordCommands();
    auto service = HIDL_FETCH_IVeskDeviceManager("default");
    if (!root.restoreFactoryEnvironment()) {
        state.SkipWithError("no factory environment");
        return;
    }
    state.counters["saves"] = savesOf([&] { apply(*service, 1920, 1080); });
    SyncSamples flow("flow");
    SyncSamples load("load");
    SyncSamples save("save");
    SyncSamples bestModeSave("bestmode_save");
    SyncSamples hdmiModeSave("hdmimode_save");
    SyncSamples parts("parts");
    bool flip = false;
    for (auto _ : state) {
        flip = !flip;
        // The restore ends in a sync, as settle() does.
        if (!root.restoreFactoryEnvironment() ||
            flow.time([&] { return apply(*service, 1920, 1080); }) != 1) {
            state.SkipWithError("not applied");
            break;
        }
        settle();
        load.time(loadOnce);
        auto env = std::make_unique<Ubootenv>();
        settle();
        // The flow leaves "false" and "999p60hz"; these differ from them. The later saves start
        // after the sync that ends the save before them, as the flow's do.
        if (save.time([&] { return env->updateValue(kCustomModeVar, kPartModes[flip]); }) != 0 ||
            bestModeSave.time(
                    [&] { return env->updateValue("ubootenv.var.is.bestmode", "true"); }) != 0 ||
            hdmiModeSave.time(
                    [&] { return env->updateValue("ubootenv.var.hdmimode", "1080p60hz"); }) != 0) {
            state.SkipWithError("not saved");
            break;
        }
        parts.addSumOfLast({&load, &save, &bestModeSave, &hdmiModeSave});
    }
    for (const SyncSamples* samples : {&flow, &load, &save, &bestModeSave, &hdmiModeSave, &parts})
        samples->report(state);
}
BENCHMARK(BM_FactoryFlowAndItsParts)->Iterations(100)->Repetitions(1);

// For information: the flow with the device root's mode tool stand-in run through the shell.
void BM_FlowWithTheShell(benchmark::State& state) {
    benchRoot();
    vesk::host::setShellRecorder(nullptr);
    auto service = HIDL_FETCH_IVeskDeviceManager("default");
    SyncSamples flow("flow");
    bool fullHd = false;
    for (auto _ : state) {
        fullHd = !fullHd;
        benchmark::DoNotOptimize(flow.time(
                [&] { return apply(*service, fullHd ? 1920 : 1280, fullHd ? 1080 : 720); }));
    }
    flow.report(state);
    recordCommands();
}
BENCHMARK(BM_FlowWithTheShell)->Iterations(100)->Repetitions(1);

// The CVT part, as the flow's verify() asks for it.
void BM_PartCalculateCvt(benchmark::State& state) {
    VideoTimingCaculator calculator;
    for (auto _ : state) {
        calculator.calculateCvt(1920, 1080, 60, 8, 3.0, "cvt_rb", false, false, false);
        benchmark::DoNotOptimize(calculator);
    }
}
BENCHMARK(BM_PartCalculateCvt);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    printf("mode tool runs recorded: %d\n", gCommands);
    return 0;
}
