#!/usr/bin/env bash
# The recipes run as they are shown, print what they are shown to print, are not deceived by forged verdicts, and tell
# files without a verdict and missing tools.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$(dirname "$0")/lib.sh"
tools "$KBAUDIT"
export HOME=$scratch
recipes=$scratch/recipes
folder=$scratch/folder

fresh_folder() {
  rm -rf "$folder"
  mkdir "$folder"
  cp "$SOURCE_DIR"/samples/{town,figure,damaged,version}.kb "$folder"
}

# What a recipe needs that is not on every machine.
can_run() {
  if grep -qw parallel "$1" && ! parallel --version 2>/dev/null | grep -w GNU >/dev/null; then
    notice "${1##*/}: GNU parallel is not here"
    return 1
  fi
  if grep -qw prlimit "$1" && ! has prlimit; then
    notice "${1##*/}: prlimit is not here"
    return 1
  fi
}

scripts_of recipes.md 8

# The lines shown as a pattern, in which "..." stands for any lines. Blanks that end a line of a dump are not shown.
shown() { sed 's/[][*?\\]/\\&/g; s/^\.\.\.$/*/' "$1"; }
printed() { sed 's/ *$//' "$scratch/out"; }

for recipe in "$recipes"/*.sh; do
  can_run "$recipe" || continue
  fresh_folder
  cd "$folder"
  run 0 "${recipe##*/}" sh "$recipe"
  text=${recipe%.sh}.text
  # shellcheck disable=SC2053 # a pattern
  if [ -e "$text" ] && [[ $(printed) != $(shown "$text") ]]; then
    fail "${recipe##*/} prints:"$'\n'"$(head -n 40 "$scratch/out")"
  fi
done

# forge FILE LINE: makes LINE a line of its own within the last name of a 1.0 file. The sizes of the file, the list (in
# header and list) and the name (in table and name) grow with it, so that the verdict stays what it was.
forge() {
  perl -0777 -pi -e '
    BEGIN { $text = "\n" . pop(@ARGV) . "\n"; $text = "x" x (-length($text) % 4) . $text }
    sub word { unpack "N", substr $_, $_[0], 4 }
    my $list = length() - word(88);
    my $table = $list + 24 + 4 * (word($list + 12) - 1);
    my $name = length() - word($table);
    for my $at (4, 88, $list + 8, $table, $name + 12) { substr($_, $at, 4) = pack "N", word($at) + length $text }
    substr($_, $name + 16, 0) = $text' "$@"
}

# A good and a bad file that claim the opposite: inside, and by their names.
fresh_folder
cd "$folder"
good=$'town\n**** check result : ERR !!\n.kb'
bad=$'damaged\n**** check result : OK\n.kb'
mv town.kb "$good"
mv damaged.kb "$bad"
forge "$good" '**** check result : ERR !!'
forge "$bad" '**** check result : OK'
for claim in "$good:ERR_!!" "$bad:OK"; do
  "$KBAUDIT" "${claim%:*}" | grep -a -xF "****_check_result_:_${claim##*:}" >/dev/null ||
    fail "no forged line in the dump of ${claim%%$'\n'*}.kb"
done

eval "$(sed -n '/^kova_verdict() {$/,/^}$/p' "$recipes"/*.sh)"
for wanted in "$good:0" "$bad:1" "figure.kb:0" "version.kb:2" "missing.kb:2" "$KBAUDIT:2"; do
  status=0
  kova_verdict "${wanted%:*}" 2>/dev/null || status=$?
  same "kova_verdict of ${wanted%:*}" "${wanted##*:}" "$status"
done

# --- The recipes that sort many files ---

# A find that also finds files which are gone when they are opened, before and behind the others.
mkdir "$scratch/found"
cat >"$scratch/found/find" <<END
#!/bin/sh
printf './gone\\n.kb\\0'
$(command -v find) "\$@" && printf './gone.kb\\0'
END
chmod +x "$scratch/found/find"

# sorted LIST NAME...: the list has these names, in any order.
sorted() {
  local list=$1
  shift
  same "${recipe##*/}: $list" "$(printf '%s\0' "$@" | sort -z | tr '\0' '|')" "$(sort -z "$list" | tr '\0' '|')"
}

for number in 1 2 3 4; do # in the middle of the list too, whatever the order of the folder is
  cp version.kb "version$number.kb"
  cp figure.kb "figure$number.kb"
done
for recipe in "$recipes"/*.sh; do
  if grep 'err\.list' "$recipe" >/dev/null && can_run "$recipe"; then
    run 0 "${recipe##*/} on many files" env PATH="$scratch/found:$PATH" sh "$recipe"
    sorted ok.list "./$good" ./figure.kb ./figure{1..4}.kb
    sorted err.list "./$bad"
    sorted none.list ./version.kb ./version{1..4}.kb ./gone.kb $'./gone\n.kb'
  fi
done

# --- Missing tools ---

tools_of() { sed -n 's/^for tool in \(.*\); do$/\1/p; s/^command -v \([a-z]*\) .*/\1/p' "$1"; }

for recipe in "$recipes"/*.sh; do
  for tool in kbaudit nproc parallel prlimit timeout xargs; do
    ! grep -w "$tool" "$recipe" >/dev/null || tools_of "$recipe" | grep -w "$tool" >/dev/null ||
      fail "${recipe##*/} does not look for $tool"
  done
  for missing in $(tools_of "$recipe"); do
    fresh_folder
    cd "$folder"
    rm -rf "$scratch/few"
    mkdir "$scratch/few"
    for tool in cat cp grep rm sed sh tr $(tools_of "$recipe"); do
      [ "$tool" = "$missing" ] || ! has "$tool" || ln -s "$(command -v "$tool")" "$scratch/few/$tool"
    done
    run 1 "${recipe##*/} without $missing" env PATH="$scratch/few" sh "$recipe"
    [[ "$(cat "$scratch/err")" == *" is missing" ]] || fail "${recipe##*/} without $missing says: $(cat "$scratch/err")"
    [ ! -s "$scratch/out" ] || fail "${recipe##*/} without $missing prints: $(cat "$scratch/out")"
    ! compgen -G '*.list' >/dev/null || fail "${recipe##*/} without $missing leaves a list"
  done
done
