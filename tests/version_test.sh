#!/usr/bin/env bash
# There is one version number: that of project().
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$(dirname "$0")/lib.sh"

version=$(sed -n 's/^project(kova VERSION \([0-9.]*\) .*/\1/p' "$SOURCE_DIR/CMakeLists.txt")
[[ $version =~ ^[0-9]+\.[0-9]+\.[0-9]+$ ]] || fail "CMakeLists.txt: no version in project()"
major=${version%%.*}

# tells VERSION FILE EXPRESSION: the first that sed finds in the file.
tells() { same "version in ${2##*/} ($3)" "$1" "$(sed -n "$3" "$2" | head -n 1)"; }

cd "$SOURCE_DIR"
tells "$version" include/kova/version.h 's/^#define KOVA_VERSION "\(.*\)"$/\1/p'
same "version in version.h, by its parts" "$version" \
  "$(sed -n 's/^#define KOVA_VERSION_[A-Z]* //p' include/kova/version.h | paste -sd.)"
tells "$version" docs/kbaudit.1 's/^\.TH KBAUDIT 1 "[^"]*" "kbaudit \([^"]*\)".*/\1/p'
tells "$version" CHANGELOG.md 's/^## \([^ ]*\).*/\1/p'
tells "$version" SECURITY.md 's/.*(.kbaudit \([0-9.]*\).).*/\1/p'
tells "${version%.*}" README.md 's/.*find_package(kova \([0-9.]*\) REQUIRED).*/\1/p'

same "version in the cache" "$version" "$(cached CMAKE_PROJECT_VERSION)"
same "name of the shared library" "libkova.so.$major" \
  "$(readelf -dW "$BUILD_DIR/libkova.so.$version" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')"
if [ "$(cached KOVA_INSTALL)" = ON ]; then
  cd "$BUILD_DIR"
  tells "$version" kova.pc 's/^Version: //p'
  tells "$version" kovaConfigVersion.cmake 's/^set(PACKAGE_VERSION "\(.*\)")/\1/p'
  # The package is NAME_VERSION_ARCHITECTURE.deb by this rule, unless the Debian version is told apart.
  tells DEB-DEFAULT CPackConfig.cmake 's/^set(CPACK_DEBIAN_FILE_NAME "\(.*\)")/\1/p'
  tells kbaudit CPackConfig.cmake 's/^set(CPACK_PACKAGE_NAME "\(.*\)")/\1/p'
  tells "$version" CPackConfig.cmake 's/^set(CPACK_PACKAGE_VERSION "\(.*\)")/\1/p'
  tells "" CPackConfig.cmake 's/^set(CPACK_DEBIAN_PACKAGE_\(VERSION\|RELEASE\|EPOCH\) "\(.*\)")/\2/p'
else
  notice "the packages are switched off in this build"
fi
