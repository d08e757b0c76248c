#!/usr/bin/env bash
# Checks what the dynamic linker sees of a built library:
#   exports.sh LIBRARY [FOLDER...]   exactly one exported name, only the four allowed libraries,
#                                    no search path, no executable stack, no mention of FOLDER, and
#                                    no symbol version newer than Debian 11's
#   exports.sh --self-test CXX       builds libraries that break each rule and requires a complaint
set -euo pipefail
export LC_ALL=C

entry_point=REALPluginMain
newest=(GLIBC_2.31 GLIBCXX_3.4.28 CXXABI_1.3.12 GCC_7.0.0)
allowed_libraries=" libc.so.6 libm.so.6 libstdc++.so.6 libgcc_s.so.1 "

# Prints one line for each broken rule.
complaints() {
  local library=$1 exported dynamic needed folder
  shift
  exported=$(nm -D --defined-only "$library" | awk '{ print $NF }')
  [ "$exported" = "$entry_point" ] ||
    echo "exported instead of $entry_point alone: ${exported//$'\n'/ }"

  dynamic=$(readelf -dW "$library")
  while read -r needed; do
    [[ $allowed_libraries == *" $needed "* ]] || echo "needs $needed"
  done < <(sed -nE 's/.*\(NEEDED\).*\[(.*)\]$/\1/p' <<<"$dynamic")
  grep -qE '\(NEEDED\).*\[libc\.so\.6\]' <<<"$dynamic" || echo "needs no libc.so.6 at all"
  ! grep -E '\((RPATH|RUNPATH)\)' <<<"$dynamic" || echo "has a search path"
  ! readelf -lW "$library" | grep -E 'GNU_STACK.* RWE ' || echo "has an executable stack"

  local version limit
  for limit in "${newest[@]}"; do
    while read -r version; do
      [ "$(printf '%s\n' "$version" "$limit" | sort -V | tail -1)" = "$limit" ] ||
        echo "needs $version"
    done < <(readelf -VW "$library" | grep -oE "Name: ${limit%%_*}_[0-9.]+" | cut -c7- | sort -u)
  done

  for folder in "$@"; do
    ! grep -qaF -- "$folder" "$library" || echo "names the folder $folder"
  done
}

check() {
  local found
  found=$(complaints "$@")
  [ -z "$found" ] || {
    echo "$1:"
    echo "$found"
    return 1
  } >&2
}

self_test() {
  local cxx=$1 folder failures=0
  folder=$(mktemp -d)
  # shellcheck disable=SC2064
  trap "rm -rf '$folder'" EXIT
  cat >"$folder/good.map" <<<"{ global: $entry_point; local: *; };"
  local good="#include <cstdio>
    extern \"C\" void $entry_point(void*) { std::puts(\"loaded\"); }"

  # expect COMPLAINT SOURCE COMPILER-ARGUMENT...: an empty COMPLAINT expects none.
  expect() {
    local wanted=$1 source=$2 found
    shift 2
    (cd "$folder" && "$cxx" -shared -fPIC -O1 -o lib.so -x c++ - -x none "$@" <<<"$source")
    found=$(complaints "$folder/lib.so" /somewhere/project)
    if [ -z "$wanted" ] && [ -n "$found" ] || [[ $found != *"$wanted"* ]]; then
      echo "expected '$wanted', got '$found'" >&2
      failures=$((failures + 1))
    fi
  }

  local hide=-Wl,--version-script=good.map
  expect "" "$good" $hide
  expect "$entry_point alone: $entry_point other" "$good extern \"C\" void other() {}"
  expect "$entry_point alone: " "extern \"C\" void other() {}" $hide
  expect "needs libdl.so.2" "$good" $hide -Wl,--no-as-needed -l:libdl.so.2
  expect "needs ld-linux" "thread_local int counter;
    extern \"C\" void $entry_point(void*) { ++counter; }" $hide
  expect "needs no libc.so.6 at all" "extern \"C\" void $entry_point(void*) {}" $hide -nostdlib
  expect "has a search path" "$good" $hide -Wl,-rpath,/somewhere
  expect "has an executable stack" "$good" $hide -Wl,-z,execstack
  expect "needs GLIBC_2.34" "#include <pthread.h>
    extern \"C\" void $entry_point(void*) { pthread_join(pthread_self(), nullptr); }" $hide
  expect "names the folder /somewhere/project" "#include <cstdio>
    extern \"C\" void $entry_point(void*) { std::puts(\"/somewhere/project/main.cc\"); }" $hide
  [ "$failures" -eq 0 ]
}

if [ "${1-}" = --self-test ]; then
  self_test "$2"
else
  check "$@"
fi
