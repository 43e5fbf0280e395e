"""The tree's aidl, built by the project's own build of the platform's code: android/, the CMake
project that the host build runs as an external project (cmake/AndroidTree.cmake), configured as
that build configures it and into the folder it uses, so that the two share one build of it.

The folder is $VESK_PLATFORM_TOOLS_DIR/host (scripts/test.sh points every preset there, and runs
the board check first), else build/android-tree/host of this checkout. The first build takes a
few minutes of CPU; later ones find it up to date.
"""
import os
import re
import shutil
from pathlib import Path

from .common import GateFailure, first_line, run

CHECKOUT = Path(__file__).resolve().parents[2]  # android/ comes from here, not from a copy
PROJECT = CHECKOUT / "android"
# What android/ reads of the tree (cmake/AndroidTree.cmake checks the same folders).
TREE_FOLDERS = ["system/tools/aidl", "system/libbase", "system/logging/liblog",
                "system/core/libcutils", "system/core/libutils", "system/core/libsystem/include",
                "system/core/libprocessgroup/include", "frameworks/native/libs/binder",
                "frameworks/native/libs/binder/ndk", "bionic/libc/kernel/uapi",
                "libnativehelper/include_jni"]


def tools_folder() -> Path:
    shared = os.environ.get("VESK_PLATFORM_TOOLS_DIR")
    return Path(shared) / "host" if shared else CHECKOUT / "build" / "android-tree" / "host"


def configured_tree(folder: Path):
    """The tree a build folder was configured with, as it was named; None for a new folder."""
    cache = folder / "CMakeCache.txt"
    if not cache.is_file():
        return None
    found = re.search(r"^VESK_ANDROID_TREE:\w+=(.*)$", cache.read_text(errors="replace"), re.M)
    return found.group(1) if found else None


def aidl(ctx, gate) -> Path:
    """The path of the tree's aidl, built (or brought up to date) once per run."""
    if ctx.aidl is not None:
        return ctx.aidl
    folder = tools_folder()
    named = configured_tree(folder)
    # A folder already configured for this tree keeps the name it was given (a link, a relative
    # path made absolute): another name for the same tree would make its build start over.
    if named is None or Path(named).resolve() != Path(ctx.tree).resolve():
        compilers = [shutil.which("clang"), shutil.which("clang++")]
        if None in compilers:
            raise GateFailure(gate, "clang", "not installed (the platform's aidl is built with "
                              "clang and libc++)")
        done = run(["cmake", "-S", str(PROJECT), "-B", str(folder), "-G", "Ninja",
                    f"-DCMAKE_C_COMPILER={compilers[0]}", f"-DCMAKE_CXX_COMPILER={compilers[1]}",
                    f"-DVESK_ANDROID_TREE={ctx.named_tree or ctx.tree}"])
        if done.returncode != 0:
            raise GateFailure(gate, str(PROJECT.relative_to(CHECKOUT)),
                              f"configure: {first_error(done.stderr + done.stdout)}")
    done = run(["cmake", "--build", str(folder), "--target", "aidl"])
    if done.returncode != 0:
        raise GateFailure(gate, str(PROJECT.relative_to(CHECKOUT)),
                          f"building aidl: {first_error(done.stdout + done.stderr)}")
    ctx.aidl = folder / "bin" / "aidl"
    return ctx.aidl


def first_error(text: str) -> str:
    """A compiler's or CMake's first error line (ninja's command lines name -Werror)."""
    for line in text.splitlines():
        if re.search(r"\berror: |^CMake Error", line):
            return line.strip()
    return first_line(text)
