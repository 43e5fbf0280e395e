#!/usr/bin/env python3
"""Reference timings for the CVT calculator tests, worked out from the published formulas as the
board's calculator applies them (cell of 2 for widths that are not whole cells, the aspect ratio
judged on the unrounded quotient, the reduced-blanking clock from the totals, a zero clock for the
video-optimised version 2 and for unknown modes).

Writes one tab-separated row per mode: the inputs, the aspect-ratio name, then every field of
the timing record in order. Doubles are written so that they read back bit for bit.

    python3 cvt_reference.py > data/cvt_reference.tsv

Python's floats are IEEE doubles; the helpers below give C's results where Python's differ
(division by zero, round halves away from zero, signed zeros), so the table is what double
arithmetic yields.
"""

import math
import sys

UINT32 = 0xFFFFFFFF


def div(a, b):
    a, b = float(a), float(b)
    if b != 0.0:
        return a / b
    if a == 0.0 or math.isnan(a):
        return math.nan
    return math.copysign(math.inf, a) * math.copysign(1.0, b)


def floor(x):
    if not math.isfinite(x):
        return x
    r = float(math.floor(x))
    return math.copysign(0.0, x) if r == 0.0 else r


def cround(x):
    """C's round(): halves away from zero."""
    if not math.isfinite(x):
        return x
    t = float(math.trunc(x))
    if abs(x - t) >= 0.5:
        t += math.copysign(1.0, x)
    return math.copysign(0.0, x) if t == 0.0 else t


def field(x):
    """Store into an unsigned 32-bit field: truncate; not finite or negative gives 0, too large
    saturates."""
    if isinstance(x, int):
        return x & UINT32
    if not math.isfinite(x) or x <= -1.0:
        return 0
    if x >= 4294967296.0:
        return UINT32
    return int(x)


def u(x):
    """Unsigned 32-bit integer arithmetic wraps around."""
    return x & UINT32


ASPECTS = [  # (name, quotient of the frame height)
    ("4:3", lambda v: v * 4 / 3),
    ("16:9", lambda v: v * 16 / 9),
    ("16:10", lambda v: v * 16 / 10),
    ("5:4", lambda v: v * 5 * 0.25),
    ("15:9", lambda v: v * 15 / 9),
    ("43:18", lambda v: v * 43 / 18),
    ("64:27", lambda v: v * 64 / 27),
    ("12:5", lambda v: v * 12 / 5),
]
V_SYNC = {"4:3": 4, "16:9": 5, "16:10": 6, "5:4": 7, "15:9": 7}


