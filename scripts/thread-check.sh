#!/usr/bin/env bash
# Builds the libraries and the thread test with ThreadSanitizer in build-tsan
# and runs it: several threads load, segment and save documents through the
# reentrant entry points, and any data race fails the run.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build-tsan
jobs=${VKSVG_JOBS:-$(nproc)}
launcher=()
if command -v ccache >/dev/null 2>&1; then
  launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi

cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVKSVG_TSAN=ON -DVKSVG_WERROR=ON \
  -DVKSVG_BUILD_TOOLS=OFF -DVKSVG_BUILD_BENCH=OFF "${launcher[@]}" >/dev/null
cmake --build "$build" -j"$jobs" --target thread_tests

export TSAN_OPTIONS="halt_on_error=1:second_deadlock_stack=1${TSAN_OPTIONS:+:$TSAN_OPTIONS}"
ctest --test-dir "$build" --output-on-failure -R '^thread_tests\.'
echo "No data race found on the reentrant load, segment and save path."
