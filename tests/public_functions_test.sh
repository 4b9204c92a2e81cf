#!/usr/bin/env bash
# Every function that the public headers declare can be called by a program that links the shared library, is marked
# KOVA_API, and has a comment that says what it does. The library shows nothing else of this project.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$(dirname "$0")/lib.sh"
library=$BUILD_DIR/libkova.so
[ -e "$library" ] || skip_test "this build has no libkova.so"

# For each function a line: its name, whether it is marked and whether a comment stands above it or above its group (a
# group has no blank line inside), and the declaration of a pointer to it.
perl -0777 -ne '
  s{/\*.*?\*/}{}gs;
  s{^// ---.*\n//\n(//.*\n)+\n}{\@doc\n}mg; # a section that begins with text: a comment of its first group
  s{^[ \t]*///.*$}{\@doc}mg;
  s{//.*$}{}mg;
  s{^[ \t]*#(?:.*\\\n)*.*$}{}mg;
  s{\n[ \t]*\n}{\n\@end\n}g;
  s{"(?:\\.|[^"\\])*"}{""}g;
  s{namespace kova \{(.*)\}}{$1}s;
  1 while s{\{[^{}]*\}}{;}g;          # bodies
  my $documented = 0;
  for (split /;|(\@\w+)/) {
    next unless defined;
    if (/^\@(doc|end)/) { $documented = $1 eq "doc"; next }
    s/\s+/ /g; s/^ | $//g;
    next unless /^[\w:&*<>,\[\]() ]+\)( noexcept)?$/ && !/^(template|inline|constexpr|static_assert|using|struct|friend)\b|\boperator\b/;
    my $marked = s/\bKOVA_API //;
    my ($returns, $name, $rest) = /^(.*[ &*>])(\w+)(\(.*)$/ or die "cannot read: $_\n";
    print "$name ", $marked ? "marked " : "hidden ", $documented ? "documented " : "undocumented ",
          "$returns(*volatile p", ++$number, ")$rest = &$name;\n";
  }' "$SOURCE_DIR"/include/kova/*.h >"$scratch/functions"

[ "$(wc -l <"$scratch/functions")" -ge 100 ] || fail "few functions are found: $(wc -l <"$scratch/functions")"
same "declared without KOVA_API" "" "$(awk '$2 == "hidden" { print $1 }' "$scratch/functions")"
same "without a comment" "" "$(awk '$3 == "undocumented" { print $1 }' "$scratch/functions")"

{
  (cd "$SOURCE_DIR/include" && printf '#include "%s"\n' kova/*.h)
  echo 'using namespace kova;'
  cut -d ' ' -f 4- "$scratch/functions"
  echo 'int main() {}'
} >"$scratch/calls.cpp"
read -ra flags <<<"$(cached CMAKE_CXX_FLAGS)"
run 0 "a program that names every function" "$(cached CMAKE_CXX_COMPILER)" "${flags[@]}" -std=c++20 \
  -I "$SOURCE_DIR/include" "$scratch/calls.cpp" "$library" -o "$scratch/calls"

# Weak and unique symbols that a compiler leaves a copy of may be there too: templates and inline functions of the
# standard library; and the constant arguments of templates, which clang shows whatever their visibility is.
standard='[WVu] ((typeinfo|typeinfo name|vtable|VTT|guard variable) for |[^(]* )?(std|__gnu_cxx)::'
if [ -z "${flags[*]}" ]; then # sanitizers and coverage show symbols of their own
  nm -D --defined-only -C "$library" | sed 's/^[0-9a-f]* *//' |
    grep -vE "^($standard|V template parameter object for )" |
    sed -E 's/^T kova::([A-Za-z_0-9]+)(\[abi:cxx11\])?\(.*/\1/' | sort -u >"$scratch/shown"
  same "shown by the shared library" "$(cut -d ' ' -f 1 "$scratch/functions" | sort -u)" "$(cat "$scratch/shown")"
fi
