# Shared by ./run, ./test and ./package: installs what is missing, configures and builds. Everything it says
# goes to standard error; when nothing is to be done it says nothing and uses no network.
# shellcheck shell=bash
: "${root:?the sourcing script sets the top of the project}"

say() { echo "$*" >&2; }

# Names of the packages of the given scopes of scripts/packages.txt that are not installed.
missing_packages() {
  local wanted
  wanted=$(awk -v scopes=" $* " '!/^#/ && NF && index(scopes, " " $1 " ") { print $2 }' \
    "$root/scripts/packages.txt")
  # An unknown package makes dpkg-query fail, and is missing like one that was removed. Packages of
  # another processor are wanted with its name.
  # shellcheck disable=SC2086
  { dpkg-query -W -f '${Package} ${Architecture} ${db:Status-Status}\n' $wanted || true; } 2>/dev/null |
    awk -v wanted="$wanted" '
      $3 == "installed" { have[$1] = have[$1 ":" $2] = 1 }
      END { n = split(wanted, name); for (i = 1; i <= n; i++) if (!have[name[i]]) print name[i] }'
}

# The words before a command that needs root; nothing for root. Fails when root cannot be had.
become_root() {
  [ "$(id -u)" -ne 0 ] || return 0
  command -v sudo >/dev/null && { [ -t 0 ] || sudo -n true 2>/dev/null; } || return 1
  echo sudo
}

# install_cross_packages [SCOPE...]: installs the packages for other platforms, those of the given scopes
# too; fails, having said why, where that cannot be.
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

# Installs the packages of the given scopes. Other systems than Debian bring their own.
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
  # Lists that are there serve; when they are absent or out of date, fetch them and try again.
  # One package source being down need not matter.
  if ! "${install[@]}" >/dev/null 2>&1 </dev/null; then
    "${apt[@]}" update >&2 </dev/null || say "apt-get update failed; going on with what there is"
    "${install[@]}" >&2 </dev/null
  fi
}

# Runs the rest of the calling script's builds one at a time; the lock ends with unlock_builds.
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

# Words that builds and tests are started through.
launcher=()

# build PRESET JOBS TARGET: says only what compilers say.
build() {
  "${launcher[@]}" ninja --quiet -C "$root/build/$1" -j "$2" "$3" 2>&1 </dev/null |
    sed -u '/^ninja: no work to do\.$/d' >&2
}
