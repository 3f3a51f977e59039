#!/bin/sh
# raised_codes.sh LOG [--tests] - the message (type, code) pairs in LOG, the
# file that the coverage build's test program appends to for every raise
# (ZORVS_CODE_LOG; see tools/raised_codes_hook.cpp).  Prints one
# line "type code NAME" a pair, sorted by code then type, for the codes of
# the catalogue lib/frame/zorvs_e.msg; codes that only tests make up (not in
# the catalogue) are left out.  With --tests, each line also names the first
# test (in sorted order) that raised the pair.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
log=$1
with_tests=${2:-}
awk -v with_tests="$with_tests" '
    FNR == NR { if ($1 ~ /^[0-9]+$/ && NF >= 2) name[$1] = $2; next }
    ($2 in name) {
        key = $1 " " $2
        if (!(key in first) || $3 < first[key]) first[key] = $3
    }
    END {
        for (key in first) {
            split(key, p, " ")
            line = sprintf("%d %d %s", p[1], p[2], name[p[2]])
            if (with_tests == "--tests") line = line " " first[key]
            print line
        }
    }' "$root/lib/frame/zorvs_e.msg" "$log" | sort -k2,2n -k1,1n
