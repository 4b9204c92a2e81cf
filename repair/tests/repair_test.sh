#!/usr/bin/env bash
# kbrepair as a program: exit statuses, what is told and what is written, INPUT and OUTPUT that may not be written, and
# hostile names.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$SOURCE_DIR/tests/lib.sh"
mkdir "$scratch/work" "$scratch/samples"
cd "$scratch/work"
cp "$SOURCE_DIR"/samples/*.kb "$scratch/samples"
cp "$scratch"/samples/{town,small-1,cut}.kb .
cp "$scratch/samples/header-tag.kb" bad.kb # small-1.kb, one word changed
printf 'this is no scene, but it is longer than the header of one: %0100d' 0 >not.kb
inputs=(town.kb small-1.kb cut.kb bad.kb not.kb)
sha256sum "${inputs[@]}" >"$scratch/inputs"

repair() { # STATUS ARGUMENT...
  local status=$1
  shift
  run "$status" "kbrepair $*" "$KBREPAIR" "$@"
}
refused() { # STATUS MESSAGE ARGUMENT...: nothing is printed or written
  local status=$1 message=$2
  shift 2
  repair "$status" "$@"
  same "message of kbrepair $*" "kbrepair: $message" "$(cat "$scratch/err")"
  [ ! -s "$scratch/out" ] || fail "kbrepair $* prints: $(head -c 300 "$scratch/out")"
}
written() { # FILE...: these are all that was written; they are removed
  same "files written" \
    "$(printf '%s\n' "$@" | sed '/^$/d' | sort)" "$(find . -mindepth 1 -maxdepth 1 -printf "%P\n" | grep -vxF "$(printf "%s\n" "${inputs[@]}")" | sort)"
  rm -rf -- "$@"
}
last_line() { tail -n 1 "$scratch/out"; }
verdict() { "$KBAUDIT" "$1" 2>/dev/null | grep -a -m 1 '^\*\*\*\* check result : '; }

# --- Outcomes ---

repair 0 town.kb out.kb
same "a good file" "nothing to mend; out.kb audits OK" "$(cat "$scratch/out")"
cmp town.kb out.kb || fail "a good file: OUTPUT is another one"
written out.kb

repair 0 bad.kb out.kb
cmp small-1.kb out.kb || fail "a mended file is not the original"
grep -xE '0x00000008 FileHeader [a-z_]*tag: 0x00000001 -> 0x00000000 \(.+\)' "$scratch/out" >/dev/null ||
  fail "its change is not told"
same "the last line of a mended file" "mended: 1 word changed, out.kb audits OK" "$(last_line)"
written out.kb

repair 1 not.kb out.kb
[[ $(last_line) == "cannot be mended: "*" nothing written" ]] || fail "the last line of a hopeless file: $(last_line)"
written
repair 1 --partial not.kb out.kb
[[ $(last_line) == "cannot be mended: "*" out.kb does not audit OK" ]] || fail "the last line of a partial repair: $(last_line)"
same "size of a partial repair" "$(wc -c <not.kb)" "$(wc -c <out.kb)"
written out.kb

repair 0 bad.kb - # standard output
cmp "$scratch/out" small-1.kb || fail "what is written to standard output"
same "the last line on standard error" "mended: 1 word changed, - audits OK" "$(tail -n 1 "$scratch/err")"
repair 1 not.kb -
[ ! -s "$scratch/out" ] || fail "a hopeless file is written to standard output"
if "$KBREPAIR" bad.kb - >/dev/full 2>"$scratch/err"; then fail "full standard output: status 0"; fi
same "told of full standard output" "kbrepair: standard output cannot be written: No space left on device." "$(tail -n 1 "$scratch/err")"
for option in "" --json; do # a change that could not be told is not written
  for full in /dev/full '&-'; do
    run 3 "OUTPUT - 2>$full" sh -c '"$@" 2>'"$full" sh "$KBREPAIR" ${option:+"$option"} bad.kb -
    [ ! -s "$scratch/out" ] || fail "OUTPUT - 2>$full: it is written"
  done
done
written

repair 1 cut.kb out.kb
written
repair 0 --salvage cut.kb out.kb
[[ $(last_line) == salvaged:*" out.kb audits OK" ]] || fail "the last line of a salvaged file: $(last_line)"
grep -E '^lost: [A-Z][A-Za-z]*(\[[0-9]+\])?: .' "$scratch/out" >/dev/null || fail "no loss is told"
same "verdict of a salvaged file" "**** check result : OK" "$(verdict out.kb)"
written out.kb

for option in "" --json --partial --salvage --force; do
  for input in town:0 bad:0 not:1; do
    # shellcheck disable=SC2086 # none or one
    repair "${input#*:}" --dry-run $option "${input%:*}.kb" out.kb
    written
  done
done
repair 0 --dry-run bad.kb
same "the last line of a dry run" "can be mended: 1 word to change" "$(last_line)"

# --- What is told is what is done ---

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
for sample in ../samples/*.kb; do
  status=0
  "$KBREPAIR" --json "$sample" out.kb >told 2>"$scratch/err" || status=$?
  case $status in
    0)
      mended=$((mended + 1))
      run 0 "what is told of $sample" python3 -c "$tell" "$sample" out.kb <told
      same "verdict of $sample, mended" "**** check result : OK" "$(verdict out.kb)"
      repair 0 out.kb again.kb
      same "$sample, mended again" "nothing to mend; again.kb audits OK" "$(cat "$scratch/out")"
      cmp out.kb again.kb || fail "$sample: mended twice is not what mended once is"
      written told out.kb again.kb
      ;;
    1)
      tail -n 1 told | grep -E '"outcome":"(hopeless|ambiguous)".*"written":false' >/dev/null || fail "$sample: $(tail -n 1 told)"
      written told
      ;;
    *) fail "$sample: status $status: $(cat "$scratch/err")" ;;
  esac
done
[ "$mended" -ge 25 ] || fail "only $mended samples can be mended"

# --- Wrong usage, and files that cannot be read or written ---

for wrong in "" "--nonsense town.kb out.kb" "town.kb" "--force" "town.kb out.kb out2.kb"; do
  # shellcheck disable=SC2086 # several words
  repair 3 $wrong
  if [ -s "$scratch/out" ] || [ ! -s "$scratch/err" ]; then fail "what wrong usage ($wrong) prints"; fi
done
for asked in --help -h --version; do
  repair 0 $asked
  [ -s "$scratch/out" ] || fail "$asked prints nothing"
done
mkdir folder
mkfifo pipe
refused 2 "missing.kb: No such file or directory." missing.kb out.kb
refused 2 ": No such file or directory." "" out.kb
refused 3 $'OUTPUT is empty.\nTry \'kbrepair --help\'.' town.kb ""
refused 2 "folder: not a regular file." folder out.kb
run 2 "a pipe" timeout 20 "$KBREPAIR" pipe out.kb
same "a pipe" "kbrepair: pipe: not a regular file." "$(cat "$scratch/err")"
refused 3 "folder is a folder." town.kb folder
refused 3 "folder is a folder." -f town.kb folder
written folder pipe
for output in none/out.kb town.kb/out.kb; do
  repair 3 --force bad.kb $output
  [[ $(cat "$scratch/err") == "kbrepair: $output cannot be written: "*. ]] || fail "told of $output: $(cat "$scratch/err")"
  written
done
if [ "$(id -u)" -ne 0 ]; then
  cp bad.kb closed.kb
  chmod 0 closed.kb
  refused 2 "closed.kb: Permission denied." closed.kb out.kb
  written closed.kb
fi

# --- OUTPUT that is there, and INPUT under another name ---

printf old >there.kb
chmod 640 there.kb
ln -s there.kb link.kb
ln -s nowhere broken.kb
refused 3 "there.kb exists; --force replaces it." bad.kb there.kb
refused 3 "link.kb exists; --force replaces it." bad.kb link.kb
refused 3 "broken.kb exists; --force replaces it." bad.kb broken.kb
refused 2 "missing.kb: No such file or directory." --force missing.kb there.kb
repair 1 --force not.kb there.kb
same "left where nothing is written" old "$(cat there.kb)"
repair 0 --force bad.kb link.kb
cmp there.kb small-1.kb || fail "--force has not replaced the file"
same "its permissions" 640 "$(stat -c %a there.kb)"
[ -L link.kb ] || fail "--force has replaced a link"
written there.kb link.kb broken.kb

ln bad.kb hard.kb
ln -s hard.kb soft.kb
mkdir folder
for other in bad.kb ./bad.kb folder/../bad.kb hard.kb soft.kb; do
  for option in --force --partial; do
    refused 3 "$other is the same file as INPUT, which is never changed." $option bad.kb "$other"
  done
done
refused 3 "bad.kb is the same file as INPUT, which is never changed." --force soft.kb bad.kb
repair 0 --dry-run bad.kb hard.kb # writes nothing anyway
for stream in '- >>' '- 1<>' 'out.kb 1<>' '-n >>' '--diagnose >>' '- 2>>' '2>>'; do # shows nothing where standard error is INPUT
  run 3 "kbrepair bad.kb ${stream}hard.kb" sh -c '"$1" bad.kb '"${stream}hard.kb" sh "$KBREPAIR"
  [[ $stream = *2* || $(cat "$scratch/err") = "kbrepair: standard output is the same file as INPUT, which is never changed." ]] ||
    fail "kbrepair bad.kb ${stream}hard.kb: $(cat "$scratch/err")"
  cmp "$scratch/samples/header-tag.kb" bad.kb || fail "kbrepair bad.kb ${stream}hard.kb: INPUT is changed"
done
run 0 "standard output as OUTPUT" sh -c '"$1" -f bad.kb out.kb >out.kb; [ $? -eq 3 ] && [ ! -s out.kb ] && rm out.kb' sh "$KBREPAIR"
written hard.kb soft.kb folder

# OUTPUT is as private as INPUT.
cp bad.kb private.kb
chmod 600 private.kb
for input in town bad private; do
  repair 0 $input.kb out.kb
  same "permissions of what is made of $input.kb" "$(stat -c %a $input.kb)" "$(stat -c %a out.kb)"
  rm out.kb
done
written private.kb
# A file that becomes too large, and one that nobody reads.
run 3 "a limit on the size of files" sh -c 'ulimit -f 1; "$@"' sh "$KBREPAIR" bad.kb out.kb
same "told of the limit" "kbrepair: out.kb cannot be written: File too large." "$(cat "$scratch/err")"
written
mkfifo pipe
run 3 "a pipe that nobody reads" timeout 20 "$KBREPAIR" --force bad.kb pipe
same "told of the pipe" "kbrepair: pipe cannot be written: No such device or address." "$(cat "$scratch/err")"
written pipe

# --- Standard output ---

# shellcheck disable=SC2016 # for the other shell
{
  if [ -e /dev/full ]; then
    for options in "" --json; do
      run 3 "full standard output" sh -c '"$@" >/dev/full' sh "$KBREPAIR" ${options:+"$options"} bad.kb out.kb
      same "told of full standard output" "kbrepair: standard output cannot be written: No space left on device." "$(cat "$scratch/err")"
      written # a change that could not be told is not written
      run 3 "full standard output, a good file" sh -c '"$@" >/dev/full' sh "$KBREPAIR" ${options:+"$options"} town.kb out.kb
      written
    done
    run 3 "full standard output, last line" sh -c '"$@" >/dev/full' sh "$KBREPAIR" --dry-run town.kb
    run 3 "full standard output, help" sh -c '"$@" >/dev/full' sh "$KBREPAIR" --help
    repair 3 --force bad.kb /dev/full
  fi
  run 3 "closed standard output, a good file" sh -c '"$@" >&-' sh "$KBREPAIR" town.kb out.kb
  written
  run 3 "closed standard output" sh -c '"$@" >&-' sh "$KBREPAIR" bad.kb out.kb
  same "told of closed standard output" "kbrepair: standard output cannot be written: Bad file descriptor." "$(cat "$scratch/err")"
  written
  run 3 "a pipe that is closed, SIGPIPE ignored" sh -c 'trap "" PIPE; { sleep 0.2; "$@"; echo $? >status; } | :; exit "$(cat status)"' sh "$KBREPAIR" bad.kb out.kb
  same "told of the pipe" "kbrepair: standard output cannot be written: Broken pipe." "$(cat "$scratch/err")"
  written status
  run 0 "other standard streams closed" sh -c '"$@" <&- 2>&-' sh "$KBREPAIR" bad.kb out.kb
  cmp small-1.kb out.kb || fail "with other standard streams closed"
  written out.kb
}

# --- Hostile names ---

mkdir hostile
python3 -c 'import os
data = open("bad.kb", "rb").read()
names = [b"-h", b"--force", b"a\nmended: 0 words changed", b"\x1b[2Jx", b"\xff\xfe", b"\"},{\"x\":\"", b"\\x41", b" ", b"{}", b"[a,b]"]
for name in names: open(b"hostile/" + name, "wb").write(data)'
cd hostile
for name in *; do
  repair 0 -- "$name" "$name.out"
  same "lines of $name" 2 "$(wc -l <"$scratch/out")"
  [[ $(cat "$scratch/out") =~ ^[[:print:][:space:]]*$ && $(last_line) == "mended: 1 word changed, "*" audits OK" ]] ||
    fail "printed for $name: $(cat -v "$scratch/out")"
  cmp -- ../small-1.kb "$name.out" || fail "$name is not mended"
  "$KBREPAIR" --json --dry-run -- "$name" >../told || fail "a dry run of $name"
  run 0 "JSON of $name" python3 -c 'import json, os, re, sys
lines = open(sys.argv[1], "rb").read().splitlines()
path = json.loads(lines[1])["input"]
assert len(lines) == 2 and re.sub(rb"\\x(..)", lambda m: bytes.fromhex(m[1].decode()), path.encode()) == os.fsencode(sys.argv[2])' \
    ../told "$name"
  repair 3 -- "$name" "$name.out"
  same "lines that refuse $name" 1 "$(wc -l <"$scratch/err")"
done
cd ..
written hostile told

# --- Memory ---

truncate -s 3000000000 huge.kb
if sanitized || ! has prlimit; then
  notice "a limit of memory"
else
  run 2 "a file that needs more memory than there is" prlimit --as=1000000000 "$KBREPAIR" huge.kb out.kb
  same "its message" "kbrepair: not enough memory." "$(cat "$scratch/err")"
fi
written huge.kb

sha256sum --quiet -c "$scratch/inputs" || fail "an INPUT was changed"
