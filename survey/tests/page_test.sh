#!/usr/bin/env bash
# The page in a real browser, on a screen, on a phone and on paper. It runs nothing of a file's making.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$SOURCE_DIR/tests/lib.sh"
has python3 || skip_test "python3 is not here"
has chromium || has chromium-browser || has google-chrome || skip_test "Chromium is not here"
axe=$BUILD_DIR/axe/node_modules/axe-core/axe.min.js
[ -e "$axe" ] || { notice "the page by axe-core: it is not here (scripts/test installs it if npm is)"; axe=; }
cd "$SOURCE_DIR"
# shellcheck disable=SC2086 # none or one
run 0 "the page in a browser" python3 -B survey/tests/page_check.py "$KBSURVEY" samples "$scratch" ${axe:+"$axe"}
cat "$scratch/out"
