#!/usr/bin/env python3
"""Tables of one run of the benchmark programs, from their JSON reports (--benchmark_out).

First the work that waits for the disk, timed run by run (bench/SyncSamples.h): CPU and wall
time, median and 99th percentile. Then the ratios against the anchors measured in the same run:
libubootenv for the environment store, libxcvt for the CVT calculator, for the output-mode
flows the sum of their parts, and for a call of the stable-AIDL service over the platform's
binder an empty call of a minimal interface (its in-process work taken off) and the same call in
process.

    bench_table.py REPORT.json...
"""
import json
import statistics
import sys


def load_runs(paths):
    """Benchmark name -> list of its runs (one per repetition), aggregates left out."""
    runs = {}
    for path in paths:
        with open(path, encoding="utf-8") as report:
            for entry in json.load(report).get("benchmarks", []):
                if entry.get("run_type") == "aggregate" or "error_occurred" in entry:
                    continue
                name = entry.get("run_name", entry["name"]).split("/")[0]
                runs.setdefault(name, []).append(entry)
    return runs


class Figures:
    def __init__(self, runs):
        self.runs = runs

    def has(self, name, key=None):
        return name in self.runs and (key is None or key in self.runs[name][0])

    def median(self, name, key):
        """The median over the repetitions of a benchmark's field, in microseconds for times."""
        values = [run[key] for run in self.runs[name]]
        value = statistics.median(values)
        if key in ("cpu_time", "real_time"):
            value *= {"ns": 1e-3, "us": 1.0, "ms": 1e3, "s": 1e6}[self.runs[name][0]["time_unit"]]
        return value

    def counter(self, name, key):
        return self.median(name, key)

    def sampled(self):
        """(benchmark, piece) for every piece timed run by run."""
        pieces = []
        for name, runs in self.runs.items():
            for key in runs[0]:
                if key.endswith("_cpu99"):
                    pieces.append((name, key[: -len("_cpu99")]))
        return pieces


def print_table(title, header, rows):
    widths = [max(len(str(cell)) for cell in column) for column in zip(header, *rows)]
    print(title)
    for i, row in enumerate([header] + rows):
        cells = [str(cell).ljust(width) if j == 0 else str(cell).rjust(width)
                 for j, (cell, width) in enumerate(zip(row, widths))]
        print("| " + " | ".join(cells) + " |")
        if i == 0:
            print("|" + "|".join("-" * (width + 2) for width in widths) + "|")
    print()


def us(value):
    return f"{value:.1f} us" if value >= 10 else f"{value:.2f} us"


def ns(value):
    return f"{value * 1e3:.1f} ns"


def sync_rows(figures):
    rows = []
    for name, piece in figures.sampled():
        c = lambda key: figures.counter(name, f"{piece}_{key}")  # noqa: E731
        rows.append([f"{name} {piece}", us(c("cpu")), us(c("cpu99")), us(c("real")),
                     us(c("real99"))])
    return rows


def ratio_rows(figures):
    rows = []

    def add(work, ours, anchor, anchor_name, target, fmt=us):
        rows.append([work, fmt(ours), f"{anchor_name} {fmt(anchor)}", f"{ours / anchor:.2f}x",
                     target])

    if figures.has("BM_UbootenvLoad") and figures.has("BM_LibubootenvLoad"):
        add("environment load (two 64 KiB copies + CRC), CPU",
            figures.median("BM_UbootenvLoad", "cpu_time"),
            figures.median("BM_LibubootenvLoad", "cpu_time"), "libubootenv load", "<= 0.90x")
    pair = "BM_UpdateValueAgainstLibubootenv"
    if figures.has(pair, "veskdm_cpu"):
        add("update + save (two copies, two syncs), CPU median",
            figures.counter(pair, "veskdm_cpu"), figures.counter(pair, "libubootenv_cpu"),
            "libubootenv set + store (one copy)", "about 2x")
    cvt = figures.median("BM_PartCalculateCvt", "cpu_time") if figures.has(
        "BM_PartCalculateCvt") else 0.0
    # A flow against its parts' sum per round (their median), the CVT calculation added.
    for flow, work, anchor in (
            ("BM_FlowWithOneSaveAndItsParts", "output-mode flow, one save, CPU median",
             "load + CVT + save"),
            ("BM_FactoryFlowAndItsParts", "factory flow, three saves, CPU median",
             "load + CVT + 3 saves")):
        if figures.has(flow, "parts_cpu"):
            add(work, figures.counter(flow, "flow_cpu"), figures.counter(flow, "parts_cpu") + cvt,
                anchor, "<= 1.20x")
    if figures.has("BM_CalculateCvtReducedBlanking") and figures.has(
            "BM_LibxcvtGenModeInfoReduced"):
        add("CVT reduced blanking, CPU", figures.median("BM_CalculateCvtReducedBlanking",
                                                        "cpu_time"),
            figures.median("BM_LibxcvtGenModeInfoReduced", "cpu_time"), "libxcvt", "-", ns)
    # A call of the stable-AIDL service from another process: what this project adds to a call
    # over binder (the call less the same call in-process) against the floor, an empty IPing call.
    get = "BM_AidlGetSysLedStateAgainstFloor"
    if figures.has(get, "aidl_real"):
        add("AIDL getSysLedState over RPC binder less the in-process call, wall median",
            figures.counter(get, "aidl_real") - figures.counter(get, "hidl_real"),
            figures.counter(get, "floor_real"), "IPing empty call", "<= 1.20x")
    set_led = "BM_AidlSetSysLedStateAgainstFloor"
    if figures.has(set_led, "aidl_real"):
        add("AIDL setSysLedState over RPC binder (a board save each), wall median",
            figures.counter(set_led, "aidl_real"), figures.counter(set_led, "hidl_real"),
            "in-process HIDL call", "about 1.0x")
    if figures.has("BM_PropertyGetOfASetProperty") and figures.has(
            "BM_PropertyGetOfAnUnsetProperty"):
        rows.append(["property_get of a set / unset property, CPU",
                     ns(figures.median("BM_PropertyGetOfASetProperty", "cpu_time")) + " / " +
                     ns(figures.median("BM_PropertyGetOfAnUnsetProperty", "cpu_time")), "-", "-",
                     "-"])
    return rows


def main(paths):
    if not paths:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    figures = Figures(load_runs(paths))
    print_table("Work that waits for the disk, per run (CPU and wall time, median and p99):",
                ["benchmark piece", "CPU median", "CPU p99", "wall median", "wall p99"],
                sync_rows(figures))
    print_table("Ratios against the anchors measured in this run (medians):",
                ["work", "veskdm", "anchor", "ratio", "target"], ratio_rows(figures))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
