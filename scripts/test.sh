#!/usr/bin/env bash
# Builds with warnings as errors and runs every test, checks that clang
# builds the library and the program without warnings too, then builds and
# runs every test again under AddressSanitizer and UBSan.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh

jobs=$(nproc)
cmake --preset release -DPELINOR_WERROR=ON
cmake --build --preset release -j "$jobs"
ctest --preset release -j "$jobs"

CXX=clang++ cmake -S . -B build/clang -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DPELINOR_WERROR=ON -DPELINOR_BUILD_TESTS=OFF -DPELINOR_BUILD_BENCH=OFF
cmake --build build/clang -j "$jobs"

cmake --preset asan -DPELINOR_WERROR=ON
cmake --build --preset asan -j "$jobs"
ctest --preset asan -j "$jobs"
