#!/bin/sh
# Runs every benchmark program of the release build on the offscreen platform.
BUILD=${1:-build-release}
status=0
for b in "$BUILD"/bench/bench_*; do
    [ -x "$b" ] || continue
    echo "== $(basename "$b")"
    QT_QPA_PLATFORM=offscreen "$b" || status=1
done
exit $status
