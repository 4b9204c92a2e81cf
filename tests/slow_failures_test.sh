#!/usr/bin/env bash
# What the system can do to the programs: each call that they make fails once, and they are killed once before each. A
# file is then the old one or the new one, a failure is told, and the next run ends as if nothing had happened.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$SOURCE_DIR/tests/lib.sh"

has strace || skip_test "strace is not here"
! sanitized || skip_test "the sanitizers make calls of their own"
samples=$SOURCE_DIR/samples
cd "$scratch"
mkdir tried

# What only waits, ends, or asks for memory, for which there is another test; and random numbers, for which the C library
# asks again until it likes one, and has others where they fail.
others='mmap|munmap|mprotect|madvise|brk|futex|getrandom|prlimit64|rseq|rt_.*|set_robust_list|exit.*|<\.\.\.|\+\+\+'

# traced OPTION... COMMAND...: in the folder `work`; leaves its status in $status.
traced() {
  status=0
  (cd work && exec strace -f -qq -o "$scratch/trace" "$@" <&9) >out 2>err 9</dev/null || status=$?
  without_times work
}

# without_times FOLDER: pages and standard output no longer say when it was and how long it took.
without_times() {
  find "$1" -name '*.html' -exec sed -i "$times" {} +
  [ ! -e out ] || sed -i "s/ in [0-9.]* s\$//; $times" out
}
times='s/"date":[0-9]*,"seconds":[0-9.]*/"date":0,"seconds":0/'

# list_calls: the calls of the program in the trace, behind those of the loader: name, the how manieth of its name.
list_calls() {
  awk -v others="^($others)\$" 'NR == 1 { main = $1 }
    $1 == main { sub(/\(.*/, "", $2); if (begun && $2 !~ others) print $2, number[$2] + 1; ++number[$2] }
    $2 == "rseq" { begun = 1 }' trace
}

reason() {
  case $1 in
  write | fsync) echo ENOSPC ;;
  openat) echo EACCES ;;
  clone*) echo EAGAIN ;;
  *) echo EIO ;;
  esac
}

failing() { # NAME NUMBER COMMAND...
  traced -e "trace=$1" -e "inject=$1:error=$(reason "$1"):when=$2" "${@:3}"
  grep '(INJECTED)$' trace >/dev/null || fail "$what: no call has failed"
}

killed() { # NAME NUMBER COMMAND...
  traced -e "trace=$1" -e "inject=$1:signal=KILL:when=$2" "${@:3}" 2>/dev/null
  [ "$status" -eq 137 ] || fail "$what: the program is not killed"
}

fresh() { rm -rf work && cp -a before work; }

# whole_files [NAMES]: each file is as it was or as it is to be. There are no others but those of these names: what cannot be
# removed is left.
whole_files() {
  local file
  for file in $(cd work && find . -type f ! -name "${1-}"); do
    cmp -s "work/$file" "before/$file" || cmp -s "work/$file" "after/$file" ||
      fail "$what: $file is neither the old one nor the new one"
  done
  (cd before && find . -type f) | while read -r file; do
    [ -e "work/$file" ] || fail "$what: $file is gone"
  done
}

modes() { (cd "$1" && find . -printf '%m %y %p\n' | sort); }
as_wanted() { [ "$status" -eq "$wanted" ] && same_out && diff -r work after >/dev/null && [ "$(modes work)" = "$(modes after)" ]; }
same_out() { cmp -s out wanted; }

# every_call TOLD COMMAND...: TOLD says whether the program has told the failure.
every_call() {
  local told=$1 name number
  shift
  rm -rf after
  fresh
  traced "$@"
  mv work after
  wanted=$status
  cp out wanted
  list_calls | grep -E "^${only-}" >calls
  [ "$(wc -l <calls)" -ge 2 ] || fail "$*: it makes no calls"
  while read -r name number; do
    what="$(basename "$1") ${*:2}, $name $number fails"
    fresh
    failing "$name" "$number" "$@"
    echo x >>tried/failed
    as_wanted || { "$told" && whole_files "$([ "$name" != unlink ] || echo '.*')"; } ||
      fail "$what: status $status, not told: $(head -qc 1000 out err)"
  done <calls
}

# every_kill COMMAND...: behind every_call. The program is killed before each call that changes a file, and then run again.
every_kill() {
  local name number
  while read -r name number; do
    what="$(basename "$1") ${*:2}, killed before $name $number"
    fresh
    killed "$name" "$number" "$@"
    echo x >>tried/killed
    whole_files '.*'
    again "$@"
  done < <(grep -E '^(write|openat|close|fsync|fchmod|rename|unlink)' calls)
}

# again COMMAND...: what was interrupted or has failed is done again.
again() {
  traced "$@"
  { [ "$status" -eq "$wanted" ] && same_out; } || fail "$what: then it prints something else: $(head -qc 1000 out err)"
  same "$what: files" "" "$(diff -rq --exclude='.*' work after)"
}

# --- kbaudit ---

mkdir before
cp "$samples"/small-[12].kb before
audit_told() {
  case $status in
  255) [ -s err ] ;;
  0) grep -a '^\*\*\*\* check result : ERR' out >/dev/null && grep 'Input File\|Data file size' err >/dev/null ;;
  *) return 1 ;;
  esac
}
for file in small-1.kb small-2.kb; do every_call audit_told "$KBAUDIT" "$file"; done
rm -r before

