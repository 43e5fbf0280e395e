#!/usr/bin/env python3
"""The board check: this project measured against an Android tree's own files.

    scripts/board_check.py [TREE] [--repo DIR] [--gate NAME]...

TREE is an Android 13 source tree, or the parts of one that the gates read (../shared/android13
in CI). Without TREE (and without $VESK_ANDROID_TREE) it prints one line saying what it skipped
and exits 0. The gates, in order:

  aidl-api   every aidl_interface's frozen versions checked as its rules check them, with the
             tree's aidl (built by android/, the project's build of the platform's code, into
             $VESK_PLATFORM_TOOLS_DIR/host, else build/android-tree/host) and hash_gen.sh: each
             .hash right, each version compatible with the one before, the sources equal to
             current, current equal to the last frozen version
  headers    every source of every device module of the Android.bp files compiles against the
             tree's libhidl, libhwbinder and libfmq headers with libc++, as the board compiles it,
             and the NDK code of each frozen AIDL version (made by the tree's aidl) and every
             module that links it against the tree's libbinder_ndk headers
  policy     the project's policy folders compile together with the tree's system/sepolicy as
             the board build does, every neverallow enforced, full Treble (also with the
             examples' folders)
  treble     no type of the full-Treble policies carries a *_violators attribute
  contexts   every file_contexts is valid against the compiled policy; the service managers'
             contexts files (service_contexts, hwservice_contexts) are checked as checkfc checks
             them; every type of those and the property contexts has the right attribute
  properties the vendor property_contexts pass the tree's check_prop_prefix.py as Soong runs it
             (strict unless the board fragment sets BUILD_BROKEN_VENDOR_PROPERTY_NAMESPACE),
             and every context starts with vendor_ whatever the flag
  platform-tests
             the tree's sepolicy_tests.py passes on the compiled policy with the platform's
             and the project's file_contexts (its libsepolwrap.so built in a scratch folder)
  vintf      for each front end (HIDL, stable AIDL), the framework matrix fragment, the device
             manifest fragment and the .rc name the same HAL; the makefiles install one front
             end's, the one VESK_VESKDM_FRONT_END chooses

A failed gate prints three lines (the gate, the file, the first violation) and the check exits 1.
A missing tree, or one that lacks a folder a gate needs, is one line and status 2.
"""
import argparse
import os
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))

from boardcheck.common import BadTree, Context, GateFailure  # noqa: E402
from boardcheck import gates as gate_table  # noqa: E402


def main(argv):
    parser = argparse.ArgumentParser(prog="board_check.py", description=__doc__.split("\n")[0])
    parser.add_argument("tree", nargs="?", default=os.environ.get("VESK_ANDROID_TREE"))
    parser.add_argument("--repo", default=str(Path(__file__).resolve().parent.parent))
    parser.add_argument("--gate", action="append", choices=[name for name, _ in gate_table.GATES],
                        help="run only this gate (and what it needs); may be repeated")
    args = parser.parse_args(argv)

    if not args.tree:
        print("board check: skipped, no Android tree given (TREE or $VESK_ANDROID_TREE)")
        return 0
    tree = Path(args.tree)
    selected = args.gate or [name for name, _ in gate_table.GATES]
    try:
        gate_table.check_tree(tree, selected)
        with tempfile.TemporaryDirectory(prefix="vesk-board-check-") as work:
            context = Context(repo=Path(args.repo).resolve(), tree=tree.resolve(), work=Path(work),
                              named_tree=Path(os.path.abspath(tree)))
            for name, gate in gate_table.GATES:
                if name not in selected and name not in gate_table.needed_by(selected):
                    continue
                start = time.monotonic()
                noted = len(context.notes)
                gate(context)
                print(f"board check: {name}: passed ({time.monotonic() - start:.1f} s)")
                for note in context.notes[noted:]:
                    print(f"board check:   {note}")
    except BadTree as problem:
        print(f"board check: {problem}", file=sys.stderr)
        return 2
    except GateFailure as failure:
        print(f"board check: gate {failure.gate} failed", file=sys.stderr)
        print(f"board check: file {failure.file}", file=sys.stderr)
        print(f"board check: {failure.violation}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
