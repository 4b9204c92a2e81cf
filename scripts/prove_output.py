"""Proves with z3 that the output of kbaudit stays below what is promised for any file, from what each record costs.

The costs are printed by a program of the build, which takes them from the tables and the functions of the dump. What a
list prints is the sum over its kinds of records; each takes bytes that no other takes, but that

- a light may take none: there are no more of them than entries in the size table of their list,
- records that are promised only take none: of each list there are no more of them than it has words.

The lists of version 1.0 lie one behind the other, and so do those of version 2.0, but the ones may lie over the others.
Then some numbers are changed to wrong ones, and each time the proof has to fail.

    prove_output.py PROGRAM SOURCE_DIR
"""
import collections
import pathlib
import re
import subprocess
import sys

Row = collections.namedtuple("Row", "part list kind role bytes characters")
root = pathlib.Path(sys.argv[2])
WORD = 4


def promised():
    """What the docs promise, and what the tests hold files against: a fixed part, and so many characters for a byte."""
    docs = re.search(r"at most (\d+) KiB \+ (\d+) × size of output", (root / "docs/robustness.md").read_text())
    tests = re.search(r"return (\d+) \* 1024 \+ (\d+) \* size;", (root / "tests/support.h").read_text())
    if docs is None or tests is None or docs.groups() != tests.groups():
        sys.exit("docs/robustness.md and outputBound in tests/support.h do not promise the same")
    return 1024 * int(docs[1]), int(docs[2])


def is_proved(rows, fixed, factor, word=WORD):
    rows = [row._replace(bytes=int(row.bytes), characters=int(row.characters)) for row in rows]
    rows = [row for row in rows if row.characters > 0]
    number = {row: f"n{i}" for i, row in enumerate(rows)}
    bytes_of = {row.list: f"bytes{row.part}_{row.list}" for row in rows}
    script = ["(declare-const size Real)", "(assert (>= size 0))"]
    for name in [*number.values(), *bytes_of.values()]:
        script.append(f"(declare-const {name} Real)(assert (>= {name} 0))")

    def most(name, of):
        script.append(f"(assert (<= {name} {of}))")

    for part in "12":
        most(f"(+ 0 0 {' '.join(name for name in bytes_of.values() if name.startswith(f'bytes{part}'))})", "size")
    for name, its_bytes in bytes_of.items():
        of_list = [row for row in rows if row.list == name]
        most(f"(+ 0 0 {' '.join(f'(* {row.bytes} {number[row]})' for row in of_list)})", its_bytes)
        for row in of_list:
            if row.role == "once":
                most(number[row], "1")
            elif row.role == "zeroed":
                most(f"(* {word} {number[row]})", its_bytes)
            elif row.bytes == 0:
                entries = [number[other] for other in of_list if other.role == "entry"]
                most(number[row], f"(+ 0 {' '.join(entries)})")
    script.append("(check-sat)")
    output = " ".join(f"(* {row.characters} {number[row]})" for row in rows)
    script.append(f"(assert (> (+ {output}) (+ {fixed} (* {factor} size))))(check-sat)")
    result = subprocess.run(["z3", "-in", "-T:60"], input="\n".join(script), capture_output=True, text=True)
    return result.stdout.split() == ["sat", "unsat"]


def changed(of, list="LightList", more=0, **change):
    """The rows with something else for the kinds of one role in a list."""
    return [row._replace(characters=int(row.characters) + more, **change) if (row.list, row.role) == (list, of) else row
            for row in rows]


rows = [Row(*line.split("\t")) for line in subprocess.check_output([sys.argv[1]], text=True).splitlines()]
fixed, factor = promised()
if not is_proved(rows, fixed, factor):
    sys.exit("the bound of the output is not proved")

least = next(n for n in range(factor, 0, -1) if not is_proved(rows, fixed, n - 1))
# Each of these has to make the proof fail.
PLANTED = {
    "an entry of a size table takes three bytes": lambda: is_proved(changed("entry", bytes=3), fixed, factor),
    "a light prints 30 characters more": lambda: is_proved(changed("element", more=30), fixed, factor),
    "a promised light takes half a word": lambda: is_proved(rows, fixed, factor, word=2),
    "a group of weights takes half its bytes": lambda: is_proved(changed("element", "WeightList", bytes=14), fixed, factor),
    "half of the fixed part": lambda: is_proved(rows, fixed // 2, factor),
    f"{least - 1} characters for a byte": lambda: is_proved(rows, fixed, least - 1),
}
for name, proof in PLANTED.items():
    if proof():
        sys.exit(f"it is proved, too, if {name}")
print(f"{len(rows)} kinds of records print at most {fixed // 1024} KiB and {factor} characters for each byte of a file"
      f" (proved from {least} on); each of {len(PLANTED)} wrong numbers makes the proof fail")
