#!/usr/bin/env bash
# The full check, as CI runs it:
#  1. g++ release build with warnings as errors; every test, including the
#     replay of each fuzz target's corpus and past findings.
#  2. clang build with warnings as errors, AddressSanitizer, UBSan, libFuzzer
#     and line coverage: every test again, a short fuzzing run of every
#     target, then the library's line coverage.
#  3. ThreadSanitizer build of the concurrency and capture-run tests.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh

jobs=$(nproc)
cmake --preset release -DPELINOR_WERROR=ON
cmake --build --preset release -j "$jobs"
ctest --preset release -j "$jobs"

build=build/clang-ci
cmake --preset clang-ci -DPELINOR_WERROR=ON
cmake --build --preset clang-ci -j "$jobs"
rm -rf "$build/profiles" "$build/corpus" "$build/findings"
export LLVM_PROFILE_FILE="$PWD/$build/profiles/%p-%m.profraw"
ctest --preset clang-ci -j "$jobs"
scripts/fuzz.sh -b "$build" -j "$jobs" 4
unset LLVM_PROFILE_FILE
scripts/coverage.sh "$build"

cmake --preset tsan -DPELINOR_WERROR=ON
cmake --build build/tsan -j "$jobs" --target concurrency_tests capture_tests
ctest --preset tsan -R '^(concurrency|capture)$'
