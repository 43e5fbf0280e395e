#!/usr/bin/env python3
"""Android.bp and CMake build the same libraries from the same files.

Every module of every Android.bp of the tree is either paired with CMake targets in PAIRS below
or named in DEVICE_ONLY with the reason it has no host counterpart. For each pair it compares
  - the sources (repository paths), less those the pair declares as one side's only;
  - the include folders the module declares (export_include_dirs, local_include_dirs), each of
    which the CMake target must have;
  - the project's own libraries: a module's static_libs, header_libs and shared_libs that are
    modules of this tree, against the CMake targets the target depends on, both ways.
Platform libraries (liblog, libz, ...) are the device build's own concern and are not compared.
Each difference is printed by name; the exit status is 1 if there is any.

The CMake side is read from CMake's file API after configuring the tree into a scratch folder
(a few seconds; nothing is built). Usage: check_bp_parity.py [--build-dir DIR] [--cmake CMAKE]

To pair a new module: add an entry to PAIRS (module name -> CMake targets, and the sources that
only one side has, each with the reason; a host test's targets that it starts as programs rather
than links, under "runs", with the reason; "android_tree" for a pair whose targets exist only in
a build given an Android tree, which is not compared in a build without one).
"""
import argparse
import copy
import glob
import json
import re
import subprocess
import sys
import tempfile
from pathlib import Path

REPO = Path(__file__).resolve().parent.parent

PAIRS = {
    "vesk.hardware.veskdevicemanager@1.0-impl": {"targets": ["veskdevicemanager_objects"]},
    "vesk.hardware.veskdevicemanager-core": {"targets": ["vesk_service_core"]},
    "vesk.hardware.veskdevicemanager-service-impl": {
        "targets": ["veskdevicemanager_aidl_impl"],
        "android_tree": True,
    },
    "vesk.hardware.veskdevicemanager-service": {
        "targets": ["veskdevicemanager_aidl_service"],
        "android_tree": True,
        "device_only": {
            "interface/veskdevicemanager/aidl/default/ServiceRegistrationDevice.cpp":
                "the board's registration with the service manager; the host serves on a socket "
                "(host/binder, vesk_service_registration_host)",
        },
    },
    "vesk.hardware.veskdevicemanager@1.0-displaymode": {"targets": ["vesk_displaymode"]},
    "vesk.hardware.veskdevicemanager@1.0-log": {"targets": ["vesk_log"]},
    # A header-only library: CMake's file API (3.25) does not list INTERFACE targets, so the pair
    # is checked through its folder, which every user of it must have among its includes.
    "vesk.hardware.veskdevicemanager@1.0-platform-headers": {
        "targets": ["vesk_platform_headers"],
        "headers_only": "default/platform",
    },
    "libvesksdk_headers": {"targets": ["vesksdk_headers"], "headers_only": "vesksdk/include"},
    "VtsHalVeskDeviceManagerTargetTest": {
        "targets": ["VtsHalVeskDeviceManagerTargetTest"],
        "android_tree": True,
        "device_only": {
            "interface/veskdevicemanager/aidl/vts/ServiceUnderTestDevice.cpp":
                "the board's getter: the service manager",
        },
        "host_only": {
            "interface/veskdevicemanager/aidl/vts/ServiceUnderTestHost.cpp":
                "the host's getter: the service program over the registration seam",
        },
        "runs": {
            "veskdevicemanager_aidl_service":
                "the host's getter starts the service program; on a board init has started it",
        },
    },
    "VtsHalVeskDeviceManagerV1_0TargetTest": {
        "targets": ["VtsHalVeskDeviceManagerV1_0TargetTest"],
        "device_only": {
            "tests/vts/ServiceUnderTestDevice.cpp": "the board's getter: getService()",
        },
        "host_only": {
            "tests/vts/ServiceUnderTestHost.cpp": "the host's getter: the passthrough loader",
        },
    },
}

