#!/usr/bin/env bash
# Runs two ovaro-cli binaries over every example model and reports where their outputs differ.
#
#   scripts/compare-builds.sh OLD_CLI NEW_CLI [RUNS]
#
# For each model of examples/examples.tsv: the QLP solve and the OLF solve (--json), the
# five-method comparison (--json, RUNS runs, default 20, on one thread and on two), and a full
# debug print file of each of the three (every switch on; the comparison over 2 runs). Each output
# (stdout, stderr, exit status, debug file) is compared byte for byte. Where the bytes differ and
# both are JSON, the numbers are compared pairwise and the largest relative difference
# |a - b| / max(|a|, |b|) is reported, so that a change that reorders arithmetic can be told from
# one that changes results. Exit status: 0 when every output is byte-identical, 1 otherwise.
set -uo pipefail

if (($# < 2)); then
  sed -n '2,12p' "$0"
  exit 2
fi
old=$(realpath "$1")
new=$(realpath "$2")
runs=${3:-20}
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

methods=hcfr,ce,cewo,olf,olin
# name|arguments (MODEL and DBG are filled in per model and build)
cases=(
  "qlp|solve MODEL --json"
  "olf|solve MODEL --method olf --json"
  "compare|compare MODEL --methods $methods --runs $runs --json --threads 1"
  "compare-t2|compare MODEL --methods $methods --runs $runs --json --threads 2"
  "qlp-debug|solve MODEL --debug DBG --trace all"
  "olf-debug|solve MODEL --method olf --debug DBG --trace all"
  "compare-debug|compare MODEL --methods $methods --runs 2 --json --debug DBG --trace all"
)

identical=0
differing=0
report=()
models=$(awk -F'\t' '!/^#/ && $2 ~ /\.ovi$/ {print $2}' "$root/examples/examples.tsv")
for file in $models; do
  model="$root/examples/$file"
  for c in "${cases[@]}"; do
    name=${c%%|*}
    args=${c#*|}
    for side in old new; do
      bin=$old
      [[ $side == new ]] && bin=$new
      out="$work/$side"
      rm -f "$out".*
      a=${args//MODEL/$model}
      a=${a//DBG/$out.dbg}
      # shellcheck disable=SC2086
      (cd "$work" && "$bin" $a >"$out.stdout" 2>"$out.stderr" </dev/null)
      echo $? >"$out.status"
      # The debug file names itself in its title; make the two sides' names the same.
      [[ -f $out.dbg ]] && sed -i "s|$out.dbg|DEBUGFILE|g" "$out.dbg"
    done
    for part in stdout stderr status dbg; do
      o="$work/old.$part" n="$work/new.$part"
      [[ -f $o || -f $n ]] || continue
      if cmp -s "$o" "$n"; then
        identical=$((identical + 1))
        continue
      fi
      differing=$((differing + 1))
      rel=$(python3 - "$o" "$n" <<'PY'
import json, re, sys
def load(p):
    try:
        return json.load(open(p))
    except Exception:
        return None
a, b = load(sys.argv[1]), load(sys.argv[2])
if a is None or b is None:
    # A debug file or a text: where the first difference is, under which heading and label.
    la = open(sys.argv[1], errors="replace").read().split("\n")
    lb = open(sys.argv[2], errors="replace").read().split("\n")
    i = next((i for i, (x, y) in enumerate(zip(la, lb)) if x != y), min(len(la), len(lb)))
    label = next((l.strip() for l in reversed(la[:i]) if re.search(r"[A-Za-z]", l)), "-")
    heading = next((l.strip() for l in reversed(la[:i]) if "major time loop" in l), "-")
    diff = sum(1 for x, y in zip(la, lb) if x != y) + abs(len(la) - len(lb))
    print("%d lines differ; the first, line %d, under '%s' after '%s'" % (diff, i + 1, label, heading))
    sys.exit()
# Criteria, paths and averages apart from the statistics of the differences between two
# methods' criteria (criterion_summary.pairs), whose relative change is that of a difference of
# nearly equal numbers.
worst = [0.0, ""]
pairs = [0.0, ""]
def walk(x, y, path):
    w = pairs if ".pairs[" in path else worst
    if isinstance(x, bool) or isinstance(y, bool):
        if x != y: w[:] = [float("inf"), path]
    elif isinstance(x, (int, float)) and isinstance(y, (int, float)):
        if x != y:
            r = abs(x - y) / max(abs(x), abs(y))
            if r > w[0]: w[:] = [r, path]
    elif isinstance(x, dict) and isinstance(y, dict) and x.keys() == y.keys():
        for k in x: walk(x[k], y[k], path + "." + k)
    elif isinstance(x, list) and isinstance(y, list) and len(x) == len(y):
        for i, (u, v) in enumerate(zip(x, y)): walk(u, v, "%s[%d]" % (path, i))
    elif x != y:
        w[:] = [float("inf"), path]
walk(a, b, "")
text = "max relative difference %.3g at %s" % (worst[0], worst[1] or "-")
if pairs[1]:
    text += "; method-pair statistics %.3g at %s" % (pairs[0], pairs[1])
print(text)
PY
)
      report+=("$file $name $part: $rel")
    done
  done
done

for line in "${report[@]}"; do echo "$line"; done
echo "identical outputs: $identical, differing: $differing"
((differing == 0))
