"""The NDK backend of each frozen version of the project's aidl_interface modules, the library the
board's build calls NAME-VN-ndk, made by the tree's aidl as aidl_interface makes it
(aidl_gen_rule.go): --lang=ndk --structured --stability S --version N --hash H (the last line of
the version's .hash) --min_sdk_version current, from the frozen version's folder; and the flags it
is compiled with (aidl_interface_backends.go): -Wextra -Wall -Werror -Wextra-semi, and
-DBINDER_STABILITY_SUPPORT for the platform and vendor variants (the only ones a board's native
code links).
"""
from dataclasses import dataclass
from pathlib import Path

from . import aidl_tool
from .aidl_interfaces import Interface, interfaces
from .common import GateFailure, first_line, run

CFLAGS = ["-Wextra", "-Wall", "-Werror", "-Wextra-semi", "-DBINDER_STABILITY_SUPPORT"]
# The library's headers include libbinder_ndk's, which it exports to its users.
EXPORTS = ["libbinder_ndk"]


@dataclass
class NdkLibrary:
    name: str
    interface: Interface
    version: str


def ndk_libraries(ctx, modules, gate):
    """{NAME-VN-ndk: NdkLibrary} of every frozen version of every interface with the backend."""
    return {f"{interface.name}-V{version}-ndk": NdkLibrary(f"{interface.name}-V{version}-ndk",
                                                           interface, version)
            for interface in interfaces(ctx, gate, modules) if interface.ndk
            for version in interface.versions}


def unknown_version(name, libraries, modules):
    """The interface whose NDK library `name` would be, when it names no frozen version of it."""
    for module in modules.values():
        if (module.kind == "aidl_interface" and name.startswith(f"{module.name}-V")
                and name.endswith("-ndk") and name not in libraries):
            return module
    return None


def generate(ctx, library, variant, gate):
    """(include folder, sources) of the library's code for one variant ("vendor", "core")."""
    out = ctx.work / "aidl-ndk" / library.name / variant
    if (out / "include").is_dir():
        return out / "include", sorted((out / "src").rglob("*.cpp"))
    folder = library.interface.folder(library.version)
    hashes = (folder / ".hash").read_text().split() if (folder / ".hash").is_file() else []
    if not hashes:
        raise GateFailure(gate, library.interface.bp, f"{library.name}: version "
                          f"{library.version} has no .hash")
    done = run([str(aidl_tool.aidl(ctx, gate)), "--lang=ndk", "--structured",
                *library.interface.stability, "--version", library.version, "--hash",
                hashes[-1], "--min_sdk_version", "current", "-I", str(folder),
                "-h", str(out / "include"), "-o", str(out / "src"),
                *[str(path) for path in sorted(folder.rglob("*.aidl"))]])
    if done.returncode != 0:
        raise GateFailure(gate, library.interface.bp, f"{library.name}: aidl --lang=ndk: "
                          f"{first_line(done.stderr + done.stdout)}")
    return out / "include", sorted((out / "src").rglob("*.cpp"))


def source_name(ctx, path: Path) -> str:
    """How the gate names a generated source: its path in the check's scratch folder."""
    return str(path.relative_to(ctx.work))