# --- kbrepair ---

if [ -n "${KBREPAIR-}" ]; then
  mkdir before
  cp "$samples"/{damaged,cut}.kb before
  echo old >before/old.kb
  chmod 640 before/old.kb
  ln -s old.kb before/link.kb
  repair_told() { [ "$status" -ge 2 ] && [ "$status" -le 3 ] && [ -s err ]; }
  for options in "damaged.kb new.kb" "--force damaged.kb old.kb" "--force --json damaged.kb link.kb" "--salvage cut.kb new.kb" \
    "--partial cut.kb new.kb"; do
    read -ra options <<<"$options"
    every_call repair_told "$KBREPAIR" "${options[@]}"
    [ "${options[0]}" != --force ] || every_kill "$KBREPAIR" "${options[@]}"
  done
  rm -r before
fi

# --- kbjson ---

if [ -n "${KBJSON-}" ]; then
  mkdir before
  cp "$samples"/{small-2,cut}.kb before
  "$KBJSON" --lean --pretty "$samples/small-1.kb" before/scene.json
  echo '{"FileHeader":{}}' >before/wrong.json
  echo old >before/old
  chmod 640 before/old
  ln -s old before/link
  json_told() { [ "$status" -ge 2 ] && [ "$status" -le 3 ] && [ -s err ]; }
  for options in "--lines small-2.kb" "--force --lean cut.kb old" "--force --to-kb scene.json link" "--to-kb scene.json -" \
    "--to-kb scene.json new.kb" "--to-kb wrong.json new.kb" "--only ObjList small-2.kb new.json" "--help"; do
    read -ra options <<<"$options"
    every_call json_told "$KBJSON" "${options[@]}"
    [ "${options[0]}" != --force ] || every_kill "$KBJSON" "${options[@]}"
  done
  rm -r before
fi

# --- kbdiff ---

if [ -n "${KBDIFF-}" ]; then
  mkdir -p before/a before/b
  for side in a b; do cp "$samples"/small-2.kb before/$side; done
  cp "$samples/damaged.kb" before/a/town.kb
  cp "$samples/town.kb" before/b
  # A list within which the place in the file is lost counts as damaged.
  diff_told() {
    case $status in
    2) [ -s err ] || grep 'cannot be read' out >/dev/null ;;
    1) [[ $what == *lseek* ]] && grep 'damaged' out >/dev/null ;;
    *) return 1 ;;
    esac
  }
  for options in "a/town.kb b/town.kb" "-j1 --json a b" "--help"; do
    read -ra options <<<"$options"
    every_call diff_told "$KBDIFF" "${options[@]}"
  done
  rm -r before
fi

# --- kbsurvey ---

if [ -n "${KBSURVEY-}" ]; then
  mkdir -p before/in before/more
  cp "$samples"/{small-1,damaged}.kb before/in
  cp "$samples/small-2.kb" before/more
  echo in/small-1.kb >before/list
  # Other reports that are there before.
  (cd before && for i in in more; do "$KBSURVEY" -q --json $i.json --junit $i.xml --html $i.html $i >/dev/null || :; done)
  without_times before
  # A file that cannot be read has no verdict, and each report says so. A list of paths has its path.
  survey_told() {
    case $status in
    3) [ -s err ] ;;
    2) grep -a 'cannot be read\|"unreadable\|^in/small-1.kb' out >/dev/null && unreadable_told ;;
    *) return 1 ;;
    esac
  }
  unreadable_told() {
    local file
    for file in work/*.{json,xml,html}; do
      cmp -s "$file" "before/${file#*/}" && continue
      grep 'cannot be read\|"unreadable' "$file" >/dev/null || fail "$what: $file does not say what cannot be read"
      tail -n 1 "$file" | grep '}$\|</html>$\|</testsuites>$' >/dev/null || fail "$what: $file has no end"
      rm "$file" # neither the old one nor the new one
      [ ! -e "before/${file#*/}" ] || cp "before/${file#*/}" work
    done
  }
  all_reports() { echo "--json $1.json --junit $1.xml --html $1.html"; }
  for options in "$(all_reports new) in" "$(all_reports more) in" "--json more.json --resume more.json in more" \
    "--json new.json --resume more.json in more" "--merge --json in.json in.json more.json" \
    "--json new.json --baseline more.json in more" \
    "--merge --html new.html in.json" "--json - --deep --repairable in" "--junit - in" "--html - in" \
    "--print0 --files-from list" "--list-findings" "--explain tag" "--version"; do
    read -ra options <<<"$options"
    every_call survey_told "$KBSURVEY" -j1 "${options[@]}"
    [[ ${options[*]} != *new.* && ${options[*]} != *more.* ]] || every_kill "$KBSURVEY" -j1 "${options[@]}"
  done
  # Without some of its threads, or all of them, it does the same.
  cp "$samples/small-2.kb" before/in
  only=clone every_call false "$KBSURVEY" -j3 in
fi
echo "$(wc -l <tried/failed) calls have failed, $(wc -l <tried/killed) times a program was killed"
