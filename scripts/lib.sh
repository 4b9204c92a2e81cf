# Shared by the scripts of this folder and by .ci/run.
# shellcheck shell=bash

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
CMAKE_BUILD_PARALLEL_LEVEL=$(nproc)
CTEST_PARALLEL_LEVEL=$(nproc)
export CMAKE_BUILD_PARALLEL_LEVEL CTEST_PARALLEL_LEVEL

# The one build tree of the scripts: what one of them has compiled, the others need not.
tree=$root/build/check

# What has to be installed. An item is a Debian package, or tool=package where any tool of that name will do.
for_kbaudit=("g++=g++" cmake=cmake ninja=ninja-build)
for_kbrepair=("${for_kbaudit[@]}" nlohmann-json3-dev)
for_kbsurvey=("${for_kbrepair[@]}" libpugixml-dev)
for_tests=("${for_kbsurvey[@]}" libgtest-dev python3=python3)

# quietly COMMAND...: shows what the command printed only when it fails, on standard error.
quietly() {
  local output status=0
  output=$("$@" 2>&1) || status=$?
  if [ "$status" -ne 0 ]; then
    printf '%s\n' "$output" "failed with status $status: $*" >&2
  fi
  return "$status"
}

# watch WHAT LOG: after a second says what is done; on a terminal then again and again, with the seconds and the last line
# of the log.
watch() {
  local line begin=$SECONDS columns
  columns=$(stty size 2>/dev/null <&2 | cut -d ' ' -f 2) || :
  a_second
  : >"$2.said"
  printf '%s ...' "$1" >&2
  while on_terminal && kill -0 $$ 2>/dev/null; do
    line="$1, $((SECONDS - begin)) s: $(tail -n 1 "$2")"
    printf '\r\e[K%s' "${line:0:${columns:-80} - 1}" >&2
    a_second
  done
}

a_second() { sleep 1 >/dev/null 2>&1; } # nobody waits for it if the watcher is stopped

on_terminal() { [ -t 2 ] && [ "${TERM-dumb}" != dumb ]; }

# timed WHAT COMMAND...: what takes longer than a second is said on standard error, with its progress where that is a
# terminal, and with its seconds in the end. What the command printed is shown only when it fails.
timed() (
  what=$1 status=0 begin=$SECONDS
  shift
  scratch=$(mktemp -d)
  watch "$what" "$scratch/log" >/dev/null &
  watcher=$!
  trap 'kill "$watcher" 2>/dev/null || :; rm -rf "$scratch"' EXIT
  "$@" >"$scratch/log" 2>&1 </dev/null || status=$?
  kill "$watcher" 2>/dev/null || :
  wait "$watcher" 2>/dev/null || :
  if [ -e "$scratch/log.said" ]; then
    ! on_terminal || printf '\r\e[K%s ...' "$what" >&2
    printf ' %d s\n' $((SECONDS - begin)) >&2
  fi
  if [ "$status" -ne 0 ]; then
    cat "$scratch/log" >&2
    printf '%s: failed with status %d\n' "$what" "$status" >&2
  fi
  exit "$status"
)

# install_line: what whoever may install packages has to type, for all that any script of this folder needs.
install_line() { echo "sudo apt-get install -y --no-install-recommends ${for_tests[*]##*=}"; }

# here TOOL: whether a tool is there. For g++ any compiler will do that CXX names.
here() {
  if [ "$1" = g++ ] && [ -n "${CXX-}" ]; then
    command -v "${CXX%% *}" >/dev/null && return 0
  fi
  command -v "$1" >/dev/null
}

# missing ITEM...: prints the packages of those that are not there. Where packages are not Debian's, only tools are
# looked for; CMake names the libraries that it does not find.
missing() {
  local item
  for item in "$@"; do
    if [[ $item == *=* ]]; then
      here "${item%=*}" || echo "${item##*=}"
    elif here dpkg-query && [ "$(dpkg-query -W -f '${db:Status-Status}' "$item" 2>/dev/null)" != installed ]; then
      echo "$item"
    fi
  done
}

# may_install: whether packages can be installed, after a password if somebody is there to type it.
may_install() {
  command -v apt-get >/dev/null || return 1
  [ "$(id -u)" -ne 0 ] || return 0
  command -v sudo >/dev/null || return 1
  sudo -n true 2>/dev/null || { [ -t 2 ] && sudo -v; }
}

apt_get() {
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=300 -q "$@"
}

# The package lists of a fresh machine are empty or old; only then are they fetched.
apt_install() {
  apt_get install -y --no-install-recommends "$@" || { apt_get update && apt_get install -y --no-install-recommends "$@"; }
}

# install_missing ITEM...
install_missing() {
  local packages
  mapfile -t packages < <(missing "$@")
  [ ${#packages[@]} -gt 0 ] || return 0
  if ! may_install; then
    printf '%s\n' "missing here: ${packages[*]}" "This installs all that the scripts need, on Debian 12:" "" \
      "  $(install_line)" "" >&2
    return 1
  fi
  timed "installing ${packages[*]}" apt_install "${packages[@]}"
}

# build PRESET [OPTION...]: configures and builds a preset; the options go to the build.
build() {
  local preset=$1
  shift
  echo "building $preset" >&2
  (cd "$root" && quietly cmake --preset "$preset" && quietly cmake --build --preset "$preset" "$@")
}

# is_on OPTION: whether the tree is configured with it.
is_on() { grep -qs "^$1:BOOL=ON$" "$tree/CMakeCache.txt"; }

# build_in_tree TARGET [OPTION...]: builds the target in the tree of the scripts, configured with these options at least.
build_in_tree() { timed "building $1" configure_and_build "$@"; }

# Options that were on stay on, so that nothing is lost that was built.
configure_and_build() {
  local target=$1 option settings=() configured=yes
  shift
  [ -e "$tree/build.ninja" ] || configured=
  for option in KOVA_TESTS KOVA_EXAMPLES KOVA_SURVEY KOVA_REPAIR KOVA_JSON KOVA_DIFF; do
    if is_on "$option"; then
      settings+=("-D$option=ON")
    elif [[ " $* " == *" $option "* ]]; then
      settings+=("-D$option=ON")
      configured=
    else
      settings+=("-D$option=OFF")
    fi
  done
  cd "$root" || return
  [ -n "$configured" ] || cmake --preset check "${settings[@]}" || return
  cmake --build "$tree" --target "$target"
}

# install_modules FOLDER NAME: puts packages of npm into the tree, in the versions that the folder of the tests names.
install_modules() {
  local from=$root/$1 to=$tree/$2
  here npm && ! cmp -s "$from/package-lock.json" "$to/node_modules/package-lock.json" || return 0
  mkdir -p "$to" && cp "$from"/package*.json "$to" && timed "installing $2" npm ci --prefix "$to" --no-audit --no-fund &&
    cp "$from/package-lock.json" "$to/node_modules"
}

# skipped_in LOG: what the tests of a log of ctest say that they have skipped, and why.
skipped_in() {
  awk '/^[0-9]+\/[0-9]+ Testing: / { test = $3 }
       { reason = behind ? $0 : "" }
       { behind = /: Skipped$/ }
       sub(/^skipped: /, "") { reason = $0 }
       reason && !told[test, reason]++ { print "  " test ": " reason }' "$1"
}
