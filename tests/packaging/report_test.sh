#!/usr/bin/env bash
# report_test.sh QUILLET REPORT: converts a project with the one program and checks it with the other.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
quillet=$(realpath "$(command -v "$1")")
report=$(realpath "$(command -v "$2")")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
export HOME=$scratch PWD=$scratch
mkdir chromat_dir phd_dir poly_dir edit_dir
"$here/demo_trace.sh" >chromat_dir/demo.scf

"$report" --tsv - >table && exit 1
[ "$(cut -f 1-3 table | tail -n 1)" = "$(printf 'demo\tdemo.scf\twaiting')" ]

"$quillet" 2>/dev/null
"$report" --tsv - >table
[ "$(cut -f 1-3 table | tail -n 1)" = "$(printf 'demo\tdemo.scf\tconverted')" ]

truncate -s 100 phd_dir/demo.phd.1
status=0
"$report" >summary || status=$?
[ $status = 3 ]
grep -qx 'cut        demo (demo.scf): phd' summary
