#!/usr/bin/env bash
# The scripts of docs/repair.md run as they are shown.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$SOURCE_DIR/tests/lib.sh"
tools "$KBREPAIR" ${KBSURVEY:+"$KBSURVEY"}
scripts_of repair.md 4
samples=$SOURCE_DIR/samples
mkdir "$scratch/folder"
cd "$scratch/folder"

cp "$samples/index.kb" scene.kb
recipe 0 1
cmp mended.kb "$samples/small-1.kb" || fail "script 1 has not mended the file"
rm mended.kb

# The outputs that are shown.
awk '/^```text$/ { out = 1; next } /^```/ { out = 0 } out' "$SOURCE_DIR/docs/repair.md" >"$scratch/shown"
recipe 0 2
mv "$scratch/out" "$scratch/diagnosed"
run 1 "a file of two readings" kbrepair "$samples/light-type.kb" out.kb
{ kbrepair scene.kb mended.kb && cat "$scratch/diagnosed" "$scratch/out"; } >"$scratch/printed"
same "outputs in docs/repair.md" "$(cat "$scratch/shown")" "$(cat "$scratch/printed")"
awk '/^\$ scripts\/repair/ { out = 1; getline; next } /^```/ { out = 0 } out' "$SOURCE_DIR/README.md" >"$scratch/shown"
run 0 "the example of the README" kbrepair --force "$samples/damaged.kb" mended.kb
same "output in the README" "$(cat "$scratch/shown")" "$(cat "$scratch/out")"
cmp mended.kb "$samples/town.kb" || fail "damaged.kb is not mended"
rm mended.kb
if [ -n "${KBSURVEY-}" ]; then
  odd=$'scenes/a\n/b\n.kb' # a folder whose name ends with a line break
  mkdir -p scenes/deep "${odd%/*}"
  cp "$samples/town.kb" scenes
  cp "$samples/header-tag.kb" scenes/deep/bad.kb
  cp "$samples/header-tag.kb" "$odd"
  printf 'no scene' >scenes/not.kb
  recipe 0 4
  same "script 4" $'to repair: 2 can be mended\n2 FileHeader header_tag' "$(grep -e '^to repair' -e '^[0-9]* [A-Z]' "$scratch/out")"
  same "list of script 4" "$(printf '%s\0' "$odd" scenes/deep/bad.kb | sort -z | tr '\0' '|')" "$(sort -z mendable.list | tr '\0' '|')"
  recipe 0 3
  same "script 3" "2 files: 2 OK, 0 ERR, 0 without verdict" "$(sed -n 's/^\(2 files: [^;]*\);.*/\1/p' "$scratch/out")"
  for file in scenes/deep/bad.kb "$odd"; do
    cmp "mended/$file" "$samples/small-1.kb" || fail "script 3 has not mended $file"
    [ -s "mended/$file.txt" ] || fail "script 3: the changes of $file are missing"
  done
  same "left by script 3" "scenes/not.kb|" "$(tr '\0' '|' <not-mended.list)"
  same "mended by script 3" 2 "$(find mended -name '*.kb' | grep -c '\.kb$')"
  recipe 1 3
  same "script 3, again" "mended exists" "$(cat "$scratch/err")"
else
  notice "a collection: kbsurvey is not here"
fi
