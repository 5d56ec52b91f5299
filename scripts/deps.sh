# Sourced by the other scripts: installs the Debian packages the project
# needs, and only those that are missing.
VKSVG_PACKAGES=(
  build-essential cmake git pkg-config
  libxml2-dev libutfcpp-dev libwildmagic-dev libcairo2-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  # Clipper, which unites fill contours under their winding rule
  libpolyclipping-dev
  # the tool's argument parser and its --json output
  libcli11-dev nlohmann-json3-dev
  # rsvg-convert, the reference the render comparison test draws against
  librsvg2-bin
  clang-14 libclang-rt-14-dev
  locales
)

vksvg_install_deps() {
  local missing=()
  local package
  for package in "${VKSVG_PACKAGES[@]}"; do
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
  DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y "${missing[@]}"
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
