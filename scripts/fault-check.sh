#!/usr/bin/env bash
# Measures how many deliberate faults the test suite catches.
#
# For every entry of scripts/faults.txt (or of the file given with -f): change the one source line,
# rebuild the default build (only what changed), run the plain test suite of the faulted layer and
# of every layer built on it (ctest -j2, a timeout per test), put the line back, and record whether
# any test failed. The source file is always restored, on error and on Ctrl-C too.
#
#   scripts/fault-check.sh                 every fault
#   scripts/fault-check.sh ID...           only these faults
#   scripts/fault-check.sh --check         only verify that every fault applies (no build)
#   scripts/fault-check.sh --list          the fault ids with layer and file
#
# Environment: BUILD_DIR (default build/default), JOBS (2), TEST_TIMEOUT (seconds per test, 120),
# RESULTS (a file to append "ID caught|missed|..." lines to), PROGRAMS (test programs to run instead
# of the faulted layer's and those above it, e.g. "ovaro_solve_tests" to see what one layer's own
# tests catch).
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
faults=scripts/faults.txt
mode=run
ids=()
while (($#)); do
  case $1 in
    -f) faults=$2; shift 2 ;;
    --check) mode=check; shift ;;
    --list) mode=list; shift ;;
    -h | --help) sed -n '2,18p' "$0"; exit 0 ;;
    *) ids+=("$1"); shift ;;
  esac
done
build=${BUILD_DIR:-build/default}
jobs=${JOBS:-2}
timeout=${TEST_TIMEOUT:-120}
export CCACHE_BASEDIR=${CCACHE_BASEDIR:-/work} CCACHE_DIR=${CCACHE_DIR:-/work/.ccache}

# Test programs by layer, lowest first. A fault in one layer can only show in the tests of that
# layer and of the layers that link it; ui and app both sit on results and not on each other.
layers=(numeric model io solve stoch results ui app)
programs_for() {
  local layer=$1 out=() found=0 l
  case $layer in
    ui) echo ovaro_ui_tests; return ;;
    app) echo ovaro_app_tests; return ;;
  esac
  for l in "${layers[@]}"; do
    [[ $l == "$layer" ]] && found=1
    ((found)) && out+=("ovaro_${l}_tests")
  done
  ((found)) || { echo "unknown layer '$layer'" >&2; return 1; }
  echo "${out[@]}"
}

# The entries as tab-separated "id layer file old new" records.
parse() {
  python3 - "$1" <<'PY'
import sys
entries, cur = [], None
for raw in open(sys.argv[1], encoding="utf-8").read().split("\n"):
    if raw.startswith("#"):
        continue
    if not raw.strip():
        if cur: entries.append(cur)
        cur = None
        continue
    if cur is None:
        cur = {"head": raw.split(), "old": None, "new": None}
    elif raw.startswith("- ") and cur["old"] is None:
        cur["old"] = raw[2:]
    elif (raw == "+" or raw.startswith("+ ")) and cur["new"] is None:
        cur["new"] = raw[2:]
    else:
        sys.exit("faults file: unexpected line: " + raw)
if cur: entries.append(cur)
seen = set()
for e in entries:
    if len(e["head"]) != 3 or e["old"] is None or e["new"] is None:
        sys.exit("faults file: incomplete entry: " + " ".join(e["head"]))
    if e["head"][0] in seen:
        sys.exit("faults file: duplicate id " + e["head"][0])
    seen.add(e["head"][0])
    for s in (e["old"], e["new"]):
        if "\t" in s: sys.exit("faults file: tab in " + e["head"][0])
    print("\t".join(e["head"] + [e["old"], e["new"]]))
PY
}

# Replaces the one whole line `old` of `file` by `new` (deletes it when `new` is empty).
apply_fault() {
  python3 - "$1" "$2" "$3" <<'PY'
import sys
path, old, new = sys.argv[1:]
lines = open(path, encoding="utf-8").read().split("\n")
hits = [i for i, l in enumerate(lines) if l == old]
if len(hits) != 1:
    sys.exit(f"{path}: the line occurs {len(hits)} times, not once: {old}")
if new:
    lines[hits[0]] = new
else:
    del lines[hits[0]]
open(path, "w", encoding="utf-8").write("\n".join(lines))
PY
}

