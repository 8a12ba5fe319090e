#!/usr/bin/env python3
"""Mutation testing of the logic libraries.

Applies one small fault at a time to a source file of a logic library (a comparison
flipped or loosened, a constant off by one, + swapped with -, && with ||, a condition
negated, a statement deleted), rebuilds only the suites of that layer, and runs them.
A mutant is killed when a suite fails or runs out of time, survives when all pass, and
is not viable when it does not compile. The mutants are drawn with a fixed seed, so two
runs over the same sources try the same faults; --save and --load keep the exact list.

    scripts/mutate.py --build-dir build/coverage --count 160 --seed 13 --report out.txt

The build directory must be configured and built once beforehand. Every file is
restored after its mutant, also when the run is interrupted. With --compare DIR, a second
tree of suites that the same build holds (its suites' names start with DIR's name and an
underscore, e.g. tests_after/ with after_tst_...) runs against every mutant as well, so
that two versions of the suites are scored on the very same faults. --layers shell (or a
comma-separated list) draws the mutants from those layers only.
"""

import argparse
import json
import os
import random
import re
import signal
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
LAYERS = ["protocol", "stats", "monitor", "sampling", "shell"]
# Widget sub-libraries are not logic; their faults show on screen, not in results.
SKIP_DIRS = {"widgets", "window"}

BINARY = [
    (" == ", " != "), (" != ", " == "),
    (" < ", " <= "), (" <= ", " < "), (" > ", " >= "), (" >= ", " > "),
    (" < ", " > "), (" > ", " < "),
    (" + ", " - "), (" - ", " + "),
    (" && ", " || "), (" || ", " && "),
]
WORDS = [(r"\btrue\b", "false"), (r"\bfalse\b", "true")]
INT_LITERAL = re.compile(r"(?<![\w.])(\d+)(?![\w.'])")
CONDITION = re.compile(r"\b(if|while) \(")
SKIP_LINE = re.compile(r"^\s*(#|//|\*|/\*)|qC(Debug|Info|Warning|Critical)|Q_LOGGING_CATEGORY|"
                       r"static_assert|Q_DECLARE|Q_ENUM|^\s*case ")
DECLARATION = re.compile(r"^\s*(const |constexpr |static |auto |return\b|[\w:<>,]+[&*]? [\w_]+( =|\{|;|\())")


def masked(line):
    """The line with string and character literals and trailing comments blanked out."""
    out, quote, i = [], None, 0
    while i < len(line):
        c = line[i]
        if quote:
            if c == "\\":
                out.append("  ")
                i += 2
                continue
            out.append(" " if c != quote else c)
            if c == quote:
                quote = None
        elif c in "\"'":
            quote = c
            out.append(c)
        elif line.startswith("//", i):
            out.append(" " * (len(line) - i))
            break
        else:
            out.append(c)
        i += 1
    return "".join(out)[: len(line)]


def closing_paren(text, start):
    depth = 0
    for i in range(start, len(text)):
        if text[i] == "(":
            depth += 1
        elif text[i] == ")":
            depth -= 1
            if depth == 0:
                return i
    return -1


def candidates(path):
    rel = str(path.relative_to(ROOT))
    lines = path.read_text().split("\n")
    found = []

    def add(number, kind, new_line):
        found.append({"file": rel, "line": number + 1, "kind": kind,
                      "original": lines[number], "mutated": new_line})

    for n, line in enumerate(lines):
        if SKIP_LINE.search(line) or not line.strip():
            continue
        m = masked(line)
        for old, new in BINARY:
            for hit in re.finditer(re.escape(old), m):
                # A template argument list has no spaces around its brackets; a stream
                # operator or an arrow is not a comparison.
                a, b = hit.start(), hit.end()
                add(n, f"{old.strip()}->{new.strip()}", line[:a] + new + line[b:])
        for pattern, new in WORDS:
            for hit in re.finditer(pattern, m):
                add(n, f"{hit.group(0)}->{new}", line[: hit.start()] + new + line[hit.end():])
        if "[" not in m and "enum" not in m:
            for hit in INT_LITERAL.finditer(m):
                value = int(hit.group(1))
                add(n, f"{value}->{value + 1}",
                    line[: hit.start()] + str(value + 1) + line[hit.end():])
        for hit in CONDITION.finditer(m):
            open_at = hit.end() - 1
            close_at = closing_paren(m, open_at)
            if close_at > 0:
                inner = line[open_at + 1: close_at]
                add(n, "negate", line[: open_at + 1] + "!(" + inner + ")" + line[close_at:])
        stripped = m.strip()
        if (stripped.endswith(";") and not DECLARATION.search(m) and "{" not in m
                and "}" not in m and stripped.count(";") == 1 and not stripped.startswith(")")):
            indent = line[: len(line) - len(line.lstrip())]
            add(n, "delete", indent + ";")
    return found


