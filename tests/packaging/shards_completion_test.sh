#!/usr/bin/env bash
# shards_completion_test.sh FILE: what the bash completion in FILE offers for unfinished command
# lines of quillet-shards.
set -u
# shellcheck source=completions/quillet-shards
source "$1"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit
mkdir -- 'lab one' shards
touch list.txt

status=0
# expect OFFERS WORD...: the words of a command line after `quillet-shards`, the last one unfinished.
expect() {
  local offers=$1 found
  shift
  COMP_WORDS=(quillet-shards "$@")
  COMP_CWORD=$#
  COMPREPLY=()
  _quillet_shards
  found=$(printf '%s\n' "${COMPREPLY[@]}" | sort | paste -s -d '|')
  [ "$found" = "$offers" ] && return
  printf 'quillet-shards %s: offers "%s", not "%s"\n' "$*" "$found" "$offers"
  status=1
}
export LC_ALL=C

[ "$(complete -p quillet-shards)" = 'complete -F _quillet_shards quillet-shards' ] || {
  echo 'the function is not bound to quillet-shards'
  status=1
}
plan='--help|--size|--version|-d|-f|-l|-n|-o|-s'
expect '--help|--version|all|join|plan|run' ''
expect 'plan' p
expect '--help|--version' --
expect "$plan" plan ''
expect '--help|--size|--version' plan --
expect '--help|--size|--version|-d|-f|-j|-l|-n|-o|-s' all ''
expect '--help|--version|-d' join ''
expect '--help|--keep-gzip|--scratch|--version' run -
expect 'lab one|shards' run ''
expect 'lab one|shards' run --scratch ''
expect '--keep-gzip' run --scratch shards --k
for command in plan join all; do
  expect 'lab one' "$command" -d l
  expect 'lab one' "$command" -dir l
done
expect 'lab one|list.txt|shards' plan -l ''
expect 'list.txt' all -s -list li
for flag in -n --size -j; do
  expect '' all "$flag" ''
done
# The word after a flag that takes an argument is its argument, whatever it looks like.
expect "$plan" plan -d -l ''
expect "$plan" plan -n 4 ''
expect '' nothing x
exit $status
