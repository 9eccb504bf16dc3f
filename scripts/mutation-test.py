#!/usr/bin/env python3
"""Mutation testing of the library code (src/, without src/platform/).

Each mutant is one small fault of the kind a careless edit makes: a relational operator moved
across its boundary, an equality negated, && and || swapped, a ! removed, an integer literal
off by one, a character of a string literal changed, a call statement deleted, a returned
true/false flipped. For every mutant the tool patches one file in a private copy of the tree
(build-mut/tree/, kept in step with the worktree), rebuilds the test program there (Ninja and
ccache recompile the one object and relink), runs the tests of the mutant's folder (AREA_TESTS;
all of them with --whole-suite) with a time-out, stopping at the first failure, and restores
the file. The worktree itself is never patched, so a build or a commit made meanwhile is safe.

A mutant is killed (a test failed), survived, timed out or did not compile. The tool prints
the kill rate per folder and per operator and writes the survivors, one per line, as
`FILE:LINE: before  ->  after`. A mutant judged equivalent goes into
tests/mutation-equivalents.txt as `FILE: before  ->  after  # reason` (the lines without their
indentation) and is skipped.

Examples:
  scripts/mutation-test.py --list | wc -l            # how many mutants there are
  scripts/mutation-test.py --sample 40 --seed 7      # a reproducible subset
  scripts/mutation-test.py --files src/tcpip_static/setters_nt4.cpp
"""

from __future__ import annotations

import argparse
import collections
import dataclasses
import fnmatch
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import threading
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
TREE_PARTS = ["CMakeLists.txt", "cmake", "include", "src", "tools", "tests", "bench"]
EQUIVALENTS = ROOT / "tests" / "mutation-equivalents.txt"
SEPARATOR = "  ->  "

# The tests that exercise each library folder, as a GoogleTest filter: the folder's own suites
# and those of the folders built on it. The foundation is under everything, so all tests run
# for it, as for any folder not listed.
AREA_TESTS = {
    "adapters": "*AdapterClassification*:*MacAddressText*:*StaticTcpip*:*SetterGolden*:*Live*"
                ":*IpHelper*:*Snmp*:*DhcpReleaseRenew*:*BroadbandTuning*:*TweaksSim*",
    "tcpip_static": "*StaticTcpip*:*SetterGolden*:*Live*:*IpHelper*:*Snmp*:*DhcpReleaseRenew*"
                    ":*BroadbandTuning*:*TweaksSim*:*DialUp*",
    "inventory": "*Cpu*:*Drive*:*Ram*:*Usb*:*HardwareProfile*:*Inventory*:*ThreadsSim*",
    "live": "*Live*:*Snmp*:*IpHelper*:*DhcpReleaseRenew*:*DialUp*",
    "inetclients": "*IE*:*OutlookExpress*:*Favorites*:*SimIdentities*",
    "tweaks": "*BroadbandTuning*:*LanSwitch*:*SharingAndSetupSource*:*Tweaks*:*WindowController*",
}

KEYWORDS_NOT_CALLS = {
    "return", "if", "while", "for", "switch", "case", "delete", "throw", "co_return",
    "co_await", "sizeof", "static_assert", "using", "namespace", "template", "typedef",
    "else", "do", "goto", "new", "default",
}


@dataclasses.dataclass(frozen=True)
class Mutant:
    path: str  # relative to the tree root
    line: int  # 1-based, of the first changed character
    op: str
    start: int  # offsets into the file text
    end: int
    replacement: str
    before: str  # the changed line(s), without indentation
    after: str

    def folder(self) -> str:
        parts = Path(self.path).parts
        return parts[1] if len(parts) > 2 else "."

    def describe(self) -> str:
        return f"{self.path}:{self.line}: [{self.op}] {self.before}{SEPARATOR}{self.after}"

    def key(self) -> tuple[str, str, str]:
        return (self.path, self.before, self.after)


# ---------------------------------------------------------------------------------------------
# Lexing: just enough of C++ to tell code from comments, strings and preprocessor lines.

TOKEN = re.compile(
    r"""
    (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<raw>(?:u8|[uUL])?R"(?P<delim>[^(\s]*)\(.*?\)(?P=delim)")
  | (?P<string>(?:u8|[uUL])?"(?:[^"\\\n]|\\.)*")
  | (?P<char>(?:u8|[uUL])?'(?:[^'\\\n]|\\.)+')
  | (?P<number>\.?\d(?:[\w.']|[eEpP][+-])*)
  | (?P<ident>[A-Za-z_]\w*)
  | (?P<op>\|\||&&|<=>|<<=|>>=|<<|>>|<=|>=|==|!=|->\*?|::|\+\+|--|[-+*/%&|^!~<>=?:;,.(){}\[\]])
  | (?P<space>\s+)
  | (?P<other>.)
    """,
    re.VERBOSE | re.DOTALL,
)


