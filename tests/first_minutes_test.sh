#!/usr/bin/env bash
# What a new user meets: the examples of the README and of the tour print what is shown, and a script that may not
# install what it needs says what that is.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$(dirname "$0")/lib.sh"

# --- Examples ---

mkdir "$scratch/folder"
cp -r "$SOURCE_DIR/samples" "$scratch/folder"
mkdir "$scratch/folder/scripts"
for names in run:kbaudit:"$KBAUDIT" survey:kbsurvey:"${KBSURVEY-}" repair:kbrepair:"${KBREPAIR-}" \
  json:kbjson:"${KBJSON-}" diff:kbdiff:"${KBDIFF-}"; do
  IFS=: read -r script name program <<<"$names"
  [ -n "$program" ] || continue
  ln -s "$program" "$scratch/tools/$name"
  ln -s "$program" "$scratch/folder/scripts/$script"
done
PATH=$scratch/tools:$PATH

# Of a block without a language: each line behind "$ ", and the lines that it is shown to print.
examples() {
  awk -v folder="$2" '
    /^<!-- installed:$/ { comment = 1 }
    /^-->$/ { comment = 0 }
    /^```/ { open = !open; inside = open && $0 == "```" && !comment; out = ""; next }
    inside && sub(/^\$ /, "") { out = sprintf("%s/%02d", folder, ++number); print >(out ".sh"); printf "" >(out ".text"); next }
    inside && out { print >(out ".text") }' "$1"
}

# What depends on the machine is left out. As a pattern, "..." stands for any lines.
fixed() { sed -E '/^building kb[a-z]+ \.\.\. [0-9]+ s$/d; s/ in [0-9.]+ s$/ in N s/; s/ *$//'; }
pattern() { fixed <"$1" | sed 's/[][*?\\]/\\&/g; s/^\.\.\.$/*/'; }

for document in README.md docs/tour.md; do
  folder=$scratch/${document##*/}
  mkdir "$folder"
  examples "$SOURCE_DIR/$document" "$folder"
  cd "$scratch/folder"
  left_out=
  for example in "$folder"/*.sh; do
    command=$(cat "$example")
    if [[ ! -x ${command%% *} ]] && ! has "${command%% *}"; then
      notice "$document: examples of ${command%% *}, which is not built"
      left_out=yes
      continue
    fi
    # What other tools show may come of an example that was left out.
    [ -z "$left_out" ] || [[ $command == kbaudit\ * || $command == scripts/run* ]] || continue
    printed=$(bash -c "$command" 2>&1 | fixed) || :
    # shellcheck disable=SC2053 # a pattern
    [[ $printed == $(pattern "${example%.sh}.text") ]] || fail "$document: $command prints:"$'\n'"$printed"
  done
done
[ "$(find "$scratch"/*.md -name '*.sh' | wc -l)" -ge 15 ] || fail "the documents have hardly any examples"

# --- What has to be installed ---

line=$(bash -c '. "$1/scripts/lib.sh" && install_line' bash "$SOURCE_DIR")
grep -xF -- "$line" "$SOURCE_DIR/README.md" >/dev/null || fail "the README has another line than: $line"
mkdir "$scratch/bare"
for tool in bash dirname nproc; do
  ln -s "$(command -v "$tool")" "$scratch/bare"
done
for script in run survey repair json diff test; do
  run 1 "scripts/$script without tools" env -i PATH="$scratch/bare" bash "$SOURCE_DIR/scripts/$script"
  grep -F -- "$line" "$scratch/err" >/dev/null || fail "scripts/$script does not say what is missing: $(cat "$scratch/err")"
done
