#!/usr/bin/env python3
"""Runs a genrule of an Android.bp on the host, with the command the board's build runs.

Usage: run_genrule.py ANDROID_BP MODULE OUT_DIR

Its srcs are taken relative to the Android.bp's folder, its one output is written into OUT_DIR;
$(in), $(out) and $$ mean what they mean to Soong. Exit 1 with one line when the module is
missing or its command fails or writes nothing.
"""
import re
import shlex
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))
from check_bp_parity import blueprint_modules  # noqa: E402


def main():
    if len(sys.argv) != 4:
        print(__doc__.strip().splitlines()[2], file=sys.stderr)
        return 2
    bp, name, out_dir = Path(sys.argv[1]), sys.argv[2], Path(sys.argv[3])
    modules = {props.get("name"): (kind, props) for kind, props in
               blueprint_modules(bp.read_text())}
    if modules.get(name, ("", {}))[0] != "genrule":
        print(f"run_genrule: {bp} has no genrule {name}", file=sys.stderr)
        return 1
    props = modules[name][1]
    sources = " ".join(shlex.quote(str(bp.parent / src)) for src in props.get("srcs", []))
    out_dir.mkdir(parents=True, exist_ok=True)
    out = out_dir / props["out"][0]
    meaning = {"$$": "$", "$(in)": sources, "$(out)": shlex.quote(str(out))}
    command = re.sub(r"\$\$|\$\(in\)|\$\(out\)", lambda m: meaning[m.group(0)], props["cmd"])
    if subprocess.run(["sh", "-c", command]).returncode != 0 or not out.exists() or \
            out.stat().st_size == 0:
        print(f"run_genrule: {name} made no {out}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
