#!/usr/bin/env bash
# Words that no file of the project contains, and no file name:
#   words.sh FOLDER        lists every place in the project in FOLDER; fails when there is one
#   words.sh --self-test   plants each in a scratch project and demands that it is found
# The project's rules stand on their own: text here never leans on a document or a machine that
# the reader does not have. Patterns are put together so that this file does not match itself.
set -euo pipefail
export LC_ALL=C

s=spec
patterns=(
  "\\b${s}ification\\b"
  "\\b${s}\\.md\\b"
  "\\bthe ${s}\\b"
  "\\bP""art [1-4]\\.[0-9]"
  "(^|[^A-Za-z0-9_.])/(wo""rk|ro""ot|ho""me/[a-z][^/ ]*|t""mp/mm)/"
  "(deb|security|snapshot|packages)\\.deb""ian\\.org"
  "registry\\.np""mjs|py""pi\\.org|crates\\.i""o\\b|proxy\\.gol""ang"
)
name_pattern="(^|/|[-_])${s}[-_.]"

# The project's files: what git would keep, or everything but build results without git.
list_files() {
  git ls-files --cached --others --exclude-standard 2>/dev/null ||
    find . -type f -not -path './.git/*' -not -path './build/*' -not -path './dist/*' -printf '%P\n'
}

# Prints every violation in the current folder; fails when there is nothing to look at.
violations() {
  local files pattern
  files=$(list_files)
  if [ -z "$files" ]; then
    echo "no files to check in $PWD"
    return
  fi
  grep -iE -- "$name_pattern" <<<"$files" | sed 's/$/: file name/' || true
  for pattern in "${patterns[@]}"; do
    # Files that git still lists may be gone from the folder: -s keeps grep quiet about them.
    tr '\n' '\0' <<<"$files" | xargs -0 grep -sHnIiE -- "$pattern" || true
  done
}

self_test() {
  local folder failures=0
  folder=$(mktemp -d)
  # shellcheck disable=SC2064
  trap "rm -rf '$folder'" EXIT
  cd "$folder"

  # expect COUNT FILE TEXT: so many violations when FILE says TEXT beside an innocent file.
  expect() {
    local count
    mkdir -p project && cd project
    echo "A special part of /usr/share/work/; specific; /rooted/x; home/a/" >innocent.txt
    echo "$3" >"$2"
    count=$(violations | wc -l)
    cd .. && rm -r project
    if [ "$count" -ne "$1" ]; then
      echo "expected $1 violations in $2 saying '$3', got $count" >&2
      failures=$((failures + 1))
    fi
  }

  expect 0 "a.txt" "nothing wrong here"
  expect 1 "a.txt" "as the ${s^}ification says"
  expect 1 "a.txt" "see ${s}.md"
  expect 1 "a.txt" "by the ${s}"
  expect 1 "a.txt" "see P""art 2.1"
  expect 0 "a.txt" "see P""art 5.1"
  expect 1 "a.txt" "in /wo""rk/main"
  expect 1 "a.txt" "in /ro""ot/x"
  expect 1 "a.txt" "(/ho""me/someone/x)"
  expect 1 "a.txt" "from deb.deb""ian.org"
  expect 1 "a.txt" "from registry.np""mjs.org"
  expect 1 "${s}_table.txt" "nothing wrong here"
  expect 1 "a.txt" "/ro""ot/x at the start of a line"
  expect 2 "a.txt" "see P""art 2.1"$'\n'"and P""art 3.2"

  mkdir empty && cd empty
  [ "$(violations)" = "no files to check in $PWD" ] || {
    echo "an empty project passes" >&2
    failures=$((failures + 1))
  }
  [ "$failures" -eq 0 ]
}

if [ "${1-}" = --self-test ]; then
  self_test
else
  cd "$1"
  found=$(violations)
  [ -z "$found" ] || {
    echo "$found"
    exit 1
  }
fi
