# Sourced by the other scripts: installs the Debian packages the project
# needs, and only those that are missing.
# What building the library and the vksvg tool needs.
VKSVG_BUILD_PACKAGES=(
  build-essential cmake git pkg-config
  libxml2-dev libutfcpp-dev libwildmagic-dev libcairo2-dev
  # Clipper, which unites fill contours under their winding rule
  libpolyclipping-dev
  # the tool's argument parser and its --json output
  libcli11-dev nlohmann-json3-dev
)
# What the tests, benchmarks, fuzzers and the API reference add.
VKSVG_TEST_PACKAGES=(
  libgtest-dev libgmock-dev libbenchmark-dev
  # rsvg-convert, the reference the render comparison test draws against
  librsvg2-bin
  clang-14 libclang-rt-14-dev
  doxygen
  locales
)

# vksvg_install_deps [--test]: the build packages, plus the test ones when
# asked for.
vksvg_install_deps() {
  local wanted=("${VKSVG_BUILD_PACKAGES[@]}")
  # The tool alone does without recommended extras; the test toolchain
  # (clang's fuzzer and sanitizer runtimes) is installed as Debian means it.
  local light=(--no-install-recommends)
  if [ "${1:-}" = "--test" ]; then
    wanted+=("${VKSVG_TEST_PACKAGES[@]}")
    light=()
  fi
  local missing=()
  local package
  for package in "${wanted[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
      missing+=("$package")
    fi
  done
  if [ ${#missing[@]} -eq 0 ]; then
    return 0
  fi
  local sudo=()
  if [ "$(id -u)" -ne 0 ]; then
    sudo=(sudo)
  fi
  echo "Installing: ${missing[*]}"
  "${sudo[@]}" apt-get update
  DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y "${light[@]}" "${missing[@]}"
}

# A locale with a decimal comma, so that the tests can show that numbers are
# read and written the same whatever the process locale is.
vksvg_make_test_locale() {
  if locale -a 2>/dev/null | grep -qi '^de_DE\.utf-\?8$'; then
    return 0
  fi
  local sudo=()
  if [ "$(id -u)" -ne 0 ]; then
    sudo=(sudo)
  fi
  "${sudo[@]}" localedef -i de_DE -f UTF-8 de_DE.UTF-8 || echo "Could not build the de_DE.UTF-8 locale; its tests will be skipped."
}
