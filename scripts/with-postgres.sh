#!/usr/bin/env bash
# Runs a command with a throwaway PostgreSQL server of its own:
#
#   scripts/with-postgres.sh ctest --test-dir build/dev
#
# The server is made in a temporary folder, listens on a free loopback port, asks for a
# password on TCP connections, and is stopped and removed when the command ends, also
# when it fails or is interrupted. The command sees
#   CORVANE_TEST_PG_DSN=postgresql://postgres@127.0.0.1:PORT/corvane_test
#   PGPASSWORD=<the password of that throwaway server>
# and its exit status is the script's.
set -euo pipefail

if [ $# -eq 0 ]; then
    echo "usage: $0 COMMAND [ARGUMENTS...]" >&2
    exit 2
fi

pg_bin=${CORVANE_PG_BIN:-}
if [ -z "$pg_bin" ]; then
    for candidate in /usr/lib/postgresql/*/bin; do
        [ -x "$candidate/initdb" ] && pg_bin=$candidate
    done
fi
if [ -z "$pg_bin" ] || [ ! -x "$pg_bin/initdb" ]; then
    echo "$0: no PostgreSQL server found (install the Debian package postgresql)" >&2
    exit 1
fi

# initdb refuses to run as root: the server then runs as the postgres user, in a folder
# that user owns.
as_server=()
if [ "$(id -u)" -eq 0 ]; then
    as_server=(runuser -u postgres --)
fi

work=$(mktemp -d "${TMPDIR:-/tmp}/corvane-pg.XXXXXX")
data="$work/data"
started=no

cleanup() {
    if [ "$started" = yes ]; then
        "${as_server[@]}" "$pg_bin/pg_ctl" -D "$data" -m fast -w stop >/dev/null 2>&1 || true
    fi
    rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

password="corvane-$RANDOM$RANDOM"
printf '%s\n' "$password" >"$work/password"
chmod 700 "$work"
chmod 600 "$work/password"
if [ ${#as_server[@]} -gt 0 ]; then
    chown -R postgres "$work"
fi

"${as_server[@]}" "$pg_bin/initdb" -D "$data" -U postgres --pwfile="$work/password" \
    --auth-local=trust --auth-host=scram-sha-256 -E UTF8 --no-locale >"$work/initdb.log" 2>&1 ||
    { cat "$work/initdb.log" >&2; exit 1; }

port_in_use() {
    ss -Hltn "sport = :$1" 2>/dev/null | grep -q .
}

# A port that is free now may be taken before the server binds it: try a few.
for attempt in 1 2 3 4 5 6 7 8; do
    port=$((20000 + RANDOM % 40000))
    port_in_use "$port" && continue
    if "${as_server[@]}" "$pg_bin/pg_ctl" -D "$data" -l "$work/server.log" -w -t 30 \
        -o "-p $port -k $work -c listen_addresses=127.0.0.1 -c fsync=off -c full_page_writes=off -c synchronous_commit=off" \
        start >/dev/null 2>&1; then
        started=yes
        break
    fi
done
if [ "$started" != yes ]; then
    echo "$0: the PostgreSQL server did not start" >&2
    cat "$work/server.log" >&2 || true
    exit 1
fi

export PGPASSWORD="$password"
"${as_server[@]}" "$pg_bin/createdb" -h "$work" -p "$port" -U postgres corvane_test

export CORVANE_TEST_PG_DSN="postgresql://postgres@127.0.0.1:$port/corvane_test"
status=0
"$@" || status=$?
exit "$status"
