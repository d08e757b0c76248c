#!/usr/bin/env bash
# Checks which classes of mimetic a built library contains. The library has a parser and writer of
# its own; mimetic's tree and parser must not come back through an include unnoticed.
#   classes.sh LIBRARY           fails when a forbidden class has a symbol, or without any symbols
#   classes.sh --self-test CXX   builds libraries with each of them and requires a complaint
set -euo pipefail
export LC_ALL=C

forbidden=(MimeEntity IteratorParser Header Rfc822Header Body)

# Prints one line for each broken rule.
complaints() {
  local symbols class
  symbols=$(nm -C "$1" 2>/dev/null)
  # A stripped library, or one without any code of mimetic, would pass without being checked.
  grep -q 'mimetic::' <<<"$symbols" || echo "has no symbol of the MIME library at all"
  for class in "${forbidden[@]}"; do
    ! grep -qE "mimetic::$class\b" <<<"$symbols" || echo "holds mimetic::$class"
  done
}

check() {
  local found
  found=$(complaints "$1")
  [ -z "$found" ] || {
    echo "$1:"
    echo "$found"
    return 1
  } >&2
}

self_test() {
  local cxx=$1 folder class failures=0
  folder=$(mktemp -d)
  # shellcheck disable=SC2064
  trap "rm -rf '$folder'" EXIT

  # expect COMPLAINT SOURCE COMPILER-ARGUMENT...: an empty COMPLAINT expects none.
  expect() {
    local wanted=$1 source=$2 found
    shift 2
    "$cxx" -shared -fPIC -O0 -o "$folder/lib.so" -x c++ - "$@" <<<"$source"
    found=$(complaints "$folder/lib.so")
    if [ "$found" != "$wanted" ]; then
      echo "expected '$wanted', got '$found'" >&2
      failures=$((failures + 1))
    fi
  }

  local good="namespace mimetic { struct Field { Field(); }; Field::Field() {} }
    namespace mimetic { struct Headers { Headers(); }; Headers::Headers() {} }
    namespace zqv::mime { struct Header { Header(); }; Header::Header() {} }"
  expect "" "$good"
  expect "has no symbol of the MIME library at all" "$good" -s -fvisibility=hidden
  for class in "${forbidden[@]}"; do
    expect "holds mimetic::$class" "$good
      namespace mimetic { struct $class { $class(); }; $class::$class() {} }"
    expect "holds mimetic::$class" "$good
      namespace mimetic { template <class T> struct $class { void F() {} }; }
      template struct mimetic::$class<int>;"
  done
  [ "$failures" -eq 0 ]
}

if [ "${1-}" = --self-test ]; then
  self_test "$2"
else
  check "$1"
fi
