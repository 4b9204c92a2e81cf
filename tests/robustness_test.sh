#!/usr/bin/env bash
# The program as a process: little memory, little stack, huge claims, what is no regular file, and the same bytes out
# whatever surrounds it.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$(dirname "$0")/lib.sh"
cd "$scratch"
cp "$SOURCE_DIR"/samples/{town,figure,damaged}.kb .

audit() { timeout 60 "$KBAUDIT" "$@"; }
says() { grep -aF -- "$2" "$scratch/$1" >/dev/null || fail "$3: $1 does not say: $2"; }

# bad WHAT COMMAND...: has to come to the verdict ERR, no more and no less.
bad() {
  run 0 "$@"
  says out '**** check result : ERR !!' "$1"
}

# --- No memory at all ---

# The least data memory with which the program starts depends on the system: it is looked for.
without_memory() {
  local kib status
  for ((kib = 0; kib < 2048; kib += 16)); do
    status=0
    { (ulimit -d $kib && exec "$KBAUDIT" "$SOURCE_DIR/samples/town.kb") >out 2>err; } 2>/dev/null || status=$?
    if grep -x "kbaudit: out of memory\." err >/dev/null; then
      same "status without memory" 255 "$status"
      [ ! -s out ] || fail "without memory: prints something"
      return
    fi
  done
  fail "no limit of data memory lets the program say that it has none"
}

# --- 64 MiB of address space, and files that claim more ---

with_little_memory() (
  ulimit -v 65536
  audit "$@"
)

# empty_scene BYTES VERSION OFFSET=VALUE...: a file without lists and with a header that is right, but for these words.
empty_scene() {
  rm -f scene.kb
  truncate -s "$1" scene.kb
  set_words scene.kb 0="$2" 4="$(printf %x "$1")" 12="$(printf %x "$1")" "${@:3}"
}

sizes=$(printf '%d=ffffffff ' {16..84..4}) # of all version-1 lists but one
sizes2=$(printf '%d=ffffffff ' {100..132..4})
claims=( # most of their sums wrap to what the header has to hold
  "100 100 16=80000000 20=80000000"
  "100 100 16=ffffffff 20=1"
  "100 100 20=fffffff0 88=10"
  "100 100 84=7fffffff 88=80000001"
  "100 100 $sizes 88=12"
  "100 100 92=80000000 96=80000000"
  "100 100 92=fffffffc 96=4"
  "100 100 92=1 96=ffffffff"
  "136 100 96=24 84=1 88=ffffffff"
  "136 200 92=24 $sizes2"
  "136 200 92=24 $sizes $sizes2"
  "136 200 92=24 100=80000000 104=80000000"
  "136 200 92=4 96=20 100=ffffffff"
)
endless_pipe() { { cat scene.kb /dev/zero || :; } | with_little_memory /dev/stdin; }

# Memory is asked for by what a file holds, so that no claim comes near the limit.
bad_and_small() {
  bad "$@"
  ! grep -F 'out of memory' err >/dev/null || fail "$1: asks for more memory than the file has bytes"
}

limits_of_memory() {
  local claim words at
  for claim in "${claims[@]}"; do
    read -ra words <<<"$claim"
    empty_scene "${words[@]}"
    bad_and_small "$claim" with_little_memory scene.kb
  done
  for at in {16..88..4} {100..132..4}; do
    cp figure.kb scene.kb
    set_words scene.kb "$at=ffffffff"
    bad_and_small "figure.kb with $at=ffffffff" with_little_memory scene.kb
  done
  empty_scene 100 100 92=ffffffff 12=63
  bad "endless pipe" endless_pipe
  says err 'FileHeader: out of memory.' "endless pipe"
}
if sanitized; then
  notice "limits of memory: the sanitizer reserves more"
else
  without_memory
  limits_of_memory
fi

# --- The same bytes out ---

with_little_stack() (
  ulimit -s 256
  audit "$1"
)
opened() { audit /dev/stdin <"$1"; }
with() { env "$1" "$KBAUDIT" "$2"; }

# What was printed, with one file name for all.
printed() { sed 's/^\(\*\*\*\* File Name    : \).*/\1x/' out err; }

