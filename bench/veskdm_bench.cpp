// The cost of one `veskdm shell` line before and after the call itself: splitting the line and
// reading its arguments, and writing a struct result as JSON.
#include <benchmark/benchmark.h>

#include <string>

#include "HalJson.h"
#include "MethodTable.h"
#include "ShellTokenizer.h"

namespace {

void bindLine(benchmark::State& state, const std::string& line) {
    for (auto _ : state) {
        veskdm::BoundCall call = veskdm::bindCall(veskdm::splitShellLine(line));
        benchmark::DoNotOptimize(call.method);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * line.size()));
}

void BM_BindScalarLine(benchmark::State& state) {
    bindLine(state, "setColorLedState 255 128 0");
}
BENCHMARK(BM_BindScalarLine);

void BM_BindStructLine(benchmark::State& state) {
    bindLine(state,
             "setVeskLogConfigure {\"level\": \"D\", \"base\": \"/data/log\", \"mode\": \"ring\", "
             "\"total_size\": \"64M\", \"once_size\": \"4M\"}");
}
BENCHMARK(BM_BindStructLine);

// A 4 KiB block write, the size of one data-block page.
void BM_BindBlockWriteLine(benchmark::State& state) {
    std::string bytes = "[";
    for (int i = 0; i < 4096; ++i) bytes += (i > 0 ? ", " : "") + std::to_string(i & 0xFF);
    bindLine(state, "writeBlockDataDefined " + bytes + "] 0");
}
BENCHMARK(BM_BindBlockWriteLine);

void BM_CpuStatusToJsonText(benchmark::State& state) {
    vesk::hardware::veskdevicemanager::V1_0::CpuStatus status{};
    status.usr = 12.15f;
    status.sys = 3.3f;
    status.idle = 80.0f;
    status.iowait = 1.0f / 3.0f;
    status.temperature = 47;
    for (auto _ : state) {
        benchmark::DoNotOptimize(veskdm::dumpJson(veskdm::toJson(status)));
    }
}
BENCHMARK(BM_CpuStatusToJsonText);

}  // namespace

BENCHMARK_MAIN();
