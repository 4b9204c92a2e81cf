# Shared by the test scripts, which are given KBAUDIT, SOURCE_DIR and BUILD_DIR.
# shellcheck shell=bash

scratch=$(mktemp -d)
export LC_ALL=C
trap finish EXIT

finish() {
  local status=$?
  [ ! -e "$scratch/failed" ] || status=1
  rm -rf "$scratch"
  exit "$status"
}

# A failure is told and the test goes on; in the end it fails. This holds in subshells and pipelines too.
fail() {
  printf 'FAILED: %s\n' "$*" | tee -a "$scratch/failed" >&2
}

notice() { printf 'skipped: %s\n' "$*"; }

skip_test() {
  notice "$*"
  exit 77
}

has() { command -v "$1" >/dev/null; }

# same WHAT WANTED FOUND: two texts.
same() {
  [ "$2" = "$3" ] || fail "$1:"$'\n'"$(diff -a <(printf '%s\n' "$2") <(printf '%s\n' "$3") || :)"
}

# run STATUS WHAT COMMAND...: what it prints is kept in $scratch/out and $scratch/err.
run() {
  local wanted=$1 what=$2 status=0
  shift 2
  "$@" >"$scratch/out" 2>"$scratch/err" || status=$?
  [ "$status" -eq "$wanted" ] ||
    fail "$what: status $status, not $wanted"$'\n'"$(tail -qc 2000 "$scratch/out" "$scratch/err" | tr -d '\0')"
}

# set_words FILE OFFSET=VALUE...: sets words of a KOVA file, values in hexadecimal.
set_words() {
  perl -e 'my $path = shift; open my $file, "+<", $path or die "$path: $!\n";
           for (@ARGV) { my ($at, $value) = split /=/; seek $file, $at, 0; print $file pack "N", hex $value }' "$@"
}

# cached VARIABLE: its value in the build that is tested.
cached() { sed -n "s/^$1:[A-Z]*=//p" "$BUILD_DIR/CMakeCache.txt"; }

sanitized() { nm "$KBAUDIT" | grep '__[at]san_init' >/dev/null; }

# scripts_of DOCUMENT NUMBER: its sh blocks, each as $scratch/recipes/1.sh and so on, and the text block right behind one,
# which shows its output, as 1.text.
scripts_of() {
  mkdir "$scratch/recipes"
  awk -v recipes="$scratch/recipes" '
    /^```/ && out { shown = out ~ /sh$/; close(out); out = ""; next }
    /^```sh$/ { out = sprintf("%s/%d.sh", recipes, ++number); next }
    /^```/ { out = /^```text$/ && shown ? sprintf("%s/%d.text", recipes, number) : "/dev/null"; next }
    out { print >out; next }
    /./ { shown = 0 }' "$SOURCE_DIR/docs/$1"
  same "number of scripts in $1" "$2" "$(find "$scratch/recipes" -name '*.sh' | wc -l)"
}

# recipe STATUS NUMBER
recipe() { run "$1" "script $2" sh "$scratch/recipes/$2.sh"; }

# tools PROGRAM...: links to the programs, where they are found first.
tools=$scratch/tools
mkdir "$tools"
tools() {
  ln -s "$@" "$tools"
  export PATH=$tools:$PATH
}

# transcript GOLDEN <COMMANDS: runs each line in a fresh copy of the folder `before`, and holds its status, what it prints
# and the files that it changes against a golden file. With KOVA_RENEW in the environment that is written anew.
transcript() {
  local line status
  state_of "$scratch/before" >"$scratch/state"
  while IFS= read -r line; do
    printf '\n$ %s\n' "$line"
    rm -rf "$scratch/work"
    cp -a "$scratch/before" "$scratch/work"
    status=0
    (cd "$scratch/work" && umask 022 && exec timeout 60 bash -c "$line") >"$scratch/out" 2>"$scratch/err" </dev/null || status=$?
    if grep -qaP '\0' "$scratch/out"; then cksum <"$scratch/out"; else without_time <"$scratch/out"; fi
    sed '/^LLVM Profile /d; s/^/! /' "$scratch/err" | without_time # counts that cannot be written
    echo "status $status"
    state_of "$scratch/work" | comm -13 "$scratch/state" -
  done >"$scratch/transcript"
  [ -z "${KOVA_RENEW-}" ] || cp "$scratch/transcript" "$1"
  same "${1##*/}" "$(cat "$1")" "$(cat "$scratch/transcript")"
}
without_time() { sed 's/ in [0-9.]* s$//' | cat -v; }
state_of() { (cd "$1" && { find . ! -type d -printf '%M %P\n' && find . -type f -exec cksum {} +; } | cat -v | sort); }
