"""The properties gate: the project's vendor property_contexts through the platform's namespace
check, run as the board build runs it.

For a vendor property_contexts of a board shipping with API 29 or later, Soong runs the tree's
tests/check_prop_prefix.py with the prefixes of checkVendorPropertyNamespace
(build/soong/selinux_contexts.go): the property prefixes always, the context prefixes from API 30
on, --strict unless the board sets BUILD_BROKEN_VENDOR_PROPERTY_NAMESPACE. The gate reads the
prefixes from that file, so it follows the tree it is given, and runs the script twice:

- as Soong does for this board (first API level 33): a violation fails the gate, or, when the
  board fragment sets the flag, is reported under the gate's line as Soong prints it;
- with the context prefixes alone and --strict, whatever the flag: the properties' names are the
  board's contract, but their contexts are the project's to name and always start with vendor_.
"""
import re
import sys

from .common import GateFailure, run
from .policy import VENDOR_FOLDERS, shown

TESTS = "system/sepolicy/tests"
CHECK = f"{TESTS}/check_prop_prefix.py"
SOONG = "system/sepolicy/build/soong/selinux_contexts.go"
TREE_FOLDERS = [TESTS, "system/sepolicy/build/soong"]

BOARD_CONFIG = "BoardConfigVeskdevicemanager.mk"
FLAG = "BUILD_BROKEN_VENDOR_PROPERTY_NAMESPACE"
# The board's first API level (Android 13), and the levels at which Soong's rules change.
SHIPPING_API_LEVEL = 33
API_R = 30


class Prefixes:
    """checkVendorPropertyNamespace's prefix lists, read from selinux_contexts.go."""

    def __init__(self, properties, up_to_r, contexts):
        self.properties = properties  # always allowed
        self.up_to_r = up_to_r  # also allowed for boards shipping with API 30 or earlier
        self.contexts = contexts  # required of contexts from API 30 on

    def arguments(self, api_level):
        """Soong's arguments of check_prop_prefix.py for a board shipping with api_level."""
        properties = self.properties + (self.up_to_r if api_level <= API_R else [])
        contexts = self.contexts if api_level >= API_R else []
        return ([f for p in properties for f in ("--allowed-property-prefix", p)] +
                [f for c in contexts for f in ("--allowed-context-prefix", c)])


def strings(text):
    return re.findall(r'"([^"]*)"', text)


def soong_prefixes(ctx):
    text = (ctx.tree / SOONG).read_text()
    function = re.search(r"\) checkVendorPropertyNamespace\(.*?\n}\n", text, re.S)
    body = function.group(0) if function else ""
    properties = re.search(r"allowedPropertyPrefixes := \[\]string\{(.*?)\}", body, re.S)
    up_to_r = re.search(r"LessThanOrEqualTo\(ApiLevelR\)\s*\{\s*allowedPropertyPrefixes = "
                        r"append\(allowedPropertyPrefixes,(.*?)\)", body, re.S)
    contexts = re.search(r"GreaterThanOrEqualTo\(ApiLevelR\)\s*\{.*?allowedContextPrefixes = "
                         r"\[\]string\{(.*?)\}", body, re.S)
    if not (properties and up_to_r and contexts):
        raise GateFailure("properties", SOONG, "no prefix lists in checkVendorPropertyNamespace, "
                          "which the gate reads")
    return Prefixes(strings(properties.group(1)), strings(up_to_r.group(1)),
                    strings(contexts.group(1)))


def namespace_check_relaxed(ctx):
    """Whether the board fragment sets the flag (Soong takes make's value "true")."""
    setting = re.compile(rf"^\s*{FLAG}\s*(?::=|\?=|=)\s*(\S*)\s*$")
    value = None
    for line in (ctx.repo / BOARD_CONFIG).read_text().splitlines():
        match = setting.match(line.split("#", 1)[0])
        if match:
            value = match.group(1)
    return value == "true"


def property_contexts(ctx):
    return [ctx.repo / folder / "property_contexts" for folder in VENDOR_FOLDERS
            if (ctx.repo / folder / "property_contexts").is_file()]


def check_prop_prefix(ctx, path, arguments):
    return run([sys.executable, str(ctx.tree / CHECK), "--property-contexts", str(path),
                *arguments])


def violations(output):
    """The entries the script names, between its "N violations found:" line and its rule."""
    found = re.search(r"^\d+ violations found:\n(.*?)\n\*+$", output, re.M | re.S)
    return found.group(1).splitlines() if found else []


def located(path, entry):
    number = next((n for n, text in enumerate(path.read_text().splitlines(), 1)
                   if text == entry), None)
    shown_entry = " ".join(entry.split())
    return f"line {number}: {shown_entry}" if number else shown_entry


def failure(ctx, path, done, what):
    named = violations(done.stdout)
    if not named:  # the script itself failed: a malformed entry, a missing file
        lines = (done.stderr or done.stdout).strip().splitlines()
        return GateFailure("properties", shown(ctx, path), lines[-1] if lines else "(no output)")
    more = f"; {len(named) - 1} more" if len(named) > 1 else ""
    return GateFailure("properties", shown(ctx, path),
                       f"{located(path, named[0])}: {what}{more}")


def check_properties(ctx):
    prefixes = soong_prefixes(ctx)
    relaxed = namespace_check_relaxed(ctx)
    context_rule = [f for c in prefixes.contexts for f in ("--allowed-context-prefix", c)]
    for path in property_contexts(ctx):
        done = check_prop_prefix(ctx, path, context_rule + ["--strict"])
        if done.returncode != 0:
            raise failure(ctx, path, done, f"the context does not start with "
                          f"{' or '.join(prefixes.contexts)}")
        soong = prefixes.arguments(SHIPPING_API_LEVEL) + ([] if relaxed else ["--strict"])
        done = check_prop_prefix(ctx, path, soong)
        if done.returncode != 0:
            raise failure(ctx, path, done, f"not in the vendor property namespace ({FLAG} is "
                          f"not set in {BOARD_CONFIG})")
        for entry in violations(done.stdout):
            ctx.notes.append(f"properties: {shown(ctx, path)}: {located(path, entry)}: outside "
                             f"the vendor property namespace, reported only ({FLAG} := true "
                             f"in {BOARD_CONFIG})")
