"""The policy gates: the project's SELinux policy compiled with the tree's system/sepolicy as the
board build compiles it, checked for Treble violators, and its contexts files checked against it.
"""
import re
import subprocess
import time
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from pathlib import Path

from .common import GateFailure, first_line, run

PLATFORM = "system/sepolicy"
TREE_FOLDERS = [f"{PLATFORM}/public", f"{PLATFORM}/private", f"{PLATFORM}/vendor"]

# The board build's order: each file name across all folders before the next name.
FILE_ORDER = ["security_classes", "initial_sids", "access_vectors", "global_macros",
              "neverallow_macros", "mls_macros", "mls_decl", "mls", "policy_capabilities",
              "te_macros", "attributes", "ioctl_defines", "ioctl_macros", "*.te", "roles_decl",
              "roles", "users", "initial_sid_contexts", "fs_use", "genfs_contexts",
              "port_contexts"]

M4_DEFINES = {
    "mls_num_sens": "1", "mls_num_cats": "1024", "target_build_variant": "user",
    "target_full_treble": "true", "target_compatible_property": "true",
    "target_treble_sysprop_neverallow": "true", "target_enforce_sysprop_owner": "true",
    "target_exclude_build_test": "false",
    "target_requires_insecure_execmem_for_swiftshader": "false",
    "target_enforce_debugfs_restriction": "true", "target_recovery": "false",
    "target_arch": "arm64", "target_with_asan": "false", "target_with_dexpreopt": "false",
    "target_with_native_coverage": "false", "target_flatten_apex": "false",
}

# The project's folders a full-Treble board adds (system_ext public and private, vendor).
VENDOR_FOLDERS = ["sepolicy/vendor"]
BOARD_FOLDERS = ["sepolicy/system_ext/public", "sepolicy/system_ext/private"] + VENDOR_FOLDERS
WITHOUT_FULL_TREBLE = "sepolicy/without-full-treble"

# The service managers' contexts files: NAME CONTEXT lines (libselinux's Android backend, which
# they read them with, takes two fields and one line per name).
KEYED_CONTEXTS = ["hwservice_contexts", "service_contexts", "vndservice_contexts"]
# The files checked against the compiled policy, and the attribute a type they name must have.
CONTEXT_ATTRIBUTES = {
    "hwservice_contexts": "hwservice_manager_type",
    "property_contexts": "property_type",
    "service_contexts": "service_manager_type",
    "vndservice_contexts": "vndservice_manager_type",
}


@dataclass(frozen=True)
class Build:
    name: str
    tree: tuple       # folders of the tree's system/sepolicy
    project: tuple    # folders of the project, after the tree's
    full_treble: bool
    what: str         # how a failure names this build

    def folders(self, ctx):
        return [ctx.tree / PLATFORM / f for f in self.tree] + [ctx.repo / f for f in self.project]


BOARD = Build("board", ("public", "private", "vendor"), tuple(BOARD_FOLDERS), True,
              "the full-Treble board policy")
# A split build compiles the system side (platform and system_ext) with no vendor folder.
SYSTEM_SIDE = Build("system", ("public", "private"), tuple(BOARD_FOLDERS[:2]), True,
                    "the system side alone (no vendor folder)")
NOT_FULL_TREBLE = Build("without-full-treble", ("public", "private", "vendor"),
                        tuple(BOARD_FOLDERS) + (WITHOUT_FULL_TREBLE,), False,
                        "a board without full Treble")
# The examples an integrator copies: the board library's devices (a vendor folder) and a native
# client's domain (a system_ext private one), each compiled with the board's policy.
EXAMPLE_FOLDERS = ["sepolicy/board-library", "sepolicy/native-client"]
EXAMPLES = Build("examples", ("public", "private", "vendor"),
                 tuple(BOARD_FOLDERS + EXAMPLE_FOLDERS), True,
                 "the full-Treble board policy with the examples")
