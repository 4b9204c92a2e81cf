"""What the tests have run of the sources, from what llvm-cov exports: lines, and conditions.

Lines of functions that only the compiler runs are left out: those that are consteval, and those that are constexpr and that
no test runs at all.

A condition that decides alone has to have been true once and false once; one of several has to have changed the decision
alone (MC/DC). Of a template, one of its forms is enough. In the folders and files of EVERY_CONDITION this holds for all
of them but those that docs/conditions.md lists with the reason; a line that it lists counts as run. A row there that
nothing needs is an error, too.

    llvm-cov export ... | coverage.py SOURCE_DIR LINES    writes the lines that no test runs to LINES
"""
import collections
import json
import pathlib
import re
import sys

EVERY_CONDITION = ("checker", "reader", "mend/foreign", "mend/header", "mend/layout", "mend/list_view", "mend/locate",
                   "mend/text")
LEAST_LINES = 97  # percent, of each folder
NO_PROGRAM = ("bench", "examples", "fuzz", "harness", "samples", "tests")
ALONE, ONE_OF_SEVERAL = 4, 6

root = pathlib.Path(sys.argv[1]).resolve()
data = json.load(sys.stdin)["data"][0]
sources = {}


def measured(path):
    name = pathlib.Path(path)
    return name.is_relative_to(root) and not set(name.relative_to(root).parts[:-1]) & {*NO_PROGRAM, "build"}


def source(path):
    return sources.setdefault(path, pathlib.Path(path).read_text().split("\n"))


def text(path, line, column, last_line, last_column):
    part = source(path)[line - 1 : last_line]
    part[-1] = part[-1][: last_column - 1]
    part[0] = part[0][column - 1 :]
    return re.sub(r"\s+", " ", " ".join(part)) or source(path)[line - 1].strip()  # a macro has no place of its own


def head_of(path, line):
    """What stands before the body of a function, which begins in this line."""
    head = line - 1
    while head > 0 and not re.search(r"[;}]$|^$|^ *//|^namespace", source(path)[head - 1]):
        head -= 1
    return " ".join(source(path)[head:line])


def is_switch(where):
    path, line, column, *_ = where
    return source(path)[line - 1][: column - 1].endswith("switch (")


def lines_of(segments):
    """Of each line that can be run, whether it was."""
    here = collections.defaultdict(list)
    for line, _, count, has_count, is_entry, is_gap in segments:
        here[line].append((count, has_count, is_entry, is_gap))
    lines, wrapped = {}, None
    for line in range(min(here, default=0), max(here, default=-1) + 1):
        entries = [count for count, has_count, is_entry, is_gap in here[line] if has_count and is_entry and not is_gap]
        skips = bool(here[line]) and here[line][0][2] and not here[line][0][1]
        if not skips and (entries or (wrapped and wrapped[1])):
            lines[line] = max(entries + ([wrapped[0]] if wrapped and wrapped[1] else [])) > 0
        wrapped = here[line][-1] if here[line] else wrapped
    return lines


lines = {file["filename"]: lines_of(file["segments"]) for file in data["files"] if measured(file["filename"])}
alone = collections.defaultdict(lambda: [0, 0])  # times true, times false
parts = collections.defaultdict(set)  # of a decision: its conditions
changed = {}  # of a decision: of each condition, whether it has changed the decision
bodies = collections.Counter()  # times run
for function in data["functions"]:
    begin, _, end, _, count, *_ = function["regions"][0]
    bodies[function["filenames"][0], begin, end] += count
for (path, begin, end), count in bodies.items():
    head = head_of(path, begin) if path in lines else ""
    if "consteval" in head or ("constexpr" in head and count == 0):
        for line in range(begin, end + 1):
            lines[path].pop(line, None)
