"""The platform-tests gate: the tree's own policy tests, tests/sepolicy_tests.py, on the compiled
board policy with the platform's and the project's file_contexts, as the board build runs them
(every type of a /vendor path a vendor_file_type, of a /sys path a sysfs_type, property owners
exclusive, ...).

The script loads libsepolwrap.so from its own folder, so the gate copies the tree's test scripts
into its scratch folder and builds the library beside them, once per run, as the tree's
libsepolwrap module does: sepol_wrap.cpp with libbase (and liblog, which libbase's logging
calls), linked with Debian's static libsepol (libsepol-dev) and libc++ (the module's
stl: "c++_static"). Nothing is written to the tree or the repository.
"""
import shutil
import sys
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from .common import GateFailure, first_line, run
from .headers import JOBS, first_error
from .policy import (BOARD_FOLDERS, EXAMPLE_FOLDERS, EXAMPLES, TREE_FOLDERS as POLICY_FOLDERS,
                     binary_of, context_files, shown)

TESTS = "system/sepolicy/tests"
LIBBASE = "system/libbase"
LIBLOG = "system/logging/liblog"
LIBCUTILS_HEADERS = "system/core/libcutils/include"  # liblog's logger_write.cpp includes one
SOURCES = ([f"{TESTS}/sepol_wrap.cpp"] +
           [f"{LIBBASE}/{name}" for name in ("file.cpp", "strings.cpp", "stringprintf.cpp",
                                             "logging.cpp", "threads.cpp",
                                             "posix_strerror_r.cpp")] +
           [f"{LIBLOG}/{name}" for name in ("logger_name.cpp", "logger_write.cpp",
                                            "properties.cpp")])
INCLUDES = [f"{TESTS}/include", f"{LIBBASE}/include", f"{LIBLOG}/include", LIBCUTILS_HEADERS]
TREE_FOLDERS = [TESTS, LIBBASE, LIBLOG, LIBCUTILS_HEADERS] + POLICY_FOLDERS

# Soong's C++ standard and its global -Wno-c99-designator (build/soong/cc/config/global.go):
# libbase's posix_strerror_r.cpp needs the POSIX strerror_r, which glibc hides from strict C++17.
COMPILER = ["clang++", "-stdlib=libc++", "-std=gnu++17", "-O2", "-fPIC", "-Wno-c99-designator"]
LINK = ["clang++", "-stdlib=libc++", "-static-libstdc++", "-shared", "-Wl,--no-undefined"]
LIBSEPOL = "-l:libsepol.a"

# The platform's file_contexts that the board's plat_ and vendor_file_contexts start from.
PLATFORM_FILE_CONTEXTS = ["system/sepolicy/private/file_contexts",
                          "system/sepolicy/vendor/file_contexts"]
LIBRARY = "libsepolwrap.so"


def build_tests(ctx) -> Path:
    """The tree's test scripts and libsepolwrap.so in ctx.work, built once."""
    folder = ctx.work / "sepolicy-tests"
    if (folder / LIBRARY).is_file():
        return folder
    objects = folder / "objects"
    objects.mkdir(parents=True, exist_ok=True)
    for script in (ctx.tree / TESTS).glob("*.py"):
        shutil.copy(script, folder)
    includes = [f"-I{ctx.tree / folder}" for folder in INCLUDES]

    def compile_source(source):
        output = objects / (Path(source).stem + ".o")
        return source, output, run(COMPILER + includes + ["-c", str(ctx.tree / source),
                                                          "-o", str(output)])

    started = time.monotonic()
    try:
        with ThreadPoolExecutor(max_workers=JOBS) as pool:
            compiled = list(pool.map(compile_source, SOURCES))
        for source, _, done in compiled:
            if done.returncode != 0:
                raise GateFailure("platform-tests", source, first_error(done.stderr))
        linked = run(LINK + ["-o", str(folder / LIBRARY)] +
                     [str(output) for _, output, _ in compiled] + [LIBSEPOL])
    except FileNotFoundError as error:
        raise GateFailure("platform-tests", error.filename, "not installed (clang++ with "
                          "libc++)") from None
    if linked.returncode != 0:
        raise GateFailure("platform-tests", LIBRARY, f"{first_error(linked.stderr)} (the static "
                          "libsepol of libsepol-dev and libc++ are needed)")
    ctx.notes.append(f"platform-tests: {LIBRARY} built from {len(SOURCES)} sources in "
                     f"{time.monotonic() - started:.1f} s")
    return folder


def file_contexts_of(ctx, folders=None):
    """The platform's file_contexts, then the project's, as the board concatenates them."""
    return ([ctx.tree / path for path in PLATFORM_FILE_CONTEXTS] +
            context_files(ctx, "file_contexts", folders))


def project_entry(ctx, types, files, folders):
    """(file, "line N: ENTRY") of the project's first file_contexts or genfs_contexts line that
    labels one of files (any path if none is named) with one of types."""
    for name in ("file_contexts", "genfs_contexts"):
        for path in context_files(ctx, name, folders):
            for number, text in enumerate(path.read_text().splitlines(), 1):
                fields = text.split("#", 1)[0].split()
                context = fields[-1].split(":") if fields else []
                if len(context) < 3 or context[2] not in types:
                    continue
                if name == "file_contexts" and files and fields[0] not in files:
                    continue
                return shown(ctx, path), f"line {number}: {' '.join(fields)}"
    return None


def run_tests(ctx, policy, folders=None):
    """Runs sepolicy_tests.py on policy with the file_contexts of the project's folders."""
    folder = build_tests(ctx)
    command = [sys.executable, str(folder / "sepolicy_tests.py"), "-p", str(policy)]
    for path in file_contexts_of(ctx, folders):
        command += ["-f", str(path)]
    done = run(command)
    if done.returncode == 0:
        return
    # "The following types on /vendor/ must be associated with the "A" attribute: T1 T2" and
    # " corresponding to files: F1 F2" (every path of those folders, not only the violators').
    report = (done.stderr + done.stdout).strip()
    types = first_line(report).rsplit(": ", 1)[-1].split()
    files = []
    for line in report.splitlines():
        if line.strip().startswith("corresponding to files:"):
            files = line.split(":", 1)[1].split()
            break
    found = project_entry(ctx, types, files, folders)
    if found:
        raise GateFailure("platform-tests", found[0], f"{found[1]}: {first_line(report)}")
    raise GateFailure("platform-tests", str(policy), first_line(report))


def check_platform_tests(ctx):
    """The board's policy with its file_contexts, then the policy with the examples with theirs."""
    build_tests(ctx)
    started = time.monotonic()
    run_tests(ctx, ctx.policy)
    run_tests(ctx, binary_of(ctx, EXAMPLES), BOARD_FOLDERS + EXAMPLE_FOLDERS)
    ctx.notes.append(f"platform-tests: sepolicy_tests.py, twice, in "
                     f"{time.monotonic() - started:.1f} s")
