#!/usr/bin/env bash
# kbdiff as a program: command lines against a golden file, the recipes of docs/diff.md, also in a repository of git, the
# manual page and the completion.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$SOURCE_DIR/tests/lib.sh"
tools "$KBDIFF"
samples=$SOURCE_DIR/samples

# As a program of its own that is linked with the library.
same "headers of other folders" "" "$(grep -hE '^#include "' "$SOURCE_DIR"/diff/*.{cpp,h} | grep -vE '"((kova|format|records|reader|common|diff)/)' || :)"

# --- Command lines ---

mkdir -p "$scratch"/before/{old,new}/sub
cd "$scratch/before"
cp "$samples"/{town,damaged,small-1,small-2,cut,element-tag,extra,every-form-1}.kb .
cp "$samples"/{town,cut}.kb old
cp "$samples"/{town,skin}.kb new
cp "$samples/damaged.kb" old/sub/town.KB
cp town.kb new/sub/town.KB
mkfifo old/pipe.kb new/pipe.kb # passed over
ln -s /dev/zero old/zero.kb
cp -P old/zero.kb new
printf 'no scene' >note.kb
cp town.kb $'\e[31m\n.kb'
cp town.kb hostile.kb
name_at=$(grep -abo stone_wall town.kb | head -n 1 | cut -d : -f 1)
set_words hostile.kb "$name_at=1b5b3331"
# Two elements exchanged, while the links to them cannot be read.
cp town.kb exchanged-1.kb
set_words exchanged-1.kb 124=40000000
cp exchanged-1.kb exchanged-2.kb
set_words exchanged-2.kb 256=50 312=4f 264=785a50ff 320=b4c8dcff 268=28 324=78 272=b4 328=190 276=3c2d46ff 332=8cb4e6ff
cp town.kb infinite.kb && set_words infinite.kb 412=7fc00001 416=ff800000 420=7f800000
cp small-1.kb texel.kb && set_words texel.kb 1892=01020305
cp small-1.kb parts.kb && set_words parts.kb 1428=0
cp "$samples/light-type.kb" spot.kb # what lies in no record of it is one in the other
cp spot.kb point.kb && set_words point.kb 456=1 496=40a00000
cp small-2.kb maker.kb && set_words maker.kb 184=1
transcript "$SOURCE_DIR/diff/tests/golden/commands.out" <<'END'
kbdiff town.kb town.kb
kbdiff damaged.kb town.kb
kbdiff town.kb damaged.kb
kbdiff --unified damaged.kb town.kb
kbdiff --json damaged.kb town.kb
kbdiff --stat damaged.kb town.kb
kbdiff --quiet damaged.kb town.kb
kbdiff --ignore derived damaged.kb town.kb
kbdiff --ignore this_obj_index,MatList damaged.kb town.kb
kbdiff --only LightList,ShapeList --color always damaged.kb town.kb
kbdiff town.kb hostile.kb
kbdiff --json town.kb hostile.kb
kbdiff small-1.kb small-2.kb
kbdiff --by-name --stat small-1.kb small-2.kb
kbdiff cut.kb town.kb
kbdiff element-tag.kb extra.kb
kbdiff --ignore gaps extra.kb extra.kb
kbdiff exchanged-1.kb exchanged-2.kb
kbdiff parts.kb small-1.kb
kbdiff spot.kb point.kb
kbdiff point.kb spot.kb
kbdiff small-2.kb maker.kb
kbdiff maker.kb small-2.kb
kbdiff --ignore text town.kb hostile.kb
kbdiff small-1.kb texel.kb
kbdiff --json small-1.kb texel.kb
kbdiff --ignore texel small-1.kb texel.kb
kbdiff town.kb infinite.kb
kbdiff --json infinite.kb town.kb
kbdiff note.kb town.kb
kbdiff note.kb note.kb
kbdiff /dev/null town.kb
kbdiff - town.kb <damaged.kb
cat town.kb | kbdiff town.kb -
kbdiff - - <town.kb
kbdiff old new
kbdiff --json -j 2 old/ new/
kbdiff --unified old new
kbdiff --quiet new new
kbdiff old/town.kb new
kbdiff - new <town.kb
kbdiff old - <town.kb
kbdiff old/cut.kb new
kbdiff town.kb none.kb
kbdiff town.kb $'\e[31m\n.kb' none.kb
kbdiff $'\e[31m\n.kb' none.kb
kbdiff
kbdiff town.kb
kbdiff --ulp x town.kb damaged.kb
kbdiff --epsilon nan town.kb damaged.kb
kbdiff --epsilon -1 town.kb damaged.kb
kbdiff --only Obj town.kb damaged.kb
kbdiff --ignore 'a b' town.kb damaged.kb
kbdiff --ignore ObjList,obj_prio town.kb damaged.kb
kbdiff --ignore dir_light,ObjList town.kb damaged.kb
kbdiff --only ObjList --ignore ObjList town.kb damaged.kb
kbdiff --json --stat town.kb damaged.kb
kbdiff --color sometimes town.kb damaged.kb
kbdiff --jsn town.kb damaged.kb
kbdiff --help
kbdiff --version
END
if [ -e /dev/full ]; then
  run 2 "a full device" bash -c 'kbdiff damaged.kb town.kb >/dev/full'
fi
for streams in 'damaged.kb town.kb >>town.kb' 'damaged.kb town.kb 2>>town.kb' '- damaged.kb <town.kb >>town.kb' '--loan town.kb cut.kb 2>>town.kb' \
  'old new >>new/sub/town.KB' 'old new 2>>new/sub/town.KB'; do
  run 2 "kbdiff $streams" bash -c "kbdiff $streams"
done
for scene in town.kb new/sub/town.KB; do
  cmp "$scene" "$samples/town.kb" || fail "$scene was changed through a standard stream"
done

# --- Manual page and completion ---

options=$(kbdiff --help | grep -o -e '--[a-z-]*' | sort -u)
same "options of the manual page" "$options" "$(sed 's/\\-/-/g; s/\\fI/ /g' "$SOURCE_DIR/docs/kbdiff.1" | sed -n '/^\.SH OPTIONS/,/^\.SH EXIT/p' | grep -oE -e '--[a-z-]+' | sort -u)"
same "completion" "$options" "$(bash -c '. "$SOURCE_DIR/diff/completion.bash"; COMP_WORDS=(kbdiff -) COMP_CWORD=1; _kbdiff
  printf "%s\n" "${COMPREPLY[@]}"' | sort -u)"

# --- Recipes ---

has git || skip_test "git is not here: the recipes"
scripts_of diff.md 4
mkdir "$scratch/repository"
cd "$scratch/repository"
cp "$samples"/{town,damaged}.kb .
recipe 1 1
same "recipe 1" "$(cat "$scratch/recipes/1.text")" "$(cat "$scratch/out")"
if has jq; then
  recipe 0 2
  same "recipe 2" "$(cat "$scratch/recipes/2.text")" "$(cat "$scratch/out")"
fi
export HOME=$scratch GIT_CONFIG_NOSYSTEM=1 GIT_AUTHOR_NAME=a GIT_AUTHOR_EMAIL=a GIT_COMMITTER_NAME=a GIT_COMMITTER_EMAIL=a
git init -q
cp damaged.kb scene.kb
git add scene.kb
git commit -qm "A scene"
cp town.kb scene.kb
for number in 3 4; do
  recipe 0 $number
  same "recipe $number" "$(cat "$scratch/recipes/$number.text")" "$(cat "$scratch/out")"
  rm -f .gitattributes
done
