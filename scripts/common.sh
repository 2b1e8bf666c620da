# Shared by the set-up scripts: install what is missing, then configure and build a tree.
# Every step is idempotent and quick when nothing changed.

QF_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# Debian 12 packages the build and the tests need.
QF_PACKAGES=(
  build-essential cmake ninja-build ccache pkg-config
  libxml2-dev libcurl4-openssl-dev libssl-dev
  libcli11-dev nlohmann-json3-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  python3 openssl tzdata
  qt6-base-dev qt6-svg-dev libqt6svg6 qt6-qpa-plugins
  desktop-file-utils appstream
)

# Installs the given Debian packages that are not installed yet (with sudo when not root).
qf_ensure_packages() {
  local missing=() pkg
  for pkg in "$@"; do
    dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q 'install ok installed' ||
      missing+=("$pkg")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  local sudo=()
  [ "$(id -u)" -ne 0 ] && sudo=(sudo)
  echo "Installing missing packages: ${missing[*]}"
  "${sudo[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq --no-install-recommends \
    "${missing[@]}"
}

# qf_build DIR [cmake options...]: configures DIR once (again when options change) and builds it:
# everything, or only the targets named in QF_BUILD_TARGETS. Under CI (CI=true, as CI runners set
# it) a warning in our code fails the build; a developer's own build only shows it.
qf_build() {
  local dir=$1
  shift
  if [ "${CI:-}" = true ]; then set -- "$@" -DQF_WERROR=ON; else set -- "$@" -DQF_WERROR=OFF; fi
  local stamp="$dir/.qf-configure-args" args="$*"
  if [ ! -f "$dir/build.ninja" ] || [ "$(cat "$stamp" 2>/dev/null)" != "$args" ]; then
    cmake -S "$QF_ROOT" -B "$dir" -G Ninja "$@"
    printf '%s' "$args" >"$stamp"
  fi
  local targets=()
  [ -n "${QF_BUILD_TARGETS:-}" ] && targets=(--target $QF_BUILD_TARGETS)
  cmake --build "$dir" -j "$(nproc)" "${targets[@]}"
}

# The developer's build in build/, which every script shares: the program, its tests and the
# benchmarks (built, not run, so that a change that breaks one shows at once).
qf_build_main() {
  qf_build "$QF_ROOT/build" -DQF_BUILD_BENCH=ON
}