DEVICE_ONLY = {
    "vesk.hardware":
        "hidl_package_root: where the board's build finds the vesk.hardware packages' .hal files",
    "vesk.hardware.veskdevicemanager":
        "aidl_interface: the board's build generates the stable-AIDL package's libraries; the "
        "host runs the tree's aidl itself (interface/veskdevicemanager/aidl)",
    "vesk.hardware.veskdevicemanager@1.0":
        "hidl_interface: the board's build generates the package's C++ library (system and "
        "vendor variants) and Java library; the host runs hidl-gen for its C++ headers and its "
        "Java sources (interface/CMakeLists.txt)",
    "vesk.hardware.veskdevicemanager@1.0-released-hash":
        "genrule: the host runs its own command (scripts/run_genrule.py, tests/vts/CMakeLists.txt)",
    "vesk_panel_client":
        "an example of a native system client (examples/native-client), which a board builds "
        "when it ships one; the headers gate compiles it",
    "vesk_panel_client_aidl":
        "the same example for the stable-AIDL front end (examples/native-client-aidl); the "
        "headers gate compiles it with the NDK code of version 1",
    "vesk.hardware.veskdevicemanager@1.0-service":
        "the board's service host; on the host veskdm loads the -impl library itself",
    "vesk.hardware.veskdevicemanager-platform":
        "the device's side of the platform seams; the host links its own (host/platform) and "
        "compiles this one alone (vesk_platform_device)",
}

TOKEN = re.compile(r'\s+|//[^\n]*|/\*.*?\*/|"(?:[^"\\]|\\.)*"|[{}\[\]:,=+]|[A-Za-z_][\w.@-]*'
                   r'|-?\d+', re.S)


def blueprint_modules(text):
    """The modules of one Android.bp: [(type, {property: value})]. Variables (`name = value`,
    `name += value`) and `+` of lists, strings and maps are resolved, as Blueprint does."""
    tokens = [t for t in TOKEN.findall(text) if t.strip() and not t.startswith(("//", "/*"))]
    position = 0
    variables = {}

    def take():
        nonlocal position
        position += 1
        return tokens[position - 1]

    def operand():
        token = take()
        if token.startswith('"'):
            return json.loads(token)
        if token == "[":
            items = []
            while tokens[position] != "]":
                items.append(value())
                if tokens[position] == ",":
                    take()
            take()
            return items
        if token == "{":
            return properties("}")
        if token in ("true", "false"):
            return token == "true"
        if token.lstrip("-").isdigit():
            return int(token)
        if token in variables:
            return copy.deepcopy(variables[token])
        return token

    def value():
        result = operand()
        while position < len(tokens) and tokens[position] == "+" and \
                tokens[position + 1] != "=":
            take()
            right = operand()
            result = {**result, **right} if isinstance(result, dict) else result + right
        return result

    def properties(end):
        result = {}
        while tokens[position] != end:
            name = take()
            if take() not in (":", "="):
                raise ValueError(f"expected ':' after {name}")
            result[name] = value()
            if tokens[position] == ",":
                take()
        take()
        return result

    modules = []
    while position < len(tokens):
        kind = take()
        if tokens[position] == "=":
            take()
            variables[kind] = value()
        elif tokens[position] == "+":
            take(), take()
            variables[kind] = variables[kind] + value()
        elif take() == "{":
            modules.append((kind, properties("}")))
        else:
            raise ValueError(f"expected '{{' after {kind}")
    return modules


def device_modules():
    modules = {}
    for path in sorted(REPO.rglob("Android.bp")):
        if "build" in path.relative_to(REPO).parts[:1]:
            continue
        for kind, props in blueprint_modules(path.read_text()):
            modules[props["name"]] = (path.parent.relative_to(REPO), kind, props)
    return modules


def host_targets(build_dir, cmake):
    query = Path(build_dir) / ".cmake/api/v1/query/codemodel-v2"
    query.parent.mkdir(parents=True, exist_ok=True)
    query.touch()
    subprocess.run([cmake, "-S", str(REPO), "-B", str(build_dir), "-DVESK_BUILD_BENCHMARKS=OFF"],
                   check=True, stdout=subprocess.DEVNULL)
    reply = Path(build_dir) / ".cmake/api/v1/reply"
    index = json.loads(Path(sorted(glob.glob(str(reply / "index-*.json")))[-1]).read_text())
    codemodel = next(r for r in index["reply"].values() if r.get("kind") == "codemodel")
    model = json.loads((reply / codemodel["jsonFile"]).read_text())
    targets = {}
    by_id = {}
    for entry in model["configurations"][0]["targets"]:
        data = json.loads((reply / entry["jsonFile"]).read_text())
        by_id[entry["id"]] = data["name"]
        targets[data["name"]] = data
    for data in targets.values():
        data["dependencyNames"] = {by_id[d["id"]] for d in data.get("dependencies", [])}
    return targets


