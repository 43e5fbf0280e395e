#!/usr/bin/env python3
"""Checks the service's SELinux policy (sepolicy/) against what the service does.

A full-Treble board adds system_ext/public, system_ext/private and vendor; a board without full
Treble adds without-full-treble too.

- Every device path and every program of default/platform/DevicePaths.h, and every serial
  channel of the board (vesk/sim/BoardStatus.h, as /dev/NAME), is labelled by a file_contexts
  line (its regular expression matches the whole path). A program of /system is the platform's
  to label (system_file): only without-full-treble may grant the shell helper to run it, and no
  other folder grants any domain of ours to run system_file.
- The service runs nothing in its own domain: no file execute_no_trans (rx_file_perms,
  x_file_perms) in its rules. Its shell (/vendor/bin/sh) runs in the shell helper's domain, and
  the mode tool in its own, which alone writes the display mode node.
- Each front end's service program (HIDL: default/, stable AIDL: interface/veskdevicemanager/
  aidl/default/), the one its init .rc starts and its Android.bp names with that .rc, is labelled
  with the domain's _exec type: both run in the one domain.
- hwservice_contexts names the HIDL interface, service_contexts the AIDL instance.
- Every property the service reads or sets has a property_contexts line.
- Each .rc runs the service as the user and in the groups that the policy's "# groups:" line of
  vendor/hal_veskdevicemanager.te assumes.
- Every device node the service opens (an environment device, a serial channel) has a line in the
  ueventd fragment (default/ueventd.rc; the last line that matches, as ueventd takes it) that
  gives it to the .rc's user, read and write, with no access for others.

Usage: check_policy.py [REPO] [--policy DIR] (DIR: the sepolicy folder). Prints each problem;
exit 1 if there is any.
"""
import argparse
import fnmatch
import re
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "scripts"))
from check_bp_parity import blueprint_modules  # noqa: E402

DOMAIN = "hal_veskdevicemanager_default"
SHELL_DOMAIN = "vesk_hal_shell"
MODE_TOOL_DOMAIN = "vesk_hdmimode"
INTERFACE = "vesk.hardware.veskdevicemanager::IVeskDeviceManager"
AIDL_INSTANCE = "vesk.hardware.veskdevicemanager.IVeskDeviceManager/default"
# Each front end's init .rc; the service program is the cc_binary of the same folder's Android.bp
# that names it (the one board installs one).
SERVICE_RCS = ["default/vesk.hardware.veskdevicemanager@1.0-service.rc",
               "interface/veskdevicemanager/aidl/default/"
               "vesk.hardware.veskdevicemanager-service.rc"]
# The folders of a full-Treble board, and the one a board without full Treble adds.
BOARD_FOLDERS = ["system_ext/public", "system_ext/private", "vendor"]
WITHOUT_FULL_TREBLE = "without-full-treble"


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


def folder_text(policy, folders, pattern):
    return "\n".join(path.read_text() for folder in folders
                     for path in sorted((policy / folder).glob(pattern)))


def te_rules(policy, folders):
    """The .te text of the folders, one statement per line, comments dropped."""
    text = re.sub(r"#[^\n]*", "", folder_text(policy, folders, "*.te"))
    return [" ".join(part.split()) for part in re.split(r";|(?<=\))\s*\n", text) if part.strip()]


def file_contexts(policy):
    entries = []
    for line in folder_text(policy, BOARD_FOLDERS, "file_contexts").splitlines():
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
    for line in folder_text(policy, BOARD_FOLDERS, "property_contexts").splitlines():
        fields = line.split()
        if len(fields) < 2 or fields[0].startswith("#"):
            continue
        kind = fields[2] if len(fields) > 2 else "prefix"
        if (kind == "exact" and name == fields[0]) or (kind != "exact" and name.startswith(fields[0])):
            return True
    return False


UEVENTD = "default/ueventd.rc"


def rc_service(path):
    rc = path.read_text()
    binary = re.search(r"^service\s+\S+\s+(\S+)", rc, re.M).group(1)
    user = re.search(r"^\s+user\s+(\S+)", rc, re.M)
    groups = re.search(r"^\s+group\s+(.+)$", rc, re.M)
    return binary, user.group(1) if user else None, groups.group(1).split() if groups else []


def ueventd_entries(repo):
    """(pattern, mode, user) of each node line of the ueventd fragment, in order."""
    entries = []
    path = repo / UEVENTD
    for line in path.read_text().splitlines() if path.is_file() else []:
        fields = line.split("#", 1)[0].split()
        if len(fields) == 4 and fields[0].startswith("/dev/"):
            entries.append((fields[0], int(fields[1], 8), fields[2]))
    return entries


def ueventd_matches(pattern, path):
    """ueventd's match: a pattern with * is fnmatch'ed with FNM_PATHNAME (no * across a /)."""
    if "*" not in pattern:
        return pattern == path
    return re.fullmatch(fnmatch.translate(pattern).replace(".*", "[^/]*"), path) is not None


def check_device_nodes(repo, user):
    problems = []
    entries = ueventd_entries(repo)
    for path, what in table_paths(repo):
        if not path.startswith("/dev/"):
            continue
        matching = [entry for entry in entries if ueventd_matches(entry[0], path)]
        if not matching:
            problems.append(f"{path} ({what}) has no line in {UEVENTD}")
            continue
        pattern, mode, owner = matching[-1]
        if owner != user or mode & 0o600 != 0o600 or mode & 0o007:
            problems.append(f"{UEVENTD} gives {path} ({what}) to {owner} with mode {mode:04o}; "
                            f"the service runs as {user}: owner {user}, read and write, nothing "
                            "for others")
    return problems


