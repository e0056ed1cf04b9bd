#!/bin/sh
# Runs the demo host: a real window when a display exists, otherwise the
# offscreen platform playing the bundled macro.
BUILD=${1:-build}
DEMO="$BUILD/demo/zal_demo"
if [ ! -x "$DEMO" ]; then
    echo "The demo host arrives with the main window; the library and its tests are built."
    exit 0
fi
cd demo || exit 1
if [ -n "$DISPLAY" ] || [ -n "$WAYLAND_DISPLAY" ]; then
    exec "../$DEMO" "$@"
fi
QT_QPA_PLATFORM=offscreen exec "../$DEMO" -headless
