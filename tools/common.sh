# Shared by ./play and ./check: says what it does, installs what is missing, builds.

say() { printf '\033[1m%s\033[0m\n' "$*"; }
fail() { say "$name: failed: $*"; exit 1; }

# install_missing SECTION… installs the packages of those sections of tools/packages.txt that aren't there yet.
install_missing() {
  local wanted missing=() package
  wanted=$(awk -v sections=" $* " '/^# /{on = index(sections, " " $2 " ") > 0} !/^#/ && on {print}' tools/packages.txt)
  for package in $wanted; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  local root=
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || fail "these packages are missing and need root to install: ${missing[*]}"
    root=sudo
  fi
  say "Installing ${missing[*]}"
  $root apt-get update -qq && $root env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null ||
    fail "the packages could not be installed: ${missing[*]}"
}

# build DIRECTORY [CMake options… -- targets…]
build() {
  local directory=$1 options=() targets=()
  shift
  while [ $# -gt 0 ] && [ "$1" != -- ]; do options+=("$1"); shift; done
  [ $# -gt 0 ] && shift && targets=("$@")
  cmake -S . -B "$directory" -G Ninja "${options[@]}" >"$directory.configure.log" 2>&1 ||
    { cat "$directory.configure.log"; fail "cmake could not configure $directory"; }
  rm -f "$directory.configure.log"
  ninja -C "$directory" "${targets[@]}" || fail "$directory did not build"
}