def compare(name, pair, module, targets, modules, problems):
    folder, _, props = module
    if "headers_only" in pair:
        return  # checked where it is used
    device_only = set(pair.get("device_only", {}))
    host_only = set(pair.get("host_only", {}))
    bp_sources = {str(folder / s) for s in props.get("srcs", [])} - device_only
    host_sources, host_includes, host_deps = set(), set(), set()
    for target_name in pair["targets"]:
        target = targets.get(target_name)
        if target is None:
            problems.append(f"{name}: CMake has no target {target_name}")
            return
        for source in target.get("sources", []):
            path = source["path"]
            if not path.startswith("/") and not source.get("isGenerated") and path.endswith(
                    (".c", ".cpp")):
                host_sources.add(path)
        for group in target.get("compileGroups", []):
            for include in group.get("includes", []):
                host_includes.add(include["path"])
        # An INTERFACE library has no compile group: its own folders are in its interface.
        host_deps |= target["dependencyNames"] - set(pair.get("runs", {}))
    host_sources -= host_only
    for path in sorted(bp_sources - host_sources):
        problems.append(f"{name}: {path} is built on the device but not by {pair['targets']}")
    for path in sorted(host_sources - bp_sources):
        problems.append(f"{name}: {path} is built by {pair['targets']} but not on the device")
    for key in ("export_include_dirs", "local_include_dirs"):
        for folder_name in props.get(key, []):
            path = str((REPO / folder / folder_name).resolve())
            if host_includes and path not in host_includes:
                problems.append(f"{name}: include folder {path} ({key}) is not one of "
                                f"{pair['targets']}'s")
    bp_libs = set()
    for key in ("static_libs", "header_libs", "shared_libs", "whole_static_libs"):
        bp_libs |= {lib for lib in props.get(key, []) if lib in PAIRS}
    for lib in sorted(lib for lib in bp_libs if "headers_only" in PAIRS[lib]):
        path = str(REPO / PAIRS[lib]["headers_only"])
        if path not in host_includes:
            problems.append(f"{name}: uses {lib} on the device, but {path} is not among "
                            f"{pair['targets']}'s include folders")
    bp_libs = {lib for lib in bp_libs if "headers_only" not in PAIRS[lib]}
    wanted = {t for lib in bp_libs for t in PAIRS[lib]["targets"]}
    paired_targets = {t for p in PAIRS.values() for t in p["targets"]}
    for target in sorted(wanted - host_deps):
        problems.append(f"{name}: uses {target} on the device, not on the host")
    for target in sorted((host_deps & paired_targets) - wanted - set(pair["targets"])):
        problems.append(f"{name}: uses {target} on the host, not on the device")


# A target every build given an Android tree has (the AIDL package's Java bindings).
TREE_TARGET = "vesk_aidl_java"


def check(targets, modules):
    problems = []
    without_tree = TREE_TARGET not in targets
    for name, module in sorted(modules.items()):
        if name in DEVICE_ONLY or (without_tree and PAIRS.get(name, {}).get("android_tree")):
            continue
        if name not in PAIRS:
            problems.append(f"{name} ({module[0]}/Android.bp) has no CMake counterpart in "
                            "PAIRS and is not listed as device-only")
            continue
        compare(name, PAIRS[name], module, targets, modules, problems)
    for name in sorted(set(PAIRS) - set(modules)):
        problems.append(f"{name} is paired with CMake but no Android.bp has it")
    return problems


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build-dir")
    parser.add_argument("--cmake", default="cmake")
    args = parser.parse_args()
    with tempfile.TemporaryDirectory() as scratch:
        targets = host_targets(args.build_dir or scratch, args.cmake)
    problems = check(targets, device_modules())
    for problem in problems:
        print(f"Android.bp vs CMake: {problem}")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