@dataclasses.dataclass
class Token:
    kind: str
    text: str
    start: int
    end: int


def tokenize(text: str) -> list[Token]:
    tokens = []
    at_line_start = True
    pos = 0
    while pos < len(text):
        if at_line_start:
            stripped = len(text) - len(text[pos:].lstrip(" \t"))
            if text.startswith("#", stripped):
                end = stripped
                while True:  # a directive runs on across backslash-continued lines
                    newline = text.find("\n", end)
                    if newline < 0:
                        end = len(text)
                        break
                    if text[newline - 1] != "\\":
                        end = newline
                        break
                    end = newline + 1
                tokens.append(Token("preprocessor", text[pos:end], pos, end))
                pos = end
                continue
        match = TOKEN.match(text, pos)
        kind = "raw" if match.lastgroup == "delim" else match.lastgroup
        tokens.append(Token(kind, match.group(0), pos, match.end()))
        at_line_start = kind == "space" and "\n" in match.group(0)
        pos = match.end()
    return [t for t in tokens if t.kind not in ("space", "comment", "preprocessor")]


# ---------------------------------------------------------------------------------------------
# Mutant generation.

RELATIONAL = {"<": "<=", "<=": "<", ">": ">=", ">=": ">"}
EQUALITY = {"==": "!=", "!=": "=="}
LOGICAL = {"&&": "||", "||": "&&"}
INTEGER = re.compile(r"^(0[xX][0-9a-fA-F']+|\d[\d']*)([uUlL]*)$")


def spaced(text: str, token: Token) -> bool:
    """True for a binary operator written with a space each side, as clang-format writes them;
    template brackets and reference declarators are not."""
    return (token.start > 0 and text[token.start - 1] in " \n"
            and token.end < len(text) and text[token.end] in " \n")


def string_mutation(literal: str) -> str | None:
    """Changes the first letter or digit of the literal (the first character when it has none):
    a letter becomes a letter of another name, since case alone may be equivalent for registry
    names, and anything else a letter. Escape sequences are left alone; "" becomes "x"."""
    prefix_end = literal.index('"') + 1
    body = literal[prefix_end:-1]
    if not body:
        return literal[:prefix_end] + "x" + '"'
    plain = []
    i = 0
    while i < len(body):
        if body[i] == "\\":
            i += 2
            continue
        plain.append(i)
        i += 1
    if not plain:
        return None
    at = next((j for j in plain if body[j].isalnum()), plain[0])
    replacement = "Q" if body[at] not in "Qq" else "Z"
    return literal[:prefix_end] + body[:at] + replacement + body[at + 1:] + '"'


def integer_mutations(literal: str) -> list[str]:
    match = INTEGER.match(literal)
    if not match:
        return []
    digits, suffix = match.group(1).replace("'", ""), match.group(2)
    value = int(digits, 16) if digits[:2].lower() == "0x" else int(digits, 10)
    if digits[:2].lower() == "0x":
        spell = lambda v: f"0x{v:X}" + suffix  # noqa: E731
    else:
        spell = lambda v: f"{v}" + suffix  # noqa: E731
    results = [spell(value + 1)]
    if value > 0:
        results.append(spell(value - 1))
    return results


def call_statement_end(tokens: list[Token], i: int) -> int | None:
    """For a statement starting at tokens[i] that is a plain call (`a.b(...);`,
    `ns::f(...);`, `(void)f(...);`), the index of its `;`; otherwise None."""
    j = i
    if tokens[j].text == "(" and j + 2 < len(tokens) and tokens[j + 1].text == "void" \
            and tokens[j + 2].text == ")":
        j += 3
    if tokens[j].kind != "ident" or tokens[j].text in KEYWORDS_NOT_CALLS:
        return None
    j += 1
    while j < len(tokens) and (tokens[j].text in (".", "->", "::") or tokens[j].kind == "ident"):
        if tokens[j].kind == "ident" and tokens[j - 1].kind == "ident":
            return None  # two names in a row: a declaration
        j += 1
    if j >= len(tokens) or tokens[j].text != "(":
        return None
    depth = 0
    while j < len(tokens):
        if tokens[j].text in "([{":
            depth += 1
        elif tokens[j].text in ")]}":
            depth -= 1
            if depth < 0:
                return None
        elif tokens[j].text == ";" and depth == 0:
            return j
        elif depth == 0 and tokens[j].text not in (".", "->") and tokens[j].kind != "ident" \
                and tokens[j - 1].text != ")":
            return None
        j += 1
    return None


