#!/usr/bin/env bash
# kbsurvey as a program: verdicts, exit statuses, the search, reports, resuming, shards; hostile names and files.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$SOURCE_DIR/tests/lib.sh"
cd "$scratch"
cp -r "$SOURCE_DIR/samples" samples
mkdir good bad
cp samples/{town,figure}.kb good
cp samples/{damaged,version}.kb bad

# field NAME FILE: of the JSON report, a line for each file.
field() {
  python3 -c 'import json, sys
for line in open(sys.argv[2], "rb"): print(json.loads(line)[sys.argv[1]])' "$1" "$2"
}
survey() { # STATUS OPTION...
  local status=$1
  shift
  run "$status" "kbsurvey $*" "$KBSURVEY" "$@"
}
no_out() { [ ! -s "$scratch/out" ] || fail "$1 prints: $(head -c 300 "$scratch/out")"; }

# As a program of its own that is linked with the library.
same "headers of other folders" "" "$(grep -hE '^#include "' "$SOURCE_DIR"/survey/*.{cpp,h} | grep -vE '"((kova|format|survey|common)/|mend/(mend|diagnose).h")' || :)"

# --- Verdicts ---

for sample in samples/*.kb; do
  verdict=$("$KBAUDIT" "$sample" 2>/dev/null | sed -n 's/^\*\*\*\* check result : \(OK\|ERR\).*/\1/p' | head -n 1) || :
  printf '%s %s\n' "$sample" "${verdict:-NONE}"
done >by_kbaudit
survey 2 samples
{ awk '/^(ERR|NONE) / { print $2, $1 }' out; grep ' OK$' by_kbaudit; } | sort >by_kbsurvey
same "verdicts as those of kbaudit" "$(sort by_kbaudit)" "$(cat by_kbsurvey)"
same "summary" "$(wc -l <by_kbaudit) files: $(grep -c 'OK$' by_kbaudit) OK, $(grep -c ERR by_kbaudit) ERR, 1 without verdict (1 other version)" \
  "$(sed -n 's/; [0-9.]* kB in .*//p' out)"

# The texts of the JSON report are what kbaudit prints, without its headings.
"$KBAUDIT" samples/damaged.kb | sed '/^\*\*\*\*/,$d; /^KOVA 1/d; /^---- /d' >printed
survey 1 --json - samples/damaged.kb
python3 -c 'import json, sys; sys.stdout.write("".join(f["text"] for f in json.load(open("out"))["findings"]))' >texts
same "texts of the findings" "$(cat printed)" "$(cat texts)"

# --- Exit statuses, usage and messages ---

