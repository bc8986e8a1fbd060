#!/usr/bin/env bash
# Installs the Debian packages the build, the programs and the tests need, when any is missing.
# Every name is a real package, not a virtual one that another package provides: dpkg-query
# knows only real packages, so a virtual name would look missing on a complete machine and
# send every run to apt-get.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config git
    qt6-base-dev qt6-multimedia-dev qt6-tools-dev-tools
    libasio-dev libsqlite3-dev libsodium-dev libssl-dev openssl
    libgtest-dev libgmock-dev libbenchmark-dev
    libturbojpeg0-dev libjpeg62-turbo-dev
    clang libclang-rt-14-dev
    tinyproxy
)
# A headless machine still needs a display server to run the client window.
if [ "${1:-}" = "--with-display" ] && [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    packages+=(xvfb)
fi

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing missing packages: ${missing[*]}"
sudo_cmd=()
[ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
