#!/usr/bin/env python3
"""Fails when a shared library defines a dynamic symbol outside its allowed interface.

check_exports.py --readelf READELF [--c-imports-only] LIBRARY PATTERN...: every defined global or
weak symbol of LIBRARY's dynamic symbol table must match one of the regular expressions PATTERN,
matched against the demangled name (c++filt); undefined imports are not the library's interface.
With --c-imports-only, no import may be a C++ name either: one would bind to whatever library of
the process defines that name. Runs natively on any target's ELF (binutils' readelf reads foreign
machines too)."""
import argparse
import re
import subprocess
import sys


def dynamic_symbols(readelf, library, defined):
    table = subprocess.run([readelf, "--dyn-syms", "-W", library], check=True,
                           capture_output=True, text=True).stdout
    names = []
    for line in table.splitlines():
        fields = line.split()
        # Num: Value Size Type Bind Vis Ndx Name
        if len(fields) < 8 or not fields[0].endswith(":"):
            continue
        bind, ndx, name = fields[4], fields[6], fields[7]
        if bind in ("GLOBAL", "WEAK", "GNU_UNIQUE") and (ndx != "UND") == defined:
            names.append(name.split("@")[0])
    return names


def demangle(names):
    if not names:
        return []
    out = subprocess.run(["c++filt"], input="\n".join(names), check=True, capture_output=True,
                         text=True).stdout
    return out.splitlines()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--readelf", default="readelf")
    parser.add_argument("--c-imports-only", action="store_true")
    parser.add_argument("library")
    parser.add_argument("patterns", nargs="+")
    args = parser.parse_args()
    allowed = [re.compile(p) for p in args.patterns]
    names = dynamic_symbols(args.readelf, args.library, True)
    if args.c_imports_only:
        imported = [n for n in dynamic_symbols(args.readelf, args.library, False)
                    if n.startswith("_Z")]
        if imported:
            print(f"{args.library}: imports {len(imported)} C++ name(s):")
            for name in demangle(imported):
                print(f"  {name}")
            return 1
    stray = [n for n in demangle(names) if not any(p.search(n) for p in allowed)]
    if not names:
        print(f"{args.library}: exports nothing")
        return 1
    if stray:
        print(f"{args.library}: {len(stray)} symbol(s) outside its interface:")
        for name in stray:
            print(f"  {name}")
        return 1
    print(f"{args.library}: {len(names)} exported symbol(s), all in its interface")
    return 0


if __name__ == "__main__":
    sys.exit(main())
