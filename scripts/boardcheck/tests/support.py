"""What the gates' tests share: the repository's folders copied into a scratch folder, with a
Context over the copy, so that a test can break one thing and run a gate on it."""
import atexit
import os
import shutil
import tempfile
from pathlib import Path

from boardcheck import policy
from boardcheck.common import Context

REPO = Path(__file__).resolve().parents[3]
TREE = os.environ.get("VESK_ANDROID_TREE")
# What the vintf gate reads: each front end's folder and the two makefiles.
VINTF_PARTS = ["default", "interface/veskdevicemanager/aidl/default", "veskdevicemanager.mk",
               "BoardConfigVeskdevicemanager.mk"]


class Copy:
    """The given folders and files of the repository in a scratch folder, with a Context over
    them."""

    def __init__(self, test, *paths):
        scratch = Path(tempfile.mkdtemp(prefix="vesk-gate-test-"))
        test.addCleanup(shutil.rmtree, scratch)
        self.repo = scratch / "repo"
        for path in paths:
            if (REPO / path).is_dir():
                shutil.copytree(REPO / path, self.repo / path)
            else:
                (self.repo / path).parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(REPO / path, self.repo / path)
        (scratch / "work").mkdir()
        self.context = Context(repo=self.repo, tree=Path(TREE or scratch).resolve(),
                               work=scratch / "work")

    def edit(self, path, old, new):
        file = self.repo / path
        text = file.read_text()
        if old not in text:
            raise AssertionError(f"{path} has no {old!r}")
        file.write_text(text.replace(old, new))


_compiled = None


def compiled_policies():
    """A Context over a copy of the repository's sepolicy folder whose policies the policy gate
    has compiled (the board's in .policy, every build's at policy.binary_of): compiled once per
    test run, for the test classes that read them, and removed when the run ends."""
    global _compiled
    if _compiled is None:
        scratch = Path(tempfile.mkdtemp(prefix="vesk-compiled-policies-"))
        atexit.register(shutil.rmtree, scratch, True)
        shutil.copytree(REPO / "sepolicy", scratch / "repo" / "sepolicy",
                        ignore=shutil.ignore_patterns("*.py", "__pycache__"))
        (scratch / "work").mkdir()
        context = Context(repo=scratch / "repo", tree=Path(TREE).resolve(), work=scratch / "work")
        policy.check_policy(context)
        _compiled = context
    return _compiled
