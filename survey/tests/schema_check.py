"""schema_check.py SCHEMA DOCUMENT REPORT...: every line of the reports fits the schema, the schema refuses lines that
are wrong, and the document describes exactly the members that the schema has."""

import copy
import json
import re
import sys

import jsonschema

schema = json.load(open(sys.argv[1]))
jsonschema.Draft7Validator.check_schema(schema)
validator = jsonschema.Draft7Validator(schema)
lines = [json.loads(line) for path in sys.argv[3:] for line in open(path, "rb")]
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
mended = next(line for line in lines if line.get("repair") == "mended")
for member, value in [("repair", "good"), ("repair", None), ("repair", "salvaged"), ("repair_words", None),
                      ("repair_words", 0), ("verdict", "OK")]:
    assert not validator.is_valid({**mended, member: value}), (member, value)
for member in ("repair", "repair_words"):
    assert not validator.is_valid({name: value for name, value in mended.items() if name != member}), member

described = re.findall(r"^\| `(\w+)` \|[^|]*\|[^|]*\|$", open(sys.argv[2]).read(), re.M)
wanted = [*schema["properties"], *schema["definitions"]["finding"]["properties"]]
assert described == wanted, (described, wanted)
