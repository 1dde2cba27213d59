#!/usr/bin/env bash
# check_links.sh FOLDER...: every relative link in the folders' Markdown files leads to something
# that is there. Prints those that do not; status 1 when there is one, or when there are no links.
set -eu

links=0 status=0
while read -r file target; do
  links=$((links + 1))
  [ -e "$(dirname "$file")/${target%%#*}" ] && continue
  printf '%s: there is no %s\n' "$file" "$target"
  status=1
done < <(grep -roP --include='*.md' --exclude-dir=build '(?<=\]\()(?![a-z]+:|#)[^)]+' "$@" |
  sed 's/:/ /')

[ $links -gt 0 ] || { echo "no links in $*" && exit 1; }
exit $status
