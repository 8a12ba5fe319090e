#!/usr/bin/env bash
# A hall of simulated welders against one headless monitor: corvane-sim plays WELDERS
# power supplies on loopback TCP ports (a hundred per simulator process), each sending
# RATE welds a second for SECONDS seconds; the monitor logs every weld to a data log per
# welder and samples subgroups of 5 into an SPC database (a SQLite file, or the
# PostgreSQL server named by CORVANE_TEST_PG_DSN when run under scripts/with-postgres.sh).
# At the end it prints welds sent and logged, subgroups stored, the monitor's own CPU time
# as a share of one core over the run, and its resident memory, and fails when a weld or
# a subgroup is missing.
#
# Usage: scripts/scale.sh [WELDERS [SECONDS [RATE]]]      (default 500 60 2)
# CORVANE_SCALE_WINDOW=1 runs the main window (on $DISPLAY, opening on the overview)
# instead of the headless monitor; CORVANE_SCALE_SHOT=FILE.png takes a picture of the
# screen two thirds into the run.
# CORVANE_BIN_DIR names the build folder (build/release), CORVANE_SCALE_DIR the work folder
# (a temporary one, removed afterwards, unless given).
set -euo pipefail
cd "$(dirname "$0")/.."

welders=${1:-500}
seconds=${2:-60}
rate=${3:-2}
period=10 # seconds per SPC sampling period
bin=${CORVANE_BIN_DIR:-build/release}
monitor=$bin/src/app/corvane-monitor
sim=$bin/tools/sim/corvane-sim
spc=$bin/tools/spc/corvane-spc
for program in "$monitor" "$sim" "$spc"; do
  [ -x "$program" ] || { echo "scale: $program is missing; build first" >&2; exit 1; }
done

work=${CORVANE_SCALE_DIR:-$(mktemp -d "${TMPDIR:-/tmp}/corvane-scale.XXXXXX")}
mkdir -p "$work"
work=$(cd "$work" && pwd)
pids=()
# A runtime folder of its own: the monitor's single-instance lock lives there.
export XDG_RUNTIME_DIR=$work/runtime
mkdir -p -m 700 "$XDG_RUNTIME_DIR"
cleanup() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  wait 2>/dev/null || true
  [ -n "${CORVANE_SCALE_DIR:-}" ] || rm -rf "$work"
}
trap cleanup EXIT

# Every welder holds a socket and the monitor its data log, databases and event logs.
ulimit -n "$(ulimit -Hn)" 2>/dev/null || true

welds=$((seconds * rate))
interval=$((1000 / rate))
per_sim=100
ports=()
sims=()
for ((first = 0; first < welders; first += per_sim)); do
  count=$((welders - first < per_sim ? welders - first : per_sim))
  args=()
  for ((i = 0; i < count; i++)); do args+=(--tcp 0); done
  out=$work/sim-$first.out
  "$sim" "${args[@]}" --metric --seed $((first + 1)) --interval "$interval" --count "$welds" \
    >"$out" 2>"$work/sim-$first.err" &
  pids+=($!)
  sims+=($!)
  for _ in $(seq 200); do
    [ "$(grep -c '^tcp ' "$out" || true)" -ge "$count" ] && break
    sleep 0.05
  done
  mapfile -t -O "${#ports[@]}" ports < <(sed -n 's/^tcp 127\.0\.0\.1:\([0-9]*\).*$/\1/p' "$out")
done
[ "${#ports[@]}" -eq "$welders" ] || { echo "scale: only ${#ports[@]} ports announced" >&2; exit 1; }

dsn=${CORVANE_TEST_PG_DSN:-$work/spc.db}
spc_run() { "$spc" "$@" --dsn "$dsn" >/dev/null; }
spc_run init
spc_run add-part "Housing"
spc_run add-process "Seal weld"
# The simulators' means, with warning limits 1.5 and specification limits 2.5 of their
# standard deviations (3 % of the mean) around them, so tiles and meters show colours.
for entry in "Weld Time|0.25" "Energy|120" "Total Absolute|12" "Weld Collapse|0.40" \
             "Total Collapse|0.432" "Velocity|50" "Peak Power|45" "Weld Force|800"; do
  IFS='|' read -r name mean <<<"$entry"
  read -r lwl uwl lsl usl < <(awk -v m="$mean" 'BEGIN {
      s = 0.03 * m; printf "%g %g %g %g\n", m - 1.5 * s, m + 1.5 * s, m - 2.5 * s, m + 2.5 * s }')
  spc_run add-test "$name"
  spc_run set-limits "Housing" "$name" --lsl "$lsl" --usl "$usl" --lwl "$lwl" --uwl "$uwl"
done

