#!/usr/bin/env bash
# The manual pages: no warning, all options, the version, and examples that run as they are shown. The completion of the
# command lines.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$(dirname "$0")/lib.sh"
programs=("$KBAUDIT" ${KBSURVEY:+"$KBSURVEY"} ${KBREPAIR:+"$KBREPAIR"})
tools "${programs[@]}"

for program in "${programs[@]}"; do
  name=${program##*/} page=$SOURCE_DIR/docs/${program##*/}.1
  has groff || notice "warnings about $name.1: groff (Debian: groff-base) is not here"
  ! has groff || same "warnings about $name.1" "" "$(groff -man -Tutf8 -ww -z "$page" 2>&1)"
  ! has mandoc || same "warnings of mandoc about $name.1" "" "$(mandoc -Tlint "$page" 2>&1)"
  [ "$name" != kbaudit ] || continue
  same "options of $name.1" "$("$program" --help | grep -o -e '--[a-z0-9-]*' | sort -u)" \
    "$(sed 's/\\-/-/g; s/\\fI/ /g' "$page" | grep -o -e '--[a-z0-9-][a-z0-9-]*' | sort -u)"
  same "version of $name.1" "$("$program" --version)" "$(sed -n 's/^\.TH [A-Z]* 1 "[^"]*" "\([^"]*\)".*/\1/p' "$page")"
done

# What is offered for the last word of a command line.
offered() {
  # shellcheck disable=SC2016 # for the other shell
  (cd "$SOURCE_DIR/samples" && bash -c 'for file in ../*/completion.bash; do . "$file"; done
    COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)); "_$1"; printf "%s\n" "${COMPREPLY[@]}"' bash "$@" | sort | xargs)
}
while IFS='|' read -r line words; do
  read -ra line <<<"$line"
  [ ! -e "$tools/${line[0]}" ] || same "completion of ${line[*]}" "$words" "$(offered "${line[@]}")"
done <<END
kbaudit -|-h -help
kbaudit small|small-1.kb small-2.kb
kbaudit READ|README.md
kbaudit town.kb s|
kbsurvey --j|--jobs --json --junit
kbsurvey --explain header-|header-size header-tag
kbsurvey --color a|always auto
kbsurvey --color = a|always auto
kbsurvey --color =|always auto never
kbsurvey --html small-1.|small-1.kb small-1.out
kbsurvey --resume -|
kbsurvey -- --c|
kbrepair --|--diagnose --drop --dry-run --force --help --json --part --partial --reading --salvage --version
kbrepair town.kb READ|README.md
kbrepair --part s|
kbrepair --reading = 1|1
kbrepair -- --d|
END

has groff || exit 0
# What a reader of a page would copy: the literal blocks of EXAMPLES, as groff shows them, one blank line between two.
examples() {
  rm -rf "$scratch/examples" "$scratch/folder"
  mkdir "$scratch/examples" "$scratch/folder"
  cd "$scratch/folder"
  cp "$SOURCE_DIR"/samples/{town,damaged,version,cut}.kb .
  awk '/^\.SH / { inside = /EXAMPLES/ } !inside { next }
       /^\.nf/ { literal = 1; next } /^\.fi/ { literal = 0; print "" } literal' "$SOURCE_DIR/docs/$1.1" |
    { printf '.nf\n.ll 200n\n.pl 1000\n' && cat; } | groff -Tascii |
    awk -v folder="$scratch/examples" 'BEGIN { RS = "" } { print > (folder "/" NR ".sh") }'
  same "number of examples in $1.1" "$2" "$(find "$scratch/examples" -type f | wc -l)"
}
# example NUMBER PRINTED...
example() {
  run 0 "example $1" sh "$scratch/examples/$1.sh"
  [ $# -eq 1 ] || same "example $1" "$2" "$(cat "$scratch/out")"
}
examples kbaudit 4
! has less || example 1 "$("$KBAUDIT" town.kb)"
example 2 "**** check result : OK"
example 3 "$("$KBAUDIT" town.kb | sed -n '/^<ObjList> ;/,/^<.ObjList>$/p')"
rm cut.kb
example 4
same "example 4" $'ERR ./damaged.kb\nNONE ./version.kb' "$(sort "$scratch/out")"
if [ -n "${KBREPAIR-}" ]; then
  examples kbrepair 4
  for number in 1 2 3 4; do example $number; done
  cmp mended.kb town.kb || fail "kbrepair.1: the example does not mend the file"
  [ -s rest.kb ] || fail "kbrepair.1: the example keeps nothing"
fi
