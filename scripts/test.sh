#!/usr/bin/env bash
# Installs what is missing, builds everything with AddressSanitizer and UBSan
# (warnings are errors), runs every test, replays the fuzzers' seed corpora
# (a clang build), then installs the library and builds and runs the example
# host against the installed package.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/deps.sh
vksvg_install_deps
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

fuzz=build-fuzz
cmake -S . -B "$fuzz" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang-14 -DCMAKE_CXX_COMPILER=clang++-14 \
  -DVKSVG_FUZZ=ON -DVKSVG_WERROR=ON -DVKSVG_BUILD_TESTS=OFF -DVKSVG_BUILD_TOOLS=OFF
cmake --build "$fuzz" -j"$jobs"
ctest --test-dir "$fuzz" --output-on-failure -j"$jobs"

prefix="$PWD/$build/prefix"
rm -rf "$prefix"
cmake --install "$build" --prefix "$prefix" >/dev/null
cmake -S examples/host -B "$build/host" -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_FLAGS="$sanitize" -DCMAKE_EXE_LINKER_FLAGS="$sanitize"
cmake --build "$build/host" -j"$jobs"
"$build/host/vksvg-host"
echo "Example host built and ran against the installed package."