printf '[PREFERENCES]\r\nMEASUREMENT_SYSTEM=0\r\n' >"$work/corvane-monitor.ini"
{
  printf '<Configurations>'
  for ((i = 0; i < welders; i++)); do
    printf '<Configuration><Equipment Name="Welder %d" Settings="IP:127.0.0.1:%s"/>' \
      $((i + 1)) "${ports[$i]}"
    printf '<DataLogging Enable="1" File="%s/welder-%d.txt"/>' "$work" $((i + 1))
    printf '<Sampling Enabled="True" SamplingPeriod="%d" CollectionType="0" SubgroupSize="5"' \
      "$period"
    printf ' EnableAlarmLogging="True" LogAlarms="127"><Database DSN="%s"/>' "$dsn"
    printf '<Part Name="Housing" Reselect="False"/><Process Name="Seal weld"/></Sampling>'
    for row in 0 1 2 3 4 5 6 7; do printf '<List Index="%d" ItemData="%d"/>' $row $((row + 1)); done
    printf '</Configuration>'
  done
  printf '</Configurations>'
} >"$work/corvane-monitor.cfg"

# CPU time of a process in clock ticks (user + system), from /proc.
cpu_ticks() { awk '{ print $14 + $15 }' "/proc/$1/stat"; }
rss_mb() { awk '/^VmRSS/ { printf "%.1f", $2 / 1024 }' "/proc/$1/status"; }

mode=(--headless)
[ -z "${CORVANE_SCALE_WINDOW:-}" ] || mode=(--start -geometry 1920x1080+0+0)
env -u CORVANE_DATA_DIR CORVANE_SETTINGS_FILE="$work/settings.ini" \
  "$monitor" "${mode[@]}" --data-dir "$work" >"$work/monitor.out" 2>"$work/monitor.err" &
monitor_pid=$!
pids+=("$monitor_pid")
start_ticks=$(cpu_ticks "$monitor_pid")
start_ns=$(date +%s%N)

if [ -n "${CORVANE_SCALE_SHOT:-}" ]; then
  (sleep $((seconds * 2 / 3)) && import -window root "$CORVANE_SCALE_SHOT") &
fi
status=0
# The simulators end once every weld is sent; a monitor that ended early, or a hall that
# takes far longer than planned, ends the run.
deadline=$((SECONDS + 2 * seconds + 60))
for pid in "${sims[@]}"; do
  while kill -0 "$pid" 2>/dev/null; do
    if ! kill -0 "$monitor_pid" 2>/dev/null || [ "$SECONDS" -gt "$deadline" ]; then
      echo "scale: the monitor ended early or the welds took too long" >&2
      cat "$work/monitor.err" >&2
      exit 1
    fi
    sleep 0.5
  done
  wait "$pid" || status=1
done
sleep 2 # the last welds on their way through the monitor
end_ticks=$(cpu_ticks "$monitor_pid")
end_ns=$(date +%s%N)
rss=$(rss_mb "$monitor_pid")
kill -TERM "$monitor_pid"
wait "$monitor_pid" || status=1

hz=$(getconf CLK_TCK)
cpu_share=$(awk -v t=$((end_ticks - start_ticks)) -v hz="$hz" -v ns=$((end_ns - start_ns)) \
  'BEGIN { printf "%.1f", 100 * (t / hz) / (ns / 1e9) }')
sent=$((welders * welds))
logged=0
short=0
for ((i = 1; i <= welders; i++)); do
  lines=$(($(wc -l <"$work/welder-$i.txt") - 1)) # the first line is the column header
  logged=$((logged + lines))
  [ "$lines" -eq "$welds" ] || short=$((short + 1))
done
subgroups=$("$spc" subgroups --csv --dsn "$dsn" | tail -n +2 | cut -d, -f1 | sort -u | grep -c . ||
  true)
periods=$((welders * (seconds / period)))
errors=$(cat "$work"/*.log 2>/dev/null | grep -c . || true)

database=SQLite
[ -z "${CORVANE_TEST_PG_DSN:-}" ] || database=PostgreSQL
echo "scale: $welders welders x $rate welds/s for $seconds s, data logs and SPC sampling" \
  "($database) on every welder"
echo "welds sent:        $sent"
echo "welds logged:      $logged ($short welders short)"
echo "subgroups stored:  $subgroups (at least $periods periods of $period s ended)"
echo "monitor CPU:       $cpu_share % of one core (process CPU time over the run)"
echo "monitor RSS:       $rss MB"
echo "error/event lines: $errors"
[ "$logged" -eq "$sent" ] && [ "$short" -eq 0 ] || status=1
[ "$subgroups" -ge "$periods" ] || status=1
exit "$status"
