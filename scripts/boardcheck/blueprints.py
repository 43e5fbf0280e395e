"""The modules of the Android.bp files: the project's (every Android.bp of the checkout, build
trees left out) and, for the platform's libraries a gate follows, the tree's."""
import os
from dataclasses import dataclass
from pathlib import Path

from check_bp_parity import blueprint_modules  # scripts/ is on the path of the driver and tests

from .common import GateFailure


@dataclass
class Module:
    name: str
    kind: str
    folder: str  # repository-relative ("." for the top), or absolute for a module of the tree
    bp: str  # its Android.bp, repository-relative (or absolute)
    props: dict


def read_modules(repo: Path, gate="headers"):
    """Every module of every Android.bp below repo (build trees left out), by name; a file that
    cannot be read fails the gate named."""
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
            raise GateFailure(gate, str(bp), f"cannot read it: {error}") from error
        for kind, props in parsed:
            modules[props["name"]] = Module(props["name"], kind, str(here), str(bp), props)
    return modules


def read_tree_modules(folder: Path, gate):
    """The modules of one Android.bp of the tree (the first of a name: a library, not its NDK
    stub of the same name further down)."""
    bp = folder / "Android.bp"
    try:
        parsed = blueprint_modules(bp.read_text())
    except (OSError, ValueError, IndexError) as error:
        raise GateFailure(gate, str(bp), f"cannot read it: {error}") from error
    modules = {}
    for kind, props in parsed:
        if "name" in props:
            modules.setdefault(props["name"], Module(props["name"], kind, str(folder), str(bp),
                                                     props))
    return modules