tools "$KBSURVEY"
mkdir "$scratch"/{before,before/empty}
cp -r good bad samples "$scratch/before"
printf 'this is no scene, but it is longer than the header of one: %0100d' 0 >not.kb
cp not.kb "$scratch/before"
# What was surveyed once, and what has become of it: for --baseline.
mkdir -p "$scratch"/before/{once,later}/scenes
mkdir states
cp samples/version.kb states/none
for state in ok= obj1=1164=9 obj2=1252=9 both="1164=9 1252=9" link=1144=99; do # the own indices of two objects, and a link
  cp samples/town.kb "states/${state%%=*}"
  # shellcheck disable=SC2086 # several words
  set_words "states/${state%%=*}" ${state#*=}
done
for name in obj1-obj1 ok-obj1 obj1-both both-obj1 obj1-ok obj1-none none-obj1 obj1-obj2 ok-link ok-ok obj1- ok- -obj1 -ok; do
  [ -z "${name%-*}" ] || cp "states/${name%-*}" "$scratch/before/once/scenes/$name.kb"
  [ -z "${name#*-}" ] || cp "states/${name#*-}" "$scratch/before/later/scenes/$name.kb"
done
for options in "once old.json" "once old-deep.json --deep" "later new.json"; do
  read -r state report options <<<"$options"
  (cd "$scratch/before/$state" && run 2 "report of $state" "$KBSURVEY" -q ${options:+"$options"} --json "../$report" scenes)
done
transcript "$SOURCE_DIR/survey/tests/golden/commands.out" <<'END'
kbsurvey good
kbsurvey good bad
kbsurvey bad/damaged.kb
kbsurvey not.kb
kbsurvey empty
kbsurvey missing.kb
kbsurvey
kbsurvey --nonsense
for jobs in 0 x 4097; do kbsurvey -j $jobs good; done
for shard in 3/2 0/3 x; do kbsurvey --shard $shard good; done
for more in "" "--resume x good" "--deep good" "--repairable good" "--name x good" bad/damaged.kb; do kbsurvey --merge $more; done
for more in "--html -" --print0; do kbsurvey --json - $more good; done
for report in --json --junit --html; do kbsurvey $report no/folder good; kbsurvey $report /dev/full good; done
for from in missing good; do kbsurvey --files-from $from; done
for resumed in bad/damaged.kb bad; do kbsurvey --resume $resumed good; done
for option in --name --files-from --json --junit --html --resume --shard --explain; do kbsurvey $option "" good; kbsurvey good $option; done
kbsurvey good ""
kbsurvey --jsn
kbsurvey --hxp
kbsurvey good --quite --merge
kbsurvey $'--\e[2J' good
kbsurvey -qn good
kbsurvey -j0 good
kbsurvey --deep=1
kbsurvey --json a --json=b --nonsense
kbsurvey -qj1 --json=- -- good | sed 's/"modified":"[^"]*"/"modified":"T"/' | sort
kbsurvey --help
kbsurvey a b c --help | cksum
kbsurvey --version | wc -l
kbsurvey --explain tag
kbsurvey --explain nothing
kbsurvey --explain tag size
kbsurvey --list-findings good
for asked in good --help --version --list-findings; do kbsurvey $asked >/dev/full; done
for full in /dev/full '&-'; do eval "kbsurvey --json - samples 2>$full" >/dev/null; echo $?; done
kbsurvey -q --json closed.json bad/version.kb >&-; wc -l <closed.json; rm closed.json
kbsurvey -q -j1 --json - samples | sed 's/"modified":"[^"]*"/"modified":"T"/' | sort
kbsurvey -q -j1 --deep --repairable --json - samples | sed 's/"modified":"[^"]*"/"modified":"T"/' | sort
kbsurvey -q --deep --repairable --junit - samples
kbsurvey -q -j1 --deep --repairable --html - samples | grep '{"survey"' | sed 's/"date":[0-9]*,"seconds":[0-9.]*/T/'
kbsurvey -j1 --deep --repairable samples
kbsurvey -j1 -q --color=always --deep samples
cd once && kbsurvey -q -j1 --baseline ../old.json scenes
cd later && kbsurvey -q -j1 --baseline ../old.json scenes
cd later && kbsurvey -q -j1 --baseline ../old.json --color=always scenes
cd later && mv ../old.json x; kbsurvey -q -j1 --baseline x --json x scenes >told; kbsurvey --baseline x scenes; mv x ../old.json; rm told ../old.json
cd later && for deep in ../old.json ../old-deep.json; do kbsurvey -q -j1 --deep --baseline $deep scenes | grep -e '^since' -e link; done
cd later && kbsurvey -q -j1 --baseline ../old-deep.json scenes | grep -e '^since' -e link
cd later && kbsurvey -q -j1 --baseline ../old.json --print0 scenes | tr '\0' '\n'
cd later && kbsurvey -q -j1 --baseline ../old.json --junit - scenes
cd later && kbsurvey -q -j1 --baseline ../old.json --html - scenes | grep -o '"since":{.*}' | sed 's/,"ids".*//'
cd later && for shard in 1/2 2/2; do kbsurvey -q --shard $shard --baseline ../old.json scenes | grep -e gone -e since; done
TMPDIR=none kbsurvey --merge new.json --baseline old.json | grep -e gone -e since
cd later && kbsurvey -q -j1 --baseline ../old.json scenes/*-ok.kb
head -c 300 old.json >cut.json; kbsurvey --baseline cut.json good; rm cut.json
for old in missing good bad/damaged.kb; do kbsurvey --baseline $old good; done
for report in html junit; do kbsurvey --baseline old.json --$report old.json good; done
kbsurvey --list-findings | while read -r id _; do kbsurvey --explain $id | grep '^Example: '; done
END
"$KBSURVEY" --list-findings | cut -d ' ' -f 1 | xargs -n 1 "$KBSURVEY" --explain | sed -n 's/^Example:  *\([^;]*\).*/\1/p' >examples
same "examples that are printed of no file" "" "$(grep -vE '^((In|Out)put File|WARN : )|out of memory|^The number of lights' examples |
  while read -r text; do cat samples/*.{out,err} "$SOURCE_DIR/tests/golden/cases.out" | grep -F -e "$text" >/dev/null || echo "$text"; done)"

# --- The search ---

mkdir -p tree/deep/er tree/x.kb
cp samples/town.kb tree/deep/er/UPPER.KB
cp samples/town.kb tree/x.kb/in.Kb
cp samples/town.kb tree/other.scene
cp samples/town.kb tree/nokb
ln tree/deep/er/UPPER.KB tree/hard.kb
ln -s deep/er/UPPER.KB tree/soft.kb
ln -s ../good tree/folder.kb
ln -s nowhere tree/broken.kb
mkfifo tree/pipe.kb
survey 2 --json tree.json tree ./tree tree/x.kb/in.Kb tree/x.kb
same "files of the tree" $'./tree/broken.kb\n./tree/deep/er/UPPER.KB\n./tree/x.kb/in.Kb\ntree/broken.kb' "$(field path tree.json | sort)"
survey 0 --name '*.scene' --name nok? --json tree.json tree
same "other names" $'tree/nokb\ntree/other.scene' "$(field path tree.json | sort)"
run 2 "a pipe that is named" timeout 20 "$KBSURVEY" tree/pipe.kb
survey 0 tree/folder.kb # a link that is named
printf 'good/town.kb\nbad\n' | run 2 "a list" "$KBSURVEY" --files-from - --print0
same "bad files of a list" $'bad/damaged.kb|bad/version.kb|' "$(tr '\0' '|' <out)"
printf 'good/town.kb\0good/figure.kb' | run 0 "a list with NULs" "$KBSURVEY" --files-from -
if [ "$(id -u)" -ne 0 ]; then
  mkdir closed && chmod 0 closed
  survey 2 good closed
  grep '^NONE  closed  cannot be read' out >/dev/null || fail "a closed folder is not told"
fi

# A file is opened once: whatever takes its place then, such as a pipe that nobody writes to, is not looked at.
head -c 3000000 /dev/zero | cat samples/figure.kb - >big.kb
if has strace && strace -o trace true 2>/dev/null; then
  run 1 "a file of more than 1 MiB" strace -f -o trace -e trace=open,openat -P big.kb "$KBSURVEY" big.kb
  same "openings of a file" 1 "$(grep -c 'big\.kb' trace)"
else
  notice "openings of a file: strace cannot be used"
fi

# --- Hostile names ---

mkdir -p 'odd/[old]' 'odd/[a,b]' 'odd/{c}' odd/-d
for folder in odd/*; do cp samples/town.kb "$folder"; done
cd odd
survey 0 '[old]' '[a,b]' '{c}' -- -d
same "odd paths" "4 files: 4 OK" "$(sed 's/,.*//' "$scratch/out")"
survey 0 --name '[t]*' --name '[x]' '[a,b]/town.kb' '[old]'
same "odd patterns" "2 files: 2 OK" "$(sed 's/,.*//' "$scratch/out")"
cd ..

mkdir hostile
cd hostile
python3 -c 'import os
data = open(b"../bad/damaged.kb", "rb").read()
names = [b"-h.kb", b"a\nERR   forged.kb  1 finding", b"\x1b[2Jx", b"\xff\xfe", b"\"},{\"path\":\"", b"<b>\r", b"\\x41", b" "]
for name in names: open(name + b".kb", "wb").write(data)
open(b"../names", "wb").write(b"".join(sorted(b"./" + name + b".kb\0" for name in names)))'
survey 1 --json ../hostile.json --junit ../hostile.xml --print0 .
cmp "$scratch/out" ../names || fail "--print0 of hostile names"
survey 1 .
same "lines of hostile names" "8" "$(grep -c '^ERR   \./[!-~ ]*\.kb  6 findings: [ -~]*$' "$scratch/out")"
same "lines beside the summary" "8" "$(sed '/^8 files/,$d' "$scratch/out" | wc -l)"
cd ..
same "lines of the JSON report" "8" "$(wc -l <hostile.json)"
python3 -c 'import json, os, re, xml.dom.minidom
def bytes_of(text): return re.sub(rb"\\x(..)", lambda m: bytes.fromhex(m[1].decode()), text.encode())
names = set(open("names", "rb").read().split(b"\0")[:-1])
assert {bytes_of(json.loads(line)["path"]) for line in open("hostile.json", "rb")} == names
cases = xml.dom.minidom.parse("hostile.xml").getElementsByTagName("testcase")
assert {bytes_of(case.getAttribute("name")) for case in cases} == names
assert all(len(case.getElementsByTagName("failure")) == 1 for case in cases)' || fail "names in the reports"
survey 1 --merge hostile.json --json merged.json
same "hostile names, merged" "$(sort hostile.json)" "$(sort merged.json)"

# --- Jobs, shards, merging, resuming ---

survey 2 -j1 --json one.json samples hostile
survey 2 --merge one.json --json merged.json --html merged.html --junit merged.xml
same "number of merged lines" "$(wc -l <one.json)" "$(wc -l <merged.json)"
for shard in 1 2 3; do "$KBSURVEY" -j3 --shard "$shard/3" --json "part$shard.json" samples hostile >/dev/null || [ $? -le 2 ]; done
survey 2 --merge part3.json part1.json part2.json --json merged2.json --html merged2.html --junit merged2.xml
for kind in json xml; do cmp merged.$kind merged2.$kind || fail "merging shards: another $kind"; done
# Two pages, but for what they say of the survey itself.
same_page() { cmp <(sed 's/{"survey":{[^}]*}/{/' "$1") <(sed 's/{"survey":{[^}]*}/{/' "$2"); }
same_page merged.html merged2.html || fail "merging shards: another page"
survey 2 -j2 --html run.html --junit run.xml samples hostile
same_page run.html merged.html || fail "the page of a run is not that of its report"
cmp run.xml merged.xml || fail "the JUnit report of a run is not that of its report"
survey 0 --shard 1/1000 good/town.kb # nothing in this part, or all

# An interrupted report: some lines and a half one. What stands there is not audited again: it is forged here to show that.
mkdir again
cp samples/{town,figure,small-1,small-2}.kb again
survey 0 --json again.json again
head -n 3 again.json | sed '1s/"verdict":"OK"/"verdict":"ERR"/' >whole.json
forged=$(head -n 1 whole.json | sed 's/.*"path":"\([^"]*\)".*/\1/')
{ cat whole.json && head -n 4 again.json | tail -n 1 | head -c 50; } >half.json
cp half.json other.json
survey 1 --resume other.json --json resumed.json again
same "resumed into another report" "4" "$(wc -l <resumed.json)"
survey 1 --resume half.json --json half.json again
same "resumed into the same report" "$(sort resumed.json)" "$(sort half.json)"
touch -d '1969-02-03 04:05:06.5' "$forged"
survey 0 --resume half.json --json half.json again
same "a file that has changed" "4" "$(wc -l <half.json)"
survey 0 --resume half.json --json half.json again # a time before 1970 comes back
same "lines that are taken over" "$(sed 's/"bytes":[0-9]*/"bytes":0/' half.json | sort)" "$(sed 's/"bytes":[0-9]*/"bytes":0/' half.json | sort)"
survey 0 --resume new.json --json new.json again # the first run of all
survey 0 --resume new.json --json new.json again/town.kb # a report is about the files of its search, and no others
same "a smaller search" '"again/town.kb"' "$(sed 's/{"path":\([^,]*\),.*/\1/' new.json)"

# --- What can be mended ---

mkdir -p mendable
cp samples/{town,damaged,cut,extra,light-type,version}.kb not.kb mendable
ln -s nowhere mendable/broken.kb
survey 2 --repairable --json mendable.json mendable
repairs() { # FILE: of the JSON report: path, answer, number of words
  python3 -c 'import json, sys
for line in map(json.loads, open(sys.argv[1])): print(line["path"], line.get("repair", "-"), line.get("repair_words", "-"))' "$1" | sort
}
same "what can be mended" "$(sed 's|^|mendable/|' <<END
broken.kb None None
cut.kb salvaged None
damaged.kb mended 4
extra.kb mended 1
light-type.kb no None
not.kb None None
town.kb None None
version.kb mended 1
END
)" "$(repairs mendable.json)"
same "what can be mended, as lines" "NONE  mendable/broken.kb  cannot be read: No such file or directory
ERR   mendable/cut.kb  can be salvaged, 36 findings
ERR   mendable/damaged.kb  can be mended (4 words), 6 findings
ERR   mendable/extra.kb  can be mended (1 transformation), 36 findings
ERR   mendable/light-type.kb  cannot be mended, 1 finding
NONE  mendable/not.kb  not a KOVA file
NONE  mendable/version.kb  can be mended (1 word), other version
to repair: 3 can be mended, 1 can be salvaged, 1 cannot be mended" \
  "$(sed -n 's/\(finding\|findings\|version\): .*/\1/; /^ERR\|^NONE\|^to repair/p' out)"
