#!/usr/bin/env bash
# installed_package_test.sh BUILD SOURCE [CMAKE ARGUMENT...]: installs the build, moves what was
# installed, tries the program, and builds and runs the installed example by CMake and by
# pkg-config. The arguments go to CMake; CXX and CXXFLAGS tell make the compiler and its flags.
set -eu
unset DESTDIR
build=$1 source=$2
shift 2

here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/moved
fail() {
  printf 'installed package: %s\n' "$*" >&2
  exit 1
}

cmake --install "$build" --prefix "$scratch/first" >"$scratch/log" || fail "$(cat "$scratch/log")"
mv "$scratch/first" "$prefix"

for file in share/man/man1/quillet.1 share/man/man1/quillet-report.1 \
  share/man/man1/quillet-shards.1 share/man/man5/quilletrc.5 \
  share/man/man5/quillet-formats.5 share/bash-completion/completions/quillet \
  share/bash-completion/completions/quillet-report \
  share/bash-completion/completions/quillet-shards include/quillet/trace/trace_file.h; do
  [ -s "$prefix/$file" ] || fail "no $file"
done
"$here/check_links.sh" "$prefix/share/doc/quillet" || fail 'a document links to nothing'
"$here/convert_test.sh" "$prefix/bin/quillet" || fail 'the program does not convert'
"$here/report_test.sh" "$prefix/bin/quillet" "$prefix/bin/quillet-report" || fail 'no report'
"$here/shards_test.sh" "$prefix/bin/quillet" "$prefix/bin/quillet-shards" || fail 'no shards'

# What must not be there: what the program keeps to itself, and the folders above.
[ ! -e "$prefix/include/quillet/app" ] || fail 'headers of app/'
[ -z "$(find "$prefix" -name '*quillet_app*')" ] || fail 'the library of app/'
config=$(dirname "$(find "$prefix" -name QuilletConfig.cmake)")
pkgconfig=$(dirname "$(find "$prefix" -name quillet.pc)")
export PKG_CONFIG_PATH=$pkgconfig
! grep -rnF -e "$scratch" -e "$source" "$config" "$pkgconfig" || fail 'folders above are named'

# Each header alone, where a user has headers of the same names.
headers=$(cd "$prefix/include" && find quillet -name '*.h')
for header in $headers; do
  other=$scratch/user/${header#quillet/}
  mkdir -p "$(dirname "$other")"
  echo '#error "this is not a header of Quillet"' >"$other"
  echo "#include <$header>" >>"$scratch/headers.cpp"
done
# shellcheck disable=SC2086  # words are meant
"${CXX:-c++}" ${CXXFLAGS-} -std=c++20 -fsyntax-only -I "$scratch/user" -I "$prefix/include" \
  "$scratch/headers.cpp" || fail 'headers need more than the folder include/'

# shellcheck disable=SC2046,SC2086
echo '#include "trace/trace_file.h"' | "${CXX:-c++}" ${CXXFLAGS-} -std=c++20 -fsyntax-only \
  $(pkg-config --cflags quillet) -x c++ - || fail 'the includes of 1.0.0 fail'

example=$prefix/share/doc/quillet/examples/installed
cmake -S "$example" -B "$scratch/build" -D CMAKE_PREFIX_PATH="$prefix" "$@" >"$scratch/log" ||
  fail "$(cat "$scratch/log")"
cmake --build "$scratch/build" >"$scratch/log" || fail "$(cat "$scratch/log")"
"$here/fastq_test.sh" "$scratch/build/fastq" || fail 'the example built by CMake fails'

make -C "$example" >"$scratch/log" || fail "$(cat "$scratch/log")"
"$here/fastq_test.sh" "$example/fastq" || fail 'the example built by pkg-config fails'
