#!/usr/bin/env bash
# What is installed is whole, hardened, and serves programs of others.
#
#     slow_install_test.sh [usr]    what the build installs, or the usr folder of its packages, all unpacked
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$(dirname "$0")/lib.sh"

[ "$(cached CMAKE_BUILD_TYPE)" = Release ] || skip_test "what is installed comes from a Release build"
[ "$(cached KOVA_INSTALL)" = ON ] || skip_test "installing is switched off in this build"
! sanitized || skip_test "what is installed comes from a build without sanitizers"
samples=$SOURCE_DIR/samples
CMAKE_GENERATOR=$(cached CMAKE_GENERATOR)
CXX=$(cached CMAKE_CXX_COMPILER)
export CMAKE_GENERATOR CXX

# --- The tree, moved after it was installed ---

if [ $# -gt 0 ]; then
  installed=$1
  packed=.gz # of the manual page
else
  run 0 "cmake --install" cmake --install "$BUILD_DIR" --prefix "$scratch/staged"
  installed=$scratch/installed
  mv "$scratch/staged" "$installed"
  packed=
fi
library=$(cd "$(dirname "$(find "$installed" -name libkova.a)")" && pwd)
version=$(cached CMAKE_PROJECT_VERSION)
# files_if OPTION PROGRAM DOCUMENT...: of a program that is built only if it is asked for.
files_if() {
  [ "$(cached "$1")" = ON ] || return 0
  local program=$2
  shift 2
  printf '%s\n' "bin/$program" "share/man/man1/$program.1$packed" "share/bash-completion/completions/$program" \
    "${@/#/share/doc/$program/}" "share/doc/$program/copyright"
}
same "files" "$(sed '/^$/d' <<END | sort
bin/kbaudit
$(files_if KOVA_SURVEY kbsurvey docs/{survey,report}.md survey/report.schema.json)
$(files_if KOVA_REPAIR kbrepair docs/repair.md)
$(files_if KOVA_JSON kbjson docs/{json,tools}.md)
$(files_if KOVA_DIFF kbdiff docs/diff.md diff/diff.schema.json)
$([ "$(cached KOVA_JSON)" != ON ] || printf 'share/kova/%s\n' kbjson.schema.json kova.{ksy,hexpat,magic,xml})
$(cd "$SOURCE_DIR" && printf "%s\n" include/kova/*.h)
$(printf 'lib/%s\n' libkova.{a,so,"so.${version%%.*}","so.$version"} pkgconfig/kova.pc \
  cmake/kova/kova{Config,ConfigVersion,Targets,Targets-release}.cmake)
$(printf 'share/doc/%s\n' {kbaudit,"libkova${version%%.*}",libkova-dev}/copyright kbaudit/{README,CHANGELOG,SECURITY}.md \
  kbaudit/docs/{findings,format,performance,recipes,robustness,tour}.md kbaudit/docs/kbsurvey.png \
  libkova-dev/docs/format.md libkova-dev/examples/{CMakeLists.txt,objects.cpp,triangles.cpp,color.cpp})
share/man/man1/kbaudit.1$packed
share/bash-completion/completions/kbaudit
$(cd "$SOURCE_DIR" && printf 'share/kova/%s\n' samples/*.kb)
END
)" "$(cd "$installed" && find . ! -type d ! -path '*/libkova-dev/html/*' ! -name changelog.gz \
  ! -path '*/lintian/*' | sed "s|^\./||; s|^${library#"$installed"/}/|lib/|" | sort)"

program=$installed/bin/kbaudit
for sample in town figure damaged; do
  run 0 "installed kbaudit" "$program" "$samples/$sample.kb"
  cp "$scratch/out" "$scratch/$sample.out"
  sed -n '/^<FileHeader> ;/,$p' "$scratch/out" >"$scratch/$sample.txt"
done

# Links and images of the documents, but for those into the web.
find "$installed/share/doc" -name '*.md' -print0 | while IFS= read -r -d '' document; do
  for link in $(tr '\n' ' ' <"$document" | grep -oE '\]\([^)# ]+' | cut -c 3- | grep -v '://'); do
    [ -e "${document%/*}/$link" ] || fail "${document##*/} has a link to $link, which is not there"
    echo x >>"$scratch/links"
  done
done
[ "$(wc -l <"$scratch/links")" -ge 10 ] || fail "the documents have no links to one another"
! grep -rn 'scripts/\|<!-- \(sources\|end\|installed\)' "$installed"/share/doc/*/ --include='*.md' ||
  fail "the documents tell of scripts, which are not installed"

if [ "$(cached KOVA_SURVEY)" = ON ]; then
  run 1 "installed kbsurvey" "$installed/bin/kbsurvey" "$samples/town.kb" "$samples/damaged.kb"
  same "verdicts of kbsurvey" "2 files: 1 OK, 1 ERR, 0 without verdict" "$(sed -n 's/; .* in .* s$//p' "$scratch/out")"
fi

if [ "$(cached KOVA_REPAIR)" = ON ]; then
  run 0 "installed kbrepair" "$installed/bin/kbrepair" "$samples/damaged.kb" "$scratch/mended.kb"
  cmp "$scratch/mended.kb" "$samples/town.kb" || fail "installed kbrepair does not mend damaged.kb"
fi

# --- Hardening ---

# hardened FILE PATTERN...
hardened() {
  local file=$1 pattern
  readelf -W -h -l -d --dyn-syms "$file" >"$scratch/elf"
  shift
  for pattern in "$@"; do
    grep -E "$pattern" "$scratch/elf" >/dev/null || fail "${file##*/}: readelf shows no $pattern"
  done
}
everywhere=('Type: +DYN ' 'GNU_RELRO' 'Flags: .*NOW' 'GNU_STACK.* RW ' ' __stack_chk_fail')
if [[ $("$CXX" --version) == *clang* ]]; then
  notice "fortified functions: the C library has none of its printf functions for clang"
