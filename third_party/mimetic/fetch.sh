#!/usr/bin/env bash
# Fetches the original tarball of mimetic 0.9.8 from the distribution's source package.
#   fetch.sh TARBALL SHA256
# Uses apt with lists and settings of its own, so the system's package settings stay as they are and
# no root is needed. The tarball appears under its name only when its hash is right.
set -euo pipefail

target=$1
sha256=$2
name=$(basename "$target")

fail() {
  echo "mimetic: $*" >&2
  exit 1
}

command -v apt-get >/dev/null || fail "no apt-get on this system"

scratch=$(mktemp -d "$(dirname "$target")/fetch.XXXXXX")
trap 'rm -rf "$scratch"' EXIT
parts=$scratch/parts
mkdir -p "$parts" "$scratch/lists/partial" "$scratch/cache/archives/partial" "$scratch/download"

# The same package sources as the system's, asked for source packages. $1 is a file of either form.
add_source_file() {
  case $1 in
    *.sources) sed -E 's/^Types:.*/Types: deb-src/' "$1" >"$parts/$(basename "$1")" ;;
    *) sed -nE 's/^deb[[:space:]]/deb-src /p' "$1" >"$parts/$(basename "$1" .list).list" ;;
  esac
}

fetch_with_parts() {
  local options=(
    -o "Dir::Etc::SourceList=/dev/null" -o "Dir::Etc::SourceParts=$parts"
    -o "Dir::State::Lists=$scratch/lists" -o "Dir::Cache=$scratch/cache"
    -o "APT::Sandbox::User=$(id -un)" -o "Acquire::Retries=3"
  )
  (cd "$scratch/download" &&
    apt-get "${options[@]}" -qq update &&
    apt-get "${options[@]}" -qq source --tar-only --download-only mimetic) >&2 </dev/null
}

# The distribution's own file first: other package sources need not be up for this.
declare -A tried
for file in /etc/apt/sources.list.d/debian.sources /etc/apt/sources.list \
  /etc/apt/sources.list.d/*.sources /etc/apt/sources.list.d/*.list; do
  if [ ! -s "$file" ] || [ -n "${tried[$file]-}" ]; then continue; fi
  tried[$file]=yes
  rm -f "$parts"/*
  add_source_file "$file"
  [ -s "$(echo "$parts"/*)" ] || continue
  fetch_with_parts || continue
  [ -f "$scratch/download/$name" ] && break
done

[ -f "$scratch/download/$name" ] || fail "no package source of this system gave $name"
echo "$sha256  $scratch/download/$name" | sha256sum --check --status ||
  fail "$name has a wrong SHA-256: $(sha256sum <"$scratch/download/$name")"
mv "$scratch/download/$name" "$target"
