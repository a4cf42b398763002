#!/usr/bin/env bash
# first_paint.sh OURS YARDSTICK REPORTER [RUNS]
# From the start of the process to the first painted window: the median of both programs, started in
# turn, and of the ratio of each turn. The library REPORTER prints the time of the first paint. On a
# virtual display if there is no other.
set -eu

if [ -z "${DISPLAY-}${WAYLAND_DISPLAY-}${QT_QPA_PLATFORM-}" ]; then
    if command -v xvfb-run >/dev/null; then
        exec xvfb-run -a -s "-screen 0 1280x1024x24" "$0" "$@"
    fi
    export QT_QPA_PLATFORM=offscreen
fi

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
export HOME=$home XDG_CONFIG_HOME=$home XDG_STATE_HOME=$home XDG_RUNTIME_DIR=$home # nothing of the user's

# Microseconds from start to first paint.
measure() {
    local start=${EPOCHREALTIME/[.,]/} painted
    painted=$(LD_PRELOAD=$reporter "$1")
    echo $((painted - start))
}

median() { sort -n | sed -n "$(((runs + 1) / 2))p"; }

reporter=$3
runs=${4:-25}
measure "$1" >/dev/null # what the first start alone reads from the disk
measure "$2" >/dev/null
for ((i = 0; i < runs; ++i)); do
    measure "$1" >>"$home/ours"
    measure "$2" >>"$home/yardstick"
done
ratio=$(paste "$home/ours" "$home/yardstick" | awk '{ print $1 / $2 }' | median)
awk -v ours="$(median <"$home/ours")" -v bare="$(median <"$home/yardstick")" -v ratio="$ratio" 'BEGIN {
    printf "First painted window: %.1f ms, a bare window %.1f ms: %.2f times (at most 1.3)\n",
        ours / 1000, bare / 1000, ratio }'
