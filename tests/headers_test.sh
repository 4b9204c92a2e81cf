#!/usr/bin/env bash
# Every public header compiles alone, twice in one file, without a warning, and with no header at hand that is not
# public. A compiler below C++20 says so in a few lines.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$(dirname "$0")/lib.sh"

cp -r "$SOURCE_DIR/include" "$scratch/public"

# compile COMPILER HEADER OPTION...
compile() {
  printf '#include "%s"\n' "$2" "$2" | "$1" "${@:3}" -fsyntax-only -I "$scratch/public" -x c++ - 2>&1
}

compiles() {
  local log
  log=$(compile "$@" -std=c++20 -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror) || fail "$2 with $1:"$'\n'"$log"
}

# The lines that lead from header to header are not counted.
refused_below_cxx20() {
  local log
  ! log=$(compile "$1" kova/kova.h -std=c++17) || fail "$1 takes C++17"
  log=$(grep -vE '^(In file included| +from) ' <<<"$log")
  same "$1 -std=c++17: errors that name C++20" 1 "$(grep -c 'error: .*C++20' <<<"$log")"
  [ "$(wc -l <<<"$log")" -le 7 ] || fail "$1 -std=c++17 says much:"$'\n'"$log"
}

cd "$scratch/public"
for compiler in g++ clang++; do
  if ! has "$compiler"; then
    notice "$compiler is not here"
    continue
  fi
  for header in kova/*.h; do
    compiles "$compiler" "$header" &
    [ $(($(jobs -rp | wc -l))) -lt 2 ] || wait -n
  done
  wait
  refused_below_cxx20 "$compiler"
done
