// A forwarded call with tracing off against its parts (the board call and one property read),
// and the property read alone.
#include <benchmark/benchmark.h>
#include <cutils/properties.h>
#include <stdlib.h>
#include <vesksdk.h>

#include <string>

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
