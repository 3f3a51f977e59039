#!/bin/bash
# code_share.sh - lines of test code against lines of library code:
# non-blank lines that are not only a comment, in C, C++ and CMake sources.
# Tests are tests/ without the generated reference data in tests/data/; the
# library is include/, lib/, tools/, examples/ and cli/.
#   tools/code_share.sh            the two counts and the share
#   tools/code_share.sh tests/stat the count of one folder
set -euo pipefail
cd "$(dirname "$0")/.."
count() {
    find "$@" -type f \( -name '*.c' -o -name '*.h' -o -name '*.cpp' -o -name '*.hpp' -o -name '*.inc' \
        -o -name 'CMakeLists.txt' -o -name '*.sh' \) -not -path 'tests/data/*' -print0 |
        xargs -0 cat | awk '
            /^[ \t]*$/ { next }
            in_block { if ($0 ~ /\*\//) in_block = 0; next }
            /^[ \t]*\/\*/ { if ($0 !~ /\*\//) in_block = 1; next }
            /^[ \t]*(\/\/|#[^a-z]|# )/ { next }
            { n++ }
            END { print n + 0 }'
}
if [ $# -gt 0 ]; then
    count "$@"
    exit 0
fi
tests=$(count tests)
library=$(count include lib tools examples cli)
echo "tests $tests, library $library, share $((100 * tests / library))%"