else
  everywhere+=(' __[a-z]*printf_chk')
fi
for built_program in "$installed"/bin/*; do
  hardened "$built_program" "${everywhere[@]}" 'Flags: .*PIE'
done
hardened "$library/libkova.so" "${everywhere[@]}"

# --- Programs of others ---

# consumer WHAT PROGRAM: says of each sample what is true of it, and dumps it as kbaudit does.
consumer() {
  local row sample
  for row in "town OK brick_wall" "damaged ERR brick_wall" "figure OK cloth_weave"; do
    sample=${row%% *}
    run 0 "$1 on $sample" "$2" "$samples/$sample.kb" "$scratch/dump"
    same "$1 on $sample" "$version ${row#* }" "$(tail -n 1 "$scratch/out")"
    cmp "$scratch/dump" "$scratch/$sample.txt" || fail "$1 on $sample: another dump than that of kbaudit"
  done
}

# built SOURCE FOLDER OPTION...
built() {
  run 0 "configuring $2" cmake -S "$1" -B "$scratch/$2" "${@:3}"
  run 0 "building $2" cmake --build "$scratch/$2" -j 2
}

theirs=$SOURCE_DIR/tests/consumer
built "$theirs" package -DCMAKE_PREFIX_PATH="$installed" -DCMAKE_BUILD_TYPE=Debug
consumer "package, static" "$scratch/package/with_kova"
consumer "package, shared" "$scratch/package/with_kova_shared"
run 1 "another major version" cmake -S "$theirs" -B "$scratch/other" -DCMAKE_PREFIX_PATH="$installed" -DWANTED=2.0

if [ $# -eq 0 ]; then
  built "$theirs" subdirectory -DFROM_SOURCE="$SOURCE_DIR" -DCMAKE_BUILD_TYPE=Debug
  consumer "subdirectory, static" "$scratch/subdirectory/with_kova"
  consumer "subdirectory, shared" "$scratch/subdirectory/with_kova_shared"
  run 0 "installing what includes the project" cmake --install "$scratch/subdirectory" --prefix "$scratch/theirs"
  [ ! -e "$scratch/theirs" ] || fail "whoever includes the project installs it: $(ls -R "$scratch/theirs")"
fi

if has pkg-config; then
  export PKG_CONFIG_PATH=$library/pkgconfig LD_LIBRARY_PATH=$library
  read -ra flags < <(pkg-config --cflags --libs kova)
  run 0 "building with pkg-config" "$CXX" -std=c++20 "$theirs/main.cpp" "${flags[@]}" -o "$scratch/by_pkg_config"
  consumer "pkg-config" "$scratch/by_pkg_config"

  # The project's own driver stands for a program of somebody else: it sees its own headers and the installed ones.
  mkdir -p "$scratch/own/common"
  cp -r "$SOURCE_DIR/driver" "$scratch/own"
  cp "$SOURCE_DIR"/common/{memory.h,memory.cpp,new.cpp} "$scratch/own/common"
  run 0 "building the driver" "$CXX" -std=c++20 -I "$scratch/own" "$scratch"/own/{driver,common}/*.cpp "${flags[@]}" \
    -o "$scratch/own/kbaudit"
  run 0 "the driver" "$scratch/own/kbaudit" "$samples/town.kb"
  cmp "$scratch/out" "$scratch/town.out" || fail "the driver prints something else than kbaudit"

  # The program that the README shows.
  awk '/^```/ { inside = /cpp$/; next } inside' "$SOURCE_DIR/README.md" >"$scratch/readme.cpp"
  run 0 "building the README's program" "$CXX" -std=c++20 "$scratch/readme.cpp" "${flags[@]}" -o "$scratch/readme"
  mkdir "$scratch/reader"
  cd "$scratch/reader"
  cp "$samples/town.kb" .
  run 0 "the README's program" "$scratch/readme"
  cmp town.txt "$scratch/town.txt" || fail "the README's program saves another dump"
  unset LD_LIBRARY_PATH

  # As the README says it: without LD_LIBRARY_PATH, from where it is installed.
  rpath=-Wl,-rpath,$(pkg-config --variable=libdir kova)
  run 0 "building with an rpath" "$CXX" -std=c++20 "$theirs/main.cpp" "${flags[@]}" "$rpath" -o "$scratch/by_rpath"
  consumer "pkg-config, rpath" "$scratch/by_rpath"
  read -ra flags < <(pkg-config --static --cflags --libs kova)
  run 0 "building statically" "$CXX" -std=c++20 -static "$theirs/main.cpp" "${flags[@]}" -o "$scratch/by_static"
  consumer "pkg-config --static" "$scratch/by_static"
else
  notice "pkg-config is not here"
fi

# --- The examples ---

built "$SOURCE_DIR/examples" examples -DCMAKE_PREFIX_PATH="$installed"
examples=$scratch/examples
cd "$samples"
head -c 46000 town.kb >"$scratch/cut.kb"
for example in objects triangles color; do
  run 1 "$example of nothing" "$examples/$example"
  run 1 "$example of a cut file" "$examples/$example" "$scratch/cut.kb" "$scratch/edited.kb" 0 0 0 0
done

run 0 "objects" "$examples/objects" figure.kb
same "first objects of figure.kb" $'hips, child of walker\nspine, child of hips' "$(head -n 2 "$scratch/out")"

run 0 "triangles" "$examples/triangles" small-1.kb
same "triangles of small-1.kb" 'shape 0: 2 triangles
  (6 7 8)  (9 10 11)  (12 13 14)
  (12 13 14)  (9 10 11)  (6 7 8)' "$(cat "$scratch/out")"

# Of the saved file only the colour is another one: three words of the material, and those of its maker block in 2.0.
for sample in small-1 small-2; do
  run 0 "color" "$examples/color" "$sample.kb" "$scratch/edited.kb" 0 0.25 0.5 1
  run 0 "the edited file" "$program" "$scratch/edited.kb"
  sed -n '/^<FileHeader> ;/,$p' "$scratch/out" >"$scratch/edited.txt"
  run 0 "the file" "$program" "$sample.kb"
  sed -n '/^<FileHeader> ;/,$p' "$scratch/out" | diff - "$scratch/edited.txt" | grep '^>' >"$scratch/changed" || :
  colors=$'> prim_red           0.250000\n> prim_green         0.500000\n> prim_blue          1.00000'
  [ $sample = small-1 ] || colors+=$'\n> diffuse red  0.250000 green 0.500000 blue 1.00000 alpha 11.0000'
  same "what color changes in $sample.kb" "$colors" "$(cat "$scratch/changed")"
done
run 1 "color of a material that is not there" "$examples/color" town.kb "$scratch/none.kb" 99 0 0 0
[ ! -e "$scratch/none.kb" ] || fail "color saves what it has not changed"
