"""The headers gate: every source of every device module compiles as the board compiles it.

The modules, their sources, cflags and include folders are read from the project's Android.bp
files. Each source is compiled (-c: code generation finds what a syntax check does not) with
clang++ and libc++ against the tree's libhidl, libhwbinder and libfmq headers and hidl-gen's
C++ headers of the tree's own android.hidl .hal files. Only the folders a module's Android.bp
gives it are on its include path, so host-only code (host/, tools/, tests/support) is out of
reach of device sources.

The stable-AIDL side compiles the same way: the NDK code of each frozen version of each
aidl_interface, made by the tree's aidl (aidl_ndk.py; named by its path in the scratch folder),
with the flags aidl_interface gives it, in the variant (vendor or core) of the modules that link
it (vendor when none does); and every module that links NAME-VN-ndk gets its headers and what
the platform's libbinder_ndk exports (the tree's include_ndk, include_platform, include_cpp).
"""
import time
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from pathlib import Path

from . import aidl_ndk, aidl_tool
from .blueprints import Module, read_modules, read_tree_modules
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

# The platform's libraries whose headers are the tree's: what each exports is read from its
# Android.bp there (export_include_dirs, and what it re-exports of the same file's modules).
PLATFORM_LIBRARIES = {
    "libbinder_ndk": "frameworks/native/libs/binder/ndk",
    "libbase": "system/libbase",
}
# libbinder_ndk re-exports jni_headers, whose Android.bp (libnativehelper's) the tree here lacks:
# the folder it exports.
PLATFORM_HEADER_FOLDERS = {"jni_headers": "libnativehelper/include_jni"}
TREE_FOLDERS = (TREE_INCLUDES + [HIDL_ROOT, BIONIC] + list(PLATFORM_LIBRARIES.values()) +
                list(PLATFORM_HEADER_FOLDERS.values()) + aidl_tool.TREE_FOLDERS)

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
# Soong's defines for a module's vendor variant.
VENDOR_DEFINES = ["-D__ANDROID_VNDK__", "-D__ANDROID_VENDOR__"]
# On glibc only, binder_status.h defines an __assert of its own that breaks a later <assert.h>
# (bionic skips that block): units that see the NDK's headers take <assert.h> first.
NDK_HOST_INCLUDE = ["-include", "assert.h"]
NDK_MARK = "include_ndk"  # an include folder that tells a unit sees the NDK's headers
JOBS = 2


@dataclass
class Unit:
    source: str  # repository-relative; a generated source's path in the scratch folder
    path: Path  # the file, for its size
    command: list


def variant(module):
    return "vendor" if module.props.get("vendor") or module.props.get("soc_specific") else "core"


