#!/usr/bin/env bash
# Reports of kbsurvey are written whole or not at all, and never over something else. Runs that are killed are resumed.
# Memory does not grow with what is found.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$SOURCE_DIR/tests/lib.sh"
cd "$scratch"
samples=$SOURCE_DIR/samples
survey() { # STATUS OPTION...
  run "$1" "kbsurvey ${*:2}" "$KBSURVEY" "${@:2}"
}
mkdir good many work
cp "$samples"/{town,figure}.kb good
python3 -c 'import sys
data = open(sys.argv[1], "rb").read()
for i in range(3000): open(f"many/{i}.kb", "wb").write(data)' "$samples/damaged.kb"

# --- Old reports ---

reports=(--json work/r.json --junit work/r.xml --html work/r.html)
old_reports() { for kind in json xml html; do echo "old $kind" >work/r.$kind; done; }
are_old() { same "$1: reports" $'old html\nold json\nold xml' "$(cat work/r.html work/r.json work/r.xml)"; }
are_alone() { same "$1: files" $'r.html\nr.json\nr.xml' "$(ls -A work)"; }
are_whole() {
  same "$1: JSON report" "3000 3000" "$(wc -l <work/r.json) $(grep -c '^{"path":.*}$' work/r.json)"
  same "$1: JUnit report" 3000 "$(python3 -c 'import xml.dom.minidom
print(len(xml.dom.minidom.parse("work/r.xml").getElementsByTagName("failure")))')"
  same "$1: page" "</html>" "$(tail -n 1 work/r.html)"
  are_alone "$1"
}

