#!/usr/bin/env bash
# Builds the client and the server, starts a local tavrend in the background (its own database
# under the client's data root), runs the client pointed at it ("{default server #1}" and
# "{default port}" are 127.0.0.1:5678 in a default build) and stops the server when the client
# exits; when a server already listens there (another client's), it is used instead. Installs
# missing Debian packages first. On a machine without a display the client is
# shown on a virtual X server (Xvfb).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh --with-display
bash scripts/build.sh tavren tavrend

data_root="${TAVREN_HOME:-$HOME/.local/share/Tavren/Tavren}"
server_dir="$data_root/server"
mkdir -p "$server_dir"
server_log="$server_dir/tavrend.log"

# A second client on the same machine (another TAVREN_HOME) talks to the server the first one
# started, so that two people can chat side by side.
if (exec 3<>/dev/tcp/127.0.0.1/5678) 2>/dev/null; then
    echo "a tavrend is already serving on 127.0.0.1:5678; this client uses it"
else
    build/bin/tavrend --listen 127.0.0.1:5678 --db "$server_dir/tavrend.db" >"$server_log" 2>&1 &
    server_pid=$!
    stop_server() {
        kill "$server_pid" 2>/dev/null || true
        wait "$server_pid" 2>/dev/null || true
    }
    trap stop_server EXIT

    # Wait until it listens; a server that cannot start is reported.
    for _ in $(seq 1 100); do
        grep -q "listening on" "$server_log" && break
        if ! kill -0 "$server_pid" 2>/dev/null; then
            echo "tavrend did not start; its log ($server_log):" >&2
            cat "$server_log" >&2
            exit 1
        fi
        sleep 0.1
    done
    echo "tavrend is serving on 127.0.0.1:5678 (log: $server_log)"
fi

# The client connects encrypted; the local server is vouched for here, so the member is not
# asked about its certificate: its own fingerprint when this script started it, else the one
# the server on the port presents (a server on this machine's loopback, started by the other
# client's script).
fingerprint=""
if [ -n "${server_pid:-}" ]; then
    fingerprint=$(build/bin/tavrend --db "$server_dir/tavrend.db" fingerprint 2>/dev/null || true)
elif command -v openssl >/dev/null; then
    fingerprint=$(openssl s_client -connect 127.0.0.1:5678 </dev/null 2>/dev/null |
        openssl x509 -noout -fingerprint -sha256 2>/dev/null | sed 's/^.*=//' || true)
fi
trust=()
[ -n "$fingerprint" ] && trust=(--trust-server "127.0.0.1:5678=$fingerprint")

if [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] && [ -z "${QT_QPA_PLATFORM:-}" ]; then
    xvfb-run -a build/bin/tavren "${trust[@]}" "$@"
else
    build/bin/tavren "${trust[@]}" "$@"
fi
