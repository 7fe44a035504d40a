#!/usr/bin/env bash
# All tests: the release build with its tests, the unit tests under the sanitizers, and each fuzz target for some
# seconds (ZV_FUZZ_SECONDS, 10 when not set).
source "$(dirname "$0")/common.sh"
install_packages

echo "== Release build and tests"
build_preset release
ctest --preset release

echo "== Unit tests under the address and undefined-behaviour sanitizers"
build_preset asan
ctest --preset asan

echo "== Thread tests under the thread sanitizer"
build_preset tsan zv_thread_tests
ctest --preset tsan -L threads

echo "== Fuzz targets"
build_preset fuzz
export LSAN_OPTIONS=suppressions=$PWD/fuzz/leaks.supp:print_suppressions=0
for target in build/fuzz/bin/fuzz_*; do
    name=$(basename "$target")
    work=$(mktemp -d)
    echo "$name"
    # New inputs go to the work directory, so a run leaves the stored corpus as it was.
    "$target" -max_total_time="${ZV_FUZZ_SECONDS:-10}" -rss_limit_mb=1024 -timeout=10 -print_final_stats=0 -verbosity=0 \
        -artifact_prefix="$work/" "$work" "fuzz/corpus/${name#fuzz_}"
    rm -rf "$work"
done
echo "All tests passed"
