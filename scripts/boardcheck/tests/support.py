"""What the gates' tests share: the repository's folders copied into a scratch folder, with a
Context over the copy, so that a test can break one thing and run a gate on it."""
import os
import shutil
import tempfile
from pathlib import Path

from boardcheck.common import Context

REPO = Path(__file__).resolve().parents[3]
TREE = os.environ.get("VESK_ANDROID_TREE")


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