BUILDS = [BOARD, SYSTEM_SIDE, NOT_FULL_TREBLE, EXAMPLES]


def policy_files(folders):
    return [path for name in FILE_ORDER for folder in folders
            for path in sorted(folder.glob(name), key=str) if path.is_file()]


def shown(ctx, path):
    """A path as a failure names it: relative to the project, or to the tree."""
    path = Path(path).resolve()
    for root in (ctx.repo, ctx.tree):
        try:
            return str(path.relative_to(Path(root).resolve()))
        except ValueError:
            pass
    return str(path)


def in_project(ctx, path):
    try:
        Path(path).resolve().relative_to(Path(ctx.repo).resolve() / "sepolicy")
        return True
    except ValueError:
        return False


def binary_of(ctx, build):
    return ctx.work / f"{build.name}.policy"


def compile_policy(ctx, build):
    """Compiles one build; returns the binary policy. Raises GateFailure("policy", ...)."""
    defines = dict(M4_DEFINES, target_full_treble="true" if build.full_treble else "false")
    conf = ctx.work / f"{build.name}.conf"
    binary = binary_of(ctx, build)
    files = [str(f) for f in policy_files(build.folders(ctx))]
    m4 = ["m4", "--fatal-warnings", "-s"] + [f"-D{k}={v}" for k, v in defines.items()] + files
    with open(conf, "w") as out:
        done = subprocess.run(m4, stdout=out, stderr=subprocess.PIPE, text=True)
    if done.returncode != 0:
        raise m4_failure(ctx, build, done.stderr)
    done = run(["checkpolicy", "-M", "-c", "30", "-o", str(binary), str(conf)])
    if done.returncode != 0:
        raise checkpolicy_failure(ctx, build, conf, done.stdout + done.stderr)
    return binary


def m4_failure(ctx, build, output):
    # m4:FILE:LINE: message
    match = re.search(r"^m4:(.+?):(\d+): (.*)$", output, re.M)
    if not match:
        return GateFailure("policy", "m4", f"{build.what}: {first_line(output)}")
    return GateFailure("policy", shown(ctx, match.group(1)),
                       f"line {match.group(2)}: {match.group(3)} ({build.what})")


NEVERALLOW = re.compile(r"(neverallow\S*) on line \d+ of \S+ \(or line (\d+) of \S+\) "
                        r"violated by (allow\S* (\S+) (\S+):(\S+) \{ ?([^}]*)\});")
ERROR = re.compile(r"^(.+?):\d+:ERROR '(.*?)' at token '(.*?)' on line (\d+):", re.M)


def checkpolicy_failure(ctx, build, conf, output):
    # checkpolicy's line in a source file can be one off (it counts the newline of m4's
    # '#line 1 "FILE"'); its line in the conf is exact, and m4's #line directives place it.
    violations = NEVERALLOW.findall(output)
    if violations:
        kind, conf_line, allow, source, target, klass, perms = violations[0]
        more = f"; {len(violations) - 1} more" if len(violations) > 1 else ""
        rule_file, rule_line = conf_source(conf, int(conf_line))
        found = find_rule(ctx, conf, source, target, klass, perms.split())
        where, line = found if found else (str(conf), None)
        at = f"line {line}: " if line else ""
        return GateFailure("policy", shown(ctx, where),
                           f"{at}{allow} breaks the {kind} of "
                           f"{shown(ctx, rule_file)}:{rule_line} ({build.what}{more})")
    error = ERROR.search(output)
    if error:
        _, message, token, conf_line = error.groups()
        path, line = conf_source(conf, int(conf_line))
        if not path or not Path(path).is_file():
            return GateFailure("policy", str(conf), f"{message} at '{token}' ({build.what})")
        if message.startswith("unknown "):
            line = line_naming(Path(path), line, message.split()[-1])
        elif message == "syntax error":
            # A statement left open at the end of a project file fails in the next file.
            before = file_before(conf, path)
            if before and in_project(ctx, before) and left_open(Path(before)):
                path, line = before, len(Path(before).read_text().splitlines())
        where = f" at '{token}'" if message == "syntax error" else ""
        return GateFailure("policy", shown(ctx, path),
                           f"line {line}: {message}{where} ({build.what})")
    return GateFailure("policy", str(conf), f"{first_line(output)} ({build.what})")


