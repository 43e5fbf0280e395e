"""The aidl-api gate: every aidl_interface of the Android.bp files checked as its rules check it in
the board's build (the tree's system/tools/aidl/build/aidl_api.go), with the tree's own aidl and
hash_gen.sh, in this order:

- each frozen version's .hash ends with what hash_gen.sh makes of the version's files (with the
  version before's number, "latest-version" for the first): a frozen file is never edited;
- each frozen version is compatible with the one before (aidl --checkapi=compatible);
- the sources, dumped with aidl --dumpapi --structured, equal aidl_api/NAME/current
  (--checkapi=equal): a change to them is a change of the API, made in the open;
- current equals the last frozen version (--checkapi=equal). aidl_interface only records such a
  difference as development in progress; here a change ships as a new frozen version, as the
  HIDL package's changes ship with a new hash in current.txt.

The version folders are given to aidl as absolute paths (this snapshot reads no types from a
folder named with a leading ./).
"""
import re
import time
from pathlib import Path

from . import aidl_tool
from .aidl_interfaces import interfaces
from .common import GateFailure, first_line, run
from .policy import shown

GATE = "aidl-api"
HASH_GEN = "system/tools/aidl/build/hash_gen.sh"
TREE_FOLDERS = aidl_tool.TREE_FOLDERS


def version_for_hash(version):
    """hash_gen.sh's second argument for a version (versionForHashGen of aidl_api.go)."""
    return str(int(version) - 1) if int(version) > 1 else "latest-version"


def check_hash(ctx, interface, version):
    folder = interface.folder(version)
    recorded = folder / ".hash"
    if not recorded.is_file():
        raise GateFailure(GATE, shown(ctx, folder), f"frozen version {version} has no .hash")
    made = ctx.work / GATE / interface.name / f"{version}.hash"
    made.parent.mkdir(parents=True, exist_ok=True)
    made.unlink(missing_ok=True)
    done = run(["bash", str(ctx.tree / HASH_GEN), str(folder), version_for_hash(version),
                str(made)])
    if done.returncode != 0:
        raise GateFailure(GATE, HASH_GEN, first_line(done.stderr + done.stdout))
    lines = recorded.read_text().split()
    expected = made.read_text().strip()
    if not lines or lines[-1] != expected:
        last = lines[-1] if lines else "nothing"
        raise GateFailure(GATE, shown(ctx, recorded),
                          f"version {version}'s files hash to {expected} (hash_gen.sh), its "
                          f".hash ends with {last}: a frozen version is never edited")


def check_api(ctx, interface, level, old: Path, new: Path, what, where=None):
    """aidl --checkapi=LEVEL old new; a failure names the file aidl names (placed by `where`, a
    function from aidl's path to the file to show) and the first difference."""
    done = run([str(ctx.aidl), f"--checkapi={level}", *interface.stability, str(old), str(new)])
    if done.returncode == 0:
        return
    output = done.stderr + done.stdout
    error = re.search(r"^ERROR: (.+?):[\d.:-]+: (.*)$", output, re.M)
    if not error:
        raise GateFailure(GATE, shown(ctx, new), f"{what}: {first_line(output)}")
    path, message = Path(error.group(1)), error.group(2)
    if message.startswith("Expected equality"):
        diff = output.split("\nWith diff:\n", 1)[-1].splitlines()
        change = next((line for line in diff if line[:1] in "+-" and line.strip() not in "+-"),
                      None)
        message = f"{change[0]} {change[1:].strip()}" if change else message
    raise GateFailure(GATE, shown(ctx, where(path) if where else path), f"{what}: {message}")


def dump_sources(ctx, interface) -> Path:
    out = ctx.work / GATE / interface.name / "dump"
    done = run([str(ctx.aidl), "--dumpapi", "--structured", *interface.stability,
                "-I", str(interface.root), "--out", str(out),
                *[str(source) for source in interface.sources]])
    if done.returncode != 0:
        output = done.stderr + done.stdout
        error = re.search(r"^ERROR: (.+?):[\d.:-]+: (.*)$", output, re.M)
        file, message = ((shown(ctx, error.group(1)), error.group(2)) if error
                         else (interface.bp, first_line(output)))
        raise GateFailure(GATE, file, f"aidl --dumpapi: {message}")
    return out


def check_interface(ctx, interface):
    for version in interface.versions:
        if not interface.folder(version).is_dir():
            raise GateFailure(GATE, interface.bp, f"{interface.name}: frozen version {version} "
                              f"has no folder {shown(ctx, interface.folder(version))}")
        check_hash(ctx, interface, version)
    for before, version in zip(interface.versions, interface.versions[1:]):
        check_api(ctx, interface, "compatible", interface.folder(before),
                  interface.folder(version), f"not compatible with version {before}")
    current = interface.folder("current")
    if not current.is_dir():
        raise GateFailure(GATE, interface.bp, f"{interface.name}: no {shown(ctx, current)}")
    dump = dump_sources(ctx, interface)
    # aidl names the dump's copy of a source that changed: shown as the source itself.
    check_api(ctx, interface, "equal", current, dump,
              f"differs from {shown(ctx, current)}",
              where=lambda path: interface.root / path.relative_to(dump)
              if path.is_relative_to(dump) else path)
    if interface.versions:
        last = interface.versions[-1]
        check_api(ctx, interface, "equal", interface.folder(last), current,
                  f"differs from frozen version {last}")


def check_aidl_api(ctx):
    started = time.monotonic()
    aidl_tool.aidl(ctx, GATE)
    built = time.monotonic() - started
    found = interfaces(ctx, GATE)
    for interface in found:
        check_interface(ctx, interface)
    ctx.notes.append(f"aidl-api: {len(found)} interface(s), "
                     f"{sum(len(i.versions) for i in found)} frozen version(s) checked in "
                     f"{time.monotonic() - started - built:.1f} s (the tree's aidl built or "
                     f"found up to date in {built:.1f} s)")
