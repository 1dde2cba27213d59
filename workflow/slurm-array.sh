#!/bin/bash
# slurm-array.sh PROJECT SHARDS [FLAG...]: converts a project as a Slurm job array.
# Plans at most SHARDS shards, unless there is a plan, with the FLAGs of `quillet-shards plan`.
# Submits a task for each shard that is not done, and after them a job that joins. See README.md.
#SBATCH --job-name=quillet
#SBATCH --requeue
#SBATCH --open-mode=append
#SBATCH --output=logs/%x-%A-%a.log
set -eu
script=$(realpath "$0")
cd "$1"
number_of() { echo $((10#$(basename "$1"))); }

if [ -n "${SLURM_ARRAY_TASK_ID-}" ]; then
  for shard in shards/*/; do
    [ "$(number_of "$shard")" != "$SLURM_ARRAY_TASK_ID" ] || exec quillet-shards run "$shard"
  done
  echo "no shard $SLURM_ARRAY_TASK_ID" >&2
  exit 1
fi

[ -e shards ] || quillet-shards plan -d "$PWD" -n "$2" "${@:3}"
[ -e shards ] || exit 0  # nothing to do
mkdir -p logs
tasks=$(for shard in shards/*/; do [ -e "$shard/result/messages" ] || number_of "$shard"; done | paste -s -d ,)
[ -z "$tasks" ] || array=$(sbatch --parsable --array="$tasks" "$script" "$PWD")
sbatch --parsable ${array:+--dependency=afterok:$array --kill-on-invalid-dep=yes} \
  --open-mode=append --output=logs/join-%j.log --wrap 'quillet-shards join -d .'
