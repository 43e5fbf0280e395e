#!/usr/bin/env python3
"""Checks the service's SELinux policy (sepolicy/vendor) against what the service does.

- Every device path and every program of default/platform/DevicePaths.h, and every serial
  channel of the board (vesk/sim/BoardStatus.h, as /dev/NAME), is labelled by a file_contexts
  line (its regular expression matches the whole path). A program of /system is the platform's
  to label (system_file): it needs the domain's grant to run system_file instead.
- The service binary of default/Android.bp is labelled with the domain's _exec type, and the
  init .rc starts that binary.
- hwservice_contexts names the interface.
- Every property the service reads or sets has a property_contexts line.
- The .rc runs the service as the user and in the groups that the policy's "# groups:" line of
  hal_veskdevicemanager.te assumes.

Usage: check_policy.py [REPO] [--policy DIR]. Prints each problem; exit 1 if there is any.
"""
import argparse
import re
import sys
from pathlib import Path

DOMAIN = "hal_veskdevicemanager_default"
INTERFACE = "vesk.hardware.veskdevicemanager::IVeskDeviceManager"


def c_strings(text):
    return re.findall(r'"((?:[^"\\]|\\.)*)"', text)


def table_paths(repo):
    """(path, what) of every device path and program the service uses on the board."""
    header = (repo / "default/platform/DevicePaths.h").read_text()
    header = re.sub(r"//[^\n]*|/\*.*?\*/", "", header, flags=re.S)
    found = []
    for name, body in re.findall(r"constexpr\s+[^=]*?\b(k\w+)(?:\[\])?\s*=\s*(\{[^}]*\}|\"[^\"]*\")",
                                 header):
        for text in c_strings(body):
            if name.endswith("Command"):
                program = text.split()[0]
                if "/" not in program:
                    program = "/system/bin/" + program  # the shell's path
                found.append((program, f"program of {name}"))
            else:
                found.append((text, name))
    status = (repo / "vesksdk/sim/include/vesk/sim/BoardStatus.h").read_text()
    links = re.search(r"kSerialLinkNames\[\]\s*=\s*\{([^}]*)\}", status)
    for text in c_strings(links.group(1) if links else ""):
        found.append(("/dev/" + text, "serial channel"))
    return found


def file_contexts(policy):
    entries = []
    for line in (policy / "file_contexts").read_text().splitlines():
        line = line.strip()
        if not line or line.startswith("#"):
            continue
        fields = line.split()
        entries.append((fields[0], fields[-1]))
    return entries


def label_of(path, entries):
    for regex, context in entries:
        if re.fullmatch(regex, path):
            return context
    return None


def service_properties(repo):
    names = set()
    for source in list((repo / "default").rglob("*.cpp")) + list((repo / "default").rglob("*.h")):
        names.update(re.findall(r'"(persist\.[\w.]+)"', source.read_text()))
    return sorted(names)


def property_covered(name, policy):
    for line in (policy / "property_contexts").read_text().splitlines():
        fields = line.split()
        if len(fields) < 2 or fields[0].startswith("#"):
            continue
        kind = fields[2] if len(fields) > 2 else "prefix"
        if (kind == "exact" and name == fields[0]) or (kind != "exact" and name.startswith(fields[0])):
            return True
    return False


def rc_service(repo):
    rc = next((repo / "default").glob("*.rc")).read_text()
    binary = re.search(r"^service\s+\S+\s+(\S+)", rc, re.M).group(1)
    user = re.search(r"^\s+user\s+(\S+)", rc, re.M)
    groups = re.search(r"^\s+group\s+(.+)$", rc, re.M)
    return binary, user.group(1) if user else None, groups.group(1).split() if groups else []


def check(repo, policy):
    problems = []
    entries = file_contexts(policy)
    te = (policy / "hal_veskdevicemanager.te").read_text()
    runs_system = re.search(rf"allow {DOMAIN} system_file:file [^;]*rx_file_perms", te) is not None
    for path, what in table_paths(repo):
        if label_of(path, entries):
            continue
        if path.startswith("/system/") and runs_system:
            continue
        problems.append(f"{path} ({what}) has no file_contexts line")

    bp = (repo / "default/Android.bp").read_text()
    service = re.search(r'cc_binary\s*\{[^}]*?name:\s*"([^"]+)"', bp, re.S).group(1)
    binary = f"/vendor/bin/hw/{service}"
    if label_of(binary, entries) != f"u:object_r:{DOMAIN}_exec:s0":
        problems.append(f"{binary} (the service) is not labelled {DOMAIN}_exec")
    rc_binary, user, groups = rc_service(repo)
    if rc_binary != binary:
        problems.append(f"the .rc starts {rc_binary}, not {binary}")

    contexts = (policy / "hwservice_contexts").read_text().split()
    if INTERFACE not in contexts:
        problems.append(f"hwservice_contexts does not name {INTERFACE}")

    for name in service_properties(repo):
        if not property_covered(name, policy):
            problems.append(f"property {name} has no property_contexts line")

    assumed = re.search(r"^# groups:\s*(.*)$", te, re.M)
    assumed_groups = assumed.group(1).split() if assumed else []
    if user != "system":
        problems.append(f"the .rc runs the service as {user}, the policy assumes system")
    for group in assumed_groups:
        if group not in groups:
            problems.append(f"the .rc does not give the service group {group}")
    for group in groups:
        if group not in assumed_groups:
            problems.append(f"the .rc gives group {group}, which the policy does not assume")
    return problems


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("repo", nargs="?", default=Path(__file__).resolve().parent.parent,
                        type=Path)
    parser.add_argument("--policy", type=Path)
    args = parser.parse_args()
    policy = args.policy or args.repo / "sepolicy/vendor"
    problems = check(args.repo, policy)
    for problem in problems:
        print(f"sepolicy: {problem}")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
