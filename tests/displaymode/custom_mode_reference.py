#!/usr/bin/env python3
"""The custom mode strings of the output-mode tests, worked out from the timing formulas
(tests/timing/cvt_reference.py) and the field list of the custom mode string: 60 Hz reduced
blanking, the three scaled fields truncated toward zero, the ratio reduced by Euclid.

    python3 custom_mode_reference.py
"""

import math
import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "timing"))
import cvt_reference  # noqa: E402


def custom_mode(width, height):
    _, record = cvt_reference.cvt(width, height, 60, 8, 3.0, "cvt_rb", False, False, False)
    t = dict(record)
    g = math.gcd(t["h_active"], t["v_active"])
    fields = [
        math.trunc(t["h_freq"] * 1000), math.trunc(t["v_freq"] * 1000),
        math.trunc(t["pix_clock"] * 1000), t["h_total"], t["h_blank"], t["h_front_porch"],
        t["h_sync"], t["h_back_porch"], t["h_active"], t["v_total"], t["v_blank"],
        t["v_front_porch"], t["v_sync"], t["v_back_porch"], t["v_active"], 1, 0, 1,
        t["h_active"] // g, t["v_active"] // g, 1, 1,
    ]
    return ",".join(str(f) for f in fields), t["v_freq"]


if __name__ == "__main__":
    for size in [(1920, 1080), (1280, 720), (1922, 1082), (800, 600), (4096, 2160), (2160, 4096),
                 (3840, 2160), (1920, 606)]:
        text, rate = custom_mode(*size)
        print(f"{size[0]}x{size[1]}\t{text}\t{rate:f}")
