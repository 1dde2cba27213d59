#!/usr/bin/env bash
# demo_trace.sh: prints a trace, an SCF file of version 2: 20 samples of one byte a channel and the
# bases A, G, N. It is the short trace that docs/formats/poly.md works out by hand.
set -eu
export LC_ALL=C

zeros() { head -c "$1" /dev/zero; }
points() { printf "%b" "$@"; }  # A, C, G and T of each point

# The header. Numbers are big-endian.
printf '.scf\0\0\0\24\0\0\0\200\0\0\0\3'  # 20 samples at 128, 3 bases
zeros 8
printf '\0\0\0\320\0\0\0\14\0\0\0\364'  # the bases at 208, 12 bytes of comments at 244
printf '2.00\0\0\0\1'                   # 1 byte a sample
zeros 84

none='\0\0\0\0'
points $none $none $none '\0144\0\0\0' '\0377\050\0\0' '\0144\074\0\0' '\0\050\0\0'  # 0 to 6
points '\0\0\062\0' '\0\0\062\0' '\0\0\062\0' '\0\0\062\0' '\0\0\062\0' '\0\0\062\0'  # 7 to 12
points $none '\0\0\0\012' '\0\0\0\024' '\0\0\0\012' $none $none $none                # 13 to 19

# The bases: peak, probabilities of A, C, G and T, letter, spare bytes.
printf '\0\0\0\4\36\0\0\0A\0\0\0'
printf '\0\0\0\12\0\0\50\0G\0\0\0'
printf '\0\0\0\17\0\0\0\0N\0\0\0'

printf 'BCAL=KB 1.4\n'
