#!/usr/bin/env bash
# The JSON reports of all kinds fit their schema, and docs/report.md describes the same members.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$SOURCE_DIR/tests/lib.sh"
python3 -c 'import jsonschema' 2>/dev/null || skip_test "python3-jsonschema is not here"
cd "$scratch"
mkdir odd
cp "$SOURCE_DIR/samples/damaged.kb" $'odd/\xff\\ \n.kb'
: >odd/empty.kb
ln -s nowhere odd/broken.kb
run 2 "a run" "$KBSURVEY" --json run.json "$SOURCE_DIR/samples" odd missing
run 2 "a deep run" "$KBSURVEY" --deep --json deep.json "$SOURCE_DIR/samples"
run 2 "a merge" "$KBSURVEY" --merge run.json deep.json --json merged.json
run 2 "a run that asks for repairs" "$KBSURVEY" --repairable --json repairable.json "$SOURCE_DIR/samples" odd missing
run 0 "the schema" python3 -B "$SOURCE_DIR/survey/tests/schema_check.py" "$KBSURVEY" \
  "$SOURCE_DIR/survey/report.schema.json" "$SOURCE_DIR/docs/report.md" run.json deep.json merged.json repairable.json
