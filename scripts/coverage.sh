#!/usr/bin/env bash
# Merges the raw profiles that the clang-ci build's programs left in
# BUILD_DIR/profiles and prints the line coverage of the library's own
# sources (not the tests, fuzz targets, benchmarks or command-line program).
#
#   scripts/coverage.sh [BUILD_DIR]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/clang-ci}
profdata=$(command -v llvm-profdata-14 || command -v llvm-profdata)
cov=$(command -v llvm-cov-14 || command -v llvm-cov)

"$profdata" merge -sparse -o "$build/coverage.profdata" "$build"/profiles/*.profraw
objects=()
for program in "$build"/*_tests "$build"/*_fuzz; do
  [ -x "$program" ] && objects+=(-object "$program")
done
"$cov" report "${objects[@]}" -instr-profile "$build/coverage.profdata" \
  -ignore-filename-regex='/(tests|fuzz|bench|cli|usr)/' \
  >"$build/coverage.txt"
sed -n '1,2p;$p' "$build/coverage.txt" | cut -c1-160
total=$(awk '$1 == "TOTAL" { print $(NF-3) }' "$build/coverage.txt")
echo "Library line coverage: $total"
