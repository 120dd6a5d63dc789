#!/usr/bin/env bash
# Builds the component and the qxfb host (installing missing Debian packages
# first) and runs `qxfb demo`. Arguments go to qxfb demo, e.g. --app-folder DIR.
# The build log goes to standard error, the demo alone to standard output.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

qxfb_ensure_packages "${QXFB_PACKAGES[@]}"
qxfb_configure >&2
cmake --build "$QXFB_BUILD_DIR" --target QxFBCom2 qxfb -j "$QXFB_JOBS" >&2
exec "$QXFB_BUILD_DIR/apps/qxfb" demo "$@"
