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

limits_of_memory() {
  local claim words at
  for claim in "${claims[@]}"; do
    read -ra words <<<"$claim"
    empty_scene "${words[@]}"
    bad "$claim" with_little_memory scene.kb
  done
  for at in {16..88..4} {100..132..4}; do
    cp figure.kb scene.kb
    set_words scene.kb "$at=ffffffff"
    bad "figure.kb with $at=ffffffff" with_little_memory scene.kb
  done
  empty_scene 100 100 92=ffffffff 12=63
  bad "endless pipe" endless_pipe
  says err 'FileHeader: out of memory.' "endless pipe"
}
if sanitized; then
  notice "limits of memory: the sanitizer reserves more"
else
  limits_of_memory
fi

# --- The same bytes out ---

with_little_stack() (
  ulimit -s 256
  "$@"
)

locales=$(locale -a 2>/dev/null | grep -iE '^(de|fr|tr|ja)_' | head -n 4 || :)
[ -n "$locales" ] || notice "a locale with a decimal comma: none is here"
for sample in town figure damaged; do
  run 0 "$sample" audit "$sample.kb"
  mv out wanted.out
  mv err wanted.err
  for setting in MALLOC_PERTURB_=0 MALLOC_PERTURB_=170 LC_ALL=C LC_ALL=C.UTF-8 ${locales:+${locales//[!$'\n']*/}} stack; do
    :
  done
done
