#!/usr/bin/env bash
# Installs what is missing, builds everything with AddressSanitizer and UBSan
# (warnings are errors), runs every test, builds the API reference, checks
# the reentrant path under ThreadSanitizer, replays the fuzzers' seed corpora
# (a clang build), then installs the library, moves the installed tree, and
# builds and runs the example host against the moved package.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/deps.sh
vksvg_install_deps --test
vksvg_make_test_locale

build=build-test
jobs=$(nproc)
sanitize="-fsanitize=address,undefined -fno-sanitize-recover=all"

cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DVKSVG_SANITIZE=ON -DVKSVG_WERROR=ON -DVKSVG_BUILD_BENCH=ON
cmake --build "$build" -j"$jobs"

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
ctest --test-dir "$build" --output-on-failure -j"$jobs"

# The API reference: any undocumented public name fails it.
cmake --build "$build" --target docs

# Loads, segmentation and saves on several threads at once, under
# ThreadSanitizer (a build of its own in build-tsan).
bash scripts/thread-check.sh

fuzz=build-fuzz
cmake -S . -B "$fuzz" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang-14 -DCMAKE_CXX_COMPILER=clang++-14 \
  -DVKSVG_FUZZ=ON -DVKSVG_WERROR=ON -DVKSVG_BUILD_TESTS=OFF -DVKSVG_BUILD_TOOLS=OFF
cmake --build "$fuzz" -j"$jobs"
ctest --test-dir "$fuzz" --output-on-failure -j"$jobs"

# The installed package must work wherever its tree ends up: install to one
# prefix, move the tree, and build the example host against the moved copy
# through CMake's find_package and through pkg-config.
prefix="$PWD/$build/prefix"
moved="$PWD/$build/moved/prefix"
rm -rf "$prefix" "$PWD/$build/moved"
cmake --install "$build" --prefix "$prefix" >/dev/null
mkdir -p "$(dirname "$moved")"
mv "$prefix" "$moved"

cmake -S examples/host -B "$build/host" -DCMAKE_PREFIX_PATH="$moved" \
  -DCMAKE_CXX_FLAGS="$sanitize" -DCMAKE_EXE_LINKER_FLAGS="$sanitize"
cmake --build "$build/host" -j"$jobs"
"$build/host/vksvg-host"
echo "Example host built with find_package against the moved package and ran."

pcdir=$(dirname "$(find "$moved" -name vkSvg.pc | head -n 1)")
libdir=$(PKG_CONFIG_PATH="$pcdir" pkg-config --variable=libdir vkSvg)
case "$libdir" in
  "$moved"/*) ;;
  *) echo "pkg-config gives libdir $libdir, outside the moved package" >&2; exit 1 ;;
esac
# shellcheck disable=SC2046
c++ -std=c++17 $sanitize examples/host/main.cpp -o "$build/host/vksvg-host-pc" \
  $(PKG_CONFIG_PATH="$pcdir" pkg-config --cflags --libs vkSvg) -Wl,-rpath,"$libdir"
"$build/host/vksvg-host-pc"
echo "Example host built with pkg-config against the moved package and ran."
