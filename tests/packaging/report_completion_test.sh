#!/usr/bin/env bash
# report_completion_test.sh FILE: what the bash completion in FILE offers for unfinished command
# lines of quillet-report.
set -u
# shellcheck source=completions/quillet-report
source "$1"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit
mkdir -- 'lab one' results
touch list.txt 'table one.tsv'

status=0
# expect OFFERS WORD...: the words of a command line after `quillet-report`, the last one unfinished.
expect() {
  local offers=$1 found
  shift
  COMP_WORDS=(quillet-report "$@")
  COMP_CWORD=$#
  COMPREPLY=()
  _quillet_report
  found=$(printf '%s\n' "${COMPREPLY[@]}" | sort | paste -s -d '|')
  [ "$found" = "$offers" ] && return
  printf 'quillet-report %s: offers "%s", not "%s"\n' "$*" "$found" "$offers"
  status=1
}
export LC_ALL=C

[ "$(complete -p quillet-report)" = 'complete -F _quillet_report quillet-report' ] || {
  echo 'the function is not bound to quillet-report'
  status=1
}
long='--fasta|--fastq|--help|--html|--json|--mixed|--no-pictures|--trim|--tsv|--version'
expect "$long|-d|-l|-o|-s" ''
expect "$long" --
expect '--fasta|--fastq' -s --fa
expect '--help|--html' -o page.html --h
expect '--trim|--tsv' --fastq x --t
expect '' list  # the command line takes no file names
expect 'lab one|results' -d ''
expect 'lab one' -dir l
expect 'lab one|list.txt|results|table one.tsv' -l ''
for flag in -l -list -o --html --tsv --json --fastq --fasta; do
  expect 'table one.tsv' -s "$flag" ta
done
expect '' --mixed ''
expect "$long" --mixed 0.5 --
# The word after a flag that takes an argument is its argument, whatever it looks like.
expect "$long|-d|-l|-o|-s" -d --tsv ''
expect 'lab one|list.txt|results|table one.tsv' --tsv -d --json ''
exit $status
