#!/usr/bin/env python3
"""Plants off-by-one faults in the core, one at a time, and lists the ones
no test catches.

Each comparison in the chosen folders is turned off by one (`<` <-> `<=`,
`>` <-> `>=`), and each whole-number or character literal that is an operand
of a comparison (`==` and `!=` included) is moved by one both ways. For
every fault the program rebuilds a copy of the checkout (the checkout
itself is never written to), runs the tests and puts the file back.

The copy lives in build/faults/tree and is built in
build/faults/tree/build/default, at the same depth as the default preset's
folder, so that ccache serves every file the fault did not change.

Tests run in two steps, stopping at the first failure:
  1. the test program of the fault's own folder (qv_requests_test, ...),
     built alone;
  2. everything else the default preset's ctest runs, except the format
     check, the kill test and quorvex-sim's signal test (see CTEST_EXCLUDE).
A test that runs past its time limit counts as catching the fault (it
hangs). A fault whose file no longer compiles is reported apart: that is
a comparison the lexer took for something else.

Results are appended to build/faults/results.tsv; --resume skips the
faults already there, so a long sweep can be stopped and taken up again.
"""

import argparse
import io
import os
import re
import shutil
import signal
import subprocess
import sys
import tarfile
import time
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
DEFAULT_FOLDERS = ["src/requests", "src/server", "src/settings"]
WORK = ROOT / "build" / "faults"
TREE = WORK / "tree"
BUILD = TREE / "build" / "default"
RESULTS = WORK / "results.tsv"
# Faults no test can catch, each with the reason: "FILE | the line's code |
# the fault | why it cannot matter". A survivor listed there is reported
# as explained, not as a test missing.
EXPLAINED = ROOT / "scripts" / "plant-faults-equivalent.txt"
# Left out of the tests run for a fault: the format check (a fault can make
# a line longer; that is no test catching it), and two slow tests of code
# outside the swept folders: the kill test (atomic saves under SIGKILL,
# 10 s) and quorvex-sim's signal handling.
CTEST_EXCLUDE = "^(format|kill_test\\.saves|sim_interrupt)$"

# ---------------------------------------------------------------- lexing


@dataclass
class Token:
    kind: str  # "id", "num", "char", "punct"
    text: str
    start: int  # offset in the file
    line: int


PUNCTS = sorted(
    """<=> <<= >>= ... ->* -> ++ -- << >> <= >= == != && || += -= *= /= %=
    &= |= ^= :: .* { } [ ] ( ) ; : , ? ~ ! + - * / % ^ & | = < > .""".split(),
    key=len,
    reverse=True,
)
NUM_RE = re.compile(r"(?:0[xX][0-9a-fA-F']+|\d[\d']*(?:\.\d*)?(?:[eE][+-]?\d+)?"
                    r"|\.\d+(?:[eE][+-]?\d+)?)[a-zA-Z]*")
ID_RE = re.compile(r"[A-Za-z_]\w*")
RAW_RE = re.compile(r'(?:u8|u|U|L)?R"([^(\s]*)\(')


