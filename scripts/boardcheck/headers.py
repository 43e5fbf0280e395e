"""The headers gate: every source of every device module compiles as the board compiles it.

The modules, their sources, cflags and include folders are read from the project's Android.bp
files. Each source is compiled (-c: code generation finds what a syntax check does not) with
clang++ and libc++ against the tree's libhidl, libhwbinder and libfmq headers and hidl-gen's
C++ headers of the tree's own android.hidl .hal files. Only the folders a module's Android.bp
gives it are on its include path, so host-only code (host/, tools/, tests/support) is out of
reach of device sources.
"""
import os
import time
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from pathlib import Path

from check_bp_parity import blueprint_modules  # scripts/ is on the path of the driver and tests

from .common import GateFailure, first_line, run

# The tree's headers the board compiles against, as system headers (-isystem).
TREE_INCLUDES = [
    "system/libhidl/base/include",
    "system/libhidl/transport/include",
    "system/libhwbinder/include",
    "system/libfmq/include",  # hidl/MQDescriptor.h includes fmq/
    "system/libfmq/base",
]
# Where hidl-gen finds android.hidl.base@1.0 and android.hidl.manager@1.0.
HIDL_ROOT = "system/libhidl/transport"
# What bionic declares and this host's C library lacks (sys/system_properties.h, included by
# cutils/properties.h).
BIONIC = "bionic-declarations"
TREE_FOLDERS = TREE_INCLUDES + [HIDL_ROOT, BIONIC]

# libutils, liblog and libcutils: the tree here has no copy, Debian's packages carry their
# headers. The host's own C library and its folders (zlib, GoogleTest for the VTS module) are the
# compiler's defaults.
PLATFORM_INCLUDES = ["/usr/include/android"]

# The platform's cc_defaults the modules name, with the warning flags they add (the VTS
# defaults take hidl_defaults'; the GoogleTest headers they bring are the host's).
PLATFORM_DEFAULTS = {
    "hidl_defaults": ["-Wall", "-Werror"],
    "VtsHalTargetTestDefaults": ["-Wall", "-Werror"],
}

# The board's optimisation: a few diagnostics come from code generation.
COMPILER = ["clang++", "-stdlib=libc++", "-std=c++17", "-O2"]
CC_KINDS = {"cc_library", "cc_library_shared", "cc_library_static", "cc_binary", "cc_test"}
LIBRARY_LISTS = ["header_libs", "static_libs", "whole_static_libs", "shared_libs"]
EXPORT_LISTS = ["export_header_lib_headers", "export_static_lib_headers",
                "export_shared_lib_headers"]
JOBS = 2


@dataclass
class Module:
    name: str
    kind: str
    folder: str  # repository-relative, "." for the top
    bp: str  # its Android.bp, repository-relative
    props: dict


@dataclass
class Unit:
    source: str  # repository-relative
    command: list


def read_modules(repo: Path):
    """Every module of every Android.bp below repo (build trees left out), by name."""
    modules = {}
    for folder, subfolders, files in os.walk(repo):
        here = Path(folder).relative_to(repo)
        if here == Path("."):
            subfolders[:] = [s for s in subfolders
                             if not s.startswith(("build", ".")) and s != "out"]
        subfolders.sort()
        if "Android.bp" not in files:
            continue
        bp = here / "Android.bp"
        try:
            parsed = blueprint_modules((repo / bp).read_text())
        except (ValueError, IndexError) as error:
            raise GateFailure("headers", str(bp), f"cannot read it: {error}") from error
        for kind, props in parsed:
            modules[props["name"]] = Module(props["name"], kind, str(here), str(bp), props)
    return modules


def generate_hidl_headers(ctx, modules, out: Path):
    """hidl-gen's C++ headers of the tree's android.hidl packages and of the project's."""
    roots = ["-r", f"android.hidl:{ctx.tree / HIDL_ROOT}"]
    for module in modules.values():
        if module.kind == "hidl_package_root":
            roots += ["-r", f"{module.name}:{ctx.repo / module.folder}"]
    packages = [("android.hidl.base@1.0", HIDL_ROOT), ("android.hidl.manager@1.0", HIDL_ROOT)]
    packages += [(m.name, m.bp) for m in modules.values() if m.kind == "hidl_interface"]
    for package, origin in packages:
        result = run(["hidl-gen", "-o", str(out), "-L", "c++-headers", *roots, package])
        if result.returncode != 0:
            raise GateFailure("headers", origin,
                              f"hidl-gen {package}: {first_line(result.stderr + result.stdout)}")


def generate_genrule(ctx, module, out: Path):
    """A genrule's output, made by the board build's own command."""
    runner = Path(__file__).resolve().parent.parent / "run_genrule.py"
    result = run(["python3", str(runner), str(ctx.repo / module.bp), module.name, str(out)])
    if result.returncode != 0:
        raise GateFailure("headers", module.bp, first_line(result.stderr + result.stdout))


def defaults_cflags(module, modules):
    cflags = []
    for name in module.props.get("defaults", []):
        if name in PLATFORM_DEFAULTS:
            cflags += PLATFORM_DEFAULTS[name]
        elif name in modules and modules[name].kind == "cc_defaults":
            cflags += modules[name].props.get("cflags", [])
        else:
            raise GateFailure("headers", module.bp,
                              f"{module.name}: unknown defaults {name}, whose flags the gate "
                              "does not know")
    return cflags


