#!/usr/bin/env bash
# Installs what is missing, builds the library and the vksvg tool (Release)
# and runs the tool on the bundled example.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/deps.sh
vksvg_install_deps

cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -DVKSVG_BUILD_TESTS=OFF
cmake --build build -j"$(nproc)" --target vksvg

vksvg=build/tools/vksvg/vksvg
"$vksvg" --version
mapfile -t colours < examples/palette.txt
"$vksvg" color "${colours[@]}"
