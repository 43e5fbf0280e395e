"""The gates of the board check, in the order they run, and what each needs of the tree."""
from pathlib import Path

from .common import BadTree
from . import aidl_api, headers, platform_tests, policy, properties, vintf

GATES = [
    ("aidl-api", aidl_api.check_aidl_api),
    ("headers", headers.check_headers),
    ("policy", policy.check_policy),
    ("treble", policy.check_treble),
    ("contexts", policy.check_contexts),
    ("properties", properties.check_properties),
    ("platform-tests", platform_tests.check_platform_tests),
    ("vintf", vintf.check_vintf),
]

# A gate that reads another's result runs that one first.
NEEDS = {"treble": ["policy"], "contexts": ["policy"], "platform-tests": ["policy"]}

# The folders of the tree each gate reads.
TREE_FOLDERS = {
    "aidl-api": aidl_api.TREE_FOLDERS,
    "headers": headers.TREE_FOLDERS,
    "policy": policy.TREE_FOLDERS,
    "treble": policy.TREE_FOLDERS,
    "contexts": policy.TREE_FOLDERS,
    "properties": properties.TREE_FOLDERS,
    "platform-tests": platform_tests.TREE_FOLDERS,
    "vintf": [],
}


def needed_by(selected):
    return {need for name in selected for need in NEEDS.get(name, [])}


def check_tree(tree: Path, selected):
    if not tree.is_dir():
        raise BadTree(f"no Android tree at {tree}")
    for name in list(selected) + sorted(needed_by(selected)):
        for folder in TREE_FOLDERS[name]:
            if not (tree / folder).is_dir():
                raise BadTree(f"{tree} lacks {folder} (needed by the {name} gate)")
