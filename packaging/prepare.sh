# Sourced by ./run and ./test: installs what the machine lacks, then builds. Expects to stand in the project's folder.

say() { printf '\033[1m== %s\033[0m\n' "$*"; }
fail() { printf '%s\n' "$*" >&2; exit 1; }

as_root() {
  if [ "$(id -u)" = 0 ]; then "$@"; elif command -v sudo >/dev/null; then sudo "$@"; else return 1; fi
}

have() { command -v "$1" >/dev/null; }
# True when a C++ compiler that knows C++20 is there.
have_compiler() { have c++ && echo 'int main(){}' | c++ -std=c++20 -x c++ -fsyntax-only - 2>/dev/null; }
# True when the compiler finds the header.
have_header() { have_compiler && echo "#include <$1>" | c++ -std=c++20 -x c++ -fsyntax-only - 2>/dev/null; }
# True when Clang links fuzz programs.
have_fuzzer() {
  echo 'extern "C" int LLVMFuzzerTestOneInput(const char*, unsigned long) { return 0; }' |
    clang++ -fsanitize=fuzzer,address,undefined -x c++ - -o /dev/null 2>/dev/null
}
have_file() { compgen -G "$1" >/dev/null; }
have_cmake_package() { have_file "/usr/lib/*/cmake/$1/$1Config.cmake" || have_file "/usr/lib/cmake/$1/*onfig.cmake"; }

# One line for each Debian package whose purpose isn't met yet: its name, and what is left out where it can't be had;
# nothing behind the name: then there is no build. $1: "tests" adds what only the tests need.
missing() {
  have_compiler || echo "g++"
  have cmake || echo "cmake"
  have ninja || echo "ninja-build"
  have_header sqlite3.h || echo "libsqlite3-dev"
  have_cmake_package Qt6 || echo "qt6-base-dev the windows"
  have_header xcb/xcb.h || echo "libxcb1-dev the windows"
  if [ -d platform/database/postgresql ]; then have_file '/usr/include/postgresql/libpq-fe.h' || echo "libpq-dev bases on a server"; fi
  [ "$1" = tests ] || return 0
  have_header gtest/gtest.h || echo "libgtest-dev"
  have Xvfb || echo "xvfb the station in windows"
  have xdotool || echo "xdotool the station in windows"
  have openbox || echo "openbox the station under a window manager"
  have xev || echo "x11-utils the station beside another program"
  have import || echo "imagemagick the station under a window manager"
  have xrandr || echo "x11-xserver-utils a screen that becomes smaller"
  have sqlite3 || echo "sqlite3 a night without an operator"
  have pdftotext || echo "poppler-utils the papers as PDF"
  have faketime || echo "faketime the tests in other years"
  if [ -d platform/database/postgresql ]; then have_file '/usr/lib/postgresql/*/bin/initdb' || echo "postgresql bases on a server"; fi
  have openssl || echo "openssl bases on a server with TLS"
  have_fuzzer || printf '%s\n' "clang fuzzing" "libclang-rt-dev fuzzing"
}

# Leaves in left_out what goes without a package that can't be had, a line for each.
install_packages() {
  local wanted needed
  left_out=
  wanted=$(missing "$1" | cut -d ' ' -f 1)
  [ -n "$wanted" ] || return 0
  say "Installing:" $wanted
  { as_root apt-get update -q && as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends $wanted fonts-dejavu-core; } >"$log" 2>&1 ||
    tail -3 "$log" >&2
  needed=$(missing "$1" | grep -v ' ' || true)
  [ -z "$needed" ] || fail "Missing and not to be installed here:" $needed
  left_out=$(missing "$1" | cut -d ' ' -f 2- | sort -u)
  [ -z "$left_out" ] || say "Going on without" $(missing "$1" | cut -d ' ' -f 1)
}

# Debian packages that only one trial needs.
install_tools() {
  dpkg -s "$@" >/dev/null 2>&1 && return 0
  say "Installing what is missing of: $*"
  { as_root apt-get update -q && as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "$@"; } >"$log" 2>&1 ||
    { tail -5 "$log" >&2; fail "Missing and not to be installed here"; }
}

# Leaves in clock what a program is started with so that it still is the day $1 for it. Midnight may have passed since: then
# in a part of the world where it hasn't.
clock_of() {
  local hours
  clock=(env)
  for hours in {0..24}; do
    [ "$("${clock[@]}" date +%d%m%y)" != "$1" ] || break
    clock=(env "TZ=ILE$hours")
  done
}

# $1: preset; the rest: targets, all of them unless given. Configures each time: a package may have come since.
build() {
  local preset=$1 targets=() windows=ON
  { have_cmake_package Qt6 && have_header xcb/xcb.h; } || windows=OFF
  [ "$preset" != fuzz ] || windows=OFF
  shift
  [ $# -eq 0 ] || targets=(--target "$@")
  cmake --preset "$preset" -DOMBREY_WINDOWS=$windows >"$log" 2>&1 || { tail -40 "$log" >&2; fail "cmake failed"; }
  cmake --build --preset "$preset" "${targets[@]}" >"$log" 2>&1 || { tail -n 60 "$log" | cut -c -400 >&2; fail "The build failed"; }
}

log=$(mktemp)
trap 'rm -f "$log"' EXIT