class IncludeFolders:
    """The include folders of a module, as Soong gives them: its own folder, its local and
    exported folders, and what each library it uses exports (and re-exports)."""

    def __init__(self, ctx, modules, hidl_out: Path, genrule_out: Path):
        self.ctx = ctx
        self.modules = modules
        self.hidl_out = hidl_out
        self.genrule_out = genrule_out

    def exported(self, name, seen=None):
        seen = set() if seen is None else seen
        if name in seen:
            return []
        seen.add(name)
        module = self.modules.get(name)
        if module is None:
            # A platform library, whose headers are among the common folders, or the board's
            # libvesksdk, which exports none: its headers are libvesksdk_headers.
            return []
        if module.kind == "hidl_interface":
            return [str(self.hidl_out)]
        folders = [str(self.ctx.repo / module.folder / f)
                   for f in module.props.get("export_include_dirs", [])]
        for key in EXPORT_LISTS:
            for lib in module.props.get(key, []):
                folders += self.exported(lib, seen)
        return folders

    def of(self, module):
        base = self.ctx.repo / module.folder
        folders = [str(base / f) for f in module.props.get("local_include_dirs", [])]
        folders += [str(base / f) for f in module.props.get("export_include_dirs", [])]
        folders.append(str(base))
        for key in LIBRARY_LISTS:
            for lib in module.props.get(key, []):
                folders += self.exported(lib)
        for name in module.props.get("generated_headers", []):
            genrule = self.modules.get(name)
            if genrule is None or genrule.kind != "genrule":
                raise GateFailure("headers", module.bp,
                                  f"{module.name}: generated_headers names no genrule {name}")
            out = self.genrule_out / name
            generate_genrule(self.ctx, genrule, out)
            folders.append(str(out))
        return list(dict.fromkeys(folders))


def compile_units(ctx, modules, hidl_out: Path, objects: Path):
    """One compile command per source of every cc module."""
    common = [flag for folder in TREE_INCLUDES for flag in ("-isystem", str(ctx.tree / folder))]
    for folder in PLATFORM_INCLUDES:
        common += ["-isystem", folder]
    common += ["-isystem", str(ctx.tree / BIONIC)]
    folders = IncludeFolders(ctx, modules, hidl_out, ctx.work / "genrule")
    units = []
    for module in modules.values():
        sources = module.props.get("srcs", [])
        if module.kind not in CC_KINDS or not sources:
            continue
        flags = defaults_cflags(module, modules) + module.props.get("cflags", []) + \
            module.props.get("cppflags", [])
        if module.props.get("vendor") or module.props.get("soc_specific"):
            flags += ["-D__ANDROID_VNDK__", "-D__ANDROID_VENDOR__"]  # as Soong's vendor variant
        includes = [f"-I{folder}" for folder in folders.of(module)]
        for source in sources:
            path = str(Path(module.folder) / source)
            obj = objects / (path.replace("/", "_") + ".o")
            units.append(Unit(path, COMPILER + flags + ["-c", "-o", str(obj)] + includes +
                              common + [path]))
    return units


def size(path: Path) -> int:
    """A source's size; 0 for a missing one, whose compile says it is missing."""
    return path.stat().st_size if path.is_file() else 0


def first_error(text: str) -> str:
    for line in text.splitlines():
        if " error: " in line or line.startswith("error: "):
            return line.strip()
    return first_line(text)


def check_headers(ctx, sources=None):
    """Compiles every device source (or only those named in `sources`, repository paths)."""
    try:
        compile_sources(ctx, sources)
    except FileNotFoundError as error:
        raise GateFailure("headers", error.filename, "not installed (hidl-gen, clang++ with "
                          "libc++)") from None


def compile_sources(ctx, sources):
    modules = read_modules(ctx.repo)
    hidl_out = ctx.work / "hidl-headers"
    generate_hidl_headers(ctx, modules, hidl_out)
    objects = ctx.work / "objects"
    objects.mkdir(parents=True, exist_ok=True)
    units = compile_units(ctx, modules, hidl_out, objects)
    if sources is not None:
        wanted = {str(Path(s)) for s in sources}
        unknown = wanted - {unit.source for unit in units}
        if unknown:
            raise ValueError(f"not a source of a device module: {sorted(unknown)}")
        units = [unit for unit in units if unit.source in wanted]

    # The largest sources first, so that the longest compile does not start last.
    order = sorted(units, key=lambda unit: -size(ctx.repo / unit.source))
    start = time.monotonic()
    with ThreadPoolExecutor(max_workers=JOBS) as pool:
        results = dict(zip((unit.source for unit in order),
                           pool.map(lambda unit: run(unit.command, cwd=ctx.repo), order)))
    for unit in units:
        result = results[unit.source]
        if result.returncode != 0:
            raise GateFailure("headers", unit.source, first_error(result.stderr))
    ctx.notes.append(f"headers: {len(units)} sources compiled in "
                     f"{time.monotonic() - start:.1f} s ({JOBS} jobs)")
