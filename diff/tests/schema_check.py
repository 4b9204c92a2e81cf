"""schema_check.py KBDIFF SCHEMA SAMPLES: every line that kbdiff prints of pairs of samples fits the schema, and the lines
have all members that it knows."""

import glob
import json
import subprocess
import sys

try:
    import jsonschema
except ImportError:
    sys.exit(77)

kbdiff, schema, samples = sys.argv[1:]
schema = json.load(open(schema))
jsonschema.Draft7Validator.check_schema(schema)
validator = jsonschema.Draft7Validator(schema)
seen = set()


def check(*arguments):
    run = subprocess.run([kbdiff, "--json", "--order", *arguments], capture_output=True)
    assert run.returncode in (0, 1), (arguments, run)
    for line in run.stdout.splitlines():
        line = json.loads(line)
        validator.validate(line)
        seen.update(line)


files = sorted(glob.glob(samples + "/*.kb"))
for one, other in zip(files, files[1:] + files[:1]):
    check(one, other)
check(samples, samples + "/hurt")
wanted = {member for part in ("difference", "damage", "summary") for member in schema["definitions"][part]["properties"]}
assert seen == wanted, seen ^ wanted