EXECUTES = r"\b(rx_file_perms|x_file_perms|execute_no_trans)\b"


def grants(rules, source, target, klass="file", perms=r"\w"):
    """The allow rules of source on target:klass whose permissions match perms."""
    pattern = re.compile(rf"^allow {source} {target}:{klass} .*{perms}")
    return [rule for rule in rules if pattern.search(rule)]


def check_domains(repo, policy, entries):
    problems = []
    board = te_rules(policy, BOARD_FOLDERS)
    extra = te_rules(policy, [WITHOUT_FULL_TREBLE])
    for rule in grants(board + extra, DOMAIN, r"\S+", perms=EXECUTES):
        problems.append(f"the service runs a program in its own domain: {rule}")
    if f"domain_auto_trans({DOMAIN}, vendor_shell_exec, {SHELL_DOMAIN})" not in board:
        problems.append(f"the service's shell does not run in {SHELL_DOMAIN}")
    for rule in grants(board, r"\S+", "system_file", perms=EXECUTES):
        problems.append(f"a full-Treble board's policy runs programs of /system: {rule}")
    runs_system = bool(grants(extra, SHELL_DOMAIN, "system_file", perms=EXECUTES))
    for rule in board + extra:
        violator = re.match(r"(?:typeattribute (\S+)|type (\S+),).*\b(\w+_violators)\b", rule)
        if violator and (rule in board or (violator.group(1) or violator.group(2)) != SHELL_DOMAIN):
            problems.append(f"a Treble violator outside without-full-treble's shell helper: {rule}")

    for path, what in table_paths(repo):
        if label_of(path, entries):
            continue
        if path.startswith("/system/") and runs_system:
            continue
        problems.append(f"{path} ({what}) has no file_contexts line")

    header = (repo / "default/platform/DevicePaths.h").read_text()
    tool = re.search(r'kSelectCustomModeCommand\[\]\s*=\s*"(\S+)', header)
    node = re.search(r'kDisplayModeNode\[\]\s*=\s*"([^"]+)"', header)
    tool_label = label_of(tool.group(1), entries) if tool else None
    if tool_label and (f"domain_auto_trans({SHELL_DOMAIN}, {tool_label.split(':')[2]}, "
                       f"{MODE_TOOL_DOMAIN})") not in board:
        problems.append(f"{tool.group(1)} (the mode tool) does not run in {MODE_TOOL_DOMAIN}")
    node_label = label_of(node.group(1), entries) if node else None
    if node_label:
        node_type = node_label.split(":")[2]
        writes = r"\b(rw_file_perms|w_file_perms|write)\b"
        if not grants(board, MODE_TOOL_DOMAIN, node_type, perms=writes):
            problems.append(f"{node.group(1)} (the display mode node) is not written by "
                            f"{MODE_TOOL_DOMAIN}")
        for rule in grants(board, DOMAIN, node_type):
            problems.append(f"the service itself has the display mode node: {rule}")
    return problems


def bp_program(rc):
    """The cc_binary of the .rc's folder's Android.bp whose init_rc names it; None without one."""
    bp = rc.parent / "Android.bp"
    modules = blueprint_modules(bp.read_text()) if bp.is_file() else []
    return next((props["name"] for kind, props in modules
                 if kind == "cc_binary" and rc.name in props.get("init_rc", [])), None)


def check_service(repo, rc_path, entries, assumed_groups):
    """The front end's program is labelled, its .rc starts it as the policy assumes."""
    rc = repo / rc_path
    if not rc.is_file():
        return [f"{rc_path} is missing"], None
    problems = []
    binary, user, groups = rc_service(rc)
    program = bp_program(rc)
    if program and binary != f"/vendor/bin/hw/{program}":
        problems.append(f"{rc_path} starts {binary}, not /vendor/bin/hw/{program}")
    if label_of(binary, entries) != f"u:object_r:{DOMAIN}_exec:s0":
        problems.append(f"{binary} (the service) is not labelled {DOMAIN}_exec")
    if user != "system":
        problems.append(f"{rc_path} runs the service as {user}, the policy assumes system")
    for group in assumed_groups:
        if group not in groups:
            problems.append(f"{rc_path} does not give the service group {group}")
    for group in groups:
        if group not in assumed_groups:
            problems.append(f"{rc_path} gives group {group}, which the policy does not assume")
    return problems, user


def check(repo, policy):
    entries = file_contexts(policy)
    te = (policy / "vendor/hal_veskdevicemanager.te").read_text()
    problems = check_domains(repo, policy, entries)

    assumed = re.search(r"^# groups:\s*(.*)$", te, re.M)
    assumed_groups = assumed.group(1).split() if assumed else []
    users = []
    for rc_path in SERVICE_RCS:
        found, user = check_service(repo, rc_path, entries, assumed_groups)
        problems += found
        users.append(user)

    contexts = folder_text(policy, BOARD_FOLDERS, "hwservice_contexts").split()
    if INTERFACE not in contexts:
        problems.append(f"hwservice_contexts does not name {INTERFACE}")
    if AIDL_INSTANCE not in folder_text(policy, BOARD_FOLDERS, "service_contexts").split():
        problems.append(f"service_contexts does not name {AIDL_INSTANCE}")

    for name in service_properties(repo):
        if not property_covered(name, policy):
            problems.append(f"property {name} has no property_contexts line")

    problems += check_device_nodes(repo, users[0])
    return problems


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("repo", nargs="?", default=Path(__file__).resolve().parent.parent,
                        type=Path)
    parser.add_argument("--policy", type=Path)
    args = parser.parse_args()
    policy = args.policy or args.repo / "sepolicy"
    problems = check(args.repo, policy)
    for problem in problems:
        print(f"sepolicy: {problem}")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