def statement_start(tokens: list[Token], i: int) -> bool:
    return i == 0 or tokens[i - 1].text in (";", "{", "}", "else") or (
        tokens[i - 1].text == ":" and i >= 2 and tokens[i - 2].text == "default")


def line_bounds(text: str, start: int, end: int) -> tuple[int, int]:
    first = text.rfind("\n", 0, start) + 1
    last = text.find("\n", end)
    return first, len(text) if last < 0 else last


def squeeze(fragment: str) -> str:
    return " ".join(part.strip() for part in fragment.strip().split("\n"))


def make(path: str, text: str, op: str, start: int, end: int, replacement: str) -> Mutant:
    first, last = line_bounds(text, start, end)
    before = text[first:last]
    after = before[:start - first] + replacement + before[end - first:]
    return Mutant(path, text.count("\n", 0, start) + 1, op, start, end, replacement,
                  squeeze(before), squeeze(after))


def mutants_of(path: str, text: str) -> list[Mutant]:
    tokens = tokenize(text)
    found = []
    previous = None
    for i, token in enumerate(tokens):
        t = token.text
        if token.kind == "op":
            if t in RELATIONAL and spaced(text, token):
                found.append(make(path, text, "relational", token.start, token.end, RELATIONAL[t]))
            elif t in EQUALITY:
                found.append(make(path, text, "equality", token.start, token.end, EQUALITY[t]))
            elif t in LOGICAL and spaced(text, token):
                found.append(make(path, text, "logical", token.start, token.end, LOGICAL[t]))
            elif t == "!":
                found.append(make(path, text, "negation", token.start, token.end, ""))
            elif t == "(" and statement_start(tokens, i):
                end = call_statement_end(tokens, i)
                if end is not None:
                    found.append(make(path, text, "call", token.start, tokens[end].end, ";"))
        elif token.kind == "number":
            for replacement in integer_mutations(t):
                found.append(make(path, text, "integer", token.start, token.end, replacement))
        elif token.kind == "string" and previous is not None and previous.text != "extern":
            replacement = string_mutation(t)
            if replacement is not None:
                found.append(make(path, text, "string", token.start, token.end, replacement))
        elif token.kind == "ident":
            if t in ("true", "false") and previous is not None and previous.text == "return":
                flipped = "false" if t == "true" else "true"
                found.append(make(path, text, "return", token.start, token.end, flipped))
            elif statement_start(tokens, i):
                end = call_statement_end(tokens, i)
                if end is not None:
                    found.append(make(path, text, "call", token.start, tokens[end].end, ";"))
        previous = token
    return found


def library_files(patterns: list[str] | None) -> list[str]:
    files = sorted(
        str(p.relative_to(ROOT)) for p in (ROOT / "src").rglob("*")
        if p.suffix in (".cpp", ".h") and "platform" not in p.relative_to(ROOT / "src").parts[:1])
    if patterns:
        files = [f for f in files if any(fnmatch.fnmatch(f, pat) or f.startswith(pat.rstrip("/") + "/")
                                         or f == pat for pat in patterns)]
    return files


def read_equivalents() -> set[tuple[str, str, str]]:
    keys = set()
    if not EQUIVALENTS.exists():
        return keys
    for number, raw in enumerate(EQUIVALENTS.read_text().splitlines(), 1):
        line = raw.rstrip()
        if not line or line.startswith("#"):
            continue
        body, hash_mark, _reason = line.rpartition("  # ")
        path, colon, change = body.partition(": ")
        before, arrow, after = change.partition(SEPARATOR)
        if not (hash_mark and colon and arrow):
            sys.exit(f"{EQUIVALENTS.relative_to(ROOT)}:{number}: expected "
                     f"'FILE: before{SEPARATOR}after  # reason'")
        keys.add((path, before, after))
    return keys


# ---------------------------------------------------------------------------------------------
# Running.

