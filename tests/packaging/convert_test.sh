#!/usr/bin/env bash
# convert_test.sh [QUILLET]: converts a project of one trace with that program, or the installed
# one: plain, gzipped, and with a file that is no trace. The results are those that
# docs/formats/phd.md and docs/formats/poly.md give for the trace of demo_trace.sh.
set -eu
quillet=$(command -v "${1:-quillet}") || { echo "there is no ${1:-quillet}" >&2 && exit 1; }
quillet=$(realpath "$quillet")
here=$(cd "$(dirname "$0")" && pwd)

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
export HOME=$scratch PWD
unset TESSALY_PATH
mkdir chromat_dir phd_dir poly_dir
"$here/demo_trace.sh" >chromat_dir/demo.scf
cat >expected.phd <<'PHD'
BEGIN_SEQUENCE demo

BEGIN_COMMENT
CHROMAT_FILE: demo
ABI_THUMBPRINT: 0
PHRED_VERSION: quillet
CALL_METHOD: KB 1.4
QUALITY_LEVELS: 99
TIME:
TRACE_ARRAY_MIN_INDEX: 0
TRACE_ARRAY_MAX_INDEX: 19
CHEM: term
DYE: big
END_COMMENT

BEGIN_DNA
A 30 4
G 40 10
N 0 15
END_DNA
END_SEQUENCE
PHD
cat >expected.poly <<'POLY'
demo 1 1 1 1 1
A 4 0 0 C 6 0 0 65280 15360 0 0
G 10 0 0 N 0 0 0 0 0 12800 0
N 15 0 0 N 0 0 0 0 0 0 5120
POLY

# convert ERRORS [ARGUMENT...]: runs the program, and compares its messages and what it wrote.
convert() {
  local errors=$1
  shift
  "$quillet" "$@" >out 2>err </dev/null || { cat err && exit 1; }
  diff /dev/null out
  diff <(printf '%s' "$errors") <(grep ERROR err)
  sed 's/^TIME: .*/TIME:/' phd_dir/demo.phd.1 | diff expected.phd -
  diff expected.poly poly_dir/demo.poly
  diff <(printf '%s\n' phd_dir/demo.phd.1 poly_dir/demo.poly) <(find p* -type f | sort)
}

convert ''

gzip chromat_dir/demo.scf
rm phd_dir/* poly_dir/*
convert ''

echo 'no trace' >chromat_dir/other.ab1
convert "ERROR: invalid trace file $PWD/chromat_dir/other.ab1 - skipping."$'\n' -o
