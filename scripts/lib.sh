# Shared by scripts/run, scripts/test and .ci/run.
# shellcheck shell=bash

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
CMAKE_BUILD_PARALLEL_LEVEL=$(nproc)
CTEST_PARALLEL_LEVEL=$(nproc)
export CMAKE_BUILD_PARALLEL_LEVEL CTEST_PARALLEL_LEVEL

# quietly COMMAND...: shows what the command printed only when it fails, on standard error.
quietly() {
  local output status=0
  output=$("$@" 2>&1) || status=$?
  if [ "$status" -ne 0 ]; then
    printf '%s\n' "$output" "failed with status $status: $*" >&2
  fi
  return "$status"
}

apt_get() {
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=300 -qq "$@"
}

# here TOOL: whether a tool is there. For g++ any compiler will do that CXX names.
here() {
  if [ "$1" = g++ ] && [ -n "${CXX-}" ]; then
    command -v "${CXX%% *}" >/dev/null && return 0
  fi
  command -v "$1" >/dev/null
}

# install_missing ITEM...: an item is a Debian package, or tool=package when any tool of that name will do.
install_missing() {
  local item missing=()
  for item in "$@"; do
    if [[ $item == *=* ]]; then
      here "${item%=*}" || missing+=("${item##*=}")
    else
      [ "$(dpkg-query -W -f '${db:Status-Status}' "$item" 2>/dev/null)" = installed ] || missing+=("$item")
    fi
  done
  [ ${#missing[@]} -gt 0 ] || return 0

  if ! command -v apt-get >/dev/null || { [ "$(id -u)" -ne 0 ] && ! command -v sudo >/dev/null; }; then
    echo "missing here, install by hand (names of Debian packages): ${missing[*]}" >&2
    return 1
  fi
  echo "installing ${missing[*]}" >&2
  # The package lists of a fresh machine are empty or old; only then are they fetched.
  apt_get install -y --no-install-recommends "${missing[@]}" >/dev/null 2>&1 && return 0
  quietly apt_get update || true
  quietly apt_get install -y --no-install-recommends "${missing[@]}"
}

# build PRESET [OPTION...]: configures and builds a preset; the options go to the build.
build() {
  local preset=$1
  shift
  echo "building $preset" >&2
  (cd "$root" && quietly cmake --preset "$preset" && quietly cmake --build --preset "$preset" "$@")
}