for function in data["functions"]:
    path = function["filenames"][0]
    if path not in lines or "consteval" in head_of(path, function["regions"][0][0]):
        continue
    for *place, times_true, times_false, number, _, kind in function["branches"]:
        where = (function["filenames"][number], *place)
        if kind == ALONE and is_switch(where):
            continue  # of all cases there are; that there is no other is nothing to test
        if kind == ALONE:
            alone[where][0] += times_true
            alone[where][1] += times_false
        elif kind == ONE_OF_SEVERAL:
            for decision in function["mcdc_records"]:
                if decision[:2] <= place[:2] and place[2:] <= decision[2:4]:
                    parts[(path, *decision[:4])].add(where)
    for *place, number, _, flags in function["mcdc_records"]:
        where = (function["filenames"][number], *place)
        before = changed.get(where, [False] * len(flags))
        changed[where] = [a or b for a, b in zip(before, flags)]


def conditions(path, line, column, last_line, last_column):
    """The conditions of a decision in their order; constants, which clang leaves out, as None."""
    ends = []
    inside = [place for name, *place in changed if name == path and [line, column] <= place[:2]
              and place[2:] <= [last_line, last_column] and place != [line, column, last_line, last_column]]  # of a lambda
    for number in range(line, last_line + 1):
        for found in re.finditer(r"&&|\|\|", source(path)[number - 1]):
            place = [number, found.start() + 1]
            if [line, column] <= place < [last_line, last_column] and not any(
                    other[:2] <= place < other[2:] for other in inside):
                ends.append((number, found.start() + 1))
    begin = (line, column)
    for end in [*ends, (last_line, last_column)]:
        here = [part for part in parts[path, line, column, last_line, last_column] if begin <= part[1:3] < end]
        yield here[0] if here else None
        begin = end


shown = {where: min(times) > 0 for where, times in alone.items() if where[0] in lines}
for where, flags in changed.items():
    if where[0] in lines:
        shown |= {part: flag for part, flag in zip(conditions(*where), flags, strict=True) if part}

# --- The exceptions -------------------------------------------------------------------------------------------------

row = re.compile(r"\| `(\S+)` \| `(.+?)` \| (.+) \|$")
page = (root / "docs/conditions.md").read_text().split("\n")
excepted = collections.Counter(match.groups()[:2] for match in map(row.match, page) if match)
wrong = []
for where, is_shown in sorted(shown.items()):
    name = str(pathlib.Path(where[0]).relative_to(root))
    key = name, text(*where).replace("|", r"\|")
    if is_shown or not name.startswith(EVERY_CONDITION):
        continue
    if excepted[key] <= 0:
        wrong.append(f"{name}:{where[1]}: no test shows that this condition matters: {key[1]}")
    excepted[key] -= 1
for path, of_file in lines.items():
    for line in [line for line, was_run in of_file.items() if not was_run]:
        key = str(pathlib.Path(path).relative_to(root)), source(path)[line - 1].strip()
        if excepted[key] > 0:
            excepted[key] -= 1
            of_file[line] = True
wrong += [f"docs/conditions.md: nothing needs the exception {' '.join(key)}" for key, n in excepted.items() if n > 0]

# --- The table ------------------------------------------------------------------------------------------------------

rooms = collections.defaultdict(lambda: [0, 0, 0, 0])
for path, of_file in lines.items():
    room = rooms[pathlib.Path(path).relative_to(root).parts[0]]
    conditions_of_file = [is_shown for where, is_shown in shown.items() if where[0] == path]
    for i, value in enumerate((sum(of_file.values()), len(of_file), sum(conditions_of_file), len(conditions_of_file))):
        room[i] += value
print("lines    conditions")
for name, (run, all_lines, good, conditions) in sorted(rooms.items()):
    print(f"{100 * run / max(1, all_lines):5.1f} %  {good:5} of {conditions:5}  {name}")
    if 100 * run < LEAST_LINES * all_lines:
        wrong.append(f"{name}/: the tests run fewer than {LEAST_LINES} % of the lines")
missing = [f"{pathlib.Path(path).relative_to(root)}:{line}: {source(path)[line - 1]}\n"
           for path, of_file in sorted(lines.items()) for line, was_run in of_file.items() if not was_run]
pathlib.Path(sys.argv[2]).write_text("".join(missing))
sys.exit("\n".join(wrong))