def lex(src):
    """Tokens of a C++ file, without comments, strings and preprocessor
    lines. Character literals are kept (they can be bounds)."""
    tokens = []
    i, n, line = 0, len(src), 1
    at_line_start = True
    while i < n:
        c = src[i]
        if c == "\n":
            line += 1
            i += 1
            at_line_start = True
            continue
        if c in " \t\r\f\v":
            i += 1
            continue
        if at_line_start and c == "#":
            # A preprocessor line, with its continuations.
            while i < n and src[i] != "\n":
                if src[i] == "\\" and i + 1 < n and src[i + 1] == "\n":
                    line += 1
                    i += 2
                    continue
                i += 1
            continue
        at_line_start = False
        if src.startswith("//", i):
            while i < n and src[i] != "\n":
                i += 1
            continue
        if src.startswith("/*", i):
            end = src.find("*/", i + 2)
            end = n if end < 0 else end + 2
            line += src.count("\n", i, end)
            i = end
            continue
        m = RAW_RE.match(src, i)
        if m:
            close = ")" + m.group(1) + '"'
            end = src.find(close, m.end())
            end = n if end < 0 else end + len(close)
            line += src.count("\n", i, end)
            i = end
            continue
        if c == '"' or (c in "uUL" and re.match(r'(?:u8|u|U|L)"', src[i:i + 3])):
            j = src.index('"', i) + 1
            while j < n and src[j] != '"':
                j += 2 if src[j] == "\\" else 1
            i = j + 1
            continue
        if c == "'" or (c in "uUL" and re.match(r"(?:u8|u|U|L)'", src[i:i + 3])):
            j = src.index("'", i) + 1
            while j < n and src[j] != "'":
                j += 2 if src[j] == "\\" else 1
            tokens.append(Token("char", src[i:j + 1], i, line))
            i = j + 1
            continue
        m = NUM_RE.match(src, i) if (c.isdigit() or (c == "." and i + 1 < n and src[i + 1].isdigit())) else None
        if m:
            tokens.append(Token("num", m.group(0), i, line))
            i = m.end()
            continue
        m = ID_RE.match(src, i)
        if m:
            tokens.append(Token("id", m.group(0), i, line))
            i = m.end()
            continue
        for p in PUNCTS:
            if src.startswith(p, i):
                tokens.append(Token("punct", p, i, line))
                i += len(p)
                break
        else:
            i += 1  # a stray character (a backslash, "@", ...)
    return tokens


# ------------------------------------------------------ template brackets

# Names always followed by a template argument list when followed by "<".
TEMPLATE_NAMES = {
    "template", "static_cast", "dynamic_cast", "const_cast",
    "reinterpret_cast", "bit_cast",
}
# Tokens that may stand inside a template argument list.
ARG_PUNCTS = {"::", ",", "*", "&", "&&", "(", ")", "[", "]", "...", "<", ">",
              ">>", "-", "+"}
# Tokens that may follow the closing ">" of a template argument list.
AFTER_TEMPLATE = {"(", ")", "{", "}", "::", ",", ";", ">", ">>", "&", "&&",
                  "*", "...", "[", "=", ":"}


def template_brackets(tokens):
    """Indexes of the "<", ">" and ">>" tokens that bracket template
    arguments rather than compare."""
    marked = set()
    for k, t in enumerate(tokens):
        if t.text != "<" or k in marked or k == 0:
            continue
        prev = tokens[k - 1]
        if prev.kind != "id" or prev.text == "operator":
            continue
        forced = prev.text in TEMPLATE_NAMES
        close = _match_template(tokens, k)
        if close is None:
            continue
        closers, after = close
        if not forced:
            nxt = tokens[after] if after < len(tokens) else None
            if nxt is not None and not (nxt.kind == "id" or
                                        nxt.text in AFTER_TEMPLATE):
                continue
        marked.add(k)
        marked.update(closers)
    return marked


def _match_template(tokens, k):
    """From the "<" at k: the brackets of the argument list (nested ones
    included) and the index after it, if what follows reads as template
    arguments."""
    depth = 1  # angle depth
    paren = 0
    opens = [k]
    inner = []
    j = k + 1
    while j < len(tokens):
        t = tokens[j]
        if t.text in (";", "{", "}"):
            return None
        if t.kind == "punct" and t.text not in ARG_PUNCTS and paren == 0:
            return None  # inside brackets (decltype(a.*b)) anything goes
        if t.text == "(" or t.text == "[":
            paren += 1
        elif t.text == ")" or t.text == "]":
            paren -= 1
            if paren < 0:
                return None
        elif t.text == "<" and paren == 0:
            if tokens[j - 1].kind != "id":
                return None
            depth += 1
            opens.append(j)
        elif t.text in (">", ">>") and paren == 0:
            inner.append(j)
            depth -= len(t.text)
            if depth <= 0:
                if depth < 0:
                    return None
                return opens + inner, j + 1
        elif t.text == "&&" and paren == 0:
            return None
        j += 1
    return None


