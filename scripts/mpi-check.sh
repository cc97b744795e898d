#!/usr/bin/env bash
# Runs comparisons under mpirun on this one machine and checks that process 0 prints the same
# bytes (stdout and stderr, and the exit code) as the single-process batch tool with one thread
# and with two: the number of processes and threads must not change a single bit.
# Usage: scripts/mpi-check.sh [path/to/ovaro-cli]   (default: the default preset's build)
set -euo pipefail
cd "$(dirname "$0")/.."
cli=${1:-build/default/src/app/ovaro-cli}
runs=${MPI_CHECK_RUNS:-50}
# A learning model, a forward-looking one, one with measurement error and time-varying
# parameters, and one with the policy-to-parameter effect.
models=(learn1 fwdnz1 tvp1 credib2)

# Containers and CI machines often run as root, which mpirun refuses unless told; the machine
# may also have fewer cores than processes.
export OMPI_ALLOW_RUN_AS_ROOT=1 OMPI_ALLOW_RUN_AS_ROOT_CONFIRM=1
mpi=(mpirun --oversubscribe)

out=$(mktemp -d) && trap 'rm -rf "$out"' EXIT
bad=0
one() {  # NAME COMMAND...: keep stdout, stderr and the exit code
  local name=$1 rc=0 && shift
  "$@" >"$out/$name.out" 2>"$out/$name.err" || rc=$?
  echo "$rc" >"$out/$name.rc"
}
same() {  # REFERENCE OTHER [prefix]: with "prefix", OTHER's stderr may go on after REFERENCE's
  for part in out err rc; do
    local n=() && [ "$part.${3:-}" = err.prefix ] && n=(-n "$(stat -c %s "$out/$1.err")")
    cmp -s "${n[@]}" "$out/$1.$part" "$out/$2.$part" || { echo "mpi-check: $2 differs from $1 ($part)" >&2; bad=1; }
  done
}
for model in "${models[@]}"; do
  args=(compare "examples/$model.ovi" --methods hcfr,ce,cewo,olf,olin --runs "$runs" --json)
  one "$model-serial" "$cli" "${args[@]}" --threads 1
  one "$model-threads2" "$cli" "${args[@]}" --threads 2
  one "$model-mpi2" "${mpi[@]}" -n 2 "$cli" "${args[@]}" --threads 1
  one "$model-mpi3" "${mpi[@]}" -n 3 "$cli" "${args[@]}" --threads 1
  [ "$(cat "$out/$model-serial.rc")" = 0 ] || { echo "mpi-check: $model failed" >&2; bad=1; }
  for other in threads2 mpi2 mpi3; do same "$model-serial" "$model-$other"; done
done
# A failure is reported by process 0 alone, with the single process's exit code (mpirun adds its
# own notice of a non-zero exit after it).
one missing-serial "$cli" compare examples/no-such-model.ovi --methods ce --json
one missing-mpi2 "${mpi[@]}" -n 2 "$cli" compare examples/no-such-model.ovi --methods ce --json
same missing-serial missing-mpi2 prefix
[ "$bad" = 0 ] && echo "mpi-check: ${#models[@]} models, $runs runs: mpirun -n 2 and -n 3 and two threads print the same bytes as one process"; exit "$bad"