def line_naming(path, reported, name):
    """checkpolicy places an error at the end of its statement: the last line up to there that
    names the unknown name."""
    lines = path.read_text(errors="replace").splitlines()[:reported]
    for number in range(len(lines), 0, -1):
        if re.search(rf"(?<![\w.]){re.escape(name)}(?![\w.])", lines[number - 1]):
            return number
    return reported


def left_open(path):
    """Whether the file's last statement lacks its end (";", a macro's ")" or a "}")."""
    text = re.sub(r"#[^\n]*", "", path.read_text(errors="replace")).strip()
    return bool(text) and text[-1] not in ";)}"


def file_before(conf, path):
    """The file whose text comes just before path's in the conf."""
    before = None
    for match in re.finditer(r'^#line 1 "(.*)"$', Path(conf).read_text(errors="replace"), re.M):
        if match.group(1) == str(path):
            return before
        before = match.group(1)
    return None


# --- finding the rule that breaks a neverallow in the concatenated conf ---------------------

LINE_DIRECTIVE = re.compile(r'^#line (\d+)(?: "(.*)")?\s*$')
TOKEN = re.compile(r"[{}~*:;,-]|[\w.]+")


def conf_source(conf, number):
    """(file, line) of line number of the conf, by m4's #line directives."""
    where, line = None, 0
    with open(conf, errors="replace") as text:
        for count, content in enumerate(text, 1):
            if count == number:
                return where, line
            directive = LINE_DIRECTIVE.match(content)
            if directive:
                line = int(directive.group(1))
                where = directive.group(2) or where
            else:
                line += 1
    return where, line


def statements(conf):
    """(file, line, tokens) of each statement of the conf, placed by m4's #line directives."""
    where, line = None, 0
    start, tokens = None, []
    for text in Path(conf).read_text(errors="replace").splitlines():
        directive = LINE_DIRECTIVE.match(text)
        if directive:
            line = int(directive.group(1))
            where = directive.group(2) or where
            continue
        for token in TOKEN.findall(text.split("#", 1)[0]):
            if not tokens:
                start = (where, line)
            if token == ";":
                if tokens:
                    yield start[0], start[1], tokens
                tokens = []
            else:
                tokens.append(token)
        line += 1


def parse_set(tokens, i):
    """A type, class or permission set at tokens[i]: (negated, names, excluded, next index)."""
    negated = tokens[i] == "~"
    if negated:
        i += 1
    names, excluded = set(), set()
    if tokens[i] != "{":
        return negated, {tokens[i]}, excluded, i + 1
    depth, exclude = 0, False
    while True:
        token = tokens[i]
        i += 1
        if token == "{":
            depth += 1
        elif token == "}":
            depth -= 1
            if depth == 0:
                return negated, names, excluded, i
        elif token == "-":
            exclude = True
        else:
            (excluded if exclude else names).add(token)
            exclude = False


def in_set(name, members, expression):
    negated, names, excluded, _ = expression
    inside = "*" in names or any(n == name or name in members.get(n, ()) for n in names)
    inside = inside and not any(n == name or name in members.get(n, ()) for n in excluded)
    return inside != negated


