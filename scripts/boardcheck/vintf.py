"""The vintf gate: the framework compatibility matrix fragment asks for exactly the HAL that the
service's device manifest fragment serves (name, format, version, interface and instance), so
that the board's VINTF checks find the served HAL in a framework matrix and the matrix's HAL
served.
"""
import re
import xml.etree.ElementTree as ElementTree

from .common import GateFailure

MANIFEST = "default/vesk.hardware.veskdevicemanager@1.0-service.xml"
MATRIX = "default/framework_compatibility_matrix.xml"

VERSION = re.compile(r"(\d+)\.(\d+)")
VERSION_RANGE = re.compile(r"(\d+)\.(\d+)(?:-(\d+))?")


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
    """The hal's interface/instance names, as "IFoo/default"."""
    return {f"{text(interface, 'name')}/{instance.text.strip()}"
            for interface in hal.findall("interface")
            for instance in interface.findall("instance") if instance.text}


def hals(root):
    return {(hal.get("format", "hidl"), text(hal, "name")): hal for hal in root.findall("hal")}


def contains(version_range, version):
    """Whether a matrix range ("1.0", "1.0-2") holds a manifest version ("1.1")."""
    wanted = VERSION_RANGE.fullmatch(version_range)
    served = VERSION.fullmatch(version)
    if not wanted or not served:
        return False
    major, low, high = wanted.group(1), int(wanted.group(2)), wanted.group(3)
    high = low if high is None else int(high)
    return served.group(1) == major and low <= int(served.group(2)) <= high


def check_vintf(ctx):
    manifest = hals(read(ctx, MANIFEST, "manifest"))
    matrix = hals(read(ctx, MATRIX, "compatibility-matrix"))
    for (kind, name), served in manifest.items():
        asked = matrix.get((kind, name))
        if asked is None:
            raise GateFailure("vintf", MATRIX, f"names no {kind} HAL {name}, which {MANIFEST} "
                              "serves")
        version = text(served, "version")
        ranges = [v.text.strip() for v in asked.findall("version") if v.text]
        if not any(contains(r, version) for r in ranges):
            raise GateFailure("vintf", MATRIX, f"{name}: version {', '.join(ranges) or 'none'} "
                              f"does not hold {version}, the version {MANIFEST} serves")
        if instances(asked) != instances(served):
            raise GateFailure("vintf", MATRIX,
                              f"{name}: names {', '.join(sorted(instances(asked))) or 'nothing'}, "
                              f"{MANIFEST} serves {', '.join(sorted(instances(served)))}")
    for kind, name in matrix:
        if (kind, name) not in manifest:
            raise GateFailure("vintf", MATRIX, f"names the {kind} HAL {name}, which {MANIFEST} "
                              "does not serve")
