#!/usr/bin/env bash
# Renders the workbench's main window, its results windows, each dialog of the shell and the plot
# windows (a single run, two scenarios, the spread over runs) to PNG files in docs/screenshots
# (or the directory given), from the current build, without a display.
set -euo pipefail
cd "$(dirname "$0")/.."
out="${1:-docs/screenshots}"
scripts/bootstrap.sh
cmake --preset default >/dev/null
cmake --build --preset default -j "$(nproc 2>/dev/null || echo 2)" --target ovaro-screenshots
QT_QPA_PLATFORM=offscreen build/default/src/app/ovaro-screenshots "$out" examples
