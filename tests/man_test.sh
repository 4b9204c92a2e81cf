#!/usr/bin/env bash
# The manual page: no warning, all sections, and examples that run as they are shown. The completion of the command line.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$(dirname "$0")/lib.sh"
page=$SOURCE_DIR/docs/kbaudit.1

same "sections" "$(printf '%s\n' NAME SYNOPSIS DESCRIPTION 'EXIT STATUS' FINDINGS FILES EXAMPLES SECURITY 'SEE ALSO')" \
  "$(sed -n 's/^\.SH //p' "$page")"

completed() { # WORD: what is offered for it
  (cd "$SOURCE_DIR/samples" && bash -c '. ../driver/completion.bash
    COMP_WORDS=(kbaudit "$1") COMP_CWORD=1; _kbaudit; echo "${COMPREPLY[@]}"' bash "$1")
}
same "completion of options" "-h -help" "$(completed -)"
same "completion of files" "small-1.kb small-2.kb" "$(completed small | xargs -n 1 | sort | xargs)"
same "completion of other files" "README.md" "$(completed READ)"

has groff || skip_test "groff (Debian: groff-base) is not here"
same "warnings" "" "$(groff -man -Tutf8 -ww -z "$page" 2>&1)"
! has mandoc || same "warnings of mandoc" "" "$(mandoc -Tlint "$page" 2>&1)"

# What a reader of the page would copy: the literal blocks of EXAMPLES, as groff shows them, one blank line between two.
awk '/^\.SH / { inside = /EXAMPLES/ } !inside { next }
     /^\.nf/ { literal = 1; next } /^\.fi/ { literal = 0; print "" } literal' "$page" |
  { printf '.nf\n.ll 200n\n.pl 1000\n' && cat; } | groff -Tascii |
  awk -v folder="$scratch" 'BEGIN { RS = "" } { print > (folder "/" NR ".sh") }'
mkdir "$scratch/folder"
cd "$scratch/folder"
cp "$SOURCE_DIR"/samples/{town,damaged,version}.kb .
PATH=$(dirname "$KBAUDIT"):$PATH
if has less; then
  run 0 "first example" sh "$scratch/1.sh"
  cmp "$scratch/out" <("$KBAUDIT" town.kb) || fail "first example: not the audit"
else
  notice "less is not here"
fi
run 0 "second example" sh "$scratch/2.sh"
same "second example" "**** check result : OK" "$(cat "$scratch/out")"
run 0 "third example" sh "$scratch/3.sh"
same "third example" "$("$KBAUDIT" town.kb | sed -n '/^<ObjList> ;/,/^<.ObjList>$/p')" "$(cat "$scratch/out")"
run 0 "fourth example" sh "$scratch/4.sh"
same "fourth example" $'ERR ./damaged.kb\nNONE ./version.kb' "$(sort "$scratch/out")"
[ ! -e "$scratch/5.sh" ] || fail "an example that this test does not know"
