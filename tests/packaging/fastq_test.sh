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

# A quality of 0 in the middle: the second base's probability of C. SCF version 2: two samples of one
# byte a channel at 128, four bases at 136, no comments.
{
  printf '.scf\0\0\0\2\0\0\0\200\0\0\0\4\0\0\0\0\0\0\0\0\0\0\0\210'
  printf '\0\0\0\0\0\0\0\2702.00\0\0\0\1'
  head -c 84 /dev/zero
  printf '\1\2\3\4\5\6\7\10'
  printf '\0\0\0\0\36\0\0\0A\0\0\0\0\0\0\1\0\0\0\0C\0\0\0'
  printf '\0\0\0\1\0\0\50\0G\0\0\0\0\0\0\1\0\0\0\12T\0\0\0'
} >zero.scf
"$fastq" zero.scf >found
printf '@zero.scf\nACGT\n+\n?!I+\n' | diff - found

if "$fastq" nothing.scf 2>found; then
  echo 'fastq takes what is not there' >&2
  exit 1
fi
[ "$(cat found)" = 'fastq: no trace: nothing.scf' ]
