# For `run` to source: a display for a machine that has none, shown to VNC viewers on this machine
# alone. Xvfb draws it, x11vnc shows it, openbox gives its windows their frames and titles.
# shellcheck shell=bash

has_display() { [ -n "${DISPLAY-}${WAYLAND_DISPLAY-}" ]; }

# Starts all three, and stops them when the script ends. Each gets a session of its own, so that
# Ctrl+C reaches the program before the display under it.
start_virtual_display() {
    local number port password
    display_folder=$(mktemp -d) || die "There is no room for a temporary folder."
    display_processes=()
    trap stop_virtual_display EXIT
    export XAUTHORITY=$display_folder/Xauthority XDG_RUNTIME_DIR=${XDG_RUNTIME_DIR-$display_folder}
    start_xvfb
    start_x11vnc
    setsid openbox >/dev/null 2>&1 &
    display_processes+=($!)
    say "No display here, so there is a virtual one: point a VNC viewer at 127.0.0.1:$port," \
        "password $password (from elsewhere: ssh -L $port:127.0.0.1:$port $(uname -n));" \
        "Ctrl+C or closing the program stops it all."
}

# Other users of this machine cannot connect without the cookie, which the folder keeps from them.
start_xvfb() {
    local cookie
    cookie=$(mcookie)
    : >"$XAUTHORITY"
    xauth -q add :0 . "$cookie"
    exec {display_out}< <(exec setsid Xvfb -displayfd 1 -screen 0 1280x900x24 -nolisten tcp \
        -auth "$XAUTHORITY" 2>>"$display_folder/log")
    display_processes+=($!)
    read -r -t 20 number <&"$display_out" || display_failed Xvfb
    export DISPLAY=:$number
    xauth -q add "$DISPLAY" . "$cookie"
}

# x11vnc looks for a free port from 5900 on and prints it.
start_x11vnc() {
    password=$(mcookie | cut -c 1-8)
    printf '%s\n' "$password" >"$display_folder/password"
    exec {vnc_out}< <(exec setsid x11vnc -localhost -noipv6 -autoport 5900 -forever -shared -quiet \
        -passwdfile "$display_folder/password" 2>>"$display_folder/log")
    display_processes+=($!)
    read -r -t 20 port <&"$vnc_out" || display_failed x11vnc
    port=${port#PORT=}
}

display_failed() {
    tail -n 5 "$display_folder/log" >&2
    die "$1 could not start a virtual display."
}

stop_virtual_display() {
    kill "${display_processes[@]}" 2>/dev/null
    rm -rf "$display_folder"
}