def find_rule(ctx, conf, source, target, klass, perms):
    """(file, line) of the project's allow rule granting source target:klass some of perms;
    else of the project's declaration of source; else None."""
    members, rules, declared = {}, [], None
    for where, line, tokens in statements(conf):
        if tokens[:1] in (["type"], ["typeattribute"]) and len(tokens) > 1:
            name = tokens[1]
            for attribute in tokens[2:]:
                if attribute not in (",", "alias"):
                    members.setdefault(attribute, set()).add(name)
            if tokens[0] == "type" and name == source and where and in_project(ctx, where):
                declared = declared or (where, line)
        elif tokens[:1] == ["allow"] and where and in_project(ctx, where):
            rules.append((where, line, tokens))
    for where, line, tokens in rules:
        try:
            sources = parse_set(tokens, 1)
            targets = parse_set(tokens, sources[3])
            classes = parse_set(tokens, targets[3] + 1)  # past the ':'
            granted = parse_set(tokens, classes[3])
        except IndexError:
            continue
        if not in_set(source, members, sources):
            continue
        if not (in_set(target, members, targets) or ("self" in targets[1] and target == source)):
            continue
        if in_set(klass, {}, classes) and any(in_set(p, {}, granted) for p in perms):
            return where, line
    return declared


# --- the gates -------------------------------------------------------------------------------

def check_policy(ctx):
    """Compiles the board's policy (kept in ctx.policy), the system side alone, the policy of a
    board without full Treble and the board's with the examples, two at a time; the first that
    fails fails the gate, in that order."""
    started = time.monotonic()
    with ThreadPoolExecutor(max_workers=2) as pool:
        compiles = [pool.submit(compile_policy, ctx, build) for build in BUILDS]
        binaries = [done.result() for done in compiles]
    ctx.policy = binaries[0]
    ctx.notes.append(f"policy: {len(BUILDS)} compiles in {time.monotonic() - started:.1f} s")


def seinfo(ctx, *query, policy=None):
    policy = policy or ctx.policy
    done = run(["seinfo", str(policy), *query])
    if done.returncode != 0:
        raise GateFailure("policy", str(policy), f"seinfo: {first_line(done.stderr)}")
    return done.stdout


def attribute_types(ctx, policy=None):
    """{attribute: [types]} of every attribute of the compiled policy."""
    found, current = {}, None
    for line in seinfo(ctx, "-x", "-a", policy=policy).splitlines():
        declared = re.match(r"\s*attribute (\S+);", line)
        if declared:
            current = found.setdefault(declared.group(1), [])
        elif current is not None and line.strip() and not line.strip().startswith("<"):
            current.append(line.strip())
    return found


def project_te_files(ctx):
    folders = BOARD_FOLDERS + EXAMPLE_FOLDERS + [WITHOUT_FULL_TREBLE]
    return [path for folder in folders for path in sorted((ctx.repo / folder).glob("*.te"))]


def declaring_file(ctx, type_name, attribute):
    """The project file that gives type_name the attribute, else the one declaring it."""
    gives = re.compile(rf"\btypeattribute\s+{type_name}\s+[^;]*\b{attribute}\b|"
                       rf"\btype\s+{type_name}\s*,[^;]*\b{attribute}\b")
    declares = re.compile(rf"\btype\s+{type_name}\b")
    for pattern in (gives, declares):
        for path in project_te_files(ctx):
            if pattern.search(path.read_text()):
                return shown(ctx, path)
    return str(ctx.policy)


def check_treble(ctx):
    """No type of the full-Treble policy, with or without the examples, carries a *_violators
    attribute."""
    for policy in (ctx.policy, binary_of(ctx, EXAMPLES)):
        for attribute, types in sorted(attribute_types(ctx, policy).items()):
            if attribute.endswith("_violators") and types:
                violator = sorted(types)[0]
                raise GateFailure("treble", declaring_file(ctx, violator, attribute),
                                  f"type {violator} has the attribute {attribute}, which a "
                                  "full-Treble board's build tests refuse")


def context_files(ctx, name, folders=None):
    """The project's files of that name in the folders (the board's by default)."""
    return [ctx.repo / folder / name for folder in folders or BOARD_FOLDERS
            if (ctx.repo / folder / name).is_file()]


