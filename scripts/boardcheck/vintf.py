"""The vintf gate: for each front end of the service (HIDL, stable AIDL), the framework
compatibility matrix fragment asks for exactly the HAL that the service's device manifest
fragment serves (format, name, a version within the matrix's range, interface and instance), and
init's .rc of the service declares the same interface, so that the board's VINTF checks find the
served HAL in a framework matrix and the matrix's HAL served. Then, for each value of
VESK_VESKDM_FRONT_END (and none), GNU make reads the two makefiles as the board build does: the
board fragment must add that front end's matrix and no other, and the product's packages must
install that front end's manifest fragment and .rc (as their modules' vintf_fragments and
init_rc name them) and not the other's: one front end per board.
"""
import re
import xml.etree.ElementTree as ElementTree
from dataclasses import dataclass
from pathlib import Path

from .blueprints import read_modules
from .common import GateFailure, first_line, run


@dataclass(frozen=True)
class FrontEnd:
    name: str
    manifest: str
    matrix: str
    rc: str


AIDL_DEFAULT = "interface/veskdevicemanager/aidl/default"
FRONT_ENDS = [
    FrontEnd("hidl", "default/vesk.hardware.veskdevicemanager@1.0-service.xml",
             "default/framework_compatibility_matrix.xml",
             "default/vesk.hardware.veskdevicemanager@1.0-service.rc"),
    FrontEnd("aidl", f"{AIDL_DEFAULT}/vesk.hardware.veskdevicemanager-service.xml",
             f"{AIDL_DEFAULT}/framework_compatibility_matrix.xml",
             f"{AIDL_DEFAULT}/vesk.hardware.veskdevicemanager-service.rc"),
]
DEFAULT = "hidl"  # what the makefiles choose when the product does not
PRODUCT = "veskdevicemanager.mk"
BOARD = "BoardConfigVeskdevicemanager.mk"
CHOICE = "VESK_VESKDM_FRONT_END"

# A HIDL version is MAJOR.MINOR, a matrix range MAJOR.MINOR-MINOR; an AIDL version is one number,
# a range N-M.
VERSION = {"hidl": re.compile(r"(\d+)\.(\d+)"), "aidl": re.compile(r"()(\d+)")}
VERSION_RANGE = {"hidl": re.compile(r"(\d+)\.(\d+)(?:-(\d+))?"),
                 "aidl": re.compile(r"()(\d+)(?:-(\d+))?")}


def read(ctx, path, root_tag):
    try:
        root = ElementTree.parse(ctx.repo / path).getroot()
    except FileNotFoundError:
        raise GateFailure("vintf", path, "missing") from None
    except ElementTree.ParseError as error:
        raise GateFailure("vintf", path, f"not XML: {error}") from None
    if root.tag != root_tag:
        raise GateFailure("vintf", path, f"the root element is <{root.tag}>, not <{root_tag}>")
    return root


def text(element, tag):
    found = element.find(tag)
    return found.text.strip() if found is not None and found.text else ""


def instances(hal):
    """The hal's interface/instance names, as "IFoo/default", from <interface> elements and
    <fqname>s ("IFoo/default" for AIDL, "@1.0::IFoo/default" for HIDL)."""
    found = {f"{text(interface, 'name')}/{instance.text.strip()}"
             for interface in hal.findall("interface")
             for instance in interface.findall("instance") if instance.text}
    found |= {fqname.text.strip().split("::")[-1] for fqname in hal.findall("fqname")
              if fqname.text}
    return found


def served_version(hal, kind):
    """A manifest hal's version: its <version>, else a HIDL fqname's; an AIDL HAL without one
    is version 1, as libvintf reads it."""
    version = text(hal, "version")
    if not version and kind == "hidl":
        fqname = re.match(r"@([\d.]+)::", text(hal, "fqname"))
        version = fqname.group(1) if fqname else ""
    return version or ("1" if kind == "aidl" else "")


def hals(root):
    return {(hal.get("format", "hidl"), text(hal, "name")): hal for hal in root.findall("hal")}


def contains(version_range, version, kind="hidl"):
    """Whether a matrix range ("1.0", "1.0-2"; AIDL "1", "1-2") holds a manifest version."""
    if kind not in VERSION:
        return False
    wanted = VERSION_RANGE[kind].fullmatch(version_range)
    served = VERSION[kind].fullmatch(version)
    if not wanted or not served:
        return False
    major, low, high = wanted.group(1), int(wanted.group(2)), wanted.group(3)
    high = low if high is None else int(high)
    return served.group(1) == major and low <= int(served.group(2)) <= high


def rc_interfaces(ctx, path):
    """The interfaces init's .rc declares ("interface NAME INSTANCE" for HIDL, "interface aidl
    NAME/INSTANCE"), as the manifest would name them: (format, "package@1.0::IFoo/default" or
    "package.IFoo/default")."""
    try:
        lines = (ctx.repo / path).read_text().splitlines()
    except FileNotFoundError:
        raise GateFailure("vintf", path, "missing") from None
    found = set()
    for line in lines:
        fields = line.split("#", 1)[0].split()
        if fields[:2] == ["interface", "aidl"] and len(fields) == 3:
            found.add(("aidl", fields[2]))
        elif fields[:1] == ["interface"] and len(fields) == 3:
            found.add(("hidl", f"{fields[1]}/{fields[2]}"))
    return found


