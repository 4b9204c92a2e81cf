"""schema_check.py KBSURVEY SCHEMA DOCUMENT REPORT...: every line of the reports fits the schema, the schema refuses
lines that are wrong, and the document describes exactly the members that the schema has. A line of a report that
KBSURVEY has not written fits the schema when it has taken it in, or is refused."""

import copy
import json
import re
import subprocess
import sys

import jsonschema

schema = json.load(open(sys.argv[2]))
jsonschema.Draft7Validator.check_schema(schema)
validator = jsonschema.Draft7Validator(schema)
lines = [json.loads(line) for path in sys.argv[4:] for line in open(path, "rb")]
assert len(lines) > 30
for line in lines:
    validator.validate(line)

# Each of these changes to a line of an ERR file is refused, or the schema says nothing.
good = next(line for line in lines if line["verdict"] == "ERR")
for member, value in [("path", ""), ("path", "a\\n"), ("path", "\\xFF"), ("bytes", -1), ("modified", "today"),
                      ("version", "3.0"), ("verdict", "err"), ("verdict", "none"), ("reason", "unreadable"),
                      ("counts", {"tag": 0}), ("counts", {"Tag": 1}), ("findings", {}), ("more", 1)]:
    assert not validator.is_valid({**good, member: value}), (member, value)
for member, value in [("id", "Tag"), ("stage", "deep"), ("element", -1), ("found", 2**32), ("offset", "1"), ("more", 1)]:
    bad = copy.deepcopy(good)
    bad["findings"][0][member] = value
    assert not validator.is_valid(bad), (member, value)
for member in good:
    assert not validator.is_valid({name: value for name, value in good.items() if name != member}), member

# What is asked only with an option is there as a whole or not at all, and only of files that need it.
mended = next(line for line in lines if "repair_undone" in line)
for member, value in [("repair", "good"), ("repair", None), ("repair", "salvaged"), ("repair_words", None),
                      ("repair_words", 0), ("repair_undone", 0), ("verdict", "OK")]:
    assert not validator.is_valid({**mended, member: value}), (member, value)
for member in ("repair", "repair_words"):
    assert not validator.is_valid({name: value for name, value in mended.items() if name != member}), member

described = re.findall(r"^\| `(\w+)` \|[^|]*\|[^|]*\|$", open(sys.argv[3]).read(), re.M)
wanted = [*schema["properties"], *schema["definitions"]["finding"]["properties"]]
assert described == wanted, (described, wanted)

# Foreign lines, each with one member that is odd or missing.
ODD = ["", "x", "Tag", "a--b", "\\n", "\\xFF", "\\x41", "\0", "x" * 5000, "\\xff" * 1024, "0.5", "-0.500000000",
       "9" * 30 + ".000000000", -1, 0, 1, 1.5, 2**32, 2**64 - 1, 2**70, None, True, [], {}, {"tag": 0}, {"Tag": 1}, {"": 1},
       {"tag": 2**64 - 1}, ["tag"], [{}]]
taken = refused = 0
for place, member in [("line", name) for name in mended] + [("finding", name) for name in mended["findings"][0]]:
    for value in [*ODD, ...]:
        odd = copy.deepcopy(mended)
        changed = odd if place == "line" else odd["findings"][0]
        if value is ...:
            del changed[member]
        else:
            changed[member] = value
        run = subprocess.run([sys.argv[1], "--merge", "-", "--json", "-"], input=json.dumps(odd) + "\n",
                             capture_output=True, text=True)
        assert run.returncode in (0, 1, 2, 3), (member, value, run)
        refused += run.returncode == 3
        for out in run.stdout.splitlines():
            taken += 1
            try:
                validator.validate(json.loads(out))
            except jsonschema.ValidationError as error:
                raise AssertionError((place, member, value, out[:500])) from error
assert taken > 50 and refused > 300, (taken, refused)
