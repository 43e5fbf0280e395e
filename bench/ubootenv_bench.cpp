// Loading the environment and updating one value with its save: Ubootenv side by side with
// libubootenv doing the same on the same kind of partition (128 KiB, two plain copies of the
// factory environment; libubootenv is given copy A as a single-copy environment).
// scripts/bench.sh puts the two side by side in its table of ratios.
#include <benchmark/benchmark.h>
#include <cutils/properties.h>
#include <libuboot.h>
#include <stddef.h>  // libuboot.h needs size_t first
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>

#include "SyncSamples.h"
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

// Copy A of the partition as a file of its own.
bool copyCopyA(const std::string& from, const std::string& to) {
    FILE* in = fopen(from.c_str(), "rbe");
    if (in == nullptr) return false;
    std::string copy(65536, '\0');
    bool read = fread(copy.data(), 1, copy.size(), in) == copy.size();
    fclose(in);
    FILE* out = fopen(to.c_str(), "wbe");
    if (out == nullptr) return false;
    bool written = read && fwrite(copy.data(), 1, copy.size(), out) == copy.size();
    return fclose(out) == 0 && written;
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

// One value changed and saved, in turns with libubootenv doing the same on an image of its own
// (copy A of the partition, as a single-copy environment): both wait for the disk, so both are
// timed run by run (SyncSamples.h). Ubootenv writes and syncs both copies, libubootenv one.
void BM_UpdateValueAgainstLibubootenv(benchmark::State& state) {
    const std::string libubootenvImage = benchRoot() + "/data/libubootenv.env";
    if (!copyCopyA(envPath(), libubootenvImage)) {
        state.SkipWithError("no image for libubootenv");
        return;
    }
    uboot_ctx* ctx = openLibuboot(libubootenvImage);
    if (ctx == nullptr || libuboot_open(ctx) < 0) {
        state.SkipWithError("libubootenv load failed");
        return;
    }
    Ubootenv env;
    SyncSamples veskdm("veskdm");
    SyncSamples libubootenv("libubootenv");
    bool flip = false;
    for (auto _ : state) {
        flip = !flip;
        const char* mode = flip ? "720p60hz" : "1080p60hz";
        if (veskdm.time([&] { return env.updateValue("ubootenv.var.hdmimode", mode); }) != 0 ||
            libubootenv.time([&] {
                return libuboot_set_env(ctx, "hdmimode", mode) < 0 ? -1 : libuboot_env_store(ctx);
            }) < 0) {
            state.SkipWithError("update failed");
            break;
        }
    }
    veskdm.report(state);
    libubootenv.report(state);
    libuboot_close(ctx);
    libuboot_exit(ctx);
}
BENCHMARK(BM_UpdateValueAgainstLibubootenv)->Iterations(200)->Repetitions(1);

}  // namespace

BENCHMARK_MAIN();
