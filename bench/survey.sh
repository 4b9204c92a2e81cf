#!/usr/bin/env bash
# Usage: bench/survey.sh BUILD [FILES [ROUNDS]]
# Files per second over many small files: kbsurvey with one and two jobs, and the xargs script of docs/recipes.md. BUILD
# is a build folder with kbsurvey and kbaudit.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$(cd "$1" && pwd)
files=${2:-2000}
rounds=${3:-9}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/scenes"
for i in $(seq "$files"); do cp "$root/samples/small-1.kb" "$folder/scenes/$i.kb"; done
awk '/^## Many files$/ { wanted = 1 } wanted && /^```sh$/ { inside = 1; next } /^```/ && inside { exit } inside' \
  "$root/docs/recipes.md" >"$folder/xargs.sh"
cd "$folder/scenes"
PATH=$build:$PATH

seconds() { # COMMAND...: of one run
  local begin=$EPOCHREALTIME
  "$@" >/dev/null 2>&1
  awk -v b="$begin" -v e="$EPOCHREALTIME" 'BEGIN { print e - b }'
}
rate() { # NAME ROUNDS COMMAND...: the median
  local name=$1 times
  times=$(for _ in $(seq "$2"); do seconds "${@:3}"; done | sort -g)
  awk -v n="$name" -v f="$files" '{ t[NR] = $1 } END { m = t[int((NR + 1) / 2)]
    printf "%-18s %9.0f files/s  (%.3f s; fastest %.3f s)\n", n, f / m, m, t[1] }' <<<"$times"
}
kbsurvey=$build/survey/kbsurvey
rate "kbsurvey -j1" "$rounds" "$kbsurvey" -j1 .
rate "kbsurvey -j2" "$rounds" "$kbsurvey" -j2 .
rate "kbsurvey --json" "$rounds" "$kbsurvey" -j2 --json "$folder/report.json" --html "$folder/report.html" .
rate "xargs script" 1 sh "$folder/xargs.sh"
