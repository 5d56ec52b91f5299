#!/usr/bin/env bash
# Installs what is missing, builds the library and the vksvg tool (Release),
# renders the bundled drawing to build/emblem.png and prints its mesh
# statistics.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/deps.sh
vksvg_install_deps

cmake -S . -B build -DCMAKE_BUILD_TYPE=Release -DVKSVG_BUILD_TESTS=OFF
cmake --build build -j"$(nproc)" --target vksvg

vksvg=build/tools/vksvg/vksvg
"$vksvg" --version
"$vksvg" info examples/emblem.svg
"$vksvg" render examples/emblem.svg -o build/emblem.png --width 640
"$vksvg" mesh examples/emblem.svg -o build/emblem.obj