def manifest_interfaces(manifest):
    """What an .rc must declare for each hal the manifest serves."""
    found = set()
    for (kind, name), hal in manifest.items():
        for instance in instances(hal):
            if kind == "aidl":
                found.add((kind, f"{name}.{instance}"))
            else:
                found.add((kind, f"{name}@{served_version(hal, kind)}::{instance}"))
    return found


def check_fragments(ctx, front):
    manifest = hals(read(ctx, front.manifest, "manifest"))
    matrix = hals(read(ctx, front.matrix, "compatibility-matrix"))
    for (kind, name), served in manifest.items():
        asked = matrix.get((kind, name))
        if asked is None:
            raise GateFailure("vintf", front.matrix, f"names no {kind} HAL {name}, which "
                              f"{front.manifest} serves")
        version = served_version(served, kind)
        ranges = [v.text.strip() for v in asked.findall("version") if v.text]
        if not any(contains(r, version, kind) for r in ranges):
            raise GateFailure("vintf", front.matrix, f"{name}: version "
                              f"{', '.join(ranges) or 'none'} does not hold {version}, the "
                              f"version {front.manifest} serves")
        if instances(asked) != instances(served):
            raise GateFailure("vintf", front.matrix,
                              f"{name}: names {', '.join(sorted(instances(asked))) or 'nothing'}, "
                              f"{front.manifest} serves {', '.join(sorted(instances(served)))}")
    for kind, name in matrix:
        if (kind, name) not in manifest:
            raise GateFailure("vintf", front.matrix, f"names the {kind} HAL {name}, which "
                              f"{front.manifest} does not serve")
    declared, served = rc_interfaces(ctx, front.rc), manifest_interfaces(manifest)
    if declared != served:
        raise GateFailure("vintf", front.rc, "declares "
                          f"{', '.join(sorted(n for _, n in declared)) or 'no interface'}, "
                          f"{front.manifest} serves {', '.join(sorted(n for _, n in served))}")


def make_variables(ctx, choice):
    """PRODUCT_PACKAGES and DEVICE_FRAMEWORK_COMPATIBILITY_MATRIX_FILE after the product's
    makefile (setting the choice, if any) and then the board's, with the checkout as
    VESK_VESKDM_DIR."""
    names = ["PRODUCT_PACKAGES", "DEVICE_FRAMEWORK_COMPATIBILITY_MATRIX_FILE"]
    driver = (f"VESK_VESKDM_DIR := {ctx.repo}\n" +
              (f"{CHOICE} := {choice}\n" if choice else "") +
              f"include {ctx.repo / PRODUCT}\ninclude {ctx.repo / BOARD}\n" +
              "".join(f"$(info {name}=$({name}))\n" for name in names) + "all: ;\n")
    try:
        done = run(["make", "--no-print-directory", "-s", "-f", "-"], input=driver)
    except FileNotFoundError:
        raise GateFailure("vintf", "make", "not installed (GNU make reads the makefiles)") from None
    if done.returncode != 0:
        where = re.search(r"^(\S+?):\d+: \*\*\* (.*?)\.?\s+Stop\.", done.stderr, re.M)
        raise GateFailure("vintf", str(where.group(1)).replace(f"{ctx.repo}/", "") if where
                          else PRODUCT, where.group(2) if where else first_line(done.stderr))
    values = dict(line.split("=", 1) for line in done.stdout.splitlines() if "=" in line)
    return [values.get(name, "").split() for name in names]


def installed(ctx, modules, packages, key):
    """The repository's files that the packages' modules install through `key` (vintf_fragments,
    init_rc; a ":name" is a filegroup's files), and every such file any module names."""
    def files(module):
        found = set()
        for name in module.props.get(key, []):
            group = modules.get(name[1:]) if name.startswith(":") else None
            owner, paths = (group, group.props.get("srcs", [])) if group else (module, [name])
            found |= {str(Path(owner.folder) / path) for path in paths}
        return found
    return ({f for p in packages if p in modules for f in files(modules[p])},
            {f for m in modules.values() for f in files(m)})


def check_choice(ctx, modules, choice):
    chosen = next(f for f in FRONT_ENDS if f.name == (choice or DEFAULT))
    shown = f"{CHOICE}={choice}" if choice else f"{CHOICE} unset"
    packages, matrices = make_variables(ctx, choice)
    wanted = str(ctx.repo / chosen.matrix)
    if [str(m) for m in matrices] != [wanted]:
        named = ", ".join(m.replace(f"{ctx.repo}/", "") for m in matrices) or "no matrix"
        raise GateFailure("vintf", BOARD, f"with {shown} it adds {named}, not {chosen.matrix}")
    for key, attribute in (("vintf_fragments", "manifest"), ("init_rc", "rc")):
        present, named = installed(ctx, modules, packages, key)
        for front in FRONT_ENDS:
            path = getattr(front, attribute)
            if front is chosen and path in named and path not in present:
                raise GateFailure("vintf", PRODUCT, f"with {shown} no package installs {path}")
            if front is not chosen and path in present:
                raise GateFailure("vintf", PRODUCT, f"with {shown} a package installs {path}, "
                                  f"the {front.name} front end's: one front end per board")
        if getattr(chosen, attribute) not in named:
            ctx.notes.append(f"vintf: no module of the Android.bp files installs "
                             f"{getattr(chosen, attribute)} ({key})")


def check_vintf(ctx):
    for front in FRONT_ENDS:
        check_fragments(ctx, front)
    modules = read_modules(ctx.repo, "vintf")
    for choice in (None, "hidl", "aidl"):
        check_choice(ctx, modules, choice)
