// A forwarded call with tracing off against its parts (the board call and one property read),
// the service's own cost (a call without a board call, through the facade and on the core), and
// the property read alone.
#include <benchmark/benchmark.h>
#include <cutils/properties.h>
#include <stdlib.h>
#include <vesksdk.h>

#include <string>

#include "DeviceManagerCore.h"
#include "VeskDeviceManager.h"
#include "vesk/host/DeviceRoot.h"

namespace {

using vesk::hardware::veskdevicemanager::implementation::HIDL_FETCH_IVeskDeviceManager;

void useTemporaryRoot() {
    static bool done = false;
    if (done) return;
    done = true;
    char pattern[] = "/tmp/vesk-bench-XXXXXX";
    vesk::host::setDeviceRoot(mkdtemp(pattern));
    property_set("persist.vesk.device.log.level", "E");
}

void BM_ForwardedSetSysLedState(benchmark::State& state) {
    useTemporaryRoot();
    ::android::sp<vesk::hardware::veskdevicemanager::V1_0::IVeskDeviceManager> service =
            HIDL_FETCH_IVeskDeviceManager("default");
    int32_t value = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(int32_t(service->setSysLedState(value++ & 3)));
    }
}
BENCHMARK(BM_ForwardedSetSysLedState);

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

void BM_BoardCallPlusPropertyGet(benchmark::State& state) {
    useTemporaryRoot();
    int value = 0;
    char level[PROPERTY_VALUE_MAX];
    for (auto _ : state) {
        property_get("persist.vesk.device.log.level", level, "E");
        benchmark::DoNotOptimize(level[0]);
        benchmark::DoNotOptimize(bi_sysled_set_state(value++ & 3));
    }
}
BENCHMARK(BM_BoardCallPlusPropertyGet);

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