ways=(with_little_stack opened "with MALLOC_PERTURB_=0" "with MALLOC_PERTURB_=170")
locales=$(locale -a 2>/dev/null | grep -iE '^(C\.|de_|fr_|ja_|tr_)' || :)
if [[ $locales != *_* ]] && mkdir locales && localedef -i de_DE -f UTF-8 ./locales/de_DE.UTF-8 2>/dev/null; then
  export LOCPATH=$scratch/locales
  locales+=$'\nde_DE.UTF-8'
fi
[[ $locales == *_* ]] || notice "locales with a decimal comma: none is here"
for locale in $locales; do
  ways+=("with LC_ALL=$locale")
done

for sample in town.kb figure.kb damaged.kb; do
  run 0 "$sample" audit "$sample"
  printed >wanted
  for way in "${ways[@]}"; do
    read -ra command <<<"$way"
    run 0 "$sample by $way" "${command[@]}" "$sample"
    printed | cmp - wanted || fail "$sample by $way: another output"
  done
done

# Memory for a large file is taken from one reserved piece.
empty_scene 5000000 100 92=4c4adc
bad "a large block" audit scene.kb
same "rows of a large block" 208330 "$(grep -c '^0000000000  ' out)"

# --- What is no regular file, or no file of this size ---

: >empty.kb
: >unreadable.kb
chmod 000 unreadable.kb
for path in . empty.kb missing.kb town.kb/x /dev/null; do
  run 255 "$path" audit "$path"
done
# Root reads everything, unless it gives that right away first.
unreadable() {
  if [ -r unreadable.kb ]; then
    setpriv --inh-caps=-all --bounding-set=-all "$KBAUDIT" unreadable.kb
  else
    audit unreadable.kb
  fi
}
run 255 "an unreadable file" unreadable
same "an unreadable file" 'Input File Open Error' "$(cat err)"
run 255 "a folder" audit .
same "a folder" 'Input File Read Error' "$(cat err)"

piped() { { cat "$1" || :; } | audit /dev/stdin; }
mkfifo fifo
through_fifo() {
  cat "$1" >fifo &
  audit fifo
}
cp figure.kb scene.kb
set_words scene.kb 4=0 # so long as a pipe is taken to be: only the second opening, which would wait, is left to refuse
for way in piped through_fifo; do
  for sample in town.kb figure.kb; do
    bad "$sample, $way" "$way" "$sample"
    says err 'Data file size is incorrect - missing data.' "$sample, $way"
  done
  bad "scene.kb, $way" "$way" scene.kb
  same "scene.kb, $way" 'Input File Open Error' "$(cat err)"
done

# The file says that it is as long as it is, but for 4 GiB.
if truncate -s 5G large.kb 2>/dev/null; then
  run 255 "5 GiB of zeros" audit large.kb
  dd if=town.kb of=large.kb conv=notrunc status=none
  set_words large.kb 4=40000000
  bad "5 GiB" audit large.kb
  says err 'Data file size is incorrect - extra data.' "5 GiB"
else
  notice "a file of 5 GiB: there is no place for it"
fi
rm -f large.kb

# --- Output that cannot be written ---

to_full_disk() { audit "$1" >/dev/full; }
to_closed() { audit "$1" >&-; }
to_short_file() (
  trap '' XFSZ
  ulimit -f 32
  audit "$1" >part
)
to_closed_pipe() ( # one that nobody reads any more, and whose signal is ignored
  trap '' PIPE
  audit "$1" | :
  return "${PIPESTATUS[0]}"
)
says_why() { [ -z "$1" ] || printf 'kbaudit: standard output cannot be written: %s.\n' "$1"; }
for sample in town.kb figure.kb version.kb; do
  [ -e "$sample" ] || cp "$SOURCE_DIR/samples/$sample" .
  cp "$sample" scene.kb
  for row in "to_full_disk No space left on device" "to_closed Bad file descriptor" "to_short_file File too large" to_closed_pipe; do
    read -r way reason <<<"$row"
    [ "$sample $way" != "version.kb to_short_file" ] || continue # too little output
    run 255 "$sample $way" "$way" scene.kb
    same "$sample $way" "$(says_why "$reason")" "$(grep -aF 'kbaudit: ' err || :)"
    cmp scene.kb "$sample" || fail "$sample $way: the file was changed"
  done
done