def all_candidates(layers):
    result = []
    for layer in layers:
        for path in sorted((ROOT / "src" / layer).rglob("*.cpp")):
            if SKIP_DIRS & set(path.relative_to(ROOT / "src" / layer).parts[:-1]):
                continue
            result.extend(candidates(path))
    return result


def layer_suites(build_dir, tree):
    """The names of the suites right in <tree>/<layer>/ (not those of its widget
    libraries in subfolders), from CTest's own listing."""
    info = json.loads(subprocess.run(
        ["ctest", "--test-dir", str(build_dir), "--show-only=json-v1"],
        check=True, capture_output=True, text=True).stdout)
    suites = {layer: [] for layer in LAYERS}
    for test in info["tests"]:
        # A suite that was not built has no command yet: it belongs to no layer here.
        if "command" not in test:
            continue
        exe = Path(test["command"][0])
        parts = exe.relative_to(build_dir.resolve()).parts
        if len(parts) == 3 and parts[0] == tree and parts[1] in suites:
            suites[parts[1]].append(test["name"])
    return suites


def run(cmd, timeout, env=None):
    # A session of its own: a mutant can make a suite signal its whole process group (a
    # kill of process 0 when the program it started is already gone), which must end that
    # run only, not the campaign.
    try:
        return subprocess.run(cmd, cwd=ROOT, capture_output=True, text=True, timeout=timeout,
                              env=env, start_new_session=True).returncode
    except subprocess.TimeoutExpired:
        return "timeout"


def build(build_dir, targets, jobs):
    return run(["cmake", "--build", str(build_dir), "-j", str(jobs), "--target", *targets], 900)


def test(build_dir, names, suite_timeout):
    regex = "^(" + "|".join(re.escape(n) for n in names) + ")$"
    env = dict(os.environ, QT_QPA_PLATFORM="offscreen", GCOV_PREFIX="/tmp/corvane-mutate-gcov")
    return run(["ctest", "--test-dir", str(build_dir), "-R", regex, "--stop-on-failure",
                "--timeout", str(suite_timeout)], suite_timeout * len(names) + 60, env)


def layer_of(mutant):
    return Path(mutant["file"]).parts[1]