def cvt(h_pixels, v_lines, refresh, bits, components, mode, margins, interlaced, video_opt):
    # Mode constants of a fresh calculator.
    clock_step, rb_h_blank, rb_v_fporch = 0.25, 160, 3
    if mode == "cvt":
        h_pol, v_pol, mult = 0, 1, 1.0
    elif mode == "cvt_rb":
        h_pol, v_pol, mult = 1, 0, 1.0
    elif mode == "cvt_rb2":
        clock_step, rb_h_blank, rb_v_fporch = 0.001, 80, 1
        h_pol, v_pol, mult = 1, 0, (0.0 if video_opt else 1.0)
    else:
        h_pol, v_pol, mult = 0, 0, 0.0

    cell = 8 if h_pixels % 8 == 0 else 2
    f = 2.0 * refresh if interlaced else float(refresh)
    h = h_pixels // cell * cell
    h_margin = field(floor(h * 1.8 / 100 / cell) * cell) if margins else 0
    a = u(h + 2 * h_margin)
    v = field(floor(v_lines * 0.5)) if interlaced else v_lines
    v_margin = field(floor(v * 1.8 / 100)) if margins else 0
    il = 0.5 if interlaced else 0.0

    v2 = v * 2.0 if interlaced else float(v)
    aspect = "Unknown"
    for name, quotient in ASPECTS:
        if cround(quotient(v2)) == float(h):
            aspect = name
            break
    s = 8 if mode == "cvt_rb2" else V_SYNC.get(aspect, 10)

    if mode == "cvt":
        p = div(div(1, f) - 550 / 1e6, float(v) + 2.0 * v_margin + 3 + il) * 1e6
        b = field(max(float(s + 6), floor(div(550, p)) + 1))
        v_bporch = u(b - s)
        v_fporch = 3
        v_blank = u(b + 3)
        v_total = field(float(v_margin) + v + v_margin + b + il + 3)
        duty = 30 - 300 * p / 1000
        if duty < 20:
            h_blank = u(a * 20) // 80 // (2 * cell) * 2 * cell
        else:
            h_blank = field(floor(div(div(duty * a, 100 - duty), 2.0 * cell)) * 2 * cell)
        h_total = u(a + h_blank)
        clock = clock_step * floor(div(div(h_total, p), clock_step))
        h_sync = field(floor(h_total * 0.08 / cell) * cell)
        h_bporch = h_blank // 2
        h_fporch = u(h_blank - h_bporch - h_sync)
    else:
        h_blank = rb_h_blank
        h_total = u(a + h_blank)
        min_vbi = s + rb_v_fporch + 6
        p = div(div(1e6, f) - 460, float(v_margin) + v + v_margin)
        estimate = floor(div(460, p)) + 1
        v_blank = field(max(float(min_vbi), estimate))
        v_total = field(il + v_margin + float(v) + v_margin + v_blank)
        clock = clock_step * floor(div(mult * (f * v_total * h_total / 1e6), clock_step))
        if mode == "cvt_rb2":
            v_bporch, h_sync, h_bporch = 6, 32, 40
            v_fporch = u(v_blank - s - 6)
            h_fporch = u(h_blank - 72)
        else:
            h_bporch, h_sync, v_fporch = 80, 32, 3
            v_bporch = u(v_blank - s - 3)
            h_fporch = u(h_blank - 112)

    hz = clock * 1e6
    ht, vt = float(h_total), float(v_total)
    record = [
        ("name", mode),
        ("pix_clock", cround(hz / 1000) / 1000),
        ("h_total", h_total),
        ("h_active", a),
        ("h_blank", h_blank),
        ("h_front_porch", h_fporch),
        ("h_sync", h_sync),
        ("h_back_porch", h_bporch),
        ("h_sync_polarity", h_pol),
        ("h_freq", cround(div(hz, ht)) / 1000),
        ("h_period", cround(div(ht, hz) * 1e9) / 1000),
        ("v_total", v_total),
        ("v_active", v),
        ("v_blank", v_blank),
        ("vblank_duration", field(cround(div(v_blank * ht, hz) * 1e6))),
        ("v_front_porch", v_fporch),
        ("v_sync", s),
        ("v_back_porch", v_bporch),
        ("v_sync_polarity", v_pol),
        ("v_freq", cround(div(hz, vt * ht) * 1000) / 1000),
        ("v_period", cround(div(1e6, div(hz, vt * ht))) / 1000),
        ("peak_bw", field(cround(hz * bits * components / 1e6))),
        ("line_bw", field(cround(div(hz * bits * components * a, ht) / 1e6))),
        ("active_bw", field(cround(div(hz, vt * ht) * bits * v * a * components / 1e6))),
        ("aspect", ""),
    ]
    return aspect, record


