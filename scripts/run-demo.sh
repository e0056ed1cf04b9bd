#!/bin/sh
# Runs the demo host: a real window when a display exists, otherwise the
# offscreen platform playing the bundled macro, printing its results and
# writing a screenshot into the build folder.
BUILD=$(cd "${1:-build}" && pwd)
DEMO="$BUILD/demo/zal_demo"
if [ ! -x "$DEMO" ]; then
    echo "no demo binary at $DEMO: run 'make build' first" >&2
    exit 1
fi
cd "$(dirname "$0")/../demo" || exit 1
if [ -n "$DISPLAY" ] || [ -n "$WAYLAND_DISPLAY" ]; then
    exec "$DEMO"
fi
# The offscreen platform warns about size hints on every window; that is noise here.
out=$(mktemp)
QT_QPA_PLATFORM=offscreen "$DEMO" -headless -screenshot "$BUILD/zal-demo.png" >"$out" 2>&1
status=$?
grep -v propagateSizeHints "$out"
rm -f "$out"
exit $status
