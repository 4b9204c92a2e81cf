"""Compares kova.hexpat with kova.ksy, without a parser of either: the same records with the same fields in the same
order, every type there before it is used, and balanced brackets. Usage: hexpat_check.py FOLDER"""
import pathlib
import re
import sys

folder = pathlib.Path(sys.argv[1])
ksy, hexpat = ((folder / name).read_text() for name in ("kova.ksy", "kova.hexpat"))
failures = []
depth = []
for character in re.sub("//.*", "", hexpat):
    if character in "([{":
        depth.append(character)
    elif character in ")]}" and (not depth or depth.pop() + character not in ("()", "[]", "{}")):
        failures.append("brackets do not fit")
if depth:
    failures.append(f"{len(depth)} brackets are open")

simple = {"u8": "", "u32": "u4", "s32": "s4", "float": "f4"}
known = {}
for name, body in re.findall(r"^struct (\w+)(?:<auto bytes>)? \{\n(.*?)^\};", hexpat, re.M | re.S):
    known[name] = fields = []
    for kind, field in re.findall(r"^ +(\w+)(?:<.*>)? (\w+)(?:\[.*\])?;$", body, re.M):
        if kind not in simple and kind not in known:
            failures.append(f"{name}.{field}: there is no {kind}")
        if (field, kind) not in fields:
            fields.append((field, simple.get(kind, kind)))

described = {}
fields = described["kova"] = []
for indent, key, value in re.findall(r"^( *)(?:- )?(\w+):(?: (.*))?$", ksy, re.M):
    if indent == "  " and value == "":
        fields = described[key] = []
    elif key == "id" and indent != "  ":
        fields.append([value, ""])
    elif key == "id" and value != "kova":
        fields.append([value, ""])
    elif key in ("type", "_") or key.isdigit():
        if fields[-1][1] in ("", value):
            fields[-1][1] = value
        elif [fields[-1][0], value] not in fields:
            fields.append([fields[-1][0], value])
for name in sorted({*known, *described}):
    one, other = (sorted(map(tuple, fields.get(name, []))) for fields in (known, described))
    names = [list(dict.fromkeys(field for field, _ in fields.get(name, []))) for fields in (known, described)]
    if one != other or names[0] != names[1]:
        failures.append(f"{name}: {set(one) ^ set(other)}")
blocks = [{name.removesuffix(end) for name in known if name.endswith(end)} - {"file_header"} for end in ("_ext", "_maker")]
if blocks[0] != blocks[1]:
    failures.append(f"what is decoded of a maker block has the name of the block: {blocks[0] ^ blocks[1]}")
if len(known) < 28:
    failures.append(f"only {len(known)} records were found")
print("\n".join(failures[:10]))
sys.exit(bool(failures))
