#!/usr/bin/env bash
# fastq_test.sh FASTQ: what the built program of examples/installed prints.
set -eu
fastq=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"

# FASTQ has "!" for the quality 0, "?" for 30 and "I" for 40.
"$here/demo_trace.sh" >demo.scf
"$fastq" demo.scf >found
printf '@demo.scf\nAGN\n+\n?I!\n' | diff - found

if "$fastq" nothing.scf 2>found; then
  echo 'fastq takes what is not there' >&2
  exit 1
fi
[ "$(cat found)" = 'fastq: no trace: nothing.scf' ]
