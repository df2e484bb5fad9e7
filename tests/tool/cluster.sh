#!/usr/bin/env bash
# The job script of docs/cluster.md, whose tasks are stopped in the middle, by SIGTERM and by SIGKILL,
# and go on: cluster.sh DOCUMENT ARM TOOLS
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cp "$2" "$folder/arm.urdf"
PATH=$3:$PATH
# Smaller cells, so that a task takes long enough to be stopped.
awk '/^```/ { inside = ($0 == "```bash"); next } inside' "$1" | sed 's/--step 0.1/--step 0.016/' >"$folder/reach.sbatch"
cd "$folder"
export SLURM_CPUS_PER_TASK=1

task() { SLURM_ARRAY_TASK_ID=$1 bash reach.sbatch >>log 2>&1; }
# stopped TASK SIGNAL: how it ends when the signal comes as soon as it works.
stopped() {
  SLURM_ARRAY_TASK_ID=$1 bash reach.sbatch >>log 2>&1 &
  local job=$! status=0
  until [ -e "reach-$1.h5.part" ]; do sleep 0.01; done
  sleep 0.03
  kill "-$2" $job
  wait $job 2>/dev/null || status=$?
  [ ! -e "reach-$1.h5" ] || { echo "task $1 was done before SIG$2 came"; exit 1; }
  echo $status
}

[ "$(stopped 3 TERM)" = $((128 + 15)) ]
[ "$(stopped 4 KILL)" = $((128 + 9)) ]
for i in 1 2 3 4 5 6 7 8; do task $i; done
cp -p reach-3.h5 before
task 3  # is done
cmp reach-3.h5 before
qal reach merge reach-*.h5 -o merged.h5
sed -i 's,--shard [^ ]*,,; s,"reach-.*",one.h5,' reach.sbatch
task 1
cmp one.h5 merged.h5
sed -i 's/--directions 100/--directions 99/; s,one.h5,reach-3.h5,' reach.sbatch
if task 1; then echo "another study took the file's place"; exit 1; fi
tail -1 log | grep "reach-3.h5 is there already, and of another study"
