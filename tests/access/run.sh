#!/usr/bin/env bash
# Runs access_test.py on PROGRAM with IMAGE in a display, a session and a home of its own.
set -eu
here=$(dirname "$(readlink -f "$0")")
if [ "${1-}" != inside ]; then
    home=$(mktemp -d)
    trap 'rm -rf "$home"' EXIT
    mkdir -m 700 "$home/run"
    cp "$2" "$home"
    env -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM HOME="$home" XDG_CONFIG_HOME="$home" \
        XDG_RUNTIME_DIR="$home/run" QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 \
        xvfb-run -a dbus-run-session -- "$here/run.sh" inside "$1" 2>"$home/log" ||
        { grep -v -E 'dbus-daemon|SpiRegistry|Openbox' "$home/log" >&2; exit 1; }
    exit
fi
# A window that comes before the window manager gets no focus.
openbox --startup "touch $HOME/ready" >/dev/null &
windows=$!
trap 'kill $windows' EXIT
until [ -e "$HOME/ready" ] || ! kill -0 $windows; do sleep 0.1; done
/usr/bin/python3 "$here/access_test.py" "$2" "$HOME"
