#!/usr/bin/env bash
# Runs the libFuzzer targets built by the "fuzz" or "clang-ci" preset.
#
#   scripts/fuzz.sh [-b BUILD_DIR] [-j JOBS] SECONDS [TARGET...]
#
# Each target fuzzes for SECONDS, starting from its seed corpus
# (fuzz/corpus/NAME) and the corpus of earlier runs in BUILD_DIR, which it
# grows; inputs that fail land in BUILD_DIR/findings/NAME. Prints one line
# per target with its executions and findings, and exits non-zero when any
# target found something.
set -uo pipefail
cd "$(dirname "$0")/.."

build=build/fuzz
jobs=1
while getopts "b:j:" opt; do
  case $opt in
    b) build=$OPTARG ;;
    j) jobs=$OPTARG ;;
    *) exit 2 ;;
  esac
done
shift $((OPTIND - 1))
seconds=${1:?usage: scripts/fuzz.sh [-b BUILD_DIR] [-j JOBS] SECONDS [TARGET...]}
shift
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  for f in "$build"/*_fuzz; do targets+=("$(basename "$f" _fuzz)"); done
fi

run_one() {
  local name=$1 corpus="$build/corpus/$1" findings="$build/findings/$1"
  mkdir -p "$corpus" "$findings"
  "$build/${name}_fuzz" "$corpus" "fuzz/corpus/$name" \
    -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
    -max_len=65536 -print_final_stats=1 -artifact_prefix="$findings/" \
    >"$build/findings/$name.log" 2>&1
  local status=$?
  local runs
  runs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' \
    "$build/findings/$name.log" | grep -o '[0-9]*$')
  local found
  found=$(find "$findings" -type f | wc -l)
  printf '%-12s %10s executions  %3s findings  exit %s\n' \
    "$name" "${runs:-?}" "$found" "$status"
  [ "$status" -eq 0 ] && [ "$found" -eq 0 ]
}

failed=0
running=0
for name in "${targets[@]}"; do
  run_one "$name" &
  running=$((running + 1))
  if [ "$running" -ge "$jobs" ]; then
    wait -n || failed=1
    running=$((running - 1))
  fi
done
while [ "$running" -gt 0 ]; do
  wait -n || failed=1
  running=$((running - 1))
done
exit $failed