def numbered_lines(path):
    for number, text in enumerate(path.read_text().splitlines(), 1):
        if text.strip() and not text.lstrip().startswith("#"):
            yield number, text.strip()


def check_context_validity(ctx, policy, path, checked=None):
    """setfiles -c: every context of a file_contexts (`checked`, else path itself) exists in the
    policy (libsepol's context check). A failure names path's line with the context."""
    done = run(["setfiles", "-c", str(policy), str(checked or path)])
    if done.returncode != 0:
        bad = re.search(r"invalid context (\S+)", done.stdout + done.stderr)
        line = next((f"line {n}: {text}" for n, text in numbered_lines(path)
                     if bad and bad.group(1) in text.split()), None)
        raise GateFailure("contexts", shown(ctx, path),
                          f"{line}: invalid context" if line
                          else first_line(done.stderr + done.stdout))


def check_file_contexts(ctx, policy, folders):
    for path in context_files(ctx, "file_contexts", folders):
        check_context_validity(ctx, policy, path)


def check_keyed_contexts(ctx, policy):
    """What the platform's checkfc -s (-l, -v) checks of a service_contexts (hwservice_contexts,
    vndservice_contexts) file, Debian having no checkfc: each line is NAME CONTEXT, no name
    twice, and every context is valid in the policy, checked by setfiles -c (the same libsepol
    check checkfc makes) on the contexts written as a file_contexts; the attribute checkfc asks of
    each type is check_contexts' next step."""
    for name in KEYED_CONTEXTS:
        for path in context_files(ctx, name):
            first = {}
            for number, text in numbered_lines(path):
                fields = text.split()
                if len(fields) != 2:
                    raise GateFailure("contexts", shown(ctx, path),
                                      f"line {number}: {text}: not NAME CONTEXT")
                if fields[0] in first:
                    raise GateFailure("contexts", shown(ctx, path),
                                      f"line {number}: {fields[0]} again (line "
                                      f"{first[fields[0]]}): one context per name")
                first[fields[0]] = number
            checked = ctx.work / f"{path.parent.name}.{name}.file_contexts"
            checked.write_text("".join(f"/{number} {text.split()[1]}\n"
                                       for number, text in numbered_lines(path)))
            check_context_validity(ctx, policy, path, checked)


def check_contexts(ctx):
    """Every file_contexts is valid against the policy (an example's against the policy with the
    examples); every service manager's contexts file is well formed and valid against it; every
    type of the contexts files other than file_contexts exists with the attribute its file
    needs."""
    check_file_contexts(ctx, ctx.policy, BOARD_FOLDERS)
    check_file_contexts(ctx, binary_of(ctx, EXAMPLES), EXAMPLE_FOLDERS)
    check_keyed_contexts(ctx, ctx.policy)
    attributes_of = {}
    for name, attribute in CONTEXT_ATTRIBUTES.items():
        for path in context_files(ctx, name):
            for number, text in numbered_lines(path):
                fields = text.split()
                context = fields[1].split(":") if len(fields) > 1 else []
                if len(context) < 4:
                    raise GateFailure("contexts", shown(ctx, path),
                                      f"line {number}: {text}: no context")
                type_name = context[2]
                if type_name not in attributes_of:
                    attributes_of[type_name] = type_attributes(ctx, type_name)
                have = attributes_of[type_name]
                if have is None:
                    raise GateFailure("contexts", shown(ctx, path),
                                      f"line {number}: {text}: no type {type_name}")
                if attribute not in have:
                    raise GateFailure("contexts", shown(ctx, path),
                                      f"line {number}: {text}: {type_name} is not a {attribute}")


def type_attributes(ctx, type_name):
    """The attributes of a type of the compiled policy; None if it has no such type."""
    match = re.search(rf"^\s*type {re.escape(type_name)}\b,?([^;]*);",
                      seinfo(ctx, "-x", "-t", type_name), re.M)
    return None if not match else {a.strip() for a in match.group(1).split(",") if a.strip()}
