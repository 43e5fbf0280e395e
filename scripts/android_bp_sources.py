#!/usr/bin/env python3
"""What Soong compiles for a module of an Android tree on a Linux (glibc, x86_64) host, as CMake.

Usage: android_bp_sources.py [--platform-sdk-version N] ANDROID_BP MODULE PREFIX

Prints CMake set() commands for the host variant of MODULE: its own properties, then those of its
defaults, then the target blocks a glibc host selects (host, linux, not_windows, ...), then the
sources of the modules of the same file it takes whole (whole_static_libs), less exclude_srcs:
  PREFIX_SOURCES    C, C++, lex and yacc sources (absolute paths)
  PREFIX_AIDL       .aidl files of the filegroups it names (":name"), PREFIX_AIDL_ROOTS their
                    `path`s (the include roots aidl is given)
  PREFIX_CFLAGS, PREFIX_CPPFLAGS, PREFIX_CONLYFLAGS
  PREFIX_INCLUDES   its export_include_dirs and local_include_dirs (absolute)
product_variables.platform_sdk_version is applied with --platform-sdk-version; the board's other
product variables (debuggable, binder32bit, ...) are a user build's: unset.
Exit 1 with one line when the module is not in the file.
"""
import argparse
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))
from check_bp_parity import blueprint_modules  # noqa: E402

# The target blocks Soong applies to a linux_glibc x86_64 host (build/soong/android/arch.go).
HOST_TARGETS = ("host", "host_linux", "linux", "glibc", "linux_glibc", "not_windows",
                "linux_x86_64", "linux_glibc_x86_64")
LISTS = ("srcs", "exclude_srcs", "cflags", "cppflags", "conlyflags", "export_include_dirs",
         "local_include_dirs", "whole_static_libs")


def merged(props, modules):
    """A module's lists with its defaults' and its host target blocks' (Soong's order)."""
    result = {key: [] for key in LISTS + ("sdk_cflags",)}

    def add(block):
        for key in LISTS:
            result[key] += block.get(key, [])
        for name in HOST_TARGETS:
            if name in block.get("target", {}):
                add(block["target"][name])

    add(props)
    result["sdk_cflags"] = props.get("product_variables", {}).get(
        "platform_sdk_version", {}).get("cflags", [])
    for default in props.get("defaults", []):
        for key, values in merged(modules[default], modules).items():
            result[key] = values + result[key]
    return result


def host_variant(bp, name, sdk_version):
    modules = {}
    for _, props in blueprint_modules(bp.read_text()):
        # The library, not its NDK stub of the same name, which comes later in the file.
        modules.setdefault(props.get("name"), props)
    if name not in modules:
        return None
    folder = bp.parent
    module = merged(modules[name], modules)
    # Product variables apply once the defaults are in, after all else.
    if sdk_version is not None:
        module["cflags"] += [f.replace("%d", str(sdk_version)) for f in module["sdk_cflags"]]
    for whole in module["whole_static_libs"]:
        if whole in modules:  # fmtlib and other modules of other folders are the caller's
            taken = merged(modules[whole], modules)
            module["srcs"] += taken["srcs"]
            module["exclude_srcs"] += taken["exclude_srcs"]
    excluded = set(module["exclude_srcs"])
    sources, aidl, roots = [], [], []
    for src in module["srcs"]:
        if src in excluded:
            continue
        if src.startswith(":"):
            group = modules[src[1:]]
            aidl += [str(folder / s) for s in group["srcs"]]
            roots.append(str(folder / group.get("path", ".")))
        elif str(folder / src) not in sources:
            sources.append(str(folder / src))
    includes = [str(folder / d) for d in
                module["export_include_dirs"] + module["local_include_dirs"]]
    return {"SOURCES": sources, "AIDL": aidl, "AIDL_ROOTS": roots, "CFLAGS": module["cflags"],
            "CPPFLAGS": module["cppflags"], "CONLYFLAGS": module["conlyflags"],
            "INCLUDES": list(dict.fromkeys(includes))}


def cmake_quoted(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"').replace("$", "\\$") + '"'


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--platform-sdk-version", type=int)
    parser.add_argument("android_bp", type=Path)
    parser.add_argument("module")
    parser.add_argument("prefix")
    args = parser.parse_args()
    variant = host_variant(args.android_bp.resolve(), args.module, args.platform_sdk_version)
    if variant is None:
        print(f"android_bp_sources: {args.android_bp} has no module {args.module}",
              file=sys.stderr)
        return 1
    for key, values in variant.items():
        print(f"set({args.prefix}_{key} {' '.join(cmake_quoted(v) for v in values)})")
    return 0


if __name__ == "__main__":
    sys.exit(main())
