#!/usr/bin/env bash
# installed_package_test.sh BUILD SOURCE [CMAKE ARGUMENT...]: installs the build, moves what was
# installed, and builds and runs examples/installed with it. The arguments go to the example.
set -eu
unset DESTDIR
build=$1 source=$2
shift 2

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/moved
fail() {
  printf 'installed package: %s\n' "$*" >&2
  exit 1
}

cmake --install "$build" --prefix "$scratch/first" >"$scratch/log" || fail "$(cat "$scratch/log")"
mv "$scratch/first" "$prefix"
"$prefix/bin/quillet-report" --version >"$scratch/version" || fail "quillet-report does not run"
for file in share/man/man1/quillet-report.1 share/bash-completion/completions/quillet-report; do
  [ -s "$prefix/$file" ] || fail "no $file"
done

"$prefix/bin/quillet" -version 2>"$scratch/version" || fail "the program does not run"
for file in share/man/man1/quillet.1 share/man/man5/quilletrc.5 share/man/man5/quillet-formats.5 \
  share/bash-completion/completions/quillet share/doc/quillet/README.md \
  share/doc/quillet/CHANGELOG.md share/doc/quillet/LICENSE share/doc/quillet/docs/architecture.md \
  share/doc/quillet/docs/formats/phd.md include/quillet/trace/trace_file.h; do
  [ -s "$prefix/$file" ] || fail "no $file"
done
package=$(dirname "$(find "$prefix" -name QuilletConfig.cmake)")
! grep -rnF -e "$scratch" -e "$source" "$package" || fail "the CMake package names the folders above"

cmake -S "$source/examples/installed" -B "$scratch/build" -G Ninja \
  -D CMAKE_PREFIX_PATH="$prefix" "$@" >"$scratch/log" || fail "$(cat "$scratch/log")"
cmake --build "$scratch/build" >"$scratch/log" || fail "$(cat "$scratch/log")"

# An SCF file of version 2: two samples of one byte a channel, then four bases. Numbers are
# big-endian; the four probabilities of a base are those of A, C, G and T.
cd "$scratch"
{
  printf '.scf\0\0\0\2\0\0\0\200\0\0\0\4'  # 2 samples at 128, 4 bases
  printf '\0\0\0\0\0\0\0\0\0\0\0\210'      # the bases at 136
  printf '\0\0\0\0\0\0\0\2702.00\0\0\0\1'  # no comments, at 184
  head -c 84 /dev/zero
  printf '\1\2\3\4\5\6\7\10'
  printf '\0\0\0\0\36\0\0\0A\0\0\0'  # quality 30, which FASTQ writes as "?"
  printf '\0\0\0\1\0\50\0\0C\0\0\0'  # quality 40, "I"
  printf '\0\0\0\1\0\0\12\0G\0\0\0'  # quality 10, "+"
  printf '\0\0\0\1\0\0\0\0N\0\0\0'   # none, "!"
} >trace.scf
printf '@trace.scf\nACGN\n+\n?I+!\n' >expected
"$scratch/build/fastq" trace.scf >found || fail "the example fails"
diff expected found || fail "the example prints something else"

! "$scratch/build/fastq" nothing.scf 2>found || fail "the example takes what is not there"
[ "$(cat found)" = 'fastq: no trace: nothing.scf' ] || fail "$(cat found)"
