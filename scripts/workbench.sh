#!/usr/bin/env bash
# Builds the component and the desktop workbench (installing missing Debian
# packages first) and starts it. Arguments go to qxfb-workbench, e.g. a
# project file to open, --component PATH or --app-folder DIR.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

qxfb_ensure_packages "${QXFB_PACKAGES[@]}"
qxfb_configure >&2
cmake --build "$QXFB_BUILD_DIR" --target QxFBCom2 qxfb-workbench -j "$QXFB_JOBS" >&2
exec "$QXFB_BUILD_DIR/apps/workbench/qxfb-workbench" "$@"