# ----------------------------------------------------------------- sites

RELATIONAL = {"<": "<=", "<=": "<", ">": ">=", ">=": ">"}
EQUALITY = {"==", "!="}
# Tokens that end an operand of a comparison (lower precedence, or a
# bracket that closes around it).
OPERAND_STOP = {"&&", "||", "?", ":", ",", ";", "=", "+=", "-=", "*=", "/=",
                "{", "}", "<<", ">>", "==", "!=", "return", "&", "|", "^"}


@dataclass
class Fault:
    path: str  # relative to the checkout
    line: int
    start: int
    end: int
    old: str
    new: str
    what: str

    @property
    def key(self):
        return f"{self.path}:{self.line}:{self.start}:{self.new}"


def operand_literals(tokens, k, templates):
    """Literal tokens that stand in the operands of the comparison at k, at
    the operand's own bracket depth."""
    found = []
    for step in (-1, 1):
        opening, closing = (("(", "["), (")", "]"))[::step]
        depth = 0
        j = k + step
        while 0 <= j < len(tokens):
            t = tokens[j]
            if t.text in opening:
                depth += 1
            elif t.text in closing:
                if depth == 0:
                    break
                depth -= 1
            elif depth == 0 and (t.text in OPERAND_STOP or
                                 (t.text in RELATIONAL and j not in templates) or
                                 t.text in ("if", "while")):
                break
            if depth == 0 and t.kind in ("num", "char"):
                found.append(j)
            j += step
    return found


def literal_faults(path, t, what):
    out = []
    if t.kind == "char":
        body = t.text
        out.append((f"({body} - 1)", f"{what} {body} -> {body} - 1"))
        out.append((f"({body} + 1)", f"{what} {body} -> {body} + 1"))
        return out
    m = re.fullmatch(r"(0[xX][0-9a-fA-F']+|\d[\d']*)([uUlLzZ]*)", t.text)
    if not m:
        return out  # floating point: not a bound
    digits, suffix = m.group(1).replace("'", ""), m.group(2)
    value = int(digits, 0)
    if value > 0 or "u" not in suffix.lower():
        down = value - 1
        out.append((f"({down}{suffix})" if down < 0 else f"{down}{suffix}",
                    f"{what} {t.text} -> {down}{suffix}"))
    out.append((f"{value + 1}{suffix}", f"{what} {t.text} -> {value + 1}{suffix}"))
    return out


def faults_in(path, src):
    tokens = lex(src)
    templates = template_brackets(tokens)
    faults = []
    literal_seen = set()
    for k, t in enumerate(tokens):
        if t.kind != "punct" or k in templates:
            continue
        if k > 0 and tokens[k - 1].text == "operator":
            continue
        if t.text in RELATIONAL:
            new = RELATIONAL[t.text]
            faults.append(Fault(path, t.line, t.start, t.start + len(t.text),
                                t.text, new, f"{t.text} -> {new}"))
        if t.text in RELATIONAL or t.text in EQUALITY:
            for j in operand_literals(tokens, k, templates):
                if j in literal_seen:
                    continue
                literal_seen.add(j)
                lit = tokens[j]
                for new, what in literal_faults(path, lit, f"in {t.text}:"):
                    faults.append(Fault(path, lit.line, lit.start,
                                        lit.start + len(lit.text), lit.text,
                                        new, what))
    faults.sort(key=lambda f: (f.line, f.start, f.new))
    # The same fault twice on a line: say which one.
    same = {}
    for f in faults:
        same.setdefault((f.line, f.what), []).append(f)
    for group in same.values():
        if len(group) > 1:
            for n, f in enumerate(group, 1):
                f.what += f" ({n} of {len(group)})"
    return faults


