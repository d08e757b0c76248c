# Shared by ./run, ./test and ./package: installs missing packages, configures and builds. All messages
# go to standard error. When nothing needs to be done, there are no messages and no use of the network.
# shellcheck shell=bash
: "${root:?the sourcing script sets the top of the project}"

say() { echo "$*" >&2; }

# Names of the packages with the given scopes in scripts/packages.txt that are not installed.
missing_packages() {
  local wanted
  wanted=$(awk -v scopes=" $* " '!/^#/ && NF && index(scopes, " " $1 " ") { print $2 }' \
    "$root/scripts/packages.txt")
  # An unknown package makes dpkg-query fail, and counts as missing, like one that was removed. A
  # package for another processor is listed with the processor's name.
  # shellcheck disable=SC2086
  { dpkg-query -W -f '${Package} ${Architecture} ${db:Status-Status}\n' $wanted || true; } 2>/dev/null |
    awk -v wanted="$wanted" '
      $3 == "installed" { have[$1] = have[$1 ":" $2] = 1 }
      END { n = split(wanted, name); for (i = 1; i <= n; i++) if (!have[name[i]]) print name[i] }'
}

# Prints the words to put before a command that needs root; none for root. Fails when there is no
# way to become root.
become_root() {
  [ "$(id -u)" -ne 0 ] || return 0
  command -v sudo >/dev/null && { [ -t 0 ] || sudo -n true 2>/dev/null; } || return 1
  echo sudo
}

# install_cross_packages [SCOPE...]: installs the packages for other platforms, and those of the given scopes.
# Prints the reason and fails when this is not possible.
install_cross_packages() {
  local reason='' scopes=(cross "$@")
  command -v npm >/dev/null || scopes+=(npm)
  if ! command -v dpkg-query >/dev/null || [ "$(dpkg --print-architecture)" != amd64 ]; then
    reason="it needs Debian on x86-64"
  elif [ -n "$(missing_packages "${scopes[@]}")" ] && [ "${ZQV_SETUP:-yes}" = no ]; then
    reason="packages are missing, and ZQV_SETUP=no forbids to install them"
  elif [ -n "$(missing_packages "${scopes[@]}")" ] && ! become_root >/dev/null; then
    reason="packages are missing, and installing them needs root"
  elif [ -n "$(missing_packages "${scopes[@]}")" ]; then
    if ! dpkg --print-foreign-architectures | grep -qx arm64; then
      # shellcheck disable=SC2046
      $(become_root) dpkg --add-architecture arm64
      # shellcheck disable=SC2046
      $(become_root) apt-get -qq update >&2 </dev/null || true
    fi
    (install_packages "${scopes[@]}") || reason="packages could not be installed"
  fi
  if [ -z "$reason" ] && ! "$root/scripts/macos-sdk" "$root/build/cache/macos-sdk" >&2; then
    reason="the headers of macOS could not be had"
  fi
  if [ -z "$reason" ] && [[ " $* " = *" windows "* ]] &&
    ! "$root/scripts/windows-arm64-compiler" "$root/build/cache/windows-arm64" >&2; then
    reason="the compiler for Windows on arm64 could not be had"
  fi
  [ -z "$reason" ] || say "== Without other platforms: $reason"
  [ -z "$reason" ]
}

# Installs the packages of the given scopes. On systems other than Debian nothing is installed.
install_packages() {
  [ "${ZQV_SETUP:-yes}" != no ] && command -v dpkg-query >/dev/null || return 0
  local missing
  mapfile -t missing < <(missing_packages "$@")
  [ "${#missing[@]}" -gt 0 ] || return 0

  local sudo
  if ! sudo=$(become_root); then
    say "These packages are missing, and installing them needs root:"
    say "  apt-get install ${missing[*]}"
    say "(ZQV_SETUP=no skips this question, for systems that have them by other means.)"
    exit 1
  fi
  # shellcheck disable=SC2206
  local as_root=($sudo env DEBIAN_FRONTEND=noninteractive)
  say "Installing ${missing[*]}"
  local apt=("${as_root[@]}" apt-get -qq -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0)
  local install=("${apt[@]}" install --yes --no-install-recommends "${missing[@]}")
  # Tries the existing package lists first. If that fails, updates them and tries again. A package
  # source that cannot be reached is ignored.
  if ! "${install[@]}" >/dev/null 2>&1 </dev/null; then
    "${apt[@]}" update >&2 </dev/null || say "apt-get update failed; going on with what there is"
    "${install[@]}" >&2 </dev/null
  fi
}

# Makes the builds of scripts in this folder run one at a time, until unlock_builds.
lock_builds() {
  mkdir -p "$root/build"
  exec 9>"$root/build/lock"
  flock --nonblock 9 || {
    say "Waiting for another build in this folder"
    flock 9
  }
}

unlock_builds() { exec 9>&-; }

# configure PRESET [CMAKE-ARGUMENT...]
configure() {
  (cd "$root" && cmake --preset "$@" >&2 </dev/null)
}

# Words put before the commands of builds and tests.
launcher=()

# build PRESET JOBS TARGET: prints only the compilers' output.
build() {
  "${launcher[@]}" ninja --quiet -C "$root/build/$1" -j "$2" "$3" 2>&1 </dev/null |
    sed -u '/^ninja: no work to do\.$/d' >&2
}
