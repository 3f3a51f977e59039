#!/bin/sh
# coverage.sh - build the library and the test suite with gcov counters in
# build-coverage/, run the whole suite, print the line and branch coverage of
# lib/ with gcovr, and list the message (type, code) pairs the suite raised
# (tools/raised_codes.sh).  Run from anywhere; BUILD_DIR and JOBS override
# the build directory and the number of parallel jobs.
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
build=${BUILD_DIR:-$root/build-coverage}
jobs=${JOBS:-2}

if ! command -v gcovr >/dev/null 2>&1; then
    # Debian's package; wait for any other apt-get to finish first.
    while pgrep -x apt-get >/dev/null 2>&1 || pgrep -x dpkg >/dev/null 2>&1; do sleep 5; done
    if [ "$(id -u)" -eq 0 ]; then sudo=; else sudo=sudo; fi
    $sudo apt-get update -q && $sudo apt-get install -y -q gcovr
fi

cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Debug -DZORVS_COVERAGE=ON -DZORVS_WERROR=ON \
    -DZORVS_BUILD_BENCH=OFF -DZORVS_BUILD_EXAMPLES=OFF >/dev/null
cmake --build "$build" -j"$jobs"

# Counters and the code log from an earlier run would add to this one.
find "$build" -name '*.gcda' -delete
log=$build/raised_codes.log
rm -f "$log"
ZORVS_CODE_LOG=$log ctest --test-dir "$build" -j"$jobs" --output-on-failure || status=$?

# Branches that only an exception thrown by the C++ runtime could take are
# left out: the library throws nothing of its own.
gcovr --root "$root" --filter "$root/lib/" --exclude-throw-branches \
    --object-directory "$build" --print-summary --output "$build/coverage.txt" "$build"
echo "per-file table: $build/coverage.txt"
"$root/tools/raised_codes.sh" "$log" >"$build/raised_codes.txt"
echo "message codes raised: $(wc -l <"$build/raised_codes.txt") (list: $build/raised_codes.txt)"
exit "${status:-0}"
