#!/usr/bin/env python3
"""The service's core (default/core) holds nothing of HIDL or AIDL: those are its front ends'.

Three checks, each difference printed on one line; the exit status is 1 if there is any:
  - compile: the core's own compile command (taken from the build's compile_commands.json, so
    exactly the include folders the core is built with) compiles the core's header, and fails to
    find each interface header: the HIDL runtime's and the generated headers of the interface;
  - includes: no source or header of the core includes a header of HIDL, binder or AIDL, or of
    the interface package (vesk/hardware/...);
  - blueprint: the core's Android.bp names no library or defaults of HIDL, binder or AIDL, and not
    the interface library.

Usage: check_core_isolation.py --compile-commands BUILD/compile_commands.json [--core DIR]
"""
import argparse
import json
import re
import shlex
import subprocess
import sys
import tempfile
from pathlib import Path

REPO = Path(__file__).resolve().parent.parent
CORE = REPO / "default" / "core"
TARGET_FOLDER = "/vesk_service_core.dir/"

# Headers the core must not see: the HIDL runtime's, and one the interface generates.
INTERFACE_HEADERS = ["hidl/HidlSupport.h", "vesk/hardware/veskdevicemanager/1.0/types.h"]
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]')
INTERFACE_INCLUDE = re.compile(r"^(hidl|hwbinder|binder|aidl|fmq)/|^android/binder_|"
                               r"^vesk/hardware/")
# The interface's libraries: the HIDL package's (name@1.0) and the AIDL backends (name-V1-ndk...).
INTERFACE_LIBRARY = re.compile(r"hidl|binder|aidl|"
                               r"^vesk\.hardware\.veskdevicemanager(@\d+\.\d+|-V\d+(-\w+)?)$")
BLUEPRINT_NAMES = re.compile(r'"([^"]+)"')
BLUEPRINT_LISTS = ("defaults", "shared_libs", "static_libs", "whole_static_libs", "header_libs")


def core_command(compile_commands: Path):
    """The compiler's words of one of the core's sources, without its input and its outputs."""
    entries = json.loads(compile_commands.read_text())
    for entry in entries:
        words = entry.get("arguments") or shlex.split(entry["command"])
        if any(TARGET_FOLDER in word for word in words):
            kept, skip = [], False
            for word in words:
                if skip:
                    skip = False
                elif word in ("-o", "-MF", "-MT", "-MQ"):
                    skip = True
                elif word not in ("-c", "-MD", "-MMD") and word != entry["file"]:
                    kept.append(word)
            return kept, entry["directory"]
    return None, None


def check_compile(compile_commands: Path, problems):
    words, directory = core_command(compile_commands)
    if words is None:
        problems.append(f"compile: {compile_commands} has no source of vesk_service_core")
        return
    with tempfile.TemporaryDirectory() as scratch:
        def compiles(header):
            probe = Path(scratch) / "probe.cpp"
            probe.write_text(f"#include <{header}>\n")
            result = subprocess.run(words + ["-fsyntax-only", str(probe)], cwd=directory,
                                    capture_output=True, text=True)
            return result.returncode == 0, result.stderr

        ok, errors = compiles("DeviceManagerCore.h")
        if not ok:
            problems.append(f"compile: the core's command does not compile its own header: "
                            f"{errors.strip().splitlines()[0] if errors.strip() else '?'}")
            return
        for header in INTERFACE_HEADERS:
            ok, errors = compiles(header)
            if ok:
                problems.append(f"compile: the core's include folders reach <{header}>")
            elif header not in errors:
                problems.append(f"compile: <{header}> fails otherwise than not being found: "
                                f"{errors.strip().splitlines()[0]}")


def check_includes(core: Path, problems):
    for path in sorted(core.rglob("*")):
        if path.suffix not in (".h", ".cpp"):
            continue
        for number, line in enumerate(path.read_text().splitlines(), 1):
            match = INCLUDE.match(line)
            if match and INTERFACE_INCLUDE.search(match.group(1)):
                problems.append(f"includes: {path.relative_to(core.parent.parent)}:{number} "
                                f"includes {match.group(1)}")


def check_blueprint(core: Path, problems):
    text = (core / "Android.bp").read_text()
    for key in BLUEPRINT_LISTS:
        for block in re.findall(rf"\b{key}\s*:\s*\[([^\]]*)\]", text):
            for name in BLUEPRINT_NAMES.findall(block):
                if INTERFACE_LIBRARY.search(name):
                    problems.append(f"blueprint: {core.name}/Android.bp names {name} ({key})")


def check(compile_commands, core: Path):
    problems = []
    if compile_commands is not None:
        check_compile(Path(compile_commands), problems)
    check_includes(core, problems)
    check_blueprint(core, problems)
    return problems


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--compile-commands", required=True)
    parser.add_argument("--core", default=str(CORE))
    args = parser.parse_args()
    problems = check(args.compile_commands, Path(args.core))
    for problem in problems:
        print(f"core isolation: {problem}")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
