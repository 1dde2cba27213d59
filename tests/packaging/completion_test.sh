#!/usr/bin/env bash
# completion_test.sh FILE: tests what the bash completion in FILE offers for unfinished commands.
set -u
# shellcheck source=completions/quillet
source "$1"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit
mkdir -- 'lab one' results -o
touch list.txt 'list two' '*'

status=0
# expect OFFERS WORD...: completing the last WORD after `quillet` must give OFFERS.
expect() {
  local offers=$1 found
  shift
  COMP_WORDS=(quillet "$@")
  COMP_CWORD=$#
  COMPREPLY=()
  _quillet
  found=$(printf '%s\n' "${COMPREPLY[@]}" | sort | paste -s -d '|')
  [ "$found" = "$offers" ] && return
  printf 'quillet %s: offers "%s", not "%s"\n' "$*" "$found" "$offers"
  status=1
}
export LC_ALL=C

[ "$(complete -p quillet)" = 'complete -F _quillet quillet' ] || {
  echo 'the function is not bound to quillet'
  status=1
}
flags='--help|--version|-dir|-help|-list|-nostrip|-overwrite|-version'
expect "$flags" ''
expect "$flags" -o ''
expect '-dir' -d
expect '--help|--version' --
expect '-nostrip' -o -l list.txt -n
expect '' list  # the command line takes no file names
expect '-o|lab one|results' -d ''
expect 'lab one' -dir l
expect 'results' -o -d re
expect '*|-o|lab one|list two|list.txt|results' -l ''
expect 'list two|list.txt' -list lis
# The word after -d or -l is its argument, even when it looks like a flag.
expect '-o' -d -o
expect "$flags" -d -l ''
expect "$flags" -l -d ''
expect '-list' -l list.txt -li
exit $status