def source_files(folders, only):
    files = []
    for folder in folders:
        base = ROOT / folder
        cands = [base] if base.is_file() else sorted(base.rglob("*"))
        for p in cands:
            if p.suffix not in (".cpp", ".h") or p.name.endswith("_test.cpp"):
                continue
            rel = str(p.relative_to(ROOT))
            if only and not re.search(only, rel):
                continue
            files.append(rel)
    return files


# ------------------------------------------------------------ the copy


def checkout_files(rev):
    """(path, bytes, mode) of the checkout's files: as they stand (committed
    or not), or as of commit `rev`."""
    if rev:
        data = subprocess.run(["git", "archive", "--format=tar", rev], cwd=ROOT,
                              check=True, capture_output=True).stdout
        with tarfile.open(fileobj=io.BytesIO(data)) as tar:
            for m in tar.getmembers():
                if m.isfile():
                    yield m.name, tar.extractfile(m).read(), m.mode
        return
    out = subprocess.run(
        ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
        cwd=ROOT, check=True, capture_output=True).stdout
    for rel in out.decode().split("\0"):
        p = ROOT / rel
        if rel and p.is_file():
            yield rel, p.read_bytes(), p.stat().st_mode


def sync_tree(rev=None):
    """Makes build/faults/tree hold the checkout's files, touching only
    those that differ, so that the build stays incremental."""
    wanted = set()
    for rel, data, mode in checkout_files(rev):
        wanted.add(rel)
        dst = TREE / rel
        if dst.is_file() and dst.read_bytes() == data:
            continue
        dst.parent.mkdir(parents=True, exist_ok=True)
        dst.write_bytes(data)
        os.chmod(dst, mode & 0o777)
    for p in TREE.rglob("*"):
        rel = str(p.relative_to(TREE))
        if rel.startswith("build/") or rel == "build":
            continue
        if p.is_file() and rel not in wanted:
            p.unlink()


def run(cmd, log, timeout=None):
    with open(log, "ab") as out:
        out.write(("$ " + " ".join(cmd) + "\n").encode())
        out.flush()
        proc = subprocess.Popen(cmd, cwd=TREE, stdout=out, stderr=subprocess.STDOUT,
                                start_new_session=True)
        try:
            return proc.wait(timeout=timeout)
        except subprocess.TimeoutExpired:
            os.killpg(proc.pid, signal.SIGKILL)
            proc.wait()
            return "timeout"
        except BaseException:
            os.killpg(proc.pid, signal.SIGKILL)
            proc.wait()
            raise


def configure(log):
    env_ok = os.environ.get("CMAKE_CXX_COMPILER_LAUNCHER")
    args = ["cmake", "-S", ".", "-B", str(BUILD), "-G", "Ninja",
            "-DCMAKE_BUILD_TYPE=RelWithDebInfo", "-DQUORVEX_BUILD_BENCH=OFF"]
    # Every fault relinks a dozen programs: lld does it several times faster
    # than the default linker, and the compiled files stay those of the
    # default preset (ccache).
    if shutil.which("ld.lld"):
        args += ["-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld"]
    if env_ok:
        args.append(f"-DCMAKE_CXX_COMPILER_LAUNCHER={env_ok}")
    return run(args, log) == 0


def build(targets, log):
    cmd = ["cmake", "--build", str(BUILD), "-j", str(JOBS)]
    for t in targets:
        cmd += ["--target", t]
    return run(cmd, log) == 0


def folder_test(path):
    parts = Path(path).parts
    return f"qv_{parts[1]}_test" if len(parts) > 2 and parts[0] == "src" else None


def test_steps(fault, log, timeout):
    """'caught: WHERE' or 'survived' or 'no-build'."""
    own = folder_test(fault.path)
    if own:
        if not build([own], log):
            return "no-build", ""
        r = run([str(BUILD / own), "--gtest_brief=1"], log, timeout)
        if r != 0:
            return "caught", own + (" (timeout)" if r == "timeout" else "")
    if not build([], log):
        return "no-build", ""
    r = run(["ctest", "--test-dir", str(BUILD), "-j", str(JOBS),
             "--stop-on-failure", "--timeout", str(timeout),
             "-E", CTEST_EXCLUDE, "--output-on-failure"], log)
    if r != 0:
        failed = last_failed_tests()
        return "caught", "ctest: " + (failed or "failed")
    return "survived", ""


