#!/bin/sh
# Installs the Debian packages the build, the tests and the demo need.
# Idempotent and non-interactive: does nothing when all are present.
set -e
PKGS="cmake make g++ qt6-base-dev qt6-base-dev-tools qt6-tools-dev qt6-tools-dev-tools
qt6-l10n-tools qt6-qpa-plugins libgl-dev fonts-dejavu-core"
missing=""
for p in $PKGS; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing="$missing $p"
    fi
done
[ -z "$missing" ] && exit 0
echo "installing:$missing"
SUDO=""
if [ "$(id -u)" != "0" ]; then
    if command -v sudo >/dev/null 2>&1; then SUDO="sudo -n"; else
        echo "missing packages:$missing (run as root or install them)" >&2; exit 1
    fi
fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq </dev/null
$SUDO apt-get install -y -qq --no-install-recommends $missing </dev/null