class Worker:
    """A private copy of the tree with its own build folder, where one mutant at a time is
    applied."""

    def __init__(self, base: Path, index: int, build_jobs: int) -> None:
        self.tree = base / ("tree" if index == 0 else f"tree-{index}")
        self.build = self.tree / "build"
        self.build_jobs = build_jobs
        self.env = dict(os.environ, CCACHE_BASEDIR=str(self.tree))
        self.process: subprocess.Popen | None = None

    def sync(self) -> None:
        """Brings the copy in step with the worktree, touching only files that differ so that
        Ninja rebuilds no more than it must."""
        for part in TREE_PARTS:
            source = ROOT / part
            target = self.tree / part
            if source.is_file():
                self._copy_if_changed(source, target)
                continue
            wanted = set()
            for path in source.rglob("*"):
                if path.is_file():
                    relative = path.relative_to(source)
                    wanted.add(relative)
                    self._copy_if_changed(path, target / relative)
            if target.exists():
                for path in sorted(target.rglob("*"), reverse=True):
                    if path.is_file() and path.relative_to(target) not in wanted:
                        path.unlink()

    @staticmethod
    def _copy_if_changed(source: Path, target: Path) -> None:
        if target.exists() and target.read_bytes() == source.read_bytes():
            return
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(source, target)

    def configure(self) -> None:
        if (self.build / "build.ninja").exists():
            return
        run(["cmake", "-S", str(self.tree), "-B", str(self.build), "-G", "Ninja",
             "-DCMAKE_BUILD_TYPE=None", "-DCMAKE_CXX_FLAGS=-O0"], self, check=True)

    def compile(self, timeout: float) -> bool:
        result = run(["nice", "-n", "10", "cmake", "--build", str(self.build), "-j",
                      str(self.build_jobs), "--target", "hostkit_tests"],
                     self, timeout=timeout)
        return result is not None and result.returncode == 0

    def test(self, timeout: float, area: str = "") -> str:
        result = run(["nice", "-n", "10", str(self.build / "tests" / "hostkit_tests"),
                      "--gtest_fail_fast", "--gtest_brief=1",
                      "--gtest_filter=" + AREA_TESTS.get(area, "*")], self, timeout=timeout,
                     cwd=self.build)
        if result is None:
            return "timeout"
        return "survived" if result.returncode == 0 else "killed"


def run(command: list[str], worker: Worker, timeout: float | None = None, check: bool = False,
        cwd: Path | None = None) -> subprocess.CompletedProcess | None:
    """Runs a command of a worker quietly in its own process group; None when it ran out of
    time (the whole group is stopped then)."""
    process = subprocess.Popen(command, env=worker.env, cwd=cwd, stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT, start_new_session=True, text=True,
                               errors="replace")
    worker.process = process
    try:
        output, _ = process.communicate(timeout=timeout)
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        process.communicate()
        return None
    except BaseException:
        os.killpg(process.pid, signal.SIGKILL)
        process.communicate()
        raise
    finally:
        worker.process = None
    if check and process.returncode != 0:
        sys.exit(f"{' '.join(command)} failed:\n{output[-4000:]}")
    return subprocess.CompletedProcess(command, process.returncode, output, "")


def evaluate(worker: Worker, mutant: Mutant, test_timeout: float, whole_suite: bool) -> str:
    source = worker.tree / mutant.path
    original = source.read_bytes()
    text = original.decode()
    try:
        source.write_text(text[:mutant.start] + mutant.replacement + text[mutant.end:])
        if not worker.compile(timeout=600):
            return "not-compiled"
        return worker.test(test_timeout, "" if whole_suite else mutant.folder())
    finally:
        source.write_bytes(original)


def rate(counts: collections.Counter) -> str:
    decided = counts["killed"] + counts["survived"] + counts["timeout"]
    if decided == 0:
        return "   -  "
    return f"{100.0 * (counts['killed'] + counts['timeout']) / decided:5.1f}%"


def report(results: list[tuple[Mutant, str]], out) -> None:
    for title, group in (("folder", Mutant.folder), ("operator", lambda m: m.op)):
        table: dict[str, collections.Counter] = collections.defaultdict(collections.Counter)
        for mutant, outcome in results:
            table[group(mutant)][outcome] += 1
            table["all"][outcome] += 1
        print(f"\n{title:<14} killed  survived  timeout  not-compiled  kill rate", file=out)
        for name in sorted(table, key=lambda n: (n == "all", n)):
            c = table[name]
            print(f"{name:<14} {c['killed']:6} {c['survived']:9} {c['timeout']:8} "
                  f"{c['not-compiled']:13}  {rate(c)}", file=out)