def last_failed_tests():
    f = BUILD / "Testing" / "Temporary" / "LastTestsFailed.log"
    if not f.exists():
        return ""
    names = [ln.split(":", 1)[-1].strip() for ln in f.read_text().splitlines() if ln]
    return ", ".join(names[:3]) + (" ..." if len(names) > 3 else "")


# ------------------------------------------------------------------ main

JOBS = 2
_restore = {}


def restore_all():
    for dst, data in list(_restore.items()):
        dst.write_bytes(data)
        del _restore[dst]


def _on_signal(signum, _frame):
    raise KeyboardInterrupt(f"signal {signum}")


def load_results():
    done = {}
    if RESULTS.exists():
        for ln in RESULTS.read_text().splitlines():
            cols = ln.split("\t")
            if len(cols) >= 4:
                done[cols[0]] = cols
    return done


def main():
    global JOBS
    ap = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    ap.add_argument("folders", nargs="*", default=DEFAULT_FOLDERS,
                    help="folders or files of the checkout (default: %(default)s)")
    ap.add_argument("--only", help="regular expression the file paths must match")
    ap.add_argument("--lines", help="only faults on lines FROM-TO")
    ap.add_argument("--no-equality", action="store_true",
                    help="leave out the numbers compared with == and !=")
    ap.add_argument("--max", type=int, default=0, help="plant at most N faults")
    ap.add_argument("--list", action="store_true", help="list the faults, plant nothing")
    ap.add_argument("--resume", action="store_true",
                    help="skip faults already in build/faults/results.tsv")
    ap.add_argument("--survivors", action="store_true",
                    help="plant again only the faults that survived last time")
    ap.add_argument("--unexplained", action="store_true",
                    help="with --survivors: leave out those explained in "
                    "scripts/plant-faults-equivalent.txt")
    ap.add_argument("--timeout", type=int, default=120,
                    help="seconds a test program may run (default %(default)s)")
    ap.add_argument("-j", "--jobs", type=int, default=2)
    ap.add_argument("--rev", help="test the sources as of this commit (the "
                    "faults are still found in the checkout's files, which "
                    "must not differ from it in the swept folders' code)")
    ap.add_argument("--summary", action="store_true",
                    help="only sum up build/faults/results.tsv")
    ap.add_argument("--restore", action="store_true",
                    help="only make the copy match the checkout again")
    args = ap.parse_args()
    JOBS = args.jobs
    if args.restore:
        if TREE.exists():
            sync_tree()
        return 0

    faults = []
    for rel in source_files(args.folders, args.only):
        faults += faults_in(rel, (ROOT / rel).read_text())
    if args.no_equality:
        faults = [f for f in faults if not re.match(r"in (==|!=):", f.what)]
    if args.lines:
        lo, hi = (int(x) for x in args.lines.split("-"))
        faults = [f for f in faults if lo <= f.line <= hi]
    if args.summary:
        return summary(faults)
    if args.list:
        for f in faults:
            print(f"{f.path}:{f.line}: {f.what}")
        print(f"{len(faults)} faults in {len({f.path for f in faults})} files",
              file=sys.stderr)
        return 0

    done = load_results() if args.resume or args.survivors else {}
    if args.survivors:
        todo = [f for f in faults if done.get(f.key, ["", ""])[1] == "survived"]
        if args.unexplained:
            known = explained_faults()
            todo = [f for f in todo
                    if (f.path, line_code(f"{f.path}:{f.line}")[1], f.what)
                    not in known]
    else:
        if not args.resume and RESULTS.exists():
            RESULTS.unlink()
        todo = [f for f in faults if f.key not in done]
    if args.max:
        todo = todo[:args.max]

    for s in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(s, _on_signal)
    WORK.mkdir(parents=True, exist_ok=True)
    log = WORK / "last.log"
    log.write_bytes(b"")
    try:
        print(f"copying the checkout to {TREE.relative_to(ROOT)} ...", flush=True)
        sync_tree(args.rev)
        if not configure(log):
            print(f"configuring failed; see {log}", file=sys.stderr)
            return 2
        print("building the unchanged copy and running its tests ...", flush=True)
        if not build([], log):
            print(f"the unchanged copy does not build; see {log}", file=sys.stderr)
            return 2
        if run(["ctest", "--test-dir", str(BUILD), "-j", str(JOBS), "-E",
                CTEST_EXCLUDE, "--timeout", str(args.timeout)], log) != 0:
            print(f"the unchanged copy fails its tests; see {log}", file=sys.stderr)
            return 2
        print(f"planting {len(todo)} of {len(faults)} faults", flush=True)
        for n, f in enumerate(todo, 1):
            dst = TREE / f.path
            original = dst.read_bytes()
            text = original.decode()
            assert text[f.start:f.end] == f.old, f.key
            _restore[dst] = original
            dst.write_text(text[:f.start] + f.new + text[f.end:])
            t0 = time.time()
            log.write_bytes(b"")
            try:
                outcome, where = test_steps(f, log, args.timeout)
            finally:
                restore_all()
            secs = time.time() - t0
            if outcome == "no-build":
                shutil.copy(log, WORK / f"no-build-{n}.log")
            with open(RESULTS, "a") as out:
                out.write(f"{f.key}\t{outcome}\t{f.path}:{f.line}\t{f.what}\t{where}\n")
            print(f"[{n}/{len(todo)}] {f.path}:{f.line}: {f.what}: {outcome}"
                  f"{' by ' + where if where else ''} ({secs:.0f} s)", flush=True)
    except KeyboardInterrupt:
        restore_all()
        print("interrupted; the copy is restored", file=sys.stderr)
        return 130
    finally:
        restore_all()
    return summary(faults)


