#!/bin/sh
# check_html.sh [HTML_DIR] - check the built manual in a real browser: every
# link between the pages leads to a page that exists, every page loads with
# its sidebar, and the search (run by headless Chromium on the page's own
# script) finds the pages it should.  Not part of the test suite: it needs
# Debian's chromium.  Writes a screenshot of a search to $HTML_DIR/../search.png.
set -eu
dir=${1:-build/manual/html}
dir=$(cd "$dir" && pwd)
browser=$(command -v chromium || command -v chromium-browser || true)
[ -n "$browser" ] || { echo "chromium not found (apt-get install chromium)"; exit 2; }
profile=$(mktemp -d)
trap 'rm -rf "$profile"' EXIT
chrome() {
    "$browser" --headless --no-sandbox --disable-gpu --disable-background-networking --no-first-run \
        --user-data-dir="$profile" --virtual-time-budget=3000 "$@" 2>/dev/null
}
failures=0

# Links: every href to a local page names a file that exists (anchors aside).
for page in "$dir"/*.html; do
    for target in $(grep -o 'href="[^"#:]*\.html' "$page" | sed 's/^href="//' | sort -u); do
        [ -f "$dir/$target" ] || { echo "$(basename "$page"): broken link to $target"; failures=$((failures + 1)); }
    done
done

# Each page, as the browser builds it, has the sidebar and its title.
for page in "$dir"/*.html; do
    dom=$(chrome --dump-dom "file://$page")
    echo "$dom" | grep -q 'id="sidebar"' || { echo "$(basename "$page"): no sidebar"; failures=$((failures + 1)); }
done

# Search: a query in the page's address fills the result list.
search() {  # query, page expected among the results
    dom=$(chrome --dump-dom "file://$dir/index.html?q=$1")
    results=$(echo "$dom" | tr '\n' ' ' | sed 's/.*<ul id="results">//; s/<\/ul>.*//')
    echo "$results" | grep -q "href=\"$2\"" || { echo "search '$1' misses $2"; failures=$((failures + 1)); }
}
search regression zorvs_regression.html
search ZORVS_LILLIEFORS zorvs_normality_test.html
search kmeans%20seeds zorvs_cluster_k_means.html
search ZORVSERRPATH errors.html
search 11054 frequencies_weights.html
chrome --window-size=1280,800 --screenshot="$dir/../search.png" "file://$dir/index.html?q=covariance" >/dev/null

pages=$(ls "$dir"/*.html | wc -l)
echo "$pages pages checked, $failures failures"
[ "$failures" -eq 0 ]
