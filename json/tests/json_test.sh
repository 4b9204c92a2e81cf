#!/usr/bin/env bash
# kbjson as a program: exit statuses, what is told and what is written, and outputs that may not be written. The recipes
# of docs/json.md run as they are shown. The manual page and the completion know every option.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$SOURCE_DIR/tests/lib.sh"
tools "$KBJSON"
mkdir "$scratch/work"
cd "$scratch/work"
cp "$SOURCE_DIR"/samples/{town,damaged,cut}.kb .

json() { # STATUS ARGUMENT...
  local status=$1
  shift
  run "$status" "kbjson $*" kbjson "$@"
}
refused() { # STATUS MESSAGE ARGUMENT...: nothing is printed or written
  local status=$1 message=$2 before
  before=$(ls)
  shift 2
  json "$status" "$@"
  same "message of kbjson $*" "kbjson: $message" "$(head -n 1 "$scratch/err")"
  same "what kbjson $* prints and writes" "$before" "$(cat "$scratch/out")$(ls)"
}

# --- Both directions ---

for file in town damaged cut; do
  json 0 "$file.kb" "$file.json"
  json 0 --to-kb "$file.json" back.kb
  cmp "$file.kb" back.kb || fail "$file.kb does not come back"
  rm "$file.json" back.kb
done
cmp town.kb <(kbjson --lean - <town.kb | kbjson --to-kb - -) || fail "through pipes, town.kb does not come back"
json 0 <(sleep 0.1 && cat town.kb) pipe.json
json 0 --to-kb <(sleep 0.1 && cat pipe.json) pipe.kb
cmp town.kb pipe.kb || fail "through named pipes that are written late, town.kb does not come back"
rm pipe.kb pipe.json

# --- What is refused ---

echo '{"FileHeader":{"version":"0x100"},"ObjList":{"obj_num":true}}' >wrong.json
refused 1 'wrong.json:1:56: ObjList.obj_num: expected a whole number from -2147483648 to 4294967295, or "0x" and up to 8 digits.' \
  --to-kb wrong.json out.kb
refused 2 "none.kb: No such file or directory." none.kb
refused 2 ".: Is a directory." .
refused 3 "SCENE.kb is missing." --lean
refused 3 "OUT.kb is missing." --to-kb wrong.json
refused 3 "--only knows no list Objects; they are SceneList, ObjList and so on." --only ObjList,Objects town.kb
refused 3 "--lines and --pretty exclude each other." --lines --pretty town.kb
refused 3 "--lean, --only, --lines and --pretty do not go with --to-kb." --to-kb --lean wrong.json out.kb
refused 3 "wrong.json exists; --force replaces it." town.kb wrong.json
refused 3 "./town.kb is the same file as the input, which is never changed." --force town.kb ./town.kb
refused 3 "none/out.json cannot be written: No such file or directory." town.kb none/out.json
cp town.kb same.kb
run 3 "output into the input" bash -c 'kbjson same.kb >>same.kb'
run 3 "messages into the input" bash -c 'kbjson --lean same.kb none/out.json 2>>same.kb'
run 3 "wrong usage, told into the input" bash -c 'kbjson --loan same.kb 2>>same.kb'
cmp same.kb town.kb || fail "the input was changed through a standard stream"
json 0 --force town.kb wrong.json
json 0 --force --to-kb wrong.json damaged.kb
cmp damaged.kb town.kb || fail "--force has not replaced the file"
if [ -e /dev/full ]; then
  run 3 "a full device" bash -c 'kbjson town.kb >/dev/full'
fi

# --- Options ---

json 0 --lines --only ObjList,MatList town.kb
same "lists of --only" $'"FileHeader":{\n"ObjList":{\n"MatList":{' "$(grep -E '^"[A-Z]' "$scratch/out")"
same "elements on lines" "$("$KBAUDIT" town.kb | grep -a -c -E '^(Obj|Mat)\([0-9]+\)$')" \
  "$(grep -c -E '^\{"(obj|mat)_tag"' "$scratch/out")"
while read -r list; do
  json 0 --lines --only "$list" town.kb
done < <(sed -n 's/^ *ListOf{{"\([A-Za-z]*\)".*/\1/p' "$SOURCE_DIR/format/lists.h")
json 0 --pretty town.kb
python3 -m json.tool <"$scratch/out" >/dev/null || fail "what --pretty prints is no JSON"

json 0 --help
cmp "$SOURCE_DIR/json/tests/golden/help.out" "$scratch/out" || fail "what --help prints"
page=$SOURCE_DIR/docs/kbjson.1
options=$(kbjson --help | grep -o -e '--[a-z-]*' | sort -u)
same "options of the manual page" "$options" "$(sed 's/\\-/-/g' "$page" | sed -n '/^\.SH OPTIONS/,/^\.SH EXIT/p' | grep -oE -e '--[a-z-]+' | sort -u)"
same "completion" "$options" "$(bash -c '. "$SOURCE_DIR/json/completion.bash"; COMP_WORDS=(kbjson -) COMP_CWORD=1; _kbjson
  printf "%s\n" "${COMPREPLY[@]}"' | sort -u)"

# --- Recipes ---

has jq || skip_test "jq is not here: the recipes"
scripts_of json.md 8
cp town.kb scene.kb
cp "$SOURCE_DIR/samples/small-1.kb" other.kb
for ((i = 1; i <= 8; ++i)); do
  rm -f ./*.json
  recipe 0 "$i"
  [ ! -s "$scratch/err" ] || fail "recipe $i says $(cat "$scratch/err")"
  [ "$i" -ne 7 ] || objects=$(cat "$scratch/out")
done
for file in renamed dim without merged triangle; do
  same "verdict of $file.kb" "**** check result : OK" "$("$KBAUDIT" "$file.kb" 2>&1 | grep -a -F '**** check result')"
done
names() { kbjson "$1" | jq -r '.NameList.element[].text'; }
same "renamed" "brass" "$(diff <(names scene.kb) <(names renamed.kb) | sed -n 's/^> //p')"
same "dim" 0.25 "$(kbjson dim.kb | jq '.LightList.element[].ambient_b' | sort -u)"
same "without" 0 "$(kbjson without.kb | jq '.CollList.coll_group_num')"
same "merged" "$(names scene.kb && names other.kb)" "$(names merged.kb)"
same "objects" "$(kbjson scene.kb | jq -r '.NameList.element as $n | .ObjList.element[] | .obj_name_index | if . < 0 then "-" else $n[.].text end')" \
  "$objects"