records=$(parse "$faults")
if ((${#ids[@]})); then
  sel=""
  for id in "${ids[@]}"; do
    line=$(awk -F'\t' -v id="$id" '$1 == id' <<<"$records")
    [[ -n $line ]] || { echo "no fault with id $id" >&2; exit 2; }
    sel+="$line"$'\n'
  done
  records=${sel%$'\n'}
fi

if [[ $mode == list ]]; then
  awk -F'\t' '{ printf "%-44s %-8s %s\n", $1, $2, $3 }' <<<"$records"
  exit 0
fi

backup=$(mktemp -d)
current=""
restore() {
  if [[ -n $current ]]; then
    cp -p "$backup/orig" "$current"
    touch "$current"  # newer than the faulted object, so the next build recompiles it
    current=""
  fi
}
cleanup() { restore; rm -rf "$backup"; }
trap cleanup EXIT
trap 'echo; echo "interrupted: $current restored" >&2; exit 130' INT TERM

if [[ $mode == check ]]; then
  bad=0
  while IFS=$'\t' read -r id layer file old new; do
    cp -p "$file" "$backup/orig"
    current=$file
    if apply_fault "$file" "$old" "$new" && ! cmp -s "$file" "$backup/orig"; then
      echo "ok        $id"
    else
      echo "BAD       $id"
      bad=$((bad + 1))
    fi
    cp -p "$backup/orig" "$file"  # same bytes and time: nothing to rebuild
    current=""
  done <<<"$records"
  echo "$bad fault(s) do not apply"
  exit $((bad > 0))
fi

log=$build/fault-check
mkdir -p "$log"
echo "building the unfaulted tree first"
cmake --build "$build" -j "$jobs" >"$log/baseline-build.txt" 2>&1 ||
  { echo "the unfaulted tree does not build, see $log/baseline-build.txt" >&2; exit 2; }

caught=0 missed=0 broken=0 total=0
missed_ids=()
start=$(date +%s)
while IFS=$'\t' read -r id layer file old new; do
  total=$((total + 1))
  programs=${PROGRAMS:-$(programs_for "$layer")}
  cp -p "$file" "$backup/orig"
  current=$file
  if ! apply_fault "$file" "$old" "$new"; then
    restore
    echo "NOT-APPLIED $id"
    broken=$((broken + 1))
    [[ -n ${RESULTS:-} ]] && echo "$id not-applied" >>"$RESULTS"
    continue
  fi
  targets=(ovaro-cli)
  for p in $programs; do targets+=("$p"); done
  t0=$(date +%s)
  if ! cmake --build "$build" -j "$jobs" --target "${targets[@]}" >"$log/$id.build.txt" 2>&1; then
    verdict=build-failed
    broken=$((broken + 1))
  else
    labels=$(tr ' ' '|' <<<"$programs")
    if ctest --test-dir "$build" -j "$jobs" --timeout "$timeout" -L "^(${labels})\$" \
      --output-on-failure >"$log/$id.test.txt" 2>&1; then
      verdict=missed
      missed=$((missed + 1))
      missed_ids+=("$id")
    else
      verdict=caught
      caught=$((caught + 1))
    fi
  fi
  restore
  failing=$(grep -c '(Failed)\|(Timeout)\|(Subprocess\|(SEGFAULT)\|(Exception' "$log/$id.test.txt" 2>/dev/null || true)
  printf '%-12s %-44s %-8s %4ss  %s failing test(s)\n' "$verdict" "$id" "$layer" \
    "$(($(date +%s) - t0))" "${failing:-0}"
  [[ -n ${RESULTS:-} ]] && echo "$id $verdict" >>"$RESULTS"
done <<<"$records"

echo "rebuilding the unfaulted tree"
cmake --build "$build" -j "$jobs" >"$log/final-build.txt" 2>&1 || echo "final rebuild failed" >&2
echo
echo "faults: $total  caught: $caught  missed: $missed  not applied or not built: $broken" \
  " ($(($(date +%s) - start))s)"
((${#missed_ids[@]})) && echo "missed: ${missed_ids[*]}"
exit 0
