#!/usr/bin/env bash
# Builds and runs the client. Installs missing Debian packages first. On a machine without a
# display the client is shown on a virtual X server (Xvfb).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh --with-display
bash scripts/build.sh tavren

if [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] && [ -z "${QT_QPA_PLATFORM:-}" ]; then
    exec xvfb-run -a build/bin/tavren "$@"
fi
exec build/bin/tavren "$@"