same "files that were only looked at" "" "$(for file in town damaged cut light-type version; do cmp "samples/$file.kb" "mendable/$file.kb"; done)"

# A report without these answers is audited again if they are asked for, one with them if they are not.
survey 2 --json plain.json mendable
same "not asked" 8 "$(repairs plain.json | grep -c -e ' - -$')"
survey 2 --repairable --resume plain.json --json resumed.json mendable
same "asked when resumed" "$(sort mendable.json)" "$(sort resumed.json)"
survey 2 --resume mendable.json --json resumed.json mendable
same "not asked when resumed" "$(sort plain.json)" "$(sort resumed.json)"
sed 's/"repair_words":4/"repair_words":5/; s/"repair":"salvaged"/"repair":"unknown"/' mendable.json >forged.json
survey 2 --repairable --resume forged.json --json resumed.json mendable
same "answers that are taken over" "mended 1 mended 1 mended 5 salvaged None" "$(repairs resumed.json | sed -n 's/.*\(mended\|salvaged\)/\1/p' | sort | xargs)"
survey 2 --merge mendable.json --json merged.json --html merged.html --junit merged.xml
same "merged answers" "$(sort mendable.json)" "$(sort merged.json)"
survey 2 --repairable --html run.html --junit run.xml mendable
same_page run.html merged.html || fail "the page with answers is not that of its report"
cmp run.xml merged.xml || fail "the JUnit report with answers is not that of its report"