# hPixels, vLines, refresh, bits, components, mode, margins, interlaced, videoOptimized
MODES = [
    (1920, 1080, 60, 8, 3.0, "cvt_rb", False, False, False),
    (1920, 1080, 60, 8, 3.0, "cvt", False, False, False),
    (1920, 1080, 60, 8, 3.0, "cvt_rb2", False, False, False),
    (1920, 1200, 60, 8, 3.0, "cvt", False, False, False),
    (1920, 1200, 60, 8, 3.0, "cvt_rb", False, False, False),
    (1920, 1200, 75, 8, 3.0, "cvt", False, False, False),
    (1024, 768, 60, 8, 3.0, "cvt", False, False, False),
    (800, 600, 75, 8, 3.0, "cvt", False, False, False),
    (1280, 1024, 60, 8, 3.0, "cvt", False, False, False),
    (1280, 768, 60, 8, 3.0, "cvt_rb", False, False, False),
    (1440, 900, 75, 8, 3.0, "cvt_rb", False, False, False),
    (2580, 1080, 60, 8, 3.0, "cvt_rb", False, False, False),
    (2560, 1080, 60, 8, 3.0, "cvt", False, False, False),
    (5120, 2160, 60, 8, 3.0, "cvt_rb", False, False, False),
    (2592, 1080, 60, 8, 3.0, "cvt_rb2", False, False, False),
    (1000, 1000, 60, 8, 3.0, "cvt", False, False, False),
    (1366, 768, 60, 8, 3.0, "cvt_rb", False, False, False),
    (1366, 768, 60, 8, 3.0, "cvt", False, False, False),
    (1921, 1081, 60, 8, 3.0, "cvt_rb", False, False, False),
    (1360, 768, 60, 8, 3.0, "cvt", False, False, False),
    (1080, 1920, 60, 8, 3.0, "cvt_rb", False, False, False),
    (2560, 1600, 60, 8, 3.0, "cvt_rb", False, False, False),
    (4096, 2160, 60, 8, 3.0, "cvt_rb2", False, False, False),
    (3840, 2160, 30, 8, 3.0, "cvt", False, False, False),
    (1920, 1080, 60, 8, 3.0, "cvt", False, True, False),
    (1920, 1080, 60, 8, 3.0, "cvt_rb", False, True, False),
    (1920, 1080, 60, 8, 3.0, "cvt_rb2", False, True, False),
    (720, 480, 60, 8, 3.0, "cvt", False, True, False),
    (1920, 1080, 60, 8, 3.0, "cvt", True, False, False),
    (1920, 1080, 60, 8, 3.0, "cvt_rb", True, False, False),
    (1280, 720, 60, 8, 3.0, "cvt_rb2", True, False, False),
    (1366, 768, 60, 8, 3.0, "cvt_rb", True, False, False),
    (640, 480, 85, 8, 3.0, "cvt", True, True, False),
    (1920, 1080, 120, 10, 3.0, "cvt_rb", False, False, False),
    (1920, 1080, 60, 12, 2.0, "cvt", False, False, False),
    (1920, 1080, 60, 8, 3.0, "cvt_rb2", False, False, True),
    (1920, 1080, 60, 8, 3.0, "dmt", False, False, False),
    (1920, 1080, 60, 8, 3.0, "CVT_RB", False, False, False),
    # Unguarded inputs follow double arithmetic.
    (0, 1080, 60, 8, 3.0, "cvt", False, False, False),
    (1920, 0, 60, 8, 3.0, "cvt_rb", False, False, False),
    (1920, 1080, 0, 8, 3.0, "cvt", False, False, False),
    (1920, 1080, 0, 8, 3.0, "cvt_rb2", False, False, False),
    (1920, 1080, 5000, 8, 3.0, "cvt", False, False, False),
    # Extremes: unsigned sums wrap, out-of-range stores saturate.
    (4294967288, 1080, 60, 8, 3.0, "cvt_rb", False, False, False),
    (4294967288, 1080, 60, 8, 3.0, "cvt", False, False, False),
    (1920, 4294967295, 60, 8, 3.0, "cvt", False, False, False),
    (1920, 4294967295, 60, 8, 3.0, "cvt_rb2", True, True, False),
    (1920, 1080, 4294967295, 8, 3.0, "cvt_rb", False, False, False),
    (1920, 1080, 4294967295, 8, 3.0, "cvt", True, True, False),
]


def text(value):
    if isinstance(value, float):
        return repr(value)
    if isinstance(value, bool):
        return "1" if value else "0"
    return str(value)


def main():
    out = sys.stdout
    names = [name for name, _ in cvt(*MODES[0])[1]]
    header = ["hPixels", "vLines", "refreshRate", "bitsPerComponent", "componentsPerPixel",
              "mode", "margins", "interlaced", "videoOptimized", "aspectRatio"] + names
    out.write("\t".join(header) + "\n")
    for inputs in MODES:
        aspect, record = cvt(*inputs)
        row = [text(x) for x in inputs] + [aspect] + [text(value) for _, value in record]
        out.write("\t".join(row) + "\n")


if __name__ == "__main__":
    main()