def platform_modules(ctx):
    """The tree's modules of the platform libraries the gate follows, by name."""
    modules = {}
    for folder in PLATFORM_LIBRARIES.values():
        for name, module in read_tree_modules(ctx.tree / folder, "headers").items():
            modules.setdefault(name, module)
    for name, folder in PLATFORM_HEADER_FOLDERS.items():
        path = ctx.tree / folder
        modules[name] = Module(name, "cc_library_headers", str(path.parent), str(path),
                               {"export_include_dirs": [path.name]})
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
        self.platform = platform_modules(ctx)
        self.ndk = aidl_ndk.ndk_libraries(ctx, modules, "headers")
        self.hidl_out = hidl_out
        self.genrule_out = genrule_out
        self.ndk_used = {}  # NDK library name -> the variants that modules link

    def exported(self, name, user, seen=None):
        seen = set() if seen is None else seen
        if name in seen:
            return []
        seen.add(name)
        if name in self.ndk:
            self.ndk_used.setdefault(name, set()).add(variant(user))
            include, _ = aidl_ndk.generate(self.ctx, self.ndk[name], variant(user), "headers")
            return [str(include)] + [f for lib in aidl_ndk.EXPORTS
                                     for f in self.exported(lib, user, seen)]
        interface = aidl_ndk.unknown_version(name, self.ndk, self.modules)
        if interface is not None:
            raise GateFailure("headers", user.bp, f"{user.name}: {name} is no frozen version's "
                              f"NDK library of {interface.name}")
        module = self.modules.get(name) or self.platform.get(name)
        if module is None:
            # A platform library whose headers are among the common folders, or the board's
            # libvesksdk, which exports none: its headers are libvesksdk_headers.
            return []
        if module.kind == "hidl_interface":
            return [str(self.hidl_out)]
        folders = [str(self.ctx.repo / module.folder / f)
                   for f in module.props.get("export_include_dirs", [])]
        for key in EXPORT_LISTS:
            for lib in module.props.get(key, []):
                folders += self.exported(lib, user, seen)
        return folders

    def of(self, module):
        base = self.ctx.repo / module.folder
        folders = [str(base / f) for f in module.props.get("local_include_dirs", [])]
        folders += [str(base / f) for f in module.props.get("export_include_dirs", [])]
        folders.append(str(base))
        for key in LIBRARY_LISTS:
            for lib in module.props.get(key, []):
                folders += self.exported(lib, module)
        for name in module.props.get("generated_headers", []):
            genrule = self.modules.get(name)
            if genrule is None or genrule.kind != "genrule":
                raise GateFailure("headers", module.bp,
                                  f"{module.name}: generated_headers names no genrule {name}")
            out = self.genrule_out / name
            generate_genrule(self.ctx, genrule, out)
            folders.append(str(out))
        return list(dict.fromkeys(folders))


def common_includes(ctx):
    common = [flag for folder in TREE_INCLUDES for flag in ("-isystem", str(ctx.tree / folder))]
    for folder in PLATFORM_INCLUDES:
        common += ["-isystem", folder]
    return common + ["-isystem", str(ctx.tree / BIONIC)]


def compile_unit(name, path: Path, argument, flags, folders, common, objects: Path):
    """A source's compile; `argument` names it to the compiler, which names it so in its errors
    (a repository source by its path in the repository, where the compile runs)."""
    obj = objects / (name.replace("/", "_") + ".o")
    if any(Path(folder).name == NDK_MARK for folder in folders):
        flags = NDK_HOST_INCLUDE + flags
    return Unit(name, path, COMPILER + flags + ["-c", "-o", str(obj)] +
                [f"-I{folder}" for folder in folders] + common + [argument])


def compile_units(ctx, modules, hidl_out: Path, objects: Path):
    """One compile command per source of every cc module, then of the NDK libraries' code."""
    common = common_includes(ctx)
    folders = IncludeFolders(ctx, modules, hidl_out, ctx.work / "genrule")
    units = []
    for module in modules.values():
        sources = module.props.get("srcs", [])
        if module.kind not in CC_KINDS or not sources:
            continue
        flags = defaults_cflags(module, modules) + module.props.get("cflags", []) + \
            module.props.get("cppflags", [])
        if variant(module) == "vendor":
            flags += VENDOR_DEFINES
        includes = folders.of(module)
        for source in sources:
            path = str(Path(module.folder) / source)
            units.append(compile_unit(path, ctx.repo / path, path, flags, includes, common,
                                      objects))
    for name, library in folders.ndk.items():
        for kind in sorted(folders.ndk_used.get(name, {"vendor"})):
            include, sources = aidl_ndk.generate(ctx, library, kind, "headers")
            flags = aidl_ndk.CFLAGS + (VENDOR_DEFINES if kind == "vendor" else [])
            includes = [str(include)] + [f for lib in aidl_ndk.EXPORTS
                                         for f in folders.exported(lib, None)]
            units += [compile_unit(aidl_ndk.source_name(ctx, source), source, str(source),
                                   flags, includes, common, objects) for source in sources]
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
                          "libc++, cmake and ninja for the tree's aidl)") from None


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
    order = sorted(units, key=lambda unit: -size(unit.path))
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
