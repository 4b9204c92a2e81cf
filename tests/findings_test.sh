#!/usr/bin/env bash
# docs/findings.md shows every message of the source as it stands there, once, and no other.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$(dirname "$0")/lib.sh"
cd "$SOURCE_DIR"

# The string literals with a % or a \n, adjacent ones joined, without those in comments. (No raw strings here.)
perl -0777 -ne '
  my $string = qr/"(?:\\.|[^"\\])*"/s;
  my $other = qr/\x27(?:\\.|[^\x27\\])+\x27|\d[\w\x27]*/; # characters, and numbers with a quote between digits
  s{($string|$other)|//[^\n]*|/\*.*?\*/}{$1 // " "}gse;
  while (/$other|((?:$string\s*)+)/g) {
    next unless defined $1;
    my $text = join "", $1 =~ /"((?:\\.|[^"\\])*)"/gs;
    print "$text\n" if $text =~ /%|\\n/;
  }' {reader,checker,driver}/*.cpp {reader,checker,include/kova}/*.h | sort -u >"$scratch/source"

perl -ne '
  if (/^### `([^`]+)`$/) { print "$1\n" }
  elsif (/^Pieces:$/) { $pieces = 1 }
  elsif ($pieces && /^- `([^`]+)`:/) { print "$1\n"; $pieces = 2 }
  elsif ($pieces == 2 && /^$/) { $pieces = 0 }' docs/findings.md | sort >"$scratch/page"

[ -s "$scratch/source" ] || fail "no message in the source"
tell() { while IFS= read -r text; do fail "$1: $text"; done; }
comm -23 "$scratch/source" <(uniq "$scratch/page") | tell "not on the page"
comm -13 "$scratch/source" <(uniq "$scratch/page") | tell "not in the source"
uniq -d "$scratch/page" | tell "more than once on the page"
