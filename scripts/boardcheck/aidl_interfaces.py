"""The project's aidl_interface modules, as the board's build reads them: their sources and import
root, stability, frozen versions (versions_with_info, or the older versions list) and backends."""
from pathlib import Path

from .common import GateFailure
from .blueprints import read_modules


class Interface:
    def __init__(self, ctx, module, gate):
        props = module.props
        self.name = module.name
        self.bp = module.bp
        versions_with_info = props.get("versions_with_info", [])
        if props.get("imports") or any(v.get("imports") for v in versions_with_info):
            raise GateFailure(gate, module.bp, f"{self.name}: imports other interfaces, which "
                              "the gate does not follow")
        folder = ctx.repo / module.folder
        self.root = folder / props.get("local_include_dir", ".")
        self.sources = sorted({path for pattern in props.get("srcs", [])
                               for path in folder.glob(pattern)})
        if not self.sources:
            raise GateFailure(gate, module.bp, f"{self.name}: its srcs name no .aidl file")
        self.stability = ["--stability", props["stability"]] if "stability" in props else []
        self.versions = ([v["version"] for v in versions_with_info] or
                         props.get("versions", []))
        self.api = folder / "aidl_api" / self.name
        # The NDK backend is on unless the module turns it off.
        self.ndk = props.get("backend", {}).get("ndk", {}).get("enabled", True)

    def folder(self, version) -> Path:
        """A frozen version's folder ("current" for the API being worked on)."""
        return self.api / version


def interfaces(ctx, gate, modules=None):
    modules = read_modules(ctx.repo, gate) if modules is None else modules
    return [Interface(ctx, module, gate) for module in modules.values()
            if module.kind == "aidl_interface"]