def report(tree, results):
    print(f"\n== {tree}\nfile                                          killed survived not-viable")
    by_file = {}
    for r in results:
        by_file.setdefault(r["file"], {"killed": 0, "survived": 0, "not viable": 0, "gone": 0})
        by_file[r["file"]][r["outcome"]] += 1
    for f, c in sorted(by_file.items()):
        print(f"{f:45} {c['killed']:6} {c['survived']:8} {c['not viable']:10}")
    killed = sum(c["killed"] for c in by_file.values())
    viable = killed + sum(c["survived"] for c in by_file.values())
    print(f"\nmutation score of {tree}: {killed}/{viable} viable mutants killed "
          f"({100.0 * killed / max(viable, 1):.1f} %)")
    print("surviving mutants:")
    for r in results:
        if r["outcome"] == "survived":
            print(f"  {r['file']}:{r['line']} {r['kind']}: {r['original'].strip()}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--build-dir", default="build/coverage")
    parser.add_argument("--seed", type=int, default=13)
    parser.add_argument("--count", type=int, default=160)
    parser.add_argument("--suite-timeout", type=int, default=60)
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--save", help="write the drawn mutants to this JSON file")
    parser.add_argument("--load", help="try the mutants of this JSON file instead of drawing")
    parser.add_argument("--results", help="write every mutant with its outcome to this JSON file")
    parser.add_argument("--list-only", action="store_true", help="draw and save, do not run")
    parser.add_argument("--compare", help="a second tree of suites in the build to score too")
    parser.add_argument("--layers", default=",".join(LAYERS),
                        help="comma-separated layers to draw mutants from (default: all)")
    args = parser.parse_args()
    build_dir = (ROOT / args.build_dir).resolve()

    if args.load:
        mutants = json.loads(Path(args.load).read_text())
    else:
        layers = [layer.strip() for layer in args.layers.split(",") if layer.strip()]
        unknown = sorted(set(layers) - set(LAYERS))
        if unknown:
            sys.exit(f"unknown layers: {' '.join(unknown)} (known: {' '.join(LAYERS)})")
        pool = all_candidates(layers)
        mutants = random.Random(args.seed).sample(pool, min(args.count, len(pool)))
        mutants.sort(key=lambda m: (m["file"], m["line"], m["kind"]))
        print(f"{len(pool)} candidate mutants, {len(mutants)} drawn with seed {args.seed}")
    if args.save:
        Path(args.save).write_text(json.dumps(mutants, indent=1))
    if args.list_only:
        return 0

    trees = ["tests"] + ([args.compare] if args.compare else [])
    suites = {tree: layer_suites(build_dir, tree) for tree in trees}
    # A suite that fails without any mutant cannot tell a mutant apart; leave it out.
    for tree in trees:
        for layer in sorted({layer_of(m) for m in mutants}):
            if build(build_dir, suites[tree][layer], args.jobs) != 0:
                sys.exit(f"the suites of {tree}/{layer} do not build unmutated")
            healthy = [s for s in suites[tree][layer]
                       if test(build_dir, [s], args.suite_timeout) == 0]
            for s in sorted(set(suites[tree][layer]) - set(healthy)):
                print(f"left out (fails unmutated): {s}")
            suites[tree][layer] = healthy
            print(f"{tree}/{layer}: {' '.join(healthy)}", flush=True)

    current = {"path": None, "text": None}

    def restore(*_):
        if current["path"]:
            current["path"].write_text(current["text"])
            current["path"] = None
        if _:
            sys.exit(130)

    signal.signal(signal.SIGTERM, restore)
    signal.signal(signal.SIGINT, restore)

    results = []
    started = time.time()
    for index, mutant in enumerate(mutants, 1):
        path = ROOT / mutant["file"]
        text = path.read_text()
        lines = text.split("\n")
        number = mutant["line"] - 1
        if number >= len(lines) or lines[number] != mutant["original"]:
            matches = [i for i, l in enumerate(lines) if l == mutant["original"]]
            if len(matches) != 1:
                outcome = "gone"
                results.append(dict(mutant, outcome=outcome))
                print(f"[{index}/{len(mutants)}] {outcome:10} {mutant['file']}:{mutant['line']}")
                continue
            number = matches[0]
        lines[number] = mutant["mutated"]
        current.update(path=path, text=text)
        path.write_text("\n".join(lines))
        outcomes = {}
        try:
            targets = [t for tree in trees for t in suites[tree][layer_of(mutant)]]
            if build(build_dir, targets, args.jobs) != 0:
                outcomes = {tree: "not viable" for tree in trees}
            else:
                for tree in trees:
                    passed = test(build_dir, suites[tree][layer_of(mutant)],
                                  args.suite_timeout) == 0
                    outcomes[tree] = "survived" if passed else "killed"
        finally:
            restore()
        results.append(dict(mutant, outcome=outcomes["tests"], outcomes=outcomes))
        print(f"[{index}/{len(mutants)}] {' / '.join(outcomes[t] for t in trees):22} "
              f"{mutant['file']}:{mutant['line']} {mutant['kind']}  "
              f"({time.time() - started:.0f} s)", flush=True)
        if args.results:
            Path(args.results).write_text(json.dumps(results, indent=1))

    for tree in trees:
        report(tree, [dict(r, outcome=r.get("outcomes", {}).get(tree, r["outcome"]))
                      for r in results])
    return 0


if __name__ == "__main__":
    sys.exit(main())
