#!/usr/bin/env bash
# The layout of the C++ sources, by clang-format, and shellcheck's findings in the scripts:
#   layout.sh FOLDER        prints every finding in the project in FOLDER; fails when there is one
#   layout.sh --self-test   plants faults in a scratch project and requires that they are found
# The exit status is 77 where one of the two programs is missing.
set -euo pipefail
export LC_ALL=C

for program in clang-format shellcheck; do
  command -v "$program" >/dev/null || { echo "$program is missing"; exit 77; }
done

# The scripts among the files of the current folder, recognised by their first line.
scripts() {
  git grep --untracked --name-only -z -e '^#!/usr/bin/env bash$' -e '^# shellcheck shell=bash$'
}

# Prints the findings in the current folder; fails when there is one.
findings() {
  local good=yes
  git ls-files --cached --others --exclude-standard -z '*.cc' '*.h' |
    xargs -0 --no-run-if-empty clang-format --dry-run --Werror 2>&1 || good=no
  scripts | xargs -0 --no-run-if-empty shellcheck --external-sources --source-path=SCRIPTDIR --format=gcc || good=no
  [ "$good" = yes ]
}

self_test() {
  local folder failures=0
  folder=$(mktemp -d)
  # shellcheck disable=SC2064
  trap "rm -rf '$folder'" EXIT
  cp "$1/.clang-format" "$folder"
  cd "$folder"
  git init --quiet

    # expect TEXT FILE LINES: requires a finding with this text in a file with these lines, or no
    # finding when the text is empty.
  expect() {
    local found
    printf '%s\n' "$3" >"$2"
    found=$(findings || true)
    rm "$2"
    if { [ -z "$1" ] && [ -n "$found" ]; } || [[ "$found" != *"$1"* ]]; then
      echo "expected '$1' of $2, got: $found"
      failures=$((failures + 1))
    fi
  }
  expect "" a.cc "int main() { return 0; }"
  expect "a.cc:1" a.cc "int main(){return 0;}"
  expect "b.h:1" b.h "int  Two();"
  expect "" run $'#!/usr/bin/env bash\necho "$1"'
  expect "SC2086" run $'#!/usr/bin/env bash\necho $1'
  expect "" words.txt "echo \$1"
  [ "$failures" -eq 0 ]
}

if [ "$1" = --self-test ]; then
  self_test "$(dirname "$(readlink -f "$0")")/../.."
else
  cd "$1"
  findings
fi
