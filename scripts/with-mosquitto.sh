#!/usr/bin/env bash
# Runs a command with a throwaway MQTT broker of its own:
#
#   scripts/with-mosquitto.sh ctest --test-dir build/dev
#
# Debian's mosquitto listens on a free loopback port, keeps nothing on disk, and is
# stopped when the command ends, also when it fails or is interrupted. The command sees
#   CORVANE_TEST_MQTT_PORT=<the broker's port>
# and its exit status is the script's.
set -euo pipefail

if [ $# -eq 0 ]; then
    echo "usage: $0 COMMAND [ARGUMENTS...]" >&2
    exit 2
fi

broker=${CORVANE_MOSQUITTO:-}
if [ -z "$broker" ]; then
    for candidate in /usr/sbin/mosquitto "$(command -v mosquitto || true)"; do
        [ -n "$candidate" ] && [ -x "$candidate" ] && broker=$candidate && break
    done
fi
if [ -z "$broker" ]; then
    echo "$0: no mosquitto broker found (install the Debian package mosquitto)" >&2
    exit 1
fi

work=$(mktemp -d "${TMPDIR:-/tmp}/corvane-mqtt.XXXXXX")
pid=

cleanup() {
    if [ -n "$pid" ]; then
        kill "$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
    fi
    rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

port_in_use() {
    ss -Hltn "sport = :$1" 2>/dev/null | grep -q .
}

# A port that is free now may be taken before the broker binds it: try a few.
for attempt in 1 2 3 4 5 6 7 8; do
    port=$((20000 + RANDOM % 40000))
    port_in_use "$port" && continue
    printf 'listener %s 127.0.0.1\nallow_anonymous true\npersistence false\n' "$port" \
        >"$work/mosquitto.conf"
    "$broker" -c "$work/mosquitto.conf" >"$work/broker.log" 2>&1 &
    pid=$!
    for wait_step in $(seq 1 50); do
        port_in_use "$port" && break
        kill -0 "$pid" 2>/dev/null || break
        sleep 0.1
    done
    if port_in_use "$port" && kill -0 "$pid" 2>/dev/null; then
        break
    fi
    wait "$pid" 2>/dev/null || true
    pid=
done
if [ -z "$pid" ]; then
    echo "$0: the mosquitto broker did not start" >&2
    cat "$work/broker.log" >&2 || true
    exit 1
fi

export CORVANE_TEST_MQTT_PORT="$port"
status=0
"$@" || status=$?
exit "$status"
