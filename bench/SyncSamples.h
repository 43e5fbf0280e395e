/*
 * Per-run CPU and wall times of work that waits for the disk (fdatasync, fsync). Such work varies
 * two-fold from run to run on a shared machine, so a mean says little: each run is timed on its
 * own and the median and the 99th percentile are reported. Pieces of work that are compared are
 * timed in turns within one benchmark loop, so that the disk's moods fall on all of them alike.
 *
 * Counters, in microseconds: NAME_cpu and NAME_cpu99 (CPU time of this thread, median and 99th
 * percentile), NAME_real and NAME_real99 (wall time). The loop's own Time and CPU columns are
 * those of a whole round.
 */
#pragma once

#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

class SyncSamples {
  public:
    explicit SyncSamples(std::string name) : mName(std::move(name)) {}

    // Runs `work` once, timed; gives back what it returns.
    template <typename Work>
    auto time(Work&& work) {
        const Clocks start = now();
        struct Stop {
            SyncSamples* samples;
            Clocks start;
            ~Stop() { samples->add(start, now()); }
        } stop{this, start};
        return work();
    }

    // One run made of the last run of each of `pieces`: timed in turns within a round, the parts
    // of a flow are compared with it as their sum per round, whose median is what the flow's
    // is compared with (with times skewed to the right, more than the sum of the medians).
    void addSumOfLast(std::initializer_list<const SyncSamples*> pieces) {
        double cpu = 0;
        double real = 0;
        for (const SyncSamples* piece : pieces) {
            if (piece->mCpu.empty()) return;
            cpu += piece->mCpu.back();
            real += piece->mReal.back();
        }
        mCpu.push_back(cpu);
        mReal.push_back(real);
    }

    void report(benchmark::State& state) const {
        state.counters[mName + "_cpu"] = percentile(mCpu, 50);
        state.counters[mName + "_cpu99"] = percentile(mCpu, 99);
        state.counters[mName + "_real"] = percentile(mReal, 50);
        state.counters[mName + "_real99"] = percentile(mReal, 99);
    }

  private:
    struct Clocks {
        timespec cpu;
        timespec real;
    };

    static Clocks now() {
        Clocks clocks{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &clocks.cpu);
        clock_gettime(CLOCK_MONOTONIC, &clocks.real);
        return clocks;
    }

    static double microseconds(const timespec& from, const timespec& to) {
        return static_cast<double>(to.tv_sec - from.tv_sec) * 1e6 +
               static_cast<double>(to.tv_nsec - from.tv_nsec) / 1e3;
    }

    void add(const Clocks& start, const Clocks& stop) {
        mCpu.push_back(microseconds(start.cpu, stop.cpu));
        mReal.push_back(microseconds(start.real, stop.real));
    }

    // Nearest rank; the median of an even count is the mean of the middle two.
    static double percentile(std::vector<double> values, int percent) {
        if (values.empty()) return 0;
        std::sort(values.begin(), values.end());
        const size_t n = values.size();
        if (percent == 50)
            return n % 2 != 0 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
        size_t rank = static_cast<size_t>(std::ceil(percent / 100.0 * static_cast<double>(n)));
        return values[std::max<size_t>(rank, 1) - 1];
    }

    std::string mName;
    std::vector<double> mCpu;
    std::vector<double> mReal;
};
