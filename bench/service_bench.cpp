// A forwarded call with tracing off against its parts (the board call and one property read),
// the service's own cost (a call without a board call, through the facade and on the core), and
// the property read alone, of a set and of an unset property.
#include <benchmark/benchmark.h>
#include <cutils/properties.h>
#include <stdio.h>
#include <stdlib.h>
#include <vesksdk.h>

#include <string>

#include "DeviceManagerCore.h"
#include "SyncSamples.h"
#include "VeskDeviceManager.h"
#include "vesk/host/DeviceRoot.h"

namespace {

using vesk::hardware::veskdevicemanager::implementation::HIDL_FETCH_IVeskDeviceManager;

// A device root of its own, removed at exit.
void useTemporaryRoot() {
    struct TemporaryRoot {
        TemporaryRoot() {
            char pattern[] = "/tmp/vesk-bench-XXXXXX";
            path = mkdtemp(pattern);
            vesk::host::setDeviceRoot(path);
            property_set("persist.vesk.device.log.level", "E");
        }
        ~TemporaryRoot() {
            if (system(("rm -rf '" + path + "'").c_str()) != 0)
                fprintf(stderr, "kept %s\n", path.c_str());
        }
        std::string path;
    };
    static const TemporaryRoot root;
}

// The board saves its state on every change, so both wait for the disk: timed run by run and in
// turns (SyncSamples.h).
void BM_ForwardedCallAndItsParts(benchmark::State& state) {
    useTemporaryRoot();
    ::android::sp<vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager> service =
            HIDL_FETCH_IVeskDeviceManager("default");
    SyncSamples call("call");
    SyncSamples parts("parts");
    char level[PROPERTY_VALUE_MAX];
    // Each turn changes the LED's state (0 and 1 are both valid), so each one saves.
    for (auto _ : state) {
        benchmark::DoNotOptimize(call.time([&] { return int32_t(service->setSysLedState(0)); }));
        benchmark::DoNotOptimize(parts.time([&] {
            property_get("persist.vesk.device.log.level", level, "E");
            return bi_sysled_set_state(1);
        }));
    }
    call.report(state);
    parts.report(state);
}
BENCHMARK(BM_ForwardedCallAndItsParts)->Iterations(200)->Repetitions(1);

// A board call that only reads: the board's state file is not written.
void BM_ForwardedGetSysLedState(benchmark::State& state) {
    useTemporaryRoot();
    ::android::sp<vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager> service =
            HIDL_FETCH_IVeskDeviceManager("default");
    for (auto _ : state) {
        benchmark::DoNotOptimize(int32_t(service->getSysLedState()));
    }
}
BENCHMARK(BM_ForwardedGetSysLedState);

// A fan stub calls no board function: the service's own cost, its trace's property read
// included, against BM_PropertyGetOfASetProperty.
void BM_StubGetFanSpeedLevel(benchmark::State& state) {
    useTemporaryRoot();
    ::android::sp<vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager> service =
            HIDL_FETCH_IVeskDeviceManager("default");
    for (auto _ : state) {
        benchmark::DoNotOptimize(int32_t(service->getFanSpeedLevel()));
    }
}
BENCHMARK(BM_StubGetFanSpeedLevel);

// The same stub on the core itself: what the HIDL facade adds is the difference.
void BM_CoreStubGetFanSpeedLevel(benchmark::State& state) {
    useTemporaryRoot();
    vesk::hardware::veskdevicemanager::core::DeviceManagerCore core;
    for (auto _ : state) {
        benchmark::DoNotOptimize(core.getFanSpeedLevel());
    }
}
BENCHMARK(BM_CoreStubGetFanSpeedLevel);

// A result through the callback without a board call: the version text.
void BM_CallbackGetVndkVersion(benchmark::State& state) {
    useTemporaryRoot();
    ::android::sp<vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager> service =
            HIDL_FETCH_IVeskDeviceManager("default");
    size_t size = 0;
    for (auto _ : state) {
        service->getVndkVersion(
                [&](const ::android::hardware::hidl_string& version) { size += version.size(); });
    }
    benchmark::DoNotOptimize(size);
}
BENCHMARK(BM_CallbackGetVndkVersion);

void BM_PropertyGetOfASetProperty(benchmark::State& state) {
    useTemporaryRoot();
    char value[PROPERTY_VALUE_MAX];
    for (auto _ : state) {
        benchmark::DoNotOptimize(property_get("persist.vesk.device.log.level", value, "E"));
    }
}
BENCHMARK(BM_PropertyGetOfASetProperty);

void BM_PropertyGetOfAnUnsetProperty(benchmark::State& state) {
    useTemporaryRoot();
    char value[PROPERTY_VALUE_MAX];
    for (auto _ : state) {
        benchmark::DoNotOptimize(property_get("persist.vesk.unset.property", value, "E"));
    }
}
BENCHMARK(BM_PropertyGetOfAnUnsetProperty);

}  // namespace

BENCHMARK_MAIN();
