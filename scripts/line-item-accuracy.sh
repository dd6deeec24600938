#!/bin/bash
# Line-item accuracy on the sample invoices: scans each sample in through
# the bundled work-queue installation (examples/workflow), captures it and
# compares the rows with the published values (NAME.json): a published
# line item is found when a row has its amount; its cells are exact when
# description, quantity and amount all equal the published ones.
#
#   scripts/line-item-accuracy.sh [SAMPLES_DIR]   (default: examples/samples)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
pelinor=${PELINOR:-$root/build/release/pelinor}
samples=${1:-$root/examples/samples}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export PELINOR_REGISTRY=$root/examples/registry.reg
cp -r "$root/examples/workflow" "$work/"
rm -rf "$work/workflow/batch" "$work/workflow/queue"
for f in "$samples"/coolblue*.pdf "$samples"/coolblue*-scan.png; do
  [ -e "$f" ] && "$pelinor" scan-in --profile "$work/workflow/profiles/Coolblue.ini" "$f" >/dev/null
done
"$pelinor" work capture --profile "$work/workflow/profiles/Coolblue.ini" --quiet >/dev/null
for tag in "$work"/workflow/queue/*.tag; do
  "$pelinor" document show "$tag" --json >"${tag%.tag}.json"
done
python3 - "$work/workflow/queue" "$samples" <<'PY'
import json, os, sys
queue, samples = sys.argv[1], sys.argv[2]
tot_pub = tot_found = tot_exact = tot_rows = 0
for name in sorted(os.listdir(queue)):
    if not name.endswith('.json'):
        continue
    stem = name[:-len('-0001.json')]
    sample = stem[:-len('-scan')] if stem.endswith('-scan') else stem
    pub = json.load(open(os.path.join(samples, sample + '.json')))[0]
    items = [l for l in pub.get('lines', []) if 'price_subtotal' in l]
    rows = json.load(open(os.path.join(queue, name)))['LineData']
    cells = [{c['Name']: c['value'] for c in r['Cells']} for r in rows]
    found = exact = 0
    for it in items:
        amount = '%.2f' % it['price_subtotal']
        match = [c for c in cells if c.get('Amount') == amount]
        if not match:
            continue
        found += 1
        c = match[0]
        if (c.get('Description') == it['name'] and
                c.get('Quantity') == str(int(it['qty']))):
            exact += 1
    print(f"{stem:18} published {len(items)}, rows {len(rows)}, found {found}, all cells exact {exact}")
    tot_pub += len(items); tot_found += found; tot_exact += exact; tot_rows += len(rows)
print(f"{'total':18} published {tot_pub}, rows {tot_rows}, found {tot_found}, all cells exact {tot_exact}")
PY
