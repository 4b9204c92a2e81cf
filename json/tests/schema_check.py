"""Holds every document of kbjson against its schema: of all small samples, as they are and lean."""
import json
import pathlib
import subprocess
import sys

try:
    import jsonschema
except ImportError:
    print("skipped: python3-jsonschema is not here")
    sys.exit(77)

kbjson, schema_path, samples = sys.argv[1:]
schema = json.loads(pathlib.Path(schema_path).read_text())
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)
failures = 0
for path in sorted(pathlib.Path(samples).glob("*.kb")):
    if path.stat().st_size > 10_000:  # a validator is slow, and the small ones have every form
        continue
    for option in ("--force", "--lean"):
        document = json.loads(subprocess.run([kbjson, option, path], check=True, capture_output=True).stdout)
        for error in list(validator.iter_errors(document))[:3]:
            failures += 1
            print(f"{path.name} {option}: {'/'.join(map(str, error.absolute_path))}: {error.message[:300]}")

# What must not pass.
good = {"FileHeader": {"version": "0x100"}, "NameList": {"element": [{"text": "root"}]}}
validator.validate(good)
for wrong in ({"FileHeader": {}}, {"NameList": {"element": [{"txt": "root"}]}}, {"NameList": {"element": [{"text": 1}]}},
              {"ObjList": {"element": [{}]}}, {"ObjList": {"obj_num": 4294967296}}, {"Objects": {}},
              {"ObjList": {"raw": "!"}}):
    if validator.is_valid({**good, **wrong}):
        failures += 1
        print(f"the schema takes {wrong}")
sys.exit(failures != 0)
