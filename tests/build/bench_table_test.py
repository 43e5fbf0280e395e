#!/usr/bin/env python3
"""The benchmark tables add the parts and divide as they say, from reports written the way Google
Benchmark writes them (JSON with repetitions, aggregates and counters); the figures are made up,
the expected ratios worked out by hand."""
import io
import json
import sys
import tempfile
import unittest
from contextlib import redirect_stdout
from pathlib import Path

REPO = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(REPO / "scripts"))
import bench_table  # noqa: E402


def run(name, cpu_ns, real_ns=None, repetition=0, **counters):
    entry = {"name": name, "run_name": name, "run_type": "iteration",
             "repetition_index": repetition, "iterations": 1000, "real_time": real_ns or cpu_ns,
             "cpu_time": cpu_ns, "time_unit": "ns"}
    entry.update(counters)
    return entry


def aggregate(name, cpu_ns):
    entry = run(name, cpu_ns)
    entry.update({"name": name + "_median", "run_type": "aggregate", "aggregate_name": "median"})
    return entry


def samples(piece, cpu, cpu99, real, real99):
    return {f"{piece}_cpu": cpu, f"{piece}_cpu99": cpu99, f"{piece}_real": real,
            f"{piece}_real99": real99}


class BenchTableTest(unittest.TestCase):
    def setUp(self):
        self.scratch = tempfile.TemporaryDirectory()
        self.addCleanup(self.scratch.cleanup)

    def report(self, name, benchmarks):
        path = Path(self.scratch.name) / f"{name}.json"
        path.write_text(json.dumps({"context": {}, "benchmarks": benchmarks}))
        return str(path)

    def tables(self, *paths):
        out = io.StringIO()
        with redirect_stdout(out):
            self.assertEqual(0, bench_table.main(list(paths)))
        return out.getvalue()

    def row(self, text, work):
        lines = [line for line in text.splitlines() if line.startswith("| " + work)]
        self.assertEqual(1, len(lines), text)
        return [cell.strip() for cell in lines[0].strip("|").split("|")]

    def reports(self):
        ubootenv = self.report("ubootenv_bench", [
            # Repetitions: the median of 9, 10 and 30 us is 10 us; an aggregate is not a run.
            run("BM_UbootenvLoad", 9000, repetition=0), run("BM_UbootenvLoad", 30000, repetition=1),
            run("BM_UbootenvLoad", 10000, repetition=2), aggregate("BM_UbootenvLoad", 1),
            run("BM_LibubootenvLoad", 20000, repetition=0),
            run("BM_LibubootenvLoad", 25000, repetition=1),
            run("BM_UpdateValueAgainstLibubootenv/iterations:200/repeats:1", 1,
                **samples("veskdm", 300, 400, 9000, 20000),
                **samples("libubootenv", 150, 190, 4000, 9000)),
        ])
        flows = self.report("displaymode_bench", [
            run("BM_FlowWithOneSaveAndItsParts/iterations:150/repeats:1", 1, saves=1,
                **samples("flow", 230, 300, 8000, 9000), **samples("load", 20, 30, 20, 30),
                **samples("save", 180, 250, 7000, 8000), **samples("parts", 210, 280, 7000, 8000)),
            run("BM_FactoryFlowAndItsParts/iterations:100/repeats:1", 1, saves=3,
                **samples("flow", 560, 700, 20000, 30000), **samples("load", 20, 30, 20, 30),
                **samples("save", 180, 250, 7000, 8000),
                **samples("bestmode_save", 150, 200, 7000, 8000),
                **samples("hdmimode_save", 150, 200, 7000, 8000),
                **samples("parts", 520, 650, 21000, 25000)),
            run("BM_PartCalculateCvt", 20),
        ])
        timing = self.report("timing_bench", [
            run("BM_CalculateCvtReducedBlanking", 24.0, real_ns=50),
            run("BM_LibxcvtGenModeInfoReduced", 30.0, real_ns=60),
        ])
        service = self.report("service_bench", [
            run("BM_PropertyGetOfASetProperty", 39), run("BM_PropertyGetOfAnUnsetProperty", 23),
        ])
        binder = self.report("binder_bench", [
            run("BM_AidlGetSysLedStateAgainstFloor/iterations:5000/repeats:1", 1,
                **samples("aidl", 12, 20, 35, 60), **samples("floor", 8, 12, 16, 24),
                **samples("hidl", 20, 30, 21, 31)),
            run("BM_AidlSetSysLedStateAgainstFloor/iterations:2000/repeats:1", 1,
                **samples("aidl", 15, 40, 560, 700), **samples("floor", 8, 12, 16, 24),
                **samples("hidl", 250, 320, 580, 680)),
        ])
        return ubootenv, flows, timing, service, binder

    def test_ratios_against_the_anchors(self):
        text = self.tables(*self.reports())
        # 10 us against the median of 20 and 25 us, 22.5 us.
        self.assertEqual(["environment load (two 64 KiB copies + CRC), CPU", "10.0 us",
                          "libubootenv load 22.5 us", "0.44x", "<= 0.90x"],
                         self.row(text, "environment load"))
        self.assertEqual("2.00x", self.row(text, "update + save")[3])
        # Against the parts' sums per round (not the sums of their medians, 200 and 500) with the
        # CVT added: 230 / (210 + 0.02) and 560 / (520 + 0.02).
        self.assertEqual(["output-mode flow, one save, CPU median", "230.0 us",
                          "load + CVT + save 210.0 us", "1.10x", "<= 1.20x"],
                         self.row(text, "output-mode flow"))
        self.assertEqual("1.08x", self.row(text, "factory flow")[3])
        self.assertEqual(["CVT reduced blanking, CPU", "24.0 ns", "libxcvt 30.0 ns", "0.80x", "-"],
                         self.row(text, "CVT reduced blanking"))
        self.assertEqual("39.0 ns / 23.0 ns", self.row(text, "property_get")[1])
        # (35 - 21) us of the service's own against the 16 us floor; 560 against 580 us.
        self.assertEqual(["AIDL getSysLedState over RPC binder less the in-process call, "
                          "wall median", "14.0 us", "IPing empty call 16.0 us", "0.88x", "<= 1.20x"],
                         self.row(text, "AIDL getSysLedState"))
        self.assertEqual(["AIDL setSysLedState over RPC binder (a board save each), wall median",
                          "560.0 us", "in-process HIDL call 580.0 us", "0.97x", "about 1.0x"],
                         self.row(text, "AIDL setSysLedState"))

    def test_work_that_syncs_has_median_and_p99_of_cpu_and_wall(self):
        text = self.tables(*self.reports())
        self.assertEqual(["BM_UpdateValueAgainstLibubootenv veskdm", "300.0 us", "400.0 us",
                          "9000.0 us", "20000.0 us"],
                         self.row(text, "BM_UpdateValueAgainstLibubootenv veskdm"))
        self.assertEqual(["BM_FactoryFlowAndItsParts hdmimode_save", "150.0 us", "200.0 us",
                          "7000.0 us", "8000.0 us"],
                         self.row(text, "BM_FactoryFlowAndItsParts hdmimode_save"))

    def test_the_ratio_table_comes_last(self):
        text = self.tables(*self.reports()).rstrip()
        self.assertTrue(text.splitlines()[-1].startswith("| property_get"), text)

    def test_a_missing_anchor_leaves_its_row_out(self):
        ubootenv, flows, _, _, _ = self.reports()
        text = self.tables(ubootenv, flows)
        self.assertNotIn("CVT reduced blanking", text)
        self.assertNotIn("AIDL", text)
        self.assertIn("environment load", text)


if __name__ == "__main__":
    unittest.main()