def explained_faults():
    known = {}
    if EXPLAINED.exists():
        for ln in EXPLAINED.read_text().splitlines():
            if not ln.strip() or ln.startswith("#"):
                continue
            path, code, what, why = (c.strip() for c in ln.split(" | ", 3))
            known[(path, code, what)] = why
    return known


def line_code(where):
    path, line = where.rsplit(":", 1)
    lines = (ROOT / path).read_text().splitlines()
    return path, lines[int(line) - 1].strip()


def summary(faults):
    by_key = {f.key: f for f in faults}
    rows = [cols for k, cols in load_results().items() if k in by_key]
    for cols in rows:  # named as the faults are named now
        cols[3] = by_key[cols[0]].what
    counts = {}
    for cols in rows:
        counts[cols[1]] = counts.get(cols[1], 0) + 1
    known = explained_faults()
    survivors, explained = [], []
    for cols in rows:
        if cols[1] == "survived":
            path, code = line_code(cols[2])
            why = known.get((path, code, cols[3]))
            (explained if why else survivors).append(cols)
    print()
    print(f"planted {len(rows)}: caught {counts.get('caught', 0)}, survived "
          f"{counts.get('survived', 0)} ({len(explained)} of them explained in "
          f"{EXPLAINED.relative_to(ROOT)}), did not build "
          f"{counts.get('no-build', 0)}")
    if faults and len(rows) < len(faults):
        print(f"not planted yet: {len(faults) - len(rows)} (--resume goes on)")
    if survivors:
        print("\nnot caught by any test:")
        for cols in survivors:
            print(f"  {cols[2]}: {cols[3]}    {line_code(cols[2])[1]}")
    nobuild = [c for c in rows if c[1] == "no-build"]
    if nobuild:
        print("\ndid not build (not a comparison after all?):")
        for cols in nobuild:
            print(f"  {cols[2]}: {cols[3]}")
    return 1 if survivors else 0


if __name__ == "__main__":
    sys.exit(main())
