#!/usr/bin/env bash
# shards_test.sh QUILLET SHARDS: converts a project with the one program, then in shards with the
# other.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
quillet=$(realpath "$(command -v "$1")")
shards=$(realpath "$(command -v "$2")")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
export HOME=$scratch PWD=$scratch
mkdir chromat_dir phd_dir poly_dir edit_dir
for name in a b c d; do "$here/demo_trace.sh" >chromat_dir/$name.scf; done
gzip chromat_dir/b.scf
echo nothing >chromat_dir/c2.scf

"$quillet" 2>messages
sed -i '/^TIME: /d' phd_dir/*
mkdir plain
mv phd_dir poly_dir plain
mkdir phd_dir poly_dir

"$shards" plan -n 3
[ "$(find shards -mindepth 1 -maxdepth 1 -type d | sort | paste -s -d ' ')" = \
  'shards/0001 shards/0002 shards/0003' ]
"$shards" run shards/0003 2>/dev/null
status=0
"$shards" join 2>/dev/null || status=$?
[ $status = 2 ]
"$shards" plan -n 3 2>/dev/null && exit 1
"$shards" all -f -j 2 2>shard_messages

[ ! -e shards ]
sed -i '/^TIME: /d' phd_dir/*
diff -r plain/phd_dir phd_dir
diff -r plain/poly_dir poly_dir
grep '^ERROR' messages | diff - shard_messages
