# Sourced by ./run and ./test: installs what the machine lacks, then builds. Expects to stand in the project's folder.

say() { printf '\033[1m== %s\033[0m\n' "$*"; }
fail() { printf '%s\n' "$*" >&2; exit 1; }

as_root() {
  if [ "$(id -u)" = 0 ]; then "$@"; elif command -v sudo >/dev/null; then sudo "$@"; else return 1; fi
}

# True when a C++ compiler that knows C++20 is there.
have_compiler() { command -v c++ >/dev/null && echo 'int main(){}' | c++ -std=c++20 -x c++ -fsyntax-only - 2>/dev/null; }
# True when the compiler finds the header.
have_header() { have_compiler && echo "#include <$1>" | c++ -std=c++20 -x c++ -fsyntax-only - 2>/dev/null; }
# True when Clang links fuzz programs.
have_fuzzer() {
  echo 'extern "C" int LLVMFuzzerTestOneInput(const char*, unsigned long) { return 0; }' |
    clang++ -fsanitize=fuzzer,address,undefined -x c++ - -o /dev/null 2>/dev/null
}
have_cmake_package() { compgen -G "/usr/lib/*/cmake/$1/$1Config.cmake" >/dev/null || compgen -G "/usr/lib/cmake/$1/*onfig.cmake" >/dev/null; }

# Prints the Debian packages whose purpose isn't met yet. $1: "tests" adds what only the tests need.
missing_packages() {
  have_compiler || echo g++
  command -v cmake >/dev/null || echo cmake
  command -v ninja >/dev/null || echo ninja-build
  have_header sqlite3.h || echo libsqlite3-dev
  have_cmake_package Qt6 || echo qt6-base-dev
  if [ "$1" = tests ]; then
    have_header gtest/gtest.h || echo libgtest-dev
    command -v Xvfb >/dev/null || echo xvfb
    command -v xdotool >/dev/null || echo xdotool
    command -v faketime >/dev/null || echo faketime
    have_fuzzer || printf 'clang\nlibclang-rt-dev\n'
  fi
}

# Qt, Xvfb, xdotool and Clang widen the build and the tests; without the others there is none.
install_packages() {
  local wanted needed
  wanted=$(missing_packages "$1")
  [ -z "$wanted" ] && return 0
  say "Installing:" $wanted
  if ! { as_root apt-get update -q && as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends $wanted fonts-dejavu-core; } >"$log" 2>&1; then
    needed=$(missing_packages "$1" | grep -v -e qt6 -e xvfb -e xdotool -e faketime -e clang || true)
    [ -z "$needed" ] || { tail -5 "$log" >&2; fail "Missing and not to be installed here:" $needed; }
    say "Going on without" $(missing_packages "$1")
  fi
}

# $1: preset; the rest: targets, all of them unless given.
build() {
  local preset=$1 targets=() windows=
  have_cmake_package Qt6 || windows=-DOMBREY_WINDOWS=OFF
  shift
  [ $# -eq 0 ] || targets=(--target "$@")
  [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" $windows >"$log" 2>&1 || { tail -40 "$log" >&2; fail "cmake failed"; }
  cmake --build --preset "$preset" "${targets[@]}" >"$log" 2>&1 || { tail -n 60 "$log" | cut -c -400 >&2; fail "The build failed"; }
}

log=$(mktemp)
trap 'rm -f "$log"' EXIT
