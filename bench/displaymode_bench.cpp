// calculateResolutionParameters on model 8470 end to end (the mode tool recorded, the
// environment on a file in a temporary root) against the sum of its parts measured alone: one
// environment load, the saves the flow makes (each an updateValue of a changed value), one CVT
// calculation. Saves end in fdatasync, so real time is noisy: run with repetitions (the ratios
// use the medians; random interleaving spreads the disk's moods over all of them), e.g.
//   displaymode_bench --benchmark_repetitions=10 --benchmark_enable_random_interleaving=true
//                     --benchmark_report_aggregates_only=true --benchmark_min_time=0.3
#include <benchmark/benchmark.h>
#include <cutils/properties.h>
#include <stdio.h>
#include <stdlib.h>

#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>

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

constexpr char kFullHd[] =
        "66587,59934,138500,2080,160,48,32,80,1920,1111,31,3,5,23,1080,1,0,1,16,9,1,1";
constexpr char kHd[] = "44444,59979,64000,1440,160,48,32,80,1280,741,21,3,5,13,720,1,0,1,16,9,1,1";

// A fresh device root of its own (factory environment), removed at exit. The service's lines
// and the environment store's are off, as on a board at its default levels for the service;
// the level properties are still read before every line that would be written.
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
    void restoreFactoryEnvironment() const {
        std::ofstream out(envPath, std::ios::binary | std::ios::trunc);
        out << factoryImage;
    }
    std::string path;
    std::string envPath;
    std::string factoryImage;
};

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

// Every call changes the stored mode (two sizes in turn); the selection is already stored.
void BM_FlowChangingTheMode(benchmark::State& state) {
    const BenchRoot& root = benchRoot();
    recordCommands();
    auto service = HIDL_FETCH_IVeskDeviceManager("default");
    root.restoreFactoryEnvironment();
    apply(*service, 1280, 720);
    state.counters["saves"] = savesOf([&] { apply(*service, 1920, 1080); });
    bool fullHd = false;
    for (auto _ : state) {
        fullHd = !fullHd;
        if (apply(*service, fullHd ? 1920 : 1280, fullHd ? 1080 : 720) != 1) {
            state.SkipWithError("not applied");
            break;
        }
    }
}
BENCHMARK(BM_FlowChangingTheMode);

// The first application on a factory environment: mode, best-mode flag and hdmimode change.
void BM_FlowOnAFactoryEnvironment(benchmark::State& state) {
    const BenchRoot& root = benchRoot();
    recordCommands();
    auto service = HIDL_FETCH_IVeskDeviceManager("default");
    root.restoreFactoryEnvironment();
    state.counters["saves"] = savesOf([&] { apply(*service, 1920, 1080); });
    for (auto _ : state) {
        state.PauseTiming();
        root.restoreFactoryEnvironment();
        state.ResumeTiming();
        if (apply(*service, 1920, 1080) != 1) {
            state.SkipWithError("not applied");
            break;
        }
    }
}
BENCHMARK(BM_FlowOnAFactoryEnvironment);

// For information: the same with the device root's mode tool stand-in run through the shell.
void BM_FlowChangingTheModeWithTheShell(benchmark::State& state) {
    benchRoot();
    vesk::host::setShellRecorder(nullptr);
    auto service = HIDL_FETCH_IVeskDeviceManager("default");
    bool fullHd = false;
    for (auto _ : state) {
        fullHd = !fullHd;
        benchmark::DoNotOptimize(apply(*service, fullHd ? 1920 : 1280, fullHd ? 1080 : 720));
    }
    recordCommands();
}
BENCHMARK(BM_FlowChangingTheModeWithTheShell);

void BM_PartEnvironmentLoad(benchmark::State& state) {
    benchRoot().restoreFactoryEnvironment();
    for (auto _ : state) {
        Ubootenv env;
        benchmark::DoNotOptimize(env.initDone);
    }
}
BENCHMARK(BM_PartEnvironmentLoad);

void BM_PartEnvironmentSave(benchmark::State& state) {
    benchRoot().restoreFactoryEnvironment();
    Ubootenv env;
    bool fullHd = false;
    for (auto _ : state) {
        fullHd = !fullHd;
        if (env.updateValue("ubootenv.var.custom_mode", fullHd ? kFullHd : kHd) != 0) {
            state.SkipWithError("not saved");
            break;
        }
    }
}
BENCHMARK(BM_PartEnvironmentSave);

// The same save on a freshly loaded object, as the flow makes it: the first write into a new
// image buffer costs more than rewriting a warm one. Loading and freeing are not timed.
void BM_PartEnvironmentSaveAfterALoad(benchmark::State& state) {
    benchRoot().restoreFactoryEnvironment();
    bool fullHd = false;
    for (auto _ : state) {
        state.PauseTiming();
        fullHd = !fullHd;
        auto env = std::make_unique<Ubootenv>();
        state.ResumeTiming();
        if (env->updateValue("ubootenv.var.custom_mode", fullHd ? kFullHd : kHd) != 0) {
            state.SkipWithError("not saved");
            break;
        }
        state.PauseTiming();
        env.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_PartEnvironmentSaveAfterALoad);

void BM_PartCalculateCvt(benchmark::State& state) {
    VideoTimingCaculator calculator;
    for (auto _ : state) {
        calculator.calculateCvt(1920, 1080, 60, 8, 3.0, "cvt_rb", false, false, false);
        benchmark::DoNotOptimize(calculator);
    }
}
BENCHMARK(BM_PartCalculateCvt);

// The console table, then each flow against the sum of its parts.
class RatioReporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.aggregate_name != "median" && run.run_type == Run::RT_Aggregate) continue;
            Figures& figures = mFigures[run.run_name.function_name];
            figures.cpu = run.GetAdjustedCPUTime();
            figures.real = run.GetAdjustedRealTime();
            auto saves = run.counters.find("saves");
            if (saves != run.counters.end()) figures.saves = saves->second.value;
        }
    }
    void Finalize() override {
        ConsoleReporter::Finalize();
        for (const char* flow : {"BM_FlowChangingTheMode", "BM_FlowOnAFactoryEnvironment"}) {
            printRatio(flow, "BM_PartEnvironmentSaveAfterALoad");
            printRatio(flow, "BM_PartEnvironmentSave");
        }
    }

  private:
    struct Figures {
        double cpu = 0;
        double real = 0;
        double saves = 0;
    };
    bool has(const char* name) const { return mFigures.count(name) != 0; }
    // Flow time over load + saves x save + CVT, for CPU and real time.
    void printRatio(const std::string& flow, const char* savePart) {
        if (!has(flow.c_str()) || !has("BM_PartEnvironmentLoad") || !has(savePart) ||
            !has("BM_PartCalculateCvt"))
            return;
        const Figures& f = mFigures[flow];
        const Figures& load = mFigures["BM_PartEnvironmentLoad"];
        const Figures& save = mFigures[savePart];
        const Figures& cvt = mFigures["BM_PartCalculateCvt"];
        double cpuParts = load.cpu + f.saves * save.cpu + cvt.cpu;
        double realParts = load.real + f.saves * save.real + cvt.real;
        printf("%s / (load + %.0f x %s + CVT): CPU %.0f / %.0f ns = %.3f, real %.0f / %.0f ns = "
               "%.3f\n",
               flow.c_str(), f.saves, savePart + 3, f.cpu, cpuParts, f.cpu / cpuParts, f.real,
               realParts, f.real / realParts);
    }
    std::map<std::string, Figures> mFigures;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    printf("mode tool runs recorded: %d\n", gCommands);
    return 0;
}
