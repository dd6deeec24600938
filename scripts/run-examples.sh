#!/usr/bin/env bash
# Builds the pelinor program and runs it on the bundled example
# installation in examples/.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
cmake --preset release > /dev/null
cmake --build --preset release -j "$(nproc)" --target pelinor_cli
pelinor=build/release/pelinor
export PELINOR_REGISTRY="$PWD/examples/registry.reg"
export PELINOR_USER_REGISTRY="$PWD/examples/user-registry.reg"

run() {
  printf '$ pelinor'
  printf ' %q' "$@"
  printf '\n'

  "$pelinor" "$@"
  echo
}

out=$(mktemp -d)
run capture --profile examples/profiles/Invoices.ini \
  --template examples/templates/AcmeSupplies.tpl --out-dir "$out" \
  examples/documents/*.tag
echo "(cleaned tag files written to $out)"
echo

# The main job from a scanned page: OCR, template, fields, capture run.
run process --profile examples/profiles/Coolblue.ini \
  examples/samples/coolblue1-scan.png --out "$out/coolblue1.tag"

run registry get HKLM "Pelinor Server" Default HalvernLocale
run registry get HKLM "Pelinor Server" Default ProfileDir
run settings get examples/profiles/Invoices.ini Main TemplatesConfig
run settings states examples/profiles/Invoices.ini
run settings section examples/profiles/Invoices.ini HoldReasons
run profile show examples/profiles/Invoices.ini
run detect show examples/detect/TemplateDetect.ini
run scan show examples/scan/Colour300.ini
run template show examples/templates/AcmeSupplies.tpl --profile examples/profiles/Invoices.ini
run format --type AMOUNT "£12.50" 12.5 7
run format --type DATEGB "12 0CT 2003" 1.2.03 "15 de março de 2004"
run format --type POSTCODE SW1A1AA
run pattern --spec LL000000L --coerce AB12345GC 0B123456C
run queue select examples/queue/queue.txt --for capture --for least-processed

# The whole path on the sample batch: scan-in, work capture, export (on a
# copy, since the queue is changed in place).
demo=$(mktemp -d)
cp -r examples/workflow "$demo/"
run scan-in --profile "$demo/workflow/profiles/Coolblue.ini" \
  "$demo/workflow/batch/coolblue-batch.pdf"
run work capture --profile "$demo/workflow/profiles/Coolblue.ini" --jobs 2
run export --profile "$demo/workflow/profiles/Coolblue.ini" --format json \
  "$demo/invoices.json"
cat "$demo/invoices.json"
