#!/usr/bin/env bash
# Shows the monitor at work without welders: two power supplies played by corvane-sim on
# loopback ports, an SPC database prepared by corvane-spc with limits that the simulated
# welds pass now and then (yellow) and now and then break (red), data logging and SPC
# sampling on (a subgroup every 30 s), all in a fresh demonstration folder (demo/,
# emptied at every start). Ending the program ends the simulators.
#
# Usage: scripts/demo.sh [corvane-monitor options, such as --lang de]
# CORVANE_BIN_DIR names the build folder (build/release), CORVANE_DEMO_DIR the folder.
set -euo pipefail
cd "$(dirname "$0")/.."

bin=${CORVANE_BIN_DIR:-build/release}
monitor=$bin/src/app/corvane-monitor
sim=$bin/tools/sim/corvane-sim
spc=$bin/tools/spc/corvane-spc
for program in "$monitor" "$sim" "$spc"; do
  if [ ! -x "$program" ]; then
    echo "demo: $program is missing; build first (scripts/run.sh does)" >&2
    exit 1
  fi
done

demo=${CORVANE_DEMO_DIR:-demo}
rm -rf "$demo"
mkdir -p "$demo"
demo=$(cd "$demo" && pwd)
dsn=$demo/spc.db

simulators=()
stop_simulators() {
  for pid in "${simulators[@]}"; do kill "$pid" 2>/dev/null || true; done
  wait 2>/dev/null || true
}
trap stop_simulators EXIT

# Starts one simulated power supply on a free loopback port and puts the port into the
# variable named by the second argument.
start_supply() {
  local name=$1 variable=$2; shift 2
  "$sim" --tcp 0 --metric "$@" >"$demo/$name.sim.out" 2>"$demo/$name.sim.err" &
  simulators+=($!)
  local port=""
  for _ in $(seq 100); do
    port=$(sed -n 's/^tcp 127\.0\.0\.1:\([0-9]*\).*$/\1/p' "$demo/$name.sim.out")
    [ -n "$port" ] && break
    sleep 0.1
  done
  if [ -z "$port" ]; then
    echo "demo: corvane-sim for $name announced no port" >&2
    cat "$demo/$name.sim.err" >&2
    exit 1
  fi
  printf -v "$variable" '%s' "$port"
}

start_supply welder-1 port1 --seed 11 --interval 1500
start_supply welder-2 port2 --seed 23 --interval 2300 --energy 124 --scatter 0.035 \
                            --alarm-probability 0.05

# The eight characteristics with the simulators' means. A characteristic is found in
# the SPC database by the name the monitor shows, which follows its language: the German
# names are entered too, from the shipped table.
characteristics=(
  "6007|Weld Time|0.25"
  "6008|Energy|120"
  "6012|Total Absolute|12"
  "6010|Weld Collapse|0.40"
  "6011|Total Collapse|0.432"
  "6464|Velocity|50"
  "6009|Peak Power|45"
  "6013|Weld Force|800"
)
table=""
for candidate in "$bin/src/app/corvane-monitor.de.lang" translations/corvane-monitor.de.lang; do
  if [ -f "$candidate" ]; then table=$candidate; break; fi
done

spc_run() { "$spc" "$@" --dsn "$dsn" >/dev/null; }
spc_run init
spc_run add-part "Housing"
spc_run add-process "Seal weld"
for entry in "${characteristics[@]}"; do
  IFS='|' read -r number name mean <<<"$entry"
  names=("$name")
  if [ -n "$table" ]; then
    german=$(sed -n "s/^${number}|//p" "$table" | head -n 1)
    [ -n "$german" ] && [ "$german" != "$name" ] && names+=("$german")
  fi
  # Warning limits 1.5 and specification limits 2.5 standard deviations (3 % of the
  # mean) around the mean: about one weld in eight shows yellow somewhere, one in
  # eighty red.
  read -r lwl uwl lsl usl < <(awk -v m="$mean" 'BEGIN {
      s = 0.03 * m; printf "%g %g %g %g\n", m - 1.5 * s, m + 1.5 * s, m - 2.5 * s, m + 2.5 * s }')
  for shown in "${names[@]}"; do
    spc_run add-test "$shown"
    spc_run set-limits "Housing" "$shown" --lsl "$lsl" --usl "$usl" --lwl "$lwl" --uwl "$uwl"
  done
done

printf '[PREFERENCES]\r\nMEASUREMENT_SYSTEM=0\r\n' >"$demo/corvane-monitor.ini"
printf '[Corvane]\nBuild_Number=demo\n' >"$demo/settings.ini"

configuration() {
  local name=$1 port=$2 log=$3 rows=""
  for row in 0 1 2 3 4 5 6 7; do
    rows+="<List Index=\"$row\" ItemData=\"$((row + 1))\"/>"
  done
  printf '<Configuration><Equipment Name="%s" Settings="IP:127.0.0.1:%s"/>' "$name" "$port"
  printf '<DataLogging Enable="1" File="%s"/>' "$log"
  printf '<Sampling Enabled="True" SamplingPeriod="30" CollectionType="0" SubgroupSize="5"'
  printf ' EnableAlarmLogging="True" LogAlarms="127"><Database DSN="%s"/>' "$dsn"
  printf '<Part Name="Housing" Reselect="True"/><Process Name="Seal weld"/></Sampling>'
  printf '%s</Configuration>' "$rows"
}
{
  printf '<Configurations>'
  configuration "Welder 1" "$port1" "$demo/welder-1.txt"
  configuration "Welder 2" "$port2" "$demo/welder-2.txt"
  printf '</Configurations>'
} >"$demo/corvane-monitor.cfg"

echo "Demonstration in $demo: Welder 1 on port $port1, Welder 2 on port $port2."
echo "Subgroups: $spc subgroups --dsn $dsn"
echo "Shut Down (File menu or tray) ends the program and the simulators."
export CORVANE_SETTINGS_FILE=$demo/settings.ini
unset CORVANE_DATA_DIR
status=0
"$monitor" --data-dir "$demo" --start "$@" || status=$?
exit "$status"