if [ -n "${KBREPAIR-}" ]; then
  survey 2 --repairable --json samples.json samples
  for sample in samples/*.kb; do
    outcome=no
    for option in "" --salvage; do
      # shellcheck disable=SC2086 # none or one
      "$KBREPAIR" --dry-run --json $option "$sample" | tail -n 1 >outcome.json || :
      [ "$outcome" != no ] || outcome=$(python3 -c 'import json
line = json.load(open("outcome.json"))
print({"mended": "mended %d" % (line["changes"] + line["undone"]), "good": "None None", "salvaged": "salvaged None"}.get(line["outcome"], "no"))')
    done
    printf '%s %s\n' "$sample" "${outcome/%no/no None}"
  done >by_kbrepair
  same "answers as those of kbrepair" "$(sort by_kbrepair)" "$(repairs samples.json)"
else
  notice "answers of kbrepair: it is not here"
fi

# --- Memory ---

# Twenty million vertices, most of them a hole in the file.
perl -e 'my $vertices = 20_000_000; my $group = 24 + 12 * $vertices; my $list = 24 + 4 + $group;
         my @sizes = (0) x 21; $sizes[6] = $list;
         open my $file, ">", "large.kb"; print $file pack "N*", 0x100, 100 + $list, 0, 100, @sizes,
           0x40000, 24, $list, 1, 0, 0, $group, 0x40100, 0, 24, $group, 0, $vertices;
         truncate $file, 100 + $list'
if KBAUDIT=$KBSURVEY sanitized || ! has prlimit; then
  notice "a limit of memory"
else
  survey 1 large.kb good
  run 2 "a file that needs more memory than there is" prlimit --as=200000000 "$KBSURVEY" -j1 large.kb good bad/damaged.kb
  same "its line" $'ERR   bad/damaged.kb\nNONE  large.kb  not enough memory' "$(sed '/^4 files/,$d; s/  6 findings.*//' out)"
  # Its model fits, but not beside its bytes: only the answer about the repair is lost.
  run 1 "a repair that needs more memory" prlimit --as=400000000 "$KBSURVEY" -j1 --repairable --json lost.json large.kb bad/damaged.kb
  same "its answer" $'bad/damaged.kb mended 4\nlarge.kb unknown None' "$(repairs lost.json)"
  survey 1 --repairable --resume lost.json --json found.json large.kb bad/damaged.kb
  same "its answer, with more memory" $'bad/damaged.kb mended 4\nlarge.kb no None' "$(repairs found.json)"
