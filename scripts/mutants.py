"""Mutation test: changes one place of the library at a time, builds, and runs the tests until one fails."""

import argparse
import os
import pathlib
import random
import re
import subprocess
import sys

RELATIONS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
RELATION = re.compile(r" (<=|>=|==|!=|<|>) ")
OFF_BY_ONE = re.compile(r"(?<=[\w\])] [+-] )1\b(?!\w|\.)|(?<=[(,] )0(?=[,)])|(?<=\()1(?=[,)])")
STATEMENT = re.compile(r"^\s+(?!return|throw|break|continue|case|default|using|static|constexpr|delete|if|for|while)"
                       r"[\w.>*()&\[\]:, -]*(?:\+\+|--| [-+|&]?= |\()[^{}]*;\s*(?://.*)?$")
DECLARATION = re.compile(r"^\s+(?:[\w:<>,]+(?: const)?(?: [*&]| const)*) (?:const )?[*&]?\w+(?:\(.*\)| =.*|\{.*\})?;")
ARGUMENTS = re.compile(r"(?<=\w\()(\w[\w.>-]*), (\w[\w.>-]*)(?=\))")


def mutations(line):
    """All changes of a line, as pairs of a name and the new line."""
    code = line.split("//")[0]
    if re.search(r"template|#|assert|operator|= (delete|default);", code):
        return
    for match in RELATION.finditer(code):
        if match[1] in "<>" and re.search(r"\b(cast|vector|array|map|pair|tuple)\b", code):
            continue
        yield "relation", line[:match.start(1)] + RELATIONS[match[1]] + line[match.end(1):]
    for match in OFF_BY_ONE.finditer(code):
        yield "off by one", line[:match.start()] + str(int(match[0]) + 1) + line[match.end():]
    if STATEMENT.match(code.rstrip("\n")) and not DECLARATION.match(code):
        yield "dropped", "\n"
    for match in ARGUMENTS.finditer(code):
        if match[1] != match[2]:
            yield "swapped", line[:match.start()] + f"{match[2]}, {match[1]}" + line[match.end():]


def candidates(root, pattern):
    for path in sorted(root.glob("qzxmllib/**/*")):
        if path.suffix not in (".cpp", ".h") or not re.search(pattern, str(path)):
            continue
        for number, line in enumerate(path.read_text().splitlines(keepends=True)):
            for kind, changed in mutations(line):
                yield path, number, kind, changed


def run(command, seconds, **options):
    try:
        return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=seconds,
                              **options).returncode
    except subprocess.TimeoutExpired:
        return -1


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--source", type=pathlib.Path, required=True)
    parser.add_argument("--build", type=pathlib.Path, required=True)
    parser.add_argument("--count", type=int, default=200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--files", default="")
    arguments = parser.parse_args()
    root, build = arguments.source.resolve(), arguments.build.resolve()

    subprocess.run(["cmake", "-S", root, "-B", build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                    "-DCMAKE_CXX_FLAGS=-O1 -w", "-DQZXMLLIB_BUILD_EXAMPLES=OFF", "-DQZXMLLIB_BUILD_BENCH=OFF"],
                   check=True, stdout=subprocess.DEVNULL)
    make = ["cmake", "--build", build]
    subprocess.run(make, check=True, stdout=subprocess.DEVNULL)
    suites = sorted((p for p in build.glob("tests/**/Qz*Test") if os.access(p, os.X_OK)), key=lambda p: p.name)
    # A change may make a test run for ever or take all memory.
    limit = ["bash", "-c", 'ulimit -v 8000000; exec "$0" "$@"']

    def killer():
        for suite in suites:
            if run(limit + [str(suite), "--gtest_brief=1"], 120, cwd=suite.parent) != 0:
                return suite.name
        return None

    if killer() is not None:
        sys.exit("the tests fail without a change")
    chosen = list(candidates(root, arguments.files))
    random.Random(arguments.seed).shuffle(chosen)
    tested = invalid = 0
    survivors = []
    for path, number, kind, changed in chosen:
        if tested == arguments.count:
            break
        original = path.read_text()
        lines = original.splitlines(keepends=True)
        was, lines[number] = lines[number], changed
        path.write_text("".join(lines))
        try:
            if run(make, 900) != 0:
                invalid += 1
                continue
            tested += 1
            if killer() is None:
                survivors.append((path, number, kind, was, changed))
                print(f"{path.relative_to(root)}:{number + 1}: {kind}\n-{was.rstrip()}\n+{changed.rstrip()}", flush=True)
        finally:
            path.write_text(original)
    print(f"{tested} changes tested, {tested - len(survivors)} noticed, {len(survivors)} survived; "
          f"{invalid} more did not compile")


if __name__ == "__main__":
    main()
