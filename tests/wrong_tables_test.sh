#!/usr/bin/env bash
# A table of lines or of lists that is wrong does not compile, and the compiler shows the reason.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$(dirname "$0")/lib.sh"

compiler=$(cached CMAKE_CXX_COMPILER)

# A record of an index, a float and a vector, on top of a base of one word.
record='
struct Base { Word tag; };
struct Record : Base { Index index; float length; Xyz axis; };
constexpr auto BASE_WORDS = words<Base>({{"tag %0#10x\n", &Base::tag}});
'
index='{"index %d\n", &Record::index}'
length='{"length %#g\n", &Record::length}'
axis='{"axis %#g %#g %#g\n", &Record::axis}'

# compile REASON WHAT HEADER CODE: an empty reason says that it compiles.
compile() {
  local reason=$1 what=$2 log status=0
  log=$(printf '#include "%s"\nnamespace kova {%s\n}\n' "$3" "$4" |
    "$compiler" -std=c++20 -fsyntax-only -I "$SOURCE_DIR" -I "$SOURCE_DIR/include" -x c++ - 2>&1) || status=1
  if [ -z "$reason" ]; then
    [ "$status" -eq 0 ] || fail "$what:"$'\n'"$log"
  elif [ "$status" -eq 0 ]; then
    fail "$what compiles"
  else
    grep -F "$reason" <<<"$log" >/dev/null || fail "$what, not for the reason \"$reason\":"$'\n'"$log"
  fi
}

# start ARGUMENT...: compile, two at a time.
start() {
  [ "$(jobs -rp | wc -l)" -lt 2 ] || wait -n
  compile "$@" &
}

# rows REASON WHAT ROWS
rows() {
  start "$1" "$2" textdump/table.h "$record constexpr auto RECORD_WORDS = words<Record>({$3});
    constexpr auto &TABLE = LINES_OF<RECORD_WORDS>;"
}

# print REASON WHAT FORMAT NUMBER
print() { start "$1" "$2" textdump/text.h "void write(Text &text) { print<\"$3\">(text, $4); }"; }

# lists REASON WHAT SED-SCRIPT: the names of all lists, one to a line, as the script leaves them.
lists() {
  local names
  names=$(sed -n 's/^    ListOf{{\("[A-Za-z]*List"\), .*/    ListWord{\1},/p' "$SOURCE_DIR/format/lists.h" | sed "$3")
  start "$1" "$2" format/lists.h "struct ListWord { const char *list; };
    constexpr auto TABLE = inListOrder({$names});"
}

number='a text has one conversion for each word of its member'
missing='a member of the record is missing'

rows '' 'the right table' "BASE_WORDS, $index, $length, $axis"
rows '' 'a table that leaves a member unprinted' "BASE_WORDS, $index, unprinted(\"length\", &Record::length), $axis"
rows '%d takes a Word or an Index' '%d for a float' "BASE_WORDS, $index, {\"length %d\n\", &Record::length}, $axis"
rows '%0#10x takes a Word' '%0#10x for an index' "BASE_WORDS, {\"index %0#10x\n\", &Record::index}, $length, $axis"
rows '%#g and %#12g take a float' '%#g for an index' "BASE_WORDS, {\"index %#g\n\", &Record::index}, $length, $axis"
rows '%d takes a Word or an Index' '%d in a vector' "BASE_WORDS, $index, $length, {\"%#g %d %#g\", &Record::axis}"
rows 'a conversion that the dump does not know' '%u' "BASE_WORDS, {\"index %u\n\", &Record::index}, $length, $axis"
rows "$number" 'a text without a conversion' "BASE_WORDS, {\"index\n\", &Record::index}, $length, $axis"
rows "$number" 'a text with two conversions' "BASE_WORDS, {\"index %d %d\n\", &Record::index}, $length, $axis"
rows "$number" 'a vector with two conversions' "BASE_WORDS, $index, $length, {\"axis %#g %#g\n\", &Record::axis}"
rows "$missing" 'a missing member' "BASE_WORDS, $index, $axis"
rows "$missing" 'a missing last member' "BASE_WORDS, $index, $length"
rows "$missing" 'a missing base' "$index, $length, $axis"
rows 'a member stands twice' 'a doubled member' "BASE_WORDS, $index, $length, $length, $axis"
rows 'the members are not in the order of the record' 'a reordered member' "BASE_WORDS, $length, $index, $axis"

print '' 'the right line' '%d %#g\n' 'Word{1}, 1.0F'
print '%d takes a Word or an Index' '%d for a float argument' '%d\n' '1.0F'
print '%0#10x takes a Word' '%0#10x for an index argument' '%0#10x\n' 'Index{1}'
print '%#g and %#12g take a float' '%#g for a word argument' '%#g\n' 'Word{1}'
print 'one argument for each conversion' 'a line with an argument too few' '%d %d\n' '1'

lists '' 'the right table of lists' ''
lists 'one row for each list' 'a table with a list too few' '7d'
lists 'one row for each list' 'a table with a list too many' '7p'
lists 'the rows are not in the order of the lists' 'a table with two lists swapped' '7{h;d};8G'
wait
