#!/usr/bin/env bash
# Builds everything (installing missing Debian packages first) and runs every
# test with CTest.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

qxfb_ensure_packages "${QXFB_PACKAGES[@]}"
qxfb_configure
cmake --build "$QXFB_BUILD_DIR" -j "$QXFB_JOBS"
ctest --test-dir "$QXFB_BUILD_DIR" --output-on-failure -j "$QXFB_JOBS"
