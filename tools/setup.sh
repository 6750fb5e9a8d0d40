# Sourced by ./demo and ./test: installs the packages that are missing, and builds.

# wantedPackages SECTION: the packages of a section of packages.txt.
wantedPackages() {
  sed -n "/^\[$1\]/,/^\[/p" packages.txt | grep -Ev '^(\[|#|$)'
}

# A package counts as there when Debian has it installed, or, for the tools that often come from elsewhere, when the
# command is on the path.
isInstalled() {
  case $1 in
    cmake | curl | npm | openssl | python3) command -v "$1" >/dev/null && return ;;
    nodejs) command -v node >/dev/null && return ;;
  esac
  [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# installPackages SECTION...: installs what is missing of the sections, as root or through sudo.
installPackages() {
  local missing=() section package
  for section in "$@"; do
    for package in $(wantedPackages "$section"); do
      isInstalled "$package" || missing+=("$package")
    done
  done
  [ ${#missing[@]} -eq 0 ] && return
  echo "Installing ${#missing[@]} packages: ${missing[*]}"
  local asRoot=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
      echo "These packages are missing, and only root can install them: apt-get install ${missing[*]}" >&2
      return 1
    }
    asRoot=(sudo)
  fi
  "${asRoot[@]}" apt-get update -qq
  "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" \
    >/dev/null
}

# build PRESET [TARGET...]: configures and builds, saying little unless something is wrong.
build() {
  local preset=$1
  shift
  echo "Building ($preset)"
  mkdir -p build
  if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_SLOPPINESS=pch_defines,time_macros
  fi
  if ! { cmake --preset "$preset" && cmake --build --preset "$preset" ${1:+--target "$@"}; } >"build/$preset.log" 2>&1; then
    tail -n 60 "build/$preset.log" >&2
    echo "The build failed; the whole log is build/$preset.log" >&2
    return 1
  fi
}
