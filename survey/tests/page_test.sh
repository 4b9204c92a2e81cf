#!/usr/bin/env bash
# The page in a real browser: filters, sorts, opens findings, and runs nothing of a file's making.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$SOURCE_DIR/tests/lib.sh"
has python3 || skip_test "python3 is not here"
has chromium || has chromium-browser || has google-chrome || skip_test "Chromium is not here"
cd "$SOURCE_DIR"
run 0 "the page in a browser" python3 -B survey/tests/page_check.py "$KBSURVEY" samples "$scratch"
