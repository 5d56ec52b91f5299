#!/usr/bin/env bash
# Checks that a shared library has the expected soname and exports nothing
# but the public API: names in vk::svg or vkSvg::Version, the two free
# triangulation functions of vk, and the type information of vk::svg classes.
set -euo pipefail
library=$1
expected_soname=$2

soname=$(objdump -p "$library" | awk '$1 == "SONAME" { print $2 }')
if [ "$soname" != "$expected_soname" ]; then
  echo "SONAME is '$soname', expected '$expected_soname'"
  exit 1
fi

allowed='^(vk::svg::|vkSvg::|vk::CleanupContour\(|vk::TriangulatePoly\(|(typeinfo|typeinfo name|vtable|VTT) for vk::svg::)'
exported=$(nm -D --defined-only -C "$library" | awk '{ $1 = ""; $2 = ""; sub(/^  /, ""); print }')
count=$(printf '%s\n' "$exported" | grep -c . || true)
stray=$(printf '%s\n' "$exported" | grep -v -E "$allowed" | grep . || true)
if [ -n "$stray" ]; then
  echo "Exported symbols outside the public API:"
  printf '%s\n' "$stray" | head -n 40
  exit 1
fi
echo "SONAME $soname; $count exported symbols, all public API"