fi

# --- A terminal ---

if has script; then
  for terminal in xterm dumb; do # progress clears its line, which not every terminal can do
    TERM=$terminal script -qec "'$KBSURVEY' good" $terminal >/dev/null </dev/null || fail "on a terminal"
    grep '2 files: 2 OK' $terminal >/dev/null || fail "no summary on a terminal"
  done
  same "terminals with a progress line" xterm "$(grep -l $'\e\\[K' xterm dumb)"
fi
# Colours and characters beyond ASCII are for terminals; none that forges or hides something is shown.
mkdir colours
cp samples/damaged.kb "$(printf 'colours/\303\244\342\200\256\302\233\377\\.kb')"
finding='LightList: Light[0].dirlight size is wrong. 44 != 36'
if has script; then
  on_terminal() { script -qec "'$KBSURVEY' -q colours" terminal >/dev/null </dev/null || :; sed -n '2,3s/\r$//p' terminal; }
  rest='\xe2\x80\xae\xc2\x9b\xff\x5c.kb  6 findings'
  same "on a terminal" $'\e[1;31mERR\e[m   colours/\303\244'"$rest"$'\n      \e[1;31merror\e[m: '"$finding" \
    "$(LC_ALL=C.UTF-8 TERM=xterm on_terminal)"
  same "on a plain terminal" 'ERR   colours/\xc3\xa4'"$rest"$'\n      error: '"$finding" "$(NO_COLOR=1 TERM=xterm on_terminal)"
fi
LC_ALL=C.UTF-8 survey 1 colours
same "into a file" 'ERR   colours/\xc3\xa4\xe2\x80\xae\xc2\x9b\xff\x5c.kb  6 findings: '"$finding" "$(head -n 1 out)"
survey 1 --color=always colours
same "into a file, in colour" $'\e[1;31mERR\e[m' "$(cut -d ' ' -f 1 out | head -n 1)"
survey 0 good
[ ! -s err ] || fail "standard error is no terminal, and yet: $(cat err)"
