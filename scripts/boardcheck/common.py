"""What every gate of the board check shares: its context and its way of failing."""
import subprocess
from dataclasses import dataclass, field
from pathlib import Path
from typing import Optional


class GateFailure(Exception):
    """A gate found a violation: the gate's name, the file that holds it and the first one."""

    def __init__(self, gate: str, file: str, violation: str):
        super().__init__(f"{gate}: {file}: {violation}")
        self.gate = gate
        self.file = file
        self.violation = violation


class BadTree(Exception):
    """The tree named is missing or lacks a folder a gate needs (status 2)."""


@dataclass
class Context:
    repo: Path  # the project's checkout
    tree: Path  # the Android tree (its system/, bionic-declarations/ ...)
    work: Path  # a private scratch folder, removed after the run
    # Set by the policy gate: the board's policy compiled with the project's folders.
    policy: Optional[Path] = None
    # Set by the first gate that needs it: the tree's aidl (aidl_tool.aidl).
    aidl: Optional[Path] = None
    # The tree as the command line named it, absolute but with its links kept, as the host build
    # names it (CMake's ABSOLUTE): the build of the tree's aidl is configured with this name.
    named_tree: Optional[Path] = None
    notes: list = field(default_factory=list)


def run(command, **kwargs):
    """Runs a command; returns the completed process with its output as text."""
    return subprocess.run(command, capture_output=True, text=True, **kwargs)


def first_line(text: str) -> str:
    for line in text.splitlines():
        if line.strip():
            return line.strip()
    return "(no output)"
