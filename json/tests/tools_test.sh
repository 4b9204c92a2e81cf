#!/usr/bin/env bash
# The format in the languages of other tools, as docs/tools.md shows them: a reader that Kaitai Struct makes, file(1), MIME
# types, git and pre-commit. With an argument, so many files that are made at random are read by that reader.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$SOURCE_DIR/tests/lib.sh"
tools "$KBJSON" ${KBSURVEY:+"$KBSURVEY"}
made=$BUILD_DIR/json
share=$made
export share HOME=$scratch/home
mkdir "$HOME" "$scratch/good" "$scratch/small" "$scratch/unnamed"
"$MAKE_SAMPLES" --small "$scratch/small"
for file in "$SOURCE_DIR"/samples/*.kb; do
  "$KBAUDIT" "$file" >"$scratch/audit" 2>&1 || :
  ! grep -aqF '**** check result : OK' "$scratch/audit" || cp "$file" "$scratch/good"
done

# --- Kaitai Struct, ImHex ---

python3 "$SOURCE_DIR/json/tests/hexpat_check.py" "$made" || fail "kova.hexpat is not like kova.ksy"
modules=$BUILD_DIR/kaitai/node_modules
if [ -e "$modules/kaitai-struct-compiler" ] && has node; then
  run 0 "the reader of Kaitai Struct" node "$SOURCE_DIR/json/tests/kaitai_check.js" "$modules" "$KBJSON" "$made/kova.ksy" \
    "${1:-50}" "$scratch/good" "$scratch/small"
  cat "$scratch/out"
else
  notice "kova.ksy: the compiler of Kaitai Struct is not here (scripts/test installs it if npm is)"
fi
[ $# -eq 0 ] || exit 0

# --- file(1) and MIME types, by content alone ---

scripts_of tools.md 3
cd "$scratch"
cp "$SOURCE_DIR/samples/town.kb" scene.kb
number=0
for file in good/*.kb small/*.kb; do
  cp "$file" "unnamed/$((number += 1))"
done
if has file; then
  recipe 0 1
  same "what file says" "$(cat recipes/1.text)" "$(cat out)"
  file --mime-type -b -m "$made/kova.magic" unnamed/* >types
  same "scenes that file knows" "$number model/x-kova" "$(sort types | uniq -c | xargs)"
  same "others" 0 "$(file -b -m "$made/kova.magic" "$KBJSON" "$SOURCE_DIR"/*.* "$SOURCE_DIR"/docs/* /bin/* /lib/*/lib* 2>/dev/null | grep -c KOVA)"
else
  notice "kova.magic: file is not here"
fi
if has gio && has update-mime-database; then
  recipe 0 2
  export XDG_DATA_DIRS=$scratch/none
  types_of() { gio info -a standard::content-type "$@" 2>/dev/null | sed -n 's/.*content-type: //p'; }
  same "scenes by content" "$number model/x-kova" "$(types_of unnamed/* | sort | uniq -c | xargs)"
  same "a scene by name" model/x-kova "$(echo damaged >by_name.kb && types_of by_name.kb)"
  same "others" 0 "$(types_of "$SOURCE_DIR"/*.* "$SOURCE_DIR"/docs/* /bin/* | grep -c kova)"
else
  notice "kova.xml: gio or update-mime-database is not here"
fi

# --- A repository ---

has git || skip_test "git is not here: the recipes for repositories"
export GIT_CONFIG_GLOBAL=$HOME/gitconfig
git config --global user.name test
git config --global user.email test@example.com
git init -q repository
cd repository
cp ../scene.kb .
run 0 "script 3" sh "$scratch/recipes/3.sh"
git add . && git commit -qm scene
kbjson --lean scene.kb | sed 's/"prim_alpha":1,/"prim_alpha":0.5,/' | kbjson --to-kb - - >../other.kb
cp ../other.kb scene.kb
git diff >../difference
grep -q '^+.*"prim_alpha":0.5' ../difference || fail "git diff shows no element: $(head -c 500 ../difference)"
same "lines of the difference" "$(grep -c '^-[{]' ../difference)" "$(grep -c '^+[{]' ../difference)"

[ -n "${KBSURVEY-}" ] || skip_test "kbsurvey is not built: the hook for pre-commit"
hooks=$SOURCE_DIR/.pre-commit-hooks.yaml
value() { sed -n "s/^  $1: //p" "$hooks"; }
cp "$SOURCE_DIR/samples/damaged.kb" "$SOURCE_DIR/README.md" .
if has pre-commit; then
  git init -q ../hooks
  (cd ../hooks && cp "$hooks" . && git add . && git commit -qm hooks)
  hook() { pre-commit try-repo ../hooks "$(sed -n 's/^- id: //p' "$hooks")" --files "$@"; }
else
  notice "pre-commit is not here: its hook runs without it"
  # shellcheck disable=SC2046 # its words
  hook() { printf '%s\n' "$@" | grep -E "$(value files)" | xargs $(value entry); }
fi
run 0 "the hook with good scenes" hook scene.kb README.md
run 1 "the hook with a damaged scene" hook scene.kb damaged.kb
grep -q damaged.kb "$scratch/out" || fail "the hook does not name the damaged scene"