def interrupt(_signal: int, _frame) -> None:
    """SIGTERM stops a run as Ctrl-C does: files restored, results so far reported."""
    raise KeyboardInterrupt


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--files", nargs="+", help="files, folders or globs under src/")
    parser.add_argument("--sample", type=int, help="test only N mutants drawn at random")
    parser.add_argument("--seed", type=int, default=1, help="seed of the sample (default 1)")
    parser.add_argument("--jobs", type=int, default=1,
                        help="mutants tested at once, each in its own copy of the tree")
    parser.add_argument("--build-jobs", type=int, default=2, help="Ninja jobs per build")
    parser.add_argument("--timeout", type=float, default=120,
                        help="seconds the tests of one mutant may take")
    parser.add_argument("--work", default=str(ROOT / "build-mut"),
                        help="folder of the copies and their builds (default build-mut/)")
    parser.add_argument("--survivors", default=None,
                        help="where the surviving mutants go (default WORK/survivors.txt)")
    parser.add_argument("--whole-suite", action="store_true",
                        help="run every test for every mutant, not only those of its folder")
    parser.add_argument("--list", action="store_true", help="only list the mutants")
    parser.add_argument("--min-kill-rate", type=float, default=None,
                        help="exit 1 when fewer than this percentage are killed")
    args = parser.parse_args()
    signal.signal(signal.SIGTERM, interrupt)

    equivalents = read_equivalents()
    everything = [m for f in library_files(args.files)
                  for m in mutants_of(f, (ROOT / f).read_text())]
    # The sample is drawn before the equivalents leave it, so that recording one keeps the
    # rest of a seed's sample as it was.
    if args.sample is not None and args.sample < len(everything):
        everything = sorted(random.Random(args.seed).sample(everything, args.sample),
                            key=lambda m: (m.path, m.start))
    mutants = [m for m in everything if m.key() not in equivalents]
    skipped = len(everything) - len(mutants)
    if args.list:
        for mutant in mutants:
            print(mutant.describe())
        return 0
    print(f"{len(mutants)} mutants ({skipped} equivalents skipped)", flush=True)

    work = Path(args.work).resolve()
    workers = [Worker(work, i, args.build_jobs) for i in range(max(1, args.jobs))]
    for worker in workers:
        worker.sync()
        worker.configure()
        if not worker.compile(timeout=3600):
            sys.exit(f"the unmutated tree does not build in {worker.build}")
        if worker.test(args.timeout) != "survived":
            sys.exit(f"the tests fail without any mutant in {worker.build}")

    results: list[tuple[Mutant, str]] = []
    pending = collections.deque(enumerate(mutants, 1))
    lock = threading.Lock()
    stopping = threading.Event()
    started = time.monotonic()

    def serve(worker: Worker) -> None:
        while True:
            with lock:
                if not pending:
                    return
                number, mutant = pending.popleft()
            outcome = evaluate(worker, mutant, args.timeout, args.whole_suite)
            if stopping.is_set():
                return
            with lock:
                results.append((mutant, outcome))
                print(f"[{number}/{len(mutants)}] {outcome:<12} {mutant.describe()}", flush=True)

    threads = [threading.Thread(target=serve, args=(w,), daemon=True) for w in workers]
    try:
        for thread in threads:
            thread.start()
        for thread in threads:
            while thread.is_alive():
                thread.join(0.5)
    except KeyboardInterrupt:
        # Stops the builds and tests under way; each worker then restores its file.
        stopping.set()
        with lock:
            pending.clear()
        for worker in workers:
            process = worker.process
            if process is not None:
                try:
                    os.killpg(process.pid, signal.SIGKILL)
                except ProcessLookupError:
                    pass
        for thread in threads:
            thread.join()
        print("interrupted; the results so far:", file=sys.stderr)

    elapsed = time.monotonic() - started
    report(results, sys.stdout)
    survivors = sorted((m for m, outcome in results if outcome == "survived"),
                       key=lambda m: (m.path, m.line))
    survivors_path = Path(args.survivors) if args.survivors else work / "survivors.txt"
    survivors_path.parent.mkdir(parents=True, exist_ok=True)
    survivors_path.write_text("".join(
        f"{m.path}:{m.line}: {m.before}{SEPARATOR}{m.after}  [{m.op}]\n" for m in survivors))
    per = elapsed / len(results) if results else 0.0
    print(f"\n{len(results)} mutants in {elapsed:.0f} s ({per:.1f} s each); "
          f"survivors in {survivors_path}")
    if args.min_kill_rate is not None:
        decided = [o for _, o in results if o != "not-compiled"]
        killed = sum(o in ("killed", "timeout") for o in decided)
        if not decided or 100.0 * killed / len(decided) < args.min_kill_rate:
            print(f"kill rate below {args.min_kill_rate}%", file=sys.stderr)
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
