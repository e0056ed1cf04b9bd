#!/bin/sh
# Runs every benchmark program of the release build on the offscreen platform
# and prints their BENCH and RATIO lines (the offscreen platform's warnings
# about window size hints are left out).
BUILD=${1:-build-release}
status=0
for b in "$BUILD"/bench/bench_*; do
    [ -f "$b" ] && [ -x "$b" ] || continue
    echo "== $(basename "$b")"
    out=$(mktemp)
    QT_QPA_PLATFORM=offscreen "$b" >"$out" 2>&1 || status=1
    grep -v -e propagateSizeHints -e XDG_RUNTIME_DIR "$out"
    rm -f "$out"
done
exit $status
