#!/usr/bin/env bash
# The findings of cppcheck in the library, the stand-in host, the program and the benchmarks:
#   cppcheck.sh FOLDER        lists every finding in the project in FOLDER; fails when there is one
#   cppcheck.sh --self-test   plants faults in a scratch project and requires that they are found
# scripts/cppcheck-suppressions.txt lists wrong findings, with reasons; an entry that is not needed
# any more is a finding too. Tests are not checked, because they do wrong things on purpose. The
# exit status is 77 where cppcheck is not installed.
set -euo pipefail
export LC_ALL=C

folders=(abi base text mime email host objects plugin standin cli bench)

# Prints the findings in the current folder. A failure of cppcheck counts as a finding.
findings() {
  local present=() folder
  for folder in "${folders[@]}"; do
    [ ! -d "$folder" ] || present+=("$folder")
  done
  cppcheck --quiet --enable=warning,performance,portability,style,information \
    --std=c++17 --language=c++ --library=posix -I . -j "$(nproc)" \
    --suppressions-list=scripts/cppcheck-suppressions.txt \
    --template='{file}:{line}: {severity}: {message} [{id}]' "${present[@]}" 2>&1 ||
    echo "cppcheck ended with $?"
}

self_test() {
  local folder failures=0
  folder=$(mktemp -d)
  # shellcheck disable=SC2064
  trap "rm -rf '$folder'" EXIT
  cd "$folder"
  mkdir scripts host

  # expect ID CODE [SUPPRESSION]: requires the finding ID and no other, or none when ID is empty.
  expect() {
    local found
    echo "$2" >host/a.cc
    echo "${3-}" >scripts/cppcheck-suppressions.txt
    found=$(findings | grep -o '\[[a-zA-Z]*\]$' | sort -u | tr -d '\n' || true)
    if [ "$found" != "${1:+[$1]}" ]; then
      echo "expected '$1' in $2, got '$found':"
      findings
      failures=$((failures + 1))
    fi
  }

  local null='int F() { int* p = nullptr; return *p; }'
  expect "" 'int F() { return 1; }'
  expect nullPointer "$null"
  expect arrayIndexOutOfBounds 'int F() { const int a[2] = {1, 2}; return a[2]; }'
  expect memleak 'void F() { char* p = new char[3]; p[0] = 0; }'
  expect "" "$null" 'nullPointer:host/a.cc'
  expect unmatchedSuppression 'int F() { return 1; }' 'nullPointer:host/a.cc'
  [ "$failures" -eq 0 ]
}

command -v cppcheck >/dev/null || {
  echo "skipped: cppcheck is not installed"
  exit 77
}
if [ "${1-}" = --self-test ]; then
  self_test
else
  cd "$1"
  found=$(findings)
  [ -z "$found" ] || {
    echo "$found"
    exit 1
  }
fi
