#!/usr/bin/env bash
# kbrepair as a program: what it prints and writes, INPUT and OUTPUT that may not be written, and hostile names, as a
# transcript; that what is told of a mended file is what was done; a limit of memory.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$SOURCE_DIR/tests/lib.sh"
tools "$KBREPAIR"
mkdir -p "$scratch"/before/{folder,hostile}
cd "$scratch/before"
samples=$SOURCE_DIR/samples
cp "$samples"/{town,small-1,cut,light-type}.kb .
cp "$samples/header-tag.kb" bad.kb # small-1.kb, one word changed
printf 'this is no scene, but it is longer than the header of one: %0100d' 0 >not.kb
printf old >there.kb
chmod 640 there.kb
ln -s there.kb link.kb
ln -s nowhere broken.kb
ln bad.kb hard.kb
ln -s hard.kb soft.kb
cp bad.kb private.kb
chmod 600 private.kb
mkfifo pipe
for name in -h --force $'a\nmended: 0 words changed' $'\e[2Jx' $'\xff\xfe' '"},{"x":"' '\x41' ' ' '{}' '[a,b]'; do cp bad.kb "hostile/$name"; done
transcript "$SOURCE_DIR/repair/tests/golden/commands.out" <<'END'
kbrepair town.kb out.kb
kbrepair bad.kb out.kb
kbrepair not.kb out.kb
kbrepair --partial not.kb out.kb
kbrepair light-type.kb out.kb
kbrepair --partial light-type.kb out.kb
kbrepair cut.kb out.kb
kbrepair --partial cut.kb out.kb
kbrepair --salvage cut.kb out.kb
kbrepair private.kb out.kb
kbrepair bad.kb -
kbrepair not.kb -
for i in town bad not light-type cut; do kbrepair --json $i.kb out-$i.kb; done
for i in not light-type cut; do kbrepair --json --partial $i.kb out-$i.kb; done
kbrepair --json --salvage cut.kb out.kb
for o in "" --json --partial --salvage --force; do for i in town bad not light-type; do kbrepair -n $o $i.kb out.kb | tail -n 1; done; done
kbrepair --dry-run bad.kb
kbrepair --diagnose bad.kb
kbrepair --diagnose --json cut.kb
kbrepair
kbrepair --nonsense town.kb out.kb
kbrepair town.kb
kbrepair --force
kbrepair town.kb out.kb out2.kb
kbrepair --part 0 town.kb out.kb
kbrepair --drop town.kb out.kb
kbrepair --help
kbrepair -h | cksum
kbrepair --version | wc -l
kbrepair missing.kb out.kb
kbrepair "" out.kb
kbrepair town.kb ""
kbrepair folder out.kb
kbrepair pipe out.kb
kbrepair town.kb folder
kbrepair -f town.kb folder
kbrepair --force bad.kb none/out.kb
kbrepair --force bad.kb town.kb/out.kb
kbrepair bad.kb there.kb
kbrepair bad.kb link.kb
kbrepair bad.kb broken.kb
kbrepair --force missing.kb there.kb
kbrepair --force not.kb there.kb
kbrepair --force bad.kb there.kb
kbrepair --force bad.kb link.kb
for o in bad.kb ./bad.kb folder/../bad.kb hard.kb soft.kb; do kbrepair --force bad.kb $o; kbrepair --partial bad.kb $o; done
kbrepair --force soft.kb bad.kb
kbrepair --dry-run bad.kb hard.kb
for to in '- >>' '- 1<>' 'out.kb 1<>' '-n >>' '--diagnose >>' '- 2>>' '2>>'; do eval "kbrepair bad.kb ${to}hard.kb"; echo $?; done
kbrepair -f bad.kb out.kb >out.kb
ulimit -f 1; kbrepair bad.kb out.kb
kbrepair --force bad.kb pipe
kbrepair bad.kb out.kb >/dev/full
kbrepair --json bad.kb out.kb >/dev/full
kbrepair town.kb out.kb >/dev/full
kbrepair --dry-run town.kb >/dev/full
kbrepair --help >/dev/full
kbrepair bad.kb - >/dev/full
kbrepair --force bad.kb /dev/full
kbrepair town.kb out.kb >&-
kbrepair bad.kb out.kb >&-
kbrepair bad.kb out.kb <&- 2>&-
for option in "" --json; do kbrepair $option bad.kb - 2>/dev/full; kbrepair $option bad.kb - 2>&-; done
trap '' PIPE; { sleep 0.2; kbrepair bad.kb out.kb; echo $? >status; } | :; cat status
cd hostile; for name in *; do kbrepair -- "$name" "$name.out"; kbrepair -- "$name" "$name.out"; kbrepair --json -n -- "$name"; done
END

# --- What is told is what is done ---

mkdir "$scratch/told"
cd "$scratch/told"
# OUTPUT is INPUT with the changes that are told, and nothing else; mended again, nothing is.
tell='import json, sys
lines = [json.loads(line) for line in sys.stdin]
undone, changes, end = [l for l in lines if "undone" in l and "what" in l], [l for l in lines if "field" in l], lines[-1]
data = bytearray(open(sys.argv[1], "rb").read())
assert lines == undone + changes + [end]
assert end["input"] == sys.argv[1] and (end["undone"], end["changes"]) == (len(undone), len(changes)) and end["losses"] == 0
for u in undone:
    before, at, count = len(data), u["at"], u["count"]
    if u["undone"] == "line-ends": data = data.replace(b"\r\n", b"\n"); assert before - len(data) == count
    elif u["undone"] == "utf-8": data = data.decode().encode("latin-1"); assert before - len(data) == count
    elif u["undone"] == "byte-order": data = bytes(data[i ^ u["value"]] for i in range(count))
    elif u["undone"] == "front": data = data[count:]
    elif u["undone"] == "behind": assert before == at + count; data = data[:at]
    elif u["undone"] == "part": data = data[at:at + count]
    else: assert False, u
    data = bytearray(data)
assert sorted(c["offset"] for c in changes) == [c["offset"] for c in changes]
for c in changes:
    at = c["offset"]
    assert c["list"] and c["field"] and c["why"] and c["old"] != c["new"]
    assert data[at:at + 4] == c["old"].to_bytes(4, "big"), c
    data[at:at + 4] = c["new"].to_bytes(4, "big")
assert not end["written"] and end["output"] is None if len(sys.argv) < 3 else end["written"] and end["output"] == sys.argv[2]
assert len(sys.argv) < 3 or end["reason"] is None and open(sys.argv[2], "rb").read() == data'
mended=0
for sample in "$samples"/*.kb; do
  if "$KBREPAIR" --json "$sample" out.kb >told; then
    mended=$((mended + 1))
    run 0 "what is told of $sample" python3 -c "$tell" "$sample" out.kb <told
    run 0 "$sample, mended again" "$KBREPAIR" out.kb again.kb
    same "$sample, mended again" "nothing to mend; again.kb audits OK" "$(cat "$scratch/out")"
    cmp out.kb again.kb || fail "$sample: mended twice is not what mended once is"
    rm out.kb again.kb
  fi
  [ ! -e out.kb ] || fail "$sample: written, but not mended"
done
[ "$mended" -ge 25 ] || fail "only $mended samples can be mended"

# --- Memory ---

truncate -s 3000000000 huge.kb
if sanitized || ! has prlimit; then
  notice "a limit of memory"
else
  run 2 "a file that needs more memory than there is" prlimit --as=1000000000 "$KBREPAIR" huge.kb out.kb
  same "its message" "kbrepair: not enough memory." "$(cat "$scratch/err")"
fi
[ ! -e out.kb ] || fail "something is written"
