#!/usr/bin/env bash
# Every public header compiles alone, twice in one file, without a warning, and with no header at hand that is not public.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$(dirname "$0")/lib.sh"

cp -r "$SOURCE_DIR/include" "$scratch/public"

compile() {
  local log
  log=$(printf '#include "%s"\n' "$2" "$2" |
    "$1" -std=c++20 -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -fsyntax-only -I "$scratch/public" -x c++ - 2>&1) ||
    fail "$2 with $1:"$'\n'"$log"
}

cd "$scratch/public"
for compiler in g++ clang++; do
  if ! has "$compiler"; then
    notice "$compiler is not here"
    continue
  fi
  for header in kova/*.h; do
    compile "$compiler" "$header" &
    [ $(($(jobs -rp | wc -l))) -lt 2 ] || wait -n
  done
  wait
done