# A new report is as private as the old one, and a link stays one.
old_reports
chmod 600 work/r.json
mv work/r.xml real.xml
ln -s ../real.xml work/r.xml
rm work/r.html
(umask 027 && survey 0 "${reports[@]}" good)
same "permissions" "600 640 644 777" "$(stat -c %a work/r.json work/r.html real.xml work/r.xml | xargs)"
same "a report behind a link" 1 "$(grep -c 'tests="2"' real.xml)"
rm work/*

old_reports
"$KBSURVEY" "${reports[@]}" many 2>/dev/null | true || :
are_whole "a reader that hangs up"

# No room: for what is kept in the course of the run, or for the report in the end.
if has prlimit; then
  old_reports
  for tried in "${reports[*]} many" "--html work/r.html good"; do
    # shellcheck disable=SC2086 # several words
    run 3 "no room" prlimit --fsize=4096 "$KBSURVEY" $tried
    grep '^kbsurvey: work/r.* cannot be written: File too large\.$' err >/dev/null || fail "no room: $(cat err)"
    are_old "no room"
    are_alone "no room"
  done
fi

# --- Runs that are killed ---

# Leaves a run that has kept some lines in $pid.
start_run() {
  "$KBSURVEY" -j1 "${reports[@]}" many >/dev/null 2>&1 &
  pid=$!
  until journal=$(compgen -G 'work/.r.json.kova-*') && [ -s "$journal" ]; do
    kill -0 "$pid" 2>/dev/null || { journal=none && fail "a run keeps no lines" && return; }
  done
}
for signal in KILL TERM HUP; do
  old_reports
  start_run
  kill "-$signal" "$pid"
  wait "$pid" 2>/dev/null || :
  are_old "SIG$signal"
  same "permissions of the journal" 600 "$(stat -c %a "$journal")"
  sed -i '1s/"version":"1.0"/"version":"2.0"/' "$journal" # forged, to show that it is taken over
  echo '{' >work/.r.json.kova-XXXXXX                      # what is no line does not matter
  : >work/r.json
  survey 1 "${reports[@]}" --resume work/r.json many
  are_whole "SIG$signal, resumed"
  same "lines that are taken over" 1 "$(grep -c '"version":"2.0"' work/r.json)"
done

# Somebody writes over what a run keeps, which is told.
old_reports
start_run
kill -STOP "$pid"
printf '#' | dd of="$journal" conv=notrunc status=none
kill -CONT "$pid"
wait "$pid" && status=0 || status=$?
same "a journal that was written over" 3 "$status"
same "the page of such a run" "old html" "$(cat work/r.html)"
: >work/r.json

# A journal whose run lives is left alone.
start_run
kill -STOP "$pid"
survey 1 "${reports[@]}" --resume work/r.json many
[ -e "$journal" ] || fail "the journal of another run is gone"
kill -CONT "$pid"
wait "$pid" || :
are_whole "two runs at a time"

# --- Reports in the way of something ---

# refused WHAT COMMAND-LINE: nothing is changed.
files() { find . -type f ! -name out ! -name err -exec sha256sum {} + | sort; }
refused() {
  local before
  before=$(files)
  # shellcheck disable=SC2016 # for the other shell
  run 3 "kbsurvey $2" sh -c '"$0" '"$2" "$KBSURVEY"
  if [[ $2 != *'2>>'* ]]; then grep "^kbsurvey: .*$1" err >/dev/null || fail "kbsurvey $2: $(cat err)"; fi
  same "kbsurvey $2" "$before" "$(files)"
}
rm -r many
cp work/r.json kept.json
ln kept.json hard.json
ln -s new.json soft.json # that leads to nothing yet
ln -s "$PWD" here
ln good/town.kb hard.kb
one=" is the same file as .*, which takes one report"
refused "$one" '--json x --html x good'
refused "$one" '--json x --html ./x good'
refused "$one" "--junit $PWD/x --html here/x good"
refused "$one" '--json kept.json --junit hard.json good'
refused "$one" '--json soft.json --junit new.json good'
refused "is one of the files to audit" '--json good/town.kb good'
refused "is one of the files to audit" '--html hard.kb good'
refused "is one of the files to audit" '--junit here/good/town.kb good/../good'
refused "which is read" '--html kept.json --resume hard.json good'
refused "which is read" '--junit here/kept.json --merge kept.json'
echo good >list
refused "which is read" '--json list --files-from list'
refused "which takes one report" '--json kept.json good >>kept.json'
for stream in '>>' '1<>' '2>>'; do # nothing can be told where standard error is a file to audit
  refused "standard output is one of the files to audit" "--json - good ${stream}hard.kb"
  refused "standard output is one of the files to audit" "-q good ${stream}good/town.kb"
done
refused "standard output is the same file as kept.json, which is read" '--json - --merge kept.json >>hard.json'
refused "standard output is the same file as list, which is read" '--files-from list >>list'
refused "standard output is the same file as standard input, which is read" '--files-from - <list >>list'
refused "list is the same file as standard input, which is read" '--json list --files-from - <list'
refused "standard output is the same file as standard input, which is read" '--merge - <kept.json >>kept.json'
refused "nothing is told" '--jsn kept.json 2>>kept.json'
for report in --json --junit --html; do # a name was forgotten
  refused "good/town.kb is a KOVA scene, which no report replaces" "$report good/town.kb good/figure.kb"
done
cp good/town.kb scene # of another version
set_words scene 0=300
refused "scene is a KOVA scene" '--merge kept.json --html scene'
survey 1 --merge kept.json hard.json --json kept.json # a merged report may be one that it was merged from
same "merged into itself" 3000 "$(wc -l <kept.json)"
survey 0 --json /dev/null --junit /dev/null --html /dev/null good
mkfifo pipe
cat pipe >from_pipe &
survey 0 --html pipe good
wait "$!"
same "a page through a pipe" "</html>" "$(tail -n 1 from_pipe)"

# --- Memory ---

# growth OPTION...: bytes of memory that each of 300 files takes that have a thousand findings.
growth() {
  python3 -c 'import os, subprocess, sys
def used(folder):
    child = subprocess.Popen([*sys.argv[1:], folder], stdout=subprocess.DEVNULL)
    return os.wait4(child.pid, 0)[2].ru_maxrss * 1024
print((used("wrong") - used("wrong/some")) // 300)' "$KBSURVEY" -j1 "$@"
}
mkdir -p wrong/some
perl -e 'my $groups = 1120; my $list = 24 + 28 * $groups; my @sizes = (0) x 21; $sizes[6] = $list;
         my $file = pack "N*", 0x100, 100 + $list, 0, 100, @sizes, 0x40000, 24, $list, $groups, 0, 0, (24) x $groups;
         $file .= pack "N*", 0x40100, 7, 24, 24, 0, 0 for 1 .. $groups;
         for my $i (1 .. 310) { open my $to, ">", $i <= 10 ? "wrong/some/$i.kb" : "wrong/$i.kb"; print $to $file }'
if ! KBAUDIT=$KBSURVEY sanitized; then
  survey 1 --json before.json wrong
  for tried in "--html w.html" "--junit w.xml" "--json w.json" "--json w.json --resume before.json" \
    "--json w.json --baseline before.json"; do
    # shellcheck disable=SC2086 # several words
    bytes=$(growth $tried)
    [ "$bytes" -le 8192 ] || fail "kbsurvey $tried: $bytes bytes for each file"
  done
fi
