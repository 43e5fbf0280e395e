// Loading the environment and updating one value with its save: Ubootenv side by side with
// libubootenv doing the same on the same kind of partition (128 KiB, two plain copies of the
// factory environment; libubootenv is given copy A as a single-copy environment).
#include <benchmark/benchmark.h>
#include <cutils/properties.h>
#include <libuboot.h>
#include <stddef.h>  // libuboot.h needs size_t first
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>

#include "Ubootenv.h"
#include "vesk/host/DeviceRoot.h"

namespace {

// A fresh device root of its own, removed at exit.
struct BenchRoot {
    BenchRoot() {
        char pattern[] = "/tmp/vesk-bench-XXXXXX";
        path = mkdtemp(pattern);
        vesk::host::setDeviceRoot(path);
        // No line is written (libubootenv writes none either); the level property is still
        // read before each line that would be.
        property_set("persist.vendor.sc.log.level", "7");
    }
    ~BenchRoot() {
        if (system(("rm -rf '" + path + "'").c_str()) != 0)
            fprintf(stderr, "kept %s\n", path.c_str());
    }
    std::string path;
};

const std::string& benchRoot() {
    static const BenchRoot root;
    return root.path;
}

std::string envPath() {
    return vesk::host::pathBelowRoot(benchRoot(), vesk::host::kEnvPartition);
}

// libubootenv configured as fw_printenv is, with one line per environment: copy A alone.
uboot_ctx* openLibuboot(const std::string& path) {
    std::string config = benchRoot() + "/data/libubootenv.config";
    FILE* file = fopen(config.c_str(), "we");
    if (file == nullptr) return nullptr;
    fprintf(file, "%s 0x0 0x10000\n", path.c_str());
    fclose(file);
    uboot_ctx* ctx = nullptr;
    if (libuboot_initialize(&ctx, nullptr) < 0) return nullptr;
    if (libuboot_read_config(ctx, config.c_str()) < 0) {
        libuboot_exit(ctx);
        return nullptr;
    }
    return ctx;
}

void BM_UbootenvLoad(benchmark::State& state) {
    benchRoot();
    for (auto _ : state) {
        Ubootenv env;
        if (!env.initDone) state.SkipWithError("load failed");
        benchmark::DoNotOptimize(env.attributes.next);
    }
}
BENCHMARK(BM_UbootenvLoad);

// Only the read and parse of each load is measured (the configuration is made once): less
// than the constructor above does, which also finds the device.
void BM_LibubootenvLoad(benchmark::State& state) {
    uboot_ctx* ctx = openLibuboot(envPath());
    if (ctx == nullptr) {
        state.SkipWithError("configuration failed");
        return;
    }
    for (auto _ : state) {
        if (libuboot_open(ctx) < 0) state.SkipWithError("load failed");
        benchmark::DoNotOptimize(ctx);
        libuboot_close(ctx);
    }
    libuboot_exit(ctx);
}
BENCHMARK(BM_LibubootenvLoad);

void BM_UbootenvUpdateValue(benchmark::State& state) {
    benchRoot();
    Ubootenv env;
    bool flip = false;
    for (auto _ : state) {
        flip = !flip;
        if (env.updateValue("ubootenv.var.hdmimode", flip ? "720p60hz" : "1080p60hz") != 0) {
            state.SkipWithError("update failed");
        }
    }
}
BENCHMARK(BM_UbootenvUpdateValue);

void BM_LibubootenvSetAndStore(benchmark::State& state) {
    uboot_ctx* ctx = openLibuboot(envPath());
    if (ctx == nullptr || libuboot_open(ctx) < 0) {
        state.SkipWithError("load failed");
        return;
    }
    bool flip = false;
    for (auto _ : state) {
        flip = !flip;
        if (libuboot_set_env(ctx, "hdmimode", flip ? "720p60hz" : "1080p60hz") < 0 ||
            libuboot_env_store(ctx) < 0) {
            state.SkipWithError("store failed");
        }
    }
    libuboot_close(ctx);
    libuboot_exit(ctx);
}
BENCHMARK(BM_LibubootenvSetAndStore);

}  // namespace

BENCHMARK_MAIN();
